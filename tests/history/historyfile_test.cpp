#include "history/eventcodes.h"
#include "history/historyfile.h"
#include "support/scratchfolder.h"

#include <gtest/gtest.h>
#include <tuple>

namespace trendax::history {
namespace {

// Every code of the controllers' table as "code=text shown in the history list". Rows that
// repeat an earlier code are never reached and show the earlier row's text.
const char* const shown[] = {
    "OLD=Overload", "ULD=Underload", "CUB=Current Imbalance", "OVT=Overvoltage", "UVT=Undervoltage",
    "ROT=Rotation Error", "DI1=Digital Input One", "DI2=Digital Input Two", "A1Hi=Analog One High",
    "A1Lo=Analog One Low", "MAN=Switch to Manual", "PUV=Power Restored", "PWRF=Power Failed",
    "MSTR=Manual Start", "ASTR=Auto Start", "RSTR=Remote Start", "RSTO=Remote Stop",
    "HI21=ORB Intake Pressure High", "HI22=ORB Winding Temp. High", "HI23=ORB X Vibration High",
    "HI24=ORB Y Vibration High", "HI25=ORB Discharge Pressure High", "HI26=ORB Discharge Temp High",
    "HI27=ORB Expansion High", "HI28=ORB Intake Temp.  Low", "HI29=ORB Intake Pressure  Low",
    "HI30=ORB Winding Temp Low", "HI31=ORB X Vibration Low", "HI32=ORB Y Vibration Low",
    "HI33=ORB Discharge Pressure Low", "HI34=ORB Discharge Temp Low", "HI35=ORB Expansion Low",
    "HI36=Rem Comms Connect", "HI37=Rem Comms Lost", "HI38=Rem Lockout Clear", "HI63=--",
    "HIMIN=First code", "IUB=Current Unbalance", "OV=Voltage Too High", "UV=Voltage Too Low",
    "Di 1=Dig. Input 1", "Di 2=Dig. Input 2", "Ai1 Hi=Analog 1 High", "MnStop=Manual Stop",
    "Pwr On=Power Restored", "PwrOff=Power Fail", "Brown=Brown-out", "MnStrt=Manual Start",
    "AuStrt=Auto Start", "RmStrt=Remote Start", "RmStop=Remote Stop",
    "BHT Hi=Orb Intake Temp. High", "BHP Hi=Orb Pressure High", "MT  Hi=Orb Winding Temp. High",
    "CH4 Hi=Orb Vibration X High", "CH5 Hi=Orb Vibration Y High", "DSPIHi=Orb Discharge Press High",
    "CH7 Hi=Orb Discharge Temp High", "CH8 Hi=Orb Spare High", "BHT Lo=Orb Intake Temp. Low",
    "BHP Lo=Orb Pressure Low", "MT  Lo=Orb Winding Temp. Low", "CH4 Lo=Orb Vibration X Low",
    "CH5 Lo=Orb Vibration Y Low", "DSPILo=Orb Discharge Press Low", "CH7 Lo=Orb Discharge Temp Low",
    "CH8 Lo=Orb Spare Low", "RMComm=Remote Comms connected", "RMLost=Remote Comms Lost",
    "RMClr=Lockout Cleared Remotely", "Ai2 Hi=Analog 2 High", "None=Nothing stored",
    "HIMAX=Last code",
    // Kept as field engineers know them: HI20's row is padded and never matches, "Ai2 Lo" reads
    // Analog 1, the first "VUB" row wins; codes match exactly, inner blanks and case included.
    "HI20=History Event (HI20)", "Ai2 Lo=Analog 1 Low", "Ai1 Lo=History Event (Ai1 Lo)",
    "VUB=Voltage Imbalance", "MT Hi=History Event (MT Hi)", "old=History Event (old)",
    "XYZ9=History Event (XYZ9)"};

// Each code as it arrives in a history line, its code column padded to eight.
TEST(EventCodes, EveryCodeShowsItsTextInTheHistoryList) {
    for (const char* row : shown) {
        SCOPED_TRACE(row);
        const QStringList codeText = QString::fromLatin1(row).split('=');
        ASSERT_EQ(codeText.size(), 2);
        const QString line = codeText[0].leftJustified(8) + "03/15 10:22:33 AAAABBBB";
        EXPECT_EQ(HistoryEventText(line, u"12"), "03/15/12 10:22:33 - " + codeText[1]);
    }
}

// Rows no trimmed code reaches stay in the table as the manuals print them.
TEST(EventCodes, RowsNeverReachedStayInTheTable) {
    const auto table = eventCodeTable();
    ASSERT_EQ(table.size(), 81u);
    const std::tuple<size_t, const char*, const char*> rows[] = {
        {18, "HI20    ", "ORB Intake Temp. High"},
        {39, "OLD", "Overload"},
        {40, "ULD", "Underload"},
        {44, "VUB", "Voltage Unbalance"},
        {45, "ROT", "Rotation Error"},
        {78, "Ai2 Lo", "Analog 2 Low"}};
    for (const auto& [i, code, text] : rows) {
        SCOPED_TRACE(i);
        EXPECT_STREQ(table[i].code, code);
        EXPECT_STREQ(table[i].text, text);
    }
}

TEST(HistoryLine, DecodesToTheListEntry) {
    const struct {
        const char* name;
        const char* line;
        const char* entry; // nullptr: the line cannot be decoded
    } rows[] = {
        {"padded code, flags", "OLD     03/15 10:22:33 A/B/C", "03/15/12 10:22:33 - Overload"},
        {"narrower code column", "OLD03/15 10:22:33", "03/15/12 10:22:33 - Overload"},
        {"wider code column", "MnStop      12/31 23:59:59 x", "12/31/12 23:59:59 - Manual Stop"},
        {"leading blanks", "  PwrOff  01/02 03:04:05", "01/02/12 03:04:05 - Power Fail"},
        {"slash at third column", "03/15 10:22:33", "03/15/12 10:22:33 - History Event ()"},
        {"short line", "OLD     03/1", "03/1/12 - Overload"},
        {"no slash", "OLD     0315 10:22:33", nullptr},
        {"slash in first column", "/OLD    03/15 10:22:33", nullptr},
        {"slash in second column", "O/LD    03/15 10:22:33", nullptr},
        {"empty", "", nullptr}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto entry = HistoryEventText(QString::fromLatin1(row.line), u"12");
        if (row.entry)
            EXPECT_EQ(entry, QString::fromLatin1(row.entry));
        else
            EXPECT_FALSE(entry) << entry->toStdString();
    }
}

TEST(HistoryEntries, EveryLineButALonelyOneYieldsAnEntry) {
    const QString old = "03/15/12 10:22:33 - Overload", puv = "03/15/12 11:00:00 - Power Restored";
    const QByteArray two = "OLD     03/15 10:22:33\r\nPUV     03/15 11:00:00\r\n";
    const struct {
        const char* name;
        QByteArray file;
        QStringList entries;
    } rows[] = {{"empty", "", {}},
                {"one line", "OLD     03/15 10:22:33\r\n", {}},
                {"one line and blank lines", "OLD     03/15 10:22:33\r\n\r\n   \r\n", {}},
                {"two lines", two, {old, puv}},
                {"LF", "OLD     03/15 10:22:33\nPUV     03/15 11:00:00", {old, puv}},
                {"CR", "OLD     03/15 10:22:33\rPUV     03/15 11:00:00\r", {old, puv}},
                {"byte order mark", "\xEF\xBB\xBF" + two, {old, puv}},
                {"blank lines",
                 "\r\nOLD     03/15 10:22:33\r\n\r\n\t \r\nPUV     03/15 11:00:00\r\n\r\n",
                 {old, puv}},
                {"undecodable lines repeat the entry before",
                 "garbage\r\nOLD     03/15 10:22:33\r\nno slash\r\n/\r\nPUV     03/15 11:00:00\r\n",
                 {"", old, old, old, puv}},
                {"NUL and Windows-1252 bytes stay in the code",
                 QByteArray("O\0D     03/15 10:22:33\r\n\x80\xE9      03/15 11:00:00\r\n", 48),
                 {QStringLiteral("03/15/12 10:22:33 - History Event (O") + QChar(0) + "D)",
                  QStringLiteral("03/15/12 11:00:00 - History Event (\u20AC\u00E9)")}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(historyEntries(row.file, u"12"), row.entries);
    }
}

TEST(HistoryFile, TheYearComesFromTheNameMatchedInAnyCase) {
    test::ScratchFolder home;
    home.write("AB12031599.TXT", "OLD     03/15 10:22:33\r\nPUV     03/15 11:00:00\r\n");
    EXPECT_EQ(readHistoryFile(home.file("ab12031599.txt")),
              QStringList({"03/15/99 10:22:33 - Overload", "03/15/99 11:00:00 - Power Restored"}));
    // Missing, or a folder in the file's place: nothing.
    home.mkdir("AB12031512.TXT");
    EXPECT_TRUE(readHistoryFile(home.file("AB12031512.txt")).isEmpty());
    EXPECT_TRUE(readHistoryFile(home.file("AB12031612.txt")).isEmpty());
}

TEST(HistoryEntryTime, ReadsTheFirstSeventeenCharacters) {
    EXPECT_EQ(historyEntryTime(u"03/15/12 10:22:33 - Overload"),
              datetime::fromDateTime(2012, 3, 15, 10, 22, 33));
    EXPECT_EQ(historyEntryTime(u"12/31/99 23:59:59 - Power Fail"),
              datetime::fromDateTime(1999, 12, 31, 23, 59, 59));
    for (const char* entry : {"", "03/1/12 - Overload", "02/30/12 10:22:33 - Overload",
                              "03/15/12 24:00:00 - Overload"}) {
        SCOPED_TRACE(entry);
        EXPECT_FALSE(historyEntryTime(QString::fromLatin1(entry)));
    }
}

} // namespace
} // namespace trendax::history
