#include "chart/timewindow.h"

#include "storage/datetime.h"

#include <cmath>

namespace trendax::timewindow {

double calendarStart() {
    return 0.0;
}

double calendarEnd() {
    static const double end = *datetime::fromDate(10000, 1, 1);
    return end;
}

bool clampToCalendar(TimeWindow& window) {
    if (!std::isfinite(window.end - window.start) || !(window.start < window.end))
        return false;
    const double first = calendarStart();
    const double last = calendarEnd();
    if (window.span() >= last - first) {
        window = {first, last};
    } else if (window.start < first) {
        window = {first, first + window.span()};
    } else if (window.end > last) {
        window = {last - window.span(), last};
    }
    return true;
}

} // namespace trendax::timewindow
