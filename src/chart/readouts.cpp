#include "chart/readouts.h"

#include "storage/datetime.h"

#include <cmath>

namespace trendax::readouts {

QString formatValue(double value) {
    if (!std::isfinite(value))
        return QString::number(value);
    // From 2^52 / 100 on a double has no hundredths to round, and times 100 it could overflow.
    double rounded = std::abs(value) < 0x1p52 / 100.0 ? std::round(value * 100.0) / 100.0 : value;
    if (rounded == 0.0)
        rounded = 0.0; // no "-0.00"
    return QString::number(rounded, 'f', 2);
}

QString formatTimeDifference(double days) {
    const double seconds = std::round(days * datetime::secondsPerDay);
    if (!std::isfinite(seconds))
        return QStringLiteral("?");
    const double whole = std::abs(seconds);
    const double hours = std::floor(whole / 3600.0);
    const int minutes = int(std::fmod(whole, 3600.0) / 60.0);
    const int rest = int(std::fmod(whole, 60.0));
    // Hours of a difference between far-apart times exceed any integer type; a double prints
    // them whole.
    return (seconds < 0.0 ? QStringLiteral("-") : QString()) + QString::number(hours, 'f', 0) +
           ':' + QString::number(minutes).rightJustified(2, '0') + ':' +
           QString::number(rest).rightJustified(2, '0');
}

QString referenceStatus(double cursorX, double referenceX) {
    return QStringLiteral("Ref: ") + datetime::formatGeneral(referenceX) +
           QStringLiteral("   \u0394t: ") + formatTimeDifference(cursorX - referenceX);
}

QString formatDelta(double cursorValue, double referenceValue) {
    return formatValue(cursorValue - referenceValue);
}

} // namespace trendax::readouts
