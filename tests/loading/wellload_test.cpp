#include "loading/datalog.h"
#include "loading/wellload.h"
#include "storage/datetime.h"
#include "support/scratchfolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trendax {
namespace {

using ::testing::ElementsAre;

double day(int y, int m, int d, int h = 0, int mi = 0) {
    return *datetime::fromDateTime(y, m, d, h, mi, 0);
}

TEST(DateCodes, ReadAsMonthDayTwoDigitYear) {
    EXPECT_EQ(dateCodeText("031512"), QStringLiteral("03/15/12"));
    EXPECT_EQ(dateOfCode("031512"), day(2012, 3, 15));
    EXPECT_EQ(dateOfCode("123199"), day(1999, 12, 31));
    EXPECT_FALSE(dateOfCode(""));
    EXPECT_FALSE(dateOfCode("133112"));
    EXPECT_FALSE(dateOfCode("USEREV"));
}

TEST(DateRange, IsInclusiveByCalendarDay) {
    const double start = day(2012, 3, 15, 18, 30), end = day(2012, 3, 15, 6, 0);
    EXPECT_TRUE(dayInRange(day(2012, 3, 15), start, end));
    EXPECT_FALSE(dayInRange(day(2012, 3, 14), start, end));
    EXPECT_FALSE(dayInRange(day(2012, 3, 16), start, end));
    EXPECT_TRUE(dayInRange(day(2012, 3, 20), day(2012, 3, 14, 23, 59), day(2012, 3, 20)));
}

TEST(NodeSelection, AChildlessNodeLeavesOneEmptyDateCode) {
    EXPECT_EQ(CopySelectedNode("AB12", "/h", {}, 1, 2).dates, QStringList{QString()});
    const NodeCopy node = CopySelectedNode("AB12", "/h", {"031512", "031612"}, 1, 2);
    EXPECT_EQ(node.dates, (QStringList{"031512", "031612"}));
    EXPECT_EQ(node.text, QStringLiteral("AB12"));
    EXPECT_EQ(node.tag, QStringLiteral("/h"));
}

TEST(DayFiles, AreFoundWhateverTheirLetterCase) {
    test::ScratchFolder app;
    app.write("logfiles/AB12031512.CSV", "x");
    app.write("logfiles/ab12031512.TXT", "x");
    app.write("logfiles/AB12USEREVENTS.txt", "x");
    const NodeCopy node = CopySelectedNode("AB12", app.file("logfiles"), {"031512"}, 0, 0);
    // The data log keeps the loader's spelling: the reader finds it when it opens it.
    EXPECT_EQ(dataLogPath(node, "031512"), app.file("logfiles/AB12031512.csv"));
    EXPECT_EQ(historyFilePath(node, "031512"), app.file("logfiles/ab12031512.TXT"));
    EXPECT_EQ(commentsFilePath(app.path(), "AB12"), app.file("logfiles/AB12USEREVENTS.txt"));
    // A file that is not there keeps the loader's own spelling.
    EXPECT_EQ(dataLogPath(node, "031612"), app.file("logfiles/AB12031612.csv"));
}

// Records what the passes ask of the window.
struct Recorder {
    QStringList log;
    std::vector<std::string> calls;
    WellLoadHooks hooks() {
        WellLoadHooks h;
        h.debugOut = [this](const QString& line) { log << line; };
        h.beginLoading = [this](int count) { calls.push_back("begin " + std::to_string(count)); };
        h.loadDay = [this](int file, int count, const QString& csv, const QString& txt) {
            calls.push_back("load " + std::to_string(file) + "/" + std::to_string(count) + " " +
                            csv.section('/', -1).toStdString() + " " +
                            txt.section('/', -1).toStdString());
        };
        h.afterDateCode = [this] { calls.push_back("after"); };
        return h;
    }
};

TEST(WellLoadPasses, OneDayRangeLoadsExactlyThatDay) {
    const NodeCopy node = CopySelectedNode("AB12", "/h", {"031412", "031512", "031612"},
                                           day(2012, 3, 15, 9), day(2012, 3, 15, 8));
    Recorder rec;
    EXPECT_EQ(runWellLoadPasses(node, rec.hooks()), 1);
    EXPECT_THAT(rec.calls, ElementsAre("begin 1", "after", "load 1/1 AB12031512.csv AB12031512.txt",
                                       "after", "after"));
    const QStringList dates = {"DateValue(CDate(NodeCopy.startdate)) = 3/15/2012",
                               "DateValue(CDate(NodeCopy.enddate)) = 3/15/2012"};
    EXPECT_EQ(rec.log,
              (QStringList{"fdate = CDate(03/14/12)", "fdate = 40982", "fdate = CDate(03/15/12)",
                           "fdate = 40983", "fdate = CDate(03/16/12)", "fdate = 40984",
                           "xNodeCount = 1", "Beginning load loop...", "fdate = CDate(03/14/12)",
                           "fdate = 40982", "DateValue(CDate(fdate)) = 3/14/2012"}
               << dates
               << QStringList{"no bingo", "fdate = CDate(03/15/12)", "fdate = 40983",
                              "DateValue(CDate(fdate)) = 3/15/2012"}
               << dates
               << QStringList{"bingo, call LoadQXL", "fdate = CDate(03/16/12)", "fdate = 40984",
                              "DateValue(CDate(fdate)) = 3/16/2012"}
               << dates << QStringList{"no bingo"}));
}

TEST(WellLoadPasses, FilesAreNumberedOneToCount) {
    const NodeCopy node = CopySelectedNode("AB12", "/h", {"031512", "031612", "031712"},
                                           day(2012, 3, 1), day(2012, 3, 31));
    Recorder rec;
    runWellLoadPasses(node, rec.hooks());
    EXPECT_THAT(rec.calls, ElementsAre("begin 3", "load 1/3 AB12031512.csv AB12031512.txt", "after",
                                       "load 2/3 AB12031612.csv AB12031612.txt", "after",
                                       "load 3/3 AB12031712.csv AB12031712.txt", "after"));
}

TEST(WellLoadPasses, AnEmptyDateCodeFailsBeforeAnythingIsShown) {
    const NodeCopy node = CopySelectedNode("AB12", "/h", {}, day(2012, 3, 1), day(2012, 3, 31));
    Recorder rec;
    EXPECT_THROW(runWellLoadPasses(node, rec.hooks()), LoadFailure);
    EXPECT_TRUE(rec.calls.empty());
    EXPECT_EQ(rec.log, QStringList{"fdate = CDate(//)"});
}

} // namespace
} // namespace trendax
