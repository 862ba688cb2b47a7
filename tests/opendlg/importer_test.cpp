#include "opendlg/filecopy.h"
#include "opendlg/importer.h"
#include "support/scratchfolder.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/time.h>

using namespace trendax;
using trendax::test::ScratchFolder;

namespace {

void setModified(const QString& path, int year) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(QDateTime(QDate(year, 6, 1), QTime(12, 0)),
                                 QFileDevice::FileModificationTime));
}

// A source folder "src" beside the home folder "home" and the configuration folder "cnf".
struct Walk : ScratchFolder {
    trendax::import::Folders folders{file("src"), file("home"), file("cnf")};

    trendax::import::Outcome run(bool deleteSources,
                                 const trendax::import::Callbacks& callbacks = {}) const {
        return trendax::import::run(folders, deleteSources, callbacks);
    }
    QStringList left(const QString& folder) const {
        return QDir(file(folder)).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }
    // Media as a controller delivers them, next to files import must leave alone. Walked in this
    // order, letter case aside.
    void media() const {
        write("src/AB010315.CSV", "AB01,03/15/12,00:00:00,1.5\r\n");
        setModified(write("src/AB010315.HST", "events\r\n"), 2013);
        write("src/AB01031512.CSV", "AB01,03/15/12\r\n");
        write("src/ab01offs.txt", "0.25\r\n");
        write("src/AB01SCAL.TXT", "1.5\r\n");
        write("src/AB01USEREVENTS.TXT", "comment\r\n");
        write("src/AB01xx15.TXT", "x");
        write("src/cd020101.csv", "CD02,01/01/13,00:00:00,1.5\r\n");
        write("src/notes.doc", "x");
        mkdir("src/AB010316.CSV");
    }
};

} // namespace

TEST(ImportNames, Classification) {
    using K = import::Kind;
    const std::pair<K, std::vector<const char*>> kinds[] = {
        {K::DataLog, {"AB010315.CSV", "ab010315.csv", "AB01 3 5.CsV", "ÄÖÜß0315.CSV"}},
        {K::Calibration, {"AB01SCAL.TXT", "scal.txt", "XYZOFFS.txt"}},
        // ".TXT" too when month and day read as numbers.
        {K::History,
         {"AB010315.HST", "AB010315.hst", "ÄÖÜß0315.hst", "AB01031512.TXT", "AB01 3-1.TXT"}},
        // A data log that already carries a year, comments (they stay where they are), pieces
        // that are no numbers.
        {K::Other,
         {"AB01031512.CSV", "AB0103.CSV", ".CSV", "", "AB01SCAL.HST", "AB01USEREVENTS.TXT",
          "AB01xx15.TXT", "AB01.TXT", "AB010315.DAT"}},
    };
    for (const auto& [kind, names] : kinds) {
        for (const char* name : names)
            EXPECT_EQ(import::classify(QString::fromUtf8(name), u"13"), kind) << name;
    }
    // Without a modified year a history file is none.
    EXPECT_EQ(import::classify(u"AB010315.HST", u""), K::Other);
}

TEST(ImportNames, NumbersAndYearsInNames) {
    for (const char* yes : {"03", "3", " 3", "3 ", "-1", "+1", ".5", "5.", "12"})
        EXPECT_TRUE(import::readsAsNumber(QString(yes))) << yes;
    for (const char* no : {"", " ", "ab", "1a", "..", "-", "1.2.", "+-1"})
        EXPECT_FALSE(import::readsAsNumber(QString(no))) << no;
    for (const char* fits : {"12", "2,"})
        EXPECT_TRUE(import::yearFitsFileName(QString(fits))) << fits;
    for (const char* unfit : {"\r\n", "/1", "1\\", ""})
        EXPECT_FALSE(import::yearFitsFileName(QString(unfit))) << unfit;
    // A data log's year is the last two of its first thirteen characters, whatever they are.
    EXPECT_EQ(import::dataLogYearOf("AB01,03/15/12,00:00:00,1.5"), "12");
    EXPECT_EQ(import::dataLogYearOf("AB01,03/15/2012"), "20");
    EXPECT_EQ(import::dataLogYearOf("AB,1/1/12\r\n"), "\r\n");
    EXPECT_EQ(import::dataLogYearOf("A"), "A");
    EXPECT_EQ(import::dataLogYearOf("AB01,03/15/1\x80"), QString::fromUtf8("1€"));
    EXPECT_FALSE(import::dataLogYearOf(""));
}

