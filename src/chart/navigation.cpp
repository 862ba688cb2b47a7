#include "chart/navigation.h"

#include "chart/stripchartmodel.h"

namespace trendax::navigation {

void zoomTime(StripChartModel& chart, int mode) {
    // The new span and the re-centring are one view for Back.
    const ViewGesture gesture(chart.viewHistory());
    const double start = chart.xViewStart();
    const double end = chart.xViewEnd();
    if (chart.cursorX() < start || chart.cursorX() > end)
        chart.setCursorX(start + chart.xSpan() / 2);
    if (mode == 0) {
        const double span = chart.xSpan() - chart.xSpan() / 2;
        if (span >= smallestSpan)
            chart.setXSpan(span);
    } else if (mode == 1) {
        chart.setXSpan(chart.xSpan() + chart.xSpan());
    }
    const double half = chart.xSpan() / 2;
    chart.showXRange(chart.cursorX() - half, chart.cursorX() + half);
}

void scrollTime(StripChartModel& chart, int mode) {
    const double start = chart.xViewStart();
    const double end = chart.xViewEnd();
    const double step = (end - start) / 10;
    if (mode == 0)
        chart.showXRange(start - step, end - step);
    else if (mode == 1)
        chart.showXRange(start + step, end + step);
}

std::optional<double> fixedSpan(QStringView key) {
    if (key == u"1hour")
        return 1.0 / 24;
    if (key == u"1day")
        return 1.0;
    if (key == u"1week")
        return 7.0;
    if (key == u"30days")
        return 30.0;
    return std::nullopt;
}

void autoScaleY(StripChartModel& chart) {
    for (int t = 0; t <= chart.trackCount(); ++t) {
        bool first = true;
        for (int v = 0; v < StripChartModel::variableCount; ++v) {
            chart.setCurrentVar(v);
            const VariableSettings& variable = chart.variable(v);
            const int k = variable.track;
            chart.setCurrentTrack(k);
            if (k != t || !variable.visible)
                continue;
            const double hi = chart.dataMax(v);
            const double lo = chart.dataMin(v);
            if (first) {
                first = false;
                chart.setTrackYMax(k, hi);
                chart.setTrackYMin(k, lo);
                chart.setVarYMax(v, hi);
                chart.setVarYMin(v, lo);
            } else {
                if (chart.track(k).yMax < hi)
                    chart.setTrackYMax(k, hi);
                if (chart.track(k).yMin > lo)
                    chart.setTrackYMin(k, lo);
                chart.setVarYMax(v, chart.track(k).yMax);
                chart.setVarYMin(v, chart.track(k).yMin);
            }
        }
    }
}

} // namespace trendax::navigation
