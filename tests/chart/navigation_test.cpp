#include "chart/navigation.h"
#include "chart/stripchartmodel.h"
#include "chartfixtures.h"

#include <gtest/gtest.h>

namespace trendax::navigation {
namespace {

constexpr double second = 1.0 / 86400.0;

// A chart showing [start, end] with the cursor at cursor.
void showWindow(StripChartModel& chart, double start, double end, double cursor) {
    chart.showXRange(start, end);
    chart.setCursorX(cursor);
}

struct ZoomCase {
    const char* name;
    double start, end, cursor;
    int mode;
    double span;   // expected afterwards
    double centre; // expected window middle and cursor
};

const ZoomCase zoomCases[] = {
    {"InHalvesAboutTheCursor", 100, 102, 101.5, 0, 1, 101.5},
    {"OutDoublesAboutTheCursor", 100, 130, 110, 1, 60, 110},
    {"OutHasNoUpperLimit", 100, 220, 150, 1, 240, 150},
    {"InBelowTheFloorOnlyRecentres", 100, 100 + 3 * second, 100 + 2 * second, 0, 3 * second,
     100 + 2 * second},
    {"InJustAboveTheFloor", 100, 100 + 5 * second, 100 + 5 * second, 0, 2.5 * second,
     100 + 5 * second},
    {"CursorLeftOfTheWindowGoesToTheMiddleFirst", 100, 104, 90, 0, 2, 102},
    {"CursorRightOfTheWindowGoesToTheMiddleFirst", 100, 104, 110, 1, 8, 102},
    {"OtherModeOnlyRecentres", 100, 104, 101, 7, 4, 101},
};

class ZoomTime : public testing::TestWithParam<ZoomCase> {};

TEST_P(ZoomTime, SetsSpanAndCentresOnTheCursor) {
    const ZoomCase& c = GetParam();
    StripChartModel chart;
    showWindow(chart, c.start, c.end, c.cursor);
    zoomTime(chart, c.mode);
    EXPECT_NEAR(chart.xSpan(), c.span, 1e-9);
    EXPECT_NEAR(chart.cursorX(), c.centre, 1e-9);
    EXPECT_NEAR((chart.xViewStart() + chart.xViewEnd()) / 2, c.centre, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(Rows, ZoomTime, testing::ValuesIn(zoomCases),
                         [](const auto& info) { return std::string(info.param.name); });

struct ScrollCase {
    const char* name;
    double start, end;
    int mode;
    double newStart, newEnd;
};

const ScrollCase scrollCases[] = {
    {"LeftByATenth", 100, 110, 0, 99, 109},
    {"RightByATenth", 100, 110, 1, 101, 111},
    {"RightPastTheDataIsNotBounded", 1e5, 1e5 + 30, 1, 1e5 + 3, 1e5 + 33},
    {"OtherModeDoesNothing", 100, 110, 2, 100, 110},
};

class ScrollTime : public testing::TestWithParam<ScrollCase> {};

TEST_P(ScrollTime, MovesTheWindowAndLeavesTheCursor) {
    const ScrollCase& c = GetParam();
    StripChartModel chart;
    showWindow(chart, c.start, c.end, 105);
    scrollTime(chart, c.mode);
    EXPECT_NEAR(chart.xViewStart(), c.newStart, 1e-9);
    EXPECT_NEAR(chart.xViewEnd(), c.newEnd, 1e-9);
    EXPECT_EQ(chart.cursorX(), 105);
}

INSTANTIATE_TEST_SUITE_P(Rows, ScrollTime, testing::ValuesIn(scrollCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(ScrollTime, LeftUndoesRight) {
    StripChartModel chart;
    showWindow(chart, 40000, 40000.5, 40000.25);
    scrollTime(chart, 1);
    scrollTime(chart, 0);
    EXPECT_NEAR(chart.xViewStart(), 40000, 1e-9);
    EXPECT_NEAR(chart.xViewEnd(), 40000.5, 1e-9);
}

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

struct Variable {
    int track;
    bool visible;
    double lo, hi; // its data: two points with these values
};

struct AutoScaleCase {
    const char* name;
    int trackCount;
    std::vector<std::pair<int, Variable>> variables; // the others are hidden
    // Expected variable ranges (var, min, max) and track ranges (track, min, max).
    std::vector<std::tuple<int, double, double>> varRanges;
    std::vector<std::tuple<int, double, double>> trackRanges;
};

const AutoScaleCase autoScaleCases[] = {
    {"OneVisibleVariableGetsItsOwnRange", 1, {{0, {0, true, -3, 7}}}, {{0, -3, 7}}, {{0, -3, 7}}},
    {"LaterVariablesOfATrackGetTheRunningRange",
     2,
     {{0, {0, true, 10, 20}}, {1, {0, true, 5, 15}}, {2, {0, true, 12, 30}}, {3, {1, true, 1, 2}}},
     {{0, 10, 20}, {1, 5, 20}, {2, 5, 30}, {3, 1, 2}},
     {{0, 5, 30}, {1, 1, 2}}},
    {"HiddenVariablesAreNeitherScaledNorCounted",
     1,
     {{0, {0, true, 10, 20}}, {1, {0, false, -100, 100}}, {2, {0, true, 12, 18}}},
     {{0, 10, 20}, {1, 0, 100}, {2, 10, 20}},
     {{0, 10, 20}}},
    {"TheFirstUnshownTrackIsScaledToo",
     2,
     {{0, {0, true, 1, 2}}, {5, {2, true, 40, 50}}, {6, {2, true, 30, 45}}},
     {{5, 40, 50}, {6, 30, 50}},
     {{2, 30, 50}}},
    {"TracksBeyondTheFirstUnshownAreLeftAlone",
     2,
     {{0, {0, true, 1, 2}}, {7, {3, true, 40, 50}}},
     {{7, 0, 100}},
     {{3, 0, 100}}},
};

class AutoScaleY : public testing::TestWithParam<AutoScaleCase> {};

TEST_P(AutoScaleY, FitsTracksInIndexOrder) {
    const AutoScaleCase& c = GetParam();
    StripChartModel chart;
    chart.setTrackCount(c.trackCount);
    for (int v = 0; v < StripChartModel::variableCount; ++v)
        chart.setVarVisible(v, false);
    for (const auto& [v, var] : c.variables) {
        chart.setVarTrack(v, var.track);
        chart.setVarVisible(v, var.visible);
        chart.addXYArray(v, test::makeArray({{1.0, var.lo}, {2.0, var.hi}}));
    }
    autoScaleY(chart);
    for (const auto& [v, lo, hi] : c.varRanges) {
        SCOPED_TRACE("variable " + std::to_string(v));
        EXPECT_EQ(chart.variable(v).yMin, lo);
        EXPECT_EQ(chart.variable(v).yMax, hi);
    }
    for (const auto& [t, lo, hi] : c.trackRanges) {
        SCOPED_TRACE("track " + std::to_string(t));
        EXPECT_EQ(chart.track(t).yMin, lo);
        EXPECT_EQ(chart.track(t).yMax, hi);
    }
    EXPECT_EQ(chart.currentVar(), 12);
    EXPECT_EQ(chart.currentTrack(), chart.variable(12).track);
}

INSTANTIATE_TEST_SUITE_P(Rows, AutoScaleY, testing::ValuesIn(autoScaleCases),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
} // namespace trendax::navigation
