#include "chart/navigation.h"
#include "chart/stripchartmodel.h"
#include "chart/timeticks.h"
#include "chart/viewhistory.h"
#include "chart/viewmoves.h"

#include <gtest/gtest.h>

#include <limits>

namespace trendax {
namespace {

constexpr double s = 1.0 / 86400.0;       // a second
constexpr double yearEnd9999 = 2958466.0; // 1 January 10000
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TimeWindow viewOf(const StripChartModel& chart) {
    return {chart.xViewStart(), chart.xViewEnd()};
}

TEST(RangeZoom, OrdersTheEndsFloorsTinyRangesAndRefusesEmptyOnes) {
    EXPECT_EQ(viewmoves::rangeZoom(45002, 45001), (TimeWindow{45001, 45002}));
    const auto tiny = viewmoves::rangeZoom(45000, 45000 + s);
    ASSERT_TRUE(tiny);
    EXPECT_NEAR(tiny->span(), navigation::smallestSpan, 1e-10);
    EXPECT_NEAR(tiny->start + tiny->span() / 2, 45000 + s / 2, 1e-10);
    EXPECT_FALSE(viewmoves::rangeZoom(45000, 45000));
    EXPECT_FALSE(viewmoves::rangeZoom(nan, 45000));
}

// Whatever window the chart is asked for, it shows one inside 30 December 1899 to the end of
// 9999, with an axis that has tics to show.
TEST(CalendarClamp, EveryWindowShownLiesInTheCalendar) {
    const struct {
        const char* name;
        double start, end;
        TimeWindow shown;
    } rows[] = {
        {"inside is shown exactly", 45000.1, 45000.3, {45000.1, 45000.3}},
        {"before 1899 moves right keeping the span", -5, 1, {0, 6}},
        {"beyond 9999 moves left",
         yearEnd9999 - 1,
         yearEnd9999 + 1,
         {yearEnd9999 - 2, yearEnd9999}},
        {"wider than the calendar is the calendar", -1e300, 1e300, {0, yearEnd9999}},
        {"not a number keeps the window", nan, 45001, {45000, 45001}},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        StripChartModel chart;
        chart.showXRange(45000, 45001);
        chart.showXRange(r.start, r.end);
        EXPECT_EQ(viewOf(chart), r.shown);
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
    navigation::zoomTime(chart, 0); // narrows, then re-centres: one view
    seen.push_back(viewOf(chart));
    navigation::scrollTime(chart, 1);
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
    navigation::scrollTime(chart, 0); // a new view drops the ones ahead
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
} // namespace trendax
