#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
#include "chartfixtures.h"

#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace trendax {
namespace {

// Pixels of the reference cursor's blue in a one-pixel column of the plot, a pixel either side.
int referencePixels(const QImage& image, int x, const QRectF& plot) {
    int n = 0;
    for (int dx = -1; dx <= 1; ++dx)
        for (int y = int(plot.top()) + 1; y < int(plot.bottom()); ++y)
            n += image.valid(x + dx, y) && image.pixel(x + dx, y) == qRgb(0, 0, 160);
    return n;
}

TEST(ReferenceCursor, DrawnDashedOnScreenAndOnPaperAndEveryChangeReported) {
    StripChart chart;
    chart.resize(800, 400);
    chart.setTrackCount(2);
    chart.ShowXRange(45000.0, 45001.0);
    const XYArray day = test::makeArray({{45000.0, 10.0}, {45001.0, 20.0}});
    chart.AddXYArray(0, &day);
    QSignalSpy changes(&chart, &StripChart::ReferenceChange);
    const QRectF plot = chart.plotArea();
    const auto xOf = [&](double t) { return int(plot.left() + (t - 45000.0) * plot.width()); };

    EXPECT_EQ(referencePixels(chart.grab().toImage(), xOf(45000.25), plot), 0);
    chart.model().setReferenceX(45000.25);
    const int dashes = referencePixels(chart.grab().toImage(), xOf(45000.25), plot);
    EXPECT_GT(dashes, plot.height() / 4) << "a line across both tracks";
    EXPECT_LT(dashes, plot.height() * 0.9) << "with gaps: dashed";

    chart.model().setReferenceX(45000.75);
    chart.model().setReferenceX(45000.75); // no change, no report
    const QImage moved = chart.grab().toImage();
    EXPECT_EQ(referencePixels(moved, xOf(45000.25), plot), 0);
    EXPECT_GT(referencePixels(moved, xOf(45000.75), plot), plot.height() / 4);

    // Printing (and exporting, which prints) draws it too.
    QImage page(800, 400, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter painter(&page);
    chart.PrintChart(painter, 96, 0, 0, 800.0 / 96, 400.0 / 96);
    painter.end();
    EXPECT_GT(referencePixels(page, xOf(45000.75), plot), plot.height() / 4);

    chart.model().setReferenceX(std::nullopt);
    EXPECT_EQ(referencePixels(chart.grab().toImage(), xOf(45000.75), plot), 0);
    EXPECT_EQ(changes.count(), 3) << "set, moved, removed";
}

} // namespace
} // namespace trendax
