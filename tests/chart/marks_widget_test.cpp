// Event markers and recording gaps on the chart widget: drawn, hidden, hovered, clicked.
#include "chart/chartsettingsdialog.h"
#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"

#include <QApplication>
#include <QCheckBox>
#include <QHelpEvent>
#include <QImage>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <gtest/gtest.h>

namespace trendax {
namespace {

constexpr double day0 = 45000.0;
constexpr PackedColor white = 0xFFFFFF;

QRgb rgbOf(PackedColor c) {
    return qRgb(int(c & 0xFF), int((c >> 8) & 0xFF), int(c >> 16));
}

// One track over one day, white, with a flat curve at half height.
class ChartMarks : public testing::Test {
protected:
    void SetUp() override {
        chart.resize(800, 300);
        chart.setMaxBufferSize(100000);
        chart.setCurrentTrack(0);
        chart.setTrackColor(white);
        chart.setCurrentVar(0);
        chart.setVarColor(0xFF0000); // blue
        chart.ShowXRange(day0, day0 + 1.0);
        chart.applySettings({{false, 1}, white}); // no grid lines
    }

    // The pixel column of a time, and a point on the flag drawn there.
    double xOf(double t) const {
        const QRectF plot = chart.plotArea();
        return std::floor(plot.left() + (t - day0) * plot.width());
    }
    QPoint flagAt(double t) const {
        return QPoint(int(xOf(t)) + 3, int(chart.plotArea().top()) + 3);
    }

    void setAppearance(bool markers, bool bridge) {
        ChartSettings s = chart.settings();
        s.appearance.eventMarkers = markers;
        s.appearance.bridgeGaps = bridge;
        chart.applySettings(s);
    }

    const std::vector<EventMarker> markers{
        {day0 + 0.25, MarkerKind::Fault, MarkerSource::HistoryEvent, 4,
         "03/15/12 06:00:00 - Overload"},
        {day0 + 0.5, MarkerKind::StartStop, MarkerSource::HistoryEvent, 7, "start"},
        {day0 + 0.75, MarkerKind::Comment, MarkerSource::Comment, 2, "pump pulled"},
        {day0 + 0.75 + 1e-6, MarkerKind::Other, MarkerSource::HistoryEvent, 9, "input"}};
    StripChart chart;
};

TEST_F(ChartMarks, MarkersAtTheirTimesInThreeColoursAndHiddenBySwitch) {
    chart.setEventMarkers(markers);
    QImage image = chart.grab().toImage();
    const QRgb fault = image.pixel(flagAt(day0 + 0.25));
    const QRgb startStop = image.pixel(flagAt(day0 + 0.5));
    const QRgb comment = image.pixel(flagAt(day0 + 0.75));
    EXPECT_NE(fault, startStop);
    EXPECT_NE(fault, comment);
    EXPECT_NE(startStop, comment);
    // The line crosses the plot at the marker's time; nothing is drawn between the markers.
    const int y = int(chart.plotArea().center().y());
    EXPECT_NE(image.pixel(int(xOf(day0 + 0.25)), y) & 0xFFFFFF, rgbOf(white) & 0xFFFFFF);
    EXPECT_EQ(image.pixel(int(xOf(day0 + 0.25)) + 12, y) & 0xFFFFFF, rgbOf(white) & 0xFFFFFF);

    setAppearance(false, false);
    image = chart.grab().toImage();
    for (double t : {0.25, 0.5, 0.75}) {
        EXPECT_EQ(image.pixel(flagAt(day0 + t)) & 0xFFFFFF, rgbOf(white) & 0xFFFFFF);
        EXPECT_EQ(chart.markerFlagAt(flagAt(day0 + t)), std::nullopt);
    }
}

TEST_F(ChartMarks, HoveringAFlagShowsItsEntryAndSharedFlagsTheCount) {
    chart.setEventMarkers(markers);
    EXPECT_EQ(chart.markerToolTip(flagAt(day0 + 0.25)), "03/15/12 06:00:00 - Overload");
    EXPECT_EQ(chart.markerToolTip(flagAt(day0 + 0.75)),
              "2 events and comments here:\npump pulled\ninput");
    const QPoint offFlag(flagAt(day0 + 0.25).x(), int(chart.plotArea().center().y()));
    EXPECT_EQ(chart.markerToolTip(offFlag), "") << "only the flag shows it";

    chart.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&chart));
    QHelpEvent help(QEvent::ToolTip, flagAt(day0 + 0.5), chart.mapToGlobal(flagAt(day0 + 0.5)));
    EXPECT_TRUE(QApplication::sendEvent(&chart, &help));
    EXPECT_EQ(QToolTip::text(), "start");
}