// ---- Copies ----

TEST(FileCopy, CopiesWholeWithProgressOrFailsWithTheErrorNumber) {
    ScratchFolder scratch;
    const QByteArray bytes(700 * 1024, 'x');
    qint64 last = -1;
    const auto result = filecopy::copy(scratch.write("a", bytes), scratch.file("new/folder/b"),
                                       [&](qint64 done, qint64 total) {
                                           EXPECT_EQ(total, bytes.size());
                                           EXPECT_GT(done, last);
                                           last = done;
                                       });
    EXPECT_TRUE(result.ok()) << result.reason.toStdString();
    EXPECT_EQ(last, bytes.size());
    EXPECT_EQ(scratch.read("new/folder/b"), bytes);

    // Failures carry the error number and leave no temporary file.
    const auto missing = filecopy::copy(scratch.file("missing"), scratch.file("out"));
    EXPECT_EQ(missing.error, ENOENT);
    EXPECT_FALSE(missing.reason.isEmpty());
    scratch.mkdir("dest/taken"); // a folder where the file should go
    EXPECT_NE(filecopy::copy(scratch.file("a"), scratch.file("dest/taken")).error, 0);
    EXPECT_EQ(QDir(scratch.file("dest")).entryList(QDir::Files | QDir::Hidden), QStringList());
    // A pipe is refused, not waited on.
    ASSERT_EQ(::mkfifo(QFile::encodeName(scratch.file("pipe")).constData(), 0644), 0);
    EXPECT_EQ(filecopy::copy(scratch.file("pipe"), scratch.file("out")).error, EINVAL);
    scratch.write("plain", "x"); // a file where a folder should be
    EXPECT_EQ(filecopy::copy(scratch.file("a"), scratch.file("plain/out")).error, ENOTDIR);
}

TEST(FileCopy, CopiesGetTheUmaskModeNeverWiderThanTheSource) {
    const struct {
        const char* name;
        mode_t source, umask, copy;
    } rows[] = {{"private source", 0600, 022, 0600},
                {"world-writable source", 0666, 027, 0640},
                {"strict umask", 0644, 077, 0600},
                {"executable source", 0755, 022, 0644}};
    for (const auto& row : rows) {
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

TEST(Import, CopiesUnderNewNamesAndDeletesTheSourcesOnlyWhenAsked) {
    for (const bool deleteSources : {false, true}) {
        SCOPED_TRACE(deleteSources ? "answered Yes" : "answered No");
        Walk walk;
        walk.media();
        walk.write("cnf/ab01scal.txt", "old"); // replaced although its letter case differs
        const QStringList before = walk.left("src");
        std::vector<int> progress;
        int maximum = -1;
        import::Callbacks callbacks;
        callbacks.begin = [&](int count) { maximum = count; };
        callbacks.progress = [&](int i) { progress.push_back(i); };
        const import::Outcome outcome = walk.run(deleteSources, callbacks);

        EXPECT_FALSE(outcome.stopped);
        EXPECT_EQ(maximum, 9);
        EXPECT_EQ(progress, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8}));
        EXPECT_EQ(walk.left("home"),
                  (QStringList{"AB01031512.CSV", "AB01031513.TXT", "cd02010113.CSV"}));
        EXPECT_EQ(walk.left("cnf"), (QStringList{"ab01offs.txt", "ab01scal.txt"}));
        EXPECT_EQ(walk.read("cnf/ab01scal.txt"), "1.5\r\n");
        EXPECT_EQ(walk.read("home/AB01031512.CSV"), "AB01,03/15/12,00:00:00,1.5\r\n");
        const QStringList passedOver{"AB01031512.CSV", "AB01USEREVENTS.TXT", "AB01xx15.TXT",
                                     "notes.doc"};
        EXPECT_EQ(walk.left("src"), deleteSources ? passedOver : before);
        EXPECT_EQ(outcome.deleted.size(), deleteSources ? 5 : 0);
    }
}

