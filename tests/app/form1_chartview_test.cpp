// The chart view through the main window: layouts after loads, channel colours and visibility,
// the auxiliary channel menu, held scrolling, markers, the buffer size, and the cursor read-outs.
#include "app/form1.h"
#include "chart/stripchart.h"
#include "loading/dlgprogress.h"
#include "opendlg/dlgopen.h"
#include "support/scratchfolder.h"
#include "support/scripteddialogs.h"
#include "support/scriptedenvironment.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QMouseEvent>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidgetItem>
#include <gtest/gtest.h>

namespace trendax {
namespace {

constexpr double mar15 = 40983.0;
constexpr quint32 pale190 = 255 + 256 * 255 + 65536 * 190;
constexpr quint32 pale230 = 255 + 256 * 255 + 65536 * 230;

class ChartView : public ::testing::Test {
protected:
    ChartView() { QDir().mkpath(scratch.file("logfiles")); }

    // Loads a site of one day, 031512, with the given channels: ten rows a minute apart,
    // channel k reading k * 100 + row.
    void loadChannels(int channels) {
        const QString site = QStringLiteral("S%1").arg(channels, 3, 10, QChar('0'));
        QByteArray log;
        for (int r = 0; r < 10; ++r) {
            log += (site + QStringLiteral(",03/15/12,00:%1:00.00").arg(r, 2, 10, QChar('0')))
                       .toLatin1();
            for (int k = 1; k <= channels; ++k)
                log += ',' + QByteArray::number(k * 100 + r);
            log += "\r\n";
        }
        scratch.write("logfiles/" + site + "031512.CSV", log);
        QTreeWidgetItem node;
        node.setText(0, site);
        node.setData(0, dlgOpen::TagRole, scratch.file("logfiles"));
        (new QTreeWidgetItem(&node))->setText(0, QStringLiteral("031512"));
        w->CopySelectedNode(&node, mar15, mar15);
        w->LoadWell();
    }

    int trackOf(int var) {
        w->Strip1->setCurrentVar(var);
        return w->Strip1->VarTrack();
    }
    bool visible(int var) {
        w->Strip1->setCurrentVar(var);
        return w->Strip1->VarVisible();
    }
    quint32 trackColor(int track) {
        w->Strip1->setCurrentTrack(track);
        return w->Strip1->TrackColor();
    }

