#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
#include "chartfixtures.h"

#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>
#include <gtest/gtest.h>
#include <tuple>

#include <cmath>

namespace trendax {
namespace {

constexpr double start0 = 45000.0, end0 = 45001.0;

// Pixels of the reference cursor's blue in a one-pixel column of the plot, a pixel either side.
int referencePixels(const QImage& image, double x, const QRectF& plot) {
    int n = 0;
    for (int dx = -1; dx <= 1; ++dx)
        for (int y = int(plot.top()) + 1; y < int(plot.bottom()); ++y)
            n += image.valid(int(x) + dx, y) && image.pixel(int(x) + dx, y) == qRgb(0, 0, 160);
    return n;
}

// The chart driven by the mouse and the keyboard the way the platform delivers them.
class ChartNavigation : public testing::Test {
protected:
    void SetUp() override {
        chart.resize(800, 400);
        chart.setTrackCount(2);
        chart.AddXYArray(0, &day);
        chart.ShowXRange(start0, end0);
        chart.setCursorX(45000.5);
        plot = chart.plotArea();
    }

    // A fraction of the way across the plot, at mid-height or on the time axis under it.
    QPointF inPlot(double f, bool onTimeAxis = false) const {
        return {plot.left() + f * plot.width(),
                onTimeAxis ? plot.bottom() + 10 : plot.center().y()};
    }
    double timeAt(QPointF p) const {
        return chart.XViewStart() + (p.x() - plot.left()) / plot.width() * chart.XSpan();
    }
    void expectView(double start, double end) const {
        EXPECT_NEAR(chart.XViewStart(), start, 1e-9);
        EXPECT_NEAR(chart.XViewEnd(), end, 1e-9);
    }

    void mouse(QEvent::Type type, QPointF at, Qt::MouseButton button, Qt::MouseButtons held,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QMouseEvent event(type, at, chart.mapToGlobal(at), button, held, modifiers);
        QApplication::sendEvent(&chart, &event);
    }
    void wheel(QPointF at, QPoint angle, QPoint pixels, Qt::KeyboardModifiers modifiers) {
        QWheelEvent event(at, chart.mapToGlobal(at), pixels, angle, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&chart, &event);
    }

