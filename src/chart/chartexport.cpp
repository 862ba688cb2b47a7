#include "chart/chartexport.h"

#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
#include "storage/atomicfile.h"
#include "storage/datetime.h"

#include <QFileInfo>
#include <QImage>
#include <QImageWriter>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>

namespace trendax::chartexport {

namespace {

// Pages and pictures are drawn at this many dots per inch; the chart summarises its curves per
// device pixel column, so this also bounds the size of a vector file.
constexpr double pdfDpi = 150.0;
constexpr double svgDpi = 96.0;
constexpr QSize svgSize(1600, 900);

} // namespace

std::optional<Format> formatOf(const QString& path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    for (const Format f : {Format::Png, Format::Pdf, Format::Svg, Format::Csv})
        if (suffix == suffixOf(f))
            return f;
    return std::nullopt;
}

std::optional<QSize> parsePictureSize(const QString& text) {
    QString t = text.trimmed().toLower();
    t.replace(QChar(0x00D7), QLatin1Char('x'));
    const QStringList parts = t.split(QLatin1Char('x'));
    if (parts.size() != 2)
        return std::nullopt;
    bool okW = false;
    bool okH = false;
    const int w = parts[0].trimmed().toInt(&okW);
    const int h = parts[1].trimmed().toInt(&okH);
    constexpr int largest = 16384;
    if (!okW || !okH || w < 1 || h < 1 || w > largest || h > largest)
        return std::nullopt;
    return QSize(w, h);
}

QString suffixOf(Format format) {
    switch (format) {
    case Format::Png:
        return QStringLiteral("png");
    case Format::Pdf:
        return QStringLiteral("pdf");
    case Format::Svg:
        return QStringLiteral("svg");
    case Format::Csv:
        return QStringLiteral("csv");
    }
    return {};
}

QString rangeText(double start, double end) {
    return datetime::formatGeneral(start) + QStringLiteral(" to ") + datetime::formatGeneral(end);
}

void paintChart(StripChart& chart, const Caption& caption, QPainter& painter, double dpi,
                const QRectF& rect) {
    const QString oldCaption = chart.Caption();
    chart.setCaption(caption.title);
    chart.setLegendNames(caption.names);
    // The range line goes under the chart, in the chart's axis font size.
    QFont font = chart.font();
    font.setPixelSize(std::max(1, int(11.0 * dpi / 96.0)));
    const double lineHeight = QFontMetricsF(font).height() * 1.4;
    const QRectF chartRect(rect.left(), rect.top(), rect.width(),
                           std::max(1.0, rect.height() - lineHeight));
    chart.PrintChart(painter, dpi, chartRect.left() / dpi, chartRect.top() / dpi,
                     chartRect.width() / dpi, chartRect.height() / dpi);
    painter.save();
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(QRectF(rect.left(), chartRect.bottom(), rect.width(), lineHeight),
                     Qt::AlignHCenter | Qt::AlignVCenter, caption.range);
    painter.restore();
    chart.setCaption(oldCaption);
}

QString writePng(StripChart& chart, const Caption& caption, const QString& path, QSize size,
                 double devicePixelRatio) {
    if (size.isEmpty() || !(devicePixelRatio > 0.0))
        return QStringLiteral("Cannot write %1: the picture has no size").arg(path);
    const QSize pixels = (QSizeF(size) * devicePixelRatio).toSize();
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return QStringLiteral("Cannot write %1: the picture is too large").arg(path);
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        paintChart(chart, caption, painter, 96.0, QRectF(QPointF(0, 0), QSizeF(size)));
    }
    return writeWhole(path, [&image](QIODevice& out) {
        QImageWriter writer(&out, "png");
        return writer.write(image);
    });
}

QString writePdf(StripChart& chart, const Caption& caption, const QString& path) {
    return writeWhole(path, [&](QIODevice& out) {
        QPdfWriter pdf(&out);
        pdf.setTitle(caption.title);
        pdf.setCreator(QStringLiteral("Trendax 2"));
        pdf.setResolution(int(pdfDpi));
        pdf.setPageLayout(QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Landscape,
                                      QMarginsF(0.5, 0.5, 0.5, 0.5), QPageLayout::Inch));
        QPainter painter;
        if (!painter.begin(&pdf))
            return false;
        const QRect page = pdf.pageLayout().paintRectPixels(pdf.resolution());
        paintChart(chart, caption, painter, pdfDpi, QRectF(QPointF(0, 0), QSizeF(page.size())));
        return painter.end();
    });
}

QString writeSvg(StripChart& chart, const Caption& caption, const QString& path) {
    return writeWhole(path, [&](QIODevice& out) {
        QSvgGenerator svg;
        svg.setOutputDevice(&out);
        svg.setTitle(caption.title);
        svg.setResolution(int(svgDpi));
        svg.setSize(svgSize);
        svg.setViewBox(QRect(QPoint(0, 0), svgSize));
        QPainter painter;
        if (!painter.begin(&svg))
            return false;
        paintChart(chart, caption, painter, svgDpi, QRectF(QPointF(0, 0), QSizeF(svgSize)));
        return painter.end();
    });
}

QString writeCsv(StripChart& chart, const std::vector<csvexport::Column>& columns,
                 const QString& path) {
    return writeWhole(
        path, [&](QIODevice& out) { return csvexport::writeVisible(chart.model(), columns, out); });
}

} // namespace trendax::chartexport
