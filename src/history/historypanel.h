#pragma once

#include "history/historylist.h"

#include <QFrame>

class QPushButton;
class QTableWidget;

namespace trendax {

// The history column of the main window (frameHist): the controller's event list, the button
// that adds a comment and the comment grid, stacked top to bottom. The window arranges them.
class HistoryPanel : public QFrame {
    Q_OBJECT

public:
    explicit HistoryPanel(QWidget* parent = nullptr);

    HistoryList* lstHST = nullptr;
    QPushButton* cmdAddComment = nullptr;
    QTableWidget* gridHistoryEvents = nullptr;

    // The comment grid's header row: "Time" and "Comment", each column this many pixels wide.
    void initCommentGrid(int columnWidth);

signals:
    // A click on an entry of the event list, by its row.
    void eventClicked(int row);
    // A click on a row of the comment grid.
    void commentClicked(int row);
    void addCommentClicked();
};

} // namespace trendax
