// A hostile machine: odd names, links out of the program's folders, read-only or full folders,
// data logs that change before the load. The program keeps going, says which file failed and
// why, writes nothing outside its folders and loses nothing stored.
#include "history/usercomments.h"
#include "loading/datalog.h"
#include "opendlg/importer.h"
#include "opendlg/sitetree.h"
#include "storage/homefolder.h"
#include "support/fulldisk.h"
#include "support/readonlyfolder.h"
#include "support/scratchfolder.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <functional>
#include <unistd.h>

using namespace trendax;
using trendax::test::ReadOnlyFolder;
using trendax::test::ScratchFolder;

namespace {

QStringList filesIn(const QString& folder) {
    QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
    names.sort();
    return names;
}

void link(const QString& target, const QString& name) {
    ASSERT_EQ(::symlink(QFile::encodeName(target).constData(), QFile::encodeName(name).constData()),
              0)
        << std::strerror(errno);
}

// A data log of rows of 28 bytes each.
QByteArray dataLog(const char* site, int rows) {
    QByteArray bytes;
    for (int i = 0; i < rows; ++i)
        bytes += QByteArray(site) + ",03/15/12,10:" + QByteArray::number(10 + i) + ":00,1.5\r\n";
    return bytes;
}

} // namespace

// ---- Names and links ----

TEST(HostileNames, TheTreeListsEveryDataLogAndCopiesHistoriesOnlyInsideTheHomeFolder) {
    ScratchFolder scratch;
    const QString home = scratch.mkdir("logfiles"), outside = scratch.mkdir("outside");
    for (const QString& name :
         {QString("AB 1031512.CSV"), QString("A\"B'031512.CSV"), QString("$(x)031512.CSV"),
          QString("N\nL1031512.CSV"), "LONG031512" + QString(241, 'x') + ".CSV"}) // 255 bytes
        scratch.write("logfiles/" + name, dataLog("AB01", 1));
    // A history whose working copy's name is a link out of the folder, and one read through a
    // link: the copy must replace the link, never write through it. A dead link is no file.
    scratch.write("outside/precious.txt", "keep\r\n");
    scratch.write("logfiles/ZZ01031512.HST", "events\r\n");
    link(outside + "/precious.txt", home + "/ZZ01031512.txt");
    scratch.write("outside/EV01031512.HST", "outside events\r\n");
    link(outside + "/EV01031512.HST", home + "/EV01031512.HST");
    link(outside + "/nothing.CSV", home + "/DEAD031512.CSV");
    const QStringList outsideBefore = filesIn(outside);

    const sitetree::Tree tree = sitetree::build(home);

    EXPECT_FALSE(tree.failure) << tree.failure.value_or(QString()).toStdString();
    QStringList codes;
    for (const sitetree::Site& site : tree.sites)
        codes << site.code + "/" + (site.days.empty() ? QString() : site.days.front().text);
    EXPECT_EQ(codes, (QStringList{"$(x)/031512", "A\"B'/031512", "AB 1/031512", "LONG/031512",
                                  "N\nL1/031512"}));
    EXPECT_EQ(scratch.read("outside/precious.txt"), "keep\r\n");
    EXPECT_EQ(filesIn(outside), outsideBefore);
    EXPECT_EQ(scratch.read("logfiles/ZZ01031512.txt"), "events\r\n");
    EXPECT_EQ(scratch.read("logfiles/EV01031512.txt"), "outside events\r\n");
}

TEST(HostileNames, ACommentsFileLinkedOutOfTheHomeFolderIsNotWrittenThrough) {
    ScratchFolder scratch;
    const QString home = scratch.mkdir("logfiles");
    scratch.write("outside/notes.txt", "keep\r\n");
    link(scratch.file("outside/notes.txt"), home + "/AB01USEREVENTS.TXT");

    const auto result =
        history::AppendUserComment(40969.5, "pump restarted", home + "/AB01USEREVENTS.TXT");

    EXPECT_EQ(scratch.read("outside/notes.txt"), "keep\r\n");
    EXPECT_FALSE(result.stored() || result.error.isEmpty());
}

// ---- Read-only and full folders ----

