// Event markers and recording gaps on the chart widget: drawn, hidden, hovered, clicked.
#include "chart/chartsettingsdialog.h"
#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
#include "chartfixtures.h"
#include "support/scripteddialogs.h"

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
constexpr QRgb white = 0xFFFFFF, blue = 0x0000FF;

// One white track over one day, a blue curve, no grid lines.
class ChartMarks : public testing::Test {
protected:
    void SetUp() override {
        chart.resize(800, 300);
        chart.setMaxBufferSize(100000);
        chart.setCurrentTrack(0);
        chart.setTrackColor(0xFFFFFF);
        chart.setCurrentVar(0);
        chart.setVarColor(0xFF0000); // packed as BGR: blue
        chart.ShowXRange(day0, day0 + 1.0);
        chart.applySettings({{false, 1}, 0xFFFFFF});
        chart.setEventMarkers(markers);
    }

    // The pixel column of a time, and a point on the flag drawn there.
    int xOf(double t) const {
        const QRectF plot = chart.plotArea();
        return int(std::floor(plot.left() + (t - day0) * plot.width()));
    }
    QPoint flagAt(double t) const { return {xOf(t) + 3, int(chart.plotArea().top()) + 3}; }
    static QRgb pixel(const QImage& image, QPoint p) { return image.pixel(p) & 0xFFFFFF; }

    // Through the settings dialog's two switches.
    void setAppearance(bool markers, bool bridge) {
        test::ScriptedDialogs dialogs;
        dialogs.modalAnswers.push_back([&](QDialog& d) {
            auto& dialog = static_cast<ChartSettingsDialog&>(d);
            dialog.eventMarkersBox()->setChecked(markers);
            dialog.bridgeGapsBox()->setChecked(bridge);
            return true;
        });
        chart.ShowSettingsDialog(dialogs);
    }

    const std::vector<EventMarker> markers{
        {day0 + 0.25, MarkerKind::Fault, MarkerSource::HistoryEvent, 4, "overload"},
        {day0 + 0.5, MarkerKind::StartStop, MarkerSource::HistoryEvent, 7, "start"},
        {day0 + 0.75, MarkerKind::Comment, MarkerSource::Comment, 2, "pump pulled"},
        {day0 + 0.75 + 1e-6, MarkerKind::Other, MarkerSource::HistoryEvent, 9, "input"}};
    StripChart chart;
};

TEST_F(ChartMarks, MarkersAtTheirTimesInThreeColoursAndHiddenBySwitch) {
    QImage image = chart.grab().toImage();
    const QRgb fault = image.pixel(flagAt(day0 + 0.25));
    const QRgb startStop = image.pixel(flagAt(day0 + 0.5));
    const QRgb comment = image.pixel(flagAt(day0 + 0.75));
    EXPECT_NE(fault, startStop);
    EXPECT_NE(fault, comment);
    EXPECT_NE(startStop, comment);
    // The line crosses the plot at the marker's time and nowhere else.
    const int y = int(chart.plotArea().center().y());
    EXPECT_NE(pixel(image, {xOf(day0 + 0.25), y}), white);
    EXPECT_EQ(pixel(image, {xOf(day0 + 0.25) + 12, y}), white);

    setAppearance(false, true); // markers hidden, gaps bridged: no curve to bridge
    image = chart.grab().toImage();
    for (double t : {0.25, 0.5, 0.75})
        EXPECT_EQ(pixel(image, flagAt(day0 + t)), white);
}

TEST_F(ChartMarks, HoveringAFlagShowsItsTooltipAndClickingItReportsItsRowNotTheCursor) {
    chart.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&chart));
    QHelpEvent help(QEvent::ToolTip, flagAt(day0 + 0.75), chart.mapToGlobal(flagAt(day0 + 0.75)));
    EXPECT_TRUE(QApplication::sendEvent(&chart, &help));
    EXPECT_EQ(QToolTip::text(), "2 events and comments here:\npump pulled\ninput");
    const QPoint belowFlag(flagAt(day0 + 0.25).x(), int(chart.plotArea().center().y()));
    EXPECT_EQ(chart.markerToolTip(belowFlag), "") << "only the flag shows it";

    using Click = std::pair<MarkerSource, int>;
    std::vector<Click> clicked;
    QObject::connect(&chart, &StripChart::MarkerClick,
                     [&](MarkerSource source, int index) { clicked.emplace_back(source, index); });
    QSignalSpy cursor(&chart, &StripChart::CursorChange);
    QTest::mouseClick(&chart, Qt::LeftButton, Qt::NoModifier, flagAt(day0 + 0.25));
    // A shared flag reports the first of its markers.
    QTest::mouseClick(&chart, Qt::LeftButton, Qt::NoModifier, flagAt(day0 + 0.75));
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
    const auto half = [](std::size_t) { return 50.0; };
    const XYArray morning = test::secondsArray(day0, 0, 43200, half),
                  evening = test::secondsArray(day0, 50400, 36000, half);
    chart.setEventMarkers({});
    chart.AddXYArray(0, &morning);
    chart.AddXYArray(0, &evening);
    const int y = int(std::lround(chart.plotArea().center().y()));
    const int inHole = xOf(day0 + 0.54), drawn = xOf(day0 + 0.25);
    const auto curveNear = [&](const QImage& image, int x) {
        int n = 0;
        for (int dx = -5; dx <= 5; ++dx)
            for (int dy = -2; dy <= 2; ++dy)
                n += pixel(image, {x + dx, y + dy}) == blue;
        return n;
    };

    QImage image = chart.grab().toImage();
    EXPECT_GT(curveNear(image, drawn), 0) << "drawn elsewhere";
    EXPECT_EQ(curveNear(image, inHole), 0) << "broken over the hole";
    EXPECT_NE(pixel(image, {inHole, y - 30}), white) << "shaded";
    EXPECT_EQ(pixel(image, {drawn, y - 30}), white);

    setAppearance(true, true);
    image = chart.grab().toImage();
    EXPECT_GT(curveNear(image, inHole), 0) << "bridged";
    EXPECT_EQ(pixel(image, {inHole, y - 30}), white) << "not shaded";
}

} // namespace
} // namespace trendax
