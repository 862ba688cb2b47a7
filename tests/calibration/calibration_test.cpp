// Calibration arithmetic: raw values behind shown ones, new factors from one or two points.
#include "calibration/calibration.h"

#include <gtest/gtest.h>
#include <limits>

namespace trendax::calibration {
namespace {

TEST(CalibrationArithmetic, TwoPointsMapTheirRawValuesOntoTheWantedOnes) {
    // Current scale 1, offset 0: points shown at 10.00 and 20.00 are to read 0 and 100.
    const RawValue low = rawFromShown(10.0, 1.0, 0.0);
    const RawValue high = rawFromShown(20.0, 1.0, 0.0);
    ASSERT_EQ(low.outcome, Outcome::Ok);
    ASSERT_EQ(high.outcome, Outcome::Ok);
    const Factors f = twoPointFactors(1.0, low.raw, high.raw, 0.0, 100.0);
    ASSERT_EQ(f.outcome, Outcome::Ok);
    EXPECT_DOUBLE_EQ(f.scale, 10.0);
    EXPECT_DOUBLE_EQ(f.offset, -100.0);
    // Shown with scale 2 and offset -1, 19 was raw 10.
    EXPECT_DOUBLE_EQ(rawFromShown(19.0, 2.0, -1.0).raw, 10.0);
}

TEST(CalibrationArithmetic, OnePointScalesThroughZeroAndDropsTheOffset) {
    // Current scale 2: a point shown at 50.00 is raw 25; wanted 100 gives scale 4.
    const RawValue point = rawFromShown(50.0, 2.0, 0.0);
    ASSERT_EQ(point.outcome, Outcome::Ok);
    EXPECT_DOUBLE_EQ(point.raw, 25.0);
    const Factors f = onePointFactors(2.0, point.raw, 100.0);
    ASSERT_EQ(f.outcome, Outcome::Ok);
    EXPECT_DOUBLE_EQ(f.scale, 4.0);
    EXPECT_DOUBLE_EQ(f.offset, 0.0);
    EXPECT_EQ(onePointOffsetText, QStringLiteral("0.0"));
}

TEST(CalibrationArithmetic, DivisionsByZeroAreOutcomesNotNumbers) {
    const double huge = std::numeric_limits<double>::max();
    struct Row {
        const char* name;
        Outcome got;
        Outcome expected;
    } rows[] = {
        {"points equal", twoPointFactors(1, 10, 10, 0, 100).outcome, Outcome::PointsEqual},
        {"neither point taken", twoPointFactors(1, 0, 0, 0, 100).outcome, Outcome::PointsEqual},
        {"one-point without a point", onePointFactors(1, 0, 100).outcome, Outcome::NoPoint},
        {"raw value with scale 0", rawFromShown(50, 0, 0).outcome, Outcome::CurrentScaleZero},
        {"two-point with scale 0", twoPointFactors(0, 1, 2, 0, 1).outcome,
         Outcome::CurrentScaleZero},
        {"one-point with scale 0", onePointFactors(0, 25, 100).outcome, Outcome::CurrentScaleZero},
        {"scale too large", onePointFactors(1, 1e-300, huge).outcome, Outcome::Overflow},
        {"offset too large", twoPointFactors(1, -huge, huge, huge, -huge).outcome,
         Outcome::Overflow},
        {"raw too large", rawFromShown(huge, 1e-300, 0).outcome, Outcome::Overflow},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.got, row.expected);
    }
}

TEST(CalibrationArithmetic, FactorTextHasUpToFifteenSignificantDigits) {
    struct Row {
        double value;
        const char* text;
    } rows[] = {
        {10.0, "10"},
        {-100.0, "-100"},
        {2.5, "2.5"},
        {0.1 + 0.2, "0.3"},
        {1.0 / 3.0, "0.333333333333333"},
        {123456789012345678.0, "1.23456789012346e+17"},
        {-0.0, "0"},
        {1e-7, "1e-07"},
        {12.35, "12.35"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(formatFactor(row.value), QString::fromLatin1(row.text));
    }
}

} // namespace
} // namespace trendax::calibration
