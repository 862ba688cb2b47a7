#include "app/form1.h"
#include "app/frmsplash.h"
#include "chart/stripchart.h"
#include "support/scratchfolder.h"
#include "support/scripteddialogs.h"
#include "support/scriptedenvironment.h"

#include <QDir>
#include <QFile>
#include <QFrame>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QSplitter>
#include <QStatusBar>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <gtest/gtest.h>

namespace trendax {
namespace {

class MainWindow : public ::testing::Test {
protected:
    std::unique_ptr<Form1> open(const QString& arguments = {}) {
        auto w = std::make_unique<Form1>(env, dialogs, arguments);
        w->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(w.get()));
        return w;
    }

    // A chart with one day of a rising line in variable 0, shown whole.
    static void fillChart(Form1& w) {
        XYArray a(2, 1441);
        for (size_t i = 0; i < a.count(); ++i) {
            a.at(0, i) = 40983.0 + double(i) / 1440.0;
            a.at(1, i) = double(i);
        }
        w.Strip1->AddXYArray(0, &a);
        w.XMin = 40983.0;
        w.XMax = 40984.0;
        w.Strip1->ShowXRange(w.XMin, w.XMax);
    }

    test::ScratchFolder scratch;
    test::ScriptedEnvironment env{scratch.path()};
    test::ScriptedDialogs dialogs;
};

TEST_F(MainWindow, StartsWithTheVersionTitleAndTheChartBackground) {
    auto w = open();
    EXPECT_EQ(w->windowTitle(), QStringLiteral("Trendax 2 - V3.0.7"));
    EXPECT_EQ(w->Strip1->BackColor(), 255u + 256u * 255u + 65536u * 210u);
    EXPECT_EQ(w->Strip1->MaxBufferSize(), 20000);
    EXPECT_EQ(w->Strip1->TrackCount(), 5);
    EXPECT_EQ(w->stats[3].lblVar->text(), QStringLiteral("A B Voltage"));
    EXPECT_EQ(w->pos(), QPoint(0, 0));
    EXPECT_FALSE(w->menuBar()->isVisible());
}

TEST_F(MainWindow, ToolbarHasTheFourteenButtonsInOrder) {
    auto w = open();
    const QStringList keys = {"open",   "print",  "zoomall", "minus",  "plus",  "left",    "right",
                              "points", "xscale", "yscale",  "tracks", "stats", "history", "help"};
    QStringList seen;
    for (QAction* a : w->Toolbar1->actions()) {
        if (auto* b = qobject_cast<QToolButton*>(w->Toolbar1->widgetForAction(a)))
            seen << b->objectName();
    }
    EXPECT_EQ(seen, keys);
    EXPECT_EQ(w->toolButton("plus")->text(), QStringLiteral("Zoom In"));
    EXPECT_EQ(w->toolButton("help")->toolTip(), QStringLiteral("About Trendax"));
    ASSERT_NE(w->toolButton("xscale")->menu(), nullptr);
    QStringList spans;
    for (QAction* a : w->toolButton("xscale")->menu()->actions())
        spans << a->text();
    EXPECT_EQ(spans, (QStringList{"1 Hour", "1 Day", "1 Week", "30 Days"}));
}

TEST_F(MainWindow, ChannelColoursRoundTripThroughTheSettingsStore) {
    env.settings.insert("Channel3/Color", "255");
    env.settings.insert("Channel4/Color", "not a colour");
    {
        auto w = open();
        w->Strip1->setCurrentVar(3);
        EXPECT_EQ(w->Strip1->VarColor(), 255u);
        w->Strip1->setCurrentVar(4);
        EXPECT_EQ(w->Strip1->VarColor(), 0u); // initial black kept
        w->Strip1->setCurrentVar(0);
        EXPECT_EQ(w->Strip1->VarColor(), 160u * 65536u);
        w->close();
    }
    for (int i = 0; i < 13; ++i)
        EXPECT_TRUE(env.settings.contains(QStringLiteral("Channel%1/Color").arg(i))) << i;
    EXPECT_EQ(env.settings.value("Channel3/Color"), QStringLiteral("255"));
    EXPECT_EQ(env.settings.value("Channel2/Color"), QString::number(1 + 256 * 128));
}

TEST_F(MainWindow, DebugWordMustMatchExactly) {
    const QString old = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(scratch.path()));
    {
        auto w = open("Debug");
        EXPECT_FALSE(w->bbDebugOut);
        EXPECT_FALSE(QFile::exists("TXDebug.txt"));
        auto w2 = open("debug now");
        EXPECT_FALSE(w2->bbDebugOut);
        auto w3 = open("debug");
        EXPECT_TRUE(w3->bbDebugOut);
        EXPECT_TRUE(QFile::exists("TXDebug.txt"));
    }
    QDir::setCurrent(old);
}

