#include "opendlg/filecopy.h"
#include "opendlg/importer.h"
#include "support/scratchfolder.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

using namespace trendax;
using trendax::test::ScratchFolder;

namespace {

QString kindName(import::Kind kind) {
    switch (kind) {
    case import::Kind::DataLog:
        return "data log";
    case import::Kind::Calibration:
        return "calibration";
    case import::Kind::History:
        return "history";
    case import::Kind::Other:
        break;
    }
    return "other";
}

void setModified(const QString& path, int year) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(QDateTime(QDate(year, 6, 1), QTime(12, 0)),
                                 QFileDevice::FileModificationTime));
}

QStringList filesIn(const QString& folder) {
    QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden);
    names.sort();
    return names;
}

// A source folder as a controller delivers it, next to files import must leave alone.
struct Media {
    ScratchFolder scratch;
    QString source = scratch.mkdir("media");
    import::Folders folders{source, scratch.file("app/logfiles"), scratch.file("app/cnffiles")};

    Media() {
        scratch.write("media/AB010315.CSV", "AB01,03/15/12,00:00:00,1.5\r\n");
        scratch.write("media/cd020101.csv", "CD02,01/01/13,00:00:00,1.5\r\n");
        scratch.write("media/AB01SCAL.TXT", "1.5\r\n");
        scratch.write("media/ab01offs.txt", "0.25\r\n");
        setModified(scratch.write("media/AB010315.HST", "events\r\n"), 2013);
        scratch.write("media/AB01USEREVENTS.TXT", "comment\r\n");
        scratch.write("media/AB01031512.CSV", "AB01,03/15/12\r\n");
        scratch.write("media/AB01xx15.TXT", "x");
        scratch.write("media/notes.doc", "x");
        scratch.mkdir("media/AB010316.CSV");
    }
};

} // namespace

