// The calibration arithmetic beyond the dialog's worked examples, and the factor files.
#include "calibration/calibration.h"
#include "calibration/factorfiles.h"
#include "support/scratchfolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>
#include <limits>

namespace trendax {
namespace {
using namespace calibration;

TEST(CalibrationArithmetic, DivisionsByZeroAndOverflowsAreOutcomesNotNumbers) {
    EXPECT_DOUBLE_EQ(rawFromShown(19.0, 2.0, -1.0).raw, 10.0); // shown 19, offset -1
    const double huge = std::numeric_limits<double>::max();
    const struct {
        const char* name;
        Outcome got, expected;
    } rows[] = {{"two-point with scale 0", twoPointFactors(0, 1, 2, 0, 1).outcome,
                 Outcome::CurrentScaleZero},
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
    const std::pair<double, const char*> rows[] = {
        {0.1 + 0.2, "0.3"}, {1.0 / 3.0, "0.333333333333333"},
        {1e-7, "1e-07"},    {-0.0, "0"},
        {12.35, "12.35"},   {1.23456789012345678e17, "1.23456789012346e+17"}};
    for (const auto& [value, text] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(formatFactor(value), QString::fromLatin1(text));
    }
}

class FactorFiles : public ::testing::Test {
protected:
    test::ScratchFolder app;
    QString scalePath, offsetPath;

    // Reads both factors, as a load does before anything is written.
    std::pair<double, double> read() {
        return {ReadScale(app.path(), "AB12", scalePath),
                ReadOffset(app.path(), "AB12", offsetPath)};
    }
};

TEST_F(FactorFiles, TheFirstLineIsReadAndAnythingElseGivesTheDefault) {
    const QByteArray blanks(70'000, ' ');
    const struct {
        const char* name;
        std::optional<QByteArray> bytes; // nullopt: no file
        std::optional<double> value;     // nullopt: scale 1, offset 0
    } rows[] = {
        {"no file", std::nullopt, std::nullopt},    {"second line ignored", "2.5\r\n9\r\n", 2.5},
        {"blanks around", "  -1.25  \n", -1.25},    {"exponent", "1e3", 1000.0},
        {"zero is a scale", "0\r\n", 0.0},          {"empty", "", std::nullopt},
        {"text", "abc\r\n", std::nullopt},          {"empty first line", "\r\n2\r\n", std::nullopt},
        {"decimal comma", "1,5\r\n", std::nullopt}, {"NUL", QByteArray("2\0", 2), std::nullopt},
        // First lines longer than any buffer are read whole.
        {"blanks around, long", blanks + "2.5" + blanks + "\r\n7\r\n", 2.5},
        {"text after long blanks", "5" + blanks + "x\r\n", std::nullopt},
        {"two numbers apart", "5" + blanks + "5", std::nullopt},
        {"a long line of digits", QByteArray(70'000, '1') + "\r\n", std::nullopt}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        for (const char* name : {"cnffiles/AB12scal.txt", "cnffiles/AB12offs.txt"}) {
            QFile::remove(app.file(name));
            if (row.bytes)
                app.write(name, *row.bytes);
        }
        EXPECT_EQ(read(), std::pair(row.value.value_or(1.0), row.value.value_or(0.0)));
    }
    EXPECT_EQ(scalePath, app.path() + "/cnffiles/AB12scal.txt");
}

TEST_F(FactorFiles, ImportedUpperCaseNamesAreReadAndReplaced) {
    app.write("cnffiles/AB12SCAL.TXT", "0\r\n");
    app.write("cnffiles/AB12OFFS.TXT", "3\r\n");
    EXPECT_EQ(read(), std::pair(0.0, 3.0));
    ASSERT_TRUE(WriteFactors(scalePath, "2", offsetPath, "-1"));
    EXPECT_EQ(app.read("cnffiles/AB12SCAL.TXT"), QByteArray("2\r\n"));
    EXPECT_EQ(app.read("cnffiles/AB12OFFS.TXT"), QByteArray("-1\r\n"));
    EXPECT_EQ(QDir(app.file("cnffiles")).entryList(QDir::Files).size(), 2);
}

TEST_F(FactorFiles, SymlinkedScaleFileIsReplacedNotWrittenThrough) {
    const QString target = app.write("elsewhere/target.txt", "keep\r\n");
    app.mkdir("cnffiles");
    ASSERT_TRUE(QFile::link(target, app.file("cnffiles/AB12scal.txt")));
    read();
    ASSERT_TRUE(WriteFactors(scalePath, "3", offsetPath, "-1"));
    EXPECT_EQ(app.read("elsewhere/target.txt"), QByteArray("keep\r\n"));
    EXPECT_FALSE(QFileInfo(app.file("cnffiles/AB12scal.txt")).isSymLink());
    EXPECT_EQ(app.read("cnffiles/AB12scal.txt"), QByteArray("3\r\n"));
}

} // namespace
} // namespace trendax
