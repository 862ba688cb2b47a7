#include "chart/blockpool.h"
#include "chart/csvexport.h"
#include "chart/imbalance.h"
#include "chart/stripchartmodel.h"
#include "chartfixtures.h"

#include <QBuffer>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <numeric>
#include <random>
#include <set>
#include <tuple>

namespace trendax {
namespace {

using test::makeArray;
using test::secondsArray;
using Points = std::vector<std::pair<double, double>>; // (time, value)

// The points drawn for variable k through the mapping.
Points curveOf(const StripChartModel& m, const TimeMapping& mapping, int k = 0) {
    std::vector<CurvePoint> ps;
    m.curvePoints(k, mapping, ps);
    Points out;
    for (const CurvePoint& p : ps)
        out.emplace_back(p.time, p.value);
    return out;
}

// Cursor value, data min / max / avg, view min / max / avg.
using Stats = std::array<double, 7>;

Stats statsOf(const StripChartModel& m, int k) {
    return {m.cursorValue(k), m.dataMin(k), m.dataMax(k), m.dataAvg(k),
            m.viewMin(k),     m.viewMax(k), m.viewAvg(k)};
}

TEST(StripChartModel, BadIndexOrShapeThrowsAndChangesNothing) {
    StripChartModel m;
    m.setTrackCount(2);
    m.addXYArray(0, makeArray({{1.0, 5.0}}));
    const auto revision = m.curveRevision();
    EXPECT_THROW(m.addXYArray(13, makeArray({{2.0, 6.0}})), ChartError);
    EXPECT_THROW(m.addXYArray(-1, makeArray({{2.0, 6.0}})), ChartError);
    EXPECT_THROW(m.addXYArray(0, XYArray(3, 2)), ChartError);
    EXPECT_THROW(m.setCurrentVar(13), ChartError);
    EXPECT_THROW(m.setTrackCount(0), ChartError);
    EXPECT_EQ(std::tuple(m.pointCount(0), m.curveRevision(), m.currentVar(), m.trackCount()),
              std::tuple(std::size_t(1), revision, 0, 2));
}

TEST(StripChartModel, WindowIgnoresRangesAndSpansItCannotShowAndACursorMoveKeepsTheCurves) {
    StripChartModel m;
    m.showXRange(45000.0, 45030.0);
    const auto revision = m.curveRevision();
    m.setCursorX(45020.0);
    EXPECT_EQ(m.curveRevision(), revision);
    m.showXRange(0.0, 0.0);  // zoom-all before any load
    m.showXRange(1e11, 0.0); // after a load without rows
    m.setXSpan(0.0);
    m.setXSpan(-1.0);
    EXPECT_EQ(std::pair(m.xViewStart(), m.xViewEnd()), std::pair(45000.0, 45030.0));
    m.setXSpan(7.0); // keeps the left edge and the cursor
    EXPECT_EQ(std::pair(m.xViewStart(), m.xViewEnd()), std::pair(45000.0, 45007.0));
    EXPECT_EQ(m.cursorX(), 45020.0);
    EXPECT_GT(m.curveRevision(), revision);
}

TEST(StripChartModelStatistics, EmptyWindowAnswersZeroAndOutOfOrderHiddenPointsAllCount) {
    StripChartModel m;
    m.setCursorX(5.0);
    EXPECT_EQ(statsOf(m, 0), Stats{});
    m.addXYArray(0, makeArray({{10.0, -4.0}, {11.0, 8.0}}));
    m.showXRange(20.0, 30.0);
    EXPECT_EQ(statsOf(m, 0), (Stats{-4.0, -4.0, 8.0, 2.0, 0.0, 0.0, 0.0}));
    // The controller clock was set back in the middle of the day.
    m.setTrackCount(1);
    m.addXYArray(4, makeArray({{10.0, 1.0}, {10.5, 2.0}, {10.2, 9.0}, {10.3, -3.0}, {10.6, 4.0}}));
    m.setVarVisible(4, false);
    m.setVarTrack(4, 3);
    EXPECT_FALSE(m.isTimeOrdered(4));
    m.showXRange(10.2, 10.5);
    m.setCursorX(10.31);
    EXPECT_EQ(statsOf(m, 4), (Stats{-3.0, -3.0, 9.0, 13.0 / 5.0, -3.0, 9.0, 8.0 / 3.0}));
}

// The reference cursor reads values at any time by the same rule.
TEST(StripChartModelStatistics, CursorValueIsTheNearestPointOrderedOrNot) {
    StripChartModel m;
    // Two points at 3.0: the one added last wins; at equal distance the later time.
    m.addXYArray(0, makeArray({{1.0, 10.0}, {2.0, 20.0}, {3.0, 30.0}, {3.0, 31.0}, {5.0, 50.0}}));
    m.addXYArray(1, makeArray({{5.0, 50.0}, {3.0, 30.0}, {1.0, 10.0}, {3.0, 31.0}, {2.0, 20.0}}));
    ASSERT_FALSE(m.isTimeOrdered(1));
    const std::pair<double, double> rows[] = {{-100.0, 10.0}, {1.4, 10.0},  {1.5, 20.0},
                                              {2.9, 31.0},    {3.99, 31.0}, {4.0, 50.0}};
    for (const auto& [cursor, expected] : rows) {
        SCOPED_TRACE(testing::Message() << "cursor at " << cursor);
        m.setCursorX(cursor);
        EXPECT_EQ(std::tuple(m.cursorValue(0), m.cursorValue(1), m.valueAt(0, cursor),
                             m.valueAt(1, cursor)),
                  std::tuple(expected, expected, expected, expected));
    }
}

// The window's statistics against a plain scan of points a to b. Windows start on a point and end
// on one, or `gap` of a second short of the next: points on the edges count.
void expectWindowStatistics(StripChartModel& m, const std::vector<double>& ys, std::size_t a,
                            std::size_t b, double gap, double avgTolerance) {
    SCOPED_TRACE(testing::Message() << "points " << a << ".." << b);
    m.showXRange(45000.0 + double(a) / 86400.0, 45000.0 + (double(b) + gap) / 86400.0);
    const auto [lo, hi] = std::minmax_element(ys.begin() + a, ys.begin() + b + 1);
    const double sum = std::accumulate(ys.begin() + a, ys.begin() + b + 1, 0.0);
    EXPECT_EQ(std::pair(m.viewMin(0), m.viewMax(0)), std::pair(*lo, *hi));
    EXPECT_NEAR(m.viewAvg(0), sum / double(b - a + 1), avgTolerance);
}

TEST(StripChartModelStatistics, ViewStatisticsMatchAPlainScanOverManyBlocks) {
    StripChartModel m;
    m.setMaxBufferSize(1'000'000);
    std::mt19937 rng(42);
    std::normal_distribution<double> value(0.0, 10.0);
    std::vector<double> ys;
    // Grown in uneven batches, as days of different lengths arrive, in hundredths that pack;
    // every other batch with the times in a column of their own, as a data log hands them over.
    bool shared = false;
    for (std::size_t batch : {1u, 63u, 64u, 4000u, 1u, 70000u, 333u, 200000u, 5u, 100u}) {
        const std::size_t first = ys.size();
        for (std::size_t i = 0; i < batch; ++i)
            ys.push_back(std::round(value(rng) * 100.0) / 100.0);
        m.addXYArray(0, secondsArray(
                            45000.0, first, batch, [&](std::size_t i) { return ys[i]; }, shared));
        shared = !shared;
    }
    std::uniform_int_distribution<std::size_t> index(0, ys.size() - 1);
    for (int round = 0; round < 200; ++round) {
        const auto [a, b] = std::minmax({index(rng), index(rng)});
        if (a < b)
            expectWindowStatistics(m, ys, a, b, round % 2 ? 0.0 : 0.4, 1e-9);
    }
}

TEST(StripChartModelStatistics, PackedReadingsGiveTheStatisticsOfTheOriginalDoubles) {
    // A pump's readings in quarter steps: exact in binary, so a plain sum in any order is exact
    // and must equal the summaries' bit for bit. A spike of 2,452.75 makes its segment widen to
    // 32 bits part-way through, an eighth a later segment fall back to doubles.
    std::mt19937 rng(3);
    std::uniform_int_distribution<int> step(-8, 8);
    std::vector<double> ys;
    double level = 54.25;
    for (std::size_t i = 0; i < 100'000; ++i) {
        level = std::clamp(level + step(rng) * 0.25, 20.0, 300.0);
        ys.push_back(i == 10'000 ? 2452.75 : i == 70'000 ? 0.125 : level);
    }
    StripChartModel m;
    m.setMaxBufferSize(1'000'000);
    m.addXYArray(0, secondsArray(45000.0, 0, 60'000, [&](std::size_t i) { return ys[i]; }));
    m.addXYArray(0, secondsArray(45000.0, 60'000, 40'000, [&](std::size_t i) { return ys[i]; }));
    for (const auto& [a, b] : {std::pair<std::size_t, std::size_t>{0, ys.size() - 1},
                               {9'000, 11'000},
                               {100, 99'000},
                               {69'999, 70'100}}) {
        expectWindowStatistics(m, ys, a, b, 0.0, 0.0);
    }
    EXPECT_EQ(
        std::tuple(m.dataMin(0), m.dataMax(0), m.dataAvg(0)),
        std::tuple(0.125, 2452.75, std::accumulate(ys.begin(), ys.end(), 0.0) / double(ys.size())));
}

TEST(StripChartModelBuffer, LoweringOrAppendingDropsTheOldestOfSharedColumnsAndRaisingAddsNone) {
    StripChartModel m;
    m.setMaxBufferSize(100'000);
    const auto add = [&m](std::size_t first, std::size_t n) {
        for (int k = 0; k < 2; ++k)
            m.addXYArray(
                k, secondsArray(45000.0, first, n, [k](std::size_t i) { return double(i) + k; }));
    };
    add(0, 20'000);
    m.setMaxBufferSize(5'000);
    EXPECT_EQ(std::pair(m.pointCount(1), m.dataMin(1)), std::pair(std::size_t(5'000), 15'001.0));
    add(20'000, 10);
    m.setMaxBufferSize(50'000);
    EXPECT_TRUE(m.sharesTimeColumn(0, 1));
    for (int k = 0; k < 2; ++k) {
        EXPECT_EQ(std::tuple(m.pointCount(k), m.point(k, 0).time, m.point(k, 0).value, m.dataMin(k),
                             m.dataMax(k), m.dataAvg(k)),
                  std::tuple(std::size_t(5'000), 45000.0 + 15'010.0 / 86400.0, 15'010.0 + k,
                             15'010.0 + k, 20'009.0 + k, 17'509.5 + k))
            << k;
    }
    m.setMaxBufferSize(0);
    EXPECT_EQ(std::pair(m.pointCount(0), m.dataMax(0)), std::pair(std::size_t(0), 0.0));
}

TEST(StripChartModelSharing, DivergingTimesGetTheirOwnColumn) {
    StripChartModel m;
    m.addXYArray(0, makeArray({{1.0, 1.0}, {2.0, 2.0}}));
    m.addXYArray(1, makeArray({{1.0, 10.0}, {2.0, 20.0}}));
    EXPECT_TRUE(m.sharesTimeColumn(0, 1));
    m.addXYArray(0, makeArray({{3.0, 3.0}}));
    m.addXYArray(1, makeArray({{4.0, 40.0}, {5.0, 50.0}}));
    EXPECT_FALSE(m.sharesTimeColumn(0, 1));
    EXPECT_EQ(curveOf(m, {0, 9, 0, 900}, 0), (Points{{1.0, 1.0}, {2.0, 2.0}, {3.0, 3.0}}));
    EXPECT_EQ(curveOf(m, {0, 9, 0, 900}, 1),
              (Points{{1.0, 10.0}, {2.0, 20.0}, {4.0, 40.0}, {5.0, 50.0}}));
}

TEST(StripChartModelCurve, FewPointsAreDrawnAsTheyAreWithOneBeyondEachEdge) {
    StripChartModel m;
    m.addXYArray(0, makeArray({{1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}}));
    EXPECT_EQ(curveOf(m, {2.5, 3.5, 0, 100}), (Points{{2, 2}, {3, 3}, {4, 4}}));
    m.clearData(); // out of order: all drawn as they come
    m.addXYArray(0, makeArray({{1, 1}, {3, 3}, {2, 99}, {4, 4}}));
    EXPECT_EQ(curveOf(m, {0, 5, 0, 500}), (Points{{1, 1}, {3, 3}, {2, 99}, {4, 4}}));
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

// A rising line: each column starts at its lowest point and ends at its highest, whichever level
// of the summaries its ends are read from (columns of 125 to 125,000 points).
TEST(StripChartModelCurve, ColumnEndsComeFromTheirOwnPointsAtEveryZoom) {
    StripChartModel m;
    m.setMaxBufferSize(1'000'000);
    const std::size_t n = 500'000;
    m.addXYArray(0, secondsArray(45000.0, 0, n, [](std::size_t i) { return double(i); }));
    for (const double width : {4000.0, 400.0, 40.0, 4.0}) {
        SCOPED_TRACE(width);
        const Points out = curveOf(m, {45000.0, 45000.0 + double(n) / 86400.0, 0.0, width});
        ASSERT_EQ(out.size() % 4, 0u);
        for (std::size_t c = 0; c < out.size(); c += 4) {
            ASSERT_EQ(out[c].second, out[c + 1].second) << "first is the minimum, column " << c / 4;
            ASSERT_EQ(out[c + 2].second, out[c + 3].second) << "last is the maximum";
            if (c > 0) {
                ASSERT_EQ(out[c].second, out[c - 1].second + 1.0) << "no point between columns";
            }
        }
    }
}

TEST(BlockPool, HandsOutDistinctAlignedBlocksAndUnmapsOnlyFreeRegions) {
    BlockPool pool;
    std::vector<void*> blocks;
    // More than one region's worth, so that a second region is mapped.
    const std::size_t count = BlockPool::regionBytes / BlockPool::blockBytes + 3;
    for (std::size_t i = 0; i < count; ++i) {
        void* b = pool.allocate();
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(b) % BlockPool::blockBytes, 0u) << i;
        std::memset(b, int(i), BlockPool::blockBytes); // writable to its last byte
        blocks.push_back(b);
    }
    EXPECT_EQ(std::pair(std::set<void*>(blocks.begin(), blocks.end()).size(), pool.mappedBytes()),
              std::pair(count, 2 * BlockPool::regionBytes));

    // A region with a block still held stays; one entirely free goes.
    for (std::size_t i = 1; i < count; ++i)
        pool.release(blocks[i]);
    pool.trim();
    EXPECT_EQ(std::pair(pool.mappedBytes(), pool.usedBytes()),
              std::pair(BlockPool::regionBytes, BlockPool::blockBytes));
    EXPECT_EQ(static_cast<unsigned char*>(blocks[0])[BlockPool::blockBytes - 1], 0u);
}

// Days of a 13-channel log as the reader hands them over: one time column shared by all.
std::vector<std::shared_ptr<XYArray>> dayArrays(double firstTime, std::size_t rows,
                                                double timeStep) {
    auto times = std::make_shared<std::vector<double>>(rows);
    for (std::size_t i = 0; i < rows; ++i)
        (*times)[i] = firstTime + double(i) * timeStep;
    std::vector<std::shared_ptr<XYArray>> arrays;
    for (int k = 0; k < StripChartModel::variableCount; ++k) {
        auto a = std::make_shared<XYArray>(times, rows);
        for (std::size_t i = 0; i < rows; ++i)
            a->at(1, i) = double(k * 1000) + double(i);
        arrays.push_back(a);
    }
    return arrays;
}

TEST(StripChartModelStorage, DaysWithSharedTimesKeepTheirPointsAndTheirOrder) {
    // The first day runs from 100.0 in steps of 0.001; where the second starts, and so whether
    // the times stay in order.
    const std::tuple<const char*, double, bool> cases[] = {
        {"after the first", 200.0, true},
        {"at the first's last time", 100.0 + 9999 * 0.001, true},
        {"clock set back at the day's start", 105.0, false}};
    for (const auto& [name, secondDayStart, ordered] : cases) {
        SCOPED_TRACE(name);
        StripChartModel model;
        model.setMaxBufferSize(100000);
        const auto day1 = dayArrays(100.0, 10000, 0.001);
        const auto day2 = dayArrays(secondDayStart, 9000, 0.001);
        for (const auto& day : {day1, day2})
            for (int k = 0; k < StripChartModel::variableCount; ++k)
                model.addXYArray(k, *day[std::size_t(k)]);
        for (int k = 0; k < StripChartModel::variableCount; ++k) {
            ASSERT_EQ(model.pointCount(k), 19000u);
            EXPECT_EQ(model.isTimeOrdered(k), ordered);
            EXPECT_TRUE(model.sharesTimeColumn(0, k));
            for (std::size_t i : {0u, 8191u, 8192u, 9999u, 10000u, 16383u, 16384u, 18999u}) {
                const auto& day = i < 10000 ? day1 : day2;
                const std::size_t j = i < 10000 ? i : i - 10000;
                EXPECT_EQ(std::pair(model.point(k, i).time, model.point(k, i).value),
                          std::pair(day[0]->x(j), day[std::size_t(k)]->y(j)))
                    << k << " " << i;
            }
            EXPECT_EQ(model.dataMax(k), double(k * 1000) + 9999.0);
        }
        // One time column for thirteen value columns, not thirteen of each (over 30 bytes a point).
        EXPECT_LT(double(model.allocatedBytes()) / double(model.storedPoints()), 24.0);
    }
}

// ---- CSV export and phase imbalance ----

constexpr double day = 46296.0; // 2026-10-01
constexpr double second = 1.0 / 86400.0;

// Points of one variable at day + seconds[i] seconds.
XYArray points(const std::vector<double>& seconds, const std::vector<double>& values) {
    XYArray a(2, seconds.size());
    for (std::size_t i = 0; i < seconds.size(); ++i) {
        a.at(0, i) = day + seconds[i] * second;
        a.at(1, i) = values[i];
    }
    return a;
}

QString csvOf(const StripChartModel& model, const std::vector<csvexport::Column>& columns) {
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    EXPECT_TRUE(csvexport::writeVisible(model, columns, out));
    return QString::fromUtf8(out.data());
}

TEST(CsvExport, RowsOfTheVisibleWindowWithEmptyFieldsForMissingPoints) {
    StripChartModel model;
    model.addXYArray(0, points({0, 1, 2, 3, 4}, {1.5, 2.5, 3.5, 4.5, 5.5}));
    model.addXYArray(1, points({1, 3, 5}, {-0.25, 1e-7, 7}));
    model.showXRange(day + 1 * second, day + 3 * second);
    EXPECT_EQ(csvOf(model, {{0, "Phase A"}, {1, QString::fromUtf8("Pressure, \"psi\" é")}}),
              QString::fromUtf8("Time,Controller Time,Phase A,\"Pressure, \"\"psi\"\" é\"\r\n"
                                "2026-10-01T00:00:01,10/01/26 00:00:01,2.5,-0.25\r\n"
                                "2026-10-01T00:00:02,10/01/26 00:00:02,3.5,\r\n"
                                "2026-10-01T00:00:03,10/01/26 00:00:03,4.5,1e-07\r\n"));
}

TEST(CsvExport, HundredthsOfASecondOnlyWhenPresentAndOutOfOrderPointsFilteredByTheWindow) {
    StripChartModel model;
    model.addXYArray(0, points({0.25, 59.996, 61, 130, 121}, {1, 2, 3, 4, 5}));
    model.showXRange(day, day + 125 * second);
    EXPECT_EQ(csvOf(model, {{0, "A"}}).split("\r\n"),
              (QStringList{"Time,Controller Time,A", "2026-10-01T00:00:00.25,10/01/26 00:00:00,1",
                           "2026-10-01T00:01:00,10/01/26 00:01:00,2",
                           "2026-10-01T00:01:01,10/01/26 00:01:01,3",
                           "2026-10-01T00:02:01,10/01/26 00:02:01,5", ""}));
    QBuffer readOnly; // a failed write is reported
    readOnly.open(QIODevice::ReadOnly);
    EXPECT_FALSE(csvexport::writeVisible(model, {{0, "A"}}, readOnly));
}

TEST(Imbalance, PercentOfThePhases) {
    // Phases a, b, c and the imbalance in percent, -1 where there is none.
    const double rows[][4] = {
        {40, 40, 40, 0}, {44, 38, 38, 10}, {30, 45, 45, 25}, {0, 0, 0, -1}, {40, NAN, 40, -1}};
    for (const auto& r : rows)
        EXPECT_NEAR(imbalance::percent(r[0], r[1], r[2]).value_or(-1), r[3], 1e-9) << r[0];
}

TEST(Imbalance, PeakOverTheWindow) {
    // Phases logged together share their time column; phases logged apart are paired with the
    // latest point of the others at or before each time.
    for (const bool together : {true, false}) {
        SCOPED_TRACE(together ? "one time column" : "time columns of their own");
        StripChartModel model;
        std::vector<double> t(10000), tc(10000), a(10000, 40), b(10000, 40), c(10000, 40);
        for (int i = 0; i < 10000; ++i)
            t[i] = i, tc[i] = together ? i : i - 0.5;
        a[5000] = 50; // 25 % at 5000 s
        b[5000] = c[5000] = 35;
        a[9000] = 100; // outside the window
        model.addXYArray(0, points(t, a));
        model.addXYArray(1, points(t, b));
        model.addXYArray(2, points(tc, c));
        ASSERT_EQ(model.sharesTimeColumn(0, 2), together);
        model.showXRange(day + 100 * second, day + 8000 * second);
        const auto peak = imbalance::windowPeak(model, 0, 1, 2);
        ASSERT_TRUE(peak);
        EXPECT_NEAR(peak->percent, 25.0, 1e-9);
        EXPECT_DOUBLE_EQ(peak->time, day + 5000 * second);
        EXPECT_FALSE(imbalance::windowPeak(model, 3, 4, 5)) << "no currents";
    }
}

// The status read-out's peak, made from the peaks of runs of instants, is the plain scan's: the
// same largest imbalance at the same first time (whole-number currents tie often), for windows
// that cut runs anywhere, after more points arrive and after the oldest are dropped.
TEST(Imbalance, ReadOutPeakIsThePlainScansForEveryWindow) {
    StripChartModel model;
    model.setMaxBufferSize(1'000'000);
    std::mt19937 random(7);
    const auto addSeconds = [&](std::size_t first, std::size_t n) {
        std::vector<double> currents(3 * (first + n));
        std::uniform_int_distribution<int> amps(40, 60);
        for (double& c : currents)
            c = amps(random);
        for (int k = 0; k < 3; ++k)
            model.addXYArray(k, secondsArray(45000.0, first, n, [&](std::size_t i) {
                                 return currents[3 * i + std::size_t(k)];
                             }));
    };
    const QStringList names{"Phase A", "Phase B", "Phase C"};
    imbalance::Monitor monitor;
    const auto compareWindows = [&](std::size_t from, std::size_t to, const char* when) {
        SCOPED_TRACE(when);
        std::uniform_int_distribution<std::size_t> at(from, to);
        for (int w = 0; w < 40; ++w) {
            std::size_t a = at(random), b = at(random);
            if (w % 4 == 0)
                b = a + std::size_t(w) % 70; // short windows inside one or two runs
            model.showXRange(45000.0 + double(std::min(a, b)) / 86400.0,
                             45000.0 + double(std::max(a, b)) / 86400.0);
            const auto read = monitor.read(model, names);
            ASSERT_TRUE(read);
            const auto plain = imbalance::windowPeak(model, 0, 1, 2);
            ASSERT_EQ(read->window.has_value(), plain.has_value());
            if (plain) {
                ASSERT_EQ(std::pair(read->window->percent, read->window->time),
                          std::pair(plain->percent, plain->time))
                    << "window " << a << " to " << b;
            }
        }
    };
    addSeconds(0, 20'000);
    compareWindows(0, 20'000, "one day");
    addSeconds(20'000, 7'777);
    compareWindows(0, 27'777, "more points");
    model.setMaxBufferSize(10'001);
    compareWindows(17'776, 27'777, "oldest dropped");
}

} // namespace
} // namespace trendax
