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
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>
#include <QStandardPaths>
#include <QTimer>
#include <QTreeWidget>
#include <gtest/gtest.h>
#include <tuple>

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

// An application folder with a clock at 20 March 2024 noon and scripted dialogs.
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

// A click on a day chooses its site and starts the range at that day; other clicks choose a site,
// or keep the one chosen, and leave the calendars at the last seven days.
TEST_F(DlgOpen, ShowsTheSitesAndDaysAndClicksChooseTheSiteAndADayItsStart) {
    homeFiles({"AB01031612.CSV", "AB01031512.CSV", "dX01031512.CSV", "EF03.CSV"});
    // Name, the keys of the nodes clicked ("Sites" is the root), the site chosen, the start date.
    const std::tuple<const char*, QStringList, const char*, const char*> rows[] = {
        {"a day", {"mdAB01031512"}, "mAB01", "3/15/2012"},
        {"the root", {"Sites"}, nullptr, "3/13/2024"},
        {"a site whose code begins with d", {"mdX01"}, "mdX01", "3/13/2024"},
        {"the root after a site", {"mAB01", "Sites"}, "mAB01", "3/13/2024"},
        {"a day that is no date", {"mdEF03.CSV"}, "mEF03", "3/13/2024"},
    };
    for (const auto& [name, clicks, chosen, start] : rows) {
        SCOPED_TRACE(name);
        dlgOpen dialog(env, dialogs);
        EXPECT_TRUE(QDir(scratch.file("app/cnffiles")).exists());
        EXPECT_EQ(childTexts(dialog.tv->topLevelItem(0)), (QStringList{"AB01", "dX01", "EF03"}));
        EXPECT_EQ(childTexts(dialog.nodeByKey("mAB01")), (QStringList{"031512", "031612"}));
        for (const QString& key : clicks)
            dialog.tv_NodeClick(dialog.nodeByKey(key));
        QTreeWidgetItem* site = chosen ? dialog.nodeByKey(chosen) : nullptr;
        EXPECT_EQ(dialog.SelectedSite, site);
        if (site) {
            EXPECT_EQ(site->data(0, dlgOpen::TagRole).toString(), dialog.HomeFolderPath);
        }
        EXPECT_EQ(dialog.lblStartDate->text(), start);
        EXPECT_EQ(dialog.endDate(), *datetime::fromDate(2024, 3, 20));
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
    // The data log's copy window names both paths; the dialog is disabled whenever it is up.
    QString copyWindow;
    int enabledDuringCopy = 0;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (const QString title = visibleCopyWindow(); !title.isEmpty())
            copyWindow = title, enabledDuringCopy += dialog.isEnabled();
    });
    watch.start(0);
    dialog.cmdImport->click();
    watch.stop();
    EXPECT_EQ(copyWindow, "Copying " + scratch.file("media/CD020101.CSV") + " to " +
                              dialog.HomeFolderPath + "/CD02010113.CSV");
    EXPECT_EQ(enabledDuringCopy, 0);

    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, "Delete the original log files after they are copied?");
    EXPECT_TRUE(dialog.isEnabled());
    EXPECT_TRUE(dialog.pb1->isHidden());
    EXPECT_EQ(dialog.SelectedSite, nullptr); // the tree was rebuilt
    EXPECT_EQ(childTexts(dialog.tv->topLevelItem(0)), (QStringList{"AB01", "CD02"}));
    EXPECT_EQ(dialog.File1->count(), 1); // the sources are gone from the list
}

TEST_F(DlgOpen, FolderBrowserRefusesWhatItCannotReadAndAStoppedImportSaysWhere) {
    scratch.write("media/BB010101.CSV", "");
    dlgOpen dialog(env, dialogs);
    EXPECT_FALSE(dialog.setDir1Path(scratch.file("missing")));
    ASSERT_TRUE(dialog.setDir1Path(scratch.file("media")));
    // An unreadable drive rolls back.
    const int drive = dialog.Drive1->currentIndex();
    dialog.Drive1->addItem("gone", scratch.file("no-such-drive"));
    dialog.Drive1->setCurrentIndex(dialog.Drive1->count() - 1);
    EXPECT_EQ(dialog.Drive1->currentIndex(), drive);
    EXPECT_EQ(dialog.dir1Path(), scratch.file("media"));
    dialogs.messageAnswers.push_back(QMessageBox::Yes);
    dialog.cmdImport_Click();
    ASSERT_EQ(dialogs.messages.size(), 2u);
    EXPECT_TRUE(dialogs.messages[1].text.contains(scratch.file("media/BB010101.CSV")));
    EXPECT_TRUE(dialog.isEnabled());
}

TEST_F(DlgOpen, StaleTemporariesOfKilledCopiesAndWritesAreRemoved) {
    const auto stale = [this](const QString& name) {
        QFile file(scratch.write("app/" + name, "x"));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-3600),
                                     QFileDevice::FileModificationTime));
    };
    for (const char* name : {"logfiles/.trendax-copy-Ab12Cd", "logfiles/Schema.ini.QwErTy",
                             "cnffiles/AB12scal.txt.x1Y2z3", "logfiles/AB01031512.CSV",
                             "logfiles/notes.txt.abcdef", "cnffiles/AB12scal.txt.bak"})
        stale(name);
    scratch.write("app/logfiles/.trendax-copy-fresh1", "x"); // a copy that may still be running

    const auto left = [this](const QString& folder) {
        return QDir(scratch.file("app/" + folder))
            .entryList(QDir::Files | QDir::Hidden, QDir::Name);
    };
    dlgOpen dialog(env, dialogs);
    EXPECT_EQ(left("logfiles"),
              (QStringList{".trendax-copy-fresh1", "AB01031512.CSV", "notes.txt.abcdef"}));
    EXPECT_EQ(left("cnffiles"), QStringList{"AB12scal.txt.bak"});

    // An import clears them before it copies; one from an empty folder still asks first.
    stale("cnffiles/AB12OFFS.TXT.a1b2c3");
    ASSERT_TRUE(dialog.setDir1Path(scratch.mkdir("empty")));
    dialog.cmdImport_Click();
    EXPECT_EQ(left("cnffiles"), QStringList{"AB12scal.txt.bak"});
    EXPECT_EQ(dialogs.messages.size(), 1u);
}

TEST_F(DlgOpen, ShowHomeFolderOpensItAndThenSaysItCouldNot) {
    QStandardPaths::setTestModeEnabled(true); // a per-user data folder of the test's own
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
    EXPECT_EQ(dialogs.messages[1].text, "Unable to determine Trendax's working folder.");
}

TEST_F(DlgOpen, AFailedShellCopySaysTheBareErrorNumberAndKeepsTheDestination) {
    const QString destination = scratch.write("out/big.CSV", "kept");
    EXPECT_EQ(CopyWithShell(scratch.file("missing"), destination, nullptr, dialogs), ENOENT);
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, QString::number(ENOENT));
    EXPECT_EQ(scratch.read("out/big.CSV"), "kept");
}
