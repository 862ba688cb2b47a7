// Loading a site through the main window: the reader's window side, the well loader's range
// and failure rules, the layouts, the hand-over slots and the buffer.
#include "mainwindowtest.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QImage>

namespace trendax::test {
namespace {

using LoadingASite = MainWindowTest;

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
    double day;         // the chosen range, one day
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

TEST_F(LoadingASite, TheBufferGrowsToTheRowsOfTheWholeLoad) {
    const QStringList days = {"031412", "031512", "031612"};
    for (const QString& d : days)
        writeDay("AB12", d, 5, 1440);             // a row a minute, a whole day
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

// Every site has factor files; only one-channel logs are calibrated and enable "Calibrate".
struct ChannelCount {
    const char* name;
    int channels;
    double firstValue; // channel 1's first value as charted: 100 raw, 2 * 100 - 1 calibrated
    bool calibrate, tracks, quillChannels;
    int trackCount;
    int row; // a statistics row and its channel name
    const char* rowName;
};

class LoadingChannels : public MainWindowTest,
                        public ::testing::WithParamInterface<ChannelCount> {};

TEST_P(LoadingChannels, ChooseTheLayoutAndTheCommands) {
    const ChannelCount& c = GetParam();
    writeDay("AB12", "031512", c.channels);
    scratch.write("cnffiles/AB12SCAL.TXT", "2\r\n");
    scratch.write("cnffiles/ab12offs.txt", "-1\r\n");
    load("AB12", {"031512"}, mar15, mar15);
    EXPECT_DOUBLE_EQ(w->mScale, 2);
    EXPECT_DOUBLE_EQ(w->mOffset, -1);
    EXPECT_DOUBLE_EQ(w->Strip1->DataMin(0), c.firstValue);
    EXPECT_EQ(w->toolButton("yscale")->isEnabled(), c.calibrate);
    EXPECT_EQ(w->toolButton("tracks")->isEnabled(), c.tracks);
    EXPECT_EQ(w->mnuQuillChannels->isEnabled(), c.quillChannels);
    EXPECT_EQ(w->Strip1->TrackCount(), c.trackCount);
    EXPECT_EQ(w->stats[c.row].lblVar->text(), QString::fromLatin1(c.rowName));
    EXPECT_EQ(points(c.channels - 1), 10u);
    if (c.channels < 13) {
        EXPECT_EQ(points(c.channels), 0u);
    }
    if (c.channels > 5) {
        // All thirteen slots are handed over: quill channels 1-3 shown, 4-8 hidden, in step.
        w->Strip1->setCurrentVar(6);
        EXPECT_TRUE(w->Strip1->VarVisible());
        EXPECT_TRUE(w->mnuChannel[1]->isChecked());
        w->Strip1->setCurrentVar(8);
        EXPECT_FALSE(w->Strip1->VarVisible());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Logs, LoadingChannels,
    ::testing::Values(ChannelCount{"One", 1, 199, true, true, false, 1, 0, "Channel 1"},
                      ChannelCount{"Five", 5, 100, false, true, false, 5, 3, "A B Voltage"},
                      ChannelCount{"Eight", 8, 100, false, false, false, 3, 7, "Expansion"},
                      ChannelCount{"Thirteen", 13, 100, false, false, true, 3, 12,
                                   "Quill Channel 8"}),
    [](const auto& info) { return std::string(info.param.name); });

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

TEST_F(LoadingASite, EightyEightChannelsLoadButHandNothingOver) {
    writeDay("AB12", "031512", 88, 3);
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
} // namespace trendax::test
