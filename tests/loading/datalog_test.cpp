#include "loading/datalog.h"
#include "storage/datetime.h"
#include "support/scratchfolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trendax {
namespace {

using ::testing::ElementsAre;

double at(int y, int mo, int d, int h, int mi, int s, int hundredths = 0) {
    return *datetime::fromDateTime(y, mo, d, h, mi, s) + hundredths / 8'640'000.0;
}

// Parses on the fast or the general path; with a log, the table is dumped into it as well.
DataLogResult read(const QByteArray& bytes, LoadState& state, bool fast = true,
                   QStringList* log = nullptr) {
    DataLogOptions options;
    if (log)
        options.debugOut = [log](const QString& line) { *log << line; };
    options.dumpTable = log != nullptr;
    options.fastPath = fast;
    return parseDataLog(bytes, state, options);
}

// The y values of an array: "1 3 5".
QString values(const XYArray& a) {
    QStringList out;
    for (std::size_t i = 0; i < a.count(); ++i)
        out << QString::number(a.y(i));
    return out.join(' ');
}

// Both paths, each case named.
template <typename Case, typename Check> void onBothPaths(const Case& cases, const Check& check) {
    for (const auto& c : cases) {
        for (const bool fast : {true, false}) {
            SCOPED_TRACE(std::string(c.name) + (fast ? ", fast path" : ", general path"));
            LoadState state;
            check(c, state, fast);
        }
    }
}

// A first row at 10:00:00.00 sets the stamp that failed parses keep.
TEST(DataLogRows, TimeStampsFollowTheRowRules) {
    const double ten = at(2008, 1, 15, 10, 0, 0);
    const struct {
        const char *name, *date, *time;
        double expected;
    } cases[] = {
        {"hundredths", "01/15/08", "13:45:12.34", at(2008, 1, 15, 13, 45, 12, 34)},
        {"pm", "01/15/08", "1:45:12 PM", at(2008, 1, 15, 13, 45, 12)},
        {"am", "01/15/08", "12:05:00 AM", at(2008, 1, 15, 0, 5, 0)},
        {"lower-case pm is a 24-hour time", "01/15/08", "1:45:12 pm", at(2008, 1, 15, 1, 45, 12)},
        {"missing time is midnight", "01/15/08", "", at(2008, 1, 15, 0, 0, 0)},
        {"failed parse keeps the stamp", "13/45/08", "13:45:12.34", ten + 34 / 8'640'000.0},
        {"single-digit hour with hundredths", "01/15/08", "9:05:01.50", ten + 50 / 8'640'000.0},
        {"letters are no hundredths", "01/15/08", "13:45:12.xx", at(2008, 1, 15, 13, 45, 12)},
        {"four-digit year and dashes", "1-15-2008", "23:59:59.99", at(2008, 1, 15, 23, 59, 59, 99)},
        {"years from 30 are the 1900s", "01/15/30", "00:00:00.00", at(1930, 1, 15, 0, 0, 0)},
    };
    onBothPaths(cases, [](const auto& c, LoadState& state, bool fast) {
        const DataLogResult r = read(QByteArray("AB12,01/15/08,10:00:00.00,1\r\nAB12,") + c.date +
                                         "," + c.time + ",2\r\n",
                                     state, fast);
        ASSERT_EQ(r.channels[0]->count(), 2u);
        EXPECT_EQ(r.channels[0]->x(1), c.expected);
    });
}

QByteArray numbered(int channels) {
    QByteArray line = "AB12,03/15/12,00:00:01.00";
    for (int k = 1; k <= channels; ++k)
        line += "," + QByteArray::number(k);
    return line + "\r\n";
}

TEST(DataLogRows, FollowTheRowRules) {
    const struct {
        const char* name;
        int fieldCount, rows, badRows;
        QString values;   // of the first channels: "1 3 5/10 30 50" for channels 1 and 2
        int lastSecond;   // the time of the last listed channel's last point
        QByteArray bytes; // of the data log, 03/15/12
    } cases[] = {
        {"bad rows are dropped without gaps", 5, 5, 2, "1 3 5/10 30 50", 5,
         "AB12,03/15/12,00:00:01.00,1,10\r\nAB12,03/15/12,00:00:02.00,,20\r\n"
         "AB12,03/15/12,00:00:03.00,3,30\r\nAB12,03/15/12,00:00:04.00,n/a,40\r\n"
         "AB12,03/15/12,00:00:05.00,5,50\r\n"},
        {"a header-like first line is a bad row", 4, 2, 1, "7", 1,
         "Site,Date,Time,Phase A\r\nAB12,03/15/12,00:00:01.00,7\r\n"},
        {"missing and non-numeric channels read as zero", 7, 1, 0, "1/0/0/4", 1,
         "AB12,03/15/12,00:00:01.00,1,abc,,4\r\n"},
        {"the widest line sets the field count", 6, 2, 0, "1 2/0 20/0 200", 2,
         "AB12,03/15/12,00:00:01.00,1\r\nAB12,03/15/12,00:00:02.00,2,20,200\r\n"},
        {"blank lines, byte order mark and line ends", 4, 2, 0, "1 2", 2,
         "\xEF\xBB\xBF"
         "AB12,03/15/12,00:00:01.00,1\n\r\n  \r\nAB12,03/15/12,00:00:02.00,2"},
        {"quoted fields hold commas and quotes", 5, 1, 0, "1.5/0", 1,
         "\"AB,12\",\"03/15/12\",\"00:00:01.00\",\"1.5\",\"x\"\"y\"\r\n"},
        {"an empty file has no rows", 0, 0, 0, "", 0, ""},
        {"13 of 88 channels are kept", 91, 1, 0, "1/2/3/4/5/6/7/8/9/10/11/12/13", 1, numbered(88)},
    };
    onBothPaths(cases, [](const auto& c, LoadState& state, bool fast) {
        const DataLogResult r = read(c.bytes, state, fast);
        EXPECT_EQ(r.fieldCount, c.fieldCount);
        EXPECT_EQ(r.rowCount, c.rows);
        EXPECT_EQ(r.badRowCount, c.badRows);
        EXPECT_EQ(state.numChannels, std::max(c.fieldCount - 3, 0));
        EXPECT_EQ(r.tracksEnabled.has_value(), c.rows > c.badRows);
        for (int k = 0; k < channelSlots; ++k) {
            ASSERT_EQ(bool(r.channels[k]), k == 0 || k < state.numChannels) << k;
            // The channels of a file keep one column of time stamps between them.
            EXPECT_TRUE(!r.channels[k] || r.channels[k]->sharedX() == r.channels[0]->sharedX());
        }
        const QStringList listed = c.values.split('/');
        for (int k = 0; k < listed.size(); ++k)
            EXPECT_EQ(values(*r.channels[k]), listed[k]) << "channel " << k + 1;
        const XYArray& last = *r.channels[listed.size() - 1];
        if (last.count() > 0) {
            EXPECT_EQ(last.x(last.count() - 1), at(2012, 3, 15, 0, 0, c.lastSecond));
        }
    });
}

TEST(DataLogLoad, OnlyOneChannelLoadsAreCalibrated) {
    LoadState state;
    state.mScale = 2;
    state.mOffset = -1;
    EXPECT_EQ(values(*read("AB12,03/15/12,00:00:01.00,10\r\n", state).channels[0]), "19");
    EXPECT_EQ(values(*read("AB12,03/15/12,00:00:01.00,10,20,30\r\n", state).channels[0]), "10");
    // The load's count decides: a one-channel day after a three-channel day stays raw.
    EXPECT_EQ(values(*read("AB12,03/16/12,00:00:01.00,10\r\n", state).channels[0]), "10");
}

// ---- Diagnostics and progress ----

TEST(DataLogDiagnostics, EveryLineInOrderWithTheTableAsRead) {
    LoadState state;
    QStringList log;
    // A channel field that is no number is missing; text fields stay as read.
    read("AB12,03/15/12,12:00:00.00,1,\"2\"\r\n\"AB,12\",03/15/12,12:00:01.00,,\"x\"\"y\"\r\n"
         "\"x\"\"y\",03/15/12,12:00:02.00,3,1e\r\n",
         state, true, &log);
    EXPECT_EQ(log, (QStringList{"LoadQXL: file opened", "LoadQXL: numChannels = 2",
                                "LoadQXL: Rs1.Fields.Count = 5",
                                "Dumping CSV file: " + QString(56, '*') +
                                    "\r\nAB12[,]03/15/12[,]12:00:00.00[,]1[,]2\r\n"
                                    "AB,12[,]03/15/12[,]12:00:01.00[,][null][,][null]\r\n"
                                    "x\"y[,]03/15/12[,]12:00:02.00[,]3[,][null]\r\n",
                                "LoadQXL: memory allocated", "LoadQXL: begin loop; reccount = 3",
                                "LoadQXL: xval = 40983.5", "LoadQXL: Badrowcount = 1",
                                "LoadQXL: end load loop"}));
}

TEST(DataLogDiagnostics, ProgressEveryThousandRows) {
    using Call = std::pair<qsizetype, qsizetype>;
    std::vector<Call> calls;
    DataLogOptions options;
    options.progress = [&](qsizetype i, qsizetype n) { calls.emplace_back(i, n); };
    LoadState state;
    parseDataLog(QByteArray("AB12,03/15/12,12:00:00.00,1\r\n").repeated(2500), state, options);
    EXPECT_THAT(calls, ElementsAre(Call{0, 2500}, Call{1000, 2500}, Call{2000, 2500}));
}

// A line of 40 MB: reading it, measuring it and passing over it each let events run now and
// then, and the rows come out as ever.
TEST(DataLogDiagnostics, LongStretchesWithoutRowsStillLetEventsRun) {
    const QByteArray bytes = "AB12,03/15/12,12:00:00.00,1" + QByteArray(",2").repeated(20'000'000) +
                             "\r\nAB12,03/15/12,12:00:01.00,3\r\n";
    int calls = 0;
    DataLogOptions options;
    options.keepAlive = [&] { ++calls; };
    LoadState state;
    const DataLogResult r = parseDataLog(bytes, state, options);
    EXPECT_GE(calls, 3 * int(bytes.size() / keepAliveBytes));
    ASSERT_TRUE(r.channels[0]);
    EXPECT_EQ(values(*r.channels[0]), "1 3");
}

// ---- Fast and general paths ----

// Lines of a few megabytes with quotes in many places: around the site code and the time, in the
// channels, past the channels with commas and doubled quotes inside, and never closed. The rows
// without quotes around them take the fast path; the general path must read them all the same.
QByteArray longLinesWithQuotes() {
    QByteArray bytes = numbered(13);
    bytes += "\"AB,12\",03/15/12,\"00:00:02.50\",1.5,\"2\",3,\"4\"\"\",5,6,7,8,9,10,11,12,\"13\"";
    bytes += ",\"x,\"\"y\"\"\",\"" + QByteArray("1,").repeated(1'000'000) + "\"";
    bytes += QByteArray(",2").repeated(20'000) + "\r\n";
    bytes += "AB12,03/15/12,00:00:03.00,7\r\n";
    bytes += "AB12,03/15/12,00:00:04.00,8" + QByteArray(",9").repeated(12) + ",\"never closed";
    bytes += QByteArray(",1").repeated(500'000) + "\r\n";
    return bytes + "AB12,03/15/12,00:00:05.00,\"9\r\n";
}

TEST(DataLogPaths, QuotesInLongLinesAreReadFieldByField) {
    for (const bool fast : {true, false}) {
        SCOPED_TRACE(fast ? "fast path" : "general path");
        LoadState state;
        const DataLogResult r = read(longLinesWithQuotes(), state, fast);
        EXPECT_EQ(r.fieldCount, 16 + 2 + 20'000);
        EXPECT_EQ(r.badRowCount, 0);
        ASSERT_TRUE(r.channels[12]) << "all thirteen channels are read";
        EXPECT_EQ(values(*r.channels[0]), "1 1.5 7 8 9");
        EXPECT_EQ(values(*r.channels[3]), "4 0 0 9 0") << "4\" is no number";
        EXPECT_EQ(values(*r.channels[12]), "13 13 0 9 0");
        EXPECT_DOUBLE_EQ(r.channels[0]->x(1), at(2012, 3, 15, 0, 0, 2, 50));
    }
}

// ---- Reading a file and the load's row total ----

// The letter case of the name does not matter, and a read buffer kept from file to file leaves
// nothing of a longer file behind.
TEST(DataLogFile, LogsThePathReadsWhateverTheCaseAndAKeptBufferLeavesNothingBehind) {
    test::ScratchFolder app;
    const QString longPath = app.write(
        "logfiles/AB12031412.CSV", QByteArray("AB12,03/14/12,10:00:00.00,9,9\r\n").repeated(2000));
    app.write("logfiles/AB12031512.CSV",
              "AB12,03/15/12,13:45:12.34,1.5,2\r\nAB12,03/15/12,1:45:14 PM,\"2\",,3\r\n");
    const QString asked = app.file("logfiles/ab12031512.csv");
    QByteArray buffer;
    QStringList log;
    DataLogOptions options;
    options.readBuffer = &buffer;
    options.debugOut = [&](const QString& line) { log << line; };
    LoadState state;
    readDataLog(longPath, app.path(), state, options);
    log.clear();
    const DataLogResult r = readDataLog(asked, app.path(), state, options);
    EXPECT_EQ(log.first(), "LoadQXL(" + asked + ")");
    ASSERT_EQ(r.rowCount, 2);
    ASSERT_TRUE(r.channels[2]);
    EXPECT_EQ(values(*r.channels[0]) + '/' + values(*r.channels[1]) + '/' + values(*r.channels[2]),
              "1.5 2/2 0/0 3");
    EXPECT_EQ(r.channels[2]->x(1), at(2012, 3, 15, 13, 45, 14));
}

TEST(LoadedRowTotal, RestartsWithTheFirstFileGrowsWithTheOthersAndNeverOverflows) {
    EXPECT_EQ(nextLoadedRowTotal(12345, 30000, true), 30000);
    EXPECT_EQ(nextLoadedRowTotal(30000, 30000, false), 60000);
    EXPECT_EQ(nextLoadedRowTotal(2'147'483'000, 1000, false), 2'147'483'000);
}

} // namespace
} // namespace trendax
