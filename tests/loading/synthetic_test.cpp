#include "loading/datalog.h"
#include "support/scratchfolder.h"
#include "synthetic.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <gtest/gtest.h>

namespace trendax {
namespace {

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

TEST(Generator, EveryChannelSetReadsWithoutBadRowsInBothTimeForms) {
    for (const int channels : {1, 5, 8, 13}) {
        for (const gen::TimeForm form : {gen::TimeForm::Hundredths, gen::TimeForm::AmPm}) {
            gen::SiteSpec siteSpec;
            siteSpec.channels = channels;
            siteSpec.timeForm = form;
            siteSpec.rowsPerDay = 1440;
            LoadState state;
            const DataLogResult r = parseDataLog(gen::dataLogDay(siteSpec, 0), state);
            EXPECT_EQ(r.fieldCount, channels + 3);
            EXPECT_EQ(r.rowCount, 1440);
            EXPECT_EQ(r.badRowCount, 0);
            // One row a minute, from midnight to 23:59, in order.
            EXPECT_NEAR(state.XMax - state.XMin, 1439.0 / 1440.0, 1e-9);
        }
    }
}

TEST(Generator, MotorCurrentsStartStopAndSpike) {
    gen::SiteSpec siteSpec;
    siteSpec.channels = 5;
    siteSpec.days = 1;
    LoadState state;
    const DataLogResult r = parseDataLog(gen::dataLogDay(siteSpec, 0), state);
    const XYArray& phaseA = *r.channels[0];
    double peak = 0, running = 0;
    std::size_t stopped = 0, on = 0;
    for (std::size_t i = 0; i < phaseA.count(); ++i) {
        const double a = phaseA.y(i);
        peak = std::max(peak, a);
        if (a == 0)
            ++stopped;
        else
            running += a, ++on;
    }
    ASSERT_GT(on, 0u);
    EXPECT_GT(stopped, 0u);
    EXPECT_GT(peak, 2.5 * running / double(on)); // inrush at the starts
    EXPECT_GT(r.channels[3]->y(0), 400.0);       // line voltage
}

TEST(Generator, HistoryLinesHaveTheControllersFixedColumns) {
    gen::SiteSpec siteSpec;
    const QList<QByteArray> lines = gen::historyDay(siteSpec, 0).split('\n');
    ASSERT_GE(lines.size(), 3);
    for (const QByteArray& raw : lines) {
        if (raw.isEmpty())
            continue;
        const QByteArray line = raw.chopped(1); // the CR
        EXPECT_EQ(line.size(), 46) << line.constData();
        EXPECT_EQ(line.indexOf('/'), 10) << line.constData();
        EXPECT_EQ(line.mid(8, 5), QByteArray("03/15"));
    }
}

TEST(Generator, WritesHomeAndControllerNames) {
    test::ScratchFolder dir;
    gen::SiteSpec siteSpec;
    siteSpec.rowsPerDay = 10;
    siteSpec.days = 2;
    ASSERT_TRUE(gen::writeSite(siteSpec, dir.file("app")));
    EXPECT_EQ(
        QDir(dir.file("app/logfiles")).entryList(QDir::Files),
        (QStringList{"AB12031512.CSV", "AB12031512.TXT", "AB12031612.CSV", "AB12031612.TXT"}));
    EXPECT_EQ(dir.read("app/cnffiles/AB12SCAL.TXT"), QByteArray("2\r\n"));
    EXPECT_EQ(dir.read("app/cnffiles/AB12OFFS.TXT"), QByteArray("-1\r\n"));

    siteSpec.naming = gen::Naming::Controller;
    ASSERT_TRUE(gen::writeSite(siteSpec, dir.file("media")));
    EXPECT_EQ(QDir(dir.file("media")).entryList(QDir::Files),
              (QStringList{"AB120315.CSV", "AB120315.HST", "AB120316.CSV", "AB120316.HST",
                           "AB12OFFS.TXT", "AB12SCAL.TXT"}));
}

} // namespace
} // namespace trendax
