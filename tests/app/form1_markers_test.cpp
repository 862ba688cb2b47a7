// The chart's event markers through the main window: fed by a load and by a new comment, and a
// click on a flag ending where a click on its row ends.
#include "mainwindowtest.h"

#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableWidget>
#include <algorithm>
#include <functional>
#include <tuple>

namespace trendax::test {
namespace {

class ChartEventMarkers : public MainWindowTest {
protected:
    // Site AB12's 03/15/12 with two events (the undecodable line repeats the first) and three
    // comments, one of them on that day.
    void loadSite() {
        writeDay("AB12", "031512", 1, 1440);
        scratch.write("logfiles/AB12031512.TXT",
                      "OLD     03/15 10:22:33 0\r\nno time here\r\nPWRF    03/15 11:00:00\r\n");
        scratch.write("logfiles/AB12USEREVENTS.TXT", "12/31/2011 08:00:00 old year\r\n"
                                                     "03/15/2012 09:00:00 b\tsecond\r\n"
                                                     "01/02/2013 10:00:00 new year\r\n");
        load("AB12", {"031512"}, mar15, mar15);
    }

    // Source, row and text of every marker in time order.
    QStringList markers() const {
        QStringList out;
        const EventMarkers& m = w->Strip1->eventMarkers();
        for (std::size_t i = 0; i < m.size(); ++i)
            out << QString("%1 %2 %3")
                       .arg(m.at(i).source == MarkerSource::Comment ? "comment" : "event")
                       .arg(m.at(i).index)
                       .arg(m.at(i).text);
        return out;
    }

    QPoint flagOf(double t) const {
        const QRectF plot = w->Strip1->plotArea();
        const double x =
            plot.left() + (t - w->Strip1->XViewStart()) / w->Strip1->XSpan() * plot.width();
        return QPoint(int(std::floor(x)) + 3, int(plot.top()) + 3);
    }
};

TEST_F(ChartEventMarkers, ALoadGivesEveryEventAndCommentAMarkerAndANewCommentItsOwn) {
    loadSite();
    loadSite(); // a second load starts again from none
    EXPECT_EQ(
        markers(),
        (QStringList{"comment 2 old year", "comment 1 b\tsecond",
                     "event 0 03/15/12 10:22:33 - Overload", "event 1 03/15/12 10:22:33 - Overload",
                     "event 2 03/15/12 11:00:00 - Power Failed", "comment 0 new year"}));

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

TEST_F(ChartEventMarkers, ClickingAFlagEndsWhereClickingItsRowEnds) {
    loadSite();
    showWindow();
    struct Row {
        const char* name;
        double time;
        std::function<void()> clickRow;
    };
    const Row rows[] = {
        {"PowerFailedEvent", mar15 + 11.0 / 24, [&] { w->lstHST_Click(2); }},
        {"SharedFlagTakesTheFirstEvent", mar15 + (10 * 3600 + 22 * 60 + 33) / 86400.0,
         [&] { w->lstHST_Click(0); }},
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
            QTest::mouseClick(w->Strip1, Qt::LeftButton, Qt::NoModifier, flagOf(row.time));
        });
        EXPECT_EQ(byFlag, endsAt(row.clickRow));
        EXPECT_DOUBLE_EQ(std::get<2>(byFlag), row.time);
    }
}

} // namespace
} // namespace trendax::test
