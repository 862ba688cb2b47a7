#include "history/historypanel.h"

#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <gtest/gtest.h>

namespace trendax {
namespace {

TEST(HistoryPanel, ReportsTheEntryChosenByClickOrKeyAndTheCommentRowClicked) {
    HistoryPanel panel;
    panel.lstHST->setGeometry(0, 0, 300, 200);
    panel.gridHistoryEvents->setGeometry(0, 230, 300, 300);
    panel.lstHST->addItems(
        {QStringLiteral("first"), QStringLiteral("second"), QStringLiteral("third")});
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
    EXPECT_EQ(comments, QList<QVariantList>{{2}});
    // Keys that move the current entry choose it; a key that moves nothing chooses nothing.
    list->setFocus();
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_Home, Qt::Key_Up})
        QTest::keyClick(list, key);
    QTest::keyClicks(list, "s");
    EXPECT_EQ(events, (QList<QVariantList>{{1}, {2}, {1}, {0}, {1}}));
}

} // namespace
} // namespace trendax
