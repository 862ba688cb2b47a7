#include "chart/statspanel.h"

#include <QCheckBox>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace trendax {
namespace {

TEST(StatsPanel, StartsWithEightRowsShownAndEveryReadoutZero) {
    StatsPanel panel(96);
    for (int i = 0; i < StatsPanel::rowCount; ++i) {
        SCOPED_TRACE(i);
        const StatsRow& row = panel.rows[size_t(i)];
        EXPECT_EQ(row.chkChannelVisible->isChecked(), i < 8);
        EXPECT_EQ(row.lblVar->toolTip(), QStringLiteral("Click to change color."));
        for (const QLabel* readout : {row.lblCursorValue, row.lblMinDisp, row.lblAvgDisp,
                                      row.lblMaxDisp, row.lblMin, row.lblAvg, row.lblMax})
            EXPECT_EQ(readout->text(), QStringLiteral("0"));
    }
}

TEST(StatsPanel, ReportsNameClicksAndVisibilityChangesByRow) {
    StatsPanel panel(96);
    panel.resize(800, 400);
    panel.show();
    QSignalSpy names(&panel, &StatsPanel::nameClicked);
    QSignalSpy boxes(&panel, &StatsPanel::visibilityChanged);
    for (int i : {0, 4, 12}) {
        SCOPED_TRACE(i);
        QTest::mouseClick(panel.rows[size_t(i)].lblVar, Qt::LeftButton);
        ASSERT_EQ(names.size(), 1);
        EXPECT_EQ(names.takeFirst().at(0).toInt(), i);

        QCheckBox* box = panel.rows[size_t(i)].chkChannelVisible;
        const bool before = box->isChecked();
        box->setChecked(!before); // a change by the program reports too
        ASSERT_EQ(boxes.size(), 1);
        const QList<QVariant> args = boxes.takeFirst();
        EXPECT_EQ(args.at(0).toInt(), i);
        EXPECT_EQ(args.at(1).toBool(), !before);
    }
    QTest::mouseClick(panel.rows[3].lblCursorValue, Qt::LeftButton);
    EXPECT_TRUE(names.isEmpty());
}

TEST(StatsPanel, ShowsEachStatisticInItsColumn) {
    StatsPanel panel(96);
    panel.showStatistics(2, {1.234, -2, 3, 4, 5.005, 6, 1234.5678});
    const StatsRow& row = panel.rows[2];
    EXPECT_EQ(row.lblCursorValue->text(), QStringLiteral("1.23"));
    EXPECT_EQ(row.lblMinDisp->text(), QStringLiteral("-2.00"));
    EXPECT_EQ(row.lblAvgDisp->text(), QStringLiteral("3.00"));
    EXPECT_EQ(row.lblMaxDisp->text(), QStringLiteral("4.00"));
    EXPECT_EQ(row.lblMin->text(), QStringLiteral("5.01"));
    EXPECT_EQ(row.lblAvg->text(), QStringLiteral("6.00"));
    EXPECT_EQ(row.lblMax->text(), QStringLiteral("1234.57"));
    EXPECT_EQ(panel.rows[1].lblMax->text(), QStringLiteral("0"));
}

} // namespace
} // namespace trendax
