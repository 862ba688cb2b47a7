#include "storage/atomicfile.h"
#include "storage/datetime.h"
#include "storage/debuglog.h"
#include "storage/environment.h"
#include "storage/filenames.h"
#include "storage/homefolder.h"
#include "storage/numbers.h"
#include "storage/textfile.h"
#include "support/fulldisk.h"
#include "support/readonlyfolder.h"
#include "support/scratchfolder.h"
#include "support/scriptedenvironment.h"

#include <QDir>
#include <QFile>
#include <QString>
#include <cerrno>
#include <gtest/gtest.h>
#include <tuple>

namespace trendax {
namespace {

// ---- Date-times and numbers ----

using namespace datetime;

TEST(DateTimes, DayNumbersFollowTheOleEpochAndTwoDigitYearsSplitAtThirty) {
    for (const auto& [year, full] : {std::pair{0, 2000}, {29, 2029}, {30, 1930}, {2012, 2012}})
        EXPECT_EQ(fullYear(year), full) << year;
    EXPECT_EQ(*fromDate(1899, 12, 30), 0.0);
    EXPECT_EQ(*fromDate(1900, 1, 1), 2.0);
    EXPECT_EQ(*fromDate(2012, 3, 15), 40983.0);
    EXPECT_TRUE(fromDate(2012, 2, 29));
    EXPECT_FALSE(fromDate(2012, 2, 30));
    EXPECT_FALSE(fromDate(2012, 13, 1));
    const Civil c = toCivil(*fromDateTime(2026, 11, 16, 15, 52, 46) + 0.25 / secondsPerDay);
    EXPECT_EQ(std::tie(c.year, c.month, c.day, c.hour, c.minute, c.second, c.millisecond),
              std::make_tuple(2026, 11, 16, 15, 52, 46, 250));
    // Just under the next day reads as the next midnight, not 23:59:59.999…
    EXPECT_EQ(toCivil(1.0 - 1e-12).day, 31);
    EXPECT_EQ(dateValue(40983.99), 40983.0);
}

TEST(DateTimes, ReadsControllerDatesAndTimes) {
    const double jan15 = 39462.0, pm = (13 * 3600 + 45 * 60 + 12) / secondsPerDay;
    const std::pair<const char*, std::optional<double>> rows[] = {
        {"01/15/08 1:45:12 pm", jan15 + pm},
        {"01/15/08 12:30 PM", jan15 + 0.5 + 1800 / secondsPerDay},
        {"01/15/08 12:00:00 AM", jan15},
        {"1/15/2008", jan15},
        {"01-15-08", jan15},
        {"13:45", pm - 12 / secondsPerDay},
        {"02/30/12", std::nullopt},
        {"01/15/08 25:00:00", std::nullopt},
        {"01/15/08 13:45:12 PM", std::nullopt},
        {"", std::nullopt},
        {"01/15/008", std::nullopt},
    };
    for (const auto& [text, expected] : rows) {
        const auto got = parse(std::string_view(text));
        EXPECT_EQ(got.has_value(), expected.has_value()) << '"' << text << '"';
        if (got && expected) {
            EXPECT_NEAR(*got, *expected, 1e-9) << '"' << text << '"';
        }
    }
}

TEST(DateTimes, Formatting) {
    // The general form leaves out the time at midnight.
    EXPECT_EQ(formatGeneral(40983.0), "3/15/2012");
    EXPECT_EQ(formatGeneral(40983.0 + 30 / 86400.0), "3/15/2012 12:00:30 AM");
    EXPECT_EQ(formatGeneral(40983.0 + 15.5 / 24), "3/15/2012 3:30:00 PM");
    EXPECT_EQ(formatShortDate(40983.7), "3/15/2012");
    for (const auto& [value, text] : {std::pair<double, const char*>{0, "0"},
                                      {40983.5, "40983.5"},
                                      {1e11, "100000000000"},
                                      {-2.25, "-2.25"}})
        EXPECT_EQ(formatNumber(value), text);
    EXPECT_EQ(formatNumber(0.1).toDouble(), 0.1);
}

TEST(NumberText, ReadsWithAPeriodAsDecimalMark) {
    const std::pair<const char*, std::optional<double>> rows[] = {
        {"  2.5\t", 2.5}, {"-1", -1.0},  {"1.5E-2", 0.015}, {".5", 0.5}, {"5.", 5.0},
        {"abc", {}},      {"", {}},      {"1,5", {}},       {"inf", {}}, {"nan", {}},
        {"0x10", {}},     {"1e400", {}}, {"1 2", {}},       {"--1", {}}};
    for (const auto& [text, value] : rows) {
        EXPECT_EQ(numbers::parse(std::string_view(text)), value) << '"' << text << '"';
        EXPECT_EQ(numbers::parse(QString::fromLatin1(text)), value) << '"' << text << '"';
    }
}

// ---- Folders ----

TEST(AppFolderChoice, PerUserFolderStandsInForAReadOnlyExecutableFolder) {
    // Name, whether the executable's folder is writable, XDG_DATA_HOME, the folder chosen.
    const std::tuple<const char*, bool, const char*, const char*> rows[] = {
        {"writable", true, "/data/eng", "/opt/trendax"},
        {"read-only, XDG_DATA_HOME set", false, "/data/eng", "/data/eng/Trendax2"},
        {"read-only, XDG_DATA_HOME unset", false, "", "/home/eng/.local/share/Trendax2"},
        {"read-only, XDG_DATA_HOME relative", false, "data", "/home/eng/.local/share/Trendax2"},
    };
    for (const auto& [name, writable, xdgDataHome, expected] : rows) {
        SCOPED_TRACE(name);
        EXPECT_EQ(appfolder::choose("/opt/trendax", writable, xdgDataHome, "/home/eng"),
                  QString::fromUtf8(expected));
    }
}

TEST(AppFolderLocate, OnlyAReadOnlyExecutableFolderMovesTheFoldersToTheUsersDataFolder) {
    test::ScratchFolder scratch;
    const QString build = scratch.mkdir("build/release"); // kept, and nothing is created
    EXPECT_EQ(appfolder::locate(build, scratch.file("xdg"), scratch.file("home")), build);
    EXPECT_FALSE(QFileInfo::exists(scratch.file("xdg")));

    const QString exeFolder = scratch.file("usr/bin");
    test::ReadOnlyFolder readOnly(exeFolder);
    if (!readOnly.seal())
        GTEST_SKIP() << "the folder cannot be made read-only for this process";
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

// ---- Text files ----

QStringList filesIn(const QString& folder) {
    QStringList names =
        QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::Dirs | QDir::NoDotAndDotDot);
    names.removeAll("filler");
    return names;
}

TEST(Windows1252, DecodesAndEncodesTheHighRange) {
    const QByteArray bytes("\x80 \x93q\x94 \xe9 \xb0", 9);
    const QString text = textfile::decode(bytes);
    EXPECT_EQ(text, QString::fromUtf8("€ “q” é °"));
    EXPECT_EQ(textfile::encode(text), bytes);
    EXPECT_EQ(textfile::encode(QString::fromUtf8("日")), "?");
}

TEST(TextFiles, ReadsCrLfAndLfAlikeAndWritesCrLfWhateverTheCase) {
    test::ScratchFolder dir;
    EXPECT_EQ(*textfile::readLines(dir.write("crlf.txt", "one\r\ntwo\r\n")),
              (QStringList{"one", "two"}));
    EXPECT_EQ(*textfile::readLines(dir.write("lf.txt", "one\ntwo")), (QStringList{"one", "two"}));
    EXPECT_FALSE(textfile::readLines(dir.file("missing.txt")));
    EXPECT_FALSE(textfile::readFirstLine(dir.write("empty.txt", "")));

    dir.write("AB12SCAL.TXT", "old\r\n");
    ASSERT_TRUE(textfile::writeLines(dir.file("AB12scal.txt"), {"2.5"}));
    EXPECT_EQ(dir.read("AB12SCAL.TXT"), "2.5\r\n");
    EXPECT_FALSE(QFile::exists(dir.file("AB12scal.txt")));
    EXPECT_EQ(filenames::resolve(dir.file("ab12SCAL.txt")), dir.file("AB12SCAL.TXT"));
    EXPECT_EQ(filenames::resolve(dir.file("zz.csv")), dir.file("zz.csv"));
    ASSERT_TRUE(textfile::appendLine(dir.file("log.txt"), QString::fromUtf8("é")));
    ASSERT_TRUE(textfile::appendLine(dir.file("log.txt"), "b"));
    EXPECT_EQ(dir.read("log.txt"), "\xe9\r\nb\r\n");
}

TEST(TextFiles, AFailedWriteLeavesNoFile) {
    test::ScratchFolder dir;
    dir.write("taken/x.txt/inside", "a folder where the file should go");
    EXPECT_FALSE(textfile::writeLines(dir.file("no/such/folder/x.txt"), {"1"}));
    EXPECT_FALSE(textfile::writeLines(dir.file("taken/x.txt"), {"1"}));
    EXPECT_FALSE(QFileInfo::exists(dir.file("no")));
    EXPECT_EQ(filesIn(dir.file("taken")), QStringList{"x.txt"});
}

TEST(AtomicFiles, ReplaceOnlyOnCommit) {
    test::ScratchFolder dir;
    const QString path = dir.write("view.csv", "old");
    for (const bool commit : {false, true}) { // abandoned first, then committed
        EXPECT_EQ(dir.read("view.csv"), "old");
        AtomicFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write("new"), 3);
        EXPECT_TRUE(!commit || file.commit());
    }
    EXPECT_EQ(dir.read("view.csv"), "new");
    EXPECT_EQ(filesIn(dir.path()), QStringList{"view.csv"});
}

// A write that runs out of space keeps the old file and leaves no temporary behind; it says why,
// except for Schema.ini, written silently as the reader goes on without it.
TEST(FullDisk, KeepsTheOldFileAndSaysWhy) {
    for (const QString name : {"AB12USEREVENTS.TXT", "Schema.ini", "report.pdf"}) {
        SCOPED_TRACE(name.toStdString());
        test::ScratchFolder app;
        test::FullDisk disk(app.file("logfiles"));
        SCOPED_TRACE(disk.how());
        const QString path = app.write("logfiles/" + name, "old\r\n");
        disk.fill();
        if (name == "Schema.ini") {
            WriteSchemaIni(app.path(), "AB12031512.csv");
        } else if (name == "report.pdf") {
            AtomicFile file(path);
            // The temporary file may not even be created on a full file system.
            if (file.open(QIODevice::WriteOnly)) {
                file.write(QByteArray(1 << 20, 'x'));
                EXPECT_FALSE(file.commit());
            }
            EXPECT_TRUE(file.error() == ENOSPC || file.error() == EFBIG) << file.error();
            EXPECT_FALSE(file.errorText().isEmpty());
        } else {
            EXPECT_FALSE(textfile::writeLines(path, {"a new line"}));
        }
        EXPECT_EQ(app.read("logfiles/" + name), "old\r\n");
        EXPECT_EQ(filesIn(app.file("logfiles")), QStringList{name});
    }
}

TEST(DebugLog, StampsEveryLineWhenOnAndLeavesTheFilesAloneWhenOffOrUnwritable) {
    test::ScratchFolder dir;
    test::ScriptedEnvironment env(dir.path());
    env.setNow(*datetime::fromDateTime(2026, 11, 16, 15, 52, 46));
    dir.write("TXDebug.txt", "kept");
    DebugLog off(env, dir.file("TXDebug.txt"));
    off.DebugOutBegin();
    off.DebugOut("x");
    EXPECT_EQ(dir.read("TXDebug.txt"), "kept");

    DebugLog log(env, dir.file("TXDebug.txt"));
    log.bbDebugOut = true;
    log.DebugOutBegin(); // a fresh log
    log.DebugOut("LoadWell()");
    env.setNow(*datetime::fromDateTime(2026, 11, 17, 0, 0, 5));
    log.DebugOut("Dumping CSV file: \r\na[,]b\r\n");
    EXPECT_EQ(dir.read("TXDebug.txt"),
              "11/16/2026 3:52:46 PM: \tBegin Debug.....................\r\n"
              "11/16/2026 3:52:46 PM: \t\r\n"
              "11/16/2026 3:52:46 PM: \tLoadWell()\r\n"
              "11/17/2026 12:00:05 AM: \tDumping CSV file: \r\na[,]b\r\n\r\n");

    DebugLog lost(env, dir.file("no/such/folder/TXDebug.txt"));
    lost.bbDebugOut = true;
    lost.DebugOutBegin();
    lost.DebugOut("lost");
    EXPECT_FALSE(QFile::exists(dir.file("no")));
}

} // namespace
} // namespace trendax
