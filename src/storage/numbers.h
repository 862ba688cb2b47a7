#pragma once

#include <QStringView>
#include <optional>
#include <string_view>

// Numbers in the program's files use one fixed convention on reading and writing alike: a period
// as the decimal mark, whatever the user's regional settings.
namespace trendax::numbers {

// Reads optional blanks, an optional sign, digits with an optional period, an optional exponent
// and optional blanks; at least one digit. Anything else, or a value out of the range of a
// double, fails. The result is the correctly rounded double.
std::optional<double> parse(std::string_view text);
std::optional<double> parse(QStringView text);

} // namespace trendax::numbers
