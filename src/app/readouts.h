#pragma once

#include <QString>

// Texts of the cursor and statistics read-outs.
namespace trendax::readouts {

// The "0.00" pattern: two decimals, at least one digit before the point, no grouping, a minus
// sign for negative values (and none for a value that rounds to zero).
QString formatValue(double value);

// Reads back a value shown with formatValue.
double parseValue(const QString& text);

} // namespace trendax::readouts