TEST_F(ChartMarks, ClickingAFlagReportsItsRowInsteadOfMovingTheCursor) {
    chart.setEventMarkers(markers);
    std::vector<std::pair<MarkerSource, int>> clicked;
    QObject::connect(&chart, &StripChart::MarkerClick,
                     [&](MarkerSource source, int index) { clicked.emplace_back(source, index); });
    QSignalSpy cursor(&chart, &StripChart::CursorChange);
    QTest::mouseClick(&chart, Qt::LeftButton, Qt::NoModifier, flagAt(day0 + 0.25));
    QTest::mouseClick(&chart, Qt::LeftButton, Qt::NoModifier, flagAt(day0 + 0.75));
    using Click = std::pair<MarkerSource, int>;
    EXPECT_EQ(clicked,
              (std::vector<Click>{{MarkerSource::HistoryEvent, 4}, {MarkerSource::Comment, 2}}));
    EXPECT_EQ(cursor.count(), 0);
    // With Shift held, or with markers hidden, the press is the chart's own again.
    QTest::mouseClick(&chart, Qt::LeftButton, Qt::ShiftModifier, flagAt(day0 + 0.5));
    setAppearance(false, false);
    QTest::mouseClick(&chart, Qt::LeftButton, Qt::NoModifier, flagAt(day0 + 0.5));
    EXPECT_EQ(clicked.size(), 2u);
}

TEST_F(ChartMarks, GapsBreakTheLineAndAreShadedUnlessBridged) {
    // One-second rows at half height with the two hours from 12:00 missing.
    std::vector<double> t;
    for (int s = 0; s < 86400; s += 1)
        if (s < 43200 || s >= 50400)
            t.push_back(day0 + s / 86400.0);
    XYArray a(2, t.size());
    for (std::size_t i = 0; i < t.size(); ++i) {
        a.at(0, i) = t[i];
        a.at(1, i) = 50.0;
    }
    chart.AddXYArray(0, &a);
    const int y = int(std::lround(chart.plotArea().center().y()));
    const int inHole = int(xOf(day0 + 0.54));
    const auto curveIn = [&](const QImage& image, int x0, int x1) {
        int n = 0;
        for (int x = x0; x <= x1; ++x)
            for (int dy = -2; dy <= 2; ++dy)
                n += (image.pixel(x, y + dy) & 0xFFFFFF) == (rgbOf(0xFF0000) & 0xFFFFFF);
        return n;
    };

    QImage image = chart.grab().toImage();
    EXPECT_GT(curveIn(image, int(xOf(day0 + 0.2)), int(xOf(day0 + 0.3))), 0) << "drawn elsewhere";
    EXPECT_EQ(curveIn(image, inHole - 5, inHole + 5), 0) << "broken over the hole";
    EXPECT_NE(image.pixel(inHole, y - 30) & 0xFFFFFF, rgbOf(white) & 0xFFFFFF) << "shaded";
    EXPECT_EQ(image.pixel(int(xOf(day0 + 0.3)), y - 30) & 0xFFFFFF, rgbOf(white) & 0xFFFFFF);

    setAppearance(true, true);
    image = chart.grab().toImage();
    EXPECT_GT(curveIn(image, inHole - 5, inHole + 5), 0) << "bridged";
    EXPECT_EQ(image.pixel(inHole, y - 30) & 0xFFFFFF, rgbOf(white) & 0xFFFFFF) << "not shaded";
}

TEST(ChartSettingsDialog, MarkerAndGapSwitchesStartOnAndOffAndReachTheSettings) {
    ChartSettingsDialog dialog;
    EXPECT_EQ(dialog.eventMarkersBox()->text(), "Show event markers");
    EXPECT_EQ(dialog.bridgeGapsBox()->text(), "Bridge recording gaps");
    EXPECT_TRUE(dialog.settings().appearance.eventMarkers);
    EXPECT_FALSE(dialog.settings().appearance.bridgeGaps);
    dialog.eventMarkersBox()->setChecked(false);
    dialog.bridgeGapsBox()->setChecked(true);
    EXPECT_FALSE(dialog.settings().appearance.eventMarkers);
    EXPECT_TRUE(dialog.settings().appearance.bridgeGaps);
}

} // namespace
} // namespace trendax
