#include "chart/pixelpath.h"

#include <cmath>

namespace trendax {

void collapsePixelColumns(std::vector<QPointF>& points) {
    const std::size_t n = points.size();
    std::size_t write = 0;
    std::size_t i = 0;
    while (i < n) {
        const double column = std::floor(points[i].x());
        std::size_t lowAt = i, highAt = i; // screen y grows downwards: low = smallest y
        std::size_t j = i + 1;
        for (; j < n && std::floor(points[j].x()) == column; ++j) {
            if (points[j].y() < points[lowAt].y())
                lowAt = j;
            if (points[j].y() > points[highAt].y())
                highAt = j;
        }
        if (j - i <= 2) {
            // Nothing to gain from one or two vertices: keep them as they are.
            for (std::size_t k = i; k < j; ++k)
                points[write++] = points[k];
        } else {
            const double x = points[i].x();
            const double top = points[lowAt].y();
            const double bottom = points[highAt].y();
            if (std::round(top) == std::round(bottom)) {
                points[write++] = QPointF(x, points[i].y());
            } else if (lowAt < highAt) {
                points[write++] = QPointF(x, top);
                points[write++] = QPointF(x, bottom);
            } else {
                points[write++] = QPointF(x, bottom);
                points[write++] = QPointF(x, top);
            }
        }
        i = j;
    }
    points.resize(write);
}

} // namespace trendax