TEST(ReadOnlyFolders, AReadOnlyHomeFolderLosesNothingAndEachFailureSaysWhy) {
    ScratchFolder app;
    const QString home = homefolder::homeFolder(app.path());
    ReadOnlyFolder readOnlyHome(home);
    app.write("logfiles/AA01031512.HST", "events\r\n");
    app.write("logfiles/AB01031512.CSV", dataLog("AB01", 3));
    app.write("logfiles/AB01USEREVENTS.TXT", "03/15/2012 10:00:00 first\r\n");
    if (!readOnlyHome.seal())
        GTEST_SKIP() << "the folders cannot be made read-only for this process";

    // The history copy fails before the first data log: the tree says which file and why.
    const sitetree::Tree tree = sitetree::build(home);
    ASSERT_TRUE(tree.failure);
    EXPECT_TRUE(tree.failure->startsWith("AA01031512.HST: ")) << tree.failure->toStdString();

    const auto comment =
        history::AppendUserComment(40969.5, "second", home + "/AB01USEREVENTS.TXT");
    EXPECT_FALSE(comment.stored() || comment.error.isEmpty());
    EXPECT_EQ(history::readCommentRows(home + "/AB01USEREVENTS.TXT"),
              QStringList{"03/15/2012 10:00:00\tfirst"});

    // Loading still works: Schema.ini cannot be written, which the reader passes over.
    LoadState state;
    EXPECT_EQ(readDataLog(home + "/AB01031512.CSV", app.path(), state).rowCount, 3);
    EXPECT_EQ(filesIn(home),
              (QStringList{"AA01031512.HST", "AB01031512.CSV", "AB01USEREVENTS.TXT"}));
}

TEST(FullDisk, AnImportOntoAFullHomeFolderKeepsTheOldCopyAndNamesTheFile) {
    ScratchFolder scratch;
    const QString home = scratch.file("app/logfiles");
    test::FullDisk disk(home);
    scratch.write("app/logfiles/AB01031512.CSV", dataLog("AB01", 2));
    scratch.write("media/AB010315.CSV", dataLog("AB01", 500));
    disk.fill();
    SCOPED_TRACE(disk.how());

    // Answered Yes: a data log's source goes after its copy whatever the copy reported, the
    // import's kept behaviour.
    const import::Outcome outcome =
        import::run({scratch.file("media"), home, scratch.file("app/cnffiles"), {}}, true, {});

    EXPECT_FALSE(outcome.stopped);
    EXPECT_EQ(outcome.failedCopies, QStringList{scratch.file("media/AB010315.CSV")});
    EXPECT_EQ(filesIn(scratch.file("media")), QStringList());
    EXPECT_EQ(scratch.read("app/logfiles/AB01031512.CSV"), dataLog("AB01", 2));
    for (const QString& name : filesIn(home))
        EXPECT_FALSE(homefolder::isOwnTemporary(name)) << name.toStdString();
}

// ---- Files that change under the program ----

TEST(DataLogChangedBeforeTheLoad, LoadsWhatIsThereOrNamesTheFileAndWhy) {
    const struct {
        const char* name;
        std::function<bool(const QString& path)> change; // false when it could not be done
        bool afterOpening;
        int rows; // that may still load, -1 when the load ends with a message naming the file
    } cases[] = {
        {"deleted", [](const QString& p) { return QFile::remove(p); }, false, -1},
        {"replaced by a folder",
         [](const QString& p) { return QFile::remove(p) && QDir().mkpath(p); }, false, -1},
        {"truncated in a row after opening",
         [](const QString& p) { return QFile::resize(p, 20 * 28 + 9); }, true, 21},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ScratchFolder app;
        const QString path = app.write("logfiles/AB01031512.CSV", dataLog("AB01", 40));
        LoadState state;
        DataLogOptions options;
        if (c.afterOpening)
            options.opened = [&] { ASSERT_TRUE(c.change(path)); };
        else
            ASSERT_TRUE(c.change(path));
        try {
            const DataLogResult result = readDataLog(path, app.path(), state, options);
            EXPECT_LE(result.rowCount - result.badRowCount, c.rows);
            EXPECT_GE(result.rowCount - result.badRowCount, c.rows - 1); // a cut row may read
        } catch (const LoadFailure& failure) {
            const QString text = QString::fromStdString(failure.what());
            EXPECT_LT(c.rows, 0) << failure.what();
            EXPECT_TRUE(text.startsWith(path + ": ") && text.size() > path.size() + 2)
                << "the message names the file and why: " << failure.what();
        }
    }
}

TEST(ImportSourceVanishes, MidImportTheImportStopsNamingTheFileAndKeepsWhatItCopied) {
    ScratchFolder scratch;
    const QString source = scratch.mkdir("media");
    for (const char* name : {"AB010315.CSV", "AB010316.CSV", "AB010317.CSV"})
        scratch.write(QString("media/") + name, dataLog("AB01", 3));
    import::Callbacks callbacks;
    callbacks.progress = [&](int index) {
        if (index == 1)
            QDir(source).removeRecursively();
    };

    const import::Outcome outcome = import::run(
        {source, scratch.file("app/logfiles"), scratch.file("app/cnffiles"), {}}, false, callbacks);

    ASSERT_TRUE(outcome.stopped);
    EXPECT_TRUE(outcome.stopped->contains("AB010316.CSV")) << outcome.stopped->toStdString();
    EXPECT_EQ(filesIn(scratch.file("app/logfiles")), QStringList{"AB01031512.CSV"});
    EXPECT_EQ(scratch.read("app/logfiles/AB01031512.CSV"), dataLog("AB01", 3));
}
