// The history column's markers on the chart: which events are faults, starts and stops, and the
// marker of each list entry and comment row.
#include "history/eventcodes.h"
#include "history/markerfeed.h"
#include "storage/datetime.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

namespace trendax::history {
namespace {

TEST(EventClasses, EveryListEntryHasTheClassOfItsEvent) {
    const std::pair<EventClass, std::vector<const char*>> groups[] = {
        {EventClass::Fault,
         {"Overload", "Underload", "Current Unbalance", "Power Fail", "Voltage Too Low",
          "Analog 1 Low", "ORB Intake Pressure  Low", "History Event (HI20)"}},
        {EventClass::StartStop, {"Auto Start", "Manual Stop"}},
        {EventClass::Other, {"Power Restored", "Rotation Error", "History Event (old)"}}};
    for (const auto& [expected, texts] : groups)
        for (const char* text : texts) {
            SCOPED_TRACE(text);
            EXPECT_EQ(entryEventClass(QStringLiteral("03/15/12 10:22:33 - ") + text), expected);
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
    // Each marker as its second from 03/15/12 00:00, kind, list or grid, row and text.
    const double mar15 = *datetime::fromDate(2012, 3, 15);
    const char* const kinds[] = {"fault", "start/stop", "comment", "other"};
    QStringList found;
    for (const EventMarker& m : eventMarkers(entries, comments))
        found << QString("%1 %2 %3 %4 %5")
                     .arg(std::lround((m.time - mar15) * 86400))
                     .arg(kinds[int(m.kind)])
                     .arg(m.source == MarkerSource::Comment ? "grid" : "list")
                     .arg(m.index)
                     .arg(m.text);
    EXPECT_EQ(found, QStringList({"37353 fault list 0 03/15/12 10:22:33 - Overload",
                                  "39600 start/stop list 2 03/15/12 11:00:00 - Auto Start",
                                  "43200 other list 3 03/15/12 12:00:00 - Digital Input One",
                                  "34200 comment grid 1 pump pulled\tfor service",
                                  "115500 comment grid 2 back on"}))
        << "the empty entry and the header row give none";
}

} // namespace
} // namespace trendax::history
