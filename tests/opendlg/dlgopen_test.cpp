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
using trendax::test::ScratchFolder;
using trendax::test::ScriptedDialogs;
using trendax::test::ScriptedEnvironment;

namespace {

// An application folder with a home folder, a clock at 20 March 2024 noon and scripted dialogs.
struct Fixture : ::testing::Test {
    ScratchFolder scratch;
    ScriptedEnvironment env{scratch.mkdir("app")};
    ScriptedDialogs dialogs;

    Fixture() { env.setNow(*datetime::fromDateTime(2024, 3, 20, 12, 0, 0)); }

    QString home() const { return scratch.file("app/logfiles"); }
    void homeFile(const QString& name) { scratch.write("app/logfiles/" + name, "x"); }

    static QStringList childTexts(const QTreeWidgetItem* node) {
        QStringList out;
        for (int i = 0; i < node->childCount(); ++i)
            out << node->child(i)->text(0);
        return out;
    }
};

using DlgOpen = Fixture;

} // namespace

TEST_F(DlgOpen, LoadCreatesTheFoldersAndShowsTheRootAlone) {
    dlgOpen dialog(env, dialogs);
    EXPECT_TRUE(QDir(home()).exists());
    EXPECT_TRUE(QDir(scratch.file("app/cnffiles")).exists());
    EXPECT_EQ(dialog.HomeFolderPath, home());
    EXPECT_EQ(dialog.ConfigFolderPath, scratch.file("app/cnffiles"));
    ASSERT_EQ(dialog.tv->topLevelItemCount(), 1);
    QTreeWidgetItem* root = dialog.tv->topLevelItem(0);
    EXPECT_EQ(root->text(0), "Sites");
    EXPECT_EQ(root->data(0, dlgOpen::KeyRole).toString(), "Sites");
    EXPECT_EQ(root->childCount(), 0);
    EXPECT_TRUE(root->font(0).bold());
    EXPECT_EQ(root->foreground(0).color(), QColor(0, 0, 255));
    EXPECT_EQ(dialog.SelectedSite, nullptr);
    EXPECT_EQ(dialog.dir1Path(), QDir(env.appFolder()).canonicalPath());
    EXPECT_TRUE(dialogs.messages.empty());
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

TEST_F(DlgOpen, ControlsCarryTheirTexts) {
    dlgOpen dialog(env, dialogs);
    EXPECT_EQ(dialog.windowTitle(), "Open Site Data");
    EXPECT_TRUE(dialog.isModal());
    QStringList headings;
    for (QLabel* label : dialog.Label1)
        headings << label->text();
    EXPECT_EQ(headings, (QStringList{"Folder to Import", "Available Sites and Dates", "Home Folder",
                                     "Start Date", "End Date"}));
    EXPECT_EQ(dialog.cmdImport->text(), "Import to Home Folder >>");
    EXPECT_EQ(dialog.cmdImport->toolTip(),
              "Click here to import files from the \"Files to Import\" location to the \"Home "
              "Folder\" location.  Once files are in the Home Folder, they can be accessed from "
              "Trendax.");
    EXPECT_EQ(dialog.cmdShowHomeFolder->text(), "Show the Home Folder in Windows Explorer");
    EXPECT_EQ(dialog.OKButton->text(), "OK");
    EXPECT_EQ(dialog.CancelButton->text(), "Cancel");
    EXPECT_EQ(dialog.Text1->toPlainText(),
              "To Import Files:\nBrowse to the folder to import from.\nClick the \"Import to Home "
              "Folder\" button.\nAll files will be imported.\n\nTo view data from imported "
              "files:\nSelect a site name from the Home Folder.\nSelect a start and end "
              "date.\nThen click OK to open the files.\n");
    EXPECT_EQ(dialog.Text1->font().family(), "Tahoma");
    EXPECT_TRUE(dialog.pb1->isHidden());
    EXPECT_TRUE(dialog.tmrGUI->isActive());
}

TEST_F(DlgOpen, ThreeColumnsSideBySideInsideTheDialog) {
    dlgOpen dialog(env, dialogs);
    const QRect client = dialog.rect();
    QWidget* controls[] = {dialog.Drive1,   dialog.Dir1,         dialog.File1,  dialog.cmdImport,
                           dialog.tv,       dialog.calStart,     dialog.CalEnd, dialog.Text1,
                           dialog.OKButton, dialog.CancelButton, dialog.pb1};
    for (QWidget* control : controls)
        EXPECT_TRUE(client.contains(control->geometry())) << control->metaObject()->className();
    // Import browser, tree, calendars from left to right without overlapping.
    EXPECT_LE(dialog.Dir1->geometry().right(), dialog.tv->geometry().left());
    EXPECT_LE(dialog.tv->geometry().right(), dialog.calStart->geometry().left());
    EXPECT_LE(dialog.calStart->geometry().bottom(), dialog.CalEnd->geometry().top());
    EXPECT_LE(dialog.File1->geometry().bottom(), dialog.cmdImport->geometry().top());
    EXPECT_LE(dialog.tv->geometry().bottom(), dialog.Text1->geometry().top());
    EXPECT_LT(dialog.OKButton->geometry().right(), dialog.CancelButton->geometry().left());
    // Texts fit their controls.
    for (QPushButton* button : {dialog.cmdImport, dialog.OKButton, dialog.CancelButton})
        EXPECT_LE(button->fontMetrics().horizontalAdvance(button->text()), button->width())
            << button->text().toStdString();
    // The calendars get at least the room they ask for.
    EXPECT_GE(dialog.calStart->width(), dialog.calStart->minimumSizeHint().width());
    EXPECT_GE(dialog.calStart->height(), dialog.calStart->minimumSizeHint().height());
}

TEST_F(DlgOpen, TreeShowsSitesAndDaysOfTheHomeFolder) {
    for (const char* name : {"AB01031612.CSV", "AB01031512.CSV", "CD02010113.CSV", "CD02123112.csv",
                             "AB01USEREVENTS.TXT", "GH04031512.HST"})
        homeFile(name);
    dlgOpen dialog(env, dialogs);
    QTreeWidgetItem* root = dialog.tv->topLevelItem(0);
    EXPECT_TRUE(root->isExpanded());
    EXPECT_EQ(childTexts(root), (QStringList{"AB01", "CD02"}));
    QTreeWidgetItem* site = root->child(1);
    EXPECT_TRUE(site->font(0).bold());
    EXPECT_EQ(site->data(0, dlgOpen::KeyRole).toString(), "mCD02");
    EXPECT_EQ(childTexts(site), (QStringList{"123112", "010113"}));
    EXPECT_FALSE(site->child(0)->font(0).bold());
    EXPECT_EQ(site->child(0)->data(0, dlgOpen::KeyRole).toString(), "mdCD02123112");
    EXPECT_EQ(dialog.nodeByKey("mdAB01031512"), root->child(0)->child(0));
    EXPECT_TRUE(QFile::exists(home() + "/GH04031512.txt"));
}

TEST_F(DlgOpen, ClickOnADayChoosesItsSiteAndSetsTheStartDate) {
    homeFile("AB01031512.CSV");
    homeFile("AB01031612.CSV");
    dlgOpen dialog(env, dialogs);
    QTreeWidgetItem* site = dialog.nodeByKey("mAB01");
    dialog.tv_NodeClick(dialog.nodeByKey("mdAB01031512"));
    EXPECT_EQ(dialog.SelectedSite, site);
    EXPECT_EQ(dialog.tv->currentItem(), site);
    EXPECT_EQ(site->data(0, dlgOpen::TagRole).toString(), dialog.HomeFolderPath);
    EXPECT_EQ(dialog.calStart->selectedDate(), QDate(2012, 3, 15));
    EXPECT_EQ(dialog.CalEnd->selectedDate(), QDate(2024, 3, 20));
    EXPECT_EQ(dialog.lblStartDate->text(), "3/15/2012");

    // Then the end calendar changes and OK is pressed: the range runs from the clicked day.
    dialog.CalEnd->setSelectedDate(QDate(2012, 3, 16));
    dialog.OKButton->click();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.SelectedSite, site);
    EXPECT_EQ(dialog.startDate(), *datetime::fromDate(2012, 3, 15));
    EXPECT_EQ(dialog.endDate(), *datetime::fromDate(2012, 3, 16));
    EXPECT_EQ(childTexts(dialog.SelectedSite), (QStringList{"031512", "031612"}));
}

