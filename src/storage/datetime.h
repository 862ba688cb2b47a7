#pragma once

#include <QString>
#include <optional>
#include <string_view>

// The program's one date-time type: days since 30 December 1899, the fraction being the time of
// day. Every time stamp, chart X value, span and calendar date uses it, and this module is the
// only place that converts it to and from calendar dates, clock times and text.
namespace trendax::datetime {

using DateTime = double;

inline constexpr double secondsPerDay = 86400.0;

struct Civil {
    int year = 1899;
    int month = 12;
    int day = 30;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
};

// The one rule for two-digit years: 00-29 are 2000-2029, 30-99 are 1930-1999. Years of three or
// more digits are taken as they stand.
int fullYear(int year);

// Day number of a calendar date; nullopt for an impossible date (month 13, 30 February, ...).
std::optional<DateTime> fromDate(int year, int month, int day);
std::optional<DateTime> fromDateTime(int year, int month, int day, int hour, int minute,
                                     int second);
// Fraction of a day for a clock time; nullopt unless 0 <= h < 24, m < 60, s < 60.
std::optional<double> timeOfDay(int hour, int minute, int second);

// Calendar date and clock time of a date-time, rounded to the millisecond.
Civil toCivil(DateTime value);

// The calendar day of a date-time, time of day dropped.
DateTime dateValue(DateTime value);

// Reads a date, a time, or a date followed by a time the way the controller's files write them:
// month/day/year (separators '/' or '-', two- or four-digit year, two digits by fullYear), and
// H:MM or H:MM:SS in 24-hour form or followed by AM/PM (any letter case, blank optional).
// Leading and trailing blanks are ignored; anything else fails.
std::optional<DateTime> parse(std::string_view text);
std::optional<DateTime> parse(const QString& text);

// "M/D/YYYY h:mm:ss AP"; the time is left out at exactly midnight, the date when it is day 0.
QString formatGeneral(DateTime value);
// "M/D/YYYY".
QString formatShortDate(DateTime value);
// "h:mm:ss AP".
QString formatLongTime(DateTime value);
// Whether a date-time lies in the years 1 to 9999, the years the calendar texts can show.
bool isCalendarYear(DateTime value);
// Writes "YYYY-MM-DDTHH:MM:SS" (ISO 8601, local time), with ".hh" when the hundredths of the
// second are not zero, into out (at least 23 bytes); returns the length. Years 1 to 9999 only.
int writeIso(DateTime value, char* out);
// Writes the controller's "MM/DD/YY HH:MM:SS", rounded to the second, into out (at least 17
// bytes); returns 17. Years 1 to 9999 only.
int writeController(DateTime value, char* out);
// The shortest plain decimal text that reads back as the same double ("40544.5", "0", "1e+11"
// never: always positional notation).
QString formatNumber(double value);

} // namespace trendax::datetime
