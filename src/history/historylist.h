#pragma once

#include <QListView>
#include <QStringList>

namespace trendax {

// The controller's event list (lstHST): a list view over the entries, kept as text. Appending a
// busy month's tens of thousands of entries costs a string list append, not an item object each.
class HistoryList : public QListView {
    Q_OBJECT

public:
    explicit HistoryList(QWidget* parent = nullptr);
    ~HistoryList() override;

    int count() const;
    // The entry of a row; empty for a row that does not exist.
    QString text(int row) const;
    const QStringList& entries() const;
    void addItems(const QStringList& entries);
    void insertItem(int row, const QString& entry);
    void clear();

    // While held (during a load), appended entries are kept and counted but not laid out, which
    // would otherwise happen again for the whole list each time the load lets window events run;
    // releasing the hold shows them all with one layout.
    void holdLayout(bool hold);

signals:
    // An entry chosen, by its row: clicked, or made current with the keyboard (arrows, pages,
    // Home, End, typing its first letters), as a list box reports its clicks.
    void entryClicked(int row);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    class Model;
    Model* model_;
    bool held_ = false;
};

} // namespace trendax
