#pragma once

#include <QString>

// Texts of the cursor and statistics read-outs.
namespace trendax::readouts {

// The "0.00" pattern: two decimals, at least one digit before the point, no grouping, a minus
// sign for negative values (and none for a value that rounds to zero).
QString formatValue(double value);

} // namespace trendax::readouts
