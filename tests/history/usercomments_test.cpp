#include "history/usercomments.h"
#include "support/scratchfolder.h"

#include <QFile>
#include <QFileInfo>
#include <cmath>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

namespace trendax::history {
namespace {

datetime::DateTime at(int y, int mo, int d, int h, int mi, int s) {
    return *datetime::fromDateTime(y, mo, d, h, mi, s);
}

struct SplitCase {
    const char* name;
    const char* line;
    const char* row; // nullptr: too short to split
};

class CommentLine : public testing::TestWithParam<SplitCase> {};

TEST_P(CommentLine, SplitsIntoTimeAndComment) {
    const auto row = SplitCommentLine(QString::fromLatin1(GetParam().line));
    if (!GetParam().row) {
        EXPECT_FALSE(row);
        return;
    }
    ASSERT_TRUE(row);
    EXPECT_EQ(*row, QString::fromLatin1(GetParam().row));
}

INSTANTIATE_TEST_SUITE_P(
    Lines, CommentLine,
    testing::Values(
        SplitCase{"Comment", "03/02/2012 07:05:09 pump pulled", "03/02/2012 07:05:09\tpump pulled"},
        SplitCase{"OneCharacter", "03/02/2012 07:05:09 x", "03/02/2012 07:05:09\tx"},
        SplitCase{"CommasAndQuotesWhole", "03/02/2012 07:05:09 a, \"b\", c",
                  "03/02/2012 07:05:09\ta, \"b\", c"},
        SplitCase{"TabSpillsIntoAnotherColumn", "03/02/2012 07:05:09 a\tb",
                  "03/02/2012 07:05:09\ta\tb"},
        SplitCase{"TwentiethCharacterDropped", "03/02/2012 07:05:09Xcomment",
                  "03/02/2012 07:05:09\tcomment"},
        SplitCase{"TimeAndSeparatorOnly", "03/02/2012 07:05:09 ", "03/02/2012 07:05:09\t"},
        SplitCase{"TimeWithoutComment", "03/02/2012 07:05:09", nullptr},
        SplitCase{"HandEditedShortLine", "note", nullptr}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(CommentRows, SortByTheTimeTextMonthFirstAcrossYears) {
    const QByteArray file = "12/20/2012 08:00:00 december\r\n"
                            "01/05/2013 08:00:00 january\r\n"
                            "03/02/2012 07:05:09 march\r\n";
    EXPECT_EQ(commentRows(file),
              QStringList({"01/05/2013 08:00:00\tjanuary", "03/02/2012 07:05:09\tmarch",
                           "12/20/2012 08:00:00\tdecember"}));
}

TEST(CommentRows, TwoCommentsOfOneSecondBothStayInFileOrder) {
    QByteArray file;
    for (const char* c : {"zeta", "alpha", "mid"}) {
        file += "03/02/2012 07:05:09 ";
        file += c;
        file += "\r\n";
    }
    file.prepend("03/02/2012 07:05:10 later\r\n");
    EXPECT_EQ(commentRows(file),
              QStringList({"03/02/2012 07:05:09\tzeta", "03/02/2012 07:05:09\talpha",
                           "03/02/2012 07:05:09\tmid", "03/02/2012 07:05:10\tlater"}));
}

TEST(CommentRows, ShortLinesRepeatTheRowBeforeAndBlankLinesAreNoLines) {
    const QByteArray file = "short\r\n"
                            "03/02/2012 07:05:09 first\r\n"
                            "\r\n"
                            "03/02/2012 07:05:1\r\n"
                            "03/03/2012 07:05:09 second\r";
    EXPECT_EQ(commentRows(file),
              QStringList({"", "03/02/2012 07:05:09\tfirst", "03/02/2012 07:05:09\tfirst",
                           "03/03/2012 07:05:09\tsecond"}));
}

TEST(CommentRows, MissingFileHasNoRows) {
    test::ScratchFolder home;
    EXPECT_TRUE(readCommentRows(home.file("AB12USEREVENTS.TXT")).isEmpty());
    CommentRowsCache cache;
    EXPECT_TRUE(cache.rows(home.file("AB12USEREVENTS.TXT")).isEmpty());
}

TEST(CommentRowsCache, RereadsAChangedFileAndOnlyThen) {
    test::ScratchFolder home;
    const QString path = home.write("AB12USEREVENTS.TXT", "03/02/2012 07:05:09 one\r\n");
    CommentRowsCache cache;
    EXPECT_EQ(cache.rows(home.file("ab12userevents.txt")),
              QStringList({"03/02/2012 07:05:09\tone"}));

    // Same size and time stamp: taken as unchanged, the rows read before are given again.
    const QDateTime stamp = QFileInfo(path).lastModified();
    home.write("AB12USEREVENTS.TXT", "03/02/2012 07:05:09 two\r\n");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(stamp, QFileDevice::FileModificationTime));
    file.close();
    EXPECT_EQ(cache.rows(path), QStringList({"03/02/2012 07:05:09\tone"}));

    ASSERT_TRUE(AppendUserComment(at(2012, 1, 1, 0, 0, 0), "new", path).stored());
    EXPECT_EQ(cache.rows(path),
              QStringList({"01/01/2012 00:00:00\tnew", "03/02/2012 07:05:09\ttwo"}));

    ASSERT_TRUE(QFile::remove(path));
    EXPECT_TRUE(cache.rows(path).isEmpty());
}

struct TimeCase {
    const char* name;
    datetime::DateTime time;
    const char* text;
};

class CommentTime : public testing::TestWithParam<TimeCase> {};

TEST_P(CommentTime, FormatsAndReadsBack) {
    const QString text = formatCommentTime(GetParam().time);
    EXPECT_EQ(text, QString::fromLatin1(GetParam().text));
    EXPECT_EQ(commentCellTime(text), GetParam().time);
    EXPECT_EQ(commentCellTime(datetime::formatGeneral(GetParam().time)), GetParam().time);
}

INSTANTIATE_TEST_SUITE_P(
    Times, CommentTime,
    testing::Values(TimeCase{"ZeroFilled", at(2012, 3, 2, 7, 5, 9), "03/02/2012 07:05:09"},
                    TimeCase{"Midnight", at(2013, 1, 5, 0, 0, 0), "01/05/2013 00:00:00"},
                    TimeCase{"Afternoon", at(2012, 12, 20, 13, 0, 1), "12/20/2012 13:00:01"},
                    TimeCase{"LastSecondOfTheDay", at(1999, 12, 31, 23, 59, 59),
                             "12/31/1999 23:59:59"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(CommentTime, CellsThatAreNoTimeGiveNone) {
    for (const char* cell : {"Time", "", "13/02/2012 07:05:09", "note 07:05:09", "x\ty"}) {
        SCOPED_TRACE(cell);
        EXPECT_FALSE(commentCellTime(QString::fromLatin1(cell)));
    }
}

TEST(AppendUserComment, AppendsExactlyOneLineToWhatIsThere) {
    test::ScratchFolder home;
    const QByteArray old = "01/01/2012 00:00:00 kept as is, no line end";
    home.write("ab12userevents.txt", old);
    const auto result =
        AppendUserComment(at(2012, 3, 2, 7, 5, 9), "x", home.file("AB12USEREVENTS.TXT"));
    EXPECT_TRUE(result.stored()) << result.error.toStdString();
    EXPECT_EQ(home.read("ab12userevents.txt"), old + "03/02/2012 07:05:09 x\r\n");
    EXPECT_FALSE(QFile::exists(home.file("AB12USEREVENTS.TXT")));
}

TEST(AppendUserComment, CreatesTheFileAndStoresTheCommentByteForByte) {
    test::ScratchFolder home;
    const QString path = home.file("AB12USEREVENTS.TXT");
    const QString comment = QStringLiteral("a\tb, \"c\" \u00E9\u20AC \u2192");
    ASSERT_TRUE(AppendUserComment(at(2012, 3, 2, 7, 5, 9), comment, path).stored());
    ASSERT_TRUE(AppendUserComment(at(2012, 3, 2, 7, 5, 9), "second", path).stored());
    EXPECT_EQ(home.read("AB12USEREVENTS.TXT"),
              QByteArray("03/02/2012 07:05:09 a\tb, \"c\" \xE9\x80 ?\r\n"
                         "03/02/2012 07:05:09 second\r\n"));
    EXPECT_EQ(readCommentRows(path),
              QStringList({"03/02/2012 07:05:09\t" + QStringLiteral("a\tb, \"c\" \u00E9\u20AC ?"),
                           "03/02/2012 07:05:09\tsecond"}));
}

// The reasons are the system's own words; what matters is that one is given.
TEST(AppendUserComment, FailuresLeaveTheFileAsItWasAndSayWhy) {
    test::ScratchFolder home;
    home.mkdir("AB12USEREVENTS.TXT");
    const auto folder =
        AppendUserComment(at(2012, 3, 2, 7, 5, 9), "x", home.file("AB12USEREVENTS.TXT"));
    EXPECT_FALSE(folder.stored());
    EXPECT_FALSE(folder.error.isEmpty());
    EXPECT_TRUE(QFileInfo(home.file("AB12USEREVENTS.TXT")).isDir());

    home.write("logfiles", "a file where the folder should be");
    EXPECT_FALSE(
        AppendUserComment(at(2012, 3, 2, 7, 5, 9), "x", home.file("logfiles/AB12USEREVENTS.TXT"))
            .stored());
    EXPECT_EQ(home.read("logfiles"), QByteArray("a file where the folder should be"));

    if (QFileInfo::exists("/dev/full")) {
        const auto full = AppendUserComment(at(2012, 3, 2, 7, 5, 9), "x", "/dev/full");
        EXPECT_FALSE(full.stored());
        EXPECT_FALSE(full.error.isEmpty());
    }
    EXPECT_FALSE(AppendUserComment(std::nan(""), "x", home.file("CD34USEREVENTS.TXT")).stored());
    EXPECT_FALSE(QFile::exists(home.file("CD34USEREVENTS.TXT")));
}

TEST(AppendUserComment, ReadOnlyFileIsLeftAsItWas) {
    if (::geteuid() == 0)
        GTEST_SKIP() << "the superuser writes read-only files";
    test::ScratchFolder home;
    const QString path = home.write("AB12USEREVENTS.TXT", "01/01/2012 00:00:00 old\r\n");
    ASSERT_TRUE(QFile::setPermissions(path, QFileDevice::ReadOwner));
    const auto result = AppendUserComment(at(2012, 3, 2, 7, 5, 9), "x", path);
    EXPECT_FALSE(result.stored());
    EXPECT_FALSE(result.error.isEmpty());
    EXPECT_EQ(home.read("AB12USEREVENTS.TXT"), QByteArray("01/01/2012 00:00:00 old\r\n"));
}

// A disk that fills up in the middle of the line: the file size limit stops the write after a
// few bytes, and the partial line must be cut off again.
TEST(AppendUserComment, PartlyWrittenLineIsCutOffAgain) {
    test::ScratchFolder home;
    const QByteArray old = "01/01/2012 00:00:00 old\r\n";
    const QString path = home.write("AB12USEREVENTS.TXT", old);
    rlimit saved{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &saved), 0);
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limited = saved;
    limited.rlim_cur = rlim_t(old.size() + 5);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limited), 0);
    const auto result = AppendUserComment(at(2012, 3, 2, 7, 5, 9), "a longer comment", path);
    ::setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);
    EXPECT_FALSE(result.stored());
    EXPECT_FALSE(result.error.isEmpty());
    EXPECT_EQ(home.read("AB12USEREVENTS.TXT"), old);
}

} // namespace
} // namespace trendax::history