TEST_F(DlgOpen, ClickOnASiteLeavesTheCalendars) {
    homeFile("AB01031512.CSV");
    homeFile("dX01031512.CSV"); // a code beginning with "d": its key begins with "md"
    dlgOpen dialog(env, dialogs);
    for (const char* key : {"mAB01", "mdX01"}) {
        QTreeWidgetItem* site = dialog.nodeByKey(key);
        dialog.tv_NodeClick(site);
        EXPECT_EQ(dialog.SelectedSite, site) << key;
        EXPECT_EQ(site->data(0, dlgOpen::TagRole).toString(), dialog.HomeFolderPath);
    }
    EXPECT_EQ(dialog.calStart->selectedDate(), QDate(2024, 3, 13));
}

TEST_F(DlgOpen, ClickOnTheRootChangesNothing) {
    homeFile("AB01031512.CSV");
    dlgOpen dialog(env, dialogs);
    dialog.tv_NodeClick(dialog.tv->topLevelItem(0));
    EXPECT_EQ(dialog.SelectedSite, nullptr);
    dialog.tv_NodeClick(dialog.nodeByKey("mAB01"));
    dialog.tv_NodeClick(dialog.tv->topLevelItem(0));
    EXPECT_EQ(dialog.SelectedSite, dialog.nodeByKey("mAB01"));
    EXPECT_EQ(dialog.calStart->selectedDate(), QDate(2024, 3, 13));
}

