// Loading a site through the main window: the open command's whole road, the well loader's
// range and failure rules, the hand-over slots, the buffer, and the helper thread.
#include "chart/blockpool.h"
#include "loading/dlgprogress.h"
#include "mainwindowtest.h"
#include "synthetic.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QProgressBar>

namespace trendax::test {
namespace {

using LoadingASite = MainWindowTest;

TEST_F(LoadingASite, ASiteWithoutDaysClearsTheChartAndFails) {
    const QString old = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(scratch.path()));
    loadChannels(5);
    ASSERT_EQ(points(0), 10u);
    w->bbDebugOut = true;
    load("CD34", {}, mar15, mar15);
    w->bbDebugOut = false;
    QDir::setCurrent(old);
    EXPECT_EQ(points(0), 0u);
    EXPECT_EQ(w->windowTitle(), QStringLiteral("Trendax 2 - V3.0.7 - Site: CD34"));
    EXPECT_TRUE(w->isEnabled());
    EXPECT_TRUE(scratch.read("TXDebug.txt").contains(": \tLoadWell().ERR1: "));
}

// Loads that find no rows end with XMin 10^11 and XMax 0, so the cursor lands at 5 * 10^10, far
// off any view; its repaint must not overflow (the sanitizer build aborts on that).
struct RowlessLoad {
    const char* name;
    const char* dayLog; // the one day's data log, 031512
    double day;         // the chosen range, one day
    friend void PrintTo(const RowlessLoad& c, std::ostream* os) { *os << c.name; }
};

class LoadsWithoutRows : public MainWindowTest,
                         public ::testing::WithParamInterface<RowlessLoad> {};

TEST_P(LoadsWithoutRows, DoNotOverflowTheCursorRepaint) {
    scratch.write("logfiles/AB12031512.CSV", GetParam().dayLog);
    w->resize(1024, 700);
    w->show();
    load("AB12", {"031512"}, GetParam().day, GetParam().day);
    EXPECT_EQ(points(0), 0u);
    EXPECT_EQ(w->XMin, 1e11);
    EXPECT_EQ(w->XMax, 0.0);
    EXPECT_EQ(w->Strip1->CursorX(), 5e10);
    EXPECT_TRUE(w->isEnabled());
    EXPECT_EQ(w->progressDialog(), nullptr);
    EXPECT_EQ(w->Strip1->grab().toImage().size(), w->Strip1->size());
}

INSTANTIATE_TEST_SUITE_P(
    Sites, LoadsWithoutRows,
    ::testing::Values(RowlessLoad{"EmptyDataLog", "", mar15},
                      RowlessLoad{"HeaderOnlyDataLog", "Site,Date,Time,Channel 1\r\n", mar15},
                      RowlessLoad{"RangeWithoutADay", "AB12,03/15/12,00:00:01.00,1\r\n", mar16}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(LoadingASite, ADeletedDataLogEndsTheLoadKeepingTheDaysBefore) {
    for (const char* d : {"031412", "031612"})
        writeDay("AB12", d, 5);
    const double cursorBefore = w->Strip1->CursorX();
    load("AB12", {"031412", "031512", "031612"}, mar14, mar16);
    EXPECT_EQ(points(0), 10u);
    EXPECT_DOUBLE_EQ(w->XMax, mar14 + 9 / 1440.0);
    EXPECT_DOUBLE_EQ(w->Strip1->CursorX(), cursorBefore); // the cursor is not moved
    EXPECT_TRUE(w->isEnabled());
    EXPECT_EQ(w->progressDialog(), nullptr);
}

// The progress window as it closes at the end of a load.
struct ProgressAtClose : QObject {
    QString line;
    int barMaximum = -1;
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (auto* progress = qobject_cast<dlgProgress*>(watched);
            progress && event->type() == QEvent::Close) {
            line = progress->lblLines->text();
            barMaximum = progress->ProgressBar2->maximum();
        }
        return false;
    }
};

// A short day read right after a long one shows its own line count, however soon it comes.
TEST_F(LoadingASite, EachDayShowsItsOwnLineCount) {
    writeDay("AB12", "031412", 5, 3000);
    writeDay("AB12", "031512", 5, 7);
    ProgressAtClose progress;
    qApp->installEventFilter(&progress);
    load("AB12", {"031412", "031512"}, mar14, mar15);
    EXPECT_EQ(progress.line, QStringLiteral("Reading line 0 of 7"));
    EXPECT_EQ(progress.barMaximum, 7);
}

TEST_F(LoadingASite, TheBufferGrowsToTheRowsOfTheWholeLoad) {
    const QStringList days = {"031412", "031512", "031612"};
    for (const QString& d : days)
        writeDay("AB12", d, 5, 1440);
    load("AB12", days, mar14 + 0.9, mar16 + 0.1); // by calendar day: the three days whole
    EXPECT_EQ(w->LoadedRowTotal, 3 * 1440);
    EXPECT_EQ(w->Strip1->MaxBufferSize(), 20000); // never lowered
    w->Strip1->setMaxBufferSize(2000);
    load("AB12", days, mar14, mar16);
    EXPECT_EQ(w->Strip1->MaxBufferSize(), 3 * 1440);
    EXPECT_EQ(points(0), 3u * 1440u);
    load("AB12", {"031412"}, mar14, mar14); // a reload restarts the total with its first file
    EXPECT_EQ(w->LoadedRowTotal, 1440);
}

// Slots a load does not fill keep the arrays of the load before; 88 channels hand none over.
TEST_F(LoadingASite, SixChannelsHandOverTheSlotsOfAnEarlierLoadAndEightyEightNone) {
    loadChannels(88, 3);
    EXPECT_EQ(w->numChannels, 88);
    EXPECT_EQ(points(0), 0u);
    EXPECT_DOUBLE_EQ(w->XMin, mar15);

    writeDay("CD34", "031612", 6, 4);
    loadChannels(13);
    load("CD34", {"031612"}, mar16, mar16);
    EXPECT_EQ(w->numChannels, 6);
    EXPECT_EQ(points(5), 4u);
    EXPECT_EQ(points(6), 10u);
    EXPECT_EQ(points(12), 10u);
}

// The section names the file as the loader builds its name (site, date code, ".csv"), not as
// import left it on disk (".CSV"); the file is still found whatever its letter case.
TEST_F(LoadingASite, SchemaIniNamesTheBuiltFileNameNotTheOneOnDisk) {
    writeDay("AB12", "031412", 5);
    writeDay("AB12", "031512", 5);
    load("AB12", {"031412", "031512"}, mar14, mar15);
    EXPECT_EQ(points(0), 20u);
    EXPECT_EQ(scratch.read("logfiles/Schema.ini"),
              QByteArray("[AB12031512.csv]\r\nFormat=CSVDelimited\r\nCharacterSet=ANSI\r\n"
                         "DecimalSymbol=.\r\n"));
}

// A load's diagnostic lines without their time stamps, and each variable's points in turn.
struct Load {
    QStringList log;
    std::vector<std::vector<double>> points;
};

class ThreadedLoad : public MainWindowTest {
protected:
    ThreadedLoad() {
        EXPECT_TRUE(gen::writeSite(
            {.start = QDate(2012, 3, 14), .days = 3, .rowsPerDay = 30000, .history = false},
            scratch.path()));
    }
    ~ThreadedLoad() override { BlockPool::shared().setHelperEnabled(true); }

    // With threads, the next day is parsed and the chart's memory faulted in on other threads.
    Load loadAll(bool threads) {
        BlockPool::shared().setHelperEnabled(threads);
        w = std::make_unique<Form1>(env, dialogs);
        w->readAhead = threads;
        BlockPool::shared().trim(); // free blocks of earlier windows would spare the helper
        const QString old = QDir::currentPath();
        QDir::setCurrent(scratch.path());
        QFile::remove(QStringLiteral("TXDebug.txt"));
        w->bbDebugOut = true;
        load("AB12", days, mar14, mar16);
        w->bbDebugOut = false;
        QDir::setCurrent(old);
        BlockPool::shared().waitPrepared();

        Load result;
        for (const QString& line : QString::fromLatin1(scratch.read("TXDebug.txt")).split("\r\n"))
            result.log << line.mid(line.indexOf(QStringLiteral(": \t")) + 3);
        for (int k = 0; k < StripChartModel::variableCount; ++k) {
            result.points.emplace_back();
            for (std::size_t i = 0; i < points(k); ++i)
                result.points.back().insert(
                    result.points.back().end(),
                    {w->Strip1->model().point(k, i).time, w->Strip1->model().point(k, i).value});
        }
        return result;
    }

    const QStringList days = {"031412", "031512", "031612"};
};

TEST_F(ThreadedLoad, ReadingAndFaultingInAheadChangeNeitherTheDiagnosticLogNorThePoints) {
    const std::size_t regionsBefore = BlockPool::shared().helperRegions();
    const Load threaded = loadAll(true);
    EXPECT_EQ(w->daysReadAhead(), 3);
    const std::size_t regionsAfter = BlockPool::shared().helperRegions();
    EXPECT_GT(regionsAfter, regionsBefore) << "the helper thread had nothing to do";
    const Load sequential = loadAll(false);
    EXPECT_EQ(BlockPool::shared().helperRegions(), regionsAfter);

    EXPECT_EQ(w->daysReadAhead(), 0);
    ASSERT_GT(sequential.log.size(), 30);
    EXPECT_EQ(threaded.log, sequential.log);
    EXPECT_EQ(sequential.points[0].size(), 2 * 3u * 30000u);
    for (int k = 0; k < StripChartModel::variableCount; ++k)
        EXPECT_TRUE(threaded.points[k] == sequential.points[k]) << "variable " << k;
}

class OpenCommand : public MainWindowTest {
protected:
    OpenCommand() {
        EXPECT_TRUE(gen::writeSite({.site = "WL05",
                                    .channels = 5,
                                    .start = QDate(2012, 3, 14),
                                    .days = 3,
                                    .rowsPerDay = 240,
                                    .naming = gen::Naming::Controller},
                                   media.path()));
    }

    // Runs the open command; `drive` acts on the modal dialog once it is up, after importing
    // the media when asked to.
    void open(bool import, const std::function<void(dlgOpen&)>& drive) {
        bool driven = false;
        dialogs.modalAnswers.push_back([&](QDialog& shown) {
            auto* dialog = dynamic_cast<dlgOpen*>(&shown);
            driven = dialog != nullptr;
            if (!dialog)
                return false;
            dialog->show(); // as when it is run for real: showing it imports what was dropped
            if (import) {
                dialogs.messageAnswers.push_back(QMessageBox::No); // keep the originals
                EXPECT_TRUE(dialog->setDir1Path(media.path()));
                dialog->cmdImport_Click();
            }
            drive(*dialog);
            return dialog->result() == QDialog::Accepted;
        });
        w->Toolbar1_ButtonClick(QStringLiteral("open"));
        EXPECT_TRUE(driven);
    }

    ScratchFolder media;
};

TEST_F(OpenCommand, OkWithoutASiteLoadsNothingAndAPickedDayAfterAnImportLoadsFromThere) {
    open(false, [&](dlgOpen& d) { d.OKButton_Click(); });
    EXPECT_EQ(w->windowTitle(), QStringLiteral("Trendax 2 - V3.0.7"));
    EXPECT_TRUE(dialogs.messages.empty());

    open(true, [&](dlgOpen& d) {
        QTreeWidgetItem* day = d.nodeByKey(QStringLiteral("mdWL05031512"));
        ASSERT_NE(day, nullptr);
        d.tv_NodeClick(day);
        d.OKButton_Click();
    });
    EXPECT_TRUE(QFile::exists(scratch.file("logfiles/WL05031412.CSV")));
    EXPECT_EQ(w->windowTitle(), QStringLiteral("Trendax 2 - V3.0.7 - Site: WL05"));
    // From the clicked day (15 March) to the end calendar (today): two of the three days.
    EXPECT_EQ(points(0), 2u * 240u);
    EXPECT_DOUBLE_EQ(w->XMin, mar15);
    EXPECT_NEAR(w->XMax, mar16 + 239 / 240.0, 1e-9); // a row every six minutes
    EXPECT_DOUBLE_EQ(w->Strip1->CursorX(), w->XMin + (w->XMax - w->XMin) / 2);
    EXPECT_TRUE(w->isEnabled());
    EXPECT_EQ(w->progressDialog(), nullptr);
    EXPECT_FALSE(w->ProgressBar1->isVisible());
}

} // namespace
} // namespace trendax::test
