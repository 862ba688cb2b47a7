// The chart's event markers through the main window: fed by a load and by a new comment; a click
// on a flag ends where a click on its row ends.
#include "mainwindowtest.h"

#include <QPushButton>
#include <QRegularExpression>
#include <QTableWidget>
#include <algorithm>
#include <functional>
#include <tuple>

namespace trendax::test {
namespace {

using ChartEventMarkers = MainWindowTest;

TEST_F(ChartEventMarkers, ALoadAndANewCommentGiveMarkersWhoseFlagsEndWhereTheirRowsEnd) {
    // Site AB12's 03/15/12 with two events (the undecodable line repeats the first) and three
    // comments, one of them on that day; loaded twice, as a second load starts again from none.
    writeDay("AB12", "031512", 1, 1440);
    scratch.write("logfiles/AB12031512.TXT",
                  "OLD     03/15 10:22:33 0\r\nno time here\r\nPWRF    03/15 11:00:00\r\n");
    scratch.write("logfiles/AB12USEREVENTS.TXT", "12/31/2011 08:00:00 old year\r\n"
                                                 "03/15/2012 09:00:00 b\tsecond\r\n"
                                                 "01/02/2013 10:00:00 new year\r\n");
    load("AB12", {"031512"}, mar15, mar15);
    load("AB12", {"031512"}, mar15, mar15);
    // Source, row and text of every marker in time order.
    const auto markers = [&] {
        QStringList out;
        const EventMarkers& m = w->Strip1->eventMarkers();
        for (std::size_t i = 0; i < m.size(); ++i)
            out << QString(m.at(i).source == MarkerSource::Comment ? "comment %1 %2"
                                                                   : "event %1 %2")
                       .arg(m.at(i).index)
                       .arg(m.at(i).text);
        return out;
    };
    EXPECT_EQ(
        markers(),
        (QStringList{"comment 2 old year", "comment 1 b\tsecond",
                     "event 0 03/15/12 10:22:33 - Overload", "event 1 03/15/12 10:22:33 - Overload",
                     "event 2 03/15/12 11:00:00 - Power Failed", "comment 0 new year"}));

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

    w->Strip1->setCursorX(mar15 + 0.5);
    dialogs.inputAnswers = {QStringLiteral("noon")};
    w->cmdAddComment->click();
    // The grid is sorted again, so every comment's row is looked up anew.
    QStringList expected;
    for (int r = 0; r < w->gridHistoryEvents->rowCount(); ++r)
        expected << QString("comment %1 %2").arg(r).arg(w->gridHistoryEvents->item(r, 1)->text());
    QStringList comments = markers().filter(QRegularExpression("^comment"));
    std::sort(comments.begin(), comments.end());
    EXPECT_EQ(comments, expected);
    EXPECT_EQ(markers().at(5), "comment 3 noon") << "at the cursor's time, after 11:00";
}

} // namespace
} // namespace trendax::test
