#pragma once

#include "chart/charttypes.h"

#include <QString>
#include <QStringList>
#include <vector>

namespace trendax {

class StripChartModel;

struct LegendEntry {
    QString name;
    PackedColor color = 0;
};

// What each shown track's legend lists: the names and colours of its visible variables that hold
// points, in variable order; one list per shown track, empty for a track without any. names are
// the channel names the statistics panel shows, by variable; where one is missing or empty the
// variable's own name stands.
std::vector<std::vector<LegendEntry>> legendByTrack(const StripChartModel& model,
                                                    const QStringList& names);

} // namespace trendax
