// Loading a site through the main window: the reader's window side, the well loader's range
// and failure rules, the hand-over slots and the buffer.
#include "app/form1.h"
#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
#include "opendlg/dlgopen.h"
#include "support/scratchfolder.h"
#include "support/scripteddialogs.h"
#include "support/scriptedenvironment.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QProgressBar>
#include <QToolButton>
#include <QTreeWidgetItem>
#include <gtest/gtest.h>

namespace trendax {
namespace {

// A day log of the given channels, one row a minute from midnight, channel k reading
// k * 100 + row.
QByteArray dayLog(const QString& site, const QString& mmddyy, int channels, int rows) {
    QByteArray out;
    const QString date = mmddyy.left(2) + '/' + mmddyy.mid(2, 2) + '/' + mmddyy.mid(4, 2);
    for (int r = 0; r < rows; ++r) {
        QString line = site + ',' + date + ',' +
                       QStringLiteral("%1:%2:00.00")
                           .arg(r / 60, 2, 10, QChar('0'))
                           .arg(r % 60, 2, 10, QChar('0'));
        for (int k = 1; k <= channels; ++k)
            line += ',' + QString::number(k * 100 + r);
        out += line.toLatin1() + "\r\n";
    }
    return out;
}

class LoadingASite : public ::testing::Test {
protected:
    LoadingASite() { QDir().mkpath(home()); }

    QString home() const { return scratch.file("logfiles"); }

    void writeDay(const QString& site, const QString& mmddyy, int channels, int rows = 10) {
        scratch.write("logfiles/" + site + mmddyy + ".CSV", dayLog(site, mmddyy, channels, rows));
    }

    // A site node as the open dialog hands it over.
    std::unique_ptr<QTreeWidgetItem> siteNode(const QString& site, const QStringList& days) {
        auto node = std::make_unique<QTreeWidgetItem>();
        node->setText(0, site);
        node->setData(0, dlgOpen::TagRole, home());
        for (const QString& d : days)
            (new QTreeWidgetItem(node.get()))->setText(0, d);
        return node;
    }

    void load(const QString& site, const QStringList& days, double start, double end) {
        const auto node = siteNode(site, days);
        w->CopySelectedNode(node.get(), start, end);
        w->LoadWell();
    }

    std::size_t points(int var) const { return w->Strip1->model().pointCount(var); }

