#include "calibration/calibration.h"

#include <cmath>

namespace trendax::calibration {

namespace {

Factors checked(double scale, double offset) {
    if (!std::isfinite(scale) || !std::isfinite(offset))
        return {Outcome::Overflow, 0, 0};
    return {Outcome::Ok, scale, offset};
}

} // namespace

RawValue rawFromShown(double shown, double curScale, double curOffset) {
    if (curScale == 0)
        return {Outcome::CurrentScaleZero, 0};
    const double raw = (shown - curOffset) / curScale;
    if (!std::isfinite(raw))
        return {Outcome::Overflow, 0};
    return {Outcome::Ok, raw};
}

Factors twoPointFactors(double curScale, double rawMin, double rawMax, double newValue1,
                        double newValue2) {
    if (curScale == 0)
        return {Outcome::CurrentScaleZero, 0, 0};
    const double rawSpan = rawMax - rawMin;
    if (rawSpan == 0)
        return {Outcome::PointsEqual, 0, 0};
    const double scale = (newValue2 - newValue1) / rawSpan;
    return checked(scale, newValue1 - rawMin * scale);
}

Factors onePointFactors(double curScale, double rawMax, double newValue2) {
    if (curScale == 0)
        return {Outcome::CurrentScaleZero, 0, 0};
    if (rawMax == 0)
        return {Outcome::NoPoint, 0, 0};
    return checked(newValue2 / rawMax, 0);
}

QString formatFactor(double value) {
    if (value == 0)
        value = 0; // no "-0"
    return QString::number(value, 'g', 15);
}

} // namespace trendax::calibration
