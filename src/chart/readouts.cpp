#include "chart/readouts.h"

#include <cmath>

namespace trendax::readouts {

QString formatValue(double value) {
    if (!std::isfinite(value))
        return QString::number(value);
    double rounded = std::round(value * 100.0) / 100.0;
    if (rounded == 0.0)
        rounded = 0.0; // no "-0.00"
    return QString::number(rounded, 'f', 2);
}

} // namespace trendax::readouts
