#include "chart/chartsettingsdialog.h"
#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
#include "chartfixtures.h"
#include "support/scripteddialogs.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <gtest/gtest.h>

#include <limits>

namespace trendax {
namespace {

using test::makeArray;

constexpr PackedColor red = 0x0000FF;

int countPixels(const QImage& image, const QRect& area, PackedColor color) {
    const QRgb rgb = qRgb(int(color & 0xFF), int((color >> 8) & 0xFF), int(color >> 16));
    int n = 0;
    const QRect r = area.intersected(image.rect());
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x)
            n += (image.pixel(x, y) & 0xFFFFFF) == (rgb & 0xFFFFFF);
    return n;
}

// A chart with one day of data on variable 0 on two tracks.
class StripChartWidget : public testing::Test {
protected:
    void SetUp() override {
        chart.resize(800, 400);
        chart.setTrackCount(2);
        chart.ShowXRange(45000.0, 45001.0);
        chart.AddXYArray(0, &day);
    }

    XYArray day = makeArray({{45000.0, 10.0}, {45000.25, 90.0}, {45000.5, 50.0}, {45001.0, 20.0}});
    StripChart chart;
};

TEST_F(StripChartWidget, OnlyALeftClickInThePlotMovesTheCursorAndEveryClickIsReported) {
    QSignalSpy cursor(&chart, &StripChart::CursorChange);
    QSignalSpy down(&chart, &StripChart::ChartMouseDown);
    chart.setCursorX(45000.75); // from the program: no event
    const QRectF plot = chart.plotArea();
    QTest::mouseClick(&chart, Qt::RightButton, Qt::ShiftModifier | Qt::ControlModifier,
                      plot.center().toPoint());
    QTest::mouseClick(&chart, Qt::LeftButton, Qt::AltModifier, QPoint(2, 2)); // on the axis
    EXPECT_EQ(cursor.count(), 0);
    const QPoint at(int(plot.left() + plot.width() / 4.0), int(plot.center().y()));
    QTest::mouseClick(&chart, Qt::LeftButton, Qt::NoModifier, at);
    ASSERT_EQ(cursor.count(), 1);
    const double t = cursor.at(0).at(0).toDouble();
    EXPECT_NEAR(t, 45000.25, 2.0 / plot.width()) << "within a pixel or two";
    EXPECT_EQ(chart.CursorX(), t);
    ASSERT_EQ(down.count(), 3);
    EXPECT_EQ(std::pair(down.at(0).at(0).toInt(), down.at(0).at(1).toInt()), std::pair(2, 1 | 2));
    EXPECT_EQ(std::pair(down.at(1).at(0).toInt(), down.at(1).at(1).toInt()), std::pair(1, 4));
    EXPECT_EQ(down.at(2), (QList<QVariant>{1, 0, double(at.x()), double(at.y())}));
}

TEST_F(StripChartWidget, CursorDragReportsEachPaintedPositionAndAlwaysTheLast) {
    chart.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&chart));
    QSignalSpy cursor(&chart, &StripChart::CursorChange);
    const QRectF plot = chart.plotArea();
    // Sends a mouse event at x pixels into the plot.
    const auto send = [&](QEvent::Type type, double x, Qt::MouseButton button,
                          Qt::MouseButtons held) {
        const QPointF at(plot.left() + x, plot.center().y());
        QMouseEvent event(type, at, chart.mapToGlobal(at), button, held, Qt::NoModifier);
        QApplication::sendEvent(&chart, &event);
    };
    send(QEvent::MouseButtonPress, 100, Qt::LeftButton, Qt::LeftButton);
    // Positions reached while the chart repaints in between are each reported.
    for (double x : {150.0, 200.0, 250.0}) {
        QTest::qWait(30);
        send(QEvent::MouseMove, x, Qt::NoButton, Qt::LeftButton);
    }
    ASSERT_EQ(cursor.count(), 4);
    EXPECT_NEAR(cursor.last().at(0).toDouble(), 45000.0 + 250 / plot.width(), 1.0 / plot.width());
    // A burst faster than the chart repaints is reported once, at its last position, which
    // the release does not lose; beyond the plot the cursor stays on its edge.
    for (double x : {300.0, 320.0, 340.0, 4000.0})
        send(QEvent::MouseMove, x, Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, 4000, Qt::LeftButton, Qt::NoButton);
    QTest::qWait(30);
    ASSERT_EQ(cursor.count(), 5);
    EXPECT_NEAR(chart.CursorX(), 45001.0, 1.0 / plot.width());
    EXPECT_EQ(cursor.last().at(0).toDouble(), chart.CursorX());
    send(QEvent::MouseMove, 10, Qt::NoButton, Qt::NoButton); // after the release: no drag
    QTest::qWait(30);
    EXPECT_EQ(cursor.count(), 5);
}

TEST_F(StripChartWidget, CurvesAreDrawnInTheirBandOnlyWhileTheTrackIsShown) {
    chart.setVarColor(red); // variable 0's
    chart.setVarTrack(1);

    const QRectF plot = chart.plotArea();
    const QRect top(plot.left(), plot.top(), plot.width(), plot.height() / 2 - 4);
    const QRect bottom(plot.left(), plot.center().y() + 4, plot.width(), plot.height() / 2 - 4);
    QImage shown = chart.grab().toImage();
    EXPECT_EQ(countPixels(shown, top, red), 0);
    EXPECT_GT(countPixels(shown, bottom, red), 100);

    chart.setTrackCount(1); // the curve's track is no longer shown
    EXPECT_EQ(countPixels(chart.grab().toImage(), chart.plotArea().toRect(), red), 0);
    chart.setTrackCount(2);
    EXPECT_GT(countPixels(chart.grab().toImage(), bottom, red), 100);
}