TEST_F(DlgOpen, DayThatIsNoDateStillChoosesItsSite) {
    homeFile("EF03.CSV");
    dlgOpen dialog(env, dialogs);
    dialog.tv_NodeClick(dialog.nodeByKey("mdEF03.CSV"));
    EXPECT_EQ(dialog.SelectedSite, dialog.nodeByKey("mEF03"));
    EXPECT_EQ(dialog.calStart->selectedDate(), QDate(2024, 3, 13));
}

TEST_F(DlgOpen, CancelLeavesNoSiteChosen) {
    homeFile("AB01031512.CSV");
    dlgOpen dialog(env, dialogs);
    dialog.tv_NodeClick(dialog.nodeByKey("mAB01"));
    dialog.CancelButton->click();
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_EQ(dialog.SelectedSite, nullptr);
}

TEST_F(DlgOpen, ImportAnsweredYesAsksFirstAndRebuildsTheTree) {
    homeFile("AB01031512.CSV");
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
        for (QWidget* w : QApplication::topLevelWidgets()) {
            if (qobject_cast<QProgressDialog*>(w) && w->isVisible()) {
                ++copyWindowSeen;
                disabledDuringCopy = disabledDuringCopy && !dialog.isEnabled();
            }
        }
    });
    watch.start(0);
    dialog.cmdImport->click();
    watch.stop();
    EXPECT_GT(copyWindowSeen, 0);

    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, "Delete the original log files after they are copied?");
    EXPECT_EQ(dialogs.messages[0].buttons, QMessageBox::Yes | QMessageBox::No);
    EXPECT_TRUE(disabledDuringCopy);
    EXPECT_TRUE(dialog.isEnabled());
    EXPECT_TRUE(dialog.pb1->isHidden());
    EXPECT_EQ(dialog.pb1->maximum(), 3);
    EXPECT_EQ(dialog.SelectedSite, nullptr); // the tree was rebuilt
    EXPECT_EQ(childTexts(dialog.tv->topLevelItem(0)), (QStringList{"AB01", "CD02"}));
    EXPECT_TRUE(QFile::exists(scratch.file("app/cnffiles/CD02SCAL.TXT")));
    EXPECT_EQ(QDir(scratch.file("media")).entryList(QDir::Files), QStringList{"readme.txt"});
    EXPECT_EQ(dialog.File1->count(), 1);
}

