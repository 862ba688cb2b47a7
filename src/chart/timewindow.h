#pragma once

// A visible time window and the calendar every window stays inside.
namespace trendax {

// [start, end] in date-times; the chart only ever shows windows with start < end.
struct TimeWindow {
    double start = 0.0;
    double end = 1.0;

    double span() const { return end - start; }
    bool operator==(const TimeWindow&) const = default;
};

namespace timewindow {

// The first instant a window may show: 30 December 1899, date-time 0. Earlier times have no
// clock time the axis could label the way the rest of the program writes them.
double calendarStart();
// The last instant: the end of 31 December 9999.
double calendarEnd();

// The window moved, keeping its span, so that it lies inside the calendar; a window wider than
// the calendar becomes the whole calendar. Ends that are not finite or a start not before the end
// give nothing: such a window is refused, not repaired.
bool clampToCalendar(TimeWindow& window);

} // namespace timewindow
} // namespace trendax
