#pragma once

#include "chart/charttypes.h"

#include <QString>
#include <vector>

namespace trendax {

class StripChartModel;

struct LegendEntry {
    QString name;
    PackedColor color = 0;
};

// What each shown track's legend lists: the names and colours of its visible variables that hold
// points, in variable order; one list per shown track, empty for a track without any.
std::vector<std::vector<LegendEntry>> legendByTrack(const StripChartModel& model);

} // namespace trendax
