#include "chart/csvexport.h"
#include "chart/imbalance.h"
#include "chart/stripchartmodel.h"

#include <QBuffer>
#include <gtest/gtest.h>

namespace trendax {
namespace {

constexpr double day = 46296.0; // 2026-10-01
constexpr double second = 1.0 / 86400.0;

// Points of one variable at day + seconds[i] seconds.
XYArray points(const std::vector<double>& seconds, const std::vector<double>& values) {
    XYArray a(2, seconds.size());
    for (std::size_t i = 0; i < seconds.size(); ++i) {
        a.at(0, i) = day + seconds[i] * second;
        a.at(1, i) = values[i];
    }
    return a;
}

QString csvOf(const StripChartModel& model, const std::vector<csvexport::Column>& columns) {
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    EXPECT_TRUE(csvexport::writeVisible(model, columns, out));
    return QString::fromUtf8(out.data());
}

TEST(CsvExport, RowsOfTheVisibleWindowWithEmptyFieldsForMissingPoints) {
    StripChartModel model;
    model.addXYArray(0, points({0, 1, 2, 3, 4}, {1.5, 2.5, 3.5, 4.5, 5.5}));
    model.addXYArray(1, points({1, 3, 5}, {-0.25, 1e-7, 7}));
    model.showXRange(day + 1 * second, day + 3 * second);
    EXPECT_EQ(csvOf(model, {{0, "Phase A"}, {1, QString::fromUtf8("Pressure, \"psi\" é")}}),
              QString::fromUtf8("Time,Controller Time,Phase A,\"Pressure, \"\"psi\"\" é\"\r\n"
                                "2026-10-01T00:00:01,10/01/26 00:00:01,2.5,-0.25\r\n"
                                "2026-10-01T00:00:02,10/01/26 00:00:02,3.5,\r\n"
                                "2026-10-01T00:00:03,10/01/26 00:00:03,4.5,1e-07\r\n"));
}

TEST(CsvExport, HundredthsOfASecondOnlyWhenPresentAndOutOfOrderPointsFilteredByTheWindow) {
    StripChartModel model;
    model.addXYArray(0, points({0.25, 59.996, 61, 130, 121}, {1, 2, 3, 4, 5}));
    model.showXRange(day, day + 125 * second);
    EXPECT_EQ(csvOf(model, {{0, "A"}}).split("\r\n"),
              (QStringList{"Time,Controller Time,A", "2026-10-01T00:00:00.25,10/01/26 00:00:00,1",
                           "2026-10-01T00:01:00,10/01/26 00:01:00,2",
                           "2026-10-01T00:01:01,10/01/26 00:01:01,3",
                           "2026-10-01T00:02:01,10/01/26 00:02:01,5", ""}));
    QBuffer readOnly; // a failed write is reported
    readOnly.open(QIODevice::ReadOnly);
    EXPECT_FALSE(csvexport::writeVisible(model, {{0, "A"}}, readOnly));
}

TEST(Imbalance, PercentOfThePhases) {
    // Phases a, b, c and the imbalance in percent, -1 where there is none.
    const double rows[][4] = {
        {40, 40, 40, 0}, {44, 38, 38, 10}, {30, 45, 45, 25}, {0, 0, 0, -1}, {40, NAN, 40, -1}};
    for (const auto& r : rows)
        EXPECT_NEAR(imbalance::percent(r[0], r[1], r[2]).value_or(-1), r[3], 1e-9) << r[0];
}

TEST(Imbalance, PeakOverTheWindow) {
    // Phases logged together share their time column; phases logged apart are paired with the
    // latest point of the others at or before each time.
    for (const bool together : {true, false}) {
        SCOPED_TRACE(together ? "one time column" : "time columns of their own");
        StripChartModel model;
        std::vector<double> t(10000), tc(10000), a(10000, 40), b(10000, 40), c(10000, 40);
        for (int i = 0; i < 10000; ++i)
            t[i] = i, tc[i] = together ? i : i - 0.5;
        a[5000] = 50; // 25 % at 5000 s
        b[5000] = c[5000] = 35;
        a[9000] = 100; // outside the window
        model.addXYArray(0, points(t, a));
        model.addXYArray(1, points(t, b));
        model.addXYArray(2, points(tc, c));
        ASSERT_EQ(model.sharesTimeColumn(0, 2), together);
        model.showXRange(day + 100 * second, day + 8000 * second);
        const auto peak = imbalance::windowPeak(model, 0, 1, 2);
        ASSERT_TRUE(peak);
        EXPECT_NEAR(peak->percent, 25.0, 1e-9);
        EXPECT_DOUBLE_EQ(peak->time, day + 5000 * second);
        EXPECT_FALSE(imbalance::windowPeak(model, 3, 4, 5)) << "no currents";
    }
}

} // namespace
} // namespace trendax
