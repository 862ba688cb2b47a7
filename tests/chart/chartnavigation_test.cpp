#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
#include "chartfixtures.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

namespace trendax {
namespace {

constexpr double start0 = 45000.0, end0 = 45001.0;

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

    // A point x pixels into the plot, in the middle of its height (or under it, on the time axis).
    QPointF inPlot(double x) const { return {plot.left() + x, plot.center().y()}; }
    QPointF onTimeAxis(double x) const { return {plot.left() + x, plot.bottom() + 10}; }
    double timeAt(QPointF p) const {
        return chart.XViewStart() + (p.x() - plot.left()) / plot.width() * chart.XSpan();
    }

    void mouse(QEvent::Type type, QPointF at, Qt::MouseButton button, Qt::MouseButtons held,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QMouseEvent event(type, at, chart.mapToGlobal(at), button, held, modifiers);
        QApplication::sendEvent(&chart, &event);
    }
    void drag(QPointF from, QPointF to, Qt::MouseButton button,
              Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        mouse(QEvent::MouseButtonPress, from, button, button, modifiers);
        mouse(QEvent::MouseMove, (from + to) / 2, Qt::NoButton, button, modifiers);
        mouse(QEvent::MouseMove, to, Qt::NoButton, button, modifiers);
        mouse(QEvent::MouseButtonRelease, to, button, Qt::NoButton, modifiers);
    }
    void wheel(QPointF at, QPoint angle, QPoint pixels = {},
               Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QWheelEvent event(at, chart.mapToGlobal(at), pixels, angle, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&chart, &event);
    }
    TimeWindow view() const { return {chart.XViewStart(), chart.XViewEnd()}; }

