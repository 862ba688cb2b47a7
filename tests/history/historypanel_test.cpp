#include "history/historypanel.h"

#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <gtest/gtest.h>

namespace trendax {
namespace {

TEST(HistoryPanel, ReportsTheEntryRowOrButtonClicked) {
    HistoryPanel panel;
    panel.lstHST->setGeometry(0, 0, 300, 200);
    panel.cmdAddComment->setGeometry(0, 200, 300, 30);
    panel.gridHistoryEvents->setGeometry(0, 230, 300, 300);
    panel.lstHST->addItems({QStringLiteral("first"), QStringLiteral("second")});
    panel.initCommentGrid(100);
    QTableWidget* grid = panel.gridHistoryEvents;
    ASSERT_EQ(grid->columnCount(), 2);
    EXPECT_EQ(grid->horizontalHeaderItem(0)->text(), QStringLiteral("Time"));
    EXPECT_EQ(grid->horizontalHeaderItem(1)->text(), QStringLiteral("Comment"));
    EXPECT_EQ(grid->columnWidth(1), 100);
    EXPECT_EQ(panel.lstHST->toolTip(), QStringLiteral("Click an event to locate on the graph."));
    grid->setRowCount(3);
    panel.show();

    QSignalSpy events(&panel, &HistoryPanel::eventClicked);
    QSignalSpy comments(&panel, &HistoryPanel::commentClicked);
    QSignalSpy add(&panel, &HistoryPanel::addCommentClicked);
    HistoryList* list = panel.lstHST;
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualRect(list->model()->index(1, 0)).center());
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {},
                      grid->visualRect(grid->model()->index(2, 1)).center());
    QTest::mouseClick(panel.cmdAddComment, Qt::LeftButton);
    ASSERT_EQ(events.size(), 1);
    EXPECT_EQ(events.at(0).at(0).toInt(), 1);
    ASSERT_EQ(comments.size(), 1);
    EXPECT_EQ(comments.at(0).at(0).toInt(), 2);
    EXPECT_EQ(add.size(), 1);
}

} // namespace
} // namespace trendax
