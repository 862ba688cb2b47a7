#include "storage/filenames.h"
#include "storage/homefolder.h"
#include "storage/textfile.h"
#include "support/fulldisk.h"
#include "support/scratchfolder.h"

#include <QDir>
#include <QFile>
#include <functional>
#include <gtest/gtest.h>

namespace trendax {
namespace {

TEST(Windows1252, DecodesAndEncodesTheHighRange) {
    const QByteArray bytes("\x80 \x93q\x94 \xe9 \xb0", 9);
    const QString text = textfile::decode(bytes);
    EXPECT_EQ(text, QString::fromUtf8("€ “q” é °"));
    EXPECT_EQ(textfile::encode(text), bytes);
    EXPECT_EQ(textfile::encode(QString::fromUtf8("日")), QByteArray("?"));
}

TEST(TextFiles, ReadsCrLfAndLfAlike) {
    test::ScratchFolder dir;
    dir.write("crlf.txt", "one\r\ntwo\r\n");
    dir.write("lf.txt", "one\ntwo");
    EXPECT_EQ(*textfile::readLines(dir.file("crlf.txt")), (QStringList{"one", "two"}));
    EXPECT_EQ(*textfile::readLines(dir.file("lf.txt")), (QStringList{"one", "two"}));
    EXPECT_EQ(*textfile::readFirstLine(dir.file("crlf.txt")), QStringLiteral("one"));
    EXPECT_FALSE(textfile::readLines(dir.file("missing.txt")));
    dir.write("empty.txt", "");
    EXPECT_FALSE(textfile::readFirstLine(dir.file("empty.txt")));
}

TEST(TextFiles, WritesCrLfAndReplacesWhateverTheCase) {
    test::ScratchFolder dir;
    dir.write("AB12SCAL.TXT", "old\r\n");
    ASSERT_TRUE(textfile::writeLines(dir.file("AB12scal.txt"), {"2.5"}));
    EXPECT_EQ(dir.read("AB12SCAL.TXT"), QByteArray("2.5\r\n"));
    EXPECT_FALSE(QFile::exists(dir.file("AB12scal.txt")));
    ASSERT_TRUE(textfile::appendLine(dir.file("log.txt"), QString::fromUtf8("é")));
    ASSERT_TRUE(textfile::appendLine(dir.file("log.txt"), "b"));
    EXPECT_EQ(dir.read("log.txt"), QByteArray("\xe9\r\nb\r\n"));
}

TEST(TextFiles, AFailedWriteLeavesNoFile) {
    test::ScratchFolder dir;
    EXPECT_FALSE(textfile::writeLines(dir.file("no/such/folder/x.txt"), {"1"}));
}

// A write that runs out of space must not replace the file with what fitted, and says so.
TEST(TextFiles, FullDiskKeepsTheOldFile) {
    struct Row {
        const char* name;
        const char* file; // in the home folder
        std::function<bool(const QString& appFolder)> write;
        bool reportsFailure;
    };
    const Row rows[] = {
        {"text file", "AB12USEREVENTS.TXT",
         [](const QString& app) {
             return textfile::writeLines(app + "/logfiles/AB12USEREVENTS.TXT", {"a new line"});
         },
         true},
        // Schema.ini is written silently: the reader goes on without it.
        {"Schema.ini", "Schema.ini",
         [](const QString& app) {
             WriteSchemaIni(app, "AB12031512.csv");
             return false;
         },
         false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        test::ScratchFolder app;
        test::FullDisk disk(app.file("logfiles"));
        SCOPED_TRACE(disk.how());
        const QString file = QStringLiteral("logfiles/") + row.file;
        app.write(file, "old\r\n");
        disk.fill();
        const bool written = row.write(app.path());
        if (row.reportsFailure) {
            EXPECT_FALSE(written);
        }
        EXPECT_EQ(app.read(file), QByteArray("old\r\n"));
        // No temporary file is left behind either.
        QStringList left = QDir(app.file("logfiles")).entryList(QDir::Files | QDir::Hidden);
        left.removeAll("filler");
        EXPECT_EQ(left, QStringList{row.file});
    }
}

TEST(FileNames, ResolvesWithoutRegardToCase) {
    test::ScratchFolder dir;
    dir.write("AB12030112.CSV", "x");
    EXPECT_EQ(filenames::resolve(dir.file("ab12030112.csv")), dir.file("AB12030112.CSV"));
    EXPECT_EQ(filenames::resolve(dir.file("AB12030112.CSV")), dir.file("AB12030112.CSV"));
    EXPECT_EQ(filenames::resolve(dir.file("zz.csv")), dir.file("zz.csv"));
    EXPECT_EQ(filenames::join("/a/", "b"), QStringLiteral("/a/b"));
    EXPECT_EQ(filenames::join("/a", "b"), QStringLiteral("/a/b"));
}

} // namespace
} // namespace trendax
