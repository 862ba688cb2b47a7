#include "storage/numbers.h"

#include <charconv>
#include <string>

namespace trendax::numbers {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// True when s is digits with at most one period and at least one digit, then optionally an
// exponent with at least one digit: the only forms handed on to the library conversion, which
// would otherwise also take "inf", "nan" and hexadecimal forms.
bool isPlainNumber(std::string_view s) {
    size_t i = 0;
    int digits = 0;
    while (i < s.size() && isDigit(s[i])) {
        ++i;
        ++digits;
    }
    if (i < s.size() && s[i] == '.') {
        ++i;
        while (i < s.size() && isDigit(s[i])) {
            ++i;
            ++digits;
        }
    }
    if (digits == 0)
        return false;
    if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
        ++i;
        if (i < s.size() && (s[i] == '+' || s[i] == '-'))
            ++i;
        int expDigits = 0;
        while (i < s.size() && isDigit(s[i])) {
            ++i;
            ++expDigits;
        }
        if (expDigits == 0)
            return false;
    }
    return i == s.size();
}

} // namespace

std::optional<double> parse(std::string_view text) {
    size_t b = 0, e = text.size();
    while (b < e && isBlank(text[b]))
        ++b;
    while (e > b && isBlank(text[e - 1]))
        --e;
    std::string_view s = text.substr(b, e - b);
    bool negative = false;
    if (!s.empty() && (s[0] == '+' || s[0] == '-')) {
        negative = s[0] == '-';
        s.remove_prefix(1);
    }
    if (!isPlainNumber(s))
        return std::nullopt;
    double value = 0;
    const auto r = std::from_chars(s.data(), s.data() + s.size(), value);
    if (r.ec != std::errc() || r.ptr != s.data() + s.size())
        return std::nullopt;
    return negative ? -value : value;
}

std::optional<double> parse(QStringView text) {
    std::string latin;
    latin.reserve(size_t(text.size()));
    for (const QChar c : text) {
        // A character outside Latin-1 can never be part of a number.
        latin.push_back(c.unicode() < 0x80 ? char(c.unicode()) : '?');
    }
    return parse(std::string_view(latin));
}

} // namespace trendax::numbers
