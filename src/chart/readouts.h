#pragma once

#include <QString>

// Texts of the cursor and statistics read-outs.
namespace trendax::readouts {

// The "0.00" pattern: two decimals, at least one digit before the point, no grouping, a minus
// sign for negative values (and none for a value that rounds to zero).
QString formatValue(double value);

// A time difference in days as hours, minutes and seconds, rounded to the second: "1:02:03",
// "-0:00:05"; whole days count as hours ("49:00:00"). Not finite gives "?".
QString formatTimeDifference(double days);

// The status bar's text while the reference cursor is set: its time and how far the cursor is
// from it, "Ref: 3/15/2012 1:00:00 PM   Δt: 0:30:00" (positive when the cursor is later).
QString referenceStatus(double cursorX, double referenceX);

// The "Delta" column: the cursor value minus the value at the reference cursor, taken from the
// chart's unrounded values and then shown in the "0.00" pattern.
QString formatDelta(double cursorValue, double referenceValue);

} // namespace trendax::readouts
