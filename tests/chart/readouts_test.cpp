#include "chart/readouts.h"

#include <gtest/gtest.h>

namespace trendax::readouts {
namespace {

TEST(ValueText, FollowsTheTwoDecimalPattern) {
    const std::pair<double, const char*> rows[] = {{0, "0.00"},
                                                   {0.004, "0.00"},
                                                   {0.5, "0.50"},
                                                   {12.345, "12.35"},
                                                   {19.996, "20.00"},
                                                   {1234.5678, "1234.57"},
                                                   {1234567.891, "1234567.89"},
                                                   {-1.004, "-1.00"},
                                                   {-1234.5678, "-1234.57"},
                                                   {-0.001, "0.00"}};
    for (const auto& [value, text] : rows)
        EXPECT_EQ(formatValue(value), QString::fromLatin1(text)) << value;
}

} // namespace
} // namespace trendax::readouts
