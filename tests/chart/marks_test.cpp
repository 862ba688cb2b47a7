#include "chart/chartmapping.h"
#include "chart/eventmarkers.h"
#include "chart/gaps.h"
#include "chart/stripchartmodel.h"

#include <QStringList>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <tuple>
#include <vector>

namespace trendax {
namespace {

// ---- Event markers ----

// A window of 100 days over 100 pixels: day d is pixel column d.
const TimeMapping days{0.0, 100.0, 0.0, 100.0};

EventMarker marker(double time, MarkerKind kind, int index, QString text = {}) {
    return {time, kind, MarkerSource::HistoryEvent, index, std::move(text)};
}

TEST(EventMarkers, OneColumnPerPixelFoundUnderThePointerWithItsTooltip) {
    std::vector<EventMarker> all{
        marker(20.5, MarkerKind::StartStop, 0, "03/15/12 10:22:33 - Auto Start"),
        marker(24.5, MarkerKind::Comment, 1, "pump pulled"), marker(-1.0, MarkerKind::Fault, 2),
        marker(100.5, MarkerKind::Fault, 3),
        marker(std::numeric_limits<double>::quiet_NaN(), MarkerKind::Fault, 4)};
    // Fourteen in column 60, given latest first, one of them a fault.
    for (int i = 13; i >= 0; --i)
        all.push_back(marker(60.1 + i * 0.01, i == 7 ? MarkerKind::Fault : MarkerKind::Other, 5 + i,
                             QString("event %1").arg(i)));
    EventMarkers m;
    m.assign(std::move(all));
    EXPECT_EQ(m.size(), 18u) << "a marker without a time is dropped";
    std::vector<MarkerColumn> columns;
    m.columns(days, columns);
    ASSERT_EQ(columns.size(), 3u) << "markers outside the window are not drawn";
    EXPECT_EQ(columns[0].x, 20);
    EXPECT_EQ(columns[2].x, 60);
    EXPECT_EQ(columns[2].count, 14u);
    EXPECT_EQ(columns[2].kind, MarkerKind::Fault) << "the most urgent kind";
    EXPECT_EQ(m.at(columns[2].first).index, 5) << "the column starts at its earliest marker";

    const double flag = 7.0;  // pixels right of the marker line
    constexpr int none = -99; // no flag there
    const struct {
        const char* name;
        double x;
        int column;
    } rows[] = {{"OnTheMarkerLine", 20.0, 20},      {"OnTheFlag", 26.0, 24},
                {"OverlapRightmostWins", 25.0, 24}, {"LeftOfEveryFlag", 19.5, none},
                {"BeforeTheWindow", 2.0, none},     {"PastTheFlag", 33.0, none},
                {"SharedColumn", 62.0, 60}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto column = m.columnAt(days, row.x, flag);
        EXPECT_EQ(column ? column->x : none, row.column);
    }
    EXPECT_EQ(m.toolTip(*m.columnAt(days, 21.0, flag)), "03/15/12 10:22:33 - Auto Start");
    EXPECT_EQ(m.toolTip(*m.columnAt(days, 61.0, flag), 3).split('\n'),
              QStringList({"14 events and comments here:", "event 0", "event 1", "event 2",
                           "... and 11 more"}));
}

// ---- Recording gaps ----

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

XYArray arrayOf(std::span<const double> times) {
    XYArray a(2, times.size());
    for (std::size_t i = 0; i < times.size(); ++i) {
        a.at(0, i) = times[i];
        a.at(1, i) = double(i % 7);
    }
    return a;
}

std::vector<Gap> gapsOf(const StripChartModel& m) {
    std::vector<Gap> out;
    m.recordingGaps(0, -1e9, 1e9, out);
    return out;
}

TEST(RecordingGaps, HoleIsAGapOnlyBeyondTheLimit) {
    // A log of `spacing` seconds with a hole of so many seconds in the middle: a gap or not.
    const std::tuple<const char*, double, double, bool> rows[] = {
        {"OneSecondLogMissingFiftyNineSeconds", 1, 59, false},
        {"OneSecondLogMissingTwoMinutes", 1, 120, true},
        {"TenSecondLogHoleOfNinetyNineSeconds", 10, 99, false},
        {"TenSecondLogHoleOfHundredAndOneSeconds", 10, 101, true},
        {"FiveMinuteLogHoleOfFortyFiveMinutes", 300, 2700, false},
        {"FiveMinuteLogHoleOfSixHours", 300, 21600, true}};
    for (const auto& [name, spacing, holeSeconds, isGap] : rows) {
        SCOPED_TRACE(name);
        std::vector<double> times = run(day0, 200, spacing);
        const Gap hole{times.back(), times.back() + holeSeconds * second};
        const std::vector<double> after = run(hole.end, 200, spacing);
        times.insert(times.end(), after.begin(), after.end());
        const std::vector<Gap> expected = isGap ? std::vector<Gap>{hole} : std::vector<Gap>{};

        // Appended in blocks as a load gives days (the hole between two), and backwards.
        StripChartModel ordered, backwards;
        for (std::size_t from = 0; from < times.size(); from += 100)
            ordered.addXYArray(0, arrayOf(std::span(times).subspan(from, 100)));
        std::reverse(times.begin(), times.end());
        backwards.addXYArray(0, arrayOf(times));
        EXPECT_TRUE(ordered.isTimeOrdered(0));
        EXPECT_FALSE(backwards.isTimeOrdered(0));
        EXPECT_EQ(gapsOf(ordered), expected) << "appended in order";
        EXPECT_EQ(gapsOf(backwards), expected) << "backwards";
    }
}

TEST(RecordingGaps, ClockSetBackLeavesNoGapWhereSortedNeighboursAreClose) {
    // 10:00 to 10:10, then the clock goes back to 09:55 and runs on to 10:20.
    StripChartModel m;
    m.addXYArray(0, arrayOf(run(day0 + 10.0 / 24, 600, 1)));
    m.addXYArray(0, arrayOf(run(day0 + 10.0 / 24 - 300 * second, 1500, 1)));
    ASSERT_FALSE(m.isTimeOrdered(0));
    EXPECT_EQ(gapsOf(m), std::vector<Gap>{});
    // The night before the next day is a gap, found from the sorted times.
    m.addXYArray(0, arrayOf(run(day0 + 1.0, 100, 1)));
    const std::vector<Gap> found = gapsOf(m);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_DOUBLE_EQ(found[0].end, day0 + 1.0);
}

TEST(RecordingGaps, CurveBreaksAcrossEveryHoleWiderThanTheLimit) {
    const struct {
        const char* name;
        double start, end, width; // window in seconds of the day, on so many pixels
        int holeFrom, holeTo;     // the seconds missing
        std::size_t breaks;
    } rows[] = {// Few points per column: the line between the hole's own two points is cut.
                {"RawPointsTwoMinuteHole", 43000, 43600, 2000, 43200, 43320, 1},
                {"RawPointsFiftySecondHoleIsNoGap", 43000, 43600, 2000, 43200, 43250, 0},
                // A whole day on 500 columns of 173 s: a two-hour hole leaves 40 columns empty.
                {"ReducedDayTwoHourHole", 0, 86400, 500, 40000, 47200, 1},
                {"ReducedDayWithoutHole", 0, 86400, 500, 0, 0, 0},
                {"HoleStartingBeforeTheWindow", 43300, 50000, 1000, 40000, 47200, 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<double> times;
        for (int s = 0; s < 86400; ++s)
            if (s < row.holeFrom || s >= row.holeTo)
                times.push_back(day0 + s * second);
        StripChartModel m;
        m.setMaxBufferSize(100000);
        m.addXYArray(0, arrayOf(times));
        const TimeMapping mapping{day0 + row.start * second, day0 + row.end * second, 0.0,
                                  row.width};
        m.showXRange(mapping.start, mapping.end);
        std::vector<CurvePoint> curve;
        m.curvePoints(0, mapping, curve);
        std::vector<Gap> found;
        m.recordingGaps(0, mapping.start, mapping.end, found);
        std::vector<std::size_t> breaks;
        gaps::gapBreaks(curve, found, mapping, breaks);
        EXPECT_EQ(breaks.size(), row.breaks);
        // Each break lies between the column of the hole's last point and that of its next.
        const auto column = [&](double t) { return std::floor(mapping.toX(t)); };
        for (std::size_t b : breaks) {
            EXPECT_LE(column(curve[b - 1].time), column(day0 + (row.holeFrom - 1) * second));
            EXPECT_GE(column(curve[b].time), column(day0 + row.holeTo * second));
        }
    }
}

} // namespace
} // namespace trendax