TEST_F(DlgOpen, ImportOfAnEmptyFolderStillAsks) {
    dlgOpen dialog(env, dialogs);
    ASSERT_TRUE(dialog.setDir1Path(scratch.mkdir("empty")));
    dialog.cmdImport_Click();
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, "Delete the original log files after they are copied?");
    EXPECT_EQ(dialog.tv->topLevelItem(0)->childCount(), 0);
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
    const auto left = [this](const char* folder) {
        QStringList names =
            QDir(scratch.file(QString("app/") + folder)).entryList(QDir::Files | QDir::Hidden);
        names.sort();
        return names;
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

    // An import clears them before it copies.
    stale("cnffiles/AB12OFFS.TXT.a1b2c3");
    ASSERT_TRUE(dialog.setDir1Path(scratch.mkdir("empty")));
    dialog.cmdImport_Click();
    EXPECT_EQ(left("cnffiles"), QStringList{"AB12scal.txt.bak"});
}

TEST_F(DlgOpen, ShowHomeFolderOpensItAndThenSaysItCouldNot) {
    // A per-user data folder of the test's own, empty at first.
    QStandardPaths::setTestModeEnabled(true);
    const QString redirected = homefolder::redirectedHomeFolder();
    QDir(redirected).removeRecursively();
    dlgOpen dialog(env, dialogs);
    dialog.cmdShowHomeFolder->click();
    QDir().mkpath(redirected);
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

TEST_F(DlgOpen, UnreadableDriveRollsBackSilently) {
    dlgOpen dialog(env, dialogs);
    const int before = dialog.Drive1->currentIndex();
    const QString folder = dialog.dir1Path();
    dialog.Drive1->addItem("gone", scratch.file("no-such-drive"));
    dialog.Drive1->setCurrentIndex(dialog.Drive1->count() - 1);
    EXPECT_EQ(dialog.Drive1->currentIndex(), before);
    EXPECT_EQ(dialog.dir1Path(), folder);
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(DlgOpen, FolderListShowsTheFilesOfTheChosenFolder) {
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
    // The drive list shows the volume that holds the folder.
    EXPECT_TRUE(dialog.dir1Path().startsWith(dialog.Drive1->currentData().toString()));
}

// ---- The copy window ----

TEST_F(DlgOpen, CopyWindowIsTitledWithBothPaths) {
    const QString source = scratch.write("big.CSV", QByteArray(2 * 1024 * 1024, 'x'));
    const QString destination = scratch.file("out/big.CSV");
    QString seen;
    QTimer::singleShot(0, [&] {
        for (QWidget* w : QApplication::topLevelWidgets()) {
            if (qobject_cast<QProgressDialog*>(w) && w->isVisible())
                seen = w->windowTitle();
        }
    });
    EXPECT_EQ(CopyWithShell(source, destination, nullptr, dialogs), 0);
    EXPECT_EQ(seen, "Copying " + source + " to " + destination);
    EXPECT_TRUE(dialogs.messages.empty());
    EXPECT_EQ(QFileInfo(destination).size(), 2 * 1024 * 1024);
}

TEST_F(DlgOpen, CopyFailureShowsTheBareErrorNumber) {
    EXPECT_EQ(CopyWithShell(scratch.file("missing"), scratch.file("out"), nullptr, dialogs),
              ENOENT);
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, QString::number(ENOENT));
    EXPECT_EQ(dialogs.messages[0].buttons, QMessageBox::Ok);
}
