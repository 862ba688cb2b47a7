#include "chart/timeticks.h"

#include "storage/datetime.h"

#include <gtest/gtest.h>

namespace trendax {
namespace {

constexpr double second = 1.0 / 86400.0;

// ---- Step choice ----

struct StepRow {
    double span;
    int maxTicks;
    double step;
};

class TimeTickSteps : public testing::TestWithParam<StepRow> {};

TEST_P(TimeTickSteps, SmallestRoundStepThatFits) {
    EXPECT_NEAR(timeTickStep(45000.0, 45000.0 + GetParam().span, GetParam().maxTicks),
                GetParam().step, 1e-12);
}

INSTANTIATE_TEST_SUITE_P(Rows, TimeTickSteps,
                         testing::Values(StepRow{2.25 * second, 10, 1 * second}, // narrowest zoom
                                         StepRow{60 * second, 10, 10 * second},  // a minute
                                         StepRow{1.0 / 24.0, 10, 10 * 60 * second}, // "1hour"
                                         StepRow{1.0, 10, 3.0 / 24.0},              // "1day"
                                         StepRow{7.0, 10, 1.0},                     // "1week"
                                         StepRow{30.0, 10, 7.0},                    // "30days"
                                         StepRow{30.0, 40, 1.0}, StepRow{3650.0, 10, 365.0}));

// ---- Labels ----

TEST(TimeTicks, HourWindowShowsClockTimesAndTheDateOnce) {
    const double day = *datetime::fromDate(2024, 3, 7);
    const auto ticks = timeTicks(day + 13.0 / 24.0, day + 14.0 / 24.0, 4);
    ASSERT_EQ(ticks.size(), 5u); // every 15 minutes, both edges included
    EXPECT_EQ(ticks[0].label, "13:00\n3/7/2024");
    EXPECT_EQ(ticks[1].label, "13:15");
    EXPECT_EQ(ticks[4].label, "14:00");
    EXPECT_NEAR(ticks[2].time, day + 13.5 / 24.0, 1e-9);
}

TEST(TimeTicks, NewDayIsLabelledWhereItStarts) {
    const double day = *datetime::fromDate(2024, 12, 31);
    const auto ticks = timeTicks(day + 20.0 / 24.0, day + 1.0 + 4.0 / 24.0, 5);
    ASSERT_FALSE(ticks.empty());
    bool sawMidnight = false;
    for (const TimeTick& t : ticks)
        if (t.label.startsWith("0:00")) {
            sawMidnight = true;
            EXPECT_EQ(t.label, "0:00\n1/1/2025");
        }
    EXPECT_TRUE(sawMidnight);
}

TEST(TimeTicks, SecondsAndDaysResolution) {
    const double day = *datetime::fromDate(2024, 3, 7);
    const auto seconds = timeTicks(day + 0.5, day + 0.5 + 20 * second, 5);
    ASSERT_FALSE(seconds.empty());
    EXPECT_EQ(seconds[1].label, "12:00:05");
    const auto days = timeTicks(day, day + 6.0, 10);
    ASSERT_EQ(days.size(), 7u);
    EXPECT_EQ(days[1].label, "3/8/2024");
}

// A window 10^11 days out, or one over nearly every double, must not label tics with dates no
// calendar has (nor turn their day numbers into integers that overflow).
TEST(TimeTicks, WindowsBeyondTheCalendarHaveNoTicsThere) {
    EXPECT_TRUE(timeTicks(1e11 - 1.0, 1e11, 10).empty());
    const double firstDay = *datetime::fromDate(1, 1, 1);
    const double lastDay = *datetime::fromDate(9999, 12, 31);
    for (const TimeTick& t : timeTicks(-1e300, 1e300, 10)) {
        EXPECT_GE(t.time, firstDay);
        EXPECT_LE(t.time, lastDay + 1.0);
    }
}

TEST(TimeTicks, NoTicksForAnEmptyWindow) {
    EXPECT_TRUE(timeTicks(5.0, 5.0, 10).empty());
    EXPECT_TRUE(timeTicks(1e11, 0.0, 10).empty());
}

} // namespace
} // namespace trendax
