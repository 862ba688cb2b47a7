#include "storage/datetime.h"
#include "storage/debuglog.h"
#include "support/scratchfolder.h"
#include "support/scriptedenvironment.h"

#include <QFile>
#include <gtest/gtest.h>

namespace trendax {
namespace {

struct DebugLogTest : ::testing::Test {
    test::ScratchFolder dir;
    test::ScriptedEnvironment env{dir.path()};
    DebugLogTest() { env.setNow(*datetime::fromDateTime(2026, 11, 16, 15, 52, 46)); }
};

TEST_F(DebugLogTest, BeginStartsAFreshLogAndEveryLineIsStampedWhenWritten) {
    DebugLog log(env, dir.file("TXDebug.txt"));
    log.bbDebugOut = true;
    dir.write("TXDebug.txt", "old run\r\n");
    log.DebugOutBegin();
    log.DebugOut("LoadWell()");
    env.setNow(*datetime::fromDateTime(2026, 11, 17, 0, 0, 5));
    log.DebugOut("Dumping CSV file: \r\na[,]b\r\n");
    EXPECT_EQ(dir.read("TXDebug.txt"),
              "11/16/2026 3:52:46 PM: \tBegin Debug.....................\r\n"
              "11/16/2026 3:52:46 PM: \t\r\n"
              "11/16/2026 3:52:46 PM: \tLoadWell()\r\n"
              "11/17/2026 12:00:05 AM: \tDumping CSV file: \r\na[,]b\r\n\r\n");
}

TEST_F(DebugLogTest, OffOrUnwritableItLeavesTheFilesAlone) {
    DebugLog off(env, dir.file("TXDebug.txt"));
    off.DebugOutBegin();
    off.DebugOut("x");
    EXPECT_FALSE(QFile::exists(dir.file("TXDebug.txt")));
    dir.write("TXDebug.txt", "kept");
    off.DebugOutBegin();
    off.DebugOut("x");
    EXPECT_EQ(dir.read("TXDebug.txt"), "kept");

    // An unwritable place loses the line silently.
    DebugLog lost(env, dir.file("no/such/folder/TXDebug.txt"));
    lost.bbDebugOut = true;
    lost.DebugOutBegin();
    lost.DebugOut("lost");
    EXPECT_FALSE(QFile::exists(dir.file("no")));
}

} // namespace
} // namespace trendax
