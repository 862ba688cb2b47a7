#include "history/historyfile.h"
#include "support/scratchfolder.h"

#include <gtest/gtest.h>

namespace trendax::history {
namespace {

struct LineCase {
    const char* name;
    QByteArray line;
    const char* entry; // nullptr: the line cannot be decoded
};

class HistoryLine : public testing::TestWithParam<LineCase> {};

TEST_P(HistoryLine, DecodesToTheListEntry) {
    const auto entry = HistoryEventText(QString::fromLatin1(GetParam().line), u"12");
    if (!GetParam().entry) {
        EXPECT_FALSE(entry) << entry->toStdString();
        return;
    }
    ASSERT_TRUE(entry);
    EXPECT_EQ(*entry, QString::fromLatin1(GetParam().entry));
}

INSTANTIATE_TEST_SUITE_P(
    Lines, HistoryLine,
    testing::Values(LineCase{"CodePaddedToEight", "OLD     03/15 10:22:33 0000000000000000000000",
                             "03/15/12 10:22:33 - Overload"},
                    LineCase{"CodeWithoutPadding", "OLD03/15 10:22:33",
                             "03/15/12 10:22:33 - Overload"},
                    LineCase{"WiderCodeColumn", "MnStop      12/31 23:59:59 x",
                             "12/31/12 23:59:59 - Manual Stop"},
                    LineCase{"LeadingBlanksTrimmed", "  PwrOff  01/02 03:04:05",
                             "01/02/12 03:04:05 - Power Fail"},
                    LineCase{"UnknownCodeShown", "ZZZ     03/15 10:22:33",
                             "03/15/12 10:22:33 - History Event (ZZZ)"},
                    LineCase{"FlagsNeverShown", "OLD     03/15 10:22:33 A/B/C/D",
                             "03/15/12 10:22:33 - Overload"},
                    LineCase{"SlashAtThirdColumnHasNoCode", "03/15 10:22:33",
                             "03/15/12 10:22:33 - History Event ()"},
                    LineCase{"ShortLineKeepsWhatThereIs", "OLD     03/1", "03/1/12 - Overload"},
                    LineCase{"NoSlash", "OLD     0315 10:22:33", nullptr},
                    LineCase{"SlashInFirstColumn", "/OLD    03/15 10:22:33", nullptr},
                    LineCase{"SlashInSecondColumn", "O/LD    03/15 10:22:33", nullptr},
                    LineCase{"EmptyLine", "", nullptr}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(HistoryEntries, OneLineFileYieldsNothingTwoLinesYieldBothInOrder) {
    EXPECT_TRUE(historyEntries("OLD     03/15 10:22:33\r\n", u"12").isEmpty());
    EXPECT_TRUE(historyEntries("OLD     03/15 10:22:33\r\n\r\n   \r\n", u"12").isEmpty());
    EXPECT_TRUE(historyEntries("", u"12").isEmpty());
    EXPECT_EQ(historyEntries("OLD     03/15 10:22:33\r\nPUV     03/15 11:00:00\r\n", u"12"),
              QStringList({"03/15/12 10:22:33 - Overload", "03/15/12 11:00:00 - Power Restored"}));
}

TEST(HistoryEntries, UndecodableLinesRepeatTheEntryBefore) {
    const QByteArray file = "garbage\r\n"
                            "OLD     03/15 10:22:33\r\n"
                            "no slash here\r\n"
                            "/\r\n"
                            "PUV     03/15 11:00:00\r\n";
    EXPECT_EQ(historyEntries(file, u"12"),
              QStringList({"", "03/15/12 10:22:33 - Overload", "03/15/12 10:22:33 - Overload",
                           "03/15/12 10:22:33 - Overload", "03/15/12 11:00:00 - Power Restored"}));
}

TEST(HistoryEntries, EveryLineEndAndByteOrderMarkReadAlike) {
    const QStringList expected = {"03/15/12 10:22:33 - Overload",
                                  "03/15/12 11:00:00 - Power Restored"};
    const std::pair<const char*, QByteArray> files[] = {
        {"crlf", "OLD     03/15 10:22:33\r\nPUV     03/15 11:00:00\r\n"},
        {"lf", "OLD     03/15 10:22:33\nPUV     03/15 11:00:00"},
        {"cr", "OLD     03/15 10:22:33\rPUV     03/15 11:00:00\r"},
        {"bom", "\xEF\xBB\xBFOLD     03/15 10:22:33\r\nPUV     03/15 11:00:00\r\n"},
        {"blank lines", "\r\nOLD     03/15 10:22:33\r\n\r\n\t \r\nPUV     03/15 11:00:00\r\n\r\n"},
    };
    for (const auto& [name, bytes] : files) {
        SCOPED_TRACE(name);
        EXPECT_EQ(historyEntries(bytes, u"12"), expected);
    }
}

TEST(HistoryEntries, NulAndWindows1252BytesStayInTheCode) {
    const QByteArray file("O\0D     03/15 10:22:33\r\n\x80\xE9      03/15 11:00:00\r\n", 48);
    EXPECT_EQ(historyEntries(file, u"12"),
              QStringList({QStringLiteral("03/15/12 10:22:33 - History Event (O") + QChar(0) + "D)",
                           QStringLiteral("03/15/12 11:00:00 - History Event (\u20AC\u00E9)")}));
}

TEST(HistoryFile, TheYearComesFromTheNameAndTheNameMatchesAnyCase) {
    test::ScratchFolder home;
    const QByteArray bytes = "OLD     03/15 10:22:33\r\nPUV     03/15 11:00:00\r\n";
    home.write("AB12031512.TXT", bytes);
    home.write("AB12031599.TXT", bytes);
    EXPECT_EQ(historyYear(home.file("AB12031512.txt")), "12");
    const QStringList twelve = readHistoryFile(home.file("AB12031512.txt"));
    ASSERT_EQ(twelve.size(), 2);
    EXPECT_EQ(twelve[0], "03/15/12 10:22:33 - Overload");
    const QStringList ninetyNine = readHistoryFile(home.file("ab12031599.txt"));
    ASSERT_EQ(ninetyNine.size(), 2);
    EXPECT_EQ(ninetyNine[1], "03/15/99 11:00:00 - Power Restored");
}

TEST(HistoryFile, MissingOrUnreadableFileYieldsNothing) {
    test::ScratchFolder home;
    home.mkdir("AB12031512.TXT");
    EXPECT_TRUE(readHistoryFile(home.file("AB12031512.txt")).isEmpty());
    EXPECT_TRUE(readHistoryFile(home.file("AB12031612.txt")).isEmpty());
}

struct TimeCase {
    const char* name;
    const char* entry;
    std::optional<datetime::DateTime> time;
};

class HistoryEntryTime : public testing::TestWithParam<TimeCase> {};

TEST_P(HistoryEntryTime, ReadsTheFirstSeventeenCharacters) {
    EXPECT_EQ(historyEntryTime(QString::fromLatin1(GetParam().entry)), GetParam().time);
}

INSTANTIATE_TEST_SUITE_P(
    Entries, HistoryEntryTime,
    testing::Values(TimeCase{"Event", "03/15/12 10:22:33 - Overload",
                             datetime::fromDateTime(2012, 3, 15, 10, 22, 33)},
                    TimeCase{"YearBeforeTwoThousand", "12/31/99 23:59:59 - Power Fail",
                             datetime::fromDateTime(1999, 12, 31, 23, 59, 59)},
                    TimeCase{"LastYearOfTheWindow", "01/01/29 00:00:00 - x",
                             datetime::fromDateTime(2029, 1, 1, 0, 0, 0)},
                    TimeCase{"FirstYearOfTheCentury", "01/01/30 00:00:00 - x",
                             datetime::fromDateTime(1930, 1, 1, 0, 0, 0)},
                    TimeCase{"EmptyEntry", "", std::nullopt},
                    TimeCase{"ShortLineEntry", "03/1/12 - Overload", std::nullopt},
                    TimeCase{"NoSuchDay", "02/30/12 10:22:33 - Overload", std::nullopt},
                    TimeCase{"NoSuchHour", "03/15/12 24:00:00 - Overload", std::nullopt}),
    [](const auto& info) { return std::string(info.param.name); });

} // namespace
} // namespace trendax::history
