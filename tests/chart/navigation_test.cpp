#include "chart/navigation.h"
#include "chart/stripchartmodel.h"
#include "chart/timeticks.h"
#include "chart/viewhistory.h"
#include "chart/viewmoves.h"
#include "chartfixtures.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

namespace trendax::navigation {
namespace {

constexpr double s = 1.0 / 86400.0;       // a second
constexpr double yearEnd9999 = 2958466.0; // 1 January 10000
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TimeWindow viewOf(const StripChartModel& chart) {
    return {chart.xViewStart(), chart.xViewEnd()};
}

// Zooming keeps the cursor in the middle of the window, fetching it there from outside;
// scrolling moves the window a tenth of its span and leaves the cursor.
TEST(TimeCommands, ZoomCentresOnTheCursorScrollLeavesIt) {
    const struct {
        const char* name;
        double start, end, cursor;
        bool zoom;
        std::vector<int> modes;
        double newStart, newEnd, newCursor;
    } rows[] = {
        {"zoom in halves about the cursor", 100, 102, 101.5, true, {0}, 101, 102, 101.5},
        {"zoom out doubles without upper limit", 100, 220, 150, true, {1}, 30, 270, 150},
        {"zoom in below the floor recentres", 0, 3 * s, 2 * s, true, {0}, s / 2, 3.5 * s, 2 * s},
        {"zoom in just above it", 0, 5 * s, 5 * s, true, {0}, 3.75 * s, 6.25 * s, 5 * s},
        {"zoom fetches a cursor left of the window", 100, 104, 90, true, {1}, 98, 106, 102},
        {"zoom of another mode only recentres", 100, 104, 101, true, {7}, 99, 103, 101},
        {"scroll right past the data is not bounded", 1e3, 1030, 105, false, {1}, 1003, 1033, 105},
        {"scroll left undoes right", 40000, 40000.5, 105, false, {1, 1, 0, 0}, 40000, 40000.5, 105},
        {"scroll of another mode does nothing", 100, 110, 105, false, {2}, 100, 110, 105},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        StripChartModel chart;
        chart.showXRange(r.start, r.end);
        chart.setCursorX(r.cursor);
        for (int mode : r.modes)
            r.zoom ? zoomTime(chart, mode) : scrollTime(chart, mode);
        EXPECT_NEAR(chart.xViewStart(), r.newStart, 1e-9);
        EXPECT_NEAR(chart.xViewEnd(), r.newEnd, 1e-9);
        EXPECT_NEAR(chart.cursorX(), r.newCursor, 1e-9);
    }
}

TEST(FixedSpan, KnowsTheFourKeysOnly) {
    const std::pair<const char16_t*, std::optional<double>> rows[] = {
        {u"1hour", 1.0 / 24}, {u"1day", 1.0},  {u"1week", 7.0},         {u"30days", 30.0},
        {u"1Hour", {}},       {u"xscale", {}}, {u"tracksseparate", {}}, {u"", {}}};
    for (const auto& [key, span] : rows)
        EXPECT_EQ(fixedSpan(key), span) << QString::fromUtf16(key).toStdString();
}

TEST(AutoScaleY, FitsTracksInIndexOrderAndOneRoundBeyondTheShownTracks) {
    StripChartModel chart;
    chart.setTrackCount(2);
    // Visible variables: var, track, min and max of its data; the others are hidden.
    const std::tuple<int, int, double, double> visible[] = {
        {0, 0, 10, 20}, {1, 0, 5, 15},  {2, 0, 12, 30}, {3, 1, 1, 2},
        {5, 2, 40, 50}, {6, 2, 30, 45}, {7, 3, 40, 50}};
    for (int v = 0; v < StripChartModel::variableCount; ++v)
        chart.setVarVisible(v, false);
    for (const auto& [v, track, lo, hi] : visible) {
        chart.setVarTrack(v, track);
        chart.setVarVisible(v, true);
        chart.addXYArray(v, test::makeArray({{1.0, lo}, {2.0, hi}}));
    }
    // Hidden with data of its own: neither scaled nor counted.
    chart.setVarTrack(11, 0);
    chart.addXYArray(11, test::makeArray({{1.0, -100.0}, {2.0, 100.0}}));
    autoScaleY(chart);
    // Later variables of a track get the running range; the first unshown track is scaled too,
    // those beyond it are left alone.
    using Range = std::tuple<int, double, double>; // variable or track, min, max
    const Range variables[] = {{0, 10, 20}, {1, 5, 20},  {2, 5, 30},  {3, 1, 2},
                               {5, 40, 50}, {6, 30, 50}, {7, 0, 100}, {11, 0, 100}};
    for (const auto& [v, lo, hi] : variables)
        EXPECT_EQ(Range(v, chart.variable(v).yMin, chart.variable(v).yMax), Range(v, lo, hi));
    for (const auto& [t, lo, hi] : {Range{0, 5, 30}, {1, 1, 2}, {2, 30, 50}, {3, 0, 100}})
        EXPECT_EQ(Range(t, chart.track(t).yMin, chart.track(t).yMax), Range(t, lo, hi));
    EXPECT_EQ(std::pair(chart.currentVar(), chart.currentTrack()),
              std::pair(12, chart.variable(12).track));
}

TEST(RangeZoom, OrdersTheEndsFloorsTinyRangesAndRefusesEmptyOnes) {
    EXPECT_EQ(viewmoves::rangeZoom(45002, 45001), (TimeWindow{45001, 45002}));
    const auto tiny = viewmoves::rangeZoom(45000, 45000 + s);
    ASSERT_TRUE(tiny);
    EXPECT_NEAR(tiny->span(), smallestSpan, 1e-10);
    EXPECT_NEAR(tiny->start + tiny->span() / 2, 45000 + s / 2, 1e-10);
    EXPECT_FALSE(viewmoves::rangeZoom(45000, 45000));
    EXPECT_FALSE(viewmoves::rangeZoom(nan, 45000));
}

// Whatever window the chart is asked for, it shows one inside 30 December 1899 to the end of
// 9999, with an axis that has tics to show.
TEST(CalendarClamp, EveryWindowShownLiesInTheCalendar) {
    const std::tuple<const char*, double, double, TimeWindow> rows[] = {
        // name, asked, shown
        {"inside is shown exactly", 45000.1, 45000.3, {45000.1, 45000.3}},
        {"before 1899 moves right keeping the span", -5, 1, {0, 6}},
        {"after 9999 moves left", yearEnd9999 - 1, yearEnd9999 + 1, {yearEnd9999 - 2, yearEnd9999}},
        {"wider than the calendar is the calendar", -1e300, 1e300, {0, yearEnd9999}},
        {"not a number keeps the window", nan, 45001, {45000, 45001}},
    };
    for (const auto& [name, start, end, shown] : rows) {
        SCOPED_TRACE(name);
        StripChartModel chart;
        chart.showXRange(45000, 45001);
        chart.showXRange(start, end);
        EXPECT_EQ(viewOf(chart), shown);
        EXPECT_FALSE(timeTicks(chart.xViewStart(), chart.xViewEnd(), 8).empty());
    }
    // A span set from a left edge near the end moves the window left.
    StripChartModel chart;
    chart.showXRange(yearEnd9999 - 2, yearEnd9999 - 1);
    chart.setXSpan(30);
    EXPECT_EQ(viewOf(chart), (TimeWindow{yearEnd9999 - 30, yearEnd9999}));
}

TEST(ZoomHistory, BackAndForwardRestoreEveryCommandsWindowExactly) {
    StripChartModel chart;
    chart.showXRange(45000.1, 45000.7); // a load's zoom all
    chart.restartViewHistory();
    chart.setCursorX(45000.3);
    std::vector<TimeWindow> seen{viewOf(chart)};
    zoomTime(chart, 0); // narrows, then re-centres: one view
    seen.push_back(viewOf(chart));
    scrollTime(chart, 1);
    seen.push_back(viewOf(chart));
    chart.setXSpan(1.0 / 24);
    seen.push_back(viewOf(chart));
    chart.showXRange(45000.2 + 1e-12, 45000.3); // an event click
    seen.push_back(viewOf(chart));
    ASSERT_EQ(chart.viewHistory().size(), seen.size());
    for (std::size_t i = seen.size() - 1; i-- > 0;) {
        ASSERT_TRUE(chart.backView());
        EXPECT_EQ(viewOf(chart), seen[i]) << "back to view " << i;
    }
    EXPECT_FALSE(chart.backView());
    ASSERT_TRUE(chart.forwardView());
    EXPECT_EQ(viewOf(chart), seen[1]);
    scrollTime(chart, 0); // a new view drops the ones ahead
    EXPECT_FALSE(chart.forwardView());
    EXPECT_EQ(chart.viewHistory().size(), 3u);
}

TEST(ZoomHistory, KeepsTheLastHundredViewsAndAGestureIsOne) {
    ViewHistory history({0, 1});
    for (int i = 1; i <= 150; ++i)
        history.record({double(i), double(i) + 1});
    EXPECT_EQ(history.size(), 100u);
    std::optional<TimeWindow> oldest;
    int steps = 0;
    for (; const auto v = history.back(); ++steps)
        oldest = v;
    EXPECT_EQ(steps, 99);
    EXPECT_EQ(oldest, (TimeWindow{51, 52}));

    history.restart({0, 1});
    history.record({0, 1}); // the view on screen again: nothing new
    {
        const ViewGesture drag(history);
        for (int i = 1; i <= 20; ++i)
            history.record({i / 10.0, 1 + i / 10.0});
    }
    EXPECT_EQ(history.size(), 2u);
    EXPECT_EQ(history.current(), (TimeWindow{2, 3}));
    {
        const ViewGesture drag(history); // out and back to where it began: no view
        history.record({5, 6});
        history.record({2, 3});
    }
    EXPECT_EQ(history.size(), 2u);
    EXPECT_EQ(history.back(), (TimeWindow{0, 1}));
}

} // namespace
} // namespace trendax::navigation
