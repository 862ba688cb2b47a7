// The chart view's widgets as a user meets them: a cursor dragged across the chart, and a
// statistics panel whose every text stays readable.
#include "chart/statspanel.h"
#include "chart/stripchart.h"
#include "chartfixtures.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace trendax {
namespace {

void sendMouse(QWidget* w, QEvent::Type type, QPointF at, Qt::MouseButton button,
               Qt::MouseButtons held) {
    QMouseEvent event(type, at, w->mapToGlobal(at), button, held, Qt::NoModifier);
    QApplication::sendEvent(w, &event);
}

TEST(CursorDrag, ReportsEachPaintedPositionAndAlwaysTheLast) {
    StripChart chart;
    chart.resize(800, 400);
    const XYArray day = test::makeArray({{45000.0, 10.0}, {45001.0, 20.0}});
    chart.AddXYArray(0, &day);
    chart.ShowXRange(45000.0, 45001.0);
    chart.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&chart));
    QSignalSpy cursor(&chart, &StripChart::CursorChange);
    const QRectF plot = chart.plotArea();
    const double y = plot.center().y();
    const auto timeAt = [&plot](double x) { return 45000.0 + (x - plot.left()) / plot.width(); };

    sendMouse(&chart, QEvent::MouseButtonPress, {plot.left() + 100, y}, Qt::LeftButton,
              Qt::LeftButton);
    ASSERT_EQ(cursor.count(), 1);
    // Positions reached while the chart repaints in between are each reported.
    for (double x : {150.0, 200.0, 250.0}) {
        QTest::qWait(30);
        sendMouse(&chart, QEvent::MouseMove, {plot.left() + x, y}, Qt::NoButton, Qt::LeftButton);
    }
    ASSERT_EQ(cursor.count(), 4);
    EXPECT_NEAR(cursor.last().at(0).toDouble(), timeAt(plot.left() + 250), 1.0 / plot.width());
    // A burst faster than the chart repaints is reported once, at its last position, which
    // the release does not lose; beyond the plot the cursor stays on its edge.
    for (double x : {300.0, 320.0, 340.0, 4000.0})
        sendMouse(&chart, QEvent::MouseMove, {plot.left() + x, y}, Qt::NoButton, Qt::LeftButton);
    sendMouse(&chart, QEvent::MouseButtonRelease, {plot.left() + 4000, y}, Qt::LeftButton,
              Qt::NoButton);
    QTest::qWait(30);
    ASSERT_EQ(cursor.count(), 5);
    EXPECT_NEAR(chart.CursorX(), 45001.0, 1.0 / plot.width());
    EXPECT_EQ(cursor.last().at(0).toDouble(), chart.CursorX());
    // After the release a move drags nothing.
    sendMouse(&chart, QEvent::MouseMove, {plot.left() + 10, y}, Qt::NoButton, Qt::NoButton);
    QTest::qWait(30);
    EXPECT_EQ(cursor.count(), 5);
}

// ---- Statistics panel ----

class PanelReadability : public testing::TestWithParam<double> {};

TEST_P(PanelReadability, ShowsEveryNameAndValueWhole) {
    StatsPanel panel(GetParam());
    const QStringList names = {"Intake Temp.",    "Intake Pressure", "Winding Temp",
                               "X Vibration",     "Y Vibration",     "Discharge Pressure",
                               "Discharge Temp",  "Expansion",       "Quill Channel 1",
                               "Quill Channel 2", "Quill Channel 3", "Quill Channel 4",
                               "Quill Channel 8"};
    for (int i = 0; i < StatsPanel::rowCount; ++i) {
        panel.setRowName(i, names[i]);
        panel.showStatistics(i, {-12345.678, 1234.5678, 0.004, -99999.99, 3, 4, 123456.78});
    }
    panel.setCursorText(QStringLiteral("12/28/2012 10:58:58 PM"));
    panel.setHeightTwips(3645);
    panel.resize(panel.minimumWidth(), panel.height());

    QList<QLabel*> labels = panel.findChildren<QLabel*>();
    for (QLabel* label : labels) {
        SCOPED_TRACE(label->text().toStdString());
        EXPECT_LT(label->fontMetrics().horizontalAdvance(label->text()), label->width());
        EXPECT_GE(label->height(), label->fontMetrics().height());
        EXPECT_TRUE(panel.rect().contains(label->geometry()));
        for (QLabel* other : labels) {
            if (other != label) {
                EXPECT_FALSE(label->geometry().intersects(other->geometry()))
                    << "overlaps " << other->text().toStdString();
            }
        }
    }
    for (int i = 1; i < StatsPanel::rowCount; ++i) {
        const QRect above = panel.rows[size_t(i - 1)].chkChannelVisible->geometry();
        const QRect box = panel.rows[size_t(i)].chkChannelVisible->geometry();
        EXPECT_FALSE(box.intersects(above)) << "check box " << i;
        EXPECT_FALSE(box.intersects(panel.rows[size_t(i)].lblVar->geometry())) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Resolutions, PanelReadability, testing::Values(96.0, 144.0),
                         [](const auto& info) { return std::to_string(int(info.param)) + "dpi"; });

} // namespace
} // namespace trendax
