#include "opendlg/sitetree.h"
#include "support/scratchfolder.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace trendax;
using trendax::test::ScratchFolder;

namespace {

// The whole tree in one line: "AB01: 031512 031612 | CD02: 010113".
QString outline(const sitetree::Tree& tree) {
    QStringList sites;
    for (const auto& site : tree.sites) {
        QString text = site.code + ":";
        for (const auto& day : site.days)
            text += " " + day.text;
        sites << text;
    }
    return sites.join(" | ");
}

} // namespace

TEST(SiteTree, MixedHomeFolderGivesOneNodePerSiteAndDay) {
    ScratchFolder home;
    for (const char* name :
         {"CD02010113.CSV", "AB01031612.csv", "AB01031512.CSV", "ab01031512.csv", "CD02123112.CSV",
          "EF03.CSV", "YR01123129.CSV", "YR01010130.CSV", "YR01063000.CSV", "AB01031512.TXT",
          "Schema.ini", "AB01USEREVENTS.TXT", "notes.doc"})
        home.write(name, "x");
    home.mkdir("ZZ99010112.CSV"); // a folder, not a data log

    const sitetree::Tree tree = sitetree::build(home.path());
    // The same day in two letter cases is listed once; days come in calendar order by the
    // two-digit year rule (December 2012 before January 2013, 1930 before 2000 before 2029);
    // with four characters before ".CSV" the day text is what stands from position 5 on.
    EXPECT_EQ(outline(tree), "AB01: 031512 031612 | CD02: 123112 010113 | EF03: .CSV | "
                             "YR01: 010130 063000 123129");
    EXPECT_EQ(tree.sites[0].key, "mAB01");
    EXPECT_EQ(tree.sites[0].days[0].key, "mdAB01031512");
    EXPECT_FALSE(tree.failure);
}

TEST(SiteTree, ShortNamesAreTakenAsTheyCome) {
    const auto noCopy = [](const QString&, const QString&) { return QString(); };
    EXPECT_EQ(outline(sitetree::buildFromNames({".CSV", "A.CSV", "AB01031512.CSV"}, noCopy)),
              ".CSV:  | A.CS: V | AB01: 031512");
}

TEST(SiteTree, HistoryFilesGetTextWorkingCopies) {
    ScratchFolder home;
    home.write("GH04031512.HST", "upper");
    home.write("gh05031512.hst", "lower");
    home.write("GH06031512.HST", "new");
    home.write("GH06031512.TXT", "old"); // replaced although its suffix is in capitals
    home.write("GH04031512.CSV", "x");

    EXPECT_EQ(outline(sitetree::build(home.path())), "GH04: 031512");
    EXPECT_EQ(home.read("GH04031512.txt"), "upper");
    EXPECT_EQ(home.read("gh05031512.txt"), "lower");
    EXPECT_EQ(home.read("GH06031512.TXT"), "new");
    // The originals stay, and no temporary files are left behind.
    EXPECT_EQ(QDir(home.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name),
              (QStringList{"GH04031512.CSV", "GH04031512.HST", "GH04031512.txt", "GH06031512.HST",
                           "GH06031512.TXT", "gh05031512.hst", "gh05031512.txt"}));
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
    EXPECT_EQ(outline(late), "AA01: 010112 | BB01: 010112");
    EXPECT_FALSE(late.failure);
}

TEST(SiteTreeKeys, DayKeysGiveCalendarDates) {
    const struct {
        const char* key;
        std::optional<datetime::DateTime> date;
    } rows[] = {
        {"mdAB01031512", datetime::fromDate(2012, 3, 15)},
        {"mdAB01123199", datetime::fromDate(1999, 12, 31)},
        {"mdAB01022900", datetime::fromDate(2000, 2, 29)},
        {"mdAB01022901", std::nullopt}, // no 29 February in 2001
        {"mdAB01133112", std::nullopt}, // month 13
        {"mdEF03.CSV", std::nullopt},
        {"mdAB01 31512", std::nullopt},
        {"md", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(sitetree::dateOfDayKey(row.key), row.date) << row.key;
}
