#include "chart/chartsettingsdialog.h"
#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
#include "chartfixtures.h"
#include "support/scratchfolder.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QPrinter>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <gtest/gtest.h>

#include <limits>

namespace trendax {
namespace {

using test::makeArray;

constexpr PackedColor red = 0x0000FF;
constexpr PackedColor green = 0x00FF00;

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

// ---- Mouse and selectors ----

TEST_F(StripChartWidget, LeftClickInThePlotMovesTheCursorToTheTimeUnderThePointer) {
    QSignalSpy cursor(&chart, &StripChart::CursorChange);
    QSignalSpy down(&chart, &StripChart::ChartMouseDown);
    chart.setCursorX(45000.75); // from the program: no event
    EXPECT_EQ(cursor.count(), 0);
    const QRectF plot = chart.plotArea();
    ASSERT_TRUE(chart.rect().contains(plot.toRect()));
    const QPoint at(int(plot.left() + plot.width() / 4.0), int(plot.center().y()));
    QTest::mouseClick(&chart, Qt::LeftButton, Qt::NoModifier, at);
    ASSERT_EQ(cursor.count(), 1);
    const double t = cursor.at(0).at(0).toDouble();
    EXPECT_NEAR(t, 45000.25, 2.0 / plot.width()) << "within a pixel or two";
    EXPECT_EQ(chart.CursorX(), t);
    ASSERT_EQ(down.count(), 1);
    EXPECT_EQ(down.at(0), (QList<QVariant>{1, 0, double(at.x()), double(at.y())}));
}

TEST_F(StripChartWidget, RightClickOrAClickOnTheAxisIsReportedButLeavesTheCursor) {
    chart.setCursorX(45000.1);
    QSignalSpy cursor(&chart, &StripChart::CursorChange);
    QSignalSpy down(&chart, &StripChart::ChartMouseDown);
    const QPoint middle = chart.plotArea().center().toPoint();
    QTest::mouseClick(&chart, Qt::RightButton, Qt::ShiftModifier | Qt::ControlModifier, middle);
    QTest::mouseClick(&chart, Qt::LeftButton, Qt::AltModifier, QPoint(2, 2));
    ASSERT_EQ(down.count(), 2);
    EXPECT_EQ(std::pair(down.at(0).at(0).toInt(), down.at(0).at(1).toInt()), std::pair(2, 1 | 2));
    EXPECT_EQ(std::pair(down.at(1).at(0).toInt(), down.at(1).at(1).toInt()), std::pair(1, 4));
    EXPECT_EQ(cursor.count(), 0);
    EXPECT_EQ(chart.CursorX(), 45000.1);
}

TEST_F(StripChartWidget, PropertiesActOnTheSelectedSlot) {
    chart.setCurrentVar(5);
    chart.setVarColor(green);
    chart.setCurrentVar(6);
    chart.setVarColor(red);
    chart.setCurrentVar(5);
    EXPECT_EQ(chart.VarColor(), green);
    EXPECT_THROW(chart.setCurrentVar(13), ChartError);
    EXPECT_EQ(chart.CurrentVar(), 5);
    chart.setCurrentTrack(4); // beyond TrackCount 2: accepted
    chart.setTrackYMax(250.0);
    EXPECT_EQ(chart.model().track(4).yMax, 250.0);
    EXPECT_THROW(chart.AddXYArray(0, nullptr), ChartError);
    EXPECT_EQ(chart.model().pointCount(0), 4u);
}

// ---- Drawing ----

TEST_F(StripChartWidget, CurvesAreDrawnInTheirBandOnlyWhileTheTrackIsShown) {
    chart.setBackColor(0xFFFFFF);
    chart.setCurrentTrack(0);
    chart.setTrackColor(0xF0F0F0);
    chart.setCurrentTrack(1);
    chart.setTrackColor(0xE0E0E0);
    chart.setCurrentVar(0);
    chart.setVarColor(red);
    chart.setVarTrack(1);
    chart.setVarYMin(0.0);
    chart.setVarYMax(100.0);

    const QRectF plot = chart.plotArea();
    const QRect top(plot.left(), plot.top(), plot.width(), plot.height() / 2 - 4);
    const QRect bottom(plot.left(), plot.center().y() + 4, plot.width(), plot.height() / 2 - 4);
    QImage shown = chart.grab().toImage();
    EXPECT_EQ(countPixels(shown, top, red), 0);
    EXPECT_GT(countPixels(shown, bottom, red), 100);
    EXPECT_GT(countPixels(shown, top, 0xF0F0F0), 1000) << "track 0 filled with its colour";
    EXPECT_GT(countPixels(shown, bottom, 0xE0E0E0), 1000);

    chart.setTrackCount(1); // the curve's track is no longer shown
    EXPECT_EQ(countPixels(chart.grab().toImage(), chart.plotArea().toRect(), red), 0);
    chart.setTrackCount(2);
    EXPECT_GT(countPixels(chart.grab().toImage(), bottom, red), 100);
}

TEST_F(StripChartWidget, MarkersAddToTheLine) {
    chart.setCurrentVar(0);
    chart.setVarColor(red);
    const QRect plot = chart.plotArea().toRect();
    const int lineOnly = countPixels(chart.grab().toImage(), plot, red);
    chart.setVarSymbol(9); // filled squares
    EXPECT_GT(countPixels(chart.grab().toImage(), plot, red), lineOnly + 3 * 20);
}

TEST_F(StripChartWidget, CaptionIsOnlyDrawnWhenSet) {
    const QImage without = chart.grab().toImage();
    chart.setCaption("Site: AB12");
    const QImage with = chart.grab().toImage();
    // Above the plot once the caption has made room for itself; the curve there is red, the
    // frame grey, so black pixels are text.
    const QRectF plot = chart.plotArea();
    const QRect strip(int(plot.left()) + 2, 0, int(plot.width()) - 4, int(plot.top()) - 4);
    EXPECT_EQ(countPixels(without, strip, 0), 0);
    EXPECT_GT(countPixels(with, strip, 0), 20);
}

// Views and cursors far from each other, and points that are not numbers, map to pixels far
// outside any plot or to none at all; they must neither overflow the integer pixel arithmetic
// nor put an off-screen cursor on the plot's edge.
struct ExtremeView {
    const char* name;
    double start, end;    // the window asked for
    double cursor;        // CursorX asked for
    bool oddPoints;       // also NaN and infinite times and values on variable 1
    double shownStart;    // XViewStart afterwards
    bool cursorOnThePlot; // a black cursor line is drawn
};

class ExtremeViews : public StripChartWidget, public testing::WithParamInterface<ExtremeView> {};

TEST_P(ExtremeViews, PaintAndPrintWithoutOverflow) {
    const ExtremeView& c = GetParam();
    constexpr double inf = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    chart.setCurrentVar(0);
    chart.setVarColor(red);
    chart.setVarSymbol(9);
    if (c.oddPoints) {
        const XYArray odd = makeArray(
            {{nan, 1.0}, {inf, 2.0}, {-inf, 3.0}, {45000.6, nan}, {45000.7, inf}, {45000.8, -inf}});
        chart.AddXYArray(1, &odd);
        chart.setCurrentVar(1);
        chart.setVarColor(green);
        chart.setVarSymbol(3);
    }
    chart.show();
    chart.ShowXRange(c.start, c.end);
    chart.setCursorX(c.cursor);
    chart.setCursorX(nan); // refused
    EXPECT_EQ(chart.CursorX(), c.cursor);
    EXPECT_EQ(chart.XViewStart(), c.shownStart);

    const QImage shown = chart.grab().toImage();
    const QRect inside = chart.plotArea().toRect().adjusted(1, 1, -1, -1);
    EXPECT_EQ(countPixels(shown, inside, 0) > 0, c.cursorOnThePlot);

    QImage page(1100, 850, QImage::Format_RGB32);
    page.fill(Qt::black);
    QPainter p(&page);
    chart.PrintChart(p, 100.0, 1.5, 1.5, 8.0, 4.5);
    p.end();
    EXPECT_GT(countPixels(page, QRect(150, 150, 800, 450), chart.BackColor()), 0)
        << "the chart was printed";
}

constexpr double farAway = 1e11;

INSTANTIATE_TEST_SUITE_P(
    Views, ExtremeViews,
    testing::Values(
        ExtremeView{"CursorFarRightOfTheView", 45000.0, 45001.0, 5e10, false, 45000.0, false},
        ExtremeView{"CursorFarLeftOfTheView", 45000.0, 45001.0, -5e10, false, 45000.0, false},
        ExtremeView{"ViewFarRightOfTheCursor", farAway - 1.0, farAway, 45000.5, false,
                    farAway - 1.0, false},
        ExtremeView{"ViewOverNearlyAllDoubles", -1e300, 1e300, 45000.5, false, -1e300, true},
        ExtremeView{"ViewWhoseSpanOverflowsIsRefused", -1.7e308, 1.7e308, 45000.5, false, 45000.0,
                    true},
        ExtremeView{"NotANumberAndInfinitePoints", 45000.0, 45001.0, 45000.5, true, 45000.0, true},
        ExtremeView{"NotANumberAndInfinitePointsInAHugeView", -1e300, 1e300, farAway, true, -1e300,
                    true}),
    [](const testing::TestParamInfo<ExtremeView>& info) { return info.param.name; });

// ---- Printing ----

TEST_F(StripChartWidget, PrintedPageHoldsTheCaptionAndTheAxisInsideTheRectangle) {
    test::ScratchFolder folder;
    const QString path = folder.file("chart.pdf");
    chart.setCaption("Site: AB12");
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    printer.setPageOrientation(QPageLayout::Landscape);
    printer.setFontEmbeddingEnabled(true);
    chart.PrintChart(printer, 1.5, 1.5, 8.0, 4.5);

    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    EXPECT_TRUE(bytes.contains("/FontFile")) << "text was drawn with an embedded font";
    EXPECT_TRUE(bytes.contains("/Count 1"));

    // Every word, in points from the paper's corner, lies inside the rectangle asked for.
    QProcess text;
    text.start(QStringLiteral("pdftotext"), {QStringLiteral("-bbox"), path, QStringLiteral("-")});
    ASSERT_TRUE(text.waitForFinished(30000));
    const QString boxes = QString::fromUtf8(text.readAllStandardOutput());
    static const QRegularExpression word(
        R"re(<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="([\d.]+)">([^<]*)<)re");
    const QRectF rectangle = QRectF(1.5 * 72, 1.5 * 72, 8.0 * 72, 4.5 * 72).adjusted(-1, -1, 1, 1);
    QStringList words;
    for (const QRegularExpressionMatch& m : word.globalMatch(boxes)) {
        words << m.captured(5);
        const QRectF box(QPointF(m.captured(1).toDouble(), m.captured(2).toDouble()),
                         QPointF(m.captured(3).toDouble(), m.captured(4).toDouble()));
        EXPECT_TRUE(rectangle.contains(box)) << m.captured(5).toStdString();
    }
    EXPECT_TRUE(words.join(' ').contains("Site: AB12"));
    EXPECT_TRUE(words.contains("3/15/2023")) << "the time axis is printed too";
}

// ---- Settings dialog ----

TEST(ChartSettingsDialog, EditsAndReturnsTheSettings) {
    ChartSettingsDialog dialog;
    ChartSettings start;
    start.appearance.gridLines = true;
    start.appearance.lineWidth = 2;
    start.backColor = 0xD2FFFF;
    dialog.setSettings(start);
    EXPECT_EQ(dialog.settings(), start);

    dialog.gridLinesBox()->setChecked(false);
    dialog.lineWidthBox()->setValue(3);
    dialog.setBackColor(0x102030);
    dialog.buttons()->button(QDialogButtonBox::Ok)->click();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    const ChartSettings edited{{false, 3}, 0x102030};
    EXPECT_EQ(dialog.settings(), edited);

    StripChart chart;
    chart.applySettings(edited);
    EXPECT_EQ(chart.settings(), edited);
    EXPECT_EQ(chart.BackColor(), 0x102030u);
}

} // namespace
} // namespace trendax