    test::ScratchFolder scratch;
    test::ScriptedEnvironment env{scratch.path()};
    test::ScriptedDialogs dialogs;
    std::unique_ptr<Form1> w = std::make_unique<Form1>(env, dialogs);
};

// ---- Layouts after loads ----

struct LayoutCase {
    const char* name;
    std::vector<int> loads; // channel counts, loaded in turn
    int trackCount;
    std::vector<std::pair<int, const char*>> names;
    std::vector<std::pair<int, int>> tracks;          // variable -> track
    std::vector<std::pair<int, quint32>> trackColors; // track -> colour
    double panelTwips;
    const char* firstMenuCaption;
};

class LayoutAfterLoads : public ChartView, public ::testing::WithParamInterface<LayoutCase> {};

TEST_P(LayoutAfterLoads, SetsTracksNamesColoursPanelAndMenu) {
    const LayoutCase& c = GetParam();
    for (int channels : c.loads)
        loadChannels(channels);
    EXPECT_EQ(w->Strip1->TrackCount(), c.trackCount);
    for (const auto& [row, name] : c.names)
        EXPECT_EQ(w->stats[size_t(row)].lblVar->text(), QString::fromLatin1(name)) << row;
    for (const auto& [var, track] : c.tracks)
        EXPECT_EQ(trackOf(var), track) << "variable " << var;
    for (const auto& [track, color] : c.trackColors)
        EXPECT_EQ(trackColor(track), color) << "track " << track;
    EXPECT_DOUBLE_EQ(w->picStats->heightTwips(), c.panelTwips);
    EXPECT_EQ(w->mnuChannel[0]->text(), QString::fromLatin1(c.firstMenuCaption));
}

const LayoutCase layoutCases[] = {
    {"One", {1}, 1, {{0, "Channel 1"}, {1, "Phase B"}}, {}, {{0, pale190}}, 800, "1"},
    {"ThreeKeepsTheStartUpLayout",
     {3},
     5,
     {{0, "Phase A"}, {4, "C A Voltage"}},
     {{0, 0}, {2, 2}, {4, 4}, {5, 2}},
     {{0, pale190}, {3, 255 + 256 * 255 + 65536 * 210}},
     1630,
     "1"},
    {"Five",
     {5},
     5,
     {{2, "Phase C"}, {3, "A B Voltage"}},
     {{3, 3}, {4, 4}},
     {{4, 255 + 256 * 255 + 65536 * 210}},
     1630,
     "1"},
    // Track 1 is written twice and ends pale; track 2 keeps the colour it had; "Expansion"
    // stays on the vibrations' track.
    {"Eight",
     {8},
     3,
     {{0, "Intake Temp."}, {5, "Discharge Pressure"}, {7, "Expansion"}},
     {{1, 0}, {5, 0}, {0, 1}, {2, 1}, {6, 1}, {3, 2}, {4, 2}, {7, 2}},
     {{0, pale190}, {1, pale230}, {2, pale190}},
     2442.15,
     "1"},
    {"Thirteen",
     {13},
     3,
     {{4, "C A Voltage"}, {5, "Quill Channel 1"}, {12, "Quill Channel 8"}},
     {{2, 0}, {3, 1}, {4, 1}, {5, 2}, {12, 2}},
     {{0, pale190}, {1, pale230}},
     3645,
     "Channel 1"},
    {"ThreeAfterThirteenKeepsIt",
     {13, 3},
     3,
     {{12, "Quill Channel 8"}},
     {{2, 0}, {4, 1}, {9, 2}},
     {{1, pale230}},
     3645,
     "Channel 1"},
};

INSTANTIATE_TEST_SUITE_P(Loads, LayoutAfterLoads, ::testing::ValuesIn(layoutCases),
                         [](const auto& info) { return std::string(info.param.name); });

// ---- Colours and visibility ----

TEST_F(ChartView, ClickingANameChoosesItsColourAndCancelChangesNothing) {
    w->show();
    const QColor before = w->picStats->rowColor(2);
    dialogs.colorAnswers = {std::nullopt, QColor(10, 20, 30)};
    QTest::mouseClick(w->stats[2].lblVar, Qt::LeftButton);
    ASSERT_EQ(dialogs.colorTitles, QStringList{"Variable Color"});
    EXPECT_EQ(dialogs.colorInitials.at(0), QColor(1, 128, 0)); // the row's colour preselected
    EXPECT_EQ(w->picStats->rowColor(2), before);
    w->Strip1->setCurrentVar(2);
    EXPECT_EQ(w->Strip1->VarColor(), 1u + 256u * 128u);

    QTest::mouseClick(w->stats[2].lblVar, Qt::LeftButton);
    const quint32 chosen = 10 + 256 * 20 + 65536 * 30;
    w->Strip1->setCurrentVar(2);
    EXPECT_EQ(w->Strip1->VarColor(), chosen);
    EXPECT_EQ(w->picStats->rowColor(2), QColor(10, 20, 30));
    EXPECT_EQ(w->stats[2].Line1->palette().color(QPalette::Window), QColor(10, 20, 30));
    w->close();
    EXPECT_EQ(env.settings.value("Channel2/Color"), QString::number(chosen));
}

TEST_F(ChartView, VisibilityBoxesAndQuillChannelItemsKeepInStep) {
    loadChannels(13);
    w->show();
    // A box of an auxiliary channel switches the curve and its menu item.
    QTest::mouseClick(w->stats[6].chkChannelVisible, Qt::LeftButton);
    EXPECT_FALSE(visible(6));
    EXPECT_FALSE(w->mnuChannel[1]->isChecked());
    QTest::mouseClick(w->stats[9].chkChannelVisible, Qt::LeftButton);
    EXPECT_TRUE(visible(9));
    EXPECT_TRUE(w->mnuChannel[4]->isChecked());
    // Rows 0 to 4 have no menu item.
    QTest::mouseClick(w->stats[2].chkChannelVisible, Qt::LeftButton);
    EXPECT_FALSE(visible(2));
    for (int k = 0; k < 8; ++k)
        EXPECT_EQ(w->mnuChannel[size_t(k)]->isChecked(), visible(k + 5)) << "item " << k + 1;

    // A menu item switches box and curve, lays out all channels again and refreshes the rows.
    w->Strip1->setCurrentVar(0);
    w->Strip1->setVarTrack(4);
    w->stats[12].lblMax->setText(QStringLiteral("stale"));
    w->mnuChannel[2]->trigger();
    EXPECT_FALSE(w->mnuChannel[2]->isChecked());
    EXPECT_FALSE(w->stats[7].chkChannelVisible->isChecked());
    EXPECT_FALSE(visible(7));
    EXPECT_EQ(trackOf(0), 0);
    EXPECT_EQ(w->stats[12].lblMax->text(), QStringLiteral("1309.00"));
    w->mnuChannel_Click(3);
    EXPECT_TRUE(w->mnuChannel[2]->isChecked());
    EXPECT_TRUE(w->stats[7].chkChannelVisible->isChecked());
    EXPECT_TRUE(visible(7));
}

// ---- Navigation ----

TEST_F(ChartView, HeldScrollButtonStepsOnEveryTickUntilReleased) {
    loadChannels(5);
    w->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(w.get()));
    w->tmrUI->stop(); // the test drives the ticks
    const double start = w->Strip1->XViewStart();
    const double step = w->Strip1->XSpan() / 10;
    QToolButton* right = w->toolButton("right");

