#include "history/historylist.h"

#include <QAbstractListModel>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <algorithm>

namespace trendax {

class HistoryList::Model : public QAbstractListModel {
public:
    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : int(entries.size());
    }

    QVariant data(const QModelIndex& index, int role) const override {
        if (role != Qt::DisplayRole || !index.isValid() || index.row() >= entries.size())
            return {};
        return entries[index.row()];
    }

    void insert(int row, const QStringList& added) {
        if (added.isEmpty())
            return;
        beginInsertRows({}, row, row + int(added.size()) - 1);
        if (row == entries.size())
            entries += added;
        else
            for (qsizetype i = 0; i < added.size(); ++i)
                entries.insert(row + i, added[i]);
        endInsertRows();
    }

    void clear() {
        beginResetModel();
        entries.clear();
        endResetModel();
    }

    QStringList entries;
};

HistoryList::HistoryList(QWidget* parent) : QListView(parent), model_(new Model(this)) {
    // Every entry is one line of one font.
    setUniformItemSizes(true);
    setEditTriggers(NoEditTriggers);
    setModel(model_);
    connect(this, &QListView::clicked, this,
            [this](const QModelIndex& index) { emit entryClicked(index.row()); });
}

HistoryList::~HistoryList() = default;

void HistoryList::keyPressEvent(QKeyEvent* event) {
    const QPersistentModelIndex before = currentIndex();
    QListView::keyPressEvent(event);
    const QModelIndex after = currentIndex();
    if (after.isValid() && after != before)
        emit entryClicked(after.row());
}

int HistoryList::count() const {
    return int(model_->entries.size());
}

QString HistoryList::text(int row) const {
    return model_->entries.value(row);
}

const QStringList& HistoryList::entries() const {
    return model_->entries;
}

void HistoryList::addItems(const QStringList& entries) {
    model_->insert(count(), entries);
}

void HistoryList::insertItem(int row, const QString& entry) {
    model_->insert(std::clamp(row, 0, count()), {entry});
}

void HistoryList::clear() {
    model_->clear();
}

void HistoryList::holdLayout(bool hold) {
    if (hold == held_)
        return;
    held_ = hold;
    // Without a model the view has nothing to lay out; given the model back it lays it out once.
    // Each model gets a new selection model; the view leaves the old one to its owner, which is
    // this view.
    QItemSelectionModel* old = selectionModel();
    setModel(hold ? nullptr : model_);
    delete old;
}

} // namespace trendax
