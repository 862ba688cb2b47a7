#include "storage/filenames.h"
#include "storage/textfile.h"
#include "support/scratchfolder.h"

#include <QFile>
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
