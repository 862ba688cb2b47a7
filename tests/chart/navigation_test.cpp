#include "chart/navigation.h"
#include "chart/stripchartmodel.h"
#include "chartfixtures.h"

#include <gtest/gtest.h>

namespace trendax::navigation {
namespace {

constexpr double s = 1.0 / 86400.0; // a second

TEST(ZoomTime, SetsSpanAndCentresOnTheCursor) {
    const struct {
        const char* name;
        double start, end, cursor;
        int mode;
        double span, centre; // expected afterwards: the window middle is the cursor
    } rows[] = {
        {"in halves about the cursor", 100, 102, 101.5, 0, 1, 101.5},
        {"out doubles without upper limit", 100, 220, 150, 1, 240, 150},
        {"in below the floor only recentres", 100, 100 + 3 * s, 100 + 2 * s, 0, 3 * s, 100 + 2 * s},
        {"in just above the floor", 100, 100 + 5 * s, 100 + 5 * s, 0, 2.5 * s, 100 + 5 * s},
        {"cursor left of the window goes to the middle", 100, 104, 90, 1, 8, 102},
        {"other mode only recentres", 100, 104, 101, 7, 4, 101},
    };
    for (const auto& c : rows) {
        SCOPED_TRACE(c.name);
        StripChartModel chart;
        chart.showXRange(c.start, c.end);
        chart.setCursorX(c.cursor);
        zoomTime(chart, c.mode);
        EXPECT_NEAR(chart.xSpan(), c.span, 1e-9);
        EXPECT_NEAR(chart.cursorX(), c.centre, 1e-9);
        EXPECT_NEAR((chart.xViewStart() + chart.xViewEnd()) / 2, c.centre, 1e-9);
    }
}

TEST(ScrollTime, MovesTheWindowAndLeavesTheCursor) {
    const struct {
        const char* name;
        double start, end;
        std::vector<int> modes;
        double newStart, newEnd;
    } rows[] = {
        {"right past the data is not bounded", 1e5, 1e5 + 30, {1}, 1e5 + 3, 1e5 + 33},
        {"left undoes right", 40000, 40000.5, {1, 1, 0, 0}, 40000, 40000.5},
        {"other mode does nothing", 100, 110, {2}, 100, 110},
    };
    for (const auto& c : rows) {
        SCOPED_TRACE(c.name);
        StripChartModel chart;
        chart.showXRange(c.start, c.end);
        chart.setCursorX(105);
        for (int mode : c.modes)
            scrollTime(chart, mode);
        EXPECT_NEAR(chart.xViewStart(), c.newStart, 1e-9);
        EXPECT_NEAR(chart.xViewEnd(), c.newEnd, 1e-9);
        EXPECT_EQ(chart.cursorX(), 105);
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
    using Range = std::tuple<int, double, double>; // variable or track, min, max
    // Later variables of a track get the running range; the first unshown track is scaled too,
    // those beyond it are left alone.
    for (const auto& [v, lo, hi] : {Range{0, 10, 20},
                                    {1, 5, 20},
                                    {2, 5, 30},
                                    {3, 1, 2},
                                    {5, 40, 50},
                                    {6, 30, 50},
                                    {7, 0, 100},
                                    {11, 0, 100}})
        EXPECT_EQ(Range(v, chart.variable(v).yMin, chart.variable(v).yMax), Range(v, lo, hi));
    for (const auto& [t, lo, hi] : {Range{0, 5, 30}, {1, 1, 2}, {2, 30, 50}, {3, 0, 100}})
        EXPECT_EQ(Range(t, chart.track(t).yMin, chart.track(t).yMax), Range(t, lo, hi));
    EXPECT_EQ(std::pair(chart.currentVar(), chart.currentTrack()),
              std::pair(12, chart.variable(12).track));
}

} // namespace
} // namespace trendax::navigation
