// The history column through the main window: the event list, the comment grid and the chart's
// markers after a load, adding a comment, and moving the chart to an event or comment.
#include "mainwindowtest.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPushButton>
#include <QRegularExpression>
#include <QStatusBar>
#include <QTableWidget>
#include <algorithm>
#include <functional>
#include <tuple>

namespace trendax::test {
namespace {

class HistoryColumn : public MainWindowTest {
protected:
    // Site AB12 with data logs, history files of 03/14 and 03/15 and a comments file; the range
    // takes 03/15 alone.
    void loadSite() {
        writeDay("AB12", "031412", 1, 1440);
        writeDay("AB12", "031512", 1, 1440);
        scratch.write("logfiles/AB12031412.TXT", "OLD     03/14 01:00:00\r\n");
        scratch.write("logfiles/AB12031512.TXT",
                      "OLD     03/15 10:22:33 0\r\nno time here\r\nPWRF    03/15 11:00:00\r\n");
        scratch.write("logfiles/AB12USEREVENTS.TXT", "12/31/2011 08:00:00 old year\r\n"
                                                     "03/15/2012 09:00:00 b\tsecond\r\n"
                                                     "01/02/2013 10:00:00 new year\r\n");
        load("AB12", {"031412", "031512"}, mar15, mar15);
    }

    // Each row's cells, separated by "|".
    QStringList gridRows() const {
        QStringList out;
        for (int r = 0; r < w->gridHistoryEvents->rowCount(); ++r) {
            QStringList cells;
            for (int c = 0; c < w->gridHistoryEvents->columnCount(); ++c) {
                const QTableWidgetItem* item = w->gridHistoryEvents->item(r, c);
                cells << (item ? item->text() : QStringLiteral("-"));
            }
            out << cells.join('|');
        }
        return out;
    }

