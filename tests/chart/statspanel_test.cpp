#include "chart/statspanel.h"

#include <QCheckBox>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace trendax {
namespace {

// The seven read-outs of a row, left to right.
QStringList readouts(const StatsRow& row) {
    QStringList texts;
    for (const QLabel* l : {row.lblCursorValue, row.lblMinDisp, row.lblAvgDisp, row.lblMaxDisp,
                            row.lblMin, row.lblAvg, row.lblMax})
        texts << l->text();
    return texts;
}

TEST(StatsPanel, StartsWithEightRowsCheckedAndEveryReadoutZero) {
    StatsPanel panel(96);
    for (int i = 0; i < StatsPanel::rowCount; ++i) {
        SCOPED_TRACE(i);
        const StatsRow& row = panel.rows[size_t(i)];
        EXPECT_EQ(row.chkChannelVisible->isChecked(), i < 8);
        EXPECT_EQ(row.lblVar->toolTip(), QStringLiteral("Click to change color."));
        EXPECT_EQ(readouts(row), QStringList(7, "0"));
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
        EXPECT_EQ(boxes.takeFirst(), (QList<QVariant>{i, !before}));
    }
    QTest::mouseClick(panel.rows[3].lblCursorValue, Qt::LeftButton);
    EXPECT_TRUE(names.isEmpty());
}

TEST(StatsPanel, ShowsEachStatisticInItsColumn) {
    StatsPanel panel(96);
    panel.showStatistics(2, {1.234, -2, 3, 4, 5.005, 6, 1234.5678});
    EXPECT_EQ(readouts(panel.rows[2]),
              (QStringList{"1.23", "-2.00", "3.00", "4.00", "5.01", "6.00", "1234.57"}));
    EXPECT_EQ(readouts(panel.rows[1]), QStringList(7, "0"));
}

} // namespace
} // namespace trendax
