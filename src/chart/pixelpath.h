#pragma once

#include <QPointF>
#include <vector>

namespace trendax {

// Shortens a polyline in device pixels without changing the pixels it covers noticeably: a run
// of consecutive vertices in one pixel column becomes its two extremes, in the order the run
// reaches them (one vertex if they share a pixel row). Every value stays inside the vertical
// span drawn for its column, so spikes survive; the lines between columns then join extreme to
// extreme. A month at zoom-all thus draws about two vertices per pixel column, no more than a
// sparse curve of the same width.
void collapsePixelColumns(std::vector<QPointF>& points);

} // namespace trendax
