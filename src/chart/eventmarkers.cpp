#include "chart/eventmarkers.h"

#include "chart/chartmapping.h"

#include <algorithm>
#include <cmath>

namespace trendax {

namespace {

int columnOf(const TimeMapping& mapping, double time) {
    return int(std::floor(safePixel(mapping.toX(time))));
}

} // namespace

void EventMarkers::assign(std::vector<EventMarker> markers) {
    std::erase_if(markers, [](const EventMarker& m) { return !std::isfinite(m.time); });
    std::stable_sort(markers.begin(), markers.end(),
                     [](const EventMarker& a, const EventMarker& b) { return a.time < b.time; });
    markers_ = std::move(markers);
}

void EventMarkers::columns(const TimeMapping& mapping, std::vector<MarkerColumn>& out) const {
    out.clear();
    if (!(mapping.end > mapping.start))
        return;
    const auto byTime = [](const EventMarker& m, double t) { return m.time < t; };
    auto it = std::lower_bound(markers_.begin(), markers_.end(), mapping.start, byTime);
    const auto last = std::upper_bound(it, markers_.end(), mapping.end,
                                       [](double t, const EventMarker& m) { return t < m.time; });
    for (; it != last; ++it) {
        const int x = columnOf(mapping, it->time);
        if (!out.empty() && out.back().x == x) {
            ++out.back().count;
            out.back().kind = std::min(out.back().kind, it->kind);
        } else {
            out.push_back({x, std::size_t(it - markers_.begin()), 1, it->kind});
        }
    }
}

std::optional<MarkerColumn> EventMarkers::columnAt(const TimeMapping& mapping, double x,
                                                   double flagWidth) const {
    if (!(mapping.end > mapping.start) || markers_.empty())
        return std::nullopt;
    const int pixel = int(std::floor(x));
    // The last marker in view whose column is at or left of the pointer's.
    const auto inView = std::upper_bound(markers_.begin(), markers_.end(), mapping.end,
                                         [](double t, const EventMarker& m) { return t < m.time; });
    const auto after = std::partition_point(markers_.begin(), inView, [&](const EventMarker& m) {
        return columnOf(mapping, m.time) <= pixel;
    });
    if (after == markers_.begin())
        return std::nullopt;
    const EventMarker& nearest = *(after - 1);
    if (nearest.time < mapping.start)
        return std::nullopt;
    const int column = columnOf(mapping, nearest.time);
    if (x > column + flagWidth + 1.0)
        return std::nullopt;
    const auto first = std::partition_point(markers_.begin(), after, [&](const EventMarker& m) {
        return m.time < mapping.start || columnOf(mapping, m.time) < column;
    });
    MarkerColumn c{column, std::size_t(first - markers_.begin()), std::size_t(after - first),
                   MarkerKind::Other};
    for (auto it = first; it != after; ++it)
        c.kind = std::min(c.kind, it->kind);
    return c;
}

QString EventMarkers::toolTip(const MarkerColumn& column, std::size_t maxLines) const {
    if (column.count == 1)
        return markers_.at(column.first).text;
    QString text = QStringLiteral("%1 events and comments here:").arg(column.count);
    const std::size_t shown = std::min(column.count, maxLines);
    for (std::size_t i = 0; i < shown; ++i)
        text += QLatin1Char('\n') + markers_.at(column.first + i).text;
    if (column.count > shown)
        text += QStringLiteral("\n... and %1 more").arg(column.count - shown);
    return text;
}

} // namespace trendax
