#include "chart/stripchartmodel.h"
#include "chartfixtures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <tuple>

namespace trendax {
namespace {

using test::makeArray;
using test::secondsArray;
using Points = std::vector<std::pair<double, double>>; // (time, value)

Points pairsOf(const std::vector<CurvePoint>& ps) {
    Points out;
    for (const CurvePoint& p : ps)
        out.emplace_back(p.time, p.value);
    return out;
}

Points pointsOf(const StripChartModel& m, int k) {
    std::vector<CurvePoint> ps;
    for (std::size_t i = 0; i < m.pointCount(k); ++i)
        ps.push_back(m.point(k, i));
    return pairsOf(ps);
}

Points curveOf(const StripChartModel& m, const TimeMapping& mapping) {
    std::vector<CurvePoint> out;
    m.curvePoints(0, mapping, out);
    return pairsOf(out);
}

// Cursor value, data min / max / avg, view min / max / avg.
using Stats = std::array<double, 7>;

Stats statsOf(const StripChartModel& m, int k) {
    return {m.cursorValue(k), m.dataMin(k), m.dataMax(k), m.dataAvg(k),
            m.viewMin(k),     m.viewMax(k), m.viewAvg(k)};
}

// ---- Appending, clearing, the window (appends: see the sharing tests) ----

TEST(StripChartModel, BadIndexOrShapeThrowsAndChangesNothing) {
    StripChartModel m;
    m.setTrackCount(2);
    m.addXYArray(0, makeArray({{1.0, 5.0}}));
    const auto revision = m.curveRevision();
    EXPECT_THROW(m.addXYArray(13, makeArray({{2.0, 6.0}})), ChartError);
    EXPECT_THROW(m.addXYArray(-1, makeArray({{2.0, 6.0}})), ChartError);
    EXPECT_THROW(m.addXYArray(0, XYArray(3, 2)), ChartError);
    EXPECT_EQ(m.pointCount(0), 1u);
    EXPECT_EQ(m.curveRevision(), revision);
    EXPECT_THROW(m.setCurrentVar(13), ChartError);
    EXPECT_THROW(m.setVarColor(13, 0xFF), ChartError);
    EXPECT_THROW(m.dataMin(-1), ChartError);
    EXPECT_THROW(m.setCurrentTrack(-1), ChartError);
    EXPECT_THROW(m.setVarTrack(0, -2), ChartError);
    EXPECT_THROW(m.setTrackCount(0), ChartError);
    EXPECT_EQ(std::tuple(m.currentVar(), m.currentTrack(), m.variable(0).track, m.trackCount()),
              std::tuple(0, 0, 0, 2));
}

TEST(StripChartModel, ClearDataKeepsEverySetting) {
    StripChartModel m;
    m.setVarName(2, "Var3");
    m.setVarColor(2, 0x123456);
    m.setVarSymbol(2, 7);
    m.setVarVisible(2, false);
    m.setVarTrack(2, 4);
    m.setVarYMax(2, 50.0);
    m.setTrackCount(3);
    m.setTrackYMax(1, 77.0);
    m.setMaxBufferSize(1234);
    m.addXYArray(2, makeArray({{1.0, 1.0}, {2.0, 2.0}}));
    m.clearData();
    EXPECT_EQ(m.pointCount(2), 0u);
    const VariableSettings& v = m.variable(2);
    EXPECT_EQ(v.name, "Var3");
    EXPECT_EQ(std::tuple(v.color, v.symbol, v.visible, v.track, v.yMax),
              std::tuple(0x123456u, 7, false, 4, 50.0));
    EXPECT_EQ(std::tuple(m.trackCount(), m.track(1).yMax, m.maxBufferSize()),
              std::tuple(3, 77.0, 1234));
}

TEST(StripChartModel, WindowIgnoresRangesAndSpansItCannotShow) {
    StripChartModel m;
    m.showXRange(45000.0, 45030.0);
    m.setCursorX(45020.0);
    m.showXRange(0.0, 0.0);  // zoom-all before any load
    m.showXRange(1e11, 0.0); // after a load without rows
    m.setXSpan(0.0);
    m.setXSpan(-1.0);
    EXPECT_EQ(std::pair(m.xViewStart(), m.xViewEnd()), std::pair(45000.0, 45030.0));
    m.setXSpan(7.0); // keeps the left edge and the cursor
    EXPECT_EQ(std::pair(m.xViewStart(), m.xViewEnd()), std::pair(45000.0, 45007.0));
    EXPECT_EQ(m.cursorX(), 45020.0);
}

TEST(StripChartModel, CursorMoveDoesNotInvalidateTheCurves) {
    StripChartModel m;
    std::vector<StripChartModel::Change> changes;
    m.setChangeListener([&](StripChartModel::Change c) { changes.push_back(c); });
    const auto revision = m.curveRevision();
    m.setCursorX(45000.5);
    EXPECT_EQ(m.curveRevision(), revision);
    EXPECT_EQ(changes, std::vector{StripChartModel::Change::Cursor});
    m.showXRange(1.0, 2.0);
    EXPECT_GT(m.curveRevision(), revision);
    EXPECT_EQ(changes.back(), StripChartModel::Change::Curves);
}

// ---- Statistics ----

TEST(StripChartModelStatistics, EmptyVariableAndEmptyWindowAnswerZero) {
    StripChartModel m;
    m.setCursorX(5.0);
    EXPECT_EQ(statsOf(m, 0), Stats{});
    m.addXYArray(0, makeArray({{10.0, -4.0}, {11.0, 8.0}}));
    m.showXRange(20.0, 30.0);
    EXPECT_EQ(statsOf(m, 0), (Stats{-4.0, -4.0, 8.0, 2.0, 0.0, 0.0, 0.0}));
}

TEST(StripChartModelStatistics, OutOfOrderHiddenAndUnshownPointsAllCount) {
    StripChartModel m;
    m.setTrackCount(1);
    // The controller clock was set back by two hours in the middle of the day.
    m.addXYArray(4, makeArray({{10.0, 1.0}, {10.5, 2.0}, {10.2, 9.0}, {10.3, -3.0}, {10.6, 4.0}}));
    m.setVarVisible(4, false);
    m.setVarTrack(4, 3);
    EXPECT_FALSE(m.isTimeOrdered(4));
    m.showXRange(10.2, 10.5);
    m.setCursorX(10.31);
    EXPECT_EQ(statsOf(m, 4), (Stats{-3.0, -3.0, 9.0, 13.0 / 5.0, -3.0, 9.0, 8.0 / 3.0}));
}

TEST(StripChartModelStatistics, CursorValueIsTheNearestPointOrderedOrNot) {
    StripChartModel m;
    // Two points at 3.0: the one added last wins.
    m.addXYArray(0, makeArray({{1.0, 10.0}, {2.0, 20.0}, {3.0, 30.0}, {3.0, 31.0}, {5.0, 50.0}}));
    m.addXYArray(1, makeArray({{5.0, 50.0}, {3.0, 30.0}, {1.0, 10.0}, {3.0, 31.0}, {2.0, 20.0}}));
    ASSERT_TRUE(m.isTimeOrdered(0));
    ASSERT_FALSE(m.isTimeOrdered(1));
    const std::pair<double, double> rows[] = {{-100.0, 10.0}, {1.0, 10.0}, {1.4, 10.0},
                                              {1.5, 20.0},    {2.9, 31.0}, {3.0, 31.0},
                                              {3.99, 31.0},   {4.0, 50.0}, {1e6, 50.0}};
    for (const auto& [cursor, expected] : rows) {
        SCOPED_TRACE(testing::Message() << "cursor at " << cursor);
        m.setCursorX(cursor);
        EXPECT_EQ(m.cursorValue(0), expected);
        EXPECT_EQ(m.cursorValue(1), expected);
    }
}

TEST(StripChartModelStatistics, ViewStatisticsMatchAPlainScanOverManyBlocks) {
    StripChartModel m;
    m.setMaxBufferSize(1'000'000);
    std::mt19937 rng(42);
    std::normal_distribution<double> value(0.0, 10.0);
    std::vector<double> ys;
    // Grown in uneven batches, as days of different lengths arrive.
    for (std::size_t batch : {1u, 63u, 64u, 4000u, 1u, 70000u, 333u, 200000u}) {
        const std::size_t first = ys.size();
        for (std::size_t i = 0; i < batch; ++i)
            ys.push_back(value(rng));
        m.addXYArray(0, secondsArray(45000.0, first, batch, [&](std::size_t i) { return ys[i]; }));
    }
    std::uniform_int_distribution<std::size_t> index(0, ys.size() - 1);
    for (int round = 0; round < 200; ++round) {
        std::size_t a = index(rng), b = index(rng);
        if (a > b)
            std::swap(a, b);
        // Windows start on a point and end on one or between two: points on the edges count.
        const double gap = round % 2 ? 0.0 : 0.4;
        m.showXRange(45000.0 + double(a) / 86400.0, 45000.0 + (double(b) + gap) / 86400.0);
        if (a == b)
            continue;
        SCOPED_TRACE(testing::Message() << "points " << a << ".." << b);
        const auto [lo, hi] = std::minmax_element(ys.begin() + a, ys.begin() + b + 1);
        double sum = 0.0;
        for (std::size_t i = a; i <= b; ++i)
            sum += ys[i];
        EXPECT_EQ(std::pair(m.viewMin(0), m.viewMax(0)), std::pair(*lo, *hi));
        EXPECT_NEAR(m.viewAvg(0), sum / double(b - a + 1), 1e-9);
    }
}

// ---- Buffer limit ----

TEST(StripChartModelBuffer, LoweringOrAppendingDropsTheOldestAndRaisingAddsNone) {
    StripChartModel m;
    m.setMaxBufferSize(100'000);
    const auto count = [](std::size_t i) { return double(i); };
    m.addXYArray(0, secondsArray(45000.0, 0, 20'000, count));
    m.setMaxBufferSize(5'000);
    EXPECT_EQ(m.pointCount(0), 5'000u);
    EXPECT_EQ(m.dataMin(0), 15'000.0);
    m.addXYArray(0, secondsArray(45000.0, 20'000, 10, count));
    EXPECT_EQ(m.pointCount(0), 5'000u);
    EXPECT_EQ(m.point(0, 0).value, 15'010.0);
    EXPECT_EQ(std::pair(m.dataMin(0), m.dataMax(0)), std::pair(15'010.0, 20'009.0));
    m.setMaxBufferSize(50'000);
    EXPECT_EQ(m.pointCount(0), 5'000u);
    m.setMaxBufferSize(0);
    EXPECT_EQ(std::pair(m.pointCount(0), m.dataMax(0)), std::pair(std::size_t(0), 0.0));
}

TEST(StripChartModelBuffer, TrimmedSharedColumnStaysReadable) {
    StripChartModel m;
    m.setMaxBufferSize(30'000);
    for (int day = 0; day < 3; ++day)
        for (int k = 0; k < 2; ++k)
            m.addXYArray(k, secondsArray(45000.0, std::size_t(day) * 20'000, 20'000,
                                         [k](std::size_t i) { return double(i) + k; }));
    EXPECT_TRUE(m.sharesTimeColumn(0, 1));
    for (int k = 0; k < 2; ++k) {
        SCOPED_TRACE(k);
        EXPECT_EQ(m.pointCount(k), 30'000u);
        EXPECT_EQ(m.point(k, 0).time, 45000.0 + 30'000.0 / 86400.0);
        EXPECT_EQ(m.point(k, 0).value, 30'000.0 + k);
        EXPECT_EQ(std::pair(m.dataMin(k), m.dataAvg(k)), std::pair(30'000.0 + k, 44'999.5 + k));
    }
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
    m.addXYArray(2, makeArray({{7.0, 1.0}}));
    EXPECT_EQ(m.pointCount(3), 0u);
    EXPECT_FALSE(m.sharesTimeColumn(0, 1));
    EXPECT_FALSE(m.sharesTimeColumn(2, 0));
    EXPECT_EQ(pointsOf(m, 0), (Points{{1.0, 1.0}, {2.0, 2.0}, {3.0, 3.0}}));
    EXPECT_EQ(pointsOf(m, 1), (Points{{1.0, 10.0}, {2.0, 20.0}, {4.0, 40.0}, {5.0, 50.0}}));
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
    EXPECT_EQ(curveOf(m, {2.5, 3.5, 0.0, 100.0}), (Points{{2.0, 2.0}, {3.0, 3.0}, {4.0, 4.0}}));
}

TEST(StripChartModelCurve, OutOfOrderPointsAreAllDrawn) {
    StripChartModel m;
    m.addXYArray(0, makeArray({{1.0, 1.0}, {3.0, 3.0}, {2.0, 99.0}, {4.0, 4.0}}));
    EXPECT_EQ(curveOf(m, {0.0, 5.0, 0.0, 500.0}),
              (Points{{1.0, 1.0}, {3.0, 3.0}, {2.0, 99.0}, {4.0, 4.0}}));
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
    const Points out = curveOf(m, mapping);
    EXPECT_LE(out.size(), 4u * 400u + 2u);
    EXPECT_TRUE(std::is_sorted(out.begin(), out.end(),
                               [](const auto& a, const auto& b) { return a.first < b.first; }));
    const auto [lo, hi] = std::minmax_element(
        out.begin(), out.end(), [](const auto& a, const auto& b) { return a.second < b.second; });
    EXPECT_EQ(std::pair(lo->second, hi->second), std::pair(-1000.0, 1000.0));
    // The spike is drawn within a pixel of its own time.
    EXPECT_NEAR(mapping.toX(hi->first), mapping.toX(45000.0 + 123'457.0 / 86400.0), 1.0);
}

} // namespace
} // namespace trendax
