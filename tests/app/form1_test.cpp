#include "app/frmsplash.h"
#include "mainwindowtest.h"

#include <QDir>
#include <QFile>
#include <QFrame>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QToolBar>

namespace trendax::test {
namespace {

class MainWindow : public MainWindowTest {
protected:
    void SetUp() override { showWindow(); }

    // A day of one channel rising by one a minute from 100, shown whole.
    void loadDay() {
        writeDay("AB12", "031512", 1, 1440);
        load("AB12", {"031512"}, mar15, mar15);
    }
};

TEST_F(MainWindow, StartsWithTheVersionTitleTheChartBackgroundAndTheToolbar) {
    EXPECT_EQ(w->windowTitle(), QStringLiteral("Trendax 2 - V3.0.7"));
    EXPECT_EQ(w->Strip1->BackColor(), 255u + 256u * 255u + 65536u * 210u);
    EXPECT_EQ(w->Strip1->TrackCount(), 5);
    EXPECT_EQ(w->stats[3].lblVar->text(), QStringLiteral("A B Voltage"));
    EXPECT_EQ(w->pos(), QPoint(0, 0));
    EXPECT_FALSE(w->menuBar()->isVisible());
    QStringList keys, spans;
    for (QAction* a : w->Toolbar1->actions())
        if (auto* b = qobject_cast<QToolButton*>(w->Toolbar1->widgetForAction(a)))
            keys << b->objectName();
    EXPECT_EQ(keys,
              (QStringList{"open", "print", "zoomall", "minus", "plus", "left", "right", "points",
                           "xscale", "yscale", "tracks", "stats", "history", "help"}));
    EXPECT_EQ(w->toolButton("plus")->text(), QStringLiteral("Zoom In"));
    EXPECT_EQ(w->toolButton("help")->toolTip(), QStringLiteral("About Trendax"));
    ASSERT_NE(w->toolButton("xscale")->menu(), nullptr);
    for (QAction* a : w->toolButton("xscale")->menu()->actions())
        spans << a->text();
    EXPECT_EQ(spans, (QStringList{"1 Hour", "1 Day", "1 Week", "30 Days"}));
}

TEST_F(MainWindowTest, ChannelColoursRoundTripThroughTheSettingsStore) {
    w.reset();
    env.settings.clear();
    env.settings.insert("Channel3/Color", "255");
    env.settings.insert("Channel0/Color", "not a colour");
    w = std::make_unique<Form1>(env, dialogs);
    w->show();
    w->Strip1->setCurrentVar(3);
    EXPECT_EQ(w->Strip1->VarColor(), 255u);
    w->Strip1->setCurrentVar(0); // not a colour: the built-in one stays
    EXPECT_EQ(w->Strip1->VarColor(), 160u * 65536u);
    w->close();
    w.reset();
    for (int i = 0; i < 13; ++i)
        EXPECT_TRUE(env.settings.contains(QStringLiteral("Channel%1/Color").arg(i))) << i;
    EXPECT_EQ(env.settings.value("Channel3/Color"), QStringLiteral("255"));
    EXPECT_EQ(env.settings.value("Channel2/Color"), QString::number(1 + 256 * 128));
}

TEST_F(MainWindow, DebugWordMustMatchExactly) {
    const QString old = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(scratch.path()));
    for (const char* word : {"Debug", "debug now", "debug"}) {
        const Form1 other(env, dialogs, QString::fromLatin1(word));
        EXPECT_EQ(other.bbDebugOut, word == std::string("debug")) << word;
        EXPECT_EQ(QFile::exists("TXDebug.txt"), other.bbDebugOut) << word;
    }
    QDir::setCurrent(old);
}

TEST_F(MainWindow, ShrinkingBelowTheMinimumSpringsBack) {
    w->resize(200, 150);
    QTest::qWait(50);
    EXPECT_GE(w->frameGeometry().width(), w->twipsToPixels(12000));
    EXPECT_GE(w->frameGeometry().height(), w->twipsToPixels(9000));
}

TEST_F(MainWindow, StatsCommandGivesTheChartTheFreedHeight) {
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
    // Wide enough that the chart column keeps the statistics panel's width beside 3000 twips.
    w->resize(w->twipsToPixels(16000), w->twipsToPixels(10000));
    w->setBandWidthTwips(2955);
    w->Toolbar1_ButtonClick("history");
    EXPECT_LT(w->bandWidthTwips(), 400);
    w->Toolbar1_ButtonClick("history");
    EXPECT_NEAR(w->bandWidthTwips(), 3000, 30);
    QTest::qWait(450); // the timer notices the new width and re-arranges the column
    EXPECT_EQ(w->lstHST->width(), w->frameHist->width());
}

TEST_F(MainWindow, ClickInTheChartShowsTheCursorTime) {
    loadDay();
    // A click a quarter of the way in moves the cursor to about 06:00.
    const QRectF plot = w->Strip1->plotArea();
    QTest::mouseClick(w->Strip1, Qt::LeftButton, {},
                      QPointF(plot.left() + plot.width() / 4, plot.center().y()).toPoint());
    EXPECT_NEAR(w->Strip1->CursorX(), mar15 + 0.25, 3 / plot.width());
    const QString status = w->statusPanels[1]->text();
    EXPECT_TRUE(status.startsWith(QStringLiteral("Cursor: 3/15/2012"))) << status.toStdString();
    EXPECT_EQ(w->lblCursor->text(), status.mid(8));
    // The value read out is the one logged at the cursor's minute.
    EXPECT_NEAR(w->stats[0].lblCursorValue->text().toDouble(),
                100 + (w->Strip1->CursorX() - mar15) * 1440, 1.0);
    EXPECT_EQ(w->stats[0].lblMax->text(), QStringLiteral("1539.00"));
}

TEST_F(MainWindow, RightClickOpensTheContextMenu) {
    EXPECT_FALSE(w->mnuQuillChannels->isEnabled());
    QTest::mouseClick(w->Strip1, Qt::RightButton, {}, w->Strip1->rect().center());
    EXPECT_TRUE(w->popup2->isVisible());
    w->popup2->close();
}

TEST_F(MainWindow, PrintCancelledPrintsNothingAndPrintedCarriesTheSiteCaption) {
    loadDay();
    w->Toolbar1_ButtonClick("print"); // no answer queued: cancelled
    EXPECT_EQ(dialogs.printDialogs, 1);
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

TEST(AboutBox, ClosesOnAKeyButNotOnItsVersionText) {
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
} // namespace trendax::test
