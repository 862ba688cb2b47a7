#include "chart/readouts.h"

#include <gtest/gtest.h>

namespace trendax::readouts {
namespace {

TEST(ValueText, FollowsTheTwoDecimalPattern) {
    EXPECT_EQ(formatValue(0), QStringLiteral("0.00"));
    EXPECT_EQ(formatValue(12.345), QStringLiteral("12.35"));
    EXPECT_EQ(formatValue(-1.004), QStringLiteral("-1.00"));
    EXPECT_EQ(formatValue(-0.001), QStringLiteral("0.00"));
    EXPECT_EQ(formatValue(0.5), QStringLiteral("0.50"));
    EXPECT_EQ(formatValue(1234567.891), QStringLiteral("1234567.89"));
    EXPECT_EQ(formatValue(19.996), QStringLiteral("20.00"));
}

} // namespace
} // namespace trendax::readouts
