#include "storage/numbers.h"

#include <QString>

#include <gtest/gtest.h>

namespace trendax {
namespace {

struct NumberCase {
    const char* text;
    std::optional<double> value;
};

class NumberText : public ::testing::TestWithParam<NumberCase> {};

TEST_P(NumberText, ReadsWithAPeriodAsDecimalMark) {
    const NumberCase& c = GetParam();
    EXPECT_EQ(numbers::parse(std::string_view(c.text)), c.value) << c.text;
    EXPECT_EQ(numbers::parse(QString::fromLatin1(c.text)), c.value) << c.text;
}

INSTANTIATE_TEST_SUITE_P(
    Forms, NumberText,
    ::testing::Values(NumberCase{"2.5", 2.5}, NumberCase{"  2.5\t", 2.5}, NumberCase{"-1", -1.0},
                      NumberCase{"+3", 3.0}, NumberCase{"1e3", 1000.0}, NumberCase{"1.5E-2", 0.015},
                      NumberCase{".5", 0.5}, NumberCase{"5.", 5.0}, NumberCase{"0", 0.0},
                      NumberCase{"0.1", 0.1}, NumberCase{"abc", {}}, NumberCase{"", {}},
                      NumberCase{"  ", {}}, NumberCase{"1,5", {}}, NumberCase{"inf", {}},
                      NumberCase{"nan", {}}, NumberCase{"0x10", {}}, NumberCase{"1e400", {}},
                      NumberCase{"1e", {}}, NumberCase{"-", {}}, NumberCase{".", {}},
                      NumberCase{"1 2", {}}, NumberCase{"--1", {}}));

} // namespace
} // namespace trendax
