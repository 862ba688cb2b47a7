#include "calibration/factorfiles.h"
#include "loading/datalog.h"
#include "support/fulldisk.h"
#include "support/scratchfolder.h"

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

TEST_F(FactorFiles, WithoutFilesTheSiteIsUncalibratedAndThePathsAreSet) {
    EXPECT_EQ(scale(), 1.0);
    EXPECT_EQ(offset(), 0.0);
    EXPECT_EQ(scalePath, app.path() + "/cnffiles/AB12scal.txt");
    EXPECT_EQ(offsetPath, app.path() + "/cnffiles/AB12offs.txt");
}

TEST_F(FactorFiles, OnlyTheFirstLineCounts) {
    app.write("cnffiles/AB12scal.txt", "2.5\r\n9\r\n");
    app.write("cnffiles/AB12offs.txt", "  -1.25  \n");
    EXPECT_EQ(scale(), 2.5);
    EXPECT_EQ(offset(), -1.25);
}

TEST_F(FactorFiles, UnreadableFactorsFallBackToTheDefaults) {
    app.write("cnffiles/AB12scal.txt", "");
    EXPECT_EQ(scale(), 1.0);
    app.write("cnffiles/AB12scal.txt", "abc\r\n");
    EXPECT_EQ(scale(), 1.0);
    app.write("cnffiles/AB12scal.txt", "\r\n2\r\n");
    EXPECT_EQ(scale(), 1.0);
    app.write("cnffiles/AB12offs.txt", "abc\r\n");
    EXPECT_EQ(offset(), 0.0);
    app.write("cnffiles/AB12scal.txt", "1,5\r\n");
    EXPECT_EQ(scale(), 1.0);
}

TEST_F(FactorFiles, ZeroIsAScaleAndImportedUpperCaseNamesAreRead) {
    app.write("cnffiles/AB12SCAL.TXT", "0\r\n");
    app.write("cnffiles/AB12OFFS.TXT", "3\r\n");
    EXPECT_EQ(scale(), 0.0);
    EXPECT_EQ(offset(), 3.0);
}

TEST_F(FactorFiles, TheWriterReplacesBothFilesWhateverTheirCase) {
    app.write("cnffiles/AB12SCAL.TXT", "0\r\n");
    scale();
    offset();
    ASSERT_TRUE(WriteFactors(scalePath, "2", offsetPath, "-1"));
    EXPECT_EQ(app.read("cnffiles/AB12SCAL.TXT"), QByteArray("2\r\n"));
    EXPECT_FALSE(QFile::exists(app.file("cnffiles/AB12scal.txt")));
    EXPECT_EQ(app.read("cnffiles/AB12offs.txt"), QByteArray("-1\r\n"));
    EXPECT_EQ(scale(), 2.0);
    EXPECT_EQ(offset(), -1.0);
}

TEST_F(FactorFiles, AFailedScaleFileStopsTheWriterBeforeTheOffsetFile) {
    app.write("cnffiles/AB12offs.txt", "7\r\n");
    offset();
    EXPECT_FALSE(WriteFactors(app.file("missing/AB12scal.txt"), "2", offsetPath, "-1"));
    EXPECT_EQ(app.read("cnffiles/AB12offs.txt"), QByteArray("7\r\n"));
    // Before any site was loaded both paths are empty.
    EXPECT_FALSE(WriteFactors(QString(), "1", QString(), "0"));
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

TEST_F(FactorFiles, AOneChannelLogIsShownCalibrated) {
    app.write("cnffiles/AB12scal.txt", "2\r\n");
    app.write("cnffiles/AB12offs.txt", "-1\r\n");
    LoadState state;
    state.mOffset = offset();
    state.mScale = scale();
    const DataLogResult r = parseDataLog("AB12,03/15/12,00:00:01.00,10\r\n", state);
    EXPECT_EQ(r.channels[0]->y(0), 19.0);

    // Reset writes "1" and "0", and the next load shows raw values.
    ASSERT_TRUE(WriteFactors(scalePath, "1", offsetPath, "0"));
    LoadState again;
    again.mOffset = offset();
    again.mScale = scale();
    EXPECT_EQ(parseDataLog("AB12,03/15/12,00:00:01.00,10\r\n", again).channels[0]->y(0), 10.0);
}

TEST(FactorBytes, ReadTheFirstLineOnly) {
    EXPECT_EQ(factorFromBytes("2.5\r\n9"), 2.5);
    EXPECT_EQ(factorFromBytes("1e3"), 1000.0);
    EXPECT_FALSE(factorFromBytes(""));
    EXPECT_FALSE(factorFromBytes("\n2"));
    EXPECT_FALSE(factorFromBytes(QByteArray("2\0", 2)));
}

} // namespace
} // namespace trendax
