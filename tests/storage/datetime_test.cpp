#include "storage/datetime.h"
#include "storage/numbers.h"

#include <QString>
#include <gtest/gtest.h>
#include <tuple>

namespace trendax::datetime {
namespace {

TEST(DateTimes, DayNumbersFollowTheOleEpochAndTwoDigitYearsSplitAtThirty) {
    for (const auto& [year, full] : {std::pair{0, 2000}, {29, 2029}, {30, 1930}, {2012, 2012}})
        EXPECT_EQ(fullYear(year), full) << year;
    EXPECT_EQ(*fromDate(1899, 12, 30), 0.0);
    EXPECT_EQ(*fromDate(1900, 1, 1), 2.0);
    EXPECT_EQ(*fromDate(2012, 3, 15), 40983.0);
    EXPECT_TRUE(fromDate(2012, 2, 29));
    EXPECT_FALSE(fromDate(2012, 2, 30));
    EXPECT_FALSE(fromDate(2012, 13, 1));
    const Civil c = toCivil(*fromDateTime(2026, 11, 16, 15, 52, 46) + 0.25 / secondsPerDay);
    EXPECT_EQ(std::tie(c.year, c.month, c.day, c.hour, c.minute, c.second, c.millisecond),
              std::make_tuple(2026, 11, 16, 15, 52, 46, 250));
    // Just under the next day reads as the next midnight, not 23:59:59.999…
    EXPECT_EQ(toCivil(1.0 - 1e-12).day, 31);
    EXPECT_EQ(dateValue(40983.99), 40983.0);
}

TEST(DateTimes, ReadsControllerDatesAndTimes) {
    const double jan15 = 39462.0, pm = (13 * 3600 + 45 * 60 + 12) / secondsPerDay;
    const std::pair<const char*, std::optional<double>> rows[] = {
        {"01/15/08 1:45:12 pm", jan15 + pm},
        {"01/15/08 12:30 PM", jan15 + 0.5 + 1800 / secondsPerDay},
        {"01/15/08 12:00:00 AM", jan15},
        {"1/15/2008", jan15},
        {"01-15-08", jan15},
        {"13:45", pm - 12 / secondsPerDay},
        {"02/30/12", std::nullopt},
        {"01/15/08 25:00:00", std::nullopt},
        {"01/15/08 13:45:12 PM", std::nullopt},
        {"", std::nullopt},
        {"01/15/008", std::nullopt},
    };
    for (const auto& [text, expected] : rows) {
        const auto got = parse(std::string_view(text));
        EXPECT_EQ(got.has_value(), expected.has_value()) << '"' << text << '"';
        if (got && expected) {
            EXPECT_NEAR(*got, *expected, 1e-9) << '"' << text << '"';
        }
    }
}

TEST(DateTimes, Formatting) {
    // The general form leaves out the time at midnight.
    EXPECT_EQ(formatGeneral(40983.0), "3/15/2012");
    EXPECT_EQ(formatGeneral(40983.0 + 30 / 86400.0), "3/15/2012 12:00:30 AM");
    EXPECT_EQ(formatGeneral(40983.0 + 15.5 / 24), "3/15/2012 3:30:00 PM");
    EXPECT_EQ(formatShortDate(40983.7), "3/15/2012");
    for (const auto& [value, text] : {std::pair<double, const char*>{0, "0"},
                                      {40983.5, "40983.5"},
                                      {1e11, "100000000000"},
                                      {-2.25, "-2.25"}})
        EXPECT_EQ(formatNumber(value), text);
    EXPECT_EQ(formatNumber(0.1).toDouble(), 0.1);
}

TEST(NumberText, ReadsWithAPeriodAsDecimalMark) {
    const std::pair<const char*, std::optional<double>> rows[] = {
        {"  2.5\t", 2.5}, {"-1", -1.0},  {"1.5E-2", 0.015}, {".5", 0.5}, {"5.", 5.0},
        {"abc", {}},      {"", {}},      {"1,5", {}},       {"inf", {}}, {"nan", {}},
        {"0x10", {}},     {"1e400", {}}, {"1 2", {}},       {"--1", {}}};
    for (const auto& [text, value] : rows) {
        EXPECT_EQ(trendax::numbers::parse(std::string_view(text)), value) << '"' << text << '"';
        EXPECT_EQ(trendax::numbers::parse(QString::fromLatin1(text)), value) << '"' << text << '"';
    }
}

} // namespace
} // namespace trendax::datetime
