#include "opendlg/filecopy.h"
#include "opendlg/importer.h"
#include "opendlg/sitetree.h"
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

// The whole tree in one line: "AB01: 031512 031612 | CD02: 010113".
QString outline(const sitetree::Tree& tree) {
    QStringList sites;
    for (const auto& site : tree.sites) {
        QString text = site.code + ":";
        for (const auto& day : site.days)
            text += " " + day.text;
        sites << text;
    }
    return sites.join(" | ");
}

// A source folder "src" beside the home folder "home" and the configuration folder "cnf".
struct Walk : ScratchFolder {
    import::Folders folders{file("src"), file("home"), file("cnf"), {}};

    auto run(bool deleteSources, const import::Callbacks& callbacks = {}) const {
        return import::run(folders, deleteSources, callbacks);
    }
    QStringList left(const QString& folder) const {
        return QDir(file(folder)).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }
    // Media as a controller delivers them, next to files import must leave alone.
    void media() const {
        write("src/AB010315.CSV", "AB01,03/15/12,00:00:00,1.5\r\n");
        setModified(write("src/AB010315.HST", "events\r\n"), 2013);
        for (const char* name : {"src/AB01031512.CSV", "src/ab01offs.txt", "src/AB01SCAL.TXT",
                                 "src/AB01USEREVENTS.TXT", "src/AB01xx15.TXT", "src/notes.doc"})
            write(name, "1.5\r\n");
        write("src/cd020101.csv", "CD02,01/01/13,00:00:00,1.5\r\n");
        mkdir("src/AB010316.CSV");
    }
};

} // namespace

TEST(ImportNames, ClassificationAndTheYearOfADataLog) {
    using K = import::Kind;
    const std::pair<K, std::vector<const char*>> kinds[] = {
        {K::DataLog, {"AB010315.CSV", "ab010315.csv", "AB01 3 5.CsV", "ÄÖÜß0315.CSV"}},
        {K::Calibration, {"AB01SCAL.TXT", "scal.txt", "XYZOFFS.txt"}},
        {K::History, {"AB010315.HST", "ÄÖÜß0315.hst", "AB01031512.TXT", "AB01 3-1.TXT"}},
        {K::Other,
         {"AB01031512.CSV", "AB0103.CSV", ".CSV", "", "AB01SCAL.HST", "AB01USEREVENTS.TXT",
          "AB01xx15.TXT", "AB01.TXT", "AB010315.DAT"}},
    };
    for (const auto& [kind, names] : kinds) {
        for (const char* name : names)
            EXPECT_EQ(import::classify(QString::fromUtf8(name), u"13"), kind) << name;
    }
    EXPECT_EQ(import::classify(u"AB010315.HST", u""), K::Other); // no modified year
    // A data log's year is the last two of its first thirteen characters, whatever they are.
    for (const auto& [line, year] : {std::pair{"AB01,03/15/2012", "20"},
                                     {"AB,1/1/12\r\n", "\r\n"},
                                     {"A", "A"},
                                     {"AB01,03/15/1\x80", "1€"}})
        EXPECT_EQ(import::dataLogYearOf(line), QString::fromUtf8(year)) << line;
    EXPECT_FALSE(import::dataLogYearOf(""));
}

