#include "chart/stripchartmodel.h"
#include "chartfixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace trendax {
namespace {

using test::makeArray;
using test::secondsArray;

std::vector<CurvePoint> pointsOf(const StripChartModel& m, int k) {
    std::vector<CurvePoint> out;
    for (std::size_t i = 0; i < m.pointCount(k); ++i)
        out.push_back(m.point(k, i));
    return out;
}

std::vector<double> timesOf(const StripChartModel& m, int k) {
    std::vector<double> out;
    for (const CurvePoint& p : pointsOf(m, k))
        out.push_back(p.time);
    return out;
}

// ---- Appending and clearing ----

TEST(StripChartModelAppend, SecondBatchFollowsTheFirstAndOthersAreUntouched) {
    StripChartModel m;
    m.addXYArray(3, makeArray({{10.0, 1.0}, {11.0, 2.0}}));
    m.addXYArray(3, makeArray({{12.0, 3.0}, {13.0, 4.0}, {14.0, 5.0}}));
    EXPECT_THAT(timesOf(m, 3), testing::ElementsAre(10.0, 11.0, 12.0, 13.0, 14.0));
    EXPECT_EQ(m.point(3, 4).value, 5.0);
    for (int k = 0; k < StripChartModel::variableCount; ++k) {
        if (k != 3) {
            EXPECT_EQ(m.pointCount(k), 0u) << "variable " << k;
        }
    }
}

TEST(StripChartModelAppend, BadIndexOrShapeThrowsAndChangesNothing) {
    StripChartModel m;
    m.addXYArray(0, makeArray({{1.0, 5.0}}));
    const auto revision = m.curveRevision();
    EXPECT_THROW(m.addXYArray(13, makeArray({{2.0, 6.0}})), ChartError);
    EXPECT_THROW(m.addXYArray(-1, makeArray({{2.0, 6.0}})), ChartError);
    XYArray threeRows(3, 2);
    EXPECT_THROW(m.addXYArray(0, threeRows), ChartError);
    EXPECT_EQ(m.pointCount(0), 1u);
    EXPECT_EQ(m.curveRevision(), revision);
    EXPECT_THROW(m.setCurrentVar(13), ChartError);
    EXPECT_THROW(m.setVarColor(13, 0xFF), ChartError);
    EXPECT_THROW(m.dataMin(-1), ChartError);
    EXPECT_EQ(m.currentVar(), 0);
}

TEST(StripChartModelAppend, ClearDataKeepsEverySetting) {
    StripChartModel m;
    m.setVarName(2, "Var3");
    m.setVarColor(2, 0x123456);
    m.setVarSymbol(2, 7);
    m.setVarVisible(2, false);
    m.setVarTrack(2, 4);
    m.setVarYMin(2, -5.0);
    m.setVarYMax(2, 50.0);
    m.setTrackCount(3);
    m.setTrackColor(1, 0xABCDEF);
    m.setTrackYMax(1, 77.0);
    m.setMaxBufferSize(1234);
    m.addXYArray(2, makeArray({{1.0, 1.0}, {2.0, 2.0}}));

    m.clearData();

    EXPECT_EQ(m.pointCount(2), 0u);
    const VariableSettings& v = m.variable(2);
    EXPECT_EQ(v.name, "Var3");
    EXPECT_EQ(v.color, 0x123456u);
    EXPECT_EQ(v.symbol, 7);
    EXPECT_FALSE(v.visible);
    EXPECT_EQ(v.track, 4);
    EXPECT_EQ(v.yMin, -5.0);
    EXPECT_EQ(v.yMax, 50.0);
    EXPECT_EQ(m.trackCount(), 3);
    EXPECT_EQ(m.track(1).color, 0xABCDEFu);
    EXPECT_EQ(m.track(1).yMax, 77.0);
    EXPECT_EQ(m.maxBufferSize(), 1234);
}

TEST(StripChartModelAppend, TracksBeyondTheShownOnesAreAccepted) {
    StripChartModel m;
    m.setTrackCount(2);
    m.setCurrentTrack(5);
    m.setTrackYMin(5, 3.0);
    m.setVarTrack(0, 5);
    EXPECT_EQ(m.currentTrack(), 5);
    EXPECT_EQ(m.track(5).yMin, 3.0);
    EXPECT_EQ(m.variable(0).track, 5);
    EXPECT_EQ(m.track(9).yMax, TrackSettings{}.yMax) << "unwritten tracks read the defaults";
    EXPECT_THROW(m.setCurrentTrack(-1), ChartError);
    EXPECT_THROW(m.setVarTrack(0, -2), ChartError);
    EXPECT_EQ(m.variable(0).track, 5);
    EXPECT_THROW(m.setTrackCount(0), ChartError);
    EXPECT_EQ(m.trackCount(), 2);
}

// ---- Time window and cursor ----

TEST(StripChartModelWindow, EmptyOrInvertedRangeKeepsThePreviousWindow) {
    StripChartModel m;
    m.showXRange(45000.0, 45002.0);
    m.showXRange(0.0, 0.0);
    EXPECT_EQ(m.xViewStart(), 45000.0);
    EXPECT_EQ(m.xViewEnd(), 45002.0);
    m.showXRange(1e11, 0.0);
    EXPECT_EQ(m.xViewStart(), 45000.0);
    EXPECT_EQ(m.xSpan(), 2.0);
    m.showXRange(45001.0, 45001.0 + 1.0 / 38400.0);
    EXPECT_EQ(m.xViewStart(), 45001.0);
    EXPECT_NEAR(m.xSpan(), 1.0 / 38400.0, 1e-11); // end - start at day 45001
}

TEST(StripChartModelWindow, SpanWriteKeepsTheLeftEdge) {
    StripChartModel m;
    m.showXRange(45000.0, 45030.0);
    m.setCursorX(45020.0);
    m.setXSpan(7.0);
    EXPECT_EQ(m.xViewStart(), 45000.0);
    EXPECT_EQ(m.xViewEnd(), 45007.0);
    EXPECT_EQ(m.cursorX(), 45020.0) << "a span change does not move the cursor";
    m.setXSpan(0.0);
    m.setXSpan(-1.0);
    EXPECT_EQ(m.xSpan(), 7.0);
}

TEST(StripChartModelWindow, CursorMoveDoesNotInvalidateTheCurves) {
    StripChartModel m;
    std::vector<StripChartModel::Change> changes;
    m.setChangeListener([&](StripChartModel::Change c) { changes.push_back(c); });
    const auto revision = m.curveRevision();
    m.setCursorX(45000.5);
    EXPECT_EQ(m.curveRevision(), revision);
    EXPECT_THAT(changes, testing::ElementsAre(StripChartModel::Change::Cursor));
    m.showXRange(1.0, 2.0);
    EXPECT_GT(m.curveRevision(), revision);
    EXPECT_EQ(changes.back(), StripChartModel::Change::Curves);
}

// ---- Statistics ----

TEST(StripChartModelStatistics, EmptyVariableAndEmptyWindowAnswerZero) {
    StripChartModel m;
    m.setCursorX(5.0);
    for (int k = 0; k < StripChartModel::variableCount; ++k) {
        EXPECT_EQ(m.cursorValue(k), 0.0);
        EXPECT_EQ(m.dataMin(k), 0.0);
        EXPECT_EQ(m.dataMax(k), 0.0);
        EXPECT_EQ(m.dataAvg(k), 0.0);
        EXPECT_EQ(m.viewMin(k), 0.0);
        EXPECT_EQ(m.viewMax(k), 0.0);
        EXPECT_EQ(m.viewAvg(k), 0.0);
    }
    m.addXYArray(0, makeArray({{10.0, -4.0}, {11.0, 8.0}}));
    m.showXRange(20.0, 30.0);
    EXPECT_EQ(m.viewMin(0), 0.0);
    EXPECT_EQ(m.viewMax(0), 0.0);
    EXPECT_EQ(m.viewAvg(0), 0.0);
    EXPECT_EQ(m.dataMin(0), -4.0);
    EXPECT_EQ(m.dataMax(0), 8.0);
    EXPECT_EQ(m.dataAvg(0), 2.0);
}

TEST(StripChartModelStatistics, PointsOnTheWindowEdgesCount) {
    StripChartModel m;
    m.addXYArray(1, makeArray({{1.0, 100.0}, {2.0, 3.0}, {3.0, 5.0}, {4.0, 7.0}, {5.0, -100.0}}));
    m.showXRange(2.0, 4.0);
    EXPECT_EQ(m.viewMin(1), 3.0);
    EXPECT_EQ(m.viewMax(1), 7.0);
    EXPECT_EQ(m.viewAvg(1), 5.0);
    m.showXRange(2.5, 3.5);
    EXPECT_EQ(m.viewAvg(1), 5.0);
}

TEST(StripChartModelStatistics, OutOfOrderPointsAllCount) {
    StripChartModel m;
    // The controller clock was set back by two hours in the middle of the day.
    m.addXYArray(0, makeArray({{10.0, 1.0}, {10.5, 2.0}, {10.2, 9.0}, {10.3, -3.0}, {10.6, 4.0}}));
    EXPECT_FALSE(m.isTimeOrdered(0));
    EXPECT_EQ(m.pointCount(0), 5u);
    EXPECT_EQ(m.dataMin(0), -3.0);
    EXPECT_EQ(m.dataMax(0), 9.0);
    EXPECT_DOUBLE_EQ(m.dataAvg(0), 13.0 / 5.0);
    m.showXRange(10.2, 10.5);
    EXPECT_EQ(m.viewMin(0), -3.0);
    EXPECT_EQ(m.viewMax(0), 9.0);
    EXPECT_DOUBLE_EQ(m.viewAvg(0), 8.0 / 3.0);
    m.setCursorX(10.31);
    EXPECT_EQ(m.cursorValue(0), -3.0);
}

// The nearest-point rule read the same whether a variable is in time order or not.
struct CursorCase {
    double cursor;
    double expected;
};

class StripChartModelCursor : public testing::TestWithParam<CursorCase> {};

TEST_P(StripChartModelCursor, NearestPointOrderedAndNot) {
    StripChartModel m;
    // Two points at 3.0: the one added last wins.
    m.addXYArray(0, makeArray({{1.0, 10.0}, {2.0, 20.0}, {3.0, 30.0}, {3.0, 31.0}, {5.0, 50.0}}));
    m.addXYArray(1, makeArray({{5.0, 50.0}, {3.0, 30.0}, {1.0, 10.0}, {3.0, 31.0}, {2.0, 20.0}}));
    ASSERT_TRUE(m.isTimeOrdered(0));
    ASSERT_FALSE(m.isTimeOrdered(1));
    m.setCursorX(GetParam().cursor);
    EXPECT_EQ(m.cursorValue(0), GetParam().expected);
    EXPECT_EQ(m.cursorValue(1), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Rows, StripChartModelCursor,
                         testing::Values(CursorCase{-100.0, 10.0}, CursorCase{1.0, 10.0},
                                         CursorCase{1.4, 10.0}, CursorCase{1.5, 20.0},
                                         CursorCase{2.9, 31.0}, CursorCase{3.0, 31.0},
                                         CursorCase{3.99, 31.0}, CursorCase{4.0, 50.0},
                                         CursorCase{1e6, 50.0}));

TEST(StripChartModelStatistics, HiddenAndUnshownVariablesAreAnswered) {
    StripChartModel m;
    m.setTrackCount(1);
    m.addXYArray(4, makeArray({{1.0, 2.0}, {2.0, 6.0}}));
    m.setVarVisible(4, false);
    m.setVarTrack(4, 3);
    m.showXRange(0.0, 3.0);
    EXPECT_EQ(m.dataMax(4), 6.0);
    EXPECT_EQ(m.viewAvg(4), 4.0);
}

TEST(StripChartModelStatistics, ViewStatisticsFollowTheWindowOverManyBlocks) {
    StripChartModel m;
    m.setMaxBufferSize(1'000'000);
    std::mt19937 rng(42);
    std::uniform_real_distribution<double> value(-50.0, 50.0);
    std::vector<double> ys(200'000);
    for (double& y : ys)
        y = value(rng);
    m.addXYArray(0, secondsArray(45000.0, 0, ys.size(), [&](std::size_t i) { return ys[i]; }));
    std::uniform_int_distribution<std::size_t> index(0, ys.size() - 1);
    for (int round = 0; round < 40; ++round) {
        std::size_t a = index(rng), b = index(rng);
        if (a > b)
            std::swap(a, b);
        m.showXRange(45000.0 + double(a) / 86400.0, 45000.0 + double(b) / 86400.0 + 1e-9);
        if (a == b)
            continue;
        const auto [lo, hi] = std::minmax_element(ys.begin() + a, ys.begin() + b + 1);
        double sum = 0.0;
        for (std::size_t i = a; i <= b; ++i)
            sum += ys[i];
        EXPECT_EQ(m.viewMin(0), *lo) << a << ".." << b;
        EXPECT_EQ(m.viewMax(0), *hi) << a << ".." << b;
        EXPECT_NEAR(m.viewAvg(0), sum / double(b - a + 1), 1e-9) << a << ".." << b;
    }
}

// ---- Buffer limit ----

TEST(StripChartModelBuffer, KeepsTheNewestPoints) {
    StripChartModel m;
    m.setMaxBufferSize(3);
    m.addXYArray(0, makeArray({{1.0, 1.0}, {2.0, 2.0}}));
    m.addXYArray(0, makeArray({{3.0, 3.0}, {4.0, 4.0}, {5.0, 5.0}}));
    EXPECT_THAT(timesOf(m, 0), testing::ElementsAre(3.0, 4.0, 5.0));
    EXPECT_EQ(m.dataMin(0), 3.0);
    EXPECT_EQ(m.dataAvg(0), 4.0);
}

TEST(StripChartModelBuffer, LoweringDropsOldPointsAndRaisingAddsNone) {
    StripChartModel m;
    m.setMaxBufferSize(100'000);
    m.addXYArray(0, secondsArray(45000.0, 0, 20'000, [](std::size_t i) { return double(i); }));
    m.setMaxBufferSize(5'000);
    EXPECT_EQ(m.pointCount(0), 5'000u);
    EXPECT_EQ(m.dataMin(0), 15'000.0);
    EXPECT_EQ(m.point(0, 0).value, 15'000.0);
    m.setMaxBufferSize(50'000);
    EXPECT_EQ(m.pointCount(0), 5'000u);
    m.addXYArray(0, secondsArray(45000.0, 20'000, 10, [](std::size_t i) { return double(i); }));
    EXPECT_EQ(m.pointCount(0), 5'010u);
    EXPECT_EQ(m.dataMax(0), 20'009.0);
    m.setMaxBufferSize(0);
    EXPECT_EQ(m.pointCount(0), 0u);
    EXPECT_EQ(m.dataMax(0), 0.0);
}

TEST(StripChartModelBuffer, TrimmedSharedColumnStaysReadable) {
    StripChartModel m;
    m.setMaxBufferSize(30'000);
    for (int day = 0; day < 3; ++day)
        for (int k = 0; k < 2; ++k)
            m.addXYArray(k, secondsArray(45000.0, std::size_t(day) * 20'000, 20'000,
                                         [k](std::size_t i) { return double(i) + k; }));
    for (int k = 0; k < 2; ++k) {
        EXPECT_EQ(m.pointCount(k), 30'000u);
        EXPECT_EQ(m.point(k, 0).value, 30'000.0 + k);
        EXPECT_EQ(m.point(k, 0).time, 45000.0 + 30'000.0 / 86400.0);
        EXPECT_EQ(m.dataMin(k), 30'000.0 + k);
    }
    EXPECT_TRUE(m.sharesTimeColumn(0, 1));
}

// ---- Shared time columns ----

TEST(StripChartModelSharing, SameTimesAreStoredOnce) {
    StripChartModel shared;
    StripChartModel separate; // the same values, each variable's clock a little off
    shared.setMaxBufferSize(1'000'000);
    separate.setMaxBufferSize(1'000'000);
    for (int day = 0; day < 3; ++day) {
        for (int k = 0; k < 13; ++k) {
            auto value = [k](std::size_t i) { return double(i % 97) * k; };
            shared.addXYArray(k, secondsArray(45000.0 + day, 0, 50'000, value));
            separate.addXYArray(k, secondsArray(45000.0 + day + k * 1e-7, 0, 50'000, value));
        }
    }
    for (int k = 1; k < 13; ++k) {
        EXPECT_TRUE(shared.sharesTimeColumn(0, k)) << k;
        EXPECT_FALSE(separate.sharesTimeColumn(0, k)) << k;
    }
    EXPECT_EQ(shared.pointCount(12), 150'000u);
    EXPECT_EQ(shared.point(12, 149'999).time, shared.point(0, 149'999).time);
    EXPECT_EQ(shared.point(12, 149'999).value, separate.point(12, 149'999).value);
    // Thirteen value columns and one time column instead of thirteen of each.
    EXPECT_LT(double(shared.allocatedBytes()), 0.75 * double(separate.allocatedBytes()));
    EXPECT_LE(double(shared.allocatedBytes()) / double(shared.storedPoints()), 12.0);
}

TEST(StripChartModelSharing, DivergingTimesGetTheirOwnColumn) {
    StripChartModel m;
    m.addXYArray(0, makeArray({{1.0, 1.0}, {2.0, 2.0}}));
    m.addXYArray(1, makeArray({{1.0, 10.0}, {2.0, 20.0}}));
    EXPECT_TRUE(m.sharesTimeColumn(0, 1));
    m.addXYArray(0, makeArray({{3.0, 3.0}}));
    m.addXYArray(1, makeArray({{4.0, 40.0}, {5.0, 50.0}}));
    EXPECT_FALSE(m.sharesTimeColumn(0, 1));
    EXPECT_THAT(timesOf(m, 0), testing::ElementsAre(1.0, 2.0, 3.0));
    EXPECT_THAT(timesOf(m, 1), testing::ElementsAre(1.0, 2.0, 4.0, 5.0));
    m.addXYArray(2, makeArray({{7.0, 1.0}}));
    EXPECT_FALSE(m.sharesTimeColumn(2, 0));
    EXPECT_FALSE(m.sharesTimeColumn(2, 1));
}

TEST(StripChartModelSharing, ClockSetBackInASharedColumnIsSeenByAll) {
    StripChartModel m;
    const XYArray times = makeArray({{10.0, 0.0}, {9.0, 1.0}, {11.0, 2.0}});
    m.addXYArray(0, times);
    m.addXYArray(1, times);
    EXPECT_TRUE(m.sharesTimeColumn(0, 1));
    EXPECT_FALSE(m.isTimeOrdered(1));
    m.showXRange(9.0, 10.0);
    EXPECT_EQ(m.viewAvg(1), 0.5);
}

// ---- Curve reduction ----

TEST(StripChartModelCurve, FewPointsAreDrawnAsTheyAreWithOneBeyondEachEdge) {
    StripChartModel m;
    m.addXYArray(0, makeArray({{1.0, 1.0}, {2.0, 2.0}, {3.0, 3.0}, {4.0, 4.0}, {5.0, 5.0}}));
    std::vector<CurvePoint> out;
    m.curvePoints(0, TimeMapping{2.5, 3.5, 0.0, 100.0}, out);
    std::vector<double> times;
    for (const CurvePoint& p : out)
        times.push_back(p.time);
    EXPECT_THAT(times, testing::ElementsAre(2.0, 3.0, 4.0));
}

TEST(StripChartModelCurve, ManyPointsReduceToFourPerColumnAndKeepSpikes) {
    StripChartModel m;
    m.setMaxBufferSize(1'000'000);
    const std::size_t n = 500'000;
    m.addXYArray(0, secondsArray(45000.0, 0, n, [](std::size_t i) {
                     return i == 123'457 ? 1000.0
                                         : (i == 400'001 ? -1000.0 : std::sin(double(i) / 5000.0));
                 }));
    const TimeMapping mapping{45000.0, 45000.0 + double(n) / 86400.0, 50.0, 400.0};
    std::vector<CurvePoint> out;
    m.curvePoints(0, mapping, out);
    EXPECT_LE(out.size(), 4u * 400u + 2u);
    const auto [lo, hi] =
        std::minmax_element(out.begin(), out.end(), [](const CurvePoint& a, const CurvePoint& b) {
            return a.value < b.value;
        });
    EXPECT_EQ(hi->value, 1000.0);
    EXPECT_EQ(lo->value, -1000.0);
    // The spike is drawn within a pixel of its own time.
    EXPECT_NEAR(mapping.toX(hi->time), mapping.toX(45000.0 + 123'457.0 / 86400.0), 1.0);
    EXPECT_TRUE(
        std::is_sorted(out.begin(), out.end(),
                       [](const CurvePoint& a, const CurvePoint& b) { return a.time < b.time; }));
}

TEST(StripChartModelCurve, OutOfOrderPointsAreAllDrawn) {
    StripChartModel m;
    m.addXYArray(0, makeArray({{1.0, 1.0}, {3.0, 3.0}, {2.0, 99.0}, {4.0, 4.0}}));
    std::vector<CurvePoint> out;
    m.curvePoints(0, TimeMapping{0.0, 5.0, 0.0, 500.0}, out);
    std::vector<double> values;
    for (const CurvePoint& p : out)
        values.push_back(p.value);
    EXPECT_THAT(values, testing::ElementsAre(1.0, 3.0, 99.0, 4.0));
}

} // namespace
} // namespace trendax