TEST_F(StripChartWidget, WithARepaintIntervalCurvesWaitForItAndTheLastChangeAlwaysShows) {
    chart.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&chart));
    chart.setVarColor(red);
    chart.setCurveRepaintInterval(60'000);
    const QRect plot = chart.plotArea().toRect();
    EXPECT_GT(countPixels(chart.grab().toImage(), plot, red), 100);
    chart.setVarVisible(false);
    EXPECT_GT(countPixels(chart.grab().toImage(), plot, red), 100) << "redrawn within the interval";
    chart.setCurveRepaintInterval(0);
    EXPECT_EQ(countPixels(chart.grab().toImage(), plot, red), 0) << "the last change lost";
}

// Views and cursors far from each other, and points that are not numbers, map to pixels far
// outside any plot or to none at all; they must neither overflow the integer pixel arithmetic
// nor put an off-screen cursor on the plot's edge.
using ExtremeViews = StripChartWidget;

TEST_F(ExtremeViews, PaintAndPrintWithoutOverflow) {
    constexpr double inf = std::numeric_limits<double>::infinity(), far = 1e11;
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double yearEnd9999 = 2958466.0; // 1 January 10000
    const struct {
        const char* name;
        double start, end, cursor; // asked for
        double shownStart;         // XViewStart afterwards
        bool cursorOnThePlot;      // a black cursor line is drawn
    } rows[] = {
        {"cursor far left of the view", 45000.0, 45001.0, -5e10, 45000.0, false},
        {"view far right of the cursor ends the calendar", far - 1.0, far, 45000.5,
         yearEnd9999 - 1.0, false},
        {"view over nearly all doubles is the calendar", -1e300, 1e300, 45000.5, 0.0, true},
        {"view whose span overflows is refused", -1.7e308, 1.7e308, 45000.5, 45000.0, true},
        {"ordinary view", 45000.0, 45001.0, 45000.5, 45000.0, true},
        {"huge view, cursor far beyond the calendar", -1e300, 1e300, far, 0.0, false},
    };
    // Not-a-number and infinite times and values, drawn with markers.
    const XYArray odd = makeArray(
        {{nan, 1.0}, {inf, 2.0}, {-inf, 3.0}, {45000.6, nan}, {45000.7, inf}, {45000.8, -inf}});
    chart.AddXYArray(1, &odd);
    for (int v : {0, 1}) {
        chart.setCurrentVar(v);
        chart.setVarColor(red);
        chart.setVarSymbol(9);
    }
    chart.setCaption("Site: AB12");
    chart.show();
    for (const auto& c : rows) {
        SCOPED_TRACE(c.name);
        chart.ShowXRange(45000.0, 45001.0);
        chart.ShowXRange(c.start, c.end);
        chart.setCursorX(c.cursor);
        chart.setCursorX(nan); // refused
        EXPECT_EQ(std::pair(chart.CursorX(), chart.XViewStart()),
                  std::pair(c.cursor, c.shownStart));
        const QImage shown = chart.grab().toImage();
        const QRect inside = chart.plotArea().toRect().adjusted(1, 1, -1, -1);
        EXPECT_EQ(countPixels(shown, inside, 0) > 0, c.cursorOnThePlot);
        QImage page(1100, 850, QImage::Format_RGB32);
        page.fill(Qt::black);
        QPainter p(&page);
        chart.PrintChart(p, 100.0, 1.5, 1.5, 8.0, 4.5);
        p.end();
        EXPECT_GT(countPixels(page, QRect(150, 150, 800, 450), chart.BackColor()), 0) << "printed";
        // Nothing, caption and axis included, is printed outside the rectangle asked for.
        QPainter(&page).fillRect(QRect(149, 149, 802, 452), Qt::black);
        EXPECT_EQ(countPixels(page, page.rect(), 0), 1100 * 850);
    }
}

// The chart's settings dialog, filled in the way a user would: the colour button asks the colour
// chooser, and only an accepted dialog changes the chart.
TEST(ChartSettingsDialog, EditedSettingsReachTheChartOnlyWhenAccepted) {
    for (const bool accepted : {true, false}) {
        SCOPED_TRACE(accepted ? "accepted" : "cancelled");
        test::ScriptedDialogs dialogs;
        dialogs.colorAnswers = {QColor(0x30, 0x20, 0x10)}; // packed as BGR: 0x102030
        dialogs.modalAnswers.push_back([accepted](QDialog& d) {
            auto& dialog = static_cast<ChartSettingsDialog&>(d);
            dialog.gridLinesBox()->setChecked(false);
            dialog.lineWidthBox()->setValue(3);
            dialog.backColorButton()->click();
            dialog.buttons()
                ->button(accepted ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel)
                ->click();
            return dialog.result() == QDialog::Accepted;
        });
        StripChart chart;
        const ChartSettings before = chart.settings();
        chart.ShowSettingsDialog(dialogs);
        EXPECT_EQ(dialogs.colorTitles, QStringList{"Background"});
        const ChartSettings edited{{false, 3}, 0x102030};
        EXPECT_EQ(chart.settings(), accepted ? edited : before);
    }
}

} // namespace
} // namespace trendax
