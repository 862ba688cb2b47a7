#include "history/historypanel.h"

#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <gtest/gtest.h>

namespace trendax {
namespace {

TEST(HistoryPanel, ReportsTheEntryOrCommentRowClicked) {
    HistoryPanel panel;
    panel.lstHST->setGeometry(0, 0, 300, 200);
    panel.gridHistoryEvents->setGeometry(0, 230, 300, 300);
    panel.lstHST->addItems({QStringLiteral("first"), QStringLiteral("second")});
    panel.initCommentGrid(100);
    QTableWidget* grid = panel.gridHistoryEvents;
    grid->setRowCount(3);
    panel.show();
    QSignalSpy events(&panel, &HistoryPanel::eventClicked);
    QSignalSpy comments(&panel, &HistoryPanel::commentClicked);
    HistoryList* list = panel.lstHST;
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualRect(list->model()->index(1, 0)).center());
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {},
                      grid->visualRect(grid->model()->index(2, 1)).center());
    EXPECT_EQ(events, QList<QVariantList>{{1}});
    EXPECT_EQ(comments, QList<QVariantList>{{2}});
}

} // namespace
} // namespace trendax
