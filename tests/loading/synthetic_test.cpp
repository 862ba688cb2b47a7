#include "history/historyfile.h"
#include "synthetic.h"

#include <gtest/gtest.h>

namespace trendax {
namespace {

// Benchmarks compare runs over generated sites, so a site must come out the same every time.
// Parsing the generated data logs is covered with the reader's tests.
TEST(Generator, IsDeterministicAndDiffersBySeedAndDay) {
    gen::SiteSpec siteSpec;
    siteSpec.rowsPerDay = 500;
    EXPECT_EQ(gen::dataLogDay(siteSpec, 0), gen::dataLogDay(siteSpec, 0));
    EXPECT_NE(gen::dataLogDay(siteSpec, 0), gen::dataLogDay(siteSpec, 1));
    gen::SiteSpec other = siteSpec;
    other.seed = 2;
    EXPECT_NE(gen::dataLogDay(siteSpec, 0), gen::dataLogDay(other, 0));
    EXPECT_EQ(gen::historyDay(siteSpec, 3), gen::historyDay(siteSpec, 3));
}

TEST(Generator, HistoryLinesDecodeToTimesOfTheirDay) {
    const QByteArray bytes = gen::historyDay(gen::SiteSpec(), 0);
    const QStringList entries = history::historyEntries(bytes, u"12");
    ASSERT_GE(entries.size(), 2);
    EXPECT_EQ(entries.size(), bytes.count('\n'));
    for (const QString& entry : entries) {
        const auto time = history::historyEntryTime(entry);
        ASSERT_TRUE(time) << entry.toStdString();
        EXPECT_EQ(int(*time), 40983) << entry.toStdString(); // 15 March 2012
    }
}

} // namespace
} // namespace trendax
