#include "chart/chartsettingsdialog.h"
#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
#include "chartfixtures.h"
#include "support/scratchfolder.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QImage>
#include <QPaintEngine>
#include <QPainter>
#include <QPrinter>
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
constexpr PackedColor green = 0x00FF00;

QRgb rgbOf(PackedColor c) {
    return qRgb(int(c & 0xFF), int((c >> 8) & 0xFF), int(c >> 16));
}

int countPixels(const QImage& image, const QRect& area, PackedColor color) {
    int n = 0;
    const QRect r = area.intersected(image.rect());
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x)
            n += (image.pixel(x, y) & 0xFFFFFF) == (rgbOf(color) & 0xFFFFFF);
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

// ---- Mouse ----

TEST_F(StripChartWidget, LeftClickInThePlotMovesTheCursorToTheTimeUnderThePointer) {
    QSignalSpy cursor(&chart, &StripChart::CursorChange);
    QSignalSpy down(&chart, &StripChart::ChartMouseDown);
    const QRectF plot = chart.plotArea();
    ASSERT_TRUE(chart.rect().contains(plot.toRect()));
    const QPoint at(int(plot.left() + plot.width() / 4.0), int(plot.center().y()));
    QTest::mouseClick(&chart, Qt::LeftButton, Qt::NoModifier, at);

    ASSERT_EQ(cursor.count(), 1);
    const double t = cursor.at(0).at(0).toDouble();
    const double expected = 45000.0 + (at.x() - plot.left()) / plot.width();
    EXPECT_NEAR(t, expected, 1.0 / plot.width()) << "within one pixel";
    EXPECT_NEAR(t, 45000.25, 2.0 / plot.width());
    EXPECT_EQ(chart.CursorX(), t);
    ASSERT_EQ(down.count(), 1);
    EXPECT_EQ(down.at(0).at(0).toInt(), 1);
    EXPECT_EQ(down.at(0).at(2).toDouble(), at.x());
    EXPECT_EQ(down.at(0).at(3).toDouble(), at.y());
}

TEST_F(StripChartWidget, RightClickReportsButtonTwoAndLeavesTheCursor) {
    chart.setCursorX(45000.1);
    QSignalSpy cursor(&chart, &StripChart::CursorChange);
    QSignalSpy down(&chart, &StripChart::ChartMouseDown);
    const QPoint at = chart.plotArea().center().toPoint();
    QTest::mouseClick(&chart, Qt::RightButton, Qt::ShiftModifier | Qt::ControlModifier, at);
    ASSERT_EQ(down.count(), 1);
    EXPECT_EQ(down.at(0).at(0).toInt(), 2);
    EXPECT_EQ(down.at(0).at(1).toInt(), 1 | 2);
    EXPECT_EQ(cursor.count(), 0);
    EXPECT_EQ(chart.CursorX(), 45000.1);
}

TEST_F(StripChartWidget, LeftClickOnTheAxisIsReportedButMovesNothing) {
    QSignalSpy cursor(&chart, &StripChart::CursorChange);
    QSignalSpy down(&chart, &StripChart::ChartMouseDown);
    QTest::mouseClick(&chart, Qt::LeftButton, Qt::NoModifier, QPoint(2, 2));
    EXPECT_EQ(down.count(), 1);
    EXPECT_EQ(cursor.count(), 0);
}

TEST_F(StripChartWidget, SettingTheCursorFromTheProgramRaisesNoEvent) {
    QSignalSpy cursor(&chart, &StripChart::CursorChange);
    chart.setCursorX(45000.75);
    EXPECT_EQ(cursor.count(), 0);
    EXPECT_EQ(chart.CursorX(), 45000.75);
}

// ---- Selectors ----

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

TEST_F(StripChartWidget, HiddenVariableStatisticsAreStillAnswered) {
    chart.setCurrentVar(0);
    chart.setVarVisible(false);
    chart.setCursorX(45000.26);
    EXPECT_EQ(chart.CursorValue(0), 90.0);
    EXPECT_EQ(chart.DataMax(0), 90.0);
    EXPECT_EQ(chart.DataMin(0), 10.0);
    EXPECT_EQ(chart.DataAvg(0), 42.5);
    chart.ShowXRange(45000.25, 45000.5);
    EXPECT_EQ(chart.ViewMin(0), 50.0);
    EXPECT_EQ(chart.ViewAvg(0), 70.0);
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
    QImage hidden = chart.grab().toImage();
    EXPECT_EQ(countPixels(hidden, chart.plotArea().toRect(), red), 0);
    chart.setTrackCount(2);
    EXPECT_GT(countPixels(chart.grab().toImage(), bottom, red), 100);
}