// Copies are whole, get the umask's mode but never wider than the source's, or fail with the
// error number and leave nothing behind.
TEST(FileCopy, CopiesWholeWithProgressOrFailsWithTheErrorNumber) {
    ScratchFolder scratch;
    const QByteArray bytes(700 * 1024, 'x');
    const QString source = scratch.write("a", bytes);
    ASSERT_EQ(::chmod(QFile::encodeName(source).constData(), 0755), 0);
    qint64 last = -1;
    const mode_t saved = ::umask(027);
    const auto result =
        filecopy::copy(source, scratch.file("new/folder/b"), [&](qint64 done, qint64 total) {
            EXPECT_EQ(total, bytes.size());
            EXPECT_GT(done, last);
            last = done;
        });
    ::umask(saved);
    EXPECT_TRUE(result.ok()) << result.reason.toStdString();
    EXPECT_EQ(last, bytes.size());
    EXPECT_EQ(scratch.read("new/folder/b"), bytes);
    EXPECT_EQ(QFileInfo(scratch.file("new/folder/b")).permissions(),
              QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser |
                  QFile::ReadGroup);
    ASSERT_EQ(::chmod(QFile::encodeName(source).constData(), 0600), 0);
    ASSERT_TRUE(filecopy::copy(source, scratch.file("private")).ok());
    EXPECT_EQ(QFileInfo(scratch.file("private")).permissions(),
              QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser);

    EXPECT_EQ(filecopy::copy(scratch.file("missing"), scratch.file("out")).error, ENOENT);
    scratch.mkdir("dest/taken"); // a folder where the file should go
    EXPECT_NE(filecopy::copy(source, scratch.file("dest/taken")).error, 0);
    EXPECT_EQ(QDir(scratch.file("dest")).entryList(QDir::Files | QDir::Hidden), QStringList());
    ASSERT_EQ(::mkfifo(QFile::encodeName(scratch.file("pipe")).constData(), 0644), 0);
    EXPECT_EQ(filecopy::copy(scratch.file("pipe"), scratch.file("out")).error, EINVAL);
}

