#include "chart/chartmapping.h"
#include "chart/summarypyramid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace trendax {
namespace {

TEST(TimeMapping, MapsBothWays) {
    const TimeMapping day{45000.0, 45001.0, 60.0, 1000.0}; // a day over 1000 pixels from 60
    const struct {
        const char* name;
        TimeMapping mapping;
        double time, x;
    } rows[] = {
        {"start", day, 45000.0, 60.0},
        {"end", day, 45001.0, 1060.0},
        {"a quarter", day, 45000.25, 310.0},
        {"before the window, left of the plot", day, 44999.0, -940.0},
        {"the narrowest zoom over 1920 pixels",
         {45000.0, 45000.0 + 1.0 / 38400.0, 0.0, 1920.0},
         45000.0 + 0.5 / 38400.0,
         960.0},
        {"a month", {45000.0, 45030.0, 0.0, 1800.0}, 45015.0, 900.0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        // Date-times near day 45000 carry about a microsecond of resolution.
        EXPECT_NEAR(row.mapping.toX(row.time), row.x, 1e-3);
        EXPECT_NEAR(row.mapping.toTime(row.x), row.time, 1e-9);
    }
    const TimeMapping emptyWindow{5.0, 5.0, 10.0, 100.0}, noWidth{0.0, 1.0, 10.0, 0.0};
    EXPECT_EQ(emptyWindow.toX(7.0), 10.0) << "no division by zero";
    EXPECT_EQ(noWidth.toX(0.5), 10.0);
    EXPECT_EQ(noWidth.toTime(99.0), 0.0);
}

TEST(ValueMapping, MapsOntoTheBandAndClampsWildValues) {
    const ValueMapping band{0.0, 100.0, 20.0, 200.0}, unit{0.0, 1.0, 0.0, 100.0};
    const struct {
        const char* name;
        ValueMapping mapping;
        double value, y;
    } rows[] = {
        {"low at the bottom", band, 0.0, 220.0},
        {"high at the top", band, 100.0, 20.0},
        {"a quarter up", band, 25.0, 170.0},
        {"zero in a symmetric range", {-10.0, 10.0, 0.0, 100.0}, 0.0, 50.0},
        {"flat channel on the middle line", {5.0, 5.0, 0.0, 100.0}, 5.0, 50.0},
        {"inverted range on the middle line", {5.0, 1.0, 0.0, 100.0}, 3.0, 50.0},
        {"huge", unit, 1e300, -1.0e6},
        {"minus infinite", unit, -HUGE_VAL, 100.0 + 1.0e6},
        {"not a number", unit, NAN, -1.0e6},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_DOUBLE_EQ(row.mapping.toY(row.value), row.y);
    }
}

TEST(SafePixel, FarNonFiniteAndNotANumberStayInsideTheLimit) {
    const struct {
        const char* name;
        double x, safe;
        int index;
    } rows[] = {
        {"on the plot", 12.5, 12.5, 13},
        {"a cursor 5e10 days out through a day's window", 5e10 * 1000.0, 1.0e6, 1'000'000},
        {"far left", -3e14, -1.0e6, -1'000'000},
        {"infinite", HUGE_VAL, 1.0e6, 1'000'000},
        {"minus infinite", -HUGE_VAL, -1.0e6, -1'000'000},
        {"not a number", NAN, -1.0e6, -1'000'000},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(safePixel(row.x), row.safe);
        EXPECT_EQ(pixelIndex(row.x), row.index);
    }
}

// ---- Summary pyramid ----
// Its range queries are checked against a plain scan through the chart model's statistics.

TEST(SummaryPyramid, NodeEndsMatchTheValuesAndAReleasedFrontFreesMemory) {
    ValueColumn values;
    SummaryPyramid pyramid;
    // Grown in uneven batches, as days of different lengths arrive.
    for (std::size_t batch : {1u, 63u, 64u, 4000u, 1u, 70000u, 333u}) {
        for (std::size_t i = 0; i < batch; ++i)
            values.push_back(1000.0 * std::sin(double(values.size())));
        pyramid.update(values);
    }
    // Ends of nodes are read from the nodes, in the single precision drawing needs.
    for (std::size_t i : {0u, 15u, 16u, 255u, 256u, 4095u, 4096u, 65535u, 65536u, 74461u})
        EXPECT_EQ(float(pyramid.valueAt(values, i)), float(values[i])) << i;
    for (std::size_t i = 1; i < values.size(); i += 97)
        ASSERT_EQ(float(pyramid.valueAt(values, i)), float(values[i])) << i;

    const std::size_t before = values.allocatedBytes() + pyramid.allocatedBytes();
    values.releaseBefore(60000);
    pyramid.releaseBefore(60000);
    EXPECT_LT(values.allocatedBytes() + pyramid.allocatedBytes(), before);
    double lo = values[60000], hi = lo;
    for (std::size_t i = 60000; i < values.size(); ++i)
        lo = std::min(lo, values[i]), hi = std::max(hi, values[i]);
    const RangeSummary r = pyramid.query(values, 60000, values.size());
    EXPECT_EQ(std::pair(r.min(), r.max()), std::pair(lo, hi));
}

} // namespace
} // namespace trendax
