// Event markers: one per pixel column in view, the flag under the pointer and its tooltip.
#include "chart/chartmapping.h"
#include "chart/eventmarkers.h"

#include <QStringList>
#include <gtest/gtest.h>

#include <limits>

namespace trendax {
namespace {

// A window of 100 days over 100 pixels: day d is pixel column d.
const TimeMapping mapping{0.0, 100.0, 0.0, 100.0};

EventMarker marker(double time, MarkerKind kind, int index, QString text = {}) {
    return {time, kind, MarkerSource::HistoryEvent, index, std::move(text)};
}

TEST(EventMarkers, OneColumnPerPixelWithTheCountAndTheMostUrgentKind) {
    EventMarkers m;
    m.assign({marker(10.2, MarkerKind::Comment, 0), marker(10.7, MarkerKind::Fault, 1),
              marker(10.5, MarkerKind::StartStop, 2), marker(55.0, MarkerKind::Other, 3),
              marker(-1.0, MarkerKind::Fault, 4), marker(100.5, MarkerKind::Fault, 5),
              marker(std::numeric_limits<double>::quiet_NaN(), MarkerKind::Fault, 6)});
    ASSERT_EQ(m.size(), 6u) << "a marker without a time is dropped";
    EXPECT_EQ(m.at(0).index, 4) << "sorted by time";

    std::vector<MarkerColumn> columns;
    m.columns(mapping, columns);
    ASSERT_EQ(columns.size(), 2u) << "markers outside the window are not drawn";
    EXPECT_EQ(columns[0].x, 10);
    EXPECT_EQ(columns[0].count, 3u);
    EXPECT_EQ(columns[0].kind, MarkerKind::Fault);
    EXPECT_EQ(m.at(columns[0].first).index, 0) << "the column starts at its earliest marker";
    EXPECT_EQ(columns[1].x, 55);
    EXPECT_EQ(columns[1].kind, MarkerKind::Other);
}

TEST(EventMarkers, FlagUnderThePointerAndItsTooltip) {
    EventMarkers m;
    std::vector<EventMarker> all{marker(20.5, MarkerKind::Fault, 0, "03/15/12 10:22:33 - Overload"),
                                 marker(24.5, MarkerKind::Comment, 1, "pump pulled")};
    for (int i = 0; i < 14; ++i)
        all.push_back(
            marker(60.1 + i * 0.01, MarkerKind::Other, 2 + i, QString("event %1").arg(i)));
    m.assign(std::move(all));
    const double flag = 7.0;

    struct Row {
        const char* name;
        double x;
        int column; // -1: no flag there
    };
    const Row rows[] = {{"OnTheMarkerLine", 20.0, 20},
                        {"OnTheFlag", 26.0, 24},
                        {"FlagsOverlapTheRightmostWins", 25.0, 24},
                        {"LeftOfEveryFlag", 19.5, -1},
                        {"PastTheFlag", 33.0, -1},
                        {"SharedColumn", 62.0, 60}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto column = m.columnAt(mapping, row.x, flag);
        ASSERT_EQ(column.has_value(), row.column >= 0);
        if (column) {
            EXPECT_EQ(column->x, row.column);
        }
    }

    EXPECT_EQ(m.toolTip(*m.columnAt(mapping, 21.0, flag)), "03/15/12 10:22:33 - Overload");
    const auto shared = *m.columnAt(mapping, 61.0, flag);
    EXPECT_EQ(shared.count, 14u);
    const QStringList lines = m.toolTip(shared, 3).split('\n');
    EXPECT_EQ(lines, QStringList({"14 events and comments here:", "event 0", "event 1", "event 2",
                                  "... and 11 more"}));
}

} // namespace
} // namespace trendax