TEST(Import, NoSourceFolderIsNotTheCurrentFolder) {
    Walk walk;
    walk.folders.source.clear();
    EXPECT_EQ(walk.run(true).listed, 0);
}

TEST(Import, DataLogCopyIsBracketedAndItsSourceGoesEvenWhenTheCopyFailed) {
    Walk walk;
    walk.write("src/AB010315.CSV", "AB01,03/15/12,1\r\n");
    walk.write("src/AB010316.CSV", "AB01,03/16/12,1\r\n");
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
    const auto outcome = walk.run(true, callbacks);
    EXPECT_EQ(events,
              (QStringList{"disable", "copy AB010315.CSV AB01031512.CSV", "delete AB010315.CSV",
                           "enable", "disable", "copy AB010316.CSV AB01031612.CSV",
                           "delete AB010316.CSV", "enable"}));
    EXPECT_EQ(outcome.failedCopies, QStringList{walk.file("src/AB010315.CSV")});
    EXPECT_FALSE(outcome.stopped);
}

// ---- Bad input: the import stops at the file in doubt; what was done stays done, nothing
// further is touched, nothing is lost ----

namespace {

// Runs the import answered Yes and expects it to stop at `at` with one message naming it, with
// `sourceLeft` files still in the source and `home` in the home folder; returns the message.
QString expectStop(const Walk& walk, import::Callbacks callbacks, const QString& at, int sourceLeft,
                   const QStringList& home) {
    QStringList messages;
    callbacks.message = [&](const QString& text) { messages << text; };
    const auto outcome = walk.run(true, callbacks);
    if (!outcome.stopped) {
        ADD_FAILURE() << "the import did not stop";
        return {};
    }
    EXPECT_TRUE(outcome.stopped->contains(walk.file(at))) << outcome.stopped->toStdString();
    EXPECT_EQ(messages, QStringList{*outcome.stopped});
    EXPECT_EQ(walk.left(QFileInfo(walk.folders.source).fileName()).size(), sourceLeft);
    EXPECT_EQ(walk.left("home"), home);
    EXPECT_EQ(walk.left("cnf"), QStringList());
    return *outcome.stopped;
}

} // namespace

TEST(ImportStops, AtAnEmptyDataLogOrOneWhoseFirstLineIsShort) {
    // A short first line would put its line end, or a piece of a date with its slash, in the year.
    for (const char* text : {"", "BB,1/1/12\r\n", "B,1\r\nB,1/2/1\r\n"}) {
        SCOPED_TRACE(text);
        Walk walk;
        walk.write("src/AA010101.CSV", "AA01,01/01/12,1\r\n");
        walk.write("src/BB010101.CSV", text);
        walk.write("src/CC010101.CSV", "CC01,01/01/12,1\r\n");
        expectStop(walk, {}, "src/BB010101.CSV", 2, {"AA01010112.CSV"});
    }
}

TEST(ImportStops, WhenTheSourceCannotBeDeleted) {
    Walk walk;
    walk.media();
    import::Callbacks callbacks;
    callbacks.remove = [](const import::SourceFile&) { return QString("read-only file system"); };
    EXPECT_TRUE(expectStop(walk, callbacks, "src/AB010315.CSV", 9, {"AB01031512.CSV"})
                    .contains("read-only file system"));
}

TEST(ImportStops, WhenTheDestinationCannotBeWritten) {
    Walk walk;
    walk.media();
    walk.write("cnf", "a file where the folder should be");
    // At the first calibration file; the two files before it are done and gone.
    expectStop(walk, {}, "src/ab01offs.txt", 7, {"AB01031512.CSV", "AB01031513.TXT"});
}

TEST(ImportStops, AtAFileThatVanished) {
    Walk walk;
    walk.media();
    import::Callbacks callbacks;
    callbacks.progress = [&](int i) {
        if (i == 0)
            QFile::remove(walk.file("src/AB010315.HST"));
    };
    expectStop(walk, callbacks, "src/AB010315.HST", 7, {"AB01031512.CSV"});
}

