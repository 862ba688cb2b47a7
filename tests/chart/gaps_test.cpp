// Recording gaps: the limit rule, gaps of ordered and unordered series, and where a drawn curve
// breaks.
#include "chart/gaps.h"
#include "chart/stripchartmodel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace trendax {
namespace {

using gaps::Gap;

constexpr double second = 1.0 / 86400.0;
constexpr double day0 = 45000.0;

// n times spacing seconds apart from start.
std::vector<double> run(double start, int n, double spacing) {
    std::vector<double> t;
    for (int i = 0; i < n; ++i)
        t.push_back(start + i * spacing * second);
    return t;
}

XYArray arrayOf(const std::vector<double>& times) {
    XYArray a(2, times.size());
    for (std::size_t i = 0; i < times.size(); ++i) {
        a.at(0, i) = times[i];
        a.at(1, i) = double(i % 7);
    }
    return a;
}

std::vector<Gap> gapsOf(const StripChartModel& m, int k = 0) {
    std::vector<Gap> out;
    m.recordingGaps(k, -1e9, 1e9, out);
    return out;
}

// A log of `spacing` seconds with one hole of `hole` seconds in the middle, given in blocks as a
// load gives days, in time order or backwards.
struct HoleRow {
    const char* name;
    double spacing;
    double hole;
    bool isGap;
};

class GapRule : public testing::TestWithParam<HoleRow> {};

TEST_P(GapRule, HoleIsAGapOnlyBeyondTheLimit) {
    const HoleRow& row = GetParam();
    std::vector<double> times = run(day0, 200, row.spacing);
    const double lastBefore = times.back();
    const double resume = lastBefore + row.hole * second;
    const std::vector<double> after = run(resume, 200, row.spacing);
    times.insert(times.end(), after.begin(), after.end());
    const std::vector<Gap> expected =
        row.isGap ? std::vector<Gap>{{lastBefore, resume}} : std::vector<Gap>{};

    StripChartModel ordered;
    for (std::size_t from = 0; from < times.size(); from += 150) {
        const std::vector<double> block(times.begin() + from,
                                        times.begin() + std::min(times.size(), from + 150));
        ordered.addXYArray(0, arrayOf(block));
    }
    ASSERT_TRUE(ordered.isTimeOrdered(0));
    EXPECT_EQ(gapsOf(ordered), expected) << "appended in order";

    StripChartModel backwards;
    std::reverse(times.begin(), times.end());
    backwards.addXYArray(0, arrayOf(times));
    ASSERT_FALSE(backwards.isTimeOrdered(0));
    EXPECT_EQ(gapsOf(backwards), expected) << "the same times backwards";
}

INSTANTIATE_TEST_SUITE_P(
    Holes, GapRule,
    testing::Values(HoleRow{"OneSecondLogMissingFiftyNineSeconds", 1, 59, false},
                    HoleRow{"OneSecondLogMissingTwoMinutes", 1, 120, true},
                    HoleRow{"TenSecondLogHoleOfNinetyNineSeconds", 10, 99, false},
                    HoleRow{"TenSecondLogHoleOfHundredAndOneSeconds", 10, 101, true},
                    HoleRow{"FiveMinuteLogHoleOfFortyFiveMinutes", 300, 2700, false},
                    HoleRow{"FiveMinuteLogHoleOfSixHours", 300, 21600, true}),
    [](const testing::TestParamInfo<HoleRow>& info) { return std::string(info.param.name); });

TEST(RecordingGaps, ClockSetBackLeavesNoGapWhereSortedNeighboursAreClose) {
    // 10:00 to 10:10, then the clock goes back to 09:55 and runs on to 10:20.
    StripChartModel m;
    m.addXYArray(0, arrayOf(run(day0 + 10.0 / 24, 600, 1)));
    m.addXYArray(0, arrayOf(run(day0 + 10.0 / 24 - 300 * second, 1500, 1)));
    ASSERT_FALSE(m.isTimeOrdered(0));
    EXPECT_EQ(gapsOf(m), std::vector<Gap>{});
    // A later day after a night without rows is a gap, found from the sorted times.
    m.addXYArray(0, arrayOf(run(day0 + 1.0, 100, 1)));
    const std::vector<Gap> found = gapsOf(m);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_DOUBLE_EQ(found[0].end, day0 + 1.0);
}

// A day of one-second rows with the rows of [holeFrom, holeTo) seconds missing.
void fillDayWithHole(StripChartModel& m, int holeFrom, int holeTo) {
    std::vector<double> t;
    for (int s = 0; s < 86400; ++s)
        if (s < holeFrom || s >= holeTo)
            t.push_back(day0 + s * second);
    m.setMaxBufferSize(100000);
    m.addXYArray(0, arrayOf(t));
}

struct BreakRow {
    const char* name;
    double start, end; // window, seconds of the day
    double width;      // pixels
    int holeFrom, holeTo;
    std::size_t breaks;
};

class CurveBreaks : public testing::TestWithParam<BreakRow> {};

TEST_P(CurveBreaks, CurveBreaksAcrossEveryHoleWiderThanTheLimit) {
    const BreakRow& row = GetParam();
    StripChartModel m;
    fillDayWithHole(m, row.holeFrom, row.holeTo);
    const TimeMapping mapping{day0 + row.start * second, day0 + row.end * second, 0.0, row.width};
    m.showXRange(mapping.start, mapping.end);
    std::vector<CurvePoint> curve;
    m.curvePoints(0, mapping, curve);
    std::vector<Gap> found;
    m.recordingGaps(0, mapping.start, mapping.end, found);
    std::vector<std::size_t> breaks;
    gaps::gapBreaks(curve, found, mapping, breaks);
    ASSERT_EQ(breaks.size(), row.breaks);
    // The broken line is the one from the column of the hole's last point before to the column
    // of its first point after (a reduced curve places its points at the columns' middles).
    const auto column = [&](double t) { return std::floor(mapping.toX(t)); };
    const double lastBefore = column(day0 + (row.holeFrom - 1) * second);
    const double firstAfter = column(day0 + row.holeTo * second);
    for (std::size_t b : breaks) {
        EXPECT_LE(column(curve[b - 1].time), lastBefore);
        EXPECT_GE(column(curve[b].time), firstAfter);
    }

    // Cut there, the polyline's pieces begin where the breaks are.
    std::vector<QPointF> polyline;
    for (const CurvePoint& c : curve)
        polyline.emplace_back(mapping.toX(c.time), c.time);
    std::vector<std::size_t> starts;
    gaps::collapsePieces(polyline, breaks, starts);
    ASSERT_EQ(starts.size(), row.breaks + 1);
    for (std::size_t i = 1; i < starts.size(); ++i)
        EXPECT_GE(std::floor(polyline[starts[i]].x()), firstAfter);
}

INSTANTIATE_TEST_SUITE_P(
    Windows, CurveBreaks,
    testing::Values(
        // Few points per column: the line between the hole's own two points is cut.
        BreakRow{"RawPointsTwoMinuteHole", 43000, 43600, 2000, 43200, 43320, 1},
        BreakRow{"RawPointsFiftySecondHoleIsNoGap", 43000, 43600, 2000, 43200, 43250, 0},
        // A whole day on 500 columns of 173 s: a two-hour hole leaves 40 columns empty.
        BreakRow{"ReducedDayTwoHourHole", 0, 86400, 500, 40000, 47200, 1},
        BreakRow{"ReducedDayWithoutHole", 0, 86400, 500, 0, 0, 0},
        // The hole's edge lies outside the window: the line still breaks inside it.
        BreakRow{"HoleStartingBeforeTheWindow", 43300, 50000, 1000, 40000, 47200, 1}),
    [](const testing::TestParamInfo<BreakRow>& info) { return std::string(info.param.name); });

} // namespace
} // namespace trendax
