#include "chart/chartmapping.h"
#include "chart/pixelpath.h"
#include "chart/timeticks.h"
#include "chart/valueticks.h"
#include "storage/datetime.h"

#include <QStringList>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>

namespace trendax {
namespace {

constexpr double second = 1.0 / 86400.0;
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

// ---- Pixels ----

TEST(ChartMapping, MapsTimesAndValuesToPixelsAndKeepsWildOnesInsideTheLimit) {
    const TimeMapping day{45000.0, 45001.0, 60.0, 1000.0}; // a day over 1000 pixels from 60
    const TimeMapping narrowest{45000.0, 45000.0 + 1.0 / 38400.0, 0.0, 1920.0};
    const ValueMapping band{0.0, 100.0, 20.0, 200.0}, unit{0.0, 1.0, 0.0, 100.0};
    // Date-times near day 45000 carry about a microsecond of resolution.
    const std::tuple<const char*, double, double, double> rows[] = {
        // name, got, expected, tolerance
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
        {"minus infinite value", unit.toY(-inf), 100.0 + 1.0e6, 0},
        {"value not a number", unit.toY(nan), -1.0e6, 0},
        {"pixel on the plot", safePixel(12.5), 12.5, 0},
        {"cursor 5e10 days out", safePixel(5e13), 1.0e6, 0},
        {"far left index", double(pixelIndex(-3e14)), -1.0e6, 0},
        {"infinite pixel", safePixel(inf), 1.0e6, 0},
        {"pixel not a number", safePixel(nan), -1.0e6, 0},
        {"index not a number", double(pixelIndex(nan)), -1.0e6, 0},
        {"index on the plot", double(pixelIndex(12.5)), 13.0, 0},
    };
    for (const auto& [name, got, expected, tolerance] : rows) {
        SCOPED_TRACE(name);
        EXPECT_NEAR(got, expected, tolerance);
    }
}

TEST(CollapsePixelColumns, KeepsTheExtremesOfEachColumnInOrder) {
    const std::tuple<const char*, std::vector<QPointF>, std::vector<QPointF>> rows[] = {
        {"sparse", {{0.5, 10}, {3.2, 20}, {7.9, 5}}, {{0.5, 10}, {3.2, 20}, {7.9, 5}}},
        {"two in a column stay", {{1.1, 10}, {1.6, 20}}, {{1.1, 10}, {1.6, 20}}},
        // First, minimum, maximum, last of one column: the spike at y 2 survives.
        {"spike", {{4, 50}, {4.2, 60}, {4.4, 2}, {4.9, 40}, {5, 41}}, {{4, 60}, {4, 2}, {5, 41}}},
        {"top reached first", {{4.0, 50}, {4.2, 2}, {4.4, 60}, {4.9, 40}}, {{4.0, 2}, {4.0, 60}}},
        {"flat column is one vertex", {{9.0, 30.1}, {9.3, 29.9}, {9.6, 30.2}}, {{9.0, 30.1}}},
        {"empty", {}, {}},
    };
    for (const auto& [name, in, out] : rows) {
        SCOPED_TRACE(name);
        std::vector<QPointF> points = in;
        collapsePixelColumns(points);
        EXPECT_EQ(points, out);
    }
}

// ---- Tics ----

TEST(TimeTicks, SmallestRoundStepThatFits) {
    const std::tuple<const char*, double, int, double> rows[] = {
        // name, span, tics, step
        {"narrowest zoom", 2.25 * second, 10, 0.5 * second},
        {"1hour", 1.0 / 24.0, 10, 10 * 60 * second},
        {"1day", 1.0, 10, 3.0 / 24.0},
        {"30days", 30.0, 10, 7.0},
        {"30days on a wide chart", 30.0, 40, 1.0},
        {"ten years", 3650.0, 10, 365.0},
    };
    for (const auto& [name, span, maxTicks, step] : rows) {
        SCOPED_TRACE(name);
        EXPECT_NEAR(timeTickStep(45000.0, 45000.0 + span, maxTicks), step, 1e-12);
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

// The labelled tics from bottom to top, joined by blanks.
QString labelsUpwards(std::vector<ValueTick> ticks) {
    std::stable_sort(ticks.begin(), ticks.end(), [](const ValueTick& a, const ValueTick& b) {
        return a.position < b.position;
    });
    QStringList labels;
    for (const ValueTick& t : ticks)
        if (!t.label.isEmpty())
            labels << t.label;
    return labels.join(' ');
}

// A band 200 pixels high with labels 14 high: inner tics at least 28 pixels apart, their labels
// at least 21 pixels from an end.
TEST(ValueTicks, EndsAsTheyAreInnerTicsAtRoundValues) {
    const std::tuple<const char*, double, double, double, const char*> rows[] = {
        // name, bottom, top, height, labels
        {"currents; 80 is too close to the top", 0, 87.3, 200, "0 20 40 60 87.3"},
        {"negative; -12 and -4 too close to the ends", -12.5, -3.2, 200, "-12.5 -10 -8 -6 -3.2"},
        {"crossing zero, one decimal", -0.3, 0.7, 200, "-0.3 0.0 0.2 0.4 0.7"},
        {"tiny range, four decimals", 0.001, 0.0015, 200,
         "0.001 0.0011 0.0012 0.0013 0.0014 0.0015"},
        {"huge range in exponent form", 0, 3e9, 200, "0 5e+08 1e+09 1.5e+09 2e+09 2.5e+09 3e+09"},
        {"inverted range runs downwards", 100, 0, 200, "100 80 60 40 20 0"},
        {"single value once", 42.5, 42.5, 200, "42.5"},
        {"empty track once", 0, 0, 200, "0"},
        {"band too low for inner labels", 0, 100, 20, "0 100"},
        {"range below the digits of its values", 1, 1 + 1e-14, 200, "1 1"},
        {"range that overflows a double", -1e308, 1e308, 200, "-1e+308 1e+308"},
        {"top not finite", 0, inf, 200, "0"},
        {"neither end a number", nan, nan, 200, ""},
    };
    for (const auto& [name, bottom, top, height, labels] : rows) {
        SCOPED_TRACE(name);
        const auto ticks = valueTicks(bottom, top, height, 14);
        EXPECT_EQ(labelsUpwards(ticks).toStdString(), labels);
        for (const ValueTick& t : ticks) {
            if (t.end)
                continue;
            // Inner tics lie strictly inside, at whole multiples of a 1-2-5 step.
            EXPECT_GT(t.position, 0.0);
            EXPECT_LT(t.position, 1.0);
            const double fromEnd = std::min(t.position, 1.0 - t.position) * height;
            EXPECT_EQ(t.label.isEmpty(), fromEnd < 21.0) << t.value;
        }
    }
}

// From the narrowest zoom to a third of a year, at widths from the smallest main window to 4K; a
// tic slot is as wide as the widest date ("12/28/2088") and a margin, as the chart measures it.
TEST(TimeTicks, ReadableFromTwoSecondsToOneHundredTwentyDays) {
    constexpr double charWidth = 7.0, slot = 10 * charWidth + 16.0;
    const double mar7 = *datetime::fromDate(2024, 3, 7), dec31 = *datetime::fromDate(2024, 12, 31);
    const std::tuple<const char*, double, double> windows[] = {
        // name, start, span
        {"2 s across midnight", dec31 + 1 - 1 * second, 2 * second},
        {"narrowest zoom", mar7 + 0.55371, 2.25 * second},
        {"1 min", mar7 + 0.55371, 60 * second},
        {"10 min", mar7 + 0.55371, 600 * second},
        {"1 h", mar7 + 0.55371, 1.0 / 24},
        {"1 day", mar7 + 0.55371, 1.0},
        {"1 week", mar7 + 0.55371, 7.0},
        {"30 days", mar7 + 0.55371, 30.0},
        {"120 days", mar7 + 0.55371, 120.0},
    };
    for (const auto& [name, start, span] : windows) {
        for (const double width : {500.0, 1000.0, 1920.0, 3840.0}) {
            SCOPED_TRACE(testing::Message() << name << " at " << width << " px");
            const int maxTicks = int(width / slot);
            const double end = start + span;
            const auto ticks = timeTicks(start, end, maxTicks);
            ASSERT_GE(ticks.size(), 2u) << "at least two labels";
            ASSERT_LE(ticks.size(), std::size_t(maxTicks) + 1);
            const double step = timeTickStep(start, end, maxTicks);
            for (std::size_t i = 0; i < ticks.size(); ++i) {
                const TimeTick& t = ticks[i];
                SCOPED_TRACE(t.label.toStdString());
                EXPECT_GE(t.time, start - 1e-9);
                EXPECT_LE(t.time, end + 1e-9);
                const QStringList lines = t.label.split('\n');
                for (const QString& line : lines)
                    EXPECT_LE(line.size(), 10);
                if (i > 0) {
                    EXPECT_NE(lines[0], ticks[i - 1].label.split('\n')[0]) << "distinct labels";
                    const double apart = (t.time - ticks[i - 1].time) / span * width;
                    EXPECT_GE(apart, 10 * charWidth + 8.0) << "no overlap";
                }
                // The first tic and each new day carry the date; other tics only their time.
                const double day = std::floor(t.time + 1e-9);
                const bool newDay = i == 0 || day != std::floor(ticks[i - 1].time + 1e-9);
                const QString date = datetime::formatShortDate(day);
                EXPECT_EQ(step >= 1.0 ? t.label : lines.value(1),
                          newDay || step >= 1.0 ? date : "");
            }
        }
    }
}

} // namespace
} // namespace trendax
