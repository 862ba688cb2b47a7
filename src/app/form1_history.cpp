// The main window's history column: the controller's event list, the user's comments and
// moving the chart to the moment of either.
#include "app/form1.h"
#include "chart/stripchart.h"
#include "history/historyfile.h"
#include "history/markerfeed.h"
#include "history/usercomments.h"
#include "loading/wellload.h"
#include "storage/datetime.h"
#include "storage/dialogs.h"
#include "storage/environment.h"
#include "storage/programtitle.h"

#include <QHeaderView>
#include <QStatusBar>
#include <QTableWidget>

namespace trendax {

void Form1::LoadHistoryFile(const QString& path) {
    lstHST->addItems(history::readHistoryFile(path));
}

void Form1::LoadUserComments(const QString& path) {
    const QStringList rows = commentRows_.rows(path);
    // A load asks for the same file once per day; while it is unchanged the grid already shows
    // exactly these rows, and building thousands of cells again would only cost time.
    if (rows.isSharedWith(shownCommentRows_) && gridHistoryEvents->rowCount() == rows.size())
        return;
    showCommentRows(rows);
    shownCommentRows_ = rows;
}

void Form1::showCommentRows(const QStringList& rows) {
    gridHistoryEvents->setUpdatesEnabled(false);
    gridHistoryEvents->setRowCount(0);
    gridHistoryEvents->setColumnCount(2);
    gridHistoryEvents->setRowCount(int(rows.size()));
    for (int r = 0; r < int(rows.size()); ++r)
        setCommentRow(r, rows[r]);
    gridHistoryEvents->setUpdatesEnabled(true);
}

// A row's text has a TAB between its cells, so a TAB typed into a comment spills the rest into
// further columns, which the grid grows to hold; the comment stays whole in the file. The time
// cell keeps the row's text whole, as the file gave it, for sorting and the chart's markers.
void Form1::setCommentRow(int row, const QString& text) {
    const QStringList cells = text.split(QLatin1Char('\t'));
    for (int c = gridHistoryEvents->columnCount(); c < cells.size(); ++c) {
        gridHistoryEvents->insertColumn(c);
        gridHistoryEvents->setHorizontalHeaderItem(c, new QTableWidgetItem(QString()));
        gridHistoryEvents->setColumnWidth(c, gridHistoryEvents->columnWidth(1));
    }
    for (int c = 0; c < cells.size(); ++c) {
        auto* item = new QTableWidgetItem(cells[c]);
        if (c == 0) {
            item->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
            item->setData(Qt::UserRole, text);
        }
        gridHistoryEvents->setItem(row, c, item);
    }
}

QStringList Form1::commentGridRows() const {
    QStringList rows;
    for (int r = 0; r < gridHistoryEvents->rowCount(); ++r) {
        const QTableWidgetItem* time = gridHistoryEvents->item(r, 0);
        rows << (time ? time->data(Qt::UserRole).toString() : QString());
    }
    return rows;
}

void Form1::cmdAddComment_Click() {
    if (SiteCode.isEmpty())
        return;
    const double t = Strip1->CursorX();
    const QString comment = dialogs().input(
        this, QStringLiteral("Enter a comment to store for ") + datetime::formatGeneral(t),
        QStringLiteral("User Comment"), QString());
    if (comment.isEmpty())
        return;
    shownCommentRows_.clear(); // the grid no longer holds just the file's rows

    const int row = gridHistoryEvents->rowCount();
    gridHistoryEvents->insertRow(row);
    setCommentRow(row, datetime::formatGeneral(t) + QLatin1Char('\t') + comment);

    const QString path = commentsFilePath(environment().appFolder(), SiteCode);
    const history::AppendResult result =
        history::AppendUserComment(Strip1->CursorX(), comment, path);
    if (!result.stored()) {
        // The row would claim a comment that is not on disk.
        gridHistoryEvents->removeRow(row);
        dialogs().message(this,
                          QStringLiteral("The comment was not saved: ") + path +
                              QStringLiteral(" could not be written (") + result.error +
                              QStringLiteral(")."),
                          programTitle(), QMessageBox::Ok, QMessageBox::Warning);
        return;
    }
    QStringList rows = commentGridRows();
    history::sortCommentRows(rows);
    showCommentRows(rows);
    UpdateEventMarkers();
}

void Form1::centreOn(double t) {
    const double w = Strip1->XSpan();
    Strip1->ShowXRange(t - w / 2, t + w / 2);
    Strip1->setCursorX(t);
    UpdateCursorDisplay();
}

void Form1::lstHST_Click(int row) {
    if (row < 0 || row >= lstHST->count())
        return;
    const QString entry = lstHST->text(row);
    const auto t = history::historyEntryTime(entry);
    if (!t) {
        showStatusMessage(QStringLiteral("The event \"") + entry +
                          QStringLiteral("\" has no time to locate on the graph."));
        return;
    }
    centreOn(*t);
}

void Form1::gridHistoryEvents_Click(int row) {
    const QTableWidgetItem* cell = gridHistoryEvents->item(row, 0);
    if (!cell)
        return;
    gridHistoryEvents->setCurrentCell(row, 0);
    if (const auto t = history::commentCellTime(cell->text()))
        centreOn(*t);
}

void Form1::gridHistoryEvents_MouseMove(const QPoint& pos) {
    const QPoint inRows = gridHistoryEvents->viewport()->mapFrom(gridHistoryEvents, pos);
    if (inRows.y() < 0) {
        gridHistoryEvents->setToolTip(QStringLiteral("Comment"));
        return;
    }
    const int row = gridHistoryEvents->rowAt(inRows.y());
    if (row < 0)
        return;
    gridHistoryEvents->setCurrentCell(row, 1);
    const QTableWidgetItem* cell = gridHistoryEvents->item(row, 1);
    gridHistoryEvents->setToolTip(cell ? cell->text() : QString());
}

void Form1::UpdateEventMarkers() {
    Strip1->setEventMarkers(history::eventMarkers(lstHST->entries(), commentGridRows()));
}

void Form1::Strip1_MarkerClick(MarkerSource source, int index) {
    if (source == MarkerSource::HistoryEvent)
        lstHST_Click(index);
    else
        gridHistoryEvents_Click(index);
}

} // namespace trendax