    QTest::mousePress(right, Qt::LeftButton);
    EXPECT_TRUE(w->scrollRight);
    EXPECT_FALSE(w->scrollLeft);
    for (int tick = 0; tick < 3; ++tick)
        w->tmrUI_Timer();
    EXPECT_NEAR(w->Strip1->XViewStart(), start + 3 * step, 1e-9);
    QTest::mouseRelease(right, Qt::LeftButton); // the click adds its own step
    EXPECT_FALSE(w->scrollRight);
    EXPECT_NEAR(w->Strip1->XViewStart(), start + 4 * step, 1e-9);
    w->tmrUI_Timer();
    EXPECT_NEAR(w->Strip1->XViewStart(), start + 4 * step, 1e-9);

    // A press elsewhere on the toolbar holds nothing; a release anywhere on it ends holding.
    QTest::mousePress(w->toolButton("points"), Qt::LeftButton);
    EXPECT_FALSE(w->scrollLeft || w->scrollRight);
    QTest::mouseRelease(w->toolButton("points"), Qt::LeftButton);
    QTest::mousePress(w->toolButton("left"), Qt::LeftButton);
    EXPECT_TRUE(w->scrollLeft);
    QTest::mouseRelease(w->Toolbar1, Qt::LeftButton, {}, QPoint(w->Toolbar1->width() - 2, 2));
    EXPECT_FALSE(w->scrollLeft);
}

TEST_F(ChartView, MarkersStayThroughAReloadAndTheNextToggleRemovesThem) {
    loadChannels(5);
    w->Toolbar1_ButtonClick("points");
    loadChannels(5);
    for (int v : {0, 7, 12}) {
        w->Strip1->setCurrentVar(v);
        EXPECT_EQ(w->Strip1->VarSymbol(), v + 1) << v;
    }
    w->Toolbar1_ButtonClick("points");
    EXPECT_FALSE(w->showPoints);
    for (int v = 0; v < 13; ++v) {
        w->Strip1->setCurrentVar(v);
        EXPECT_EQ(w->Strip1->VarSymbol(), 0) << v;
    }
}

TEST_F(ChartView, BufferSizePromptTakesOnlyAWholePositiveNumber) {
    EXPECT_FALSE(w->mnuGraphSettings->isVisible());
    EXPECT_FALSE(w->mnuGraphSettings->isEnabled());
    struct Row {
        std::optional<QString> answer; // nullopt: cancelled
        int size;
        bool refused;
    };
    const Row rows[] = {
        {QStringLiteral("50000"), 50000, false},
        {QStringLiteral("abc"), 50000, true},
        {std::nullopt, 50000, true},
        {QStringLiteral("-3"), 50000, true},
        {QStringLiteral("3000000000"), 50000, true},
        {QStringLiteral("30000.5"), 30000, false},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.answer.value_or(QStringLiteral("(cancel)")).toStdString());
        const QString preset = QString::number(w->Strip1->MaxBufferSize());
        dialogs.messages.clear();
        if (r.answer)
            dialogs.inputAnswers.push_back(*r.answer);
        w->mnuGraphSettings_Click();
        EXPECT_EQ(dialogs.inputPrompts.last(), QStringLiteral("Enter buffer size."));
        EXPECT_EQ(dialogs.inputTitles.last(), QStringLiteral("MaxBufferSize"));
        EXPECT_EQ(dialogs.inputDefaults.last(), preset);
        EXPECT_EQ(w->Strip1->MaxBufferSize(), r.size);
        ASSERT_EQ(dialogs.messages.size(), r.refused ? 1u : 0u);
        if (r.refused) {
            EXPECT_EQ(dialogs.messages[0].text, QStringLiteral("MaxBufferSize must be numeric!"));
            EXPECT_EQ(dialogs.messages[0].title, QStringLiteral("Trendax2"));
        }
    }
}

// ---- Cursor and statistics ----

