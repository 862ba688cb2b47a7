// The main window and its chart view: layouts and commands after loads, channel colours and
// visibility, held scrolling, markers, the buffer size, the cursor and reference read-outs,
// going back through the views, the window's commands and the about box.
#include "app/frmsplash.h"
#include "chart/chartfixtures.h"
#include "loading/dlgprogress.h"
#include "mainwindowtest.h"
#include "storage/twips.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>
#include <QToolBar>
#include <algorithm>

namespace trendax::test {
namespace {

constexpr quint32 pale190 = 255 + 256 * 255 + 65536 * 190;
constexpr quint32 pale210 = 255 + 256 * 255 + 65536 * 210;
constexpr quint32 pale230 = 255 + 256 * 255 + 65536 * 230;

class ChartView : public MainWindowTest {
protected:
    int trackOf(int var) {
        w->Strip1->setCurrentVar(var);
        return w->Strip1->VarTrack();
    }
    bool visible(int var) {
        w->Strip1->setCurrentVar(var);
        return w->Strip1->VarVisible();
    }
};

// Every site has factor files; only one-channel logs are calibrated and enable "Calibrate".
struct LayoutCase {
    const char* name;
    std::vector<int> loads; // channel counts, loaded in turn
    int trackCount;
    std::vector<std::pair<int, const char*>> names;
    std::vector<std::pair<int, int>> tracks;          // variable -> track
    std::vector<std::pair<int, quint32>> trackColors; // track -> colour
    double panelTwips;
    const char* firstMenuCaption;
    double firstValue; // channel 1's first value as charted: 100 raw, 2 * 100 - 1 calibrated
    bool calibrate, tracksCommand, quillChannels;
    friend void PrintTo(const LayoutCase& c, std::ostream* os) { *os << c.name; }
};

class LayoutAfterLoads : public ChartView, public ::testing::WithParamInterface<LayoutCase> {};

TEST_P(LayoutAfterLoads, SetsTracksNamesColoursPanelMenuAndCommands) {
    const LayoutCase& c = GetParam();
    scratch.write("cnffiles/AB12SCAL.TXT", "2\r\n");
    scratch.write("cnffiles/ab12offs.txt", "-1\r\n");
    for (int channels : c.loads)
        loadChannels(channels);
    EXPECT_EQ(w->Strip1->TrackCount(), c.trackCount);
    for (const auto& [row, name] : c.names)
        EXPECT_EQ(w->stats[size_t(row)].lblVar->text(), QString::fromLatin1(name)) << row;
    for (const auto& [var, track] : c.tracks)
        EXPECT_EQ(trackOf(var), track) << "variable " << var;
    for (const auto& [track, color] : c.trackColors) {
        w->Strip1->setCurrentTrack(track);
        EXPECT_EQ(w->Strip1->TrackColor(), color) << "track " << track;
    }
    EXPECT_DOUBLE_EQ(w->picStats->heightTwips(), c.panelTwips);
    EXPECT_EQ(w->mnuChannel[0]->text(), QString::fromLatin1(c.firstMenuCaption));
    EXPECT_DOUBLE_EQ(w->Strip1->DataMin(0), c.firstValue);
    EXPECT_EQ(w->toolButton("yscale")->isEnabled(), c.calibrate);
    EXPECT_EQ(w->toolButton("tracks")->isEnabled(), c.tracksCommand);
    EXPECT_EQ(w->mnuQuillChannels->isEnabled(), c.quillChannels);
    const int channels = c.loads.back();
    EXPECT_EQ(points(channels - 1), 10u);
    if (channels > 5) { // all slots handed over: quill channels 1-3 shown, 4-8 hidden
        EXPECT_TRUE(visible(6) && w->mnuChannel[1]->isChecked() && !visible(8));
    } else if (c.loads.size() == 1) {
        EXPECT_EQ(points(channels), 0u);
    }
}

// Eight: track 1 is written twice and ends pale; track 2 keeps the colour it had; "Expansion"
// stays on the vibrations' track.
// clang-format off
const LayoutCase layoutCases[] = {
    {"One", {1}, 1, {{0, "Channel 1"}, {1, "Phase B"}}, {}, {{0, pale190}}, 800, "1", 199, true, true, false},
    {"ThreeKeepsTheStartUpLayout", {3}, 5, {{0, "Phase A"}, {4, "C A Voltage"}}, {{0, 0}, {2, 2}, {4, 4}, {5, 2}}, {{0, pale190}, {3, pale210}}, 1630, "1", 100, false, true, false},
    {"Five", {5}, 5, {{2, "Phase C"}, {3, "A B Voltage"}}, {{3, 3}, {4, 4}}, {{4, pale210}}, 1630, "1", 100, false, true, false},
    {"Eight", {8}, 3, {{0, "Intake Temp."}, {5, "Discharge Pressure"}, {7, "Expansion"}}, {{1, 0}, {5, 0}, {0, 1}, {2, 1}, {6, 1}, {3, 2}, {4, 2}, {7, 2}}, {{0, pale190}, {1, pale230}, {2, pale190}}, 2442.15, "1", 100, false, false, false},
    {"Thirteen", {13}, 3, {{4, "C A Voltage"}, {5, "Quill Channel 1"}, {12, "Quill Channel 8"}}, {{2, 0}, {3, 1}, {4, 1}, {5, 2}, {12, 2}}, {{0, pale190}, {1, pale230}}, 3645, "Channel 1", 100, false, false, true},
    {"ThreeAfterThirteenKeepsIt", {13, 3}, 3, {{12, "Quill Channel 8"}}, {{2, 0}, {4, 1}, {9, 2}}, {{1, pale230}}, 3645, "Channel 1", 100, false, true, false},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(Loads, LayoutAfterLoads, ::testing::ValuesIn(layoutCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(ChartView, ColoursComeFromTheSettingsStoreTheChooserAndGoBackToIt) {
    w.reset();
    env.settings.clear();
    env.settings.insert("Channel3/Color", "255"); // which texts are colours is tested apart
    w = std::make_unique<Form1>(env, dialogs);
    w->show();
    w->Strip1->setCurrentVar(3);
    EXPECT_EQ(w->Strip1->VarColor(), 255u);

    dialogs.colorAnswers = {std::nullopt, QColor(10, 20, 30)};
    QTest::mouseClick(w->stats[2].lblVar, Qt::LeftButton); // cancelled
    ASSERT_EQ(dialogs.colorTitles, QStringList{"Variable Color"});
    EXPECT_EQ(dialogs.colorInitials.at(0), QColor(1, 128, 0)); // the row's colour preselected
    EXPECT_EQ(w->picStats->rowColor(2), QColor(1, 128, 0));
    w->Strip1->setCurrentVar(2);
    EXPECT_EQ(w->Strip1->VarColor(), 1u + 256u * 128u);
    QTest::mouseClick(w->stats[2].lblVar, Qt::LeftButton);
    w->Strip1->setCurrentVar(2);
    const quint32 chosen = 10 + 256 * 20 + 65536 * 30;
    EXPECT_EQ(w->Strip1->VarColor(), chosen);
    EXPECT_EQ(w->stats[2].Line1->palette().color(QPalette::Window), QColor(10, 20, 30));
    w->close();
    for (int i = 0; i < 13; ++i)
        EXPECT_TRUE(env.settings.contains(QStringLiteral("Channel%1/Color").arg(i))) << i;
    EXPECT_EQ(env.settings.value("Channel2/Color"), QString::number(chosen));
    EXPECT_EQ(env.settings.value("Channel3/Color"), QStringLiteral("255"));
}

TEST_F(ChartView, VisibilityBoxesAndQuillChannelItemsKeepInStep) {
    loadChannels(13);
    w->show();
    // A box switches the curve and its menu item; rows 0 to 4 have no menu item.
    for (int row : {6, 9, 2})
        QTest::mouseClick(w->stats[row].chkChannelVisible, Qt::LeftButton);
    EXPECT_FALSE(visible(6) || visible(2));
    EXPECT_TRUE(visible(9));
    for (int k = 0; k < 8; ++k)
        EXPECT_EQ(w->mnuChannel[size_t(k)]->isChecked(), visible(k + 5)) << "item " << k + 1;

    // A menu item switches box and curve, lays out all channels again and refreshes the rows.
    w->Strip1->setCurrentVar(0);
    w->Strip1->setVarTrack(4);
    w->stats[12].lblMax->setText(QStringLiteral("stale"));
    w->mnuChannel[2]->trigger();
    EXPECT_FALSE(w->mnuChannel[2]->isChecked() || w->stats[7].chkChannelVisible->isChecked());
    EXPECT_FALSE(visible(7));
    EXPECT_EQ(trackOf(0), 0);
    EXPECT_EQ(w->stats[12].lblMax->text(), QStringLiteral("1309.00"));
    w->mnuChannel_Click(3);
    EXPECT_TRUE(w->mnuChannel[2]->isChecked() && w->stats[7].chkChannelVisible->isChecked());
    EXPECT_TRUE(visible(7));
}

TEST_F(ChartView, HeldScrollButtonStepsOnEveryTickUntilReleased) {
    loadChannels(5);
    showWindow();
    w->tmrUI->stop(); // the test drives the ticks
    const double start = w->Strip1->XViewStart(), step = w->Strip1->XSpan() / 10;
    QToolButton* right = w->toolButton("right");
    QTest::mousePress(right, Qt::LeftButton);
    EXPECT_TRUE(w->scrollRight && !w->scrollLeft);
    for (int tick = 0; tick < 3; ++tick)
        w->tmrUI_Timer();
    EXPECT_NEAR(w->Strip1->XViewStart(), start + 3 * step, 1e-9);
    QTest::mouseRelease(right, Qt::LeftButton); // the click adds its own step
    EXPECT_FALSE(w->scrollRight);
    w->tmrUI_Timer();
    EXPECT_NEAR(w->Strip1->XViewStart(), start + 4 * step, 1e-9);

    // A release anywhere on the toolbar ends holding.
    QTest::mousePress(w->toolButton("left"), Qt::LeftButton);
    EXPECT_TRUE(w->scrollLeft);
    QTest::mouseRelease(w->Toolbar1, Qt::LeftButton, {}, QPoint(w->Toolbar1->width() - 2, 2));
    EXPECT_FALSE(w->scrollLeft);
}

TEST_F(ChartView, MarkersStayThroughAReloadAndTheNextToggleRemovesThem) {
    loadChannels(5);
    w->Toolbar1_ButtonClick("points");
    loadChannels(5);
    for (const bool on : {true, false}) {
        for (int v = 0; v < 13; ++v) {
            w->Strip1->setCurrentVar(v);
            EXPECT_EQ(w->Strip1->VarSymbol(), on ? v + 1 : 0) << v;
        }
        w->Toolbar1_ButtonClick("points");
    }
}

TEST_F(ChartView, BufferSizePromptTakesOnlyAWholePositiveNumber) {
    struct Row {
        std::optional<QString> answer; // nullopt: cancelled
        int size;
        bool refused;
    };
    // Which answers are whole positive sizes is the answer reader's own rule.
    const Row rows[] = {{"50000", 50000, false}, {"abc", 50000, true}, {std::nullopt, 50000, true}};
    for (const Row& r : rows) {
        SCOPED_TRACE(r.answer.value_or(QStringLiteral("(cancel)")).toStdString());
        const QString preset = QString::number(w->Strip1->MaxBufferSize());
        dialogs.messages.clear();
        if (r.answer)
            dialogs.inputAnswers.push_back(*r.answer);
        w->mnuGraphSettings_Click();
        EXPECT_EQ(dialogs.inputDefaults.last(), preset);
        EXPECT_EQ(w->Strip1->MaxBufferSize(), r.size);
        ASSERT_EQ(dialogs.messages.size(), r.refused ? 1u : 0u);
        if (r.refused) {
            EXPECT_EQ(dialogs.messages[0].text, QStringLiteral("MaxBufferSize must be numeric!"));
        }
    }
}

TEST_F(ChartView, ClicksInTheChartRefreshEveryRowAndTheStatusBarButAZoomDoesNot) {
    // Variable k reads k + 1 at the start of the day and -(k + 1) at its end; slot 12 is empty.
    for (int k = 0; k < 12; ++k) {
        const XYArray a = makeArray({{mar15, k + 1.0}, {mar15 + 1, -(k + 1.0)}});
        w->Strip1->AddXYArray(k, &a);
    }
    w->Strip1->ShowXRange(mar15, mar15 + 1);
    showWindow();
    const QRectF plot = w->Strip1->plotArea();
    const QPoint nearStart(int(plot.left() + 5), int(plot.center().y()));
    const QPoint nearEnd(int(plot.right() - 5), int(plot.center().y()));
    // Row k's value at the day's start (sign 1) or end (sign -1), as shown.
    const auto shown = [](int k, int sign) {
        return QString::number(k < 12 ? sign * (k + 1) : 0) + ".00";
    };
    // Every row with its cursor value at the day's start or end.
    const auto expectRows = [&](int cursorSign) {
        for (int k = 0; k < 13; ++k) {
            SCOPED_TRACE("row " + std::to_string(k));
            const StatsRow& row = w->stats[size_t(k)];
            EXPECT_EQ(row.lblCursorValue->text(), shown(k, cursorSign));
            EXPECT_EQ(row.lblMin->text() + row.lblMinDisp->text(), shown(k, -1) + shown(k, -1));
            EXPECT_EQ(row.lblMax->text() + row.lblMaxDisp->text(), shown(k, 1) + shown(k, 1));
            EXPECT_EQ(row.lblAvg->text() + row.lblAvgDisp->text(), "0.000.00");
        }
        EXPECT_EQ(w->statusPanels[1]->text(), "Cursor: " + w->lblCursor->text());
    };

    QTest::mouseClick(w->Strip1, Qt::LeftButton, {}, nearStart);
    expectRows(1);
    EXPECT_TRUE(w->lblCursor->text().startsWith("3/15/2012 "))
        << w->lblCursor->text().toStdString();
    const QString clickedTime = w->lblCursor->text();

    QTest::mouseClick(w->Strip1, Qt::LeftButton, {}, nearEnd);
    expectRows(-1);
    EXPECT_NE(w->lblCursor->text(), clickedTime);

    // A zoom that pulls the cursor into the window leaves the read-outs as they were.
    for (int i = 0; i < 20; ++i)
        w->ScrollTime(0);
    const QString shownTime = w->lblCursor->text();
    w->ZoomTime(0);
    EXPECT_GE(w->Strip1->CursorX(), w->Strip1->XViewStart());
    EXPECT_LE(w->Strip1->CursorX(), w->Strip1->XViewEnd());
    EXPECT_EQ(w->lblCursor->text(), shownTime);
    expectRows(-1);
}

TEST_F(ChartView, ProgressWindowStaysEnabledWhileTheMainWindowIsDisabled) {
    w->show();
    bool mainEnabled = true, progressEnabled = false;
    QTimer::singleShot(0, w.get(), [&] {
        mainEnabled = w->isEnabled();
        progressEnabled = w->progressDialog() && w->progressDialog()->isEnabled();
    });
    loadChannels(5);
    EXPECT_FALSE(mainEnabled);
    EXPECT_TRUE(progressEnabled);
}

TEST_F(ChartView, DebugWordMustMatchExactly) {
    const QString old = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(scratch.path()));
    for (const char* word : {"Debug", "debug now", "debug"}) {
        const Form1 other(env, dialogs, QString::fromLatin1(word));
        EXPECT_EQ(other.bbDebugOut, word == std::string("debug")) << word;
        EXPECT_EQ(QFile::exists("TXDebug.txt"), other.bbDebugOut) << word;
    }
    QDir::setCurrent(old);
}

// A one-channel log has no events: its comments take the whole history column, until a load of
// more channels brings the list back. A window made smaller than the minimum springs back.
TEST_F(ChartView, OneChannelLogsGiveTheCommentsTheColumnAndTheWindowKeepsItsMinimum) {
    showWindow();
    const std::tuple<int, bool, int> rows[] = {{1, false, 2}, {5, true, 1}};
    for (const auto& [channels, listShown, gridLists] : rows) {
        SCOPED_TRACE(channels);
        loadChannels(channels);
        w->ArrangeControls();
        const QWidget* list = w->lstHST;
        EXPECT_EQ(!list->isHidden(), listShown);
        EXPECT_EQ(w->cmdAddComment->y(), listShown ? list->y() + list->height() : list->y());
        EXPECT_EQ(w->gridHistoryEvents->height(), gridLists * list->height());
    }
    w->resize(300, 200);
    w->ArrangeControls();
    const double dpi = w->logicalDpiX();
    EXPECT_GE(w->frameGeometry().width(), twips::toPixels(12000, dpi));
    EXPECT_GE(w->frameGeometry().height(), twips::toPixels(9000, dpi));
}

TEST_F(ChartView, StatsAndHistoryCommandsGiveTheSpaceBack) {
    showWindow();
    w->resize(w->twipsToPixels(16000), w->twipsToPixels(10000));
    w->ArrangeControls();
    const int withPanel = w->Strip1->height();
    w->Toolbar1_ButtonClick("stats");
    EXPECT_FALSE(w->picStats->isVisible());
    EXPECT_EQ(w->Strip1->height(), withPanel + w->picStats->height());
    w->Toolbar1_ButtonClick("stats");
    EXPECT_EQ(w->Strip1->height(), withPanel);

    w->setBandWidthTwips(2955);
    w->Toolbar1_ButtonClick("history");
    EXPECT_LT(w->bandWidthTwips(), 400);
    w->Toolbar1_ButtonClick("history");
    EXPECT_NEAR(w->bandWidthTwips(), 3000, 30);
    QTest::qWait(450); // the timer notices the new width and re-arranges the column
    EXPECT_EQ(w->lstHST->width(), w->frameHist->width());
}

TEST_F(ChartView, RightClickOpensTheContextMenuOnTheChartOnly) {
    showWindow();
    // A menu the toolbar opened is found and closed by this timer, whether it runs its own event
    // loop or the test's.
    bool toolbarMenu = false;
    QTimer closer;
    closer.setSingleShot(true);
    QObject::connect(&closer, &QTimer::timeout, [&] {
        if (QWidget* popup = QApplication::activePopupWidget()) {
            toolbarMenu = true;
            popup->close();
        }
    });
    closer.start(0);
    QContextMenuEvent onToolbar(QContextMenuEvent::Mouse, QPoint(5, 5),
                                w->Toolbar1->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(w->Toolbar1, &onToolbar);
    QCoreApplication::processEvents();
    EXPECT_FALSE(toolbarMenu);
    QTest::mouseClick(w->Strip1, Qt::RightButton, {}, w->Strip1->rect().center());
    EXPECT_TRUE(w->popup2->isVisible());
    EXPECT_TRUE(w->popup2->actions().contains(w->mnuStripChartSettings))
        << "the chart's settings are reachable from it";
    w->popup2->close();
}

TEST_F(ChartView, PrintCancelledPrintsNothingAndPrintedCarriesTheSiteCaption) {
    showWindow();
    loadChannels(1);
    w->Toolbar1_ButtonClick("print"); // no answer queued: cancelled
    EXPECT_EQ(dialogs.printDialogs, 1);
    const QString pdf = scratch.file("page.pdf");
    dialogs.printerAnswers.push_back(pdf);
    w->Toolbar1_ButtonClick("print");
    EXPECT_TRUE(pdfText(pdf).contains("Site: AB12"));
    EXPECT_TRUE(w->Strip1->Caption().isEmpty());
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(ChartView, HomeZoomsAllAndEachLoadStartsANewHistoryAtItsWholeRange) {
    writeDay("AB12", "031412", 5, 600);
    writeDay("AB12", "031512", 5, 600);
    load("AB12", {"031412", "031512"}, mar14, mar15);
    StripChartModel& chart = w->Strip1->model();
    const auto view = [&chart] { return TimeWindow{chart.xViewStart(), chart.xViewEnd()}; };
    const TimeWindow all{w->XMin, w->XMax};
    // The windows of the first day on the way are not views of the history.
    EXPECT_EQ(view(), all);
    EXPECT_FALSE(chart.backView());

    w->Toolbar1_ButtonClick(QStringLiteral("plus"));
    w->Toolbar1_ButtonMenuClick(QStringLiteral("1hour"));
    EXPECT_NE(view(), all);
    QTest::keyClick(w->Strip1, Qt::Key_Home);
    EXPECT_EQ(view(), all);
    EXPECT_EQ(chart.viewHistory().size(), 4u) << "the load's range and one view per command";

    load("AB12", {"031512"}, mar15, mar15);
    EXPECT_EQ(chart.viewHistory().size(), 1u);
    EXPECT_EQ(view(), (TimeWindow{w->XMin, w->XMax}));
}

// Where the reference columns sit in the panel is the layout's own test.
TEST_F(ChartView, ReferenceReadoutsFollowTheCursorAndTheReferenceAndGoWithANewLoad) {
    loadChannels(3);
    showWindow();
    StatsPanel& panel = *w->picStats;
    const int panelWidth = panel.minimumWidth();
    EXPECT_TRUE(w->referencePanel->isHidden());

    constexpr double minute = 1.0 / 1440.0;
    w->Strip1->setCursorX(mar15 + 7 * minute);
    w->UpdateCursorDisplay();
    w->Strip1->model().setReferenceX(mar15 + 2 * minute);
    EXPECT_TRUE(w->referencePanel->isVisible());
    EXPECT_EQ(w->referencePanel->text(),
              QString::fromUtf8("Ref: 3/15/2012 12:02:00 AM   Δt: 0:05:00"));
    for (int k = 0; k < StatsPanel::rowCount; ++k) {
        SCOPED_TRACE("row " + std::to_string(k));
        const StatsRow& row = panel.rows[size_t(k)];
        ASSERT_TRUE(row.lblRefValue && row.lblRefValue->isVisible());
        EXPECT_EQ(row.lblRefValue->text(),
                  k < 3 ? QString::number((k + 1) * 100 + 2) + ".00" : QStringLiteral("0.00"));
        EXPECT_EQ(row.lblDelta->text(), k < 3 ? "5.00" : "0.00");
    }
    const QList<QLabel*> labels = panel.findChildren<QLabel*>();
    for (const QString heading : {"Ref Value", "Delta"})
        EXPECT_TRUE(std::ranges::any_of(labels, [&](const QLabel* l) {
            return l->isVisible() && l->text() == heading;
        })) << heading.toStdString();
    EXPECT_GT(panel.minimumWidth(), panelWidth);
    EXPECT_TRUE(QTest::qWaitFor([&] { return w->Strip1->width() >= panel.minimumWidth(); }, 1000))
        << "the chart column makes room for the columns";

    // A click moves the cursor: the time difference and the deltas follow it.
    const QRectF plot = w->Strip1->plotArea();
    QTest::mouseClick(w->Strip1, Qt::LeftButton, {},
                      QPoint(int(plot.left() + plot.width() * 0.95), int(plot.center().y())));
    const double cursorShown = panel.rows[0].lblCursorValue->text().toDouble();
    EXPECT_GE(cursorShown, 108.0);
    EXPECT_EQ(panel.rows[0].lblDelta->text(), QString::number(cursorShown - 102.0, 'f', 2));
    EXPECT_FALSE(w->referencePanel->text().endsWith("0:05:00"));

    // A new load takes the reference away: it belonged to the data it was set on.
    loadChannels(3);
    EXPECT_FALSE(w->Strip1->model().referenceX());
    EXPECT_TRUE(w->referencePanel->isHidden());
    EXPECT_TRUE(panel.rows[0].lblRefValue->isHidden());
    EXPECT_EQ(panel.minimumWidth(), panelWidth);
}

TEST(AboutBox, ClosesOnAKeyOrThePictureButNotOnItsVersionText) {
    frmSplash box;
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
