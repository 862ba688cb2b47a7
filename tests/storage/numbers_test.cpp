#include "storage/numbers.h"

#include <QString>
#include <gtest/gtest.h>

namespace trendax {
namespace {

TEST(NumberText, ReadsWithAPeriodAsDecimalMark) {
    const std::pair<const char*, std::optional<double>> rows[] = {
        {"2.5", 2.5},      {"  2.5\t", 2.5}, {"-1", -1.0},  {"+3", 3.0}, {"1e3", 1000.0},
        {"1.5E-2", 0.015}, {".5", 0.5},      {"5.", 5.0},   {"0", 0.0},  {"0.1", 0.1},
        {"abc", {}},       {"", {}},         {"  ", {}},    {"1,5", {}}, {"inf", {}},
        {"nan", {}},       {"0x10", {}},     {"1e400", {}}, {"1e", {}},  {"-", {}},
        {".", {}},         {"1 2", {}},      {"--1", {}}};
    for (const auto& [text, value] : rows) {
        EXPECT_EQ(numbers::parse(std::string_view(text)), value) << '"' << text << '"';
        EXPECT_EQ(numbers::parse(QString::fromLatin1(text)), value) << '"' << text << '"';
    }
}

} // namespace
} // namespace trendax
