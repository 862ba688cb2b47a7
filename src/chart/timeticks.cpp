#include "chart/timeticks.h"

#include "storage/datetime.h"

#include <cmath>

namespace trendax {

namespace {

constexpr double second = 1.0 / 86400.0;
constexpr double minute = 60.0 * second;
constexpr double hour = 60.0 * minute;

// Tenths of a second keep the narrowest zoom (2.25 s) from showing only two or three tics.
constexpr double steps[] = {
    0.1 * second, 0.2 * second, 0.5 * second, 1 * second, 2 * second, 5 * second,  10 * second,
    15 * second,  30 * second,  1 * minute,   2 * minute, 5 * minute, 10 * minute, 15 * minute,
    30 * minute,  1 * hour,     2 * hour,     3 * hour,   6 * hour,   12 * hour,   1.0,
    2.0,          7.0,          14.0,         28.0,       91.0,       182.0,       364.0};

enum class Clock { minutes, seconds, tenths };

QString clockText(const datetime::Civil& c, Clock resolution) {
    QString text = QString::number(c.hour) + ':' + QString::number(c.minute).rightJustified(2, '0');
    if (resolution != Clock::minutes)
        text += ':' + QString::number(c.second).rightJustified(2, '0');
    if (resolution == Clock::tenths)
        text += '.' + QString::number(c.millisecond / 100);
    return text;
}

// Tics are labelled with calendar dates from year 1 to year 9999 only: a window beyond them (an
// extreme scroll, or one 10^11 days out) gets no tics there rather than a date no calendar has.
double firstLabelledDay() {
    static const double day = *datetime::fromDate(1, 1, 1);
    return day;
}
double endOfLabelledDays() {
    static const double day = *datetime::fromDate(10000, 1, 1);
    return day;
}

} // namespace

double timeTickStep(double start, double end, int maxTicks) {
    const double span = end - start;
    maxTicks = std::max(maxTicks, 1);
    // The tolerance keeps an hour from counting as a hair more than four quarter hours.
    for (double step : steps)
        if (span / step <= maxTicks * (1.0 + 1e-9))
            return step;
    return 365.0 * std::ceil(span / 365.0 / maxTicks);
}

std::vector<TimeTick> timeTicks(double start, double end, int maxTicks) {
    std::vector<TimeTick> ticks;
    if (!(end > start) || !std::isfinite(start) || !std::isfinite(end))
        return ticks;
    const double step = timeTickStep(start, end, maxTicks);
    // A tolerance of a millisecond keeps a tic that sits on the window edge but came out a hair
    // outside after the division.
    const double tolerance = 0.001 * second;
    const double from = std::max(start, firstLabelledDay());
    const double to = std::min(end, endOfLabelledDays());
    if (from > to)
        return ticks;
    const double first = std::ceil((from - tolerance) / step);
    const double last = std::floor((to + tolerance) / step);
    double previousDay = -1.0e300;
    for (double k = first; k <= last; k += 1.0) {
        const double t = k * step;
        const datetime::Civil c = datetime::toCivil(t);
        const double day = std::floor(t + tolerance);
        QString label;
        if (step >= 1.0 - tolerance) {
            label = datetime::formatShortDate(day);
        } else {
            const Clock resolution = step < second - tolerance   ? Clock::tenths
                                     : step < minute - tolerance ? Clock::seconds
                                                                 : Clock::minutes;
            label = clockText(c, resolution);
            if (day != previousDay)
                label += '\n' + datetime::formatShortDate(day);
        }
        previousDay = day;
        ticks.push_back({t, label});
    }
    return ticks;
}

} // namespace trendax