    test::ScratchFolder scratch;
    test::ScriptedEnvironment env{scratch.path()};
    test::ScriptedDialogs dialogs;
    std::unique_ptr<Form1> w = std::make_unique<Form1>(env, dialogs);
};

constexpr double mar14 = 40982.0, mar15 = 40983.0, mar16 = 40984.0;

TEST_F(LoadingASite, LoadsTheDaysInsideTheRangeByCalendarDay) {
    for (const char* d : {"031412", "031512", "031612"})
        writeDay("AB12", d, 5);
    load("AB12", {"031412", "031512", "031612"}, mar15 + 0.9, mar16 + 0.1);
    EXPECT_EQ(points(0), 20u);
    EXPECT_DOUBLE_EQ(w->XMin, mar15);
    EXPECT_DOUBLE_EQ(w->XMax, mar16 + 9 / 1440.0);
    EXPECT_EQ(w->windowTitle(), QStringLiteral("Trendax 2 - V3.0.7 - Site: AB12"));
    EXPECT_DOUBLE_EQ(w->Strip1->CursorX(), w->XMin + (w->XMax - w->XMin) / 2);
    EXPECT_DOUBLE_EQ(w->Strip1->XViewStart(), w->XMin);
    EXPECT_TRUE(w->isEnabled());
    EXPECT_EQ(w->progressDialog(), nullptr);
    EXPECT_FALSE(w->ProgressBar1->isVisible());
    EXPECT_EQ(w->stats[3].lblVar->text(), QStringLiteral("A B Voltage"));
}

TEST_F(LoadingASite, ASiteWithoutDaysClearsTheChartAndFails) {
    const QString old = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(scratch.path()));
    writeDay("AB12", "031512", 5);
    load("AB12", {"031512"}, mar15, mar15);
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
    double start, end;  // the chosen range
};

class LoadsWithoutRows : public LoadingASite, public ::testing::WithParamInterface<RowlessLoad> {};

TEST_P(LoadsWithoutRows, DoNotOverflowTheCursorRepaint) {
    const RowlessLoad& c = GetParam();
    scratch.write("logfiles/AB12031512.CSV", c.dayLog);
    w->resize(1024, 700);
    w->show();
    load("AB12", {"031512"}, c.start, c.end);
    EXPECT_EQ(points(0), 0u);
    EXPECT_EQ(w->XMin, 1e11);
    EXPECT_EQ(w->XMax, 0.0);
    EXPECT_EQ(w->Strip1->CursorX(), 5e10);
    EXPECT_TRUE(w->isEnabled());
    EXPECT_EQ(w->progressDialog(), nullptr);
    const QImage chart = w->Strip1->grab().toImage();
    EXPECT_EQ(chart.size(), w->Strip1->size());
}

INSTANTIATE_TEST_SUITE_P(
    Sites, LoadsWithoutRows,
    ::testing::Values(
        RowlessLoad{"EmptyDataLog", "", mar15, mar15},
        RowlessLoad{"HeaderOnlyDataLog", "Site,Date,Time,Channel 1\r\n", mar15, mar15},
        RowlessLoad{"RangeWithoutADay", "AB12,03/15/12,00:00:01.00,1\r\n", mar16, mar16}),
    [](const ::testing::TestParamInfo<RowlessLoad>& info) { return info.param.name; });

TEST_F(LoadingASite, ADeletedDataLogEndsTheLoadKeepingTheDaysBefore) {
    for (const char* d : {"031412", "031512", "031612"})
        writeDay("AB12", d, 5);
    const auto node = siteNode("AB12", {"031412", "031512", "031612"});
    QFile::remove(scratch.file("logfiles/AB12031512.CSV"));
    w->CopySelectedNode(node.get(), mar14, mar16);
    const double cursorBefore = w->Strip1->CursorX();
    w->LoadWell();
    EXPECT_EQ(points(0), 10u);
    EXPECT_DOUBLE_EQ(w->XMax, mar14 + 9 / 1440.0);
    EXPECT_DOUBLE_EQ(w->Strip1->CursorX(), cursorBefore); // the cursor is not moved
    EXPECT_TRUE(w->isEnabled());
    EXPECT_EQ(w->progressDialog(), nullptr);
}

TEST_F(LoadingASite, TheBufferGrowsToTheRowsOfTheWholeLoad) {
    for (const char* d : {"031412", "031512", "031612"})
        writeDay("AB12", d, 5, 1440); // a row a minute, a whole day
    load("AB12", {"031412", "031512", "031612"}, mar14, mar16);
    EXPECT_EQ(w->LoadedRowTotal, 3 * 1440);
    EXPECT_EQ(w->Strip1->MaxBufferSize(), 20000); // never lowered
    w->Strip1->setMaxBufferSize(2000);
    load("AB12", {"031412", "031512", "031612"}, mar14, mar16);
    EXPECT_EQ(w->Strip1->MaxBufferSize(), 3 * 1440);
    EXPECT_EQ(points(0), 3u * 1440u);
    // A reload restarts the total with its first file.
    load("AB12", {"031412"}, mar14, mar14);
    EXPECT_EQ(w->LoadedRowTotal, 1440);
}

TEST_F(LoadingASite, OneChannelLogsAreCalibratedAndEnableCalibrate) {
    writeDay("AB12", "031512", 1);
    scratch.write("cnffiles/AB12SCAL.TXT", "2\r\n");
    scratch.write("cnffiles/ab12offs.txt", "-1\r\n");
    load("AB12", {"031512"}, mar15, mar15);
    EXPECT_DOUBLE_EQ(w->mScale, 2);
    EXPECT_DOUBLE_EQ(w->mOffset, -1);
    EXPECT_DOUBLE_EQ(w->Strip1->DataMin(0), 100 * 2 - 1);
    EXPECT_TRUE(w->toolButton("yscale")->isEnabled());
    EXPECT_TRUE(w->toolButton("tracks")->isEnabled());
    EXPECT_EQ(w->Strip1->TrackCount(), 1);
    EXPECT_EQ(w->stats[0].lblVar->text(), QStringLiteral("Channel 1"));
}

TEST_F(LoadingASite, FiveChannelsEnableTracksAndDisableQuillChannels) {
    writeDay("AB12", "031512", 5);
    scratch.write("cnffiles/AB12SCAL.TXT", "2\r\n");
    load("AB12", {"031512"}, mar15, mar15);
    EXPECT_DOUBLE_EQ(w->Strip1->DataMin(0), 100); // raw: only one-channel logs are calibrated
    EXPECT_FALSE(w->toolButton("yscale")->isEnabled());
    EXPECT_TRUE(w->toolButton("tracks")->isEnabled());
    EXPECT_FALSE(w->mnuQuillChannels->isEnabled());
    EXPECT_EQ(points(4), 10u);
    EXPECT_EQ(points(5), 0u);
}

TEST_F(LoadingASite, ThirteenChannelsShowAllAndEnableQuillChannels) {
    writeDay("AB12", "031512", 13);
    load("AB12", {"031512"}, mar15, mar15);
    EXPECT_FALSE(w->toolButton("tracks")->isEnabled());
    EXPECT_TRUE(w->mnuQuillChannels->isEnabled());
    EXPECT_EQ(points(12), 10u);
    w->Strip1->setCurrentVar(8);
    EXPECT_FALSE(w->Strip1->VarVisible());
    EXPECT_EQ(w->Strip1->VarName(), QStringLiteral("Var9"));
    w->Strip1->setCurrentVar(6);
    EXPECT_TRUE(w->Strip1->VarVisible());
    EXPECT_TRUE(w->mnuChannel[1]->isChecked());
    EXPECT_EQ(w->Strip1->TrackCount(), 3);
    EXPECT_EQ(w->stats[12].lblVar->text(), QStringLiteral("Quill Channel 8"));
}

TEST_F(LoadingASite, EightChannelsDisableBothAndChooseTheGaugeLayout) {
    writeDay("AB12", "031512", 8);
    load("AB12", {"031512"}, mar15, mar15);
    EXPECT_FALSE(w->toolButton("tracks")->isEnabled());
    EXPECT_FALSE(w->mnuQuillChannels->isEnabled());
    EXPECT_EQ(w->stats[7].lblVar->text(), QStringLiteral("Expansion"));
}

TEST_F(LoadingASite, SixChannelsHandOverTheSlotsOfAnEarlierLoad) {
    writeDay("AB12", "031512", 13);
    writeDay("CD34", "031612", 6, 4);
    load("AB12", {"031512"}, mar15, mar15);
    load("CD34", {"031612"}, mar16, mar16);
    EXPECT_EQ(w->numChannels, 6);
    EXPECT_EQ(points(5), 4u);
    // Slots 7 to 13 were not filled by this load: they receive the earlier load's arrays.
    EXPECT_EQ(points(6), 10u);
    EXPECT_EQ(points(12), 10u);
}

TEST_F(LoadingASite, ChannelCountGrowsAcrossTheFilesOfALoad) {
    writeDay("AB12", "031412", 13, 4);
    writeDay("AB12", "031512", 5, 4);
    load("AB12", {"031412", "031512"}, mar14, mar15);
    EXPECT_EQ(w->numChannels, 13);
    // The five-channel day still fills the eight channels it lacks, with zeros.
    EXPECT_EQ(points(12), 8u);
    EXPECT_DOUBLE_EQ(w->Strip1->DataMin(12), 0);
    EXPECT_EQ(w->Strip1->TrackCount(), 3);
}

TEST_F(LoadingASite, EightyEightChannelsLoadButHandNothingOver) {
    QByteArray wide;
    for (int r = 0; r < 3; ++r) {
        wide += "AB12,03/15/12,00:0" + QByteArray::number(r) + ":00.00";
        for (int k = 1; k <= 88; ++k)
            wide += "," + QByteArray::number(k);
        wide += "\r\n";
    }
    scratch.write("logfiles/AB12031512.CSV", wide);
    load("AB12", {"031512"}, mar15, mar15);
    EXPECT_EQ(w->numChannels, 88);
    EXPECT_EQ(points(0), 0u);
    EXPECT_DOUBLE_EQ(w->XMin, mar15);
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

} // namespace
} // namespace trendax
