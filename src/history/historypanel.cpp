#include "history/historypanel.h"

#include <QHeaderView>
#include <QListWidget>
#include <QPushButton>
#include <QTableWidget>

namespace trendax {

HistoryPanel::HistoryPanel(QWidget* parent) : QFrame(parent) {
    setObjectName(QStringLiteral("frameHist"));
    setAutoFillBackground(true);
    setPalette(QPalette(Qt::white));
    setMinimumWidth(1);

    lstHST = new QListWidget(this);
    lstHST->setObjectName(QStringLiteral("lstHST"));
    lstHST->setToolTip(QStringLiteral("Click an event to locate on the graph."));
    // Every entry is one line of one font: with uniform sizes the list does not measure tens of
    // thousands of entries again each time a load lets window events run.
    lstHST->setUniformItemSizes(true);
    cmdAddComment = new QPushButton(QStringLiteral("Add Comment"), this);
    cmdAddComment->setObjectName(QStringLiteral("cmdAddComment"));
    gridHistoryEvents = new QTableWidget(0, 2, this);
    gridHistoryEvents->setObjectName(QStringLiteral("gridHistoryEvents"));
    gridHistoryEvents->verticalHeader()->setVisible(false);
    gridHistoryEvents->setEditTriggers(QAbstractItemView::NoEditTriggers);

    connect(lstHST, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { emit eventClicked(lstHST->row(item)); });
    connect(gridHistoryEvents, &QTableWidget::cellClicked, this,
            [this](int row, int) { emit commentClicked(row); });
    connect(cmdAddComment, &QPushButton::clicked, this, [this] { emit addCommentClicked(); });
}

void HistoryPanel::initCommentGrid(int columnWidth) {
    gridHistoryEvents->setColumnCount(2);
    gridHistoryEvents->setHorizontalHeaderLabels(
        {QStringLiteral("Time"), QStringLiteral("Comment")});
    gridHistoryEvents->setColumnWidth(0, columnWidth);
    gridHistoryEvents->setColumnWidth(1, columnWidth);
}

} // namespace trendax
