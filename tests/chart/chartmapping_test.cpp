#include "chart/chartmapping.h"
#include "chart/summarypyramid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace trendax {
namespace {

// ---- Time to pixel ----

struct TimeRow {
    TimeMapping mapping;
    double time;
    double x;
};

class TimeMappingRows : public testing::TestWithParam<TimeRow> {};

TEST_P(TimeMappingRows, MapsBothWays) {
    const TimeRow& row = GetParam();
    // Date-times near day 45000 carry about a microsecond of resolution.
    EXPECT_NEAR(row.mapping.toX(row.time), row.x, 1e-3);
    EXPECT_NEAR(row.mapping.toTime(row.x), row.time, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, TimeMappingRows,
    testing::Values(
        // A day over 1000 pixels starting at 60.
        TimeRow{{45000.0, 45001.0, 60.0, 1000.0}, 45000.0, 60.0},
        TimeRow{{45000.0, 45001.0, 60.0, 1000.0}, 45001.0, 1060.0},
        TimeRow{{45000.0, 45001.0, 60.0, 1000.0}, 45000.25, 310.0},
        // Outside the window maps outside the plot.
        TimeRow{{45000.0, 45001.0, 60.0, 1000.0}, 44999.0, -940.0},
        // The narrowest window the zoom allows: 2.25 s over 1920 pixels.
        TimeRow{{45000.0, 45000.0 + 1.0 / 38400.0, 0.0, 1920.0}, 45000.0 + 0.5 / 38400.0, 960.0},
        // A month.
        TimeRow{{45000.0, 45030.0, 0.0, 1800.0}, 45015.0, 900.0}));

TEST(TimeMapping, DegenerateWindowOrWidthDoesNotDivideByZero) {
    const TimeMapping emptyWindow{5.0, 5.0, 10.0, 100.0};
    EXPECT_EQ(emptyWindow.toX(7.0), 10.0);
    const TimeMapping noWidth{0.0, 1.0, 10.0, 0.0};
    EXPECT_EQ(noWidth.toX(0.5), 10.0);
    EXPECT_EQ(noWidth.toTime(99.0), 0.0);
}

// ---- Value to pixel ----

struct ValueRow {
    ValueMapping mapping;
    double value;
    double y;
};

class ValueMappingRows : public testing::TestWithParam<ValueRow> {};

TEST_P(ValueMappingRows, MapsOntoTheBand) {
    EXPECT_DOUBLE_EQ(GetParam().mapping.toY(GetParam().value), GetParam().y);
}

INSTANTIATE_TEST_SUITE_P(Rows, ValueMappingRows,
                         testing::Values(ValueRow{{0.0, 100.0, 20.0, 200.0}, 0.0, 220.0},
                                         ValueRow{{0.0, 100.0, 20.0, 200.0}, 100.0, 20.0},
                                         ValueRow{{0.0, 100.0, 20.0, 200.0}, 25.0, 170.0},
                                         ValueRow{{-10.0, 10.0, 0.0, 100.0}, 0.0, 50.0},
                                         // A flat channel sits on the middle line.
                                         ValueRow{{5.0, 5.0, 0.0, 100.0}, 5.0, 50.0},
                                         ValueRow{{5.0, 1.0, 0.0, 100.0}, 3.0, 50.0},
                                         // Wild values are clamped, not overflowed.
                                         ValueRow{{0.0, 1.0, 0.0, 100.0}, 1e300, -1.0e6},
                                         ValueRow{{0.0, 1.0, 0.0, 100.0}, -HUGE_VAL, 100.0 + 1.0e6},
                                         ValueRow{{0.0, 1.0, 0.0, 100.0}, NAN, -1.0e6}));

// ---- Pixels for painting ----

TEST(SafePixel, FarNonFiniteAndNotANumberStayInsideTheLimit) {
    struct Row {
        const char* name;
        double x;
        double safe;
        int index;
    };
    const Row rows[] = {
        {"on the plot", 12.5, 12.5, 13},
        {"a cursor 5e10 days out through a day's window", 5e10 * 1000.0, 1.0e6, 1'000'000},
        {"far left", -3e14, -1.0e6, -1'000'000},
        {"infinite", HUGE_VAL, 1.0e6, 1'000'000},
        {"minus infinite", -HUGE_VAL, -1.0e6, -1'000'000},
        {"not a number", NAN, -1.0e6, -1'000'000},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(safePixel(row.x), row.safe);
        EXPECT_EQ(pixelIndex(row.x), row.index);
    }
}

// ---- Summary pyramid ----

TEST(SummaryPyramid, RangeQueriesMatchAPlainScan) {
    std::mt19937 rng(7);
    std::normal_distribution<double> value(0.0, 10.0);
    ValueColumn values;
    SummaryPyramid pyramid;
    std::vector<double> plain;
    // Grown in uneven batches, as days of different lengths arrive.
    for (std::size_t batch : {1u, 63u, 64u, 4000u, 1u, 70000u, 333u, 200000u}) {
        for (std::size_t i = 0; i < batch; ++i) {
            plain.push_back(value(rng));
            values.push_back(plain.back());
        }
        pyramid.update(values);
    }
    // Ends of nodes are read from the nodes, in the single precision drawing needs.
    for (std::size_t i : {0u, 15u, 16u, 255u, 256u, 4095u, 4096u, 65535u, 65536u})
        ASSERT_EQ(float(pyramid.valueAt(values, i)), float(plain[i])) << i;
    std::uniform_int_distribution<std::size_t> index(0, plain.size());
    for (int round = 0; round < 300; ++round) {
        std::size_t a = index(rng), b = index(rng);
        if (a > b)
            std::swap(a, b);
        ASSERT_EQ(float(pyramid.valueAt(values, a % plain.size())), float(plain[a % plain.size()]));
        const RangeSummary r = pyramid.query(values, a, b);
        ASSERT_EQ(r.count, b - a);
        if (a == b) {
            EXPECT_EQ(r.min(), 0.0);
            continue;
        }
        double sum = 0.0;
        for (std::size_t i = a; i < b; ++i)
            sum += plain[i];
        EXPECT_EQ(r.min(), *std::min_element(plain.begin() + a, plain.begin() + b));
        EXPECT_EQ(r.max(), *std::max_element(plain.begin() + a, plain.begin() + b));
        EXPECT_NEAR(r.sum, sum, 1e-6);
    }
}

TEST(SummaryPyramid, ReleasedFrontLeavesTheRestAnswerable) {
    ValueColumn values;
    SummaryPyramid pyramid;
    for (int i = 0; i < 100000; ++i)
        values.push_back(double(i));
    pyramid.update(values);
    const std::size_t before = values.allocatedBytes() + pyramid.allocatedBytes();
    values.releaseBefore(60000);
    pyramid.releaseBefore(60000);
    EXPECT_LT(values.allocatedBytes() + pyramid.allocatedBytes(), before);
    const RangeSummary r = pyramid.query(values, 60000, 100000);
    EXPECT_EQ(r.min(), 60000.0);
    EXPECT_EQ(r.max(), 99999.0);
}

} // namespace
} // namespace trendax
