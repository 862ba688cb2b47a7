#include "opendlg/dlgopen.h"
#include "opendlg/shellcopy.h"
#include "storage/homefolder.h"
#include "support/scratchfolder.h"
#include "support/scripteddialogs.h"
#include "support/scriptedenvironment.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QComboBox>
#include <QDateTime>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>
#include <QStandardPaths>
#include <QTimer>
#include <QTreeView>
#include <QTreeWidget>
#include <gtest/gtest.h>

using namespace trendax;

namespace {

QStringList childTexts(const QTreeWidgetItem* node) {
    QStringList out;
    for (int i = 0; i < node->childCount(); ++i)
        out << node->child(i)->text(0);
    return out;
}

// The title of the copy window while it is up, seen from the event loop.
QString visibleCopyWindow() {
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (qobject_cast<QProgressDialog*>(w) && w->isVisible())
            return w->windowTitle();
    }
    return {};
}

// An application folder with a home folder, a clock at 20 March 2024 noon and scripted dialogs.
struct DlgOpen : ::testing::Test {
    test::ScratchFolder scratch;
    test::ScriptedEnvironment env{scratch.mkdir("app")};
    test::ScriptedDialogs dialogs;

    DlgOpen() { env.setNow(*datetime::fromDateTime(2024, 3, 20, 12, 0, 0)); }
    void homeFiles(std::initializer_list<const char*> names) {
        for (const char* name : names)
            scratch.write(QString("app/logfiles/") + name, "x");
    }
};

} // namespace

TEST_F(DlgOpen, LoadCreatesTheFoldersAndShowsTheSitesAndDaysOfTheHomeFolder) {
    dlgOpen empty(env, dialogs);
    EXPECT_EQ(empty.windowTitle(), "Open Site Data");
    EXPECT_TRUE(empty.isModal());
    EXPECT_EQ(empty.HomeFolderPath, scratch.file("app/logfiles"));
    EXPECT_EQ(empty.ConfigFolderPath, scratch.file("app/cnffiles"));
    EXPECT_TRUE(QDir(empty.HomeFolderPath).exists());
    EXPECT_TRUE(QDir(empty.ConfigFolderPath).exists());
    EXPECT_EQ(empty.dir1Path(), QDir(env.appFolder()).canonicalPath());
    ASSERT_EQ(empty.tv->topLevelItemCount(), 1);
    EXPECT_EQ(empty.tv->topLevelItem(0)->childCount(), 0);
    EXPECT_EQ(empty.SelectedSite, nullptr);
    EXPECT_TRUE(dialogs.messages.empty());

    homeFiles({"AB01031612.CSV", "AB01031512.CSV", "CD02010113.CSV", "CD02123112.csv"});
    dlgOpen dialog(env, dialogs);
    QTreeWidgetItem* root = dialog.tv->topLevelItem(0);
    EXPECT_EQ(root->text(0), "Sites");
    EXPECT_EQ(root->data(0, dlgOpen::KeyRole).toString(), "Sites");
    EXPECT_TRUE(root->font(0).bold());
    EXPECT_EQ(root->foreground(0).color(), QColor(0, 0, 255));
    EXPECT_TRUE(root->isExpanded());
    EXPECT_EQ(childTexts(root), (QStringList{"AB01", "CD02"}));
    QTreeWidgetItem* site = root->child(1);
    EXPECT_TRUE(site->font(0).bold());
    EXPECT_EQ(site->data(0, dlgOpen::KeyRole).toString(), "mCD02");
    EXPECT_EQ(childTexts(site), (QStringList{"123112", "010113"}));
    EXPECT_FALSE(site->child(0)->font(0).bold());
    EXPECT_EQ(site->child(0)->data(0, dlgOpen::KeyRole).toString(), "mdCD02123112");
    EXPECT_EQ(dialog.nodeByKey("mdAB01031512"), root->child(0)->child(0));
}

