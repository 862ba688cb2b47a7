#include "chart/chartmapping.h"
#include "chart/pixelpath.h"
#include "chart/timeticks.h"
#include "storage/datetime.h"

#include <gtest/gtest.h>

#include <cmath>

namespace trendax {
namespace {

constexpr double second = 1.0 / 86400.0;

TEST(ChartMapping, MapsTimesAndValuesToPixelsAndKeepsWildOnesInsideTheLimit) {
    const TimeMapping day{45000.0, 45001.0, 60.0, 1000.0}; // a day over 1000 pixels from 60
    const TimeMapping narrowest{45000.0, 45000.0 + 1.0 / 38400.0, 0.0, 1920.0};
    const ValueMapping band{0.0, 100.0, 20.0, 200.0}, unit{0.0, 1.0, 0.0, 100.0};
    // Date-times near day 45000 carry about a microsecond of resolution.
    const struct {
        const char* name;
        double got, expected, tolerance;
    } rows[] = {
        {"day start", day.toX(45000.0), 60.0, 1e-3},
        {"a quarter", day.toTime(310.0), 45000.25, 1e-9},
        {"before the window", day.toX(44999.0), -940.0, 1e-3},
        {"narrowest zoom", narrowest.toX(45000.0 + 0.5 / 38400.0), 960.0, 1e-3},
        {"narrowest zoom back", narrowest.toTime(960.0), 45000.0 + 0.5 / 38400.0, 1e-9},
        {"empty window", TimeMapping{5.0, 5.0, 10.0, 100.0}.toX(7.0), 10.0, 0},
        {"no width", TimeMapping{0.0, 1.0, 10.0, 0.0}.toTime(99.0), 0.0, 0},
        {"value low at the bottom", band.toY(0.0), 220.0, 0},
        {"value a quarter up", band.toY(25.0), 170.0, 0},
        {"flat channel", ValueMapping{5.0, 5.0, 0.0, 100.0}.toY(5.0), 50.0, 0},
        {"inverted range", ValueMapping{5.0, 1.0, 0.0, 100.0}.toY(3.0), 50.0, 0},
        {"huge value", unit.toY(1e300), -1.0e6, 0},
        {"minus infinite value", unit.toY(-HUGE_VAL), 100.0 + 1.0e6, 0},
        {"value not a number", unit.toY(NAN), -1.0e6, 0},
        {"pixel on the plot", safePixel(12.5), 12.5, 0},
        {"cursor 5e10 days out", safePixel(5e13), 1.0e6, 0},
        {"far left index", double(pixelIndex(-3e14)), -1.0e6, 0},
        {"infinite pixel", safePixel(HUGE_VAL), 1.0e6, 0},
        {"pixel not a number", safePixel(NAN), -1.0e6, 0},
        {"index not a number", double(pixelIndex(NAN)), -1.0e6, 0},
        {"index on the plot", double(pixelIndex(12.5)), 13.0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_NEAR(row.got, row.expected, row.tolerance);
    }
}

TEST(CollapsePixelColumns, KeepsTheExtremesOfEachColumnInOrder) {
    const struct {
        const char* name;
        std::vector<QPointF> in, out;
    } rows[] = {
        {"sparse", {{0.5, 10}, {3.2, 20}, {7.9, 5}}, {{0.5, 10}, {3.2, 20}, {7.9, 5}}},
        {"two in a column stay", {{1.1, 10}, {1.6, 20}}, {{1.1, 10}, {1.6, 20}}},
        // First, minimum, maximum, last of one column: the spike at y 2 survives.
        {"spike",
         {{4.0, 50}, {4.2, 60}, {4.4, 2}, {4.9, 40}, {5.0, 41}},
         {{4.0, 60}, {4.0, 2}, {5.0, 41}}},
        {"top reached first", {{4.0, 50}, {4.2, 2}, {4.4, 60}, {4.9, 40}}, {{4.0, 2}, {4.0, 60}}},
        {"flat column is one vertex", {{9.0, 30.1}, {9.3, 29.9}, {9.6, 30.2}}, {{9.0, 30.1}}},
        {"empty", {}, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<QPointF> points = row.in;
        collapsePixelColumns(points);
        EXPECT_EQ(points, row.out);
    }
}

TEST(TimeTicks, SmallestRoundStepThatFits) {
    const struct {
        const char* name;
        double span;
        int maxTicks;
        double step;
    } rows[] = {
        {"narrowest zoom", 2.25 * second, 10, 0.5 * second},
        {"1hour", 1.0 / 24.0, 10, 10 * 60 * second},
        {"1day", 1.0, 10, 3.0 / 24.0},
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
        {"a new day", dec31 + 20.0 / 24, dec31 + 1 + 4.0 / 24, 5, 5, 2, "0:00\n1/1/2025"},
        {"seconds", mar7 + 0.5, mar7 + 0.5 + 20 * second, 5, 5, 1, "12:00:05"},
        {"tenths", mar7 + 0.5, mar7 + 0.5 + 2.25 * second, 5, 5, 1, "12:00:00.5"},
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
    const double firstDay = *datetime::fromDate(1, 1, 1),
                 lastDay = *datetime::fromDate(9999, 12, 31);
    for (const TimeTick& t : timeTicks(-1e300, 1e300, 10)) {
        EXPECT_GE(t.time, firstDay);
        EXPECT_LE(t.time, lastDay + 1.0);
    }
    EXPECT_TRUE(timeTicks(5.0, 5.0, 10).empty()) << "an empty window";
    EXPECT_TRUE(timeTicks(1e11, 0.0, 10).empty()) << "an inverted window";
}

} // namespace
} // namespace trendax
