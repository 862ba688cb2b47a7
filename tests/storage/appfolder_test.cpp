#include "storage/environment.h"
#include "support/scratchfolder.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#include <sys/mount.h>
#include <unistd.h>

namespace trendax {
namespace {

struct ChoiceRow {
    const char* name;
    bool exeFolderWritable;
    const char* xdgDataHome;
    const char* expected;
};

TEST(AppFolderChoice, PerUserFolderStandsInForAReadOnlyExecutableFolder) {
    const ChoiceRow rows[] = {
        {"writable executable folder", true, "/data/eng", "/opt/trendax"},
        {"read-only, XDG_DATA_HOME set", false, "/data/eng", "/data/eng/Trendax2"},
        {"read-only, XDG_DATA_HOME unset", false, "", "/home/eng/.local/share/Trendax2"},
        {"read-only, XDG_DATA_HOME relative", false, "data", "/home/eng/.local/share/Trendax2"},
    };
    for (const ChoiceRow& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(
            appfolder::choose("/opt/trendax", row.exeFolderWritable, row.xdgDataHome, "/home/eng"),
            QString::fromUtf8(row.expected));
    }
}

// A folder no one may write: a read-only mount when running as root, whom permission bits do
// not stop; the folder's mode otherwise.
class ReadOnlyFolder {
public:
    explicit ReadOnlyFolder(const QString& path) : path_(path) {
        QDir().mkpath(path);
        if (geteuid() == 0)
            mounted_ = mount("tmpfs", QFile::encodeName(path).constData(), "tmpfs", MS_RDONLY,
                             "size=64k") == 0;
        else
            QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner);
    }
    ~ReadOnlyFolder() {
        if (mounted_)
            umount2(QFile::encodeName(path_).constData(), MNT_DETACH);
        QFile::setPermissions(path_, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    bool ready() const { return geteuid() != 0 || mounted_; }

private:
    QString path_;
    bool mounted_ = false;
};

TEST(AppFolderLocate, AReadOnlyExecutableFolderMovesTheFoldersToTheUsersDataFolder) {
    test::ScratchFolder scratch;
    const QString exeFolder = scratch.file("usr/bin");
    ReadOnlyFolder readOnly(exeFolder);
    if (!readOnly.ready())
        GTEST_SKIP() << "a read-only mount needs CAP_SYS_ADMIN";
    ASSERT_FALSE(appfolder::isWritable(exeFolder));

    const QString xdg = appfolder::locate(exeFolder, scratch.file("xdg"), scratch.file("home"));
    EXPECT_EQ(xdg, scratch.file("xdg/Trendax2"));
    const QString home = appfolder::locate(exeFolder, "", scratch.file("home"));
    EXPECT_EQ(home, scratch.file("home/.local/share/Trendax2"));
    for (const QString& folder : {xdg, home}) {
        SCOPED_TRACE(folder.toStdString());
        EXPECT_TRUE(QFileInfo(folder + "/logfiles").isDir());
        EXPECT_TRUE(QFileInfo(folder + "/cnffiles").isDir());
    }
}

TEST(AppFolderLocate, AWritableExecutableFolderIsKeptAndNothingIsCreatedElsewhere) {
    test::ScratchFolder scratch;
    const QString exeFolder = scratch.mkdir("build/release");
    EXPECT_EQ(appfolder::locate(exeFolder, scratch.file("xdg"), scratch.file("home")), exeFolder);
    EXPECT_FALSE(QFileInfo::exists(scratch.file("xdg")));
    EXPECT_EQ(QDir(exeFolder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{});
}

} // namespace
} // namespace trendax