TEST_F(StripChartWidget, MarkersAddToTheLine) {
    chart.setCurrentVar(0);
    chart.setVarColor(red);
    const QRect plot = chart.plotArea().toRect();
    const int lineOnly = countPixels(chart.grab().toImage(), plot, red);
    chart.setVarSymbol(9); // filled squares
    const int withMarkers = countPixels(chart.grab().toImage(), plot, red);
    EXPECT_GT(withMarkers, lineOnly + 3 * 20);
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

// Records every text a painter draws, with where it lands on the device.
class TextRecorder : public QPaintDevice {
public:
    struct Item {
        QString text;
        QPointF at;
    };
    std::vector<Item> items;

    QPaintEngine* paintEngine() const override { return &engine_; }

protected:
    int metric(PaintDeviceMetric m) const override {
        switch (m) {
        case PdmWidth:
            return 1100;
        case PdmHeight:
            return 850;
        case PdmWidthMM:
            return 279;
        case PdmHeightMM:
            return 216;
        case PdmDpiX:
        case PdmDpiY:
        case PdmPhysicalDpiX:
        case PdmPhysicalDpiY:
            return 100;
        case PdmDepth:
            return 32;
        case PdmNumColors:
            return 1 << 24;
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return int(devicePixelRatioFScale());
        }
        return 0;
    }

private:
    class Engine : public QPaintEngine {
    public:
        explicit Engine(TextRecorder* owner) : QPaintEngine(AllFeatures), owner_(owner) {}
        bool begin(QPaintDevice*) override { return true; }
        bool end() override { return true; }
        void updateState(const QPaintEngineState& state) override {
            if (state.state() & DirtyTransform)
                transform_ = state.transform();
        }
        void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
        void drawPolygon(const QPointF*, int, PolygonDrawMode) override {}
        void drawPath(const QPainterPath&) override {}
        void drawTextItem(const QPointF& p, const QTextItem& item) override {
            owner_->items.push_back({item.text(), transform_.map(p)});
        }
        Type type() const override { return User; }

    private:
        TextRecorder* owner_;
        QTransform transform_;
    };
    mutable Engine engine_{this};
};

TEST_F(StripChartWidget, PrintedChartCarriesTheCaptionInsideItsRectangle) {
    chart.setCaption("Site: AB12");
    TextRecorder page;
    {
        QPainter p(&page);
        chart.PrintChart(p, 100.0, 1.5, 1.5, 8.0, 4.5);
    }
    const QRectF rectangle(150.0, 150.0, 800.0, 450.0);
    bool found = false;
    bool axisLabels = false;
    for (const auto& item : page.items) {
        EXPECT_TRUE(rectangle.contains(item.at)) << item.text.toStdString();
        found = found || item.text == "Site: AB12";
        axisLabels = axisLabels || item.text.contains("3/15/2023");
    }
    EXPECT_TRUE(found);
    EXPECT_TRUE(axisLabels) << "the time axis is printed too";
}

TEST_F(StripChartWidget, PrintingOntoAPdfPrinterWritesThePage) {
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
    EXPECT_TRUE(bytes.startsWith("%PDF"));
    EXPECT_TRUE(bytes.contains("/FontFile")) << "text was drawn with an embedded font";
    EXPECT_TRUE(bytes.contains("/Count 1"));
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
    const ChartSettings edited = dialog.settings();
    EXPECT_FALSE(edited.appearance.gridLines);
    EXPECT_EQ(edited.appearance.lineWidth, 3);
    EXPECT_EQ(edited.backColor, 0x102030u);

    StripChart chart;
    chart.applySettings(edited);
    EXPECT_EQ(chart.settings(), edited);
    EXPECT_EQ(chart.BackColor(), 0x102030u);
}

} // namespace
} // namespace trendax