    XYArray day = test::makeArray({{start0, 10.0}, {45000.5, 50.0}, {end0, 20.0}});
    StripChart chart;
    QRectF plot;
};

TEST_F(ChartNavigation, WheelZoomsAboutThePointerAndPans) {
    const struct {
        const char* name;
        QPoint angle, pixels;
        Qt::KeyboardModifiers modifiers;
        double span;  // expected, in days
        double shift; // of the start, in days, for the pans
        bool pointerFixed;
    } rows[] = {
        {"a notch up zooms in", {0, 120}, {}, Qt::NoModifier, 0.5, 0, true},
        {"a notch down zooms out", {0, -120}, {}, Qt::NoModifier, 2, 0, true},
        {"an eighth of a notch zooms smoothly",
         {0, 15},
         {},
         Qt::NoModifier,
         std::exp2(-0.125),
         0,
         true},
        {"touchpad pixels alone", {}, {0, 60}, Qt::NoModifier, std::sqrt(0.5), 0, true},
        {"a thousand notches stop at the floor",
         {0, 120000},
         {},
         Qt::NoModifier,
         1.0 / 38400,
         0,
         true},
        {"shift pans a tenth later per notch down",
         {0, -120},
         {},
         Qt::ShiftModifier,
         1,
         0.1,
         false},
        {"a horizontal wheel pans", {240, 0}, {}, Qt::NoModifier, 1, -0.2, false},
        {"shift turned horizontal by the system pans",
         {120, 0},
         {},
         Qt::ShiftModifier,
         1,
         -0.1,
         false},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        chart.ShowXRange(start0, end0);
        const QPointF at = inPlot(plot.width() * 0.3);
        const double under = timeAt(at);
        wheel(at, r.angle, r.pixels, r.modifiers);
        EXPECT_NEAR(chart.XSpan() / r.span, 1.0, 1e-6);
        if (r.pointerFixed)
            EXPECT_NEAR(timeAt(at), under, 1e-9);
        else
            EXPECT_NEAR(chart.XViewStart(), start0 + r.shift, 1e-9);
    }
    // Spun out a thousand notches the window is the whole calendar and still has an axis.
    wheel(inPlot(10), {0, -120000});
    EXPECT_EQ(view(), (TimeWindow{0.0, 2958466.0}));
}

TEST_F(ChartNavigation, DragsPanWithThePointerAsOneViewAndCtrlDragZoomsToTheRange) {
    QSignalSpy cursor(&chart, &StripChart::CursorChange);
    QSignalSpy down(&chart, &StripChart::ChartMouseDown);
    const double quarter = plot.width() / 4;
    const struct {
        const char* name;
        QPointF from, to;
        Qt::MouseButton button;
        Qt::KeyboardModifiers modifiers;
        TimeWindow shown;
    } rows[] = {
        {"middle drag right shows earlier times",
         inPlot(2 * quarter),
         inPlot(3 * quarter),
         Qt::MiddleButton,
         Qt::NoModifier,
         {start0 - 0.25, end0 - 0.25}},
        {"left drag on the time axis",
         onTimeAxis(2 * quarter),
         onTimeAxis(quarter),
         Qt::LeftButton,
         Qt::NoModifier,
         {start0 + 0.25, end0 + 0.25}},
        {"a drag far outside stays in the calendar",
         inPlot(0),
         inPlot(1e9),
         Qt::MiddleButton,
         Qt::NoModifier,
         {0, 1}},
        {"ctrl drag zooms to the range",
         inPlot(3 * quarter),
         inPlot(quarter),
         Qt::LeftButton,
         Qt::ControlModifier,
         {start0 + 0.25, start0 + 0.75}},
        {"a ctrl click is no range",
         inPlot(quarter),
         inPlot(quarter + 1),
         Qt::LeftButton,
         Qt::ControlModifier,
         {start0, end0}},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        chart.ShowXRange(start0, end0);
        const std::size_t views = chart.model().viewHistory().position();
        drag(r.from, r.to, r.button, r.modifiers);
        EXPECT_NEAR(chart.XViewStart(), r.shown.start, 1e-9);
        EXPECT_NEAR(chart.XViewEnd(), r.shown.end, 1e-9);
        const bool moved = !(view() == TimeWindow{start0, end0});
        EXPECT_EQ(chart.model().viewHistory().position(), views + (moved ? 1 : 0)) << "one view";
        if (moved) {
            chart.model().backView();
            EXPECT_EQ(view(), (TimeWindow{start0, end0}));
        }
    }
    EXPECT_EQ(cursor.count(), 0) << "none of these moves the cursor";
    EXPECT_EQ(down.count(), int(std::size(rows))) << "every press is still reported";
}

TEST_F(ChartNavigation, ShiftSetsAndDragsTheReferenceCursorEscapeRemovesIt) {
    QSignalSpy cursor(&chart, &StripChart::CursorChange);
    const QPointF a = inPlot(plot.width() / 4), b = inPlot(plot.width() * 3 / 4);
    mouse(QEvent::MouseButtonPress, a, Qt::LeftButton, Qt::LeftButton, Qt::ShiftModifier);
    ASSERT_TRUE(chart.model().referenceX());
    EXPECT_NEAR(*chart.model().referenceX(), timeAt(a), 1e-9);
    mouse(QEvent::MouseMove, b, Qt::NoButton, Qt::LeftButton, Qt::ShiftModifier);
    mouse(QEvent::MouseButtonRelease, b, Qt::LeftButton, Qt::NoButton, Qt::ShiftModifier);
    EXPECT_NEAR(chart.model().referenceX().value_or(0), timeAt(b), 1e-9);
    EXPECT_EQ(cursor.count(), 0);
    // A plain click still moves the cursor and leaves the reference alone.
    QTest::mouseClick(&chart, Qt::LeftButton, Qt::NoModifier, a.toPoint());
    EXPECT_EQ(cursor.count(), 1);
    EXPECT_NEAR(chart.model().referenceX().value_or(0), timeAt(b), 1e-9);
    QTest::keyClick(&chart, Qt::Key_Escape);
    EXPECT_FALSE(chart.model().referenceX());
}

TEST_F(ChartNavigation, KeysScrollZoomGoBackAndForward) {
    QSignalSpy zoomAll(&chart, &StripChart::ZoomAllRequest);
    const struct {
        const char* name;
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        TimeWindow shown;
    } rows[] = {
        {"left scrolls earlier", Qt::Key_Left, Qt::NoModifier, {start0 - 0.1, end0 - 0.1}},
        {"right scrolls later", Qt::Key_Right, Qt::NoModifier, {start0 + 0.1, end0 + 0.1}},
        {"plus zooms in about the cursor", Qt::Key_Plus, Qt::NoModifier, {45000.25, 45000.75}},
        {"keypad plus", Qt::Key_Plus, Qt::KeypadModifier, {45000.25, 45000.75}},
        {"equals is the unshifted plus", Qt::Key_Equal, Qt::NoModifier, {45000.25, 45000.75}},
        {"minus zooms out", Qt::Key_Minus, Qt::NoModifier, {44999.5, 45001.5}},
        {"keypad minus", Qt::Key_Minus, Qt::KeypadModifier, {44999.5, 45001.5}},
        {"backspace goes back", Qt::Key_Backspace, Qt::NoModifier, {start0, start0 + 0.5}},
        {"alt left goes back", Qt::Key_Left, Qt::AltModifier, {start0, start0 + 0.5}},
        {"alt right goes forward", Qt::Key_Right, Qt::AltModifier, {start0 + 0.5, end0}},
        {"home asks for zoom all", Qt::Key_Home, Qt::NoModifier, {start0, end0}},
        {"ctrl plus belongs to the window", Qt::Key_Plus, Qt::ControlModifier, {start0, end0}},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        // A history of three views, the middle one on screen.
        chart.ShowXRange(start0, start0 + 0.5);
        chart.ShowXRange(start0, end0);
        chart.ShowXRange(start0 + 0.5, end0);
        chart.model().backView();
        QTest::keyClick(&chart, r.key, r.modifiers);
        EXPECT_NEAR(chart.XViewStart(), r.shown.start, 1e-9);
        EXPECT_NEAR(chart.XViewEnd(), r.shown.end, 1e-9);
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
