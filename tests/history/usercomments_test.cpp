#include "history/usercomments.h"
#include "support/scratchfolder.h"

#include <QFile>
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

TEST(CommentRows, EachLineIsTakenWholeAndRowsSortByTheTimeText) {
    const QString t = "03/02/2012 07:05:09\t";
    const struct {
        const char* name;
        QByteArray file;
        QStringList rows;
    } rows[] = {
        {"one character", "03/02/2012 07:05:09 x\r\n", {t + "x"}},
        {"commas and quotes", "03/02/2012 07:05:09 a, \"b\", c\r\n", {t + "a, \"b\", c"}},
        {"a TAB spills into another column", "03/02/2012 07:05:09 a\tb", {t + "a\tb"}},
        {"the 20th character is dropped", "03/02/2012 07:05:09Xcomment", {t + "comment"}},
        {"time and separator only", "03/02/2012 07:05:09 ", {t}},
        {"short lines repeat the row before",
         "short\r\n03/02/2012 07:05:09 first\r\n\r\n03/02/2012 07:05:09\r\n03/03/2012 07:05:09 b\r",
         {"", t + "first", t + "first", "03/03/2012 07:05:09\tb"}},
        {"month first across years",
         "12/20/2012 08:00:00 dec\r\n01/05/2013 08:00:00 jan\r\n03/02/2012 07:05:09 mar\r\n",
         {"01/05/2013 08:00:00\tjan", t + "mar", "12/20/2012 08:00:00\tdec"}},
        {"one second, file order",
         "03/02/2012 07:05:10 later\r\n03/02/2012 07:05:09 zeta\r\n03/02/2012 07:05:09 alpha\r\n",
         {t + "zeta", t + "alpha", "03/02/2012 07:05:10\tlater"}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(commentRows(row.file), row.rows);
    }
}

TEST(CommentRowsCache, FollowsTheFileAsItIsCreatedAppendedToAndRemoved) {
    test::ScratchFolder home;
    const QString path = home.file("AB12USEREVENTS.TXT");
    CommentRowsCache cache;
    EXPECT_TRUE(cache.rows(path).isEmpty());
    ASSERT_TRUE(AppendUserComment(at(2012, 3, 2, 7, 5, 9), "one", path).stored());
    EXPECT_EQ(cache.rows(home.file("ab12userevents.txt")),
              QStringList({"03/02/2012 07:05:09\tone"}));
    ASSERT_TRUE(AppendUserComment(at(2012, 1, 1, 0, 0, 0), "new", path).stored());
    EXPECT_EQ(cache.rows(path),
              QStringList({"01/01/2012 00:00:00\tnew", "03/02/2012 07:05:09\tone"}));
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_TRUE(cache.rows(path).isEmpty());
    EXPECT_TRUE(readCommentRows(path).isEmpty());
}

TEST(CommentTime, FormatsTheFileFormAndReadsBothForms) {
    const std::pair<datetime::DateTime, const char*> rows[] = {
        {at(2012, 3, 2, 7, 5, 9), "03/02/2012 07:05:09"},
        {at(2013, 1, 5, 0, 0, 0), "01/05/2013 00:00:00"},
        {at(2012, 12, 20, 13, 0, 1), "12/20/2012 13:00:01"}};
    for (const auto& [time, text] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(formatCommentTime(time), QString::fromLatin1(text));
        EXPECT_EQ(commentCellTime(QString::fromLatin1(text)), time);
        EXPECT_EQ(commentCellTime(datetime::formatGeneral(time)), time);
    }
    for (const char* cell : {"Time", "", "13/02/2012 07:05:09", "note 07:05:09", "x\ty"}) {
        SCOPED_TRACE(cell);
        EXPECT_FALSE(commentCellTime(QString::fromLatin1(cell)));
    }
}

TEST(AppendUserComment, AppendsOneLineByteForByteToWhatIsThere) {
    test::ScratchFolder home;
    const QByteArray old = "01/01/2012 00:00:00 kept as is, no line end";
    home.write("ab12userevents.txt", old);
    const QString path = home.file("AB12USEREVENTS.TXT");
    const auto result = AppendUserComment(at(2012, 3, 2, 7, 5, 9),
                                          QStringLiteral("a\tb, \"c\" \u00E9\u20AC \u2192"), path);
    EXPECT_TRUE(result.stored()) << result.error.toStdString();
    ASSERT_TRUE(AppendUserComment(at(2012, 3, 2, 7, 5, 9), "second", path).stored());
    EXPECT_EQ(home.read("ab12userevents.txt"), old +
                                                   "03/02/2012 07:05:09 a\tb, \"c\" \xE9\x80 ?\r\n"
                                                   "03/02/2012 07:05:09 second\r\n");
    EXPECT_FALSE(QFile::exists(path)) << "no second file in another letter case";
}

// The reasons are the system's own words; what matters is that one is given.
TEST(AppendUserComment, FailuresLeaveTheFileAsItWasAndSayWhy) {
    test::ScratchFolder home;
    const QByteArray old = "01/01/2012 00:00:00 old\r\n";
    const QString path = home.write("AB12USEREVENTS.TXT", old);
    const auto refused = [&](const char* what, const AppendResult& result) {
        SCOPED_TRACE(what);
        EXPECT_FALSE(result.stored());
        EXPECT_FALSE(result.error.isEmpty());
        EXPECT_EQ(home.read("AB12USEREVENTS.TXT"), old);
    };
    refused("no time", AppendUserComment(std::nan(""), "x", home.file("CD34USEREVENTS.TXT")));
    EXPECT_FALSE(QFile::exists(home.file("CD34USEREVENTS.TXT")));
    home.mkdir("EF56USEREVENTS.TXT");
    refused("a folder in its place",
            AppendUserComment(at(2012, 3, 2, 7, 5, 9), "x", home.file("EF56USEREVENTS.TXT")));
    if (QFile::exists("/dev/full"))
        refused("full device", AppendUserComment(at(2012, 3, 2, 7, 5, 9), "x", "/dev/full"));

    // A disk that fills up in the middle of the line: the file size limit stops the write after
    // a few bytes, and the partly written line must be cut off again.
    rlimit saved{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &saved), 0);
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limited = saved;
    limited.rlim_cur = rlim_t(old.size() + 5);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limited), 0);
    const auto full = AppendUserComment(at(2012, 3, 2, 7, 5, 9), "a longer comment", path);
    ::setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);
    refused("disk full in mid-line", full);

    if (::geteuid() != 0) { // the superuser writes read-only files
        ASSERT_TRUE(QFile::setPermissions(path, QFileDevice::ReadOwner));
        refused("read-only file", AppendUserComment(at(2012, 3, 2, 7, 5, 9), "x", path));
    }
}

} // namespace
} // namespace trendax::history
