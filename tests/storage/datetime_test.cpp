#include "storage/datetime.h"

#include <gtest/gtest.h>

namespace trendax::datetime {
namespace {

TEST(TwoDigitYears, SplitAtThirty) {
    EXPECT_EQ(fullYear(0), 2000);
    EXPECT_EQ(fullYear(29), 2029);
    EXPECT_EQ(fullYear(30), 1930);
    EXPECT_EQ(fullYear(99), 1999);
    EXPECT_EQ(fullYear(2012), 2012);
}

TEST(CalendarDates, DayNumbersFollowTheOleEpoch) {
    EXPECT_EQ(*fromDate(1899, 12, 30), 0.0);
    EXPECT_EQ(*fromDate(1900, 1, 1), 2.0);
    EXPECT_EQ(*fromDate(2008, 1, 15), 39462.0);
    EXPECT_EQ(*fromDate(2012, 3, 15), 40983.0);
    EXPECT_FALSE(fromDate(2012, 2, 30));
    EXPECT_FALSE(fromDate(2012, 13, 1));
    EXPECT_TRUE(fromDate(2012, 2, 29));
}

TEST(CalendarDates, CivilRoundTripsToTheMillisecond) {
    const double t = *fromDateTime(2026, 11, 16, 15, 52, 46) + 0.25 / secondsPerDay;
    const Civil c = toCivil(t);
    EXPECT_EQ(c.year, 2026);
    EXPECT_EQ(c.month, 11);
    EXPECT_EQ(c.day, 16);
    EXPECT_EQ(c.hour, 15);
    EXPECT_EQ(c.minute, 52);
    EXPECT_EQ(c.second, 46);
    EXPECT_EQ(c.millisecond, 250);
    // Just under the next day reads as the next midnight, not 23:59:59.999…
    EXPECT_EQ(toCivil(1.0 - 1e-12).day, 31);
    EXPECT_EQ(dateValue(40983.99), 40983.0);
}

struct ParseCase {
    const char* text;
    std::optional<double> expected;
};

class Parsing : public ::testing::TestWithParam<ParseCase> {};

TEST_P(Parsing, ReadsControllerDatesAndTimes) {
    const auto& p = GetParam();
    const auto got = parse(std::string_view(p.text));
    ASSERT_EQ(got.has_value(), p.expected.has_value()) << p.text;
    if (p.expected) {
        EXPECT_NEAR(*got, *p.expected, 1e-9) << p.text;
    }
}

const double jan15 = 39462.0;
INSTANTIATE_TEST_SUITE_P(
    Forms, Parsing,
    ::testing::Values(
        ParseCase{"01/15/08 13:45:12", jan15 + (13 * 3600 + 45 * 60 + 12) / 86400.0},
        ParseCase{"01/15/08 1:45:12 PM", jan15 + (13 * 3600 + 45 * 60 + 12) / 86400.0},
        ParseCase{"01/15/08 1:45:12 pm", jan15 + (13 * 3600 + 45 * 60 + 12) / 86400.0},
        ParseCase{"01/15/08 12:00:00 AM", jan15},
        ParseCase{"01/15/08 12:30 PM", jan15 + 0.5 + 30 * 60 / 86400.0},
        ParseCase{"01/15/08 1:45:12 ", jan15 + (3600 + 45 * 60 + 12) / 86400.0},
        ParseCase{"01/15/08 ", jan15}, ParseCase{"1/15/2008", jan15}, ParseCase{"01-15-08", jan15},
        ParseCase{"03/15/12", 40983.0}, ParseCase{"13:45", (13 * 3600 + 45 * 60) / 86400.0},
        ParseCase{"02/30/12", std::nullopt}, ParseCase{"01/15/08 25:00:00", std::nullopt},
        ParseCase{"01/15/08 13:45:12 PM", std::nullopt},
        ParseCase{"01/15/08 1:45:12.", std::nullopt}, ParseCase{"Date", std::nullopt},
        ParseCase{"", std::nullopt}, ParseCase{"01/15/008", std::nullopt},
        ParseCase{"01/15", std::nullopt}));

TEST(Formatting, GeneralFormLeavesOutMidnight) {
    EXPECT_EQ(formatGeneral(40983.0), QStringLiteral("3/15/2012"));
    EXPECT_EQ(formatGeneral(40983.0 + (15 * 3600 + 52 * 60 + 46) / 86400.0),
              QStringLiteral("3/15/2012 3:52:46 PM"));
    EXPECT_EQ(formatGeneral(40983.0 + 30 / 86400.0), QStringLiteral("3/15/2012 12:00:30 AM"));
    EXPECT_EQ(formatShortDate(40983.7), QStringLiteral("3/15/2012"));
}

TEST(Formatting, NumbersArePlainAndShortest) {
    EXPECT_EQ(formatNumber(0), QStringLiteral("0"));
    EXPECT_EQ(formatNumber(40983.5), QStringLiteral("40983.5"));
    EXPECT_EQ(formatNumber(1e11), QStringLiteral("100000000000"));
    EXPECT_EQ(formatNumber(-2.25), QStringLiteral("-2.25"));
    EXPECT_EQ(formatNumber(0.1).toDouble(), 0.1);
}

} // namespace
} // namespace trendax::datetime
