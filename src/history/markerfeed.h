#pragma once

#include "chart/eventmarkers.h"

#include <QStringList>
#include <vector>

// The chart's event markers of the history column: one per history list entry and one per
// comment grid row, each knowing its row so that a click on it acts as a click on the row.
namespace trendax::history {

// entries: the history list, by row; commentRows: the comment grid, by row, as time cell + TAB +
// comment. Entries and rows whose time does not read give no marker.
std::vector<EventMarker> eventMarkers(const QStringList& entries, const QStringList& commentRows);

} // namespace trendax::history
