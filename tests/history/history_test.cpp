// History files and the comments file: decoding, sorting, appending; the chart markers they give.
#include "history/eventcodes.h"
#include "history/historyfile.h"
#include "history/markerfeed.h"
#include "history/usercomments.h"
#include "storage/datetime.h"
#include "support/scratchfolder.h"

#include <QFile>
#include <cmath>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <tuple>
#include <unistd.h>

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

TEST(EventCodes, EveryCodeShowsItsTextInTheHistoryList) {
    for (const char* row : shown) {
        SCOPED_TRACE(row);
        const QStringList codeText = QString::fromLatin1(row).split('=');
        const QString line = codeText[0].leftJustified(8) + "03/15 10:22:33 AAAABBBB";
        EXPECT_EQ(HistoryEventText(line, u"12"), "03/15/12 10:22:33 - " + codeText.value(1));
    }
}

TEST(HistoryLine, DecodesToTheListEntry) {
    // Name, line and entry; nullptr: the line cannot be decoded.
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"narrower code column", "OLD03/15 10:22:33", "03/15/12 10:22:33 - Overload"},
        {"wider code column", "MnStop      12/31 23:59:59 x", "12/31/12 23:59:59 - Manual Stop"},
        {"leading blanks", "  PwrOff  01/02 03:04:05", "01/02/12 03:04:05 - Power Fail"},
        {"slash at third column", "03/15 10:22:33", "03/15/12 10:22:33 - History Event ()"},
        {"short line", "OLD     03/1", "03/1/12 - Overload"},
        {"no slash", "OLD     0315 10:22:33", nullptr},
        {"slash in first column", "/OLD    03/15 10:22:33", nullptr},
        {"slash in second column", "O/LD    03/15 10:22:33", nullptr}};
    for (const auto& [name, line, entry] : rows) {
        SCOPED_TRACE(name);
        EXPECT_EQ(HistoryEventText(QString::fromLatin1(line), u"12").value_or("none"),
                  QString::fromLatin1(entry ? entry : "none"));
    }
}

TEST(HistoryEntries, EveryLineButALonelyOneYieldsAnEntry) {
    const QString old = "03/15/12 10:22:33 - Overload", puv = "03/15/12 11:00:00 - Power Restored";
    const QByteArray o = "OLD     03/15 10:22:33", p = "PUV     03/15 11:00:00";
    const std::tuple<const char*, QByteArray, QStringList> rows[] = {
        {"empty", "", {}},
        {"one line and blank lines", o + "\r\n\r\n   \r\n", {}},
        {"LF", o + "\n" + p, {old, puv}},
        {"CR, byte order mark", "\xEF\xBB\xBF" + o + "\r" + p + "\r", {old, puv}},
        {"blank lines", "\r\n" + o + "\r\n\r\n\t \r\n" + p + "\r\n\r\n", {old, puv}},
        {"undecodable lines repeat the entry before",
         "garbage\r\n" + o + "\r\nno slash\r\n/\r\n" + p,
         {"", old, old, old, puv}},
        {"NUL and Windows-1252 bytes stay in the code",
         QByteArray("O\0D     03/15 10:22:33\r\n\x80\xE9      03/15 11:00:00\r\n", 48),
         {QStringLiteral("03/15/12 10:22:33 - History Event (O") + QChar(0) + "D)",
          QStringLiteral("03/15/12 11:00:00 - History Event (\u20AC\u00E9)")}}};
    for (const auto& [name, file, entries] : rows) {
        SCOPED_TRACE(name);
        EXPECT_EQ(historyEntries(file, u"12"), entries);
    }
}

TEST(HistoryFile, TheYearComesFromTheNameMatchedInAnyCase) {
    test::ScratchFolder home;
    home.write("AB12031599.TXT", "OLD     03/15 10:22:33\r\nPUV     03/15 11:00:00\r\n");
    EXPECT_EQ(readHistoryFile(home.file("ab12031599.txt")),
              QStringList({"03/15/99 10:22:33 - Overload", "03/15/99 11:00:00 - Power Restored"}));
    home.mkdir("AB12031512.TXT"); // a folder in the file's place
    EXPECT_TRUE(readHistoryFile(home.file("AB12031512.txt")).isEmpty());
}

datetime::DateTime at(int y, int mo, int d, int h, int mi, int s) {
    return *datetime::fromDateTime(y, mo, d, h, mi, s);
}