TEST_F(DlgOpen, CalendarsStartAtTheLastSevenDays) {
    dlgOpen dialog(env, dialogs);
    EXPECT_EQ(dialog.calStart->selectedDate(), QDate(2024, 3, 13));
    EXPECT_EQ(dialog.CalEnd->selectedDate(), QDate(2024, 3, 20));
    EXPECT_EQ(dialog.lblStartDate->text(), "3/13/2024");
    EXPECT_EQ(dialog.lblEndDate->text(), "3/20/2024");
    EXPECT_EQ(dialog.startDate(), *datetime::fromDate(2024, 3, 13));
    EXPECT_EQ(dialog.endDate(), *datetime::fromDate(2024, 3, 20));
    dialog.CalEnd->setSelectedDate(QDate(2024, 4, 2));
    EXPECT_EQ(dialog.lblEndDate->text(), "4/2/2024");
}

TEST_F(DlgOpen, ThreeColumnsSideBySideInsideTheDialog) {
    dlgOpen dialog(env, dialogs);
    for (QWidget* control : std::initializer_list<QWidget*>{
             dialog.Drive1, dialog.Dir1, dialog.File1, dialog.cmdImport, dialog.tv, dialog.calStart,
             dialog.CalEnd, dialog.Text1, dialog.OKButton, dialog.CancelButton, dialog.pb1})
        EXPECT_TRUE(dialog.rect().contains(control->geometry()))
            << control->metaObject()->className();
    // Import browser, tree, calendars from left to right without overlapping.
    EXPECT_LE(dialog.Dir1->geometry().right(), dialog.tv->geometry().left());
    EXPECT_LE(dialog.tv->geometry().right(), dialog.calStart->geometry().left());
    EXPECT_LE(dialog.calStart->geometry().bottom(), dialog.CalEnd->geometry().top());
    EXPECT_LE(dialog.File1->geometry().bottom(), dialog.cmdImport->geometry().top());
    EXPECT_LE(dialog.tv->geometry().bottom(), dialog.Text1->geometry().top());
    EXPECT_LT(dialog.OKButton->geometry().right(), dialog.CancelButton->geometry().left());
    // Texts fit their controls, and the calendars get at least the room they ask for.
    for (QPushButton* button : {dialog.cmdImport, dialog.OKButton, dialog.CancelButton})
        EXPECT_LE(button->fontMetrics().horizontalAdvance(button->text()), button->width())
            << button->text().toStdString();
    EXPECT_GE(dialog.calStart->width(), dialog.calStart->minimumSizeHint().width());
    EXPECT_GE(dialog.calStart->height(), dialog.calStart->minimumSizeHint().height());
}

