#include "storage/filenames.h"
#include "storage/homefolder.h"
#include "storage/textfile.h"
#include "support/fulldisk.h"
#include "support/scratchfolder.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace trendax {
namespace {

TEST(Windows1252, DecodesAndEncodesTheHighRange) {
    const QByteArray bytes("\x80 \x93q\x94 \xe9 \xb0", 9);
    const QString text = textfile::decode(bytes);
    EXPECT_EQ(text, QString::fromUtf8("€ “q” é °"));
    EXPECT_EQ(textfile::encode(text), bytes);
    EXPECT_EQ(textfile::encode(QString::fromUtf8("日")), "?");
}

TEST(TextFiles, ReadsCrLfAndLfAlike) {
    test::ScratchFolder dir;
    EXPECT_EQ(*textfile::readLines(dir.write("crlf.txt", "one\r\ntwo\r\n")),
              (QStringList{"one", "two"}));
    EXPECT_EQ(*textfile::readLines(dir.write("lf.txt", "one\ntwo")), (QStringList{"one", "two"}));
    EXPECT_EQ(*textfile::readFirstLine(dir.file("crlf.txt")), "one");
    EXPECT_FALSE(textfile::readLines(dir.file("missing.txt")));
    EXPECT_FALSE(textfile::readFirstLine(dir.write("empty.txt", "")));
}

TEST(TextFiles, WritesCrLfAndReplacesWhateverTheCase) {
    test::ScratchFolder dir;
    dir.write("AB12SCAL.TXT", "old\r\n");
    ASSERT_TRUE(textfile::writeLines(dir.file("AB12scal.txt"), {"2.5"}));
    EXPECT_EQ(dir.read("AB12SCAL.TXT"), "2.5\r\n");
    EXPECT_FALSE(QFile::exists(dir.file("AB12scal.txt")));
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
    EXPECT_EQ(
        QDir(dir.file("taken")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        QStringList{"x.txt"});
}

// A write that runs out of space must not replace the file with what fitted, and says so;
// Schema.ini is written silently, as the reader goes on without it.
TEST(TextFiles, FullDiskKeepsTheOldFile) {
    for (const QString name : {"AB12USEREVENTS.TXT", "Schema.ini"}) {
        SCOPED_TRACE(name.toStdString());
        test::ScratchFolder app;
        test::FullDisk disk(app.file("logfiles"));
        SCOPED_TRACE(disk.how());
        app.write("logfiles/" + name, "old\r\n");
        disk.fill();
        if (name == "Schema.ini")
            WriteSchemaIni(app.path(), "AB12031512.csv");
        else
            EXPECT_FALSE(textfile::writeLines(app.file("logfiles/" + name), {"a new line"}));
        EXPECT_EQ(app.read("logfiles/" + name), "old\r\n");
        // No temporary file is left behind either.
        QStringList left = QDir(app.file("logfiles")).entryList(QDir::Files | QDir::Hidden);
        left.removeAll("filler");
        EXPECT_EQ(left, QStringList{name});
    }
}

TEST(FileNames, ResolvesWithoutRegardToCase) {
    test::ScratchFolder dir;
    const QString onDisk = dir.write("AB12030112.CSV", "x");
    EXPECT_EQ(filenames::resolve(dir.file("ab12030112.csv")), onDisk);
    EXPECT_EQ(filenames::resolve(onDisk), onDisk);
    EXPECT_EQ(filenames::resolve(dir.file("zz.csv")), dir.file("zz.csv"));
}

} // namespace
} // namespace trendax
