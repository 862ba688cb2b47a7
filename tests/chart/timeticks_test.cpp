#include "chart/timeticks.h"

#include "storage/datetime.h"

#include <gtest/gtest.h>

namespace trendax {
namespace {

constexpr double second = 1.0 / 86400.0;

TEST(TimeTicks, SmallestRoundStepThatFits) {
    const struct {
        const char* name;
        double span;
        int maxTicks;
        double step;
    } rows[] = {
        {"narrowest zoom", 2.25 * second, 10, 1 * second},
        {"a minute", 60 * second, 10, 10 * second},
        {"1hour", 1.0 / 24.0, 10, 10 * 60 * second},
        {"1day", 1.0, 10, 3.0 / 24.0},
        {"1week", 7.0, 10, 1.0},
        {"30days", 30.0, 10, 7.0},
        {"30days on a wide chart", 30.0, 40, 1.0},
        {"ten years", 3650.0, 10, 365.0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_NEAR(timeTickStep(45000.0, 45000.0 + row.span, row.maxTicks), row.step, 1e-12);
    }
}

TEST(TimeTicks, LabelsFollowTheStepAndDateTheFirstTicAndEachNewDay) {
    const double mar7 = *datetime::fromDate(2024, 3, 7), dec31 = *datetime::fromDate(2024, 12, 31);
    const struct {
        const char* name;
        double start, end;
        int maxTicks;
        std::size_t count, index;
        const char* label;
    } rows[] = {
        {"an hour's first tic", mar7 + 13.0 / 24, mar7 + 14.0 / 24, 4, 5, 0, "13:00\n3/7/2024"},
        {"an hour's second tic", mar7 + 13.0 / 24, mar7 + 14.0 / 24, 4, 5, 1, "13:15"},
        {"an hour's last tic", mar7 + 13.0 / 24, mar7 + 14.0 / 24, 4, 5, 4, "14:00"},
        {"a new day", dec31 + 20.0 / 24, dec31 + 1 + 4.0 / 24, 5, 5, 2, "0:00\n1/1/2025"},
        {"seconds", mar7 + 0.5, mar7 + 0.5 + 20 * second, 5, 5, 1, "12:00:05"},
        {"days", mar7, mar7 + 6.0, 10, 7, 1, "3/8/2024"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto ticks = timeTicks(row.start, row.end, row.maxTicks);
        ASSERT_EQ(ticks.size(), row.count);
        EXPECT_EQ(ticks[row.index].label, row.label);
    }
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
    EXPECT_TRUE(timeTicks(5.0, 5.0, 10).empty()) << "an empty window";
    EXPECT_TRUE(timeTicks(1e11, 0.0, 10).empty()) << "an inverted window";
}

} // namespace
} // namespace trendax