// A click on a day chooses its site and starts the range at that day; other clicks choose a site,
// or keep the one chosen, and leave the calendars alone.
TEST_F(DlgOpen, ClicksChooseTheSiteAndADayItsStart) {
    homeFiles({"AB01031512.CSV", "AB01031612.CSV", "dX01031512.CSV", "EF03.CSV"});
    const struct {
        const char* name;
        QStringList clicks; // node keys; "Sites" is the root
        const char* chosen; // the site key, or nullptr
        QDate start;
    } rows[] = {
        {"a day", {"mdAB01031512"}, "mAB01", {2012, 3, 15}},
        {"the root", {"Sites"}, nullptr, {2024, 3, 13}},
        {"a site", {"mAB01"}, "mAB01", {2024, 3, 13}},
        {"a site whose code begins with d", {"mdX01"}, "mdX01", {2024, 3, 13}},
        {"the root after a site", {"mAB01", "Sites"}, "mAB01", {2024, 3, 13}},
        {"a day that is no date", {"mdEF03.CSV"}, "mEF03", {2024, 3, 13}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        dlgOpen dialog(env, dialogs);
        for (const QString& key : row.clicks)
            dialog.tv_NodeClick(dialog.nodeByKey(key));
        QTreeWidgetItem* site = row.chosen ? dialog.nodeByKey(row.chosen) : nullptr;
        EXPECT_EQ(dialog.SelectedSite, site);
        if (site) {
            EXPECT_EQ(dialog.tv->currentItem(), site);
            EXPECT_EQ(site->data(0, dlgOpen::TagRole).toString(), dialog.HomeFolderPath);
        }
        EXPECT_EQ(dialog.calStart->selectedDate(), row.start);
        EXPECT_EQ(dialog.lblStartDate->text(), row.start.toString("M/d/yyyy"));
        EXPECT_EQ(dialog.CalEnd->selectedDate(), QDate(2024, 3, 20));
    }
}

TEST_F(DlgOpen, ImportAnsweredYesAsksFirstAndRebuildsTheTree) {
    homeFiles({"AB01031512.CSV"});
    scratch.write("media/CD020101.CSV", "CD02,01/01/13,00:00:00,1\r\n");
    scratch.write("media/CD02SCAL.TXT", "2\r\n");
    scratch.write("media/readme.txt", "x");
    dlgOpen dialog(env, dialogs);
    dialog.tv_NodeClick(dialog.nodeByKey("mAB01"));
    ASSERT_TRUE(dialog.setDir1Path(scratch.file("media")));
    EXPECT_EQ(dialog.File1->count(), 3);

    dialogs.messageAnswers.push_back(QMessageBox::Yes);
    // Looks at the dialog whenever the data log's copy window is up.
    int copyWindowSeen = 0;
    bool disabledDuringCopy = true;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (!visibleCopyWindow().isEmpty()) {
            ++copyWindowSeen;
            disabledDuringCopy = disabledDuringCopy && !dialog.isEnabled();
        }
    });
    watch.start(0);
    dialog.cmdImport->click();
    watch.stop();
    EXPECT_GT(copyWindowSeen, 0);
    EXPECT_TRUE(disabledDuringCopy);

    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, "Delete the original log files after they are copied?");
    EXPECT_EQ(dialogs.messages[0].buttons, QMessageBox::Yes | QMessageBox::No);
    EXPECT_TRUE(dialog.isEnabled());
    EXPECT_TRUE(dialog.pb1->isHidden());
    EXPECT_EQ(dialog.pb1->maximum(), 3);
    EXPECT_EQ(dialog.SelectedSite, nullptr); // the tree was rebuilt
    EXPECT_EQ(childTexts(dialog.tv->topLevelItem(0)), (QStringList{"AB01", "CD02"}));
    EXPECT_EQ(dialog.File1->count(), 1); // the sources are gone from the list
}

TEST_F(DlgOpen, ImportThatStopsSaysWhereAndWhy) {
    scratch.write("media/BB010101.CSV", "");
    dlgOpen dialog(env, dialogs);
    ASSERT_TRUE(dialog.setDir1Path(scratch.file("media")));
    dialogs.messageAnswers.push_back(QMessageBox::Yes);
    dialog.cmdImport_Click();
    ASSERT_EQ(dialogs.messages.size(), 2u);
    EXPECT_TRUE(dialogs.messages[1].text.contains(scratch.file("media/BB010101.CSV")));
    EXPECT_EQ(dialogs.messages[1].buttons, QMessageBox::Ok);
    EXPECT_TRUE(QFile::exists(scratch.file("media/BB010101.CSV")));
    EXPECT_TRUE(dialog.isEnabled());
}

TEST_F(DlgOpen, StaleTemporariesOfKilledCopiesAndWritesAreRemoved) {
    const auto stale = [this](const QString& name) {
        QFile file(scratch.write("app/" + name, "x"));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-3600),
                                     QFileDevice::FileModificationTime));
    };
    const auto left = [this](const QString& folder) {
        return QDir(scratch.file("app/" + folder))
            .entryList(QDir::Files | QDir::Hidden, QDir::Name);
    };
    stale("logfiles/.trendax-copy-Ab12Cd");
    stale("logfiles/Schema.ini.QwErTy");
    stale("cnffiles/AB12scal.txt.x1Y2z3");
    // Left alone: a copy that may still be running, and names the program does not make.
    scratch.write("app/logfiles/.trendax-copy-fresh1", "x");
    stale("logfiles/AB01031512.CSV");
    stale("logfiles/notes.txt.abcdef");
    stale("cnffiles/AB12scal.txt.bak");

    dlgOpen dialog(env, dialogs);
    EXPECT_EQ(left("logfiles"),
              (QStringList{".trendax-copy-fresh1", "AB01031512.CSV", "notes.txt.abcdef"}));
    EXPECT_EQ(left("cnffiles"), QStringList{"AB12scal.txt.bak"});

    // An import clears them before it copies; one from an empty folder still asks first.
    stale("cnffiles/AB12OFFS.TXT.a1b2c3");
    ASSERT_TRUE(dialog.setDir1Path(scratch.mkdir("empty")));
    dialog.cmdImport_Click();
    EXPECT_EQ(left("cnffiles"), QStringList{"AB12scal.txt.bak"});
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, "Delete the original log files after they are copied?");
}

