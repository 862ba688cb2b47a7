#include "loading/datalog.h"
#include "loading/wellload.h"
#include "storage/datetime.h"
#include "support/scratchfolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trendax {
namespace {

using ::testing::ElementsAre;

double day(int y, int m, int d, int h = 0) {
    return *datetime::fromDateTime(y, m, d, h, 0, 0);
}

TEST(DayFiles, AreFoundWhateverTheirLetterCaseAndNamesThatAreNoDatesAreRefused) {
    EXPECT_EQ(dateOfCode("123199"), day(1999, 12, 31));
    EXPECT_FALSE(dateOfCode("133112"));
    EXPECT_FALSE(dateOfCode("USEREV"));
    test::ScratchFolder app;
    app.write("logfiles/AB12031512.CSV", "x");
    app.write("logfiles/ab12031512.TXT", "x");
    app.write("logfiles/AB12USEREVENTS.txt", "x");
    const NodeCopy node = CopySelectedNode("AB12", app.file("logfiles"), {"031512"}, 0, 0);
    // The data log keeps the loader's spelling: the reader finds it when it opens it.
    EXPECT_EQ(dataLogPath(node, "031512"), app.file("logfiles/AB12031512.csv"));
    EXPECT_EQ(historyFilePath(node, "031512"), app.file("logfiles/ab12031512.TXT"));
    EXPECT_EQ(commentsFilePath(app.path(), "AB12"), app.file("logfiles/AB12USEREVENTS.txt"));
}

// What the passes ask of the window, and their diagnostic log.
struct Recorder {
    QStringList log, calls;
    int run(const QStringList& codes, double start, double end) {
        WellLoadHooks h;
        h.debugOut = [this](const QString& line) { log << line; };
        h.beginLoading = [this](int count) { calls << QStringLiteral("begin %1").arg(count); };
        h.loadDay = [this](int file, int count, const QString& csv, const QString& txt) {
            calls << QStringLiteral("load %1/%2 ").arg(file).arg(count) + csv.section('/', -1) +
                         ' ' + txt.section('/', -1);
        };
        h.afterDateCode = [this] { calls << QStringLiteral("after"); };
        return runWellLoadPasses(CopySelectedNode("AB12", "/h", codes, start, end), h);
    }
};

const QStringList threeDays = {"031412", "031512", "031612"};

TEST(WellLoadPasses, FilesInRangeAreNumberedOneToCount) {
    Recorder month;
    EXPECT_EQ(month.run(threeDays, day(2012, 3, 1), day(2012, 3, 31)), 3);
    EXPECT_THAT(month.calls, ElementsAre("begin 3", "load 1/3 AB12031412.csv AB12031412.txt",
                                         "after", "load 2/3 AB12031512.csv AB12031512.txt", "after",
                                         "load 3/3 AB12031612.csv AB12031612.txt", "after"));
    // A one-day range loads exactly that day, and every step is logged.
    Recorder rec;
    EXPECT_EQ(rec.run(threeDays, day(2012, 3, 15, 9), day(2012, 3, 15, 8)), 1);
    EXPECT_THAT(rec.calls, ElementsAre("begin 1", "after", "load 1/1 AB12031512.csv AB12031512.txt",
                                       "after", "after"));
    QStringList expected;
    for (const int d : {14, 15, 16})
        expected << QStringLiteral("fdate = CDate(03/%1/12)").arg(d)
                 << QStringLiteral("fdate = %1").arg(40968 + d);
    expected << "xNodeCount = 1"
             << "Beginning load loop...";
    for (const int d : {14, 15, 16})
        expected << QStringLiteral("fdate = CDate(03/%1/12)").arg(d)
                 << QStringLiteral("fdate = %1").arg(40968 + d)
                 << QStringLiteral("DateValue(CDate(fdate)) = 3/%1/2012").arg(d)
                 << "DateValue(CDate(NodeCopy.startdate)) = 3/15/2012"
                 << "DateValue(CDate(NodeCopy.enddate)) = 3/15/2012"
                 << (d == 15 ? "bingo, call LoadQXL" : "no bingo");
    EXPECT_EQ(rec.log, expected);
}

TEST(WellLoadPasses, AnEmptyDateCodeFailsBeforeAnythingIsShown) {
    Recorder rec;
    EXPECT_THROW(rec.run({}, day(2012, 3, 1), day(2012, 3, 31)), LoadFailure);
    EXPECT_TRUE(rec.calls.empty());
    EXPECT_EQ(rec.log, QStringList{"fdate = CDate(//)"});
}

} // namespace
} // namespace trendax
