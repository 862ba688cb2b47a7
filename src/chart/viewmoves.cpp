#include "chart/viewmoves.h"

#include "chart/navigation.h"

#include <algorithm>
#include <cmath>

namespace trendax::viewmoves {

namespace {

// Beyond this many doublings any window is either under the floor or wider than the calendar, so
// larger amounts change nothing more; the cap keeps the power finite for a wheel spun wildly.
constexpr double zoomCap = 64.0;
// The same for panning: a million tenths of any window leave the calendar.
constexpr double panCap = 1.0e6;

double capped(double notches, double cap) {
    if (std::isnan(notches))
        return 0.0;
    return std::clamp(notches, -cap, cap);
}

} // namespace

TimeWindow zoomAbout(TimeWindow window, double pointer, double notches) {
    const double span = window.span();
    const double floor = std::min(span, navigation::smallestSpan);
    const double newSpan = std::max(span * std::exp2(-capped(notches, zoomCap)), floor);
    if (!std::isfinite(pointer))
        pointer = window.start + span / 2;
    // The pointer keeps its place as a fraction of the window.
    const double fraction = span > 0.0 ? (pointer - window.start) / span : 0.5;
    const double start = pointer - fraction * newSpan;
    return {start, start + newSpan};
}

TimeWindow panByNotches(TimeWindow window, double notches) {
    const double step = window.span() / 10 * capped(notches, panCap);
    return {window.start + step, window.end + step};
}

TimeWindow dragPan(TimeWindow grabbed, double fraction) {
    if (!std::isfinite(fraction))
        return grabbed;
    const double shift = -fraction * grabbed.span();
    return {grabbed.start + shift, grabbed.end + shift};
}

std::optional<TimeWindow> rangeZoom(double a, double b) {
    if (!std::isfinite(a) || !std::isfinite(b) || a == b)
        return std::nullopt;
    TimeWindow w{std::min(a, b), std::max(a, b)};
    if (w.span() < navigation::smallestSpan) {
        const double middle = w.start + w.span() / 2;
        w = {middle - navigation::smallestSpan / 2, middle + navigation::smallestSpan / 2};
    }
    return w;
}

} // namespace trendax::viewmoves
