#include "storage/atomicfile.h"
#include "storage/datetime.h"
#include "storage/debuglog.h"
#include "storage/filenames.h"
#include "storage/homefolder.h"
#include "storage/textfile.h"
#include "support/fulldisk.h"
#include "support/scratchfolder.h"
#include "support/scriptedenvironment.h"

#include <QDir>
#include <QFile>
#include <cerrno>
#include <gtest/gtest.h>

namespace trendax {
namespace {

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
