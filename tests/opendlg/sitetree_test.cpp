#include "opendlg/sitetree.h"
#include "support/scratchfolder.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace trendax;
using trendax::test::ScratchFolder;

namespace {

QStringList codes(const sitetree::Tree& tree) {
    QStringList out;
    for (const auto& site : tree.sites)
        out << site.code;
    return out;
}

QStringList days(const sitetree::Tree& tree, const QString& code) {
    QStringList out;
    for (const auto& site : tree.sites) {
        if (site.code == code) {
            for (const auto& day : site.days)
                out << day.text;
        }
    }
    return out;
}

QString noCopyFailure(const QString&, const QString&) {
    return {};
}

} // namespace

TEST(SiteTree, EmptyHomeFolderHasNoSites) {
    ScratchFolder home;
    const sitetree::Tree tree = sitetree::build(home.path());
    EXPECT_TRUE(tree.sites.empty());
    EXPECT_FALSE(tree.failure);
}

TEST(SiteTree, MixedHomeFolderGivesOneNodePerSiteAndDay) {
    ScratchFolder home;
    for (const char* name :
         {"CD02010113.CSV", "AB01031612.csv", "AB01031512.CSV", "ab01031512.csv", "CD02123112.CSV",
          "EF03.CSV", "AB01031512.TXT", "Schema.ini", "AB01USEREVENTS.TXT", "notes.doc"})
        home.write(name, "x");
    home.mkdir("ZZ99010112.CSV"); // a folder, not a data log

    const sitetree::Tree tree = sitetree::build(home.path());
    EXPECT_EQ(codes(tree), (QStringList{"AB01", "CD02", "EF03"}));
    // The same day in two letter cases is listed once.
    EXPECT_EQ(days(tree, "AB01"), (QStringList{"031512", "031612"}));
    // A range across New Year: December 2012 before January 2013, whatever the names' order.
    EXPECT_EQ(days(tree, "CD02"), (QStringList{"123112", "010113"}));
    // Four characters before ".CSV": the day text is what stands from position 5 on.
    EXPECT_EQ(days(tree, "EF03"), (QStringList{".CSV"}));
    EXPECT_EQ(tree.sites[0].key, "mAB01");
    EXPECT_EQ(tree.sites[0].days[0].key, "mdAB01031512");
}

TEST(SiteTree, DaysFollowTheTwoDigitYearRuleNotTheNames) {
    ScratchFolder home;
    home.write("AB01123129.CSV", "x"); // 2029
    home.write("AB01010130.CSV", "x"); // 1930
    home.write("AB01063000.CSV", "x"); // 2000
    const sitetree::Tree tree = sitetree::build(home.path());
    EXPECT_EQ(days(tree, "AB01"), (QStringList{"010130", "063000", "123129"}));
}

TEST(SiteTree, HistoryFilesGetTextWorkingCopies) {
    ScratchFolder home;
    home.write("GH04031512.HST", "upper");
    home.write("gh05031512.hst", "lower");
    home.write("GH06031512.HST", "new");
    home.write("GH06031512.TXT", "old"); // replaced although its suffix is in capitals
    home.write("GH04031512.CSV", "x");

    const sitetree::Tree tree = sitetree::build(home.path());
    EXPECT_EQ(home.read("GH04031512.txt"), "upper");
    EXPECT_EQ(home.read("gh05031512.txt"), "lower");
    EXPECT_EQ(home.read("GH06031512.TXT"), "new");
    EXPECT_FALSE(QFile::exists(home.file("GH06031512.txt")));
    EXPECT_TRUE(QFile::exists(home.file("GH04031512.HST")));
    EXPECT_TRUE(QFile::exists(home.file("gh05031512.hst")));
    EXPECT_EQ(codes(tree), (QStringList{"GH04"}));
    // No temporary files are left behind.
    EXPECT_EQ(QDir(home.path()).entryList(QDir::Files | QDir::Hidden).size(), 7);
}

TEST(SiteTree, CopyFailureBeforeTheFirstDataLogEndsTheWalk) {
    const auto failing = [](const QString&, const QString&) { return QString("disk full"); };
    const sitetree::Tree early =
        sitetree::buildFromNames({"AA01010112.HST", "BB01010112.CSV"}, failing);
    EXPECT_TRUE(early.sites.empty());
    ASSERT_TRUE(early.failure);
    EXPECT_TRUE(early.failure->contains("AA01010112.HST"));
    EXPECT_TRUE(early.failure->contains("disk full"));

    const sitetree::Tree late =
        sitetree::buildFromNames({"AA01010112.CSV", "AA01010112.HST", "BB01010112.CSV"}, failing);
    EXPECT_EQ(codes(late), (QStringList{"AA01", "BB01"}));
    EXPECT_FALSE(late.failure);
}

TEST(SiteTree, ShortNamesAreTakenAsTheyCome) {
    const sitetree::Tree tree =
        sitetree::buildFromNames({".CSV", "A.CSV", "AB01031512.CSV"}, noCopyFailure);
    EXPECT_EQ(codes(tree), (QStringList{".CSV", "A.CS", "AB01"}));
    EXPECT_EQ(days(tree, "A.CS"), (QStringList{"V"}));
    EXPECT_EQ(days(tree, ".CSV"), (QStringList{""}));
}

TEST(SiteTreeKeys, DayKeysGiveCalendarDates) {
    struct Row {
        const char* key;
        std::optional<datetime::DateTime> date;
    };
    const Row rows[] = {
        {"mdAB01031512", datetime::fromDate(2012, 3, 15)},
        {"mdAB01123199", datetime::fromDate(1999, 12, 31)},
        {"mdAB01022900", datetime::fromDate(2000, 2, 29)},
        {"mdAB01022901", std::nullopt}, // no 29 February in 2001
        {"mdAB01133112", std::nullopt}, // month 13
        {"mdEF03.CSV", std::nullopt},
        {"mdAB01 31512", std::nullopt},
        {"md", std::nullopt},
    };
    for (const Row& row : rows)
        EXPECT_EQ(sitetree::dateOfDayKey(row.key), row.date) << row.key;
}
