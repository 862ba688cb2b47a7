#include "storage/datetime.h"

#include <charconv>
#include <chrono>
#include <cmath>

namespace trendax::datetime {

namespace {

using namespace std::chrono;

constexpr sys_days epoch = sys_days{year{1899} / December / 30};

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

// A small cursor over the text with the few reads the date grammar needs.
struct Scanner {
    std::string_view s;
    size_t i = 0;

    void skipBlanks() {
        while (i < s.size() && isBlank(s[i]))
            ++i;
    }
    bool atEnd() const { return i >= s.size(); }
    // Reads 1 to maxDigits decimal digits; returns the count read.
    int number(int& value, int maxDigits) {
        int n = 0;
        value = 0;
        while (i < s.size() && n < maxDigits && s[i] >= '0' && s[i] <= '9') {
            value = value * 10 + (s[i] - '0');
            ++i;
            ++n;
        }
        return n;
    }
    bool accept(char c) {
        if (i < s.size() && s[i] == c) {
            ++i;
            return true;
        }
        return false;
    }
};

char upper(char c) {
    return (c >= 'a' && c <= 'z') ? char(c - 'a' + 'A') : c;
}

// Parses "H:MM[:SS][ ][AM|PM]" from the scanner; returns the fraction of a day.
std::optional<double> parseTime(Scanner& sc) {
    int h = 0, m = 0, s = 0;
    if (sc.number(h, 2) == 0 || !sc.accept(':'))
        return std::nullopt;
    if (sc.number(m, 2) == 0)
        return std::nullopt;
    if (sc.accept(':') && sc.number(s, 2) == 0)
        return std::nullopt;
    sc.skipBlanks();
    if (!sc.atEnd()) {
        const char c0 = upper(sc.s[sc.i]);
        if (c0 != 'A' && c0 != 'P')
            return std::nullopt;
        ++sc.i;
        if (!sc.atEnd() && upper(sc.s[sc.i]) == 'M')
            ++sc.i;
        if (h < 1 || h > 12)
            return std::nullopt;
        h = (h % 12) + (c0 == 'P' ? 12 : 0);
    }
    return timeOfDay(h, m, s);
}

} // namespace

int fullYear(int y) {
    if (y >= 0 && y <= 29)
        return 2000 + y;
    if (y >= 30 && y <= 99)
        return 1900 + y;
    return y;
}

std::optional<DateTime> fromDate(int y, int m, int d) {
    const year_month_day ymd{year{y}, month{unsigned(m)}, day{unsigned(d)}};
    if (m < 1 || m > 12 || d < 1 || d > 31 || !ymd.ok())
        return std::nullopt;
    return double((sys_days{ymd} - epoch).count());
}

std::optional<double> timeOfDay(int h, int m, int s) {
    if (h < 0 || h > 23 || m < 0 || m > 59 || s < 0 || s > 59)
        return std::nullopt;
    return (h * 3600.0 + m * 60.0 + s) / secondsPerDay;
}

std::optional<DateTime> fromDateTime(int y, int mo, int d, int h, int mi, int s) {
    const auto date = fromDate(y, mo, d);
    const auto time = timeOfDay(h, mi, s);
    if (!date || !time)
        return std::nullopt;
    return *date + *time;
}

Civil toCivil(DateTime value) {
    // Round to the millisecond first so that 0.99999999 of a day does not read as 23:59:59.999…
    const double totalMs = std::round(value * secondsPerDay * 1000.0);
    const auto days = static_cast<long long>(std::floor(totalMs / (secondsPerDay * 1000.0)));
    long long ms = static_cast<long long>(totalMs - double(days) * secondsPerDay * 1000.0);
    const year_month_day ymd{epoch + std::chrono::days{days}};
    Civil c;
    c.year = int(ymd.year());
    c.month = int(unsigned(ymd.month()));
    c.day = int(unsigned(ymd.day()));
    c.hour = int(ms / 3'600'000);
    ms %= 3'600'000;
    c.minute = int(ms / 60'000);
    ms %= 60'000;
    c.second = int(ms / 1000);
    c.millisecond = int(ms % 1000);
    return c;
}

DateTime dateValue(DateTime value) {
    const Civil c = toCivil(value);
    return *fromDate(c.year, c.month, c.day);
}

std::optional<DateTime> parse(std::string_view text) {
    Scanner sc{text};
    sc.skipBlanks();
    const size_t start = sc.i;
    int m = 0, d = 0, y = 0;
    double result = 0;
    if (sc.number(m, 2) > 0 && (sc.accept('/') || sc.accept('-'))) {
        const char sep = sc.s[sc.i - 1];
        if (sc.number(d, 2) == 0 || !sc.accept(sep))
            return std::nullopt;
        const int yearDigits = sc.number(y, 4);
        if (yearDigits != 2 && yearDigits != 4)
            return std::nullopt;
        const auto date = fromDate(yearDigits == 2 ? fullYear(y) : y, m, d);
        if (!date)
            return std::nullopt;
        result = *date;
        sc.skipBlanks();
        if (sc.atEnd())
            return result;
    } else {
        sc.i = start;
    }
    const auto time = parseTime(sc);
    if (!time)
        return std::nullopt;
    sc.skipBlanks();
    if (!sc.atEnd())
        return std::nullopt;
    return result + *time;
}

std::optional<DateTime> parse(const QString& text) {
    const QByteArray latin = text.toLatin1();
    return parse(std::string_view(latin.constData(), size_t(latin.size())));
}

QString formatShortDate(DateTime value) {
    const Civil c = toCivil(value);
    return QStringLiteral("%1/%2/%3").arg(c.month).arg(c.day).arg(c.year);
}

QString formatLongTime(DateTime value) {
    const Civil c = toCivil(value);
    const int h12 = c.hour % 12 == 0 ? 12 : c.hour % 12;
    return QStringLiteral("%1:%2:%3 %4")
        .arg(h12)
        .arg(c.minute, 2, 10, QLatin1Char('0'))
        .arg(c.second, 2, 10, QLatin1Char('0'))
        .arg(c.hour < 12 ? QStringLiteral("AM") : QStringLiteral("PM"));
}

QString formatGeneral(DateTime value) {
    const Civil c = toCivil(value);
    const bool midnight = c.hour == 0 && c.minute == 0 && c.second == 0;
    const bool dayZero = c.year == 1899 && c.month == 12 && c.day == 30;
    if (dayZero && !midnight)
        return formatLongTime(value);
    if (midnight)
        return formatShortDate(value);
    return formatShortDate(value) + QLatin1Char(' ') + formatLongTime(value);
}

bool isCalendarYear(DateTime value) {
    // 1 January 1 and 31 December 9999, whole.
    return value >= -693593.0 && value < 2958466.0;
}

namespace {

char* twoDigits(char* out, int value) {
    *out++ = char('0' + value / 10 % 10);
    *out++ = char('0' + value % 10);
    return out;
}

} // namespace

int writeIso(DateTime value, char* out) {
    // Rounded to the hundredth first, so that 59.996 s reads as the next second.
    const double hundredths = std::round(value * secondsPerDay * 100.0);
    const Civil c = toCivil(hundredths / (secondsPerDay * 100.0));
    char* p = out;
    p = twoDigits(twoDigits(p, c.year / 100), c.year % 100);
    *p++ = '-';
    p = twoDigits(p, c.month);
    *p++ = '-';
    p = twoDigits(p, c.day);
    *p++ = 'T';
    p = twoDigits(p, c.hour);
    *p++ = ':';
    p = twoDigits(p, c.minute);
    *p++ = ':';
    p = twoDigits(p, c.second);
    if (const int h = (c.millisecond + 5) / 10; h != 0) {
        *p++ = '.';
        p = twoDigits(p, h);
    }
    return int(p - out);
}

int writeController(DateTime value, char* out) {
    // Rounded to the second, like the controller's own time stamps.
    const Civil c = toCivil(std::round(value * secondsPerDay) / secondsPerDay);
    char* p = out;
    p = twoDigits(p, c.month);
    *p++ = '/';
    p = twoDigits(p, c.day);
    *p++ = '/';
    p = twoDigits(p, c.year % 100);
    *p++ = ' ';
    p = twoDigits(p, c.hour);
    *p++ = ':';
    p = twoDigits(p, c.minute);
    *p++ = ':';
    p = twoDigits(p, c.second);
    return int(p - out);
}

QString formatNumber(double value) {
    // Fixed notation without a precision is the shortest positional text that round-trips.
    char buf[400];
    const auto r = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed);
    if (r.ec != std::errc())
        return QString::number(value, 'g', 17);
    return QString::fromLatin1(buf, qsizetype(r.ptr - buf));
}

} // namespace trendax::datetime
