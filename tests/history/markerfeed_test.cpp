// The history column's markers on the chart: which events are faults, starts and stops, and the
// marker of each list entry and comment row.
#include "history/eventcodes.h"
#include "history/markerfeed.h"
#include "storage/datetime.h"

#include <gtest/gtest.h>

namespace trendax::history {
namespace {

TEST(EventClasses, EveryListEntryHasTheClassOfItsEvent) {
    struct Row {
        const char* text;
        EventClass expected;
    };
    const Row rows[] = {
        {"Overload", EventClass::Fault},
        {"Underload", EventClass::Fault},
        {"Current Unbalance", EventClass::Fault},
        {"Power Fail", EventClass::Fault},
        {"Voltage Too Low", EventClass::Fault},
        {"Analog 1 Low", EventClass::Fault},
        {"ORB Intake Pressure  Low", EventClass::Fault},
        {"History Event (HI20)", EventClass::Fault},
        {"Auto Start", EventClass::StartStop},
        {"Manual Stop", EventClass::StartStop},
        {"Power Restored", EventClass::Other},
        {"Rotation Error", EventClass::Other},
        {"History Event (old)", EventClass::Other},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(entryEventClass(QStringLiteral("03/15/12 10:22:33 - ") + row.text), row.expected);
    }
    for (const char* entry : {"", "03/15/12 10:22:33", "03/15/12 10:22:33 Overload"}) {
        SCOPED_TRACE(entry);
        EXPECT_EQ(entryEventClass(QString::fromLatin1(entry)), EventClass::Other);
    }
}

TEST(EventMarkerFeed, OneMarkerPerReadableEntryAndCommentRow) {
    const QStringList entries{"03/15/12 10:22:33 - Overload", "", "03/15/12 11:00:00 - Auto Start",
                              "03/15/12 12:00:00 - Digital Input One"};
    const QStringList comments{"Time\tComment", "03/15/2012 09:30:00\tpump pulled\tfor service",
                               "3/16/2012 8:05:00 AM\tback on"};
    const std::vector<EventMarker> markers = eventMarkers(entries, comments);
    ASSERT_EQ(markers.size(), 5u) << "the empty entry and the header row give none";

    const double mar15 = *datetime::fromDate(2012, 3, 15);
    struct Expected {
        double time;
        MarkerKind kind;
        MarkerSource source;
        int index;
        QString text;
    };
    const Expected expected[] = {
        {mar15 + (10 * 3600 + 22 * 60 + 33) / 86400.0, MarkerKind::Fault,
         MarkerSource::HistoryEvent, 0, entries[0]},
        {mar15 + 11 / 24.0, MarkerKind::StartStop, MarkerSource::HistoryEvent, 2, entries[2]},
        {mar15 + 12 / 24.0, MarkerKind::Other, MarkerSource::HistoryEvent, 3, entries[3]},
        {mar15 + 9.5 / 24.0, MarkerKind::Comment, MarkerSource::Comment, 1,
         "pump pulled\tfor service"},
        {mar15 + 1 + (8 * 60 + 5) / 1440.0, MarkerKind::Comment, MarkerSource::Comment, 2,
         "back on"},
    };
    for (std::size_t i = 0; i < markers.size(); ++i) {
        SCOPED_TRACE(expected[i].text.toStdString());
        EXPECT_NEAR(markers[i].time, expected[i].time, 1e-9);
        EXPECT_EQ(markers[i].kind, expected[i].kind);
        EXPECT_EQ(markers[i].source, expected[i].source);
        EXPECT_EQ(markers[i].index, expected[i].index);
        EXPECT_EQ(markers[i].text, expected[i].text);
    }
}

} // namespace
} // namespace trendax::history