TEST(Import, CopiesUnderNewNamesAndDeletesTheSourcesOnlyWhenAsked) {
    for (const bool deleteSources : {false, true}) {
        SCOPED_TRACE(deleteSources ? "answered Yes" : "answered No");
        Walk walk;
        walk.media();
        walk.write("cnf/ab01scal.txt", "old"); // replaced although its letter case differs
        const QStringList before = walk.left("src");
        QList<int> progress;
        import::Callbacks callbacks;
        callbacks.begin = [&](int count) { progress << -count; };
        callbacks.progress = [&](int i) { progress << i; };
        const import::Outcome outcome = walk.run(deleteSources, callbacks);

        EXPECT_FALSE(outcome.stopped);
        EXPECT_EQ(progress, (QList<int>{-9, 0, 1, 2, 3, 4, 5, 6, 7, 8})); // the count, then each
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
    Walk none; // no source folder is not the current folder
    none.folders.source.clear();
    EXPECT_EQ(none.run(true).listed, 0);
}

// The import stops at the file in doubt with one message naming it; what was done stays done,
// nothing further is touched and the file in doubt keeps its bytes.
void expectStop(const Walk& walk, import::Callbacks callbacks, const QString& at, int sourceLeft,
                const QStringList& home) {
    const QByteArray inDoubt = walk.read(at);
    QStringList messages;
    callbacks.message = [&](const QString& text) { messages << text; };
    const auto outcome = walk.run(true, callbacks);
    ASSERT_TRUE(outcome.stopped);
    EXPECT_TRUE(outcome.stopped->contains(walk.file(at))) << outcome.stopped->toStdString();
    EXPECT_EQ(messages, QStringList{*outcome.stopped});
    EXPECT_EQ(walk.left(QFileInfo(walk.folders.source).fileName()).size(), sourceLeft);
    EXPECT_EQ(walk.left("home"), home);
    EXPECT_EQ(walk.left("cnf"), QStringList());
    EXPECT_EQ(walk.read(at), inDoubt);
}

TEST(ImportStops, AtTheFileInDoubtKeepingWhatWasDone) {
    // A short first line would put its line end, or a piece of a date, in the year.
    for (const char* text : {"", "BB,1/1/12\r\n", "B,1\r\nB,1/2/1\r\n"}) {
        SCOPED_TRACE(text);
        Walk walk;
        walk.write("src/AA010101.CSV", "AA01,01/01/12,1\r\n");
        walk.write("src/BB010101.CSV", text);
        walk.write("src/CC010101.CSV", "CC01,01/01/12,1\r\n");
        expectStop(walk, {}, "src/BB010101.CSV", 2, {"AA01010112.CSV"});
    }
    Walk undeletable;
    undeletable.media();
    import::Callbacks callbacks;
    callbacks.remove = [](const import::SourceFile&) { return QString("read-only"); };
    expectStop(undeletable, callbacks, "src/AB010315.CSV", 9, {"AB01031512.CSV"});
    Walk unwritable;
    unwritable.media();
    unwritable.write("cnf", "a file where the folder should be");
    expectStop(unwritable, {}, "src/ab01offs.txt", 7, {"AB01031512.CSV", "AB01031513.TXT"});
    Walk ontoItself;
    setModified(ontoItself.write("home/AB01031513.TXT", "events"), 2013);
    ontoItself.folders.source = ontoItself.folders.home;
    expectStop(ontoItself, {}, "home/AB01031513.TXT", 1, {"AB01031513.TXT"});
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

    const auto outcome = walk.run(true);
    EXPECT_FALSE(outcome.stopped) << outcome.stopped.value_or(QString()).toStdString();
    const QString abed = QString::fromUtf8("ABéD");
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
    // The link inside the media is copied as the file it names; the others are left alone.
    EXPECT_EQ(walk.left("home"), QStringList{"CD02010113.CSV"});
    EXPECT_EQ(walk.read("home/CD02010113.CSV"), walk.read("src/real.dat"));
    EXPECT_EQ(walk.left("cnf"), QStringList());
    EXPECT_EQ(walk.read("system/secret"), "AB01,03/15/12,00:00:00,1\r\n");
}

TEST(SiteTree, OneNodePerSiteAndDayAndTextWorkingCopiesOfHistories) {
    ScratchFolder home;
    for (const char* name : {"CD02010113.CSV", "AB01031612.csv", "AB01031512.CSV", "ab01031512.csv",
                             "CD02123112.CSV", "EF03.CSV", "YR01123129.CSV", "YR01010130.CSV",
                             "YR01063000.CSV", "Schema.ini", "AB01USEREVENTS.TXT"})
        home.write(name, "x");
    home.mkdir("ZZ99010112.CSV"); // a folder, not a data log
    home.write("gh05031512.hst", "lower");
    home.write("GH06031512.HST", "new");
    home.write("GH06031512.TXT", "old"); // replaced although its suffix is in capitals

    const sitetree::Tree tree = sitetree::build(home.path());
    // The same day in two letter cases is listed once; days come in calendar order by the
    // two-digit year rule; with four characters before ".CSV" the day text is what follows.
    EXPECT_EQ(outline(tree), "AB01: 031512 031612 | CD02: 123112 010113 | EF03: .CSV | "
                             "YR01: 010130 063000 123129");
    EXPECT_EQ(tree.sites[0].days[0].key, "mdAB01031512");
    EXPECT_EQ(home.read("gh05031512.txt"), "lower");
    EXPECT_EQ(home.read("GH06031512.TXT"), "new");
    EXPECT_EQ(QDir(home.path()).entryList(QDir::Files | QDir::Hidden).size(), 15); // no temporaries
    // Names shorter than the pattern are cut as they come.
    const auto noCopy = [](const QString&, const QString&) { return QString(); };
    EXPECT_EQ(outline(sitetree::buildFromNames({".CSV", "A.CSV"}, noCopy)), ".CSV:  | A.CS: V");
}

TEST(SiteTree, CopyFailureBeforeTheFirstDataLogEndsTheWalk) {
    const auto failing = [](const QString&, const QString&) { return QString("disk full"); };
    const auto early = sitetree::buildFromNames({"AA01010112.HST", "BB01010112.CSV"}, failing);
    EXPECT_TRUE(early.sites.empty());
    EXPECT_TRUE(early.failure && early.failure->contains("AA01010112.HST") &&
                early.failure->contains("disk full"));
    const auto late =
        sitetree::buildFromNames({"AA01010112.CSV", "AA01010112.HST", "BB01010112.CSV"}, failing);
    EXPECT_EQ(outline(late), "AA01: 010112 | BB01: 010112");
    EXPECT_FALSE(late.failure);
}

TEST(SiteTreeKeys, DayKeysGiveCalendarDates) {
    EXPECT_EQ(sitetree::dateOfDayKey("mdAB01031512"), datetime::fromDate(2012, 3, 15));
    EXPECT_EQ(sitetree::dateOfDayKey("mdAB01022900"), datetime::fromDate(2000, 2, 29));
    EXPECT_EQ(sitetree::dateOfDayKey("mdAB01123199"), datetime::fromDate(1999, 12, 31));
    // No 29 February in 2001, no month 13, no numbers.
    for (const char* key : {"mdAB01022901", "mdAB01133112", "mdEF03.CSV", "mdAB01 31512", "md"})
        EXPECT_FALSE(sitetree::dateOfDayKey(key)) << key;
}
