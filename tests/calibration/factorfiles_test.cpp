#include "calibration/factorfiles.h"
#include "support/fulldisk.h"
#include "support/scratchfolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

namespace trendax {
namespace {

class FactorFiles : public ::testing::Test {
protected:
    test::ScratchFolder app;
    QString scalePath, offsetPath;

    double scale() { return ReadScale(app.path(), "AB12", scalePath); }
    double offset() { return ReadOffset(app.path(), "AB12", offsetPath); }
};

TEST_F(FactorFiles, TheFirstLineIsReadAndAnythingElseGivesTheDefault) {
    const struct {
        const char* name;
        std::optional<QByteArray> bytes; // nullopt: no file
        std::optional<double> value;     // nullopt: scale 1, offset 0
    } rows[] = {
        {"no file", std::nullopt, std::nullopt},    {"second line ignored", "2.5\r\n9\r\n", 2.5},
        {"blanks around", "  -1.25  \n", -1.25},    {"exponent", "1e3", 1000.0},
        {"zero is a scale", "0\r\n", 0.0},          {"empty", "", std::nullopt},
        {"text", "abc\r\n", std::nullopt},          {"empty first line", "\r\n2\r\n", std::nullopt},
        {"decimal comma", "1,5\r\n", std::nullopt}, {"NUL", QByteArray("2\0", 2), std::nullopt}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        for (const char* name : {"cnffiles/AB12scal.txt", "cnffiles/AB12offs.txt"}) {
            QFile::remove(app.file(name));
            if (row.bytes)
                app.write(name, *row.bytes);
        }
        EXPECT_EQ(scale(), row.value.value_or(1.0));
        EXPECT_EQ(offset(), row.value.value_or(0.0));
    }
    EXPECT_EQ(scalePath, app.path() + "/cnffiles/AB12scal.txt");
    EXPECT_EQ(offsetPath, app.path() + "/cnffiles/AB12offs.txt");
}

TEST_F(FactorFiles, ImportedUpperCaseNamesAreReadAndReplaced) {
    app.write("cnffiles/AB12SCAL.TXT", "0\r\n");
    app.write("cnffiles/AB12OFFS.TXT", "3\r\n");
    EXPECT_EQ(scale(), 0.0);
    EXPECT_EQ(offset(), 3.0);
    ASSERT_TRUE(WriteFactors(scalePath, "2", offsetPath, "-1"));
    EXPECT_EQ(app.read("cnffiles/AB12SCAL.TXT"), QByteArray("2\r\n"));
    EXPECT_EQ(app.read("cnffiles/AB12OFFS.TXT"), QByteArray("-1\r\n"));
    EXPECT_EQ(QDir(app.file("cnffiles")).entryList(QDir::Files).size(), 2);
}

TEST_F(FactorFiles, FullDiskKeepsOldScaleFile) {
    test::FullDisk disk(app.file("cnffiles"));
    SCOPED_TRACE(disk.how());
    app.write("cnffiles/AB12scal.txt", "2\r\n");
    app.write("cnffiles/AB12offs.txt", "7\r\n");
    scale();
    offset();
    disk.fill();
    // The writer stops at the scale file: the caller then reloads nothing.
    EXPECT_FALSE(WriteFactors(scalePath, "3", offsetPath, "-1"));
    EXPECT_EQ(app.read("cnffiles/AB12scal.txt"), QByteArray("2\r\n"));
    EXPECT_EQ(app.read("cnffiles/AB12offs.txt"), QByteArray("7\r\n"));
}

TEST_F(FactorFiles, SymlinkedScaleFileIsReplacedNotWrittenThrough) {
    const QString target = app.write("elsewhere/target.txt", "keep\r\n");
    app.mkdir("cnffiles");
    ASSERT_TRUE(QFile::link(target, app.file("cnffiles/AB12scal.txt")));
    scale();
    offset();
    ASSERT_TRUE(WriteFactors(scalePath, "3", offsetPath, "-1"));
    EXPECT_EQ(app.read("elsewhere/target.txt"), QByteArray("keep\r\n"));
    EXPECT_FALSE(QFileInfo(app.file("cnffiles/AB12scal.txt")).isSymLink());
    EXPECT_EQ(app.read("cnffiles/AB12scal.txt"), QByteArray("3\r\n"));
}

} // namespace
} // namespace trendax
