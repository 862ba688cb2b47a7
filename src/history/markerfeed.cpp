#include "history/markerfeed.h"

#include "history/eventcodes.h"
#include "history/historyfile.h"
#include "history/usercomments.h"

namespace trendax::history {

namespace {

MarkerKind markerKind(EventClass c) {
    switch (c) {
    case EventClass::Fault:
        return MarkerKind::Fault;
    case EventClass::StartStop:
        return MarkerKind::StartStop;
    case EventClass::Other:
        break;
    }
    return MarkerKind::Other;
}

} // namespace

std::vector<EventMarker> eventMarkers(const QStringList& entries, const QStringList& commentRows) {
    std::vector<EventMarker> markers;
    markers.reserve(std::size_t(entries.size() + commentRows.size()));
    for (qsizetype row = 0; row < entries.size(); ++row) {
        const QString& entry = entries[row];
        if (const auto t = historyEntryTime(entry))
            markers.push_back({*t, markerKind(entryEventClass(entry)), MarkerSource::HistoryEvent,
                               int(row), entry});
    }
    for (qsizetype row = 0; row < commentRows.size(); ++row) {
        const QString& line = commentRows[row];
        const QStringView time = commentRowTime(line);
        if (const auto t = commentCellTime(time))
            markers.push_back({*t, MarkerKind::Comment, MarkerSource::Comment, int(row),
                               time.size() < line.size() ? line.mid(time.size() + 1) : QString()});
    }
    return markers;
}

} // namespace trendax::history