    XYArray day = test::makeArray({{start0, 10.0}, {45000.5, 50.0}, {end0, 20.0}});
    StripChart chart;
    QRectF plot;
};

TEST_F(ChartNavigation, WheelZoomsAboutThePointerAndPans) {
    const struct {
        const char* name;
        QPoint angle, pixels;
        Qt::KeyboardModifiers modifiers;
        double span;  // in days; the zooms keep the time under the pointer
        double shift; // of the start, in days, for the pans
    } rows[] = {
        {"a notch up zooms in", {0, 120}, {}, {}, 0.5, 0},
        {"a notch down zooms out", {0, -120}, {}, {}, 2, 0},
        {"an eighth of a notch zooms smoothly", {0, 15}, {}, {}, std::exp2(-0.125), 0},
        {"touchpad pixels alone", {}, {0, 60}, {}, std::sqrt(0.5), 0},
        {"a thousand notches stop at the floor", {0, 120000}, {}, {}, 1.0 / 38400, 0},
        {"shift pans a tenth later per notch down", {0, -120}, {}, Qt::ShiftModifier, 1, 0.1},
        {"a horizontal wheel pans", {240, 0}, {}, {}, 1, -0.2},
        {"shift turned horizontal by the system", {120, 0}, {}, Qt::ShiftModifier, 1, -0.1},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        chart.ShowXRange(start0, end0);
        const QPointF at = inPlot(0.3);
        const double under = timeAt(at);
        wheel(at, r.angle, r.pixels, r.modifiers);
        EXPECT_NEAR(chart.XSpan() / r.span, 1.0, 1e-6);
        if (r.span != 1)
            EXPECT_NEAR(timeAt(at), under, 1e-9);
        else
            EXPECT_NEAR(chart.XViewStart(), start0 + r.shift, 1e-9);
    }
    // Spun out a thousand notches the window is the whole calendar.
    wheel(inPlot(0.01), {0, -120000}, {}, {});
    expectView(0.0, 2958466.0);
}

TEST_F(ChartNavigation, DragsPanWithThePointerAsOneViewAndCtrlDragZoomsToTheRange) {
    QSignalSpy cursor(&chart, &StripChart::CursorChange);
    QSignalSpy down(&chart, &StripChart::ChartMouseDown);
    constexpr auto ctrl = Qt::ControlModifier;
    const struct {
        const char* name;
        double from, to; // fractions of the plot width
        bool onAxis;
        Qt::MouseButton button;
        Qt::KeyboardModifiers modifiers;
        double start, span; // shown
    } rows[] = {
        {"middle drag right shows earlier", 0.5, 0.75, false, Qt::MiddleButton, {}, 44999.75, 1},
        {"left drag on the time axis", 0.5, 0.25, true, Qt::LeftButton, {}, 45000.25, 1},
        {"a drag far outside stays in the calendar", 0, 1e7, false, Qt::MiddleButton, {}, 0, 1},
        {"ctrl drag zooms to the range", 0.75, 0.25, false, Qt::LeftButton, ctrl, 45000.25, 0.5},
        {"a ctrl click is no range", 0.25, 0.252, false, Qt::LeftButton, ctrl, start0, 1},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        chart.ShowXRange(start0, end0);
        const std::size_t views = chart.model().viewHistory().position();
        const QPointF from = inPlot(r.from, r.onAxis), to = inPlot(r.to, r.onAxis);
        mouse(QEvent::MouseButtonPress, from, r.button, r.button, r.modifiers);
        mouse(QEvent::MouseMove, (from + to) / 2, Qt::NoButton, r.button, r.modifiers);
        mouse(QEvent::MouseMove, to, Qt::NoButton, r.button, r.modifiers);
        mouse(QEvent::MouseButtonRelease, to, r.button, Qt::NoButton, r.modifiers);
        expectView(r.start, r.start + r.span);
        const bool moved = r.start != start0 || r.span != 1;
        EXPECT_EQ(chart.model().viewHistory().position(), views + (moved ? 1 : 0)) << "one view";
        if (moved) {
            EXPECT_TRUE(chart.model().backView());
            expectView(start0, end0);
        }
    }
    EXPECT_EQ(cursor.count(), 0) << "none of these moves the cursor";
    EXPECT_EQ(down.count(), int(std::size(rows))) << "every press is still reported";
}

TEST_F(ChartNavigation, ShiftDragSetsTheDashedReferenceCursorEscapeRemovesIt) {
    QSignalSpy cursor(&chart, &StripChart::CursorChange);
    QSignalSpy changes(&chart, &StripChart::ReferenceChange);
    const QPointF a = inPlot(0.25), b = inPlot(0.75);
    const auto drawnAt = [&](QPointF p) {
        return referencePixels(chart.grab().toImage(), p.x(), plot);
    };
    EXPECT_EQ(drawnAt(a), 0);
    mouse(QEvent::MouseButtonPress, a, Qt::LeftButton, Qt::LeftButton, Qt::ShiftModifier);
    ASSERT_TRUE(chart.model().referenceX());
    EXPECT_NEAR(*chart.model().referenceX(), timeAt(a), 1e-9);
    const int dashes = drawnAt(a);
    EXPECT_GT(dashes, plot.height() / 4) << "a line across both tracks";
    EXPECT_LT(dashes, plot.height() * 0.9) << "with gaps: dashed";

    mouse(QEvent::MouseMove, b, Qt::NoButton, Qt::LeftButton, Qt::ShiftModifier);
    mouse(QEvent::MouseMove, b, Qt::NoButton, Qt::LeftButton, Qt::ShiftModifier); // no change
    mouse(QEvent::MouseButtonRelease, b, Qt::LeftButton, Qt::NoButton, Qt::ShiftModifier);
    EXPECT_NEAR(chart.model().referenceX().value_or(0), timeAt(b), 1e-9);
    EXPECT_EQ(drawnAt(a), 0);
    EXPECT_GT(drawnAt(b), plot.height() / 4);
    // Printing (and exporting, which prints) draws it too.
    QImage page(800, 400, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter painter(&page);
    chart.PrintChart(painter, 96, 0, 0, 800.0 / 96, 400.0 / 96);
    painter.end();
    EXPECT_GT(referencePixels(page, b.x(), plot), plot.height() / 4);

    // A plain click still moves the cursor and leaves the reference alone.
    EXPECT_EQ(cursor.count(), 0);
    QTest::mouseClick(&chart, Qt::LeftButton, Qt::NoModifier, a.toPoint());
    EXPECT_EQ(cursor.count(), 1);
    EXPECT_NEAR(chart.model().referenceX().value_or(0), timeAt(b), 1e-9);
    QTest::keyClick(&chart, Qt::Key_Escape);
    EXPECT_FALSE(chart.model().referenceX());
    EXPECT_EQ(drawnAt(b), 0);
    EXPECT_EQ(changes.count(), 3) << "set, moved, removed";
}

TEST_F(ChartNavigation, KeysScrollZoomGoBackAndForward) {
    QSignalSpy zoomAll(&chart, &StripChart::ZoomAllRequest);
    const std::tuple<const char*, Qt::Key, Qt::KeyboardModifiers, double, double> rows[] = {
        {"left scrolls earlier", Qt::Key_Left, {}, start0 - 0.1, end0 - 0.1},
        {"right scrolls later", Qt::Key_Right, {}, start0 + 0.1, end0 + 0.1},
        {"plus zooms in about the cursor", Qt::Key_Plus, {}, 45000.25, 45000.75},
        {"keypad plus", Qt::Key_Plus, Qt::KeypadModifier, 45000.25, 45000.75},
        {"equals is the unshifted plus", Qt::Key_Equal, {}, 45000.25, 45000.75},
        {"minus zooms out", Qt::Key_Minus, {}, 44999.5, 45001.5},
        {"backspace goes back", Qt::Key_Backspace, {}, start0, start0 + 0.5},
        {"alt left goes back", Qt::Key_Left, Qt::AltModifier, start0, start0 + 0.5},
        {"alt right goes forward", Qt::Key_Right, Qt::AltModifier, start0 + 0.5, end0},
        {"home asks for zoom all", Qt::Key_Home, {}, start0, end0},
        {"ctrl plus belongs to the window", Qt::Key_Plus, Qt::ControlModifier, start0, end0},
    };
    for (const auto& [name, key, modifiers, start, end] : rows) {
        SCOPED_TRACE(name);
        // A history of three views, the middle one on screen.
        chart.ShowXRange(start0, start0 + 0.5);
        chart.ShowXRange(start0, end0);
        chart.ShowXRange(start0 + 0.5, end0);
        chart.model().backView();
        QTest::keyClick(&chart, key, modifiers);
        expectView(start, end);
    }
    EXPECT_EQ(zoomAll.count(), 1);
    chart.ShowXRange(start0, end0);
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier, QString(), true);
    for (int i = 0; i < 3; ++i)
        QApplication::sendEvent(&chart, &held);
    EXPECT_NEAR(chart.XViewStart(), start0 + 0.3, 1e-9) << "held keys repeat";
    EXPECT_EQ(chart.focusPolicy(), Qt::StrongFocus);
}

} // namespace
} // namespace trendax
