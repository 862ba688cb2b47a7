#include "history/historypanel.h"

#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>

namespace trendax {

HistoryPanel::HistoryPanel(QWidget* parent) : QFrame(parent) {
    setObjectName(QStringLiteral("frameHist"));
    setAutoFillBackground(true);
    setPalette(QPalette(Qt::white));
    setMinimumWidth(1);

    lstHST = new HistoryList(this);
    lstHST->setObjectName(QStringLiteral("lstHST"));
    lstHST->setToolTip(QStringLiteral("Click an event to locate on the graph."));
    cmdAddComment = new QPushButton(QStringLiteral("Add Comment"), this);
    cmdAddComment->setObjectName(QStringLiteral("cmdAddComment"));
    gridHistoryEvents = new QTableWidget(0, 2, this);
    gridHistoryEvents->setObjectName(QStringLiteral("gridHistoryEvents"));
    gridHistoryEvents->verticalHeader()->setVisible(false);
    gridHistoryEvents->setEditTriggers(QAbstractItemView::NoEditTriggers);

    connect(lstHST, &HistoryList::entryClicked, this, &HistoryPanel::eventClicked);
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
    QHeaderView* header = gridHistoryEvents->horizontalHeader();
    QFont bold = header->font();
    bold.setBold(true);
    header->setFont(bold);
    header->setDefaultAlignment(Qt::AlignCenter);
}

} // namespace trendax
