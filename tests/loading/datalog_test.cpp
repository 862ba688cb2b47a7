#include "chart/stripchartmodel.h"
#include "loading/datalog.h"
#include "storage/datetime.h"
#include "support/scratchfolder.h"
#include "synthetic.h"

#include <QFile>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trendax {
namespace {

using ::testing::ElementsAre;

double at(int y, int mo, int d, int h, int mi, int s) {
    return *datetime::fromDateTime(y, mo, d, h, mi, s);
}

struct Read {
    DataLogResult result;
    QStringList log;
};

Read read(const QByteArray& bytes, LoadState& state, bool dump = false, bool fast = true) {
    Read r;
    DataLogOptions options;
    options.debugOut = [&r](const QString& line) { r.log << line; };
    options.dumpTable = dump;
    options.fastPath = fast;
    r.result = parseDataLog(bytes, state, options);
    return r;
}

std::vector<double> xs(const XYArray& a) {
    std::vector<double> v;
    for (std::size_t i = 0; i < a.count(); ++i)
        v.push_back(a.x(i));
    return v;
}

std::vector<double> ys(const XYArray& a) {
    std::vector<double> v;
    for (std::size_t i = 0; i < a.count(); ++i)
        v.push_back(a.y(i));
    return v;
}

// ---- Time stamps ----

struct StampCase {
    const char* name;
    const char* date;
    const char* time;
    double expected;
};

class TimeStamps : public ::testing::TestWithParam<StampCase> {};

// A first row at 10:00:00.00 sets the stamp that failed parses keep.
TEST_P(TimeStamps, FollowTheRowRules) {
    const StampCase& c = GetParam();
    for (const bool fast : {true, false}) {
        LoadState state;
        const QByteArray bytes =
            QByteArray("AB12,01/15/08,10:00:00.00,1\r\nAB12,") + c.date + "," + c.time + ",2\r\n";
        const Read r = read(bytes, state, false, fast);
        ASSERT_EQ(r.result.channels[0]->count(), 2u);
        EXPECT_EQ(r.result.channels[0]->x(1), c.expected) << c.name << (fast ? " fast" : "");
    }
}

const double tenOClock = at(2008, 1, 15, 10, 0, 0);

INSTANTIATE_TEST_SUITE_P(
    Rules, TimeStamps,
    ::testing::Values(
        StampCase{"hundredths", "01/15/08", "13:45:12.34",
                  at(2008, 1, 15, 13, 45, 12) + 34 / 8'640'000.0},
        StampCase{"pm", "01/15/08", "1:45:12 PM", at(2008, 1, 15, 13, 45, 12)},
        StampCase{"am", "01/15/08", "12:05:00 AM", at(2008, 1, 15, 0, 5, 0)},
        StampCase{"lowerCasePmIsA24HourTime", "01/15/08", "1:45:12 pm", at(2008, 1, 15, 1, 45, 12)},
        StampCase{"missingTimeIsMidnight", "01/15/08", "", at(2008, 1, 15, 0, 0, 0)},
        StampCase{"failedParseKeepsTheStampAndAddsHundredths", "13/45/08", "13:45:12.34",
                  tenOClock + 34 / 8'640'000.0},
        StampCase{"singleDigitHourInTheHundredthsForm", "01/15/08", "9:05:01.50",
                  tenOClock + 50 / 8'640'000.0},
        StampCase{"lettersAreNoHundredths", "01/15/08", "13:45:12.xx", at(2008, 1, 15, 13, 45, 12)},
        StampCase{"fourDigitYearAndDashes", "1-15-2008", "23:59:59.99",
                  at(2008, 1, 15, 23, 59, 59) + 99 / 8'640'000.0},
        StampCase{"yearsFrom30AreThe1900s", "01/15/30", "00:00:00.00", at(1930, 1, 15, 0, 0, 0)}),
    [](const auto& info) { return std::string(info.param.name); });

// ---- Rows ----

TEST(DataLogRows, BadRowsAreDroppedWithoutGapsAndCounted) {
    LoadState state;
    const Read r = read("AB12,03/15/12,00:00:01.00,1,10\r\n"
                        "AB12,03/15/12,00:00:02.00,,20\r\n"
                        "AB12,03/15/12,00:00:03.00,3,30\r\n"
                        "AB12,03/15/12,00:00:04.00,n/a,40\r\n"
                        "AB12,03/15/12,00:00:05.00,5,50\r\n",
                        state);
    EXPECT_EQ(r.result.rowCount, 5);
    EXPECT_EQ(r.result.badRowCount, 2);
    EXPECT_THAT(ys(*r.result.channels[0]), ElementsAre(1, 3, 5));
    EXPECT_THAT(ys(*r.result.channels[1]), ElementsAre(10, 30, 50));
    EXPECT_EQ(r.result.channels[1]->x(2), at(2012, 3, 15, 0, 0, 5));
    EXPECT_EQ(r.log.filter("Badrowcount"),
              (QStringList{"LoadQXL: Badrowcount = 1", "LoadQXL: Badrowcount = 2"}));
}

TEST(DataLogRows, AHeaderLikeFirstLineIsABadRow) {
    LoadState state;
    const Read r = read("Site,Date,Time,Phase A\r\nAB12,03/15/12,12:00:00.00,7\r\n", state);
    EXPECT_EQ(r.result.badRowCount, 1);
    EXPECT_THAT(ys(*r.result.channels[0]), ElementsAre(7));
    EXPECT_EQ(r.log.filter("xval"), QStringList{"LoadQXL: xval = 40983.5"});
}

TEST(DataLogRows, MissingAndNonNumericChannelsReadAsZero) {
    LoadState state;
    const Read r = read("AB12,03/15/12,00:00:01.00,1,abc,,4\r\n", state);
    EXPECT_EQ(state.numChannels, 4);
    EXPECT_THAT(ys(*r.result.channels[1]), ElementsAre(0));
    EXPECT_THAT(ys(*r.result.channels[2]), ElementsAre(0));
    EXPECT_THAT(ys(*r.result.channels[3]), ElementsAre(4));
}

TEST(DataLogRows, TheWidestLineSetsTheFieldCountAndAbsentFieldsAreMissing) {
    LoadState state;
    const Read r = read("AB12,03/15/12,00:00:01.00,1\r\n"
                        "AB12,03/15/12,00:00:02.00,2,20,200\r\n",
                        state);
    EXPECT_EQ(r.result.fieldCount, 6);
    EXPECT_EQ(state.numChannels, 3);
    EXPECT_THAT(ys(*r.result.channels[2]), ElementsAre(0, 200));
    EXPECT_THAT(xs(*r.result.channels[2])[0], at(2012, 3, 15, 0, 0, 1));
}

TEST(DataLogRows, BlankLinesByteOrderMarkAndLineEnds) {
    LoadState state;
    const Read r = read("\xEF\xBB\xBF"
                        "AB12,03/15/12,00:00:01.00,1\n\r\n  \r\nAB12,03/15/12,00:00:02.00,2",
                        state);
    EXPECT_EQ(r.result.rowCount, 2);
    EXPECT_EQ(r.result.badRowCount, 0);
    EXPECT_THAT(ys(*r.result.channels[0]), ElementsAre(1, 2));
}

TEST(DataLogRows, QuotedFieldsMayHoldCommasAndQuotes) {
    LoadState state;
    const Read r =
        read("\"AB,12\",\"03/15/12\",\"00:00:01.00\",\"1.5\",\"x\"\"y\"\r\n", state, true);
    EXPECT_EQ(r.result.fieldCount, 5);
    EXPECT_THAT(ys(*r.result.channels[0]), ElementsAre(1.5));
    EXPECT_TRUE(r.log.contains("Dumping CSV file: " + QString(56, '*') +
                               "\r\nAB,12[,]03/15/12[,]00:00:01.00[,]1.5[,]x\"y\r\n"));
}

TEST(DataLogRows, AnEmptyFileHasNoRows) {
    LoadState state;
    const Read r = read("", state);
    EXPECT_EQ(r.result.rowCount, 0);
    EXPECT_EQ(r.result.channels[0]->count(), 0u);
    EXPECT_FALSE(r.result.yscaleEnabled.has_value());
    EXPECT_EQ(state.XMin, 1e11);
}

// ---- State across files ----

TEST(DataLogLoad, TheChannelCountOnlyGrowsAndLackingChannelsGetZeroPoints) {
    LoadState state;
    read("AB12,03/15/12,00:00:01.00,1,2,3,4,5,6,7,8,9,10,11,12,13\r\n", state);
    EXPECT_EQ(state.numChannels, 13);
    const Read second = read("AB12,03/16/12,00:00:01.00,1,2,3,4,5\r\n", state);
    EXPECT_EQ(state.numChannels, 13);
    ASSERT_TRUE(second.result.channels[12]);
    EXPECT_THAT(ys(*second.result.channels[12]), ElementsAre(0));
    EXPECT_EQ(second.result.channels[12]->x(0), at(2012, 3, 16, 0, 0, 1));
    EXPECT_EQ(state.XMin, at(2012, 3, 15, 0, 0, 1));
    EXPECT_EQ(state.XMax, at(2012, 3, 16, 0, 0, 1));
}

TEST(DataLogLoad, OnlyOneChannelLoadsAreCalibrated) {
    LoadState state;
    state.mScale = 2;
    state.mOffset = -1;
    const Read one = read("AB12,03/15/12,00:00:01.00,10\r\n", state);
    EXPECT_THAT(ys(*one.result.channels[0]), ElementsAre(19));
    EXPECT_EQ(one.result.yscaleEnabled, true);
    EXPECT_EQ(one.result.tracksEnabled, true);

    const Read three = read("AB12,03/15/12,00:00:01.00,10,20,30\r\n", state);
    EXPECT_THAT(ys(*three.result.channels[0]), ElementsAre(10));
    EXPECT_EQ(three.result.yscaleEnabled, false);

    // The load's count decides: a one-channel day after a three-channel day stays raw.
    const Read after = read("AB12,03/16/12,00:00:01.00,10\r\n", state);
    EXPECT_THAT(ys(*after.result.channels[0]), ElementsAre(10));
}

TEST(DataLogLoad, SixChannelsAndMoreDisableTracks) {
    LoadState state;
    const Read r = read("AB12,03/15/12,00:00:01.00,1,2,3,4,5,6,7,8\r\n", state);
    EXPECT_EQ(r.result.tracksEnabled, false);
    EXPECT_EQ(r.result.yscaleEnabled, false);
    EXPECT_TRUE(r.result.channels[7]);
    EXPECT_FALSE(r.result.channels[8]);
}

// ---- Diagnostics and progress ----

TEST(DataLogDiagnostics, EveryLineInOrder) {
    LoadState state;
    const Read r =
        read("AB12,03/15/12,12:00:00.00,1,2\r\nAB12,03/15/12,12:00:01.00,,2\r\n", state, true);
    EXPECT_EQ(r.log, (QStringList{"LoadQXL: file opened", "LoadQXL: numChannels = 2",
                                  "LoadQXL: Rs1.Fields.Count = 5",
                                  "Dumping CSV file: " + QString(56, '*') +
                                      "\r\nAB12[,]03/15/12[,]12:00:00.00[,]1[,]2\r\n"
                                      "AB12[,]03/15/12[,]12:00:01.00[,][null][,]2\r\n",
                                  "LoadQXL: memory allocated", "LoadQXL: begin loop; reccount = 2",
                                  "LoadQXL: xval = 40983.5", "LoadQXL: Badrowcount = 1",
                                  "LoadQXL: end load loop"}));
}

TEST(DataLogDiagnostics, ProgressEveryThousandRows) {
    QByteArray bytes;
    for (int i = 0; i < 2500; ++i)
        bytes += "AB12,03/15/12,12:00:00.00,1\r\n";
    std::vector<std::pair<qsizetype, qsizetype>> calls;
    DataLogOptions options;
    options.progress = [&](qsizetype i, qsizetype n) { calls.emplace_back(i, n); };
    LoadState state;
    parseDataLog(bytes, state, options);
    EXPECT_THAT(calls, ElementsAre(std::pair<qsizetype, qsizetype>{0, 2500},
                                   std::pair<qsizetype, qsizetype>{1000, 2500},
                                   std::pair<qsizetype, qsizetype>{2000, 2500}));
}

// ---- Fast and general paths ----

void expectSameArrays(const DataLogResult& a, const DataLogResult& b) {
    for (int k = 0; k < channelSlots; ++k) {
        ASSERT_EQ(bool(a.channels[k]), bool(b.channels[k])) << k;
        if (!a.channels[k])
            continue;
        ASSERT_EQ(a.channels[k]->count(), b.channels[k]->count());
        if (a.channels[k]->count() == 0)
            continue;
        std::size_t differing = 0;
        for (std::size_t i = 0; i < a.channels[k]->count(); ++i) {
            for (int row = 0; row < 2; ++row) {
                const double u = a.channels[k]->at(row, i), v = b.channels[k]->at(row, i);
                differing += std::memcmp(&u, &v, sizeof u) != 0;
            }
        }
        EXPECT_EQ(differing, 0u) << "channel " << k + 1;
    }
}

TEST(DataLogPaths, FastAndGeneralPathsAgreeOnGeneratedDays) {
    for (const gen::TimeForm form : {gen::TimeForm::Hundredths, gen::TimeForm::AmPm}) {
        gen::SiteSpec siteSpec;
        siteSpec.rowsPerDay = 5000;
        siteSpec.timeForm = form;
        const QByteArray bytes = gen::dataLogDay(siteSpec, 0);
        LoadState fastState, generalState;
        const Read fast = read(bytes, fastState, false, true);
        const Read general = read(bytes, generalState, false, false);
        EXPECT_EQ(fast.result.badRowCount, 0);
        expectSameArrays(fast.result, general.result);
        EXPECT_EQ(fastState.XMax, generalState.XMax);
    }
}

TEST(DataLogPaths, FastAndGeneralPathsAgreeOnAwkwardNumbers) {
    const char* numbers[] = {"0.1",
                             "-0",
                             "123456789012345",
                             "1234567890123456",
                             "0.0000001",
                             "9007199254740993",
                             "1e5",
                             "+2",
                             " 3",
                             "3.",
                             ".25",
                             "-17.125",
                             "0.30000000000000004",
                             "00000012.5000"};
    QByteArray bytes;
    for (const char* n : numbers)
        bytes += QByteArray("AB12,03/15/12,12:00:00.00,1,") + n + "\r\n";
    bytes += "AB12,03/15/12,12:00:00.00,1,2,\r\n"; // an empty last field
    LoadState a, b;
    expectSameArrays(read(bytes, a, false, true).result, read(bytes, b, false, false).result);
}

// Lines of a few megabytes with quotes in many places: around the site code and the time, in the
// channels, past the channels with commas and doubled quotes inside, and never closed. The rows
// without quotes around them take the fast path; the general path must read them all the same.
TEST(DataLogPaths, FastAndGeneralPathsAgreeOnLongLinesWithQuotes) {
    QByteArray bytes = "AB12,03/15/12,00:00:01.00,1,2,3,4,5,6,7,8,9,10,11,12,13\r\n";
    bytes += "\"AB,12\",03/15/12,\"00:00:02.50\",1.5,\"2\",3,\"4\"\"\",5,6,7,8,9,10,11,12,\"13\"";
    bytes += ",\"x,\"\"y\"\"\",\"" + QByteArray("1,").repeated(1'000'000) + "\"";
    bytes += QByteArray(",2").repeated(20'000) + "\r\n";
    bytes += "AB12,03/15/12,00:00:03.00,7\r\n";
    bytes += "AB12,03/15/12,00:00:04.00,8" + QByteArray(",9").repeated(12) + ",\"never closed";
    bytes += QByteArray(",1").repeated(500'000) + "\r\n";
    bytes += "AB12,03/15/12,00:00:05.00,\"9\r\n";

    LoadState fastState, generalState;
    const Read fast = read(bytes, fastState, false, true);
    const Read general = read(bytes, generalState, false, false);
    EXPECT_EQ(fast.result.fieldCount, 16 + 2 + 20'000);
    EXPECT_EQ(general.result.fieldCount, fast.result.fieldCount);
    EXPECT_EQ(fast.result.badRowCount, 0);
    EXPECT_EQ(general.result.badRowCount, 0);
    ASSERT_TRUE(fast.result.channels[12]) << "all thirteen channels are read";
    EXPECT_THAT(ys(*fast.result.channels[0]), ElementsAre(1, 1.5, 7, 8, 9));
    EXPECT_THAT(ys(*fast.result.channels[3]), ElementsAre(4, 0, 0, 9, 0)) << "4\" is no number";
    EXPECT_THAT(ys(*fast.result.channels[12]), ElementsAre(13, 13, 0, 9, 0));
    EXPECT_DOUBLE_EQ(fast.result.channels[0]->x(1), at(2012, 3, 15, 0, 0, 2) + 50 / 8'640'000.0);
    expectSameArrays(fast.result, general.result);
    EXPECT_EQ(fastState.XMin, generalState.XMin);
    EXPECT_EQ(fastState.XMax, generalState.XMax);
}

// ---- Reading a file ----

TEST(DataLogFile, WritesSchemaIniResolvesTheNameAndReportsAMissingFile) {
    test::ScratchFolder app;
    app.write("logfiles/AB12031512.CSV", "AB12,03/15/12,00:00:01.00,4\r\n");
    LoadState state;
    QStringList log;
    DataLogOptions options;
    options.debugOut = [&](const QString& line) { log << line; };
    const QString asked = app.file("logfiles/ab12031512.csv");
    const DataLogResult r = readDataLog(asked, app.path(), state, options);
    EXPECT_THAT(ys(*r.channels[0]), ElementsAre(4));
    EXPECT_EQ(log.first(), "LoadQXL(" + asked + ")");
    EXPECT_TRUE(app.read("logfiles/Schema.ini").startsWith("[ab12031512.csv]\r\n"));

    EXPECT_THROW(readDataLog(app.file("logfiles/AB12031612.csv"), app.path(), state, options),
                 LoadFailure);
    EXPECT_TRUE(app.read("logfiles/Schema.ini").startsWith("[AB12031612.csv]\r\n"));
}

// ---- Hand-over ----

std::vector<int> channelsOf(const HandoverPlan& plan) {
    std::vector<int> out;
    for (const HandoverStep& s : plan.steps)
        out.push_back(s.channel);
    return out;
}

TEST(Handover, SlotsAndSwitchesByChannelCount) {
    const HandoverPlan five = planHandover(5);
    EXPECT_THAT(channelsOf(five), ElementsAre(1, 2, 3, 4, 5));
    EXPECT_EQ(five.tracksEnabled, true);
    EXPECT_EQ(five.quillChannelsEnabled, false);

    // Six channels hand over all thirteen slots, whatever earlier files left in them.
    const HandoverPlan six = planHandover(6);
    EXPECT_EQ(six.steps.size(), 13u);
    EXPECT_EQ(six.steps[5].visible, true);
    EXPECT_EQ(six.steps[5].checkMenuItem, 1);
    EXPECT_EQ(six.steps[7].checkMenuItem, 3);
    EXPECT_EQ(six.steps[8].visible, false);
    EXPECT_EQ(six.steps[8].checkMenuItem, 0);
    EXPECT_EQ(six.quillChannelsEnabled, false);

    const HandoverPlan eight = planHandover(8);
    EXPECT_EQ(eight.tracksEnabled, false);
    EXPECT_EQ(eight.quillChannelsEnabled, false);

    const HandoverPlan thirteen = planHandover(13);
    EXPECT_EQ(thirteen.tracksEnabled, false);
    EXPECT_EQ(thirteen.quillChannelsEnabled, true);

    const HandoverPlan skipped = planHandover(88);
    EXPECT_TRUE(skipped.steps.empty());
    EXPECT_FALSE(skipped.tracksEnabled.has_value());
}

TEST(Handover, EightyEightChannelsStillLoadTheArrays) {
    LoadState state;
    QByteArray line = "AB12,03/15/12,00:00:01.00";
    for (int k = 1; k <= 88; ++k)
        line += "," + QByteArray::number(k);
    const Read r = read(line + "\r\n", state);
    EXPECT_EQ(state.numChannels, 88);
    EXPECT_THAT(ys(*r.result.channels[12]), ElementsAre(13));
}

TEST(LoadedRowTotal, RestartsWithTheFirstFileAndGrowsWithTheOthers) {
    std::int32_t total = 12345;
    total = nextLoadedRowTotal(total, 30000, true);
    total = nextLoadedRowTotal(total, 30000, false);
    total = nextLoadedRowTotal(total, 30000, false);
    EXPECT_EQ(total, 90000);
    EXPECT_EQ(nextLoadedRowTotal(2'147'483'000, 1000, false), 2'147'483'000);
}

TEST(DayArrays, KeepTheirTimeStampsOnceAndTheChartStoresThemOnce) {
    LoadState state;
    const QByteArray bytes = "AB12,03/15/12,00:00:00.00,1,2,3,4,5\r\n"
                             "AB12,03/15/12,00:00:01.50,6,7,8,9,10\r\n";
    const DataLogResult r = parseDataLog(bytes, state);
    ASSERT_TRUE(r.channels[4]);
    EXPECT_NE(r.channels[0]->sharedX(), nullptr);
    EXPECT_EQ(r.channels[0]->sharedX(), r.channels[4]->sharedX());
    EXPECT_DOUBLE_EQ(r.channels[4]->x(1), 40983.0 + 1.5 / 86400.0);
    EXPECT_DOUBLE_EQ(r.channels[4]->y(1), 10.0);

    StripChartModel chart;
    for (int k = 0; k < 5; ++k)
        chart.addXYArray(k, *r.channels[size_t(k)]);
    EXPECT_TRUE(chart.sharesTimeColumn(0, 4));
    EXPECT_DOUBLE_EQ(chart.point(3, 1).value, 9.0);
}

} // namespace
} // namespace trendax