TEST_F(DlgOpen, ShowHomeFolderOpensItAndThenSaysItCouldNot) {
    // A per-user data folder of the test's own, empty at first.
    QStandardPaths::setTestModeEnabled(true);
    const QString redirected = homefolder::redirectedHomeFolder();
    QDir(redirected).removeRecursively();
    dlgOpen dialog(env, dialogs);
    dialog.cmdShowHomeFolder->click();
    QDir().mkpath(redirected);
    env.setOpenFolderSucceeds(false); // the message follows whether the start worked or not
    dialog.cmdShowHomeFolder->click();
    QDir(redirected).removeRecursively();
    QStandardPaths::setTestModeEnabled(false);
    EXPECT_EQ(env.openedFolders, (QStringList{dialog.HomeFolderPath, redirected}));
    ASSERT_EQ(dialogs.messages.size(), 2u);
    for (const auto& message : dialogs.messages) {
        EXPECT_EQ(message.text, "Unable to determine Trendax's working folder.");
        EXPECT_EQ(message.buttons, QMessageBox::Ok);
    }

    int calls = 0;
    dialog.setShowHomeFolder([&] { ++calls; });
    dialog.cmdShowHomeFolder->click();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(dialogs.messages.size(), 2u);
}

TEST_F(DlgOpen, FolderBrowserListsFilesAndRefusesWhatItCannotRead) {
    scratch.write("media/b.CSV", "x");
    scratch.write("media/A.hst", "x");
    scratch.mkdir("media/sub");
    dlgOpen dialog(env, dialogs);
    EXPECT_FALSE(dialog.setDir1Path(QString()));
    EXPECT_FALSE(dialog.setDir1Path(scratch.file("missing")));
    ASSERT_TRUE(dialog.setDir1Path(scratch.file("media")));
    ASSERT_EQ(dialog.File1->count(), 2);
    EXPECT_EQ(dialog.File1->item(0)->text(), "A.hst");
    EXPECT_EQ(dialog.File1->item(1)->text(), "b.CSV");
    // The drive list shows the volume that holds the folder; an unreadable drive rolls back.
    EXPECT_TRUE(dialog.dir1Path().startsWith(dialog.Drive1->currentData().toString()));
    const int drive = dialog.Drive1->currentIndex();
    dialog.Drive1->addItem("gone", scratch.file("no-such-drive"));
    dialog.Drive1->setCurrentIndex(dialog.Drive1->count() - 1);
    EXPECT_EQ(dialog.Drive1->currentIndex(), drive);
    EXPECT_EQ(dialog.dir1Path(), scratch.file("media"));
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(DlgOpen, ShellCopyShowsBothPathsAndOnFailureTheBareErrorNumber) {
    const QString source = scratch.write("big.CSV", QByteArray(2 * 1024 * 1024, 'x'));
    const QString destination = scratch.file("out/big.CSV");
    QString seen;
    QTimer::singleShot(0, [&] { seen = visibleCopyWindow(); });
    EXPECT_EQ(CopyWithShell(source, destination, nullptr, dialogs), 0);
    EXPECT_EQ(seen, "Copying " + source + " to " + destination);
    EXPECT_TRUE(dialogs.messages.empty());
    EXPECT_EQ(QFileInfo(destination).size(), 2 * 1024 * 1024);

    EXPECT_EQ(CopyWithShell(scratch.file("missing"), destination, nullptr, dialogs), ENOENT);
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, QString::number(ENOENT));
    EXPECT_EQ(dialogs.messages[0].buttons, QMessageBox::Ok);
    EXPECT_EQ(QFileInfo(destination).size(), 2 * 1024 * 1024);
}
