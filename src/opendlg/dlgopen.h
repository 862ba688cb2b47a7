#pragma once

#include "storage/datetime.h"

#include <QDialog>
#include <QString>
#include <QStringList>
#include <QTreeWidgetItem>
#include <array>
#include <functional>
#include <optional>

class QCalendarWidget;
class QComboBox;
class QDragEnterEvent;
class QDropEvent;
class QMimeData;
class QShowEvent;
class QFileSystemModel;
class QLabel;
class QListWidget;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QTimer;
class QTreeView;
class QTreeWidget;

namespace trendax {

class Dialogs;
class Environment;

// The open dialog "Open Site Data": a folder browser to import controller files from, the site
// and date tree of the home folder, and the start and end calendars. The main window shows it
// modally; after OK it reads SelectedSite and the two dates, and destroys the dialog.
//
// Nodes of tv keep the text in column 0 and two item data of column 0:
//   TagRole  the tag: the home folder path, set on a site node when it is chosen;
//   KeyRole  the key: "Sites" for the root, "m" + site code, "md" + site code + MMDDYY.
// A site node's children are its days in calendar order.
class dlgOpen : public QDialog {
public:
    static constexpr int TagRole = Qt::UserRole;
    static constexpr int KeyRole = Qt::UserRole + 1;

    // Loads the dialog: creates the home and configuration folders, points Dir1 at the
    // application folder, sets the calendars to the last seven days and builds the tree.
    dlgOpen(Environment& environment, Dialogs& dialogs, QWidget* parent = nullptr);
    ~dlgOpen() override;

    // The chosen site node; nullptr until a site or a day is clicked, after Cancel, and after
    // the tree has been rebuilt.
    QTreeWidgetItem* SelectedSite = nullptr;

    // The chosen dates as date-times (midnight of the calendar's day).
    datetime::DateTime startDate() const;
    datetime::DateTime endDate() const;

    // Points Dir1 (and the drive list) at a folder; false, changing nothing, when the folder
    // cannot be read.
    bool setDir1Path(const QString& folder);
    QString dir1Path() const { return dir1Path_; }

    // The action of "Show the Home Folder in Windows Explorer". Unset, the dialog opens the
    // per-user home folder when there is one, the home folder otherwise, and then says that it
    // could not determine it, as the program always has.
    void setShowHomeFolder(std::function<void()> action) { showHomeFolder_ = std::move(action); }

    // The node with the given key, or nullptr.
    QTreeWidgetItem* nodeByKey(const QString& key) const;

    // Rebuilds tv from HomeFolderPath; returns the failure that ended the walk early, if any.
    std::optional<QString> BuildSiteTree();

    // Handlers, one per user event.
    void tv_NodeClick(QTreeWidgetItem* node);
    void cmdImport_Click();
    void cmdShowHomeFolder_Click();
    void Drive1_Change();
    void Dir1_Change();
    void calStart_SelChange();
    void CalEnd_SelChange();
    void OKButton_Click();
    void CancelButton_Click();
    void tmrGUI_Timer() {}

    // Imports what was dropped from the file manager as "Import to Home Folder >>" does, with
    // its question and messages: a folder whole, files only themselves. Dir1 ends at the folder
    // imported last, and the tree is rebuilt.
    void importDropped(const QStringList& paths);
    // importDropped(paths) as soon as the dialog is shown (a drop on the main window).
    void importWhenShown(const QStringList& paths) { pendingDrop_ = paths; }

    // Closing the dialog in any way but OK leaves no site chosen.
    void reject() override;

    QString HomeFolderPath;
    QString ConfigFolderPath;

    // ---- Controls ----
    // Label1: "Folder to Import", "Available Sites and Dates", "Home Folder", "Start Date",
    // "End Date".
    std::array<QLabel*, 5> Label1{};
    QComboBox* Drive1 = nullptr;
    QTreeView* Dir1 = nullptr;
    QListWidget* File1 = nullptr;
    QPushButton* cmdImport = nullptr;
    QProgressBar* pb1 = nullptr;
    QTreeWidget* tv = nullptr;
    QPushButton* cmdShowHomeFolder = nullptr;
    QCalendarWidget* calStart = nullptr;
    QCalendarWidget* CalEnd = nullptr;
    QLabel* lblStartDate = nullptr;
    QLabel* lblEndDate = nullptr;
    QPlainTextEdit* Text1 = nullptr;
    QPushButton* OKButton = nullptr;
    QPushButton* CancelButton = nullptr;
    QTimer* tmrGUI = nullptr;

protected:
    void showEvent(QShowEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    // The import of cmdImport_Click from a folder, all of it or only the given files.
    void importFrom(const QString& folder, const QList<QByteArray>& only);
    void createControls();
    void placeControls();
    void fillDriveList();
    void ShowHomeFolder();
    void showDates();
    // What an import or a write killed half-way left in the two folders.
    void removeStaleTemporaries();

    Environment& env_;
    Dialogs& dialogs_;
    QFileSystemModel* dirModel_ = nullptr;
    QLabel* showHomeFolderCaption_ = nullptr;
    QString dir1Path_;
    QString rememberedDrive_;
    std::function<void()> showHomeFolder_;
    QStringList pendingDrop_;
};

// The local files and folders of a drop from the file manager; none for anything else (a web
// address, text).
QStringList droppedPaths(const QMimeData* data);

} // namespace trendax