TEST_F(MainWindow, ShrinkingBelowTheMinimumSpringsBack) {
    auto w = open();
    const int minWidth = w->twipsToPixels(12000);
    const int minHeight = w->twipsToPixels(9000);
    w->resize(200, 150);
    QTest::qWait(50);
    EXPECT_GE(w->frameGeometry().width(), minWidth);
    EXPECT_GE(w->frameGeometry().height(), minHeight);
}

TEST_F(MainWindow, StatsCommandGivesTheChartTheFreedHeight) {
    auto w = open();
    w->resize(w->twipsToPixels(14000), w->twipsToPixels(10000));
    w->ArrangeControls();
    const int withPanel = w->Strip1->height();
    ASSERT_TRUE(w->picStats->isVisible());
    EXPECT_EQ(w->picStats->y(), withPanel);

    w->Toolbar1_ButtonClick("stats");
    EXPECT_FALSE(w->picStats->isVisible());
    EXPECT_EQ(w->Strip1->height(), withPanel + w->picStats->height());

    w->Toolbar1_ButtonClick("stats");
    EXPECT_TRUE(w->picStats->isVisible());
    EXPECT_EQ(w->Strip1->height(), withPanel);
}

TEST_F(MainWindow, HistoryCommandNarrowsAWideColumnAndWidensANarrowOne) {
    auto w = open();
    // Wide enough that the chart column keeps the statistics panel's width beside 3000 twips.
    w->resize(w->twipsToPixels(16000), w->twipsToPixels(10000));
    w->setBandWidthTwips(2955);
    w->Toolbar1_ButtonClick("history");
    EXPECT_LT(w->bandWidthTwips(), 400);
    w->Toolbar1_ButtonClick("history");
    EXPECT_NEAR(w->bandWidthTwips(), 3000, 30);
    // The timer notices the new width and re-arranges the column.
    QTest::qWait(450);
    EXPECT_EQ(w->lstHST->width(), w->frameHist->width());
}

TEST_F(MainWindow, ClickInTheChartShowsTheCursorTime) {
    auto w = open();
    fillChart(*w);
    QTest::mouseClick(w->Strip1, Qt::LeftButton, {}, w->Strip1->rect().center());
    const double x = w->Strip1->CursorX();
    EXPECT_GT(x, 40983.0);
    EXPECT_LT(x, 40984.0);
    EXPECT_TRUE(w->statusPanels[1]->text().startsWith(QStringLiteral("Cursor: 3/15/2012")))
        << w->statusPanels[1]->text().toStdString();
    EXPECT_EQ(w->lblCursor->text(), w->statusPanels[1]->text().mid(8));
    EXPECT_NE(w->stats[0].lblCursorValue->text(), QStringLiteral("0"));
    EXPECT_EQ(w->stats[0].lblMax->text(), QStringLiteral("1440.00"));
}

TEST_F(MainWindow, RightClickOpensTheContextMenu) {
    auto w = open();
    EXPECT_FALSE(w->mnuQuillChannels->isEnabled());
    QTest::mouseClick(w->Strip1, Qt::RightButton, {}, w->Strip1->rect().center());
    EXPECT_TRUE(w->popup2->isVisible());
    w->popup2->close();
}

TEST_F(MainWindow, CancelledPrintDialogPrintsNothing) {
    auto w = open();
    w->Toolbar1_ButtonClick("print");
    EXPECT_EQ(dialogs.printDialogs, 1);
    EXPECT_TRUE(dialogs.messages.empty());
    EXPECT_TRUE(w->Strip1->Caption().isEmpty());
}

TEST_F(MainWindow, PrintedPageCarriesTheSiteCaption) {
    auto w = open();
    fillChart(*w);
    w->SiteCode = QStringLiteral("AB12");
    const QString pdf = scratch.file("page.pdf");
    dialogs.printerAnswers.push_back(pdf);
    w->Toolbar1_ButtonClick("print");
    ASSERT_TRUE(QFile::exists(pdf));
    EXPECT_TRUE(w->Strip1->Caption().isEmpty());
    QProcess text;
    text.start(QStringLiteral("pdftotext"), {pdf, QStringLiteral("-")});
    ASSERT_TRUE(text.waitForFinished(30000));
    EXPECT_TRUE(text.readAllStandardOutput().contains("Site: AB12"));
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(MainWindow, AboutBoxClosesOnAKeyButNotOnItsVersionText) {
    frmSplash box;
    EXPECT_EQ(box.lblVersion->text(), QStringLiteral("Version 3.0.7"));
    box.show();
    QTest::mouseClick(box.lblVersion, Qt::LeftButton);
    EXPECT_TRUE(box.isVisible());
    QTest::keyClick(&box, Qt::Key_A);
    EXPECT_FALSE(box.isVisible());
    box.show();
    QTest::mouseClick(box.Picture1, Qt::LeftButton, {}, QPoint(5, 5));
    EXPECT_FALSE(box.isVisible());
}

} // namespace
} // namespace trendax
