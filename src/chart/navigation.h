#pragma once

#include <QStringView>
#include <optional>

// The rules of moving over the time axis and of scaling the Y axes, on the chart model. The main
// window's commands call them; the widget repaints through the model's change listener.
namespace trendax {

class StripChartModel;

namespace navigation {

// A zoom in never goes below 1/38400 day (2.25 seconds).
inline constexpr double smallestSpan = 1.0 / 38400.0;

// Mode 0 halves the span, mode 1 doubles it (without limit), any other mode keeps it; the
// window is then centred on the cursor. A cursor outside the window is first put in its middle.
// A halving that would go below the smallest span is refused silently (the window still
// re-centres).
void zoomTime(StripChartModel& chart, int mode);

// Mode 0 moves the window a tenth of its width earlier, mode 1 later; any other mode does
// nothing. There is no bound and the cursor stays where it is.
void scrollTime(StripChartModel& chart, int mode);

// The span of a fixed-span key ("1hour", "1day", "1week", "30days"), in days; nullopt for any
// other key.
std::optional<double> fixedSpan(QStringView key);

// Fits each track's Y range to the data of the visible variables on it, for tracks 0 to
// trackCount inclusive: the extra round scales the variables parked on the first unshown track.
// Variables of a track are scaled in index order with the running range, so only the last one
// gets the track's full range; hidden variables are neither scaled nor counted. The selectors
// end on variable 12 and its track.
void autoScaleY(StripChartModel& chart);

} // namespace navigation
} // namespace trendax