TEST(CommentRows, EachLineIsTakenWholeAndRowsSortByTheTimeText) {
    const QString t = "03/02/2012 07:05:09\t";
    const std::tuple<const char*, QByteArray, QStringList> rows[] = {
        {"commas, quotes, TAB; the 20th character dropped",
         "03/02/2012 07:05:09Xa, \"b\"\tc\r\n",
         {t + "a, \"b\"\tc"}},
        {"short lines repeat the row before",
         "short\r\n03/02/2012 07:05:09 first\r\n\r\n03/02/2012 07:05:09\r\n03/03/2012 07:05:09 b\r",
         {"", t + "first", t + "first", "03/03/2012 07:05:09\tb"}},
        {"month first across years, one second in file order",
         "12/20/2012 08:00:00 dec\r\n01/05/2013 08:00:00 jan\r\n03/02/2012 07:05:09 zeta\r\n"
         "03/02/2012 07:05:09 alpha\r\n",
         {"01/05/2013 08:00:00\tjan", t + "zeta", t + "alpha", "12/20/2012 08:00:00\tdec"}}};
    for (const auto& [name, file, expected] : rows) {
        SCOPED_TRACE(name);
        EXPECT_EQ(commentRows(file), expected);
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
    EXPECT_EQ(cache.rows(path).size(), 2);
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_TRUE(cache.rows(path).isEmpty());
}

// Appended byte for byte to what is there, in the file's own letter case; what Windows-1252
// cannot hold becomes "?".
TEST(AppendUserComment, AppendsOneLineToWhatIsThereOrFailsLeavingTheFileAsItWas) {
    test::ScratchFolder home;
    const QByteArray old = "01/01/2012 00:00:00 kept as is, no line end";
    home.write("ab12userevents.txt", old);
    const QString path = home.file("AB12USEREVENTS.TXT");
    const auto appended =
        AppendUserComment(at(2012, 3, 2, 7, 5, 9), QStringLiteral("\u00E9\u20AC \u2192"), path);
    EXPECT_TRUE(appended.stored()) << appended.error.toStdString();
    const QByteArray now = old + "03/02/2012 07:05:09 \xE9\x80 ?\r\n";
    EXPECT_EQ(home.read("ab12userevents.txt"), now);
    EXPECT_FALSE(QFile::exists(path)) << "no second file in another letter case";

    const auto refused = [&](const char* what, const AppendResult& result) {
        SCOPED_TRACE(what);
        EXPECT_FALSE(result.stored());
        EXPECT_FALSE(result.error.isEmpty());
        EXPECT_EQ(home.read("ab12userevents.txt"), now);
    };
    refused("no time", AppendUserComment(std::nan(""), "x", path));
    // A disk that fills up in the middle of the line: the file size limit stops the write after
    // a few bytes, and the partly written line must be cut off again.
    rlimit saved{}, limited{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &saved), 0);
    limited = saved;
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    limited.rlim_cur = rlim_t(now.size() + 5);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limited), 0);
    const auto full = AppendUserComment(at(2012, 3, 2, 7, 5, 9), "a longer comment", path);
    ::setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);
    refused("disk full in mid-line", full);

    if (::geteuid() != 0) { // the superuser writes read-only files
        ASSERT_TRUE(QFile::setPermissions(home.file("ab12userevents.txt"), QFileDevice::ReadOwner));
        refused("read-only file", AppendUserComment(at(2012, 3, 2, 7, 5, 9), "x", path));
    }
}

// ---- Chart markers ----

TEST(EventClasses, EveryListEntryHasTheClassOfItsEvent) {
    const std::pair<EventClass, std::vector<const char*>> groups[] = {
        {EventClass::Fault,
         {"Overload", "Underload", "Current Unbalance", "Power Fail", "Voltage Too Low",
          "Analog 1 Low", "ORB Intake Pressure  Low", "History Event (HI20)"}},
        {EventClass::StartStop, {"Auto Start", "Manual Stop"}},
        {EventClass::Other, {"Power Restored", "Rotation Error", "History Event (old)"}}};
    for (const auto& [expected, texts] : groups)
        for (const char* text : texts) {
            SCOPED_TRACE(text);
            EXPECT_EQ(entryEventClass(QStringLiteral("03/15/12 10:22:33 - ") + text), expected);
        }
    for (const char* entry : {"", "03/15/12 10:22:33", "03/15/12 10:22:33 Overload"}) {
        SCOPED_TRACE(entry);
        EXPECT_EQ(entryEventClass(QString::fromLatin1(entry)), EventClass::Other);
    }
}

// Times are read from entries and from comment cells in the file form and the general form;
// impossible dates and times are none.
TEST(EventMarkerFeed, OneMarkerPerReadableEntryAndCommentRow) {
    const QStringList entries{"03/15/12 10:22:33 - Overload",
                              "",
                              "03/15/12 11:00:00 - Auto Start",
                              "03/15/12 12:00:00 - Digital Input One",
                              "03/1/12 - x",
                              "02/30/12 10:22:33 - x",
                              "03/15/12 24:00:00 - x"};
    const QStringList comments{"Time\tComment", "03/15/2012 09:30:00\tpump pulled\tfor service",
                               "3/16/2012 8:05:00 AM\tback on", "13/02/2012 07:05:09\tx",
                               "note 07:05:09\tx"};
    // Each marker as its second from 03/15/12 00:00, kind, list or grid, row and text.
    const double mar15 = *datetime::fromDate(2012, 3, 15);
    const char* const kinds[] = {"fault", "start/stop", "comment", "other"};
    QStringList found;
    for (const EventMarker& m : eventMarkers(entries, comments))
        found << QString("%1 %2 %3 %4 %5")
                     .arg(std::lround((m.time - mar15) * 86400))
                     .arg(kinds[int(m.kind)])
                     .arg(m.source == MarkerSource::Comment ? "grid" : "list")
                     .arg(m.index)
                     .arg(m.text);
    EXPECT_EQ(found, QStringList({"37353 fault list 0 03/15/12 10:22:33 - Overload",
                                  "39600 start/stop list 2 03/15/12 11:00:00 - Auto Start",
                                  "43200 other list 3 03/15/12 12:00:00 - Digital Input One",
                                  "34200 comment grid 1 pump pulled\tfor service",
                                  "115500 comment grid 2 back on"}))
        << "the entries and rows without a time give none";
}

} // namespace
} // namespace trendax::history
