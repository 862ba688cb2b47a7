#include "storage/datetime.h"

#include <gtest/gtest.h>
#include <tuple>

namespace trendax::datetime {
namespace {

TEST(DateTimes, TwoDigitYearsSplitAtThirty) {
    const std::pair<int, int> rows[] = {
        {0, 2000}, {29, 2029}, {30, 1930}, {99, 1999}, {2012, 2012}};
    for (const auto& [year, full] : rows)
        EXPECT_EQ(fullYear(year), full) << year;
}

TEST(DateTimes, DayNumbersFollowTheOleEpoch) {
    EXPECT_EQ(*fromDate(1899, 12, 30), 0.0);
    EXPECT_EQ(*fromDate(1900, 1, 1), 2.0);
    EXPECT_EQ(*fromDate(2008, 1, 15), 39462.0);
    EXPECT_EQ(*fromDate(2012, 3, 15), 40983.0);
    EXPECT_TRUE(fromDate(2012, 2, 29));
    EXPECT_FALSE(fromDate(2012, 2, 30));
    EXPECT_FALSE(fromDate(2012, 13, 1));
}

TEST(DateTimes, CivilRoundTripsToTheMillisecond) {
    const Civil c = toCivil(*fromDateTime(2026, 11, 16, 15, 52, 46) + 0.25 / secondsPerDay);
    EXPECT_EQ(std::tie(c.year, c.month, c.day, c.hour, c.minute, c.second, c.millisecond),
              std::make_tuple(2026, 11, 16, 15, 52, 46, 250));
    // Just under the next day reads as the next midnight, not 23:59:59.999…
    EXPECT_EQ(toCivil(1.0 - 1e-12).day, 31);
    EXPECT_EQ(dateValue(40983.99), 40983.0);
}

TEST(DateTimes, ReadsControllerDatesAndTimes) {
    const double jan15 = 39462.0;
    const auto at = [](int h, int m, int s) { return (h * 3600 + m * 60 + s) / secondsPerDay; };
    const std::pair<const char*, std::optional<double>> rows[] = {
        {"01/15/08 13:45:12", jan15 + at(13, 45, 12)},
        {"01/15/08 1:45:12 PM", jan15 + at(13, 45, 12)},
        {"01/15/08 1:45:12 pm", jan15 + at(13, 45, 12)},
        {"01/15/08 12:00:00 AM", jan15},
        {"01/15/08 12:30 PM", jan15 + at(12, 30, 0)},
        {"01/15/08 1:45:12 ", jan15 + at(1, 45, 12)},
        {"01/15/08 ", jan15},
        {"1/15/2008", jan15},
        {"01-15-08", jan15},
        {"03/15/12", 40983.0},
        {"13:45", at(13, 45, 0)},
        {"02/30/12", std::nullopt},
        {"01/15/08 25:00:00", std::nullopt},
        {"01/15/08 13:45:12 PM", std::nullopt},
        {"01/15/08 1:45:12.", std::nullopt},
        {"Date", std::nullopt},
        {"", std::nullopt},
        {"01/15/008", std::nullopt},
        {"01/15", std::nullopt},
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
    EXPECT_EQ(formatGeneral(40983.0 + (15 * 3600 + 52 * 60 + 46) / 86400.0),
              "3/15/2012 3:52:46 PM");
    EXPECT_EQ(formatGeneral(40983.0 + 30 / 86400.0), "3/15/2012 12:00:30 AM");
    EXPECT_EQ(formatShortDate(40983.7), "3/15/2012");
    // Numbers plain and shortest.
    EXPECT_EQ(formatNumber(0), "0");
    EXPECT_EQ(formatNumber(40983.5), "40983.5");
    EXPECT_EQ(formatNumber(1e11), "100000000000");
    EXPECT_EQ(formatNumber(-2.25), "-2.25");
    EXPECT_EQ(formatNumber(0.1).toDouble(), 0.1);
}

} // namespace
} // namespace trendax::datetime