TEST_F(ChartView, ClickAndDragInTheChartRefreshEveryRowAndTheStatusBar) {
    // Variable k reads first[k] at the start of the day and last[k] at its end; slot 12 is
    // empty.
    const double first[12] = {1234.5678, 0.004, -7.126, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    const double last[12] = {-1234.5678, -0.004, 7.126, -1, -2, -3, -4, -5, -6, -7, -8, -9};
    for (int k = 0; k < 12; ++k) {
        XYArray a(2, 2);
        a.at(0, 0) = mar15;
        a.at(1, 0) = first[k];
        a.at(0, 1) = mar15 + 1;
        a.at(1, 1) = last[k];
        w->Strip1->AddXYArray(k, &a);
    }
    w->Strip1->ShowXRange(mar15, mar15 + 1);
    w->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(w.get()));
    const QRectF plot = w->Strip1->plotArea();
    const QPoint nearStart(int(plot.left() + 5), int(plot.center().y()));
    const QPoint nearEnd(int(plot.right() - 5), int(plot.center().y()));

    const QStringList firstTexts = {"1234.57", "0.00", "-7.13", "1.00", "2.00", "3.00", "4.00",
                                    "5.00",    "6.00", "7.00",  "8.00", "9.00", "0.00"};
    const QStringList lastTexts = {"-1234.57", "0.00",  "7.13",  "-1.00", "-2.00", "-3.00", "-4.00",
                                   "-5.00",    "-6.00", "-7.00", "-8.00", "-9.00", "0.00"};
    const QStringList minTexts = {"-1234.57", "0.00",  "-7.13", "-1.00", "-2.00", "-3.00", "-4.00",
                                  "-5.00",    "-6.00", "-7.00", "-8.00", "-9.00", "0.00"};
    const QStringList maxTexts = {"1234.57", "0.00", "7.13", "1.00", "2.00", "3.00", "4.00",
                                  "5.00",    "6.00", "7.00", "8.00", "9.00", "0.00"};
    const auto expectRows = [&](const QStringList& cursorTexts) {
        for (int k = 0; k < 13; ++k) {
            SCOPED_TRACE("row " + std::to_string(k));
            const StatsRow& row = w->stats[size_t(k)];
            EXPECT_EQ(row.lblCursorValue->text(), cursorTexts[k]);
            EXPECT_EQ(row.lblMin->text(), minTexts[k]);
            EXPECT_EQ(row.lblMinDisp->text(), minTexts[k]);
            EXPECT_EQ(row.lblMax->text(), maxTexts[k]);
            EXPECT_EQ(row.lblMaxDisp->text(), maxTexts[k]);
            EXPECT_EQ(row.lblAvg->text(), "0.00");
            EXPECT_EQ(row.lblAvgDisp->text(), "0.00");
        }
        EXPECT_EQ(w->statusPanels[1]->text(), "Cursor: " + w->lblCursor->text());
    };

    QTest::mouseClick(w->Strip1, Qt::LeftButton, {}, nearStart);
    expectRows(firstTexts);
    EXPECT_TRUE(w->lblCursor->text().startsWith("3/15/2012 "))
        << w->lblCursor->text().toStdString();
    const QString clickedTime = w->lblCursor->text();

    QTest::mousePress(w->Strip1, Qt::LeftButton, {}, nearStart);
    for (int x = nearStart.x(); x <= nearEnd.x(); x += (nearEnd.x() - nearStart.x()) / 4) {
        QMouseEvent move(QEvent::MouseMove, QPointF(x, nearEnd.y()),
                         w->Strip1->mapToGlobal(QPointF(x, nearEnd.y())), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(w->Strip1, &move);
        QTest::qWait(20);
    }
    QTest::mouseRelease(w->Strip1, Qt::LeftButton, {}, nearEnd);
    expectRows(lastTexts);
    EXPECT_NE(w->lblCursor->text(), clickedTime);

    // A zoom that pulls the cursor into the window leaves the read-outs as they were.
    for (int i = 0; i < 20; ++i)
        w->ScrollTime(0);
    const QString shownTime = w->lblCursor->text();
    w->ZoomTime(0);
    EXPECT_GE(w->Strip1->CursorX(), w->Strip1->XViewStart());
    EXPECT_LE(w->Strip1->CursorX(), w->Strip1->XViewEnd());
    EXPECT_EQ(w->lblCursor->text(), shownTime);
    expectRows(lastTexts);
}

// ---- The window ----

TEST_F(ChartView, ProgressWindowStaysEnabledWhileTheMainWindowIsDisabled) {
    w->show();
    bool mainEnabled = true;
    bool progressEnabled = false;
    QTimer::singleShot(0, w.get(), [&] {
        mainEnabled = w->isEnabled();
        progressEnabled = w->progressDialog() && w->progressDialog()->isEnabled();
    });
    loadChannels(5);
    EXPECT_FALSE(mainEnabled);
    EXPECT_TRUE(progressEnabled);
}

TEST_F(ChartView, AWiderHistoryColumnLeavesTheStatisticsPanelWhole) {
    loadChannels(13);
    w->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(w.get()));
    w->setBandWidthTwips(100000);
    QTest::qWait(50);
    w->ArrangeControls();
    EXPECT_GE(w->picStats->width(), w->picStats->neededWidth());
    for (QLabel* label : w->picStats->findChildren<QLabel*>()) {
        EXPECT_TRUE(w->picStats->rect().contains(label->geometry())) << label->text().toStdString();
    }
    EXPECT_EQ(w->pos(), QPoint(0, 0));
}

} // namespace
} // namespace trendax
