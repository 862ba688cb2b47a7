#include "history/historypanel.h"

#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <gtest/gtest.h>

namespace trendax {
namespace {

TEST(HistoryPanel, ReportsTheEntryRowOrButtonClicked) {
    HistoryPanel panel;
    panel.resize(300, 600);
    panel.lstHST->setGeometry(0, 0, 300, 200);
    panel.cmdAddComment->setGeometry(0, 200, 300, 30);
    panel.gridHistoryEvents->setGeometry(0, 230, 300, 300);
    panel.lstHST->addItems({QStringLiteral("first"), QStringLiteral("second")});
    panel.initCommentGrid(100);
    panel.gridHistoryEvents->setRowCount(3);
    panel.show();

    QSignalSpy events(&panel, &HistoryPanel::eventClicked);
    QSignalSpy comments(&panel, &HistoryPanel::commentClicked);
    QSignalSpy add(&panel, &HistoryPanel::addCommentClicked);

    QListWidget* list = panel.lstHST;
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualItemRect(list->item(1)).center());
    ASSERT_EQ(events.size(), 1);
    EXPECT_EQ(events.at(0).at(0).toInt(), 1);

    QTableWidget* grid = panel.gridHistoryEvents;
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {},
                      grid->visualRect(grid->model()->index(2, 1)).center());
    ASSERT_EQ(comments.size(), 1);
    EXPECT_EQ(comments.at(0).at(0).toInt(), 2);

    QTest::mouseClick(panel.cmdAddComment, Qt::LeftButton);
    EXPECT_EQ(add.size(), 1);
    EXPECT_EQ(events.size(), 1);
    EXPECT_EQ(comments.size(), 1);
}

TEST(HistoryPanel, CommentGridHeader) {
    HistoryPanel panel;
    panel.initCommentGrid(77);
    QTableWidget* grid = panel.gridHistoryEvents;
    ASSERT_EQ(grid->columnCount(), 2);
    EXPECT_EQ(grid->horizontalHeaderItem(0)->text(), QStringLiteral("Time"));
    EXPECT_EQ(grid->horizontalHeaderItem(1)->text(), QStringLiteral("Comment"));
    EXPECT_EQ(grid->columnWidth(1), 77);
    EXPECT_EQ(panel.lstHST->toolTip(), QStringLiteral("Click an event to locate on the graph."));
}

} // namespace
} // namespace trendax
