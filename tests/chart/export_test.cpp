// What leaves the chart for other programs: the CSV of the visible window and the current
// imbalance of the three phases.
#include "chart/csvexport.h"
#include "chart/imbalance.h"
#include "chart/stripchartmodel.h"
#include "storage/datetime.h"

#include <QBuffer>
#include <gtest/gtest.h>
#include <memory>

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

TEST(CsvExport, HundredthsOfASecondOnlyWhenPresent) {
    StripChartModel model;
    model.addXYArray(0, points({0.25, 59.996, 61}, {1, 2, 3}));
    model.showXRange(day, day + 120 * second);
    const QStringList rows = csvOf(model, {{0, "A"}}).split("\r\n");
    ASSERT_EQ(rows.size(), 5); // header, three rows, the empty text after the last line end
    EXPECT_EQ(rows[1], "2026-10-01T00:00:00.25,10/01/26 00:00:00,1");
    EXPECT_EQ(rows[2], "2026-10-01T00:01:00,10/01/26 00:01:00,2");
    EXPECT_EQ(rows[3], "2026-10-01T00:01:01,10/01/26 00:01:01,3");
}

TEST(CsvExport, PointsOutOfTimeOrderAreFilteredByTheWindow) {
    StripChartModel model;
    model.addXYArray(0, points({5, 1, 9, 2}, {50, 10, 90, 20}));
    model.showXRange(day + 1 * second, day + 5 * second);
    const QStringList rows = csvOf(model, {{0, "A"}}).split("\r\n", Qt::SkipEmptyParts);
    QStringList values;
    for (const QString& row : rows.mid(1))
        values << row.section(',', 2);
    values.sort();
    EXPECT_EQ(values, (QStringList{"10", "20", "50"}));
}

TEST(CsvExport, AFailedWriteIsReported) {
    StripChartModel model;
    model.addXYArray(0, points({0}, {1}));
    QBuffer readOnly;
    readOnly.open(QIODevice::ReadOnly);
    EXPECT_FALSE(csvexport::writeVisible(model, {{0, "A"}}, readOnly));
}

TEST(Imbalance, PercentOfThePhases) {
    struct Row {
        const char* name;
        double a, b, c;
        std::optional<double> expected;
    };
    const Row rows[] = {
        {"equal phases", 40, 40, 40, 0.0},
        {"one phase high", 44, 38, 38, 100.0 * 4 / 40},
        {"one phase low", 30, 45, 45, 100.0 * 10 / 40},
        {"zero mean", 0, 0, 0, std::nullopt},
        {"not a number", 40, NAN, 40, std::nullopt},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto p = imbalance::percent(row.a, row.b, row.c);
        ASSERT_EQ(p.has_value(), row.expected.has_value());
        if (p) {
            EXPECT_NEAR(*p, *row.expected, 1e-9);
        }
    }
}

TEST(Imbalance, PeakOverTheWindow) {
    // Phases logged together share their time column; phases logged apart are paired with the
    // latest point of the others at or before each time.
    for (const bool together : {true, false}) {
        SCOPED_TRACE(together ? "one time column" : "time columns of their own");
        StripChartModel model;
        std::vector<double> t, a, b, c;
        for (int i = 0; i < 10000; ++i) {
            t.push_back(i);
            a.push_back(40);
            b.push_back(40);
            c.push_back(40);
        }
        a[5000] = 50; // 25 % at 5000 s
        b[5000] = 35;
        c[5000] = 35;
        a[9000] = 100; // outside the window
        model.addXYArray(0, points(t, a));
        model.addXYArray(1, points(t, b));
        std::vector<double> tc = t;
        if (!together)
            for (double& s : tc)
                s -= 0.5;
        model.addXYArray(2, points(tc, c));
        ASSERT_EQ(model.sharesTimeColumn(0, 2), together);
        model.showXRange(day + 100 * second, day + 8000 * second);
        const auto peak = imbalance::windowPeak(model, 0, 1, 2);
        ASSERT_TRUE(peak);
        EXPECT_NEAR(peak->percent, 25.0, 1e-9);
        EXPECT_DOUBLE_EQ(peak->time, day + 5000 * second);
    }
}

TEST(Imbalance, NoPeakWithoutCurrents) {
    StripChartModel model;
    model.addXYArray(0, points({0, 1}, {0, 0}));
    model.addXYArray(1, points({0, 1}, {0, 0}));
    model.addXYArray(2, points({0, 1}, {0, 0}));
    model.showXRange(day, day + 2 * second);
    EXPECT_FALSE(imbalance::windowPeak(model, 0, 1, 2));
    EXPECT_FALSE(imbalance::windowPeak(model, 3, 4, 5));
}

} // namespace
} // namespace trendax
