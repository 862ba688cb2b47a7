#pragma once

#include "chart/timewindow.h"

#include <optional>

// The window moves of the chart's mouse: wheel zoom about the pointer, wheel pan, drag pan and
// range zoom. Each takes the window on screen and returns the one to show; the chart's
// ShowXRange then keeps it inside the calendar.
namespace trendax::viewmoves {

// Wheel amounts come in notches: 120 eighths of a degree of a mouse wheel, or the same distance
// reported by a high-resolution wheel or a touchpad in smaller steps.
inline constexpr double eighthsPerNotch = 120.0;

// Zooms by a factor of 2 per notch about `pointer` (which stays where it is on screen): positive
// notches zoom in, negative out, fractions by fractional powers. A zoom in stops at
// navigation::smallestSpan (a window already narrower is never widened by it); there is no upper
// limit short of the calendar.
TimeWindow zoomAbout(TimeWindow window, double pointer, double notches);

// Moves the window a tenth of its span per notch, later for positive notches.
TimeWindow panByNotches(TimeWindow window, double notches);

// The window a drag shows: `grabbed` is the window when the button went down, and the pointer has
// moved by `fraction` of the plot width since; the time under the pointer goes with it.
TimeWindow dragPan(TimeWindow grabbed, double fraction);

// The window between two times picked on the chart, in either order. A range narrower than
// navigation::smallestSpan widens to it about its middle; an empty one (or not finite) is refused.
std::optional<TimeWindow> rangeZoom(double a, double b);

} // namespace trendax::viewmoves
