#pragma once

#include <QString>
#include <vector>

namespace trendax {

// A labelled tic of the time axis. The label is one line ("14:30", "3/7/2024") or two lines
// ("14:30\n3/7/2024") where a tic starts a new calendar day or is the first one shown, so
// every tic of an hour-wide window can be read without a date on each.
struct TimeTick {
    double time = 0.0;
    QString label;
};

// Step between tics, in days, chosen from round clock steps (0.1 s ... 30 min, 1 h ... 12 h,
// 1 day ... 4 weeks, then whole years) as the smallest that gives at most maxTicks tics.
double timeTickStep(double start, double end, int maxTicks);

// Tics at whole multiples of the step inside [start, end], labelled by the step's resolution:
// tenths for steps below a second, seconds below a minute, minutes below a day, dates from a day
// on.
std::vector<TimeTick> timeTicks(double start, double end, int maxTicks);

} // namespace trendax
