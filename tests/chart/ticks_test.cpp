#include "chart/timeticks.h"
#include "chart/valueticks.h"
#include "storage/datetime.h"

#include <QStringList>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace trendax {
namespace {

constexpr double second = 1.0 / 86400.0;
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

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
    const struct {
        const char* name;
        double bottom, top, height;
        const char* labels;
    } rows[] = {
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
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto ticks = valueTicks(row.bottom, row.top, row.height, 14);
        EXPECT_EQ(labelsUpwards(ticks).toStdString(), row.labels);
        for (const ValueTick& t : ticks) {
            if (t.end)
                continue;
            // Inner tics lie strictly inside, at whole multiples of a 1-2-5 step.
            EXPECT_GT(t.position, 0.0);
            EXPECT_LT(t.position, 1.0);
            const double fromEnd = std::min(t.position, 1.0 - t.position) * row.height;
            EXPECT_EQ(t.label.isEmpty(), fromEnd < 21.0) << t.value;
        }
    }
}

// From the narrowest zoom to a third of a year, at widths from the smallest main window to 4K; a
// tic slot is as wide as the widest date ("12/28/2088") and a margin, as the chart measures it.
TEST(TimeTicks, ReadableFromTwoSecondsToOneHundredTwentyDays) {
    constexpr double charWidth = 7.0, slot = 10 * charWidth + 16.0;
    const double mar7 = *datetime::fromDate(2024, 3, 7), dec31 = *datetime::fromDate(2024, 12, 31);
    const struct {
        const char* name;
        double start, span;
    } windows[] = {
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
    for (const auto& w : windows) {
        for (const double width : {500.0, 1000.0, 1920.0, 3840.0}) {
            SCOPED_TRACE(testing::Message() << w.name << " at " << width << " px");
            const int maxTicks = int(width / slot);
            const double end = w.start + w.span;
            const auto ticks = timeTicks(w.start, end, maxTicks);
            ASSERT_GE(ticks.size(), 2u) << "at least two labels";
            ASSERT_LE(ticks.size(), std::size_t(maxTicks) + 1);
            const double step = timeTickStep(w.start, end, maxTicks);
            for (std::size_t i = 0; i < ticks.size(); ++i) {
                const TimeTick& t = ticks[i];
                SCOPED_TRACE(t.label.toStdString());
                EXPECT_GE(t.time, w.start - 1e-9);
                EXPECT_LE(t.time, end + 1e-9);
                const QStringList lines = t.label.split('\n');
                for (const QString& line : lines)
                    EXPECT_LE(line.size(), 10);
                if (i > 0) {
                    EXPECT_NE(lines[0], ticks[i - 1].label.split('\n')[0]) << "distinct labels";
                    const double apart = (t.time - ticks[i - 1].time) / w.span * width;
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