TEST(ImportNames, Classification) {
    struct Row {
        const char* name;
        const char* modifiedYear;
        const char* kind;
    };
    const Row rows[] = {
        {"AB010315.CSV", "13", "data log"},
        {"ab010315.csv", "13", "data log"},
        {"AB01 3 5.CsV", "13", "data log"},
        {"AB01031512.CSV", "13", "other"}, // already carries a year
        {"AB0103.CSV", "13", "other"},
        {".CSV", "13", "other"},
        {"", "13", "other"},
        {"AB01SCAL.TXT", "13", "calibration"},
        {"scal.txt", "13", "calibration"},
        {"XYZOFFS.txt", "13", "calibration"},
        {"AB01SCAL.HST", "13", "other"},
        {"AB010315.HST", "13", "history"},
        {"AB010315.hst", "13", "history"},
        {"AB01031512.TXT", "13", "history"},
        {"AB010315.HST", "", "other"},
        {"AB01USEREVENTS.TXT", "13", "other"}, // comments stay where they are
        {"AB01xx15.TXT", "13", "other"},
        {"AB01 3-1.TXT", "13", "history"}, // the pieces read as numbers
        {"AB01.TXT", "13", "other"},
        {"AB010315.DAT", "13", "other"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(
            kindName(import::classify(QString::fromUtf8(row.name), QString(row.modifiedYear))),
            row.kind)
            << row.name;
    EXPECT_EQ(import::classify(QString::fromUtf8("ÄÖÜß0315.CSV"), u"13"), import::Kind::DataLog);
    EXPECT_EQ(import::classify(QString::fromUtf8("ÄÖÜß0315.hst"), u"13"), import::Kind::History);
}

TEST(ImportNames, ReadsAsNumber) {
    for (const char* yes : {"03", "3", " 3", "3 ", "-1", "+1", ".5", "5.", "12"})
        EXPECT_TRUE(import::readsAsNumber(QString(yes))) << yes;
    for (const char* no : {"", " ", "ab", "1a", "..", "-", "1.2.", "+-1"})
        EXPECT_FALSE(import::readsAsNumber(QString(no))) << no;
}

TEST(DataLogYear, TheLastTwoOfTheFirstThirteenCharacters) {
    EXPECT_EQ(import::dataLogYearOf("AB01,03/15/12,00:00:00,1.5"), "12");
    EXPECT_EQ(import::dataLogYearOf("AB01,03/15/2012"), "20");
    EXPECT_EQ(import::dataLogYearOf("AB,1/1/12\r\n"), "\r\n");
    EXPECT_EQ(import::dataLogYearOf("A"), "A");
    EXPECT_EQ(import::dataLogYearOf("AB01,03/15/1\x80"), QString::fromUtf8("1€"));
    EXPECT_FALSE(import::dataLogYearOf(""));
}

TEST(DataLogYear, OfFiles) {
    ScratchFolder scratch;
    EXPECT_EQ(import::DataLogYear(scratch.write("a.csv", "AB01,03/15/12,1")), "12");
    EXPECT_FALSE(import::DataLogYear(scratch.write("empty.csv", "")));
    EXPECT_FALSE(import::DataLogYear(scratch.file("missing.csv")));
}

TEST(FileModifiedYear, TwoDigitsOfTheModifiedYear) {
    ScratchFolder scratch;
    const QString path = scratch.write("a.hst", "x");
    setModified(path, 2013);
    EXPECT_EQ(import::FileModifiedYear(path), "13");
    setModified(path, 2005);
    EXPECT_EQ(import::FileModifiedYear(path), "05");
    EXPECT_FALSE(import::FileModifiedYear(scratch.file("missing.hst")));
}

TEST(ImportNames, YearsThatFitAFileName) {
    EXPECT_TRUE(import::yearFitsFileName(u"12"));
    EXPECT_TRUE(import::yearFitsFileName(u"2,"));
    EXPECT_FALSE(import::yearFitsFileName(u"\r\n"));
    EXPECT_FALSE(import::yearFitsFileName(u"/1"));
    EXPECT_FALSE(import::yearFitsFileName(u"1\\"));
    EXPECT_FALSE(import::yearFitsFileName(u""));
}

// ---- Copies ----

TEST(FileCopy, ReplacesTheDestinationAndCreatesItsFolder) {
    ScratchFolder scratch;
    const QString source = scratch.write("a", QByteArray(700 * 1024, 'x'));
    qint64 last = -1;
    const auto result =
        filecopy::copy(source, scratch.file("new/folder/b"), [&](qint64 done, qint64 total) {
            EXPECT_EQ(total, 700 * 1024);
            EXPECT_GT(done, last);
            last = done;
        });
    EXPECT_TRUE(result.ok()) << result.reason.toStdString();
    EXPECT_EQ(last, 700 * 1024);
    EXPECT_EQ(scratch.read("new/folder/b"), QByteArray(700 * 1024, 'x'));

    scratch.write("c", "old and longer");
    EXPECT_TRUE(filecopy::copy(scratch.write("d", "new"), scratch.file("c")).ok());
    EXPECT_EQ(scratch.read("c"), "new");
}

TEST(FileCopy, FailuresCarryTheErrorNumberAndLeaveNoTemporaryFile) {
    ScratchFolder scratch;
    const auto missing = filecopy::copy(scratch.file("missing"), scratch.file("out"));
    EXPECT_EQ(missing.error, ENOENT);
    EXPECT_FALSE(missing.reason.isEmpty());

    scratch.mkdir("dest/taken"); // a folder where the file should go
    const auto onFolder = filecopy::copy(scratch.write("src", "x"), scratch.file("dest/taken"));
    EXPECT_NE(onFolder.error, 0);
    EXPECT_EQ(filesIn(scratch.file("dest")), QStringList());

    // A pipe is refused, not waited on.
    ASSERT_EQ(::mkfifo(QFile::encodeName(scratch.file("pipe")).constData(), 0644), 0);
    EXPECT_EQ(filecopy::copy(scratch.file("pipe"), scratch.file("out")).error, EINVAL);

    scratch.write("plain", "x"); // a file where a folder should be
    const auto underFile = filecopy::copy(scratch.file("src"), scratch.file("plain/out"));
    EXPECT_EQ(underFile.error, ENOTDIR);
}

TEST(FileCopy, CopiesGetTheUmaskModeNeverWiderThanTheSource) {
    struct Row {
        const char* name;
        mode_t source, umask, copy;
    };
    const Row rows[] = {{"private source", 0600, 022, 0600},
                        {"world-writable source", 0666, 027, 0640},
                        {"strict umask", 0644, 077, 0600},
                        {"executable source", 0755, 022, 0644}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ScratchFolder scratch;
        const QString source = scratch.write("src", "x");
        ASSERT_EQ(::chmod(QFile::encodeName(source).constData(), row.source), 0);
        const mode_t saved = ::umask(row.umask);
        const auto result = filecopy::copy(source, scratch.file("out"));
        ::umask(saved);
        ASSERT_TRUE(result.ok()) << result.reason.toStdString();
        struct stat st {};
        ASSERT_EQ(::stat(QFile::encodeName(scratch.file("out")).constData(), &st), 0);
        EXPECT_EQ(st.st_mode & 07777, row.copy);
    }
}

// ---- The walk ----

TEST(Import, AnsweredNoCopiesUnderNewNamesAndLeavesTheSource) {
    Media media;
    const QStringList before = filesIn(media.source);
    std::vector<int> progress;
    int maximum = -1;
    import::Callbacks callbacks;
    callbacks.begin = [&](int count) { maximum = count; };
    callbacks.progress = [&](int i) { progress.push_back(i); };
    const import::Outcome outcome = import::run(media.folders, false, callbacks);

    EXPECT_FALSE(outcome.stopped);
    EXPECT_EQ(maximum, 9);
    EXPECT_EQ(progress, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(filesIn(media.folders.home),
              (QStringList{"AB01031512.CSV", "AB01031513.TXT", "cd02010113.CSV"}));
    EXPECT_EQ(filesIn(media.folders.config), (QStringList{"AB01SCAL.TXT", "ab01offs.txt"}));
    EXPECT_EQ(media.scratch.read("app/logfiles/AB01031512.CSV"), "AB01,03/15/12,00:00:00,1.5\r\n");
    EXPECT_EQ(filesIn(media.source), before);
    EXPECT_TRUE(outcome.deleted.isEmpty());
}

TEST(Import, AnsweredYesLeavesOnlyWhatItPassedOver) {
    Media media;
    const import::Outcome outcome = import::run(media.folders, true, {});
    EXPECT_FALSE(outcome.stopped);
    EXPECT_EQ(filesIn(media.source),
              (QStringList{"AB01031512.CSV", "AB01USEREVENTS.TXT", "AB01xx15.TXT", "notes.doc"}));
    EXPECT_EQ(outcome.deleted.size(), 5);
    EXPECT_EQ(filesIn(media.folders.home).size(), 3);
}

TEST(Import, EmptySourceFolderDoesNothing) {
    ScratchFolder scratch;
    int maximum = -1;
    import::Callbacks callbacks;
    callbacks.begin = [&](int count) { maximum = count; };
    const auto outcome = import::run(
        {scratch.mkdir("empty"), scratch.file("home"), scratch.file("cnf")}, true, callbacks);
    EXPECT_EQ(maximum, 0);
    EXPECT_TRUE(outcome.copied.isEmpty());
    EXPECT_FALSE(outcome.stopped);

    // No folder at all is not the current folder.
    EXPECT_EQ(import::run({QString(), scratch.file("home"), scratch.file("cnf")}, true, {}).listed,
              0);
}

TEST(Import, ReplacesAFileWhoseNameDiffersOnlyInCase) {
    Media media;
    media.scratch.write("app/cnffiles/ab01scal.txt", "old");
    import::run(media.folders, false, {});
    EXPECT_EQ(filesIn(media.folders.config), (QStringList{"ab01offs.txt", "ab01scal.txt"}));
    EXPECT_EQ(media.scratch.read("app/cnffiles/ab01scal.txt"), "1.5\r\n");
}

TEST(Import, DataLogCopyIsBracketedAndItsSourceGoesEvenWhenTheCopyFailed) {
    ScratchFolder scratch;
    scratch.write("src/AB010315.CSV", "AB01,03/15/12,1\r\n");
    scratch.write("src/AB010316.CSV", "AB01,03/16/12,1\r\n");
    QStringList events;
    import::Callbacks callbacks;
    callbacks.dataLogCopying = [&](bool on) { events << (on ? "disable" : "enable"); };
    callbacks.copyDataLog = [&](const import::SourceFile& source, const QString& destination) {
        events << "copy " + source.name + " " + QFileInfo(destination).fileName();
        return source.name.endsWith("0315.CSV") ? EACCES : 0;
    };
    callbacks.remove = [&](const import::SourceFile& source) {
        events << "delete " + source.name;
        return QFile::remove(source.path) ? QString() : QString("cannot");
    };
    const auto outcome = import::run(
        {scratch.file("src"), scratch.file("home"), scratch.file("cnf")}, true, callbacks);
    EXPECT_EQ(events,
              (QStringList{"disable", "copy AB010315.CSV AB01031512.CSV", "delete AB010315.CSV",
                           "enable", "disable", "copy AB010316.CSV AB01031612.CSV",
                           "delete AB010316.CSV", "enable"}));
    EXPECT_EQ(outcome.failedCopies, QStringList{scratch.file("src/AB010315.CSV")});
    EXPECT_FALSE(outcome.stopped);
}

// ---- Bad input: the import stops at the file, nothing is lost ----

TEST(ImportStops, AtAnEmptyDataLog) {
    ScratchFolder scratch;
    scratch.write("src/AA010101.CSV", "AA01,01/01/12,1\r\n");
    scratch.write("src/BB010101.CSV", "");
    scratch.write("src/CC010101.CSV", "CC01,01/01/12,1\r\n");
    QStringList messages;
    import::Callbacks callbacks;
    callbacks.message = [&](const QString& text) { messages << text; };
    const auto outcome = import::run(
        {scratch.file("src"), scratch.file("home"), scratch.file("cnf")}, true, callbacks);
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages[0].contains(scratch.file("src/BB010101.CSV")));
    EXPECT_EQ(outcome.stopped, messages[0]);
    EXPECT_EQ(filesIn(scratch.file("src")), (QStringList{"BB010101.CSV", "CC010101.CSV"}));
    EXPECT_EQ(filesIn(scratch.file("home")), QStringList{"AA01010112.CSV"});
}

TEST(ImportStops, AtADataLogWhoseFirstLineIsShort) {
    // The year would be the line end, or a piece of a date with its slash.
    for (const char* text : {"BB,1/1/12\r\n", "B,1\r\nB,1/2/1\r\n"}) {
        ScratchFolder scratch;
        scratch.write("src/BB010101.CSV", text);
        const auto outcome =
            import::run({scratch.file("src"), scratch.file("home"), scratch.file("cnf")}, true, {});
        ASSERT_TRUE(outcome.stopped) << text;
        EXPECT_TRUE(outcome.stopped->contains("BB010101.CSV"));
        EXPECT_EQ(filesIn(scratch.file("src")), QStringList{"BB010101.CSV"});
        EXPECT_EQ(filesIn(scratch.file("home")), QStringList());
    }
}

TEST(ImportStops, WhenTheSourceCannotBeDeleted) {
    Media media;
    import::Callbacks callbacks;
    callbacks.remove = [](const import::SourceFile&) { return QString("read-only file system"); };
    const auto outcome = import::run(media.folders, true, callbacks);
    ASSERT_TRUE(outcome.stopped);
    EXPECT_TRUE(outcome.stopped->contains(media.scratch.file("media/AB010315.CSV")));
    EXPECT_TRUE(outcome.stopped->contains("read-only file system"));
    // The first file is in place and still in the source; the walk went no further.
    EXPECT_EQ(outcome.copied, QStringList{media.scratch.file("app/logfiles/AB01031512.CSV")});
    EXPECT_TRUE(QFile::exists(outcome.copied[0]));
    EXPECT_EQ(filesIn(media.source).size(), 9);
    EXPECT_FALSE(QFile::exists(media.folders.config));
}

TEST(ImportStops, WhenTheDestinationCannotBeWritten) {
    Media media;
    media.scratch.write("app/cnffiles", "a file where the folder should be");
    const auto outcome = import::run(media.folders, true, {});
    ASSERT_TRUE(outcome.stopped);
    // The first calibration file in name order; the two files before it are done and gone.
    EXPECT_TRUE(outcome.stopped->contains(media.scratch.file("media/ab01offs.txt")));
    EXPECT_EQ(filesIn(media.source).size(), 7);
    EXPECT_TRUE(QFile::exists(media.scratch.file("media/ab01offs.txt")));
}

TEST(ImportStops, AtAFileThatVanished) {
    Media media;
    import::Callbacks callbacks;
    callbacks.progress = [&](int i) {
        if (i == 0)
            QFile::remove(media.scratch.file("media/AB010315.HST"));
    };
    const auto outcome = import::run(media.folders, false, callbacks);
    ASSERT_TRUE(outcome.stopped);
    EXPECT_TRUE(outcome.stopped->contains("AB010315.HST"));
}

TEST(ImportStops, RatherThanDeleteAFileOntoItself) {
    ScratchFolder scratch;
    const QString home = scratch.mkdir("app/logfiles");
    setModified(scratch.write("app/logfiles/AB01031513.TXT", "events"), 2013);
    const auto outcome = import::run({home, home, scratch.file("app/cnffiles")}, true, {});
    ASSERT_TRUE(outcome.stopped);
    EXPECT_EQ(scratch.read("app/logfiles/AB01031513.TXT"), "events");
}

TEST(Import, NamesWithBlanksAndNonAsciiCharacters) {
    ScratchFolder scratch;
    scratch.write(QString::fromUtf8("src/Ä B 0315.CSV"), "XXXX,03/15/12,1\r\n");
    setModified(scratch.write(QString::fromUtf8("src/é  00315.hst"), "x"), 2011);
    const auto outcome =
        import::run({scratch.file("src"), scratch.file("home"), scratch.file("cnf")}, false, {});
    EXPECT_FALSE(outcome.stopped);
    EXPECT_EQ(filesIn(scratch.file("home")), (QStringList{QString::fromUtf8("Ä B 031512.CSV"),
                                                          QString::fromUtf8("é  0031511.TXT")}));
}

// A controller's media written on its own system: names in Windows-1252, not UTF-8. They are
// read as the program reads text, imported under that name and deleted by their bytes.
TEST(Import, NamesThatAreNotUtf8AreReadAsWindows1252) {
    ScratchFolder scratch;
    const QByteArray source = QFile::encodeName(scratch.mkdir("src"));
    const auto create = [&](const QByteArray& name, const QByteArray& text) {
        const QByteArray path = source + '/' + name;
        const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        ASSERT_GE(fd, 0) << name.constData();
        ASSERT_EQ(::write(fd, text.constData(), size_t(text.size())), text.size());
        ::close(fd);
    };
    const QByteArray site = QByteArray("AB") + char(0xE9) + 'D'; // "ABéD" in Windows-1252
    create(site + "0315.CSV", site + ",03/15/12,1\r\n");
    create(site + "scal.txt", "1.5\r\n");
    create(site + "0315.HST", "events\r\n");
    const QByteArray history = source + '/' + site + "0315.HST";
    const struct timeval times[2] = {{1370088000, 0}, {1370088000, 0}}; // June 2013
    ASSERT_EQ(::utimes(history.constData(), times), 0);

    QStringList listed;
    for (const import::SourceFile& file : import::listSource(scratch.file("src")))
        listed << file.name;
    EXPECT_EQ(listed,
              (QStringList{QString::fromUtf8("ABéD0315.CSV"), QString::fromUtf8("ABéD0315.HST"),
                           QString::fromUtf8("ABéDscal.txt")}));

    const auto outcome =
        import::run({scratch.file("src"), scratch.file("home"), scratch.file("cnf")}, true, {});
    EXPECT_FALSE(outcome.stopped) << outcome.stopped.value_or(QString()).toStdString();
    EXPECT_EQ(filesIn(scratch.file("home")), (QStringList{QString::fromUtf8("ABéD031512.CSV"),
                                                          QString::fromUtf8("ABéD031513.TXT")}));
    EXPECT_EQ(filesIn(scratch.file("cnf")), QStringList{QString::fromUtf8("ABéDscal.txt")});
    EXPECT_EQ(scratch.read(QString::fromUtf8("home/ABéD031512.CSV")), site + ",03/15/12,1\r\n");
    EXPECT_EQ(outcome.deleted.size(), 3);
    EXPECT_EQ(QDir(scratch.file("src")).entryList(QDir::Files | QDir::Hidden), QStringList());
}

TEST(Import, SymbolicLinksOutOfTheSourceAreNotFollowed) {
    ScratchFolder scratch;
    const QString secret = scratch.write("system/secret", "AB01,03/15/12,00:00:00,1\r\n");
    scratch.write("media/real.dat", "CD02,01/01/13,00:00:00,1\r\n");
    for (const auto& [link, target] : {std::pair<QString, QString>{"AB010315.CSV", secret},
                                       {"AB01SCAL.TXT", secret},
                                       {"CD020101.CSV", scratch.file("media/real.dat")},
                                       {"EF030101.CSV", scratch.file("media/gone")}})
        ASSERT_TRUE(QFile::link(target, scratch.file("media/" + link)));
    const auto outcome =
        import::run({scratch.file("media"), scratch.file("home"), scratch.file("cnf")}, true, {});
    EXPECT_FALSE(outcome.stopped);
    EXPECT_EQ(outcome.listed, 5);
    // The link inside the media is copied as the file it names; the others are left alone.
    EXPECT_EQ(filesIn(scratch.file("home")), QStringList{"CD02010113.CSV"});
    EXPECT_EQ(scratch.read("home/CD02010113.CSV"), scratch.read("media/real.dat"));
    EXPECT_EQ(filesIn(scratch.file("cnf")), QStringList());
    EXPECT_EQ(scratch.read("system/secret"), "AB01,03/15/12,00:00:00,1\r\n");
}
