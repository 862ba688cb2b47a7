// The reader's two ways of being driven beyond the plain read: a pass that parses without
// keeping anything (what the load benchmark measures against), and a read buffer kept by the
// caller from file to file.
#include "loading/datalog.h"
#include "support/scratchfolder.h"

#include <QDir>
#include <gtest/gtest.h>

namespace trendax {
namespace {

// Rows for the fast path and the general path (quotes, AM/PM, missing and bad fields) of a
// 5-channel log, then an 8-channel line that widens it.
const QByteArray mixedLog = "AB12,03/15/12,13:45:12.34,1.5,2,3,4,5\r\n"
                            "AB12,03/15/12,13:45:13.00,\"2.5\",,3,x,5\r\n"
                            "AB12,03/15/12,1:45:14 PM,3.5,2,3,4,5\r\n"
                            "AB12,03/15/12,13:45:15.00,,2,3,4,5\r\n"
                            "AB12,03/15/12,13:45:16.50,-4.25,1e3,3,4,5,6,7,8\r\n"
                            "header,date,time,ch1,ch2\r\n";

TEST(DataLogPasses, AParseWithoutStoringReadsWhatAStoringParseKeeps) {
    LoadState kept, discarded;
    kept.numChannels = discarded.numChannels = 2;
    DataLogOptions options;
    const DataLogResult stored = parseDataLog(mixedLog, kept, options);
    options.storeValues = false;
    const DataLogResult passed = parseDataLog(mixedLog, discarded, options);

    EXPECT_EQ(passed.rowCount, stored.rowCount);
    EXPECT_EQ(passed.badRowCount, 2);
    EXPECT_EQ(passed.badRowCount, stored.badRowCount);
    EXPECT_EQ(passed.fieldCount, 11);
    EXPECT_EQ(discarded.numChannels, kept.numChannels);
    EXPECT_EQ(discarded.XMin, kept.XMin);
    EXPECT_EQ(discarded.XMax, kept.XMax);
    for (const auto& channel : passed.channels)
        EXPECT_EQ(channel, nullptr);

    // Every time stamp once and every value of every row, as the stored arrays hold them.
    double sum = 0;
    const XYArray& first = *stored.channels[0];
    for (std::size_t i = 0; i < first.count(); ++i) {
        sum += first.x(i);
        for (const auto& channel : stored.channels)
            sum += channel ? channel->y(i) : 0.0;
    }
    EXPECT_DOUBLE_EQ(passed.valueSum, sum);
    EXPECT_EQ(stored.valueSum, 0.0);
}

TEST(DataLogPasses, AKeptReadBufferLeavesNothingOfALongerFileBehind) {
    test::ScratchFolder scratch;
    QDir().mkpath(scratch.file("logfiles"));
    QByteArray longLog;
    for (int i = 0; i < 2000; ++i)
        longLog += "AB12,03/14/12,10:00:00.00,9,9,9,9,9\r\n";
    const QString longPath = scratch.write("logfiles/AB12031412.CSV", longLog);
    const QString shortPath = scratch.write("logfiles/AB12031512.CSV", mixedLog);

    QByteArray buffer;
    DataLogOptions options;
    options.readBuffer = &buffer;
    LoadState reused;
    readDataLog(longPath, scratch.path(), reused, options);
    ASSERT_GT(buffer.size(), mixedLog.size());
    const DataLogResult again = readDataLog(shortPath, scratch.path(), reused, options);

    LoadState fresh;
    fresh.numChannels = reused.numChannels;
    const DataLogResult alone = readDataLog(shortPath, scratch.path(), fresh, {});
    EXPECT_EQ(again.rowCount, 6);
    EXPECT_EQ(again.rowCount, alone.rowCount);
    EXPECT_EQ(again.fieldCount, alone.fieldCount);
    EXPECT_EQ(again.badRowCount, alone.badRowCount);
    for (std::size_t k = 0; k < alone.channels.size(); ++k) {
        ASSERT_EQ(bool(again.channels[k]), bool(alone.channels[k])) << k;
        if (!alone.channels[k])
            continue;
        ASSERT_EQ(again.channels[k]->count(), alone.channels[k]->count()) << k;
        for (std::size_t i = 0; i < alone.channels[k]->count(); ++i) {
            EXPECT_EQ(again.channels[k]->x(i), alone.channels[k]->x(i)) << k << " " << i;
            EXPECT_EQ(again.channels[k]->y(i), alone.channels[k]->y(i)) << k << " " << i;
        }
    }
}

} // namespace
} // namespace trendax
