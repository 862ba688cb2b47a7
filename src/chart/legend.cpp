#include "chart/legend.h"

#include "chart/stripchartmodel.h"

namespace trendax {

std::vector<std::vector<LegendEntry>> legendByTrack(const StripChartModel& model,
                                                    const QStringList& names) {
    std::vector<std::vector<LegendEntry>> tracks(std::size_t(model.trackCount()));
    for (int k = 0; k < StripChartModel::variableCount; ++k) {
        const VariableSettings& v = model.variable(k);
        if (v.visible && v.track < model.trackCount() && model.pointCount(k) > 0)
            tracks[std::size_t(v.track)].push_back(
                {names.value(k).isEmpty() ? v.name : names.value(k), v.color});
    }
    return tracks;
}

} // namespace trendax
