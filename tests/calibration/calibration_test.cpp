// Calibration arithmetic beyond what the dialog's worked examples show: offsets, divisions by
// zero and overflows, and the text of a factor.
#include "calibration/calibration.h"

#include <gtest/gtest.h>
#include <limits>

namespace trendax::calibration {
namespace {

TEST(CalibrationArithmetic, DivisionsByZeroAndOverflowsAreOutcomesNotNumbers) {
    // Shown with scale 2 and offset -1, 19 was raw 10.
    EXPECT_DOUBLE_EQ(rawFromShown(19.0, 2.0, -1.0).raw, 10.0);
    const double huge = std::numeric_limits<double>::max();
    const struct {
        const char* name;
        Outcome got;
        Outcome expected;
    } rows[] = {
        {"points equal", twoPointFactors(1, 10, 10, 0, 100).outcome, Outcome::PointsEqual},
        {"one-point without a point", onePointFactors(1, 0, 100).outcome, Outcome::NoPoint},
        {"raw value with scale 0", rawFromShown(50, 0, 0).outcome, Outcome::CurrentScaleZero},
        {"two-point with scale 0", twoPointFactors(0, 1, 2, 0, 1).outcome,
         Outcome::CurrentScaleZero},
        {"one-point with scale 0", onePointFactors(0, 25, 100).outcome, Outcome::CurrentScaleZero},
        {"scale too large", onePointFactors(1, 1e-300, huge).outcome, Outcome::Overflow},
        {"offset too large", twoPointFactors(1, -huge, huge, huge, -huge).outcome,
         Outcome::Overflow},
        {"raw too large", rawFromShown(huge, 1e-300, 0).outcome, Outcome::Overflow}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.got, row.expected);
    }
}

TEST(CalibrationArithmetic, FactorTextHasUpToFifteenSignificantDigits) {
    const std::pair<double, const char*> rows[] = {{0.1 + 0.2, "0.3"},
                                                   {1.0 / 3.0, "0.333333333333333"},
                                                   {123456789012345678.0, "1.23456789012346e+17"},
                                                   {-0.0, "0"},
                                                   {1e-7, "1e-07"},
                                                   {12.35, "12.35"}};
    for (const auto& [value, text] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(formatFactor(value), QString::fromLatin1(text));
    }
}

} // namespace
} // namespace trendax::calibration
