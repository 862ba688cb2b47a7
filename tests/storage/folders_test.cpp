#include "storage/environment.h"
#include "storage/homefolder.h"
#include "support/scratchfolder.h"
#include "support/scriptedenvironment.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <unistd.h>

namespace trendax {
namespace {

TEST(AppFolderChoice, PerUserFolderStandsInForAReadOnlyExecutableFolder) {
    const struct {
        const char* name;
        bool exeFolderWritable;
        const char* xdgDataHome;
        const char* expected;
    } rows[] = {
        {"writable", true, "/data/eng", "/opt/trendax"},
        {"read-only, XDG_DATA_HOME set", false, "/data/eng", "/data/eng/Trendax2"},
        {"read-only, XDG_DATA_HOME unset", false, "", "/home/eng/.local/share/Trendax2"},
        {"read-only, XDG_DATA_HOME relative", false, "data", "/home/eng/.local/share/Trendax2"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(
            appfolder::choose("/opt/trendax", row.exeFolderWritable, row.xdgDataHome, "/home/eng"),
            QString::fromUtf8(row.expected));
    }
}

// Read-only by a mount for root, whom permission bits do not stop; by its mode otherwise.
struct ReadOnlyFolder {
    QString path;
    bool mounted = false;
    explicit ReadOnlyFolder(const QString& folder) : path(folder) {
        QDir().mkpath(path);
        if (geteuid() == 0)
            mounted = mount("tmpfs", QFile::encodeName(path).constData(), "tmpfs", MS_RDONLY,
                            "size=64k") == 0;
        else
            QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner);
    }
    ~ReadOnlyFolder() {
        if (mounted)
            umount2(QFile::encodeName(path).constData(), MNT_DETACH);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
};

TEST(AppFolderLocate, OnlyAReadOnlyExecutableFolderMovesTheFoldersToTheUsersDataFolder) {
    test::ScratchFolder scratch;
    const QString build = scratch.mkdir("build/release"); // kept, and nothing is created
    EXPECT_EQ(appfolder::locate(build, scratch.file("xdg"), scratch.file("home")), build);
    EXPECT_FALSE(QFileInfo::exists(scratch.file("xdg")));

    const QString exeFolder = scratch.file("usr/bin");
    ReadOnlyFolder readOnly(exeFolder);
    if (geteuid() == 0 && !readOnly.mounted)
        GTEST_SKIP() << "a read-only mount needs CAP_SYS_ADMIN";
    ASSERT_FALSE(appfolder::isWritable(exeFolder));
    const QString folder = appfolder::locate(exeFolder, scratch.file("xdg"), scratch.file("home"));
    EXPECT_EQ(folder, scratch.file("xdg/Trendax2"));
    EXPECT_TRUE(QFileInfo(folder + "/logfiles").isDir());
    EXPECT_TRUE(QFileInfo(folder + "/cnffiles").isDir());
}

TEST(HomeFolder, SchemaIniWithoutAHomeFolderFailsSilentlyAndUserNamesKeep127Characters) {
    test::ScratchFolder app;
    WriteSchemaIni(app.path(), "AB12031512.CSV");
    EXPECT_EQ(QDir(app.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{});
    test::ScriptedEnvironment env(app.path());
    env.setUserName(QString(200, 'v'));
    EXPECT_EQ(CurrentUserName(env), QString(127, 'v'));
}

} // namespace
} // namespace trendax