TEST(ImportStops, RatherThanDeleteAFileOntoItself) {
    Walk walk;
    setModified(walk.write("home/AB01031513.TXT", "events"), 2013);
    walk.folders.source = walk.folders.home;
    expectStop(walk, {}, "home/AB01031513.TXT", 1, {"AB01031513.TXT"});
    EXPECT_EQ(walk.read("home/AB01031513.TXT"), "events");
}

TEST(Import, NamesWithBlanksAndNonAsciiCharacters) {
    Walk walk;
    walk.write(QString::fromUtf8("src/Ä B 0315.CSV"), "XXXX,03/15/12,1\r\n");
    setModified(walk.write(QString::fromUtf8("src/é  00315.hst"), "x"), 2005);
    EXPECT_FALSE(walk.run(false).stopped);
    EXPECT_EQ(walk.left("home"), (QStringList{QString::fromUtf8("Ä B 031512.CSV"),
                                              QString::fromUtf8("é  0031505.TXT")}));
}

// A controller's media written on its own system: names in Windows-1252, not UTF-8. They are
// read as the program reads text, imported under that name and deleted by their bytes.
TEST(Import, NamesThatAreNotUtf8AreReadAsWindows1252) {
    Walk walk;
    const std::string source = QFile::encodeName(walk.mkdir("src")).toStdString() + '/';
    const std::string site = "AB\xe9"
                             "D"; // "ABéD" in Windows-1252
    std::ofstream(source + site + "0315.CSV") << site << ",03/15/12,1\r\n";
    std::ofstream(source + site + "scal.txt") << "1.5\r\n";
    std::ofstream(source + site + "0315.HST") << "events\r\n";
    const struct timeval june2013[2] = {{1370088000, 0}, {1370088000, 0}};
    ASSERT_EQ(::utimes((source + site + "0315.HST").c_str(), june2013), 0);

    QStringList listed;
    for (const import::SourceFile& file : import::listSource(walk.file("src")))
        listed << file.name;
    const QString abed = QString::fromUtf8("ABéD");
    EXPECT_EQ(listed, (QStringList{abed + "0315.CSV", abed + "0315.HST", abed + "scal.txt"}));

    const auto outcome = walk.run(true);
    EXPECT_FALSE(outcome.stopped) << outcome.stopped.value_or(QString()).toStdString();
    EXPECT_EQ(walk.left("home"), (QStringList{abed + "031512.CSV", abed + "031513.TXT"}));
    EXPECT_EQ(walk.left("cnf"), QStringList{abed + "scal.txt"});
    EXPECT_EQ(walk.read("home/" + abed + "031512.CSV"),
              QByteArray::fromStdString(site + ",03/15/12,1\r\n"));
    EXPECT_EQ(outcome.deleted.size(), 3);
    EXPECT_EQ(walk.left("src"), QStringList());
}

TEST(Import, SymbolicLinksOutOfTheSourceAreNotFollowed) {
    Walk walk;
    const QString secret = walk.write("system/secret", "AB01,03/15/12,00:00:00,1\r\n");
    walk.write("src/real.dat", "CD02,01/01/13,00:00:00,1\r\n");
    for (const auto& [link, target] : {std::pair<QString, QString>{"AB010315.CSV", secret},
                                       {"AB01SCAL.TXT", secret},
                                       {"CD020101.CSV", walk.file("src/real.dat")},
                                       {"EF030101.CSV", walk.file("src/gone")}})
        ASSERT_TRUE(QFile::link(target, walk.file("src/" + link)));
    const auto outcome = walk.run(true);
    EXPECT_FALSE(outcome.stopped);
    EXPECT_EQ(outcome.listed, 5);
    // The link inside the media is copied as the file it names; the others are left alone.
    EXPECT_EQ(walk.left("home"), QStringList{"CD02010113.CSV"});
    EXPECT_EQ(walk.read("home/CD02010113.CSV"), walk.read("src/real.dat"));
    EXPECT_EQ(walk.left("cnf"), QStringList());
    EXPECT_EQ(walk.read("system/secret"), "AB01,03/15/12,00:00:00,1\r\n");
}
