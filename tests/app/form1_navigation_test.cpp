#include "mainwindowtest.h"

#include <QKeyEvent>

namespace trendax::test {
namespace {

using Navigation = MainWindowTest;

TEST_F(Navigation, HomeZoomsAllAndEachLoadStartsANewHistoryAtItsWholeRange) {
    writeDay("AB12", "031412", 5, 600);
    writeDay("AB12", "031512", 5, 600);
    load("AB12", {"031412", "031512"}, mar14, mar15);
    StripChartModel& chart = w->Strip1->model();
    const auto view = [&chart] { return TimeWindow{chart.xViewStart(), chart.xViewEnd()}; };
    const TimeWindow all{w->XMin, w->XMax};
    // The windows of the first day on the way are not views of the history.
    EXPECT_EQ(view(), all);
    EXPECT_FALSE(chart.backView());

    w->Toolbar1_ButtonClick(QStringLiteral("plus"));
    w->Toolbar1_ButtonMenuClick(QStringLiteral("1hour"));
    const TimeWindow hour = view();
    QTest::keyClick(w->Strip1, Qt::Key_Home);
    EXPECT_EQ(view(), all);
    QTest::keyClick(w->Strip1, Qt::Key_Backspace);
    EXPECT_EQ(view(), hour);
    EXPECT_EQ(chart.viewHistory().size(), 4u);

    load("AB12", {"031512"}, mar15, mar15);
    EXPECT_EQ(chart.viewHistory().size(), 1u);
    EXPECT_EQ(view(), (TimeWindow{w->XMin, w->XMax}));
}

} // namespace
} // namespace trendax::test
