#include "chart/navigation.h"
#include "chart/stripchartmodel.h"
#include "chartfixtures.h"

#include <gtest/gtest.h>

namespace trendax::navigation {
namespace {

constexpr double second = 1.0 / 86400.0;
const auto rowName = [](const auto& info) { return std::string(info.param.name); };

struct ZoomCase {
    const char* name;
    double start, end, cursor;
    int mode;
    double span;   // expected afterwards
    double centre; // expected window middle and cursor
};

class ZoomTime : public testing::TestWithParam<ZoomCase> {};

TEST_P(ZoomTime, SetsSpanAndCentresOnTheCursor) {
    const ZoomCase& c = GetParam();
    StripChartModel chart;
    chart.showXRange(c.start, c.end);
    chart.setCursorX(c.cursor);
    zoomTime(chart, c.mode);
    EXPECT_NEAR(chart.xSpan(), c.span, 1e-9);
    EXPECT_NEAR(chart.cursorX(), c.centre, 1e-9);
    EXPECT_NEAR((chart.xViewStart() + chart.xViewEnd()) / 2, c.centre, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ZoomTime,
    testing::Values(ZoomCase{"InHalvesAboutTheCursor", 100, 102, 101.5, 0, 1, 101.5},
                    ZoomCase{"OutDoublesAboutTheCursor", 100, 130, 110, 1, 60, 110},
                    ZoomCase{"OutHasNoUpperLimit", 100, 220, 150, 1, 240, 150},
                    ZoomCase{"InBelowTheFloorOnlyRecentres", 100, 100 + 3 * second,
                             100 + 2 * second, 0, 3 * second, 100 + 2 * second},
                    ZoomCase{"InJustAboveTheFloor", 100, 100 + 5 * second, 100 + 5 * second, 0,
                             2.5 * second, 100 + 5 * second},
                    ZoomCase{"CursorLeftOfTheWindowGoesToTheMiddleFirst", 100, 104, 90, 0, 2, 102},
                    ZoomCase{"CursorRightOfTheWindowGoesToTheMiddleFirst", 100, 104, 110, 1, 8,
                             102},
                    ZoomCase{"OtherModeOnlyRecentres", 100, 104, 101, 7, 4, 101}),
    rowName);

struct ScrollCase {
    const char* name;
    double start, end;
    std::vector<int> modes;
    double newStart, newEnd;
};

class ScrollTime : public testing::TestWithParam<ScrollCase> {};

TEST_P(ScrollTime, MovesTheWindowAndLeavesTheCursor) {
    const ScrollCase& c = GetParam();
    StripChartModel chart;
    chart.showXRange(c.start, c.end);
    chart.setCursorX(105);
    for (int mode : c.modes)
        scrollTime(chart, mode);
    EXPECT_NEAR(chart.xViewStart(), c.newStart, 1e-9);
    EXPECT_NEAR(chart.xViewEnd(), c.newEnd, 1e-9);
    EXPECT_EQ(chart.cursorX(), 105);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ScrollTime,
    testing::Values(ScrollCase{"LeftByATenth", 100, 110, {0}, 99, 109},
                    ScrollCase{"RightByATenth", 100, 110, {1}, 101, 111},
                    ScrollCase{
                        "RightPastTheDataIsNotBounded", 1e5, 1e5 + 30, {1}, 1e5 + 3, 1e5 + 33},
                    ScrollCase{"LeftUndoesRight", 40000, 40000.5, {1, 1, 0, 0}, 40000, 40000.5},
                    ScrollCase{"OtherModeDoesNothing", 100, 110, {2}, 100, 110}),
    rowName);

TEST(FixedSpan, KnowsTheFourKeysOnly) {
    const std::pair<const char16_t*, std::optional<double>> rows[] = {
        {u"1hour", 1.0 / 24}, {u"1day", 1.0},  {u"1week", 7.0},         {u"30days", 30.0},
        {u"1Hour", {}},       {u"xscale", {}}, {u"tracksseparate", {}}, {u"", {}}};
    for (const auto& [key, span] : rows) {
        SCOPED_TRACE(QString::fromUtf16(key).toStdString());
        EXPECT_EQ(fixedSpan(key), span);
    }
}

// ---- Y autoscale ----

using Range = std::tuple<int, double, double>; // variable or track, min, max

struct AutoScaleCase {
    const char* name;
    int trackCount;
    // Visible variables (var, track, min, max of its data); the others are hidden.
    std::vector<std::tuple<int, int, double, double>> variables;
    std::vector<Range> varRanges, trackRanges; // expected afterwards
};

class AutoScaleY : public testing::TestWithParam<AutoScaleCase> {};

TEST_P(AutoScaleY, FitsTracksInIndexOrder) {
    const AutoScaleCase& c = GetParam();
    StripChartModel chart;
    chart.setTrackCount(c.trackCount);
    for (int v = 0; v < StripChartModel::variableCount; ++v)
        chart.setVarVisible(v, false);
    for (const auto& [v, track, lo, hi] : c.variables) {
        chart.setVarTrack(v, track);
        chart.setVarVisible(v, true);
        chart.addXYArray(v, test::makeArray({{1.0, lo}, {2.0, hi}}));
    }
    // Hidden with data of its own: neither scaled nor counted.
    chart.setVarTrack(11, 0);
    chart.addXYArray(11, test::makeArray({{1.0, -100.0}, {2.0, 100.0}}));
    autoScaleY(chart);
    for (const auto& [v, lo, hi] : c.varRanges) {
        EXPECT_EQ(std::pair(chart.variable(v).yMin, chart.variable(v).yMax), std::pair(lo, hi))
            << "variable " << v;
    }
    for (const auto& [t, lo, hi] : c.trackRanges)
        EXPECT_EQ(std::pair(chart.track(t).yMin, chart.track(t).yMax), std::pair(lo, hi))
            << "track " << t;
    EXPECT_EQ(chart.currentVar(), 12);
    EXPECT_EQ(chart.currentTrack(), chart.variable(12).track);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, AutoScaleY,
    testing::Values(AutoScaleCase{"OneVisibleVariableGetsItsOwnRange",
                                  1,
                                  {{0, 0, -3, 7}},
                                  {{0, -3, 7}, {11, 0, 100}},
                                  {{0, -3, 7}}},
                    AutoScaleCase{"LaterVariablesOfATrackGetTheRunningRange",
                                  2,
                                  {{0, 0, 10, 20}, {1, 0, 5, 15}, {2, 0, 12, 30}, {3, 1, 1, 2}},
                                  {{0, 10, 20}, {1, 5, 20}, {2, 5, 30}, {3, 1, 2}},
                                  {{0, 5, 30}, {1, 1, 2}}},
                    AutoScaleCase{"TheFirstUnshownTrackIsScaledToo",
                                  2,
                                  {{0, 0, 1, 2}, {5, 2, 40, 50}, {6, 2, 30, 45}},
                                  {{5, 40, 50}, {6, 30, 50}},
                                  {{2, 30, 50}}},
                    AutoScaleCase{"TracksBeyondTheFirstUnshownAreLeftAlone",
                                  2,
                                  {{0, 0, 1, 2}, {7, 3, 40, 50}},
                                  {{7, 0, 100}},
                                  {{3, 0, 100}}}),
    rowName);

} // namespace
} // namespace trendax::navigation
