#pragma once

#include <QString>

// The arithmetic of calibrating a one-channel log from points picked on the chart. The chart
// shows calibrated values (shown = raw x scale + offset), so a picked value is first turned back
// into its raw value; new factors then map the raw values onto the values the user wants.
namespace trendax::calibration {

// Why a calculation has no result. Every case would otherwise divide by zero or overflow.
enum class Outcome {
    Ok,
    // Two-point: both points at one raw value (or neither taken), so the raw span is zero.
    PointsEqual,
    // One-point: no point taken, or the point at raw 0, through which the new line already runs.
    NoPoint,
    // The current scale is 0: a shown value no longer tells its raw value.
    CurrentScaleZero,
    // The result is too large for a number.
    Overflow,
};

struct RawValue {
    Outcome outcome = Outcome::Ok;
    double raw = 0; // meaningful only when outcome is Ok
};

struct Factors {
    Outcome outcome = Outcome::Ok;
    double scale = 0; // meaningful only when outcome is Ok
    double offset = 0;
};

// The text one-point calibration shows and writes as the new offset.
inline const QString onePointOffsetText = QStringLiteral("0.0");

// The raw value behind a shown value: (shown - curOffset) / curScale.
RawValue rawFromShown(double shown, double curScale, double curOffset);

// Scale and offset that map rawMin to newValue1 and rawMax to newValue2. curScale is the scale
// the raw values were taken with: 0 means they could not be taken.
Factors twoPointFactors(double curScale, double rawMin, double rawMax, double newValue1,
                        double newValue2);

// Scale that maps rawMax to newValue2 with offset 0; the current offset is dropped.
Factors onePointFactors(double curScale, double rawMax, double newValue2);

// A number as the calibration dialog shows it and the factor files hold it: up to 15
// significant digits, no padding, a period as decimal mark, an exponent only for very large or
// small values ("1e+20"), and 0 never negative.
QString formatFactor(double value);

} // namespace trendax::calibration