    // Source, row and text of every chart marker in time order.
    QStringList markers() const {
        QStringList out;
        const EventMarkers& m = w->Strip1->eventMarkers();
        for (std::size_t i = 0; i < m.size(); ++i)
            out << QString(m.at(i).source == MarkerSource::Comment ? "comment %1 %2"
                                                                   : "event %1 %2")
                       .arg(m.at(i).index)
                       .arg(m.at(i).text);
        return out;
    }
};

// The undecodable history line repeats the entry before it.
TEST_F(HistoryColumn, ALoadListsTheDaysEventsAndTheSortedCommentsAndMarksThemOnTheChart) {
    loadSite();
    loadSite(); // a second load starts from empty lists
    EXPECT_EQ(w->lstHST->entries(),
              (QStringList{"03/15/12 10:22:33 - Overload", "03/15/12 10:22:33 - Overload",
                           "03/15/12 11:00:00 - Power Failed"}));
    // Month first; the TAB typed into a comment spills the rest into a further column.
    EXPECT_EQ(gridRows(),
              (QStringList{"01/02/2013 10:00:00|new year|-", "03/15/2012 09:00:00|b|second",
                           "12/31/2011 08:00:00|old year|-"}));
    EXPECT_EQ(
        markers(),
        (QStringList{"comment 2 old year", "comment 1 b\tsecond",
                     "event 0 03/15/12 10:22:33 - Overload", "event 1 03/15/12 10:22:33 - Overload",
                     "event 2 03/15/12 11:00:00 - Power Failed", "comment 0 new year"}));
}

TEST_F(HistoryColumn, AddCommentAsksNothingWithoutASiteAndStoresTheAnswerByteForByte) {
    w->cmdAddComment->click();
    EXPECT_TRUE(dialogs.inputPrompts.isEmpty());
    loadSite();
    const QByteArray before = scratch.read("logfiles/AB12USEREVENTS.TXT");
    w->Strip1->setCursorX(mar15 + 0.5);
    dialogs.inputAnswers = {QString(), QStringLiteral("pump, \"ok\"\tcaf\u00e9")};
    w->cmdAddComment->click(); // cancelled
    EXPECT_EQ(dialogs.inputPrompts,
              QStringList{"Enter a comment to store for " + datetime::formatGeneral(mar15 + 0.5)});
    EXPECT_EQ(scratch.read("logfiles/AB12USEREVENTS.TXT"), before);
    EXPECT_EQ(w->gridHistoryEvents->rowCount(), 3);

    w->cmdAddComment->click();
    EXPECT_EQ(scratch.read("logfiles/AB12USEREVENTS.TXT"),
              before + "03/15/2012 12:00:00 pump, \"ok\"\tcaf\xe9\r\n");
    const QStringList rows = gridRows();
    ASSERT_EQ(rows.size(), 4);
    EXPECT_TRUE(rows.contains(datetime::formatGeneral(mar15 + 0.5) + "|pump, \"ok\"|caf\u00e9"));
    EXPECT_TRUE(std::is_sorted(rows.begin(), rows.end()));
    EXPECT_TRUE(dialogs.messages.empty());
    // The new comment is marked at the cursor's time, under its row in the sorted grid.
    EXPECT_EQ(markers().filter(QRegularExpression("^comment")),
              (QStringList{"comment 2 old year", "comment 1 b\tsecond",
                           "comment 3 pump, \"ok\"\tcaf\u00e9", "comment 0 new year"}));
}

TEST_F(HistoryColumn, AFailedAppendTakesTheRowBackAndSaysWhy) {
    loadSite();
    const QString comments = scratch.file("logfiles/AB12USEREVENTS.TXT");
    QFile::remove(comments);
    ASSERT_TRUE(QDir().mkpath(comments)); // a folder where the file belongs
    dialogs.inputAnswers = {QStringLiteral("lost?")};
    w->cmdAddComment->click();
    EXPECT_EQ(w->gridHistoryEvents->rowCount(), 3);
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_TRUE(dialogs.messages[0].text.contains("not saved"));
    EXPECT_TRUE(dialogs.messages[0].text.contains("AB12USEREVENTS.TXT"));
    EXPECT_TRUE(QFileInfo(comments).isDir());
}

TEST_F(HistoryColumn, AnEventCentresTheViewKeepingItsSpan) {
    loadSite();
    showWindow(); // a status message hides only panels that show
    const double t = mar15 + 11 / 24.0;
    for (const double span : {1 / 24.0, 30.0}) {
        SCOPED_TRACE(span);
        w->Strip1->setXSpan(span);
        emit w->frameHist->eventClicked(2);
        EXPECT_NEAR(w->Strip1->XViewStart(), t - span / 2, 1e-9);
        EXPECT_NEAR(w->Strip1->XSpan(), span, 1e-9);
        EXPECT_DOUBLE_EQ(w->Strip1->CursorX(), t);
        EXPECT_TRUE(w->lblCursor->text().contains(datetime::formatGeneral(t)));
    }
    // An entry without a time leaves the chart and says so in the status bar, over the cursor's
    // panel until the cursor moves.
    w->lstHST->insertItem(0, QString());
    w->lstHST_Click(0);
    EXPECT_DOUBLE_EQ(w->Strip1->CursorX(), t);
    EXPECT_FALSE(w->StatusBar1->currentMessage().isEmpty());
    EXPECT_TRUE(dialogs.messages.empty());
    EXPECT_TRUE(w->statusPanels[1]->isHidden());
    w->lstHST_Click(1);
    EXPECT_TRUE(w->StatusBar1->currentMessage().isEmpty());
    EXPECT_FALSE(w->statusPanels[1]->isHidden());
}

TEST_F(HistoryColumn, AClickOnAMarkersFlagEndsWhereAClickOnItsRowEnds) {
    loadSite();
    showWindow();
    struct Row {
        const char* name;
        double time;
        std::function<void()> clickRow;
    };
    const Row rows[] = {
        {"PowerFailedEvent", mar15 + 11.0 / 24, [&] { w->lstHST_Click(2); }},
        {"Comment", mar15 + 9.0 / 24, [&] { w->gridHistoryEvents_Click(1); }},
    };
    // Window, cursor and status bar text after an action from the same starting view.
    const auto endsAt = [&](const std::function<void()>& action) {
        w->Strip1->ShowXRange(mar15, mar15 + 1);
        w->Strip1->setCursorX(mar15 + 0.9);
        action();
        return std::tuple(w->Strip1->XViewStart(), w->Strip1->XViewEnd(), w->Strip1->CursorX(),
                          w->statusPanels[1]->text());
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto byFlag = endsAt([&] {
            const QRectF plot = w->Strip1->plotArea(); // the window is 03/15/12
            const QPoint flag(int(std::floor(plot.left() + (row.time - mar15) * plot.width())) + 3,
                              int(plot.top()) + 3);
            QTest::mouseClick(w->Strip1, Qt::LeftButton, Qt::NoModifier, flag);
        });
        EXPECT_EQ(byFlag, endsAt(row.clickRow));
        EXPECT_DOUBLE_EQ(std::get<2>(byFlag), row.time);
    }
}

TEST_F(HistoryColumn, HoverShowsTheCommentAndAClickUsesTheClickedRow) {
    loadSite();
    w->resize(1200, 900);
    w->show();
    QTableWidget* grid = w->gridHistoryEvents;
    const auto hover = [](QWidget* target, int y) {
        QMouseEvent move(QEvent::MouseMove, QPointF(5, y), target->mapToGlobal(QPointF(5, y)),
                         Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(target, &move);
    };
    hover(grid->horizontalHeader(), 2);
    EXPECT_EQ(grid->toolTip(), QStringLiteral("Comment"));
    hover(grid->viewport(), grid->rowViewportPosition(2) + 2);
    EXPECT_EQ(grid->toolTip(), QStringLiteral("old year"));
    EXPECT_EQ(grid->currentRow(), 2);

    emit w->frameHist->commentClicked(1);
    EXPECT_DOUBLE_EQ(w->Strip1->CursorX(), mar15 + 9 / 24.0);
    w->gridHistoryEvents_Click(-1); // nothing there: nothing moves
    EXPECT_DOUBLE_EQ(w->Strip1->CursorX(), mar15 + 9 / 24.0);
}

} // namespace
} // namespace trendax::test
