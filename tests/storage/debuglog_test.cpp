#include "storage/datetime.h"
#include "storage/debuglog.h"
#include "support/scratchfolder.h"
#include "support/scriptedenvironment.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace trendax {
namespace {

class DebugLogTest : public ::testing::Test {
protected:
    test::ScratchFolder dir;
    test::ScriptedEnvironment env{dir.path()};

    void SetUp() override { env.setNow(*datetime::fromDateTime(2026, 11, 16, 15, 52, 46)); }
};

TEST_F(DebugLogTest, BeginWritesTheHeaderAndAnEmptyLine) {
    DebugLog log(env, dir.file("TXDebug.txt"));
    log.bbDebugOut = true;
    dir.write("TXDebug.txt", "old run\r\n");
    log.DebugOutBegin();
    EXPECT_EQ(dir.read("TXDebug.txt"),
              QByteArray("11/16/2026 3:52:46 PM: \tBegin Debug.....................\r\n"
                         "11/16/2026 3:52:46 PM: \t\r\n"));
}

TEST_F(DebugLogTest, EveryLineIsAppendedWithTheClockOfItsWrite) {
    DebugLog log(env, dir.file("TXDebug.txt"));
    log.bbDebugOut = true;
    log.DebugOut("LoadWell()");
    env.setNow(*datetime::fromDateTime(2026, 11, 17, 0, 0, 5));
    log.DebugOut("Dumping CSV file: \r\na[,]b\r\n");
    EXPECT_EQ(dir.read("TXDebug.txt"), QByteArray("11/16/2026 3:52:46 PM: \tLoadWell()\r\n"
                                                  "11/17/2026 12:00:05 AM: \tDumping CSV file: "
                                                  "\r\na[,]b\r\n\r\n"));
}

TEST_F(DebugLogTest, OffItNeitherCreatesNorTouchesTheFile) {
    DebugLog log(env, dir.file("TXDebug.txt"));
    log.DebugOutBegin();
    log.DebugOut("x");
    EXPECT_FALSE(QFile::exists(dir.file("TXDebug.txt")));
    dir.write("TXDebug.txt", "kept");
    log.DebugOutBegin();
    log.DebugOut("x");
    EXPECT_EQ(dir.read("TXDebug.txt"), QByteArray("kept"));
}

TEST_F(DebugLogTest, ByDefaultTheLogLiesInTheCurrentDirectory) {
    const QString previous = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(dir.path()));
    DebugLog log(env);
    log.bbDebugOut = true;
    log.DebugOut("here");
    QDir::setCurrent(previous);
    EXPECT_EQ(dir.read("TXDebug.txt"), QByteArray("11/16/2026 3:52:46 PM: \there\r\n"));
}

TEST_F(DebugLogTest, AnUnwritablePlaceLosesTheLineSilently) {
    DebugLog log(env, dir.file("no/such/folder/TXDebug.txt"));
    log.bbDebugOut = true;
    log.DebugOutBegin();
    log.DebugOut("lost");
    EXPECT_FALSE(QFile::exists(dir.file("no/such/folder/TXDebug.txt")));
}

} // namespace
} // namespace trendax
