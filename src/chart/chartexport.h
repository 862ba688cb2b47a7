#pragma once

#include "chart/csvexport.h"

#include <QRectF>
#include <QSize>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

class QPainter;

namespace trendax {

class StripChart;

// The chart's view written to files for other programs. Every writer replaces its file whole or
// leaves it as it was, and returns the empty text on success, otherwise the message to show: the
// file and the reason ("Cannot write /media/usb/view.pdf: No space left on device").
namespace chartexport {

enum class Format { Png, Pdf, Svg, Csv };

// The format a file name asks for, by its suffix in any letter case; nullopt for any other.
std::optional<Format> formatOf(const QString& path);
// The file name suffix of a format, without the dot.
QString suffixOf(Format format);

// "1920x1080" ("x", "X" or "×", blanks allowed) as a picture size of 1 to 16384 pixels each way;
// nullopt for anything else.
std::optional<QSize> parsePictureSize(const QString& text);

// What a picture of the chart carries besides the chart: the caption ("Site: " + code) and a line
// that names the time range shown.
struct Caption {
    QString title;
    QString range;
    QStringList names; // the channel names for the legend, by variable
};

// The visible window, as the time range line says it.
QString rangeText(double start, double end);

// Draws the chart with its caption, range line and legend into rect (device pixels at dpi).
void paintChart(StripChart& chart, const Caption& caption, QPainter& painter, double dpi,
                const QRectF& rect);

// The chart at size (logical pixels) and device pixel ratio, as on screen.
QString writePng(StripChart& chart, const Caption& caption, const QString& path, QSize size,
                 double devicePixelRatio);
// The chart as vector graphics on a landscape page.
QString writePdf(StripChart& chart, const Caption& caption, const QString& path);
QString writeSvg(StripChart& chart, const Caption& caption, const QString& path);
// The points of the visible window (see csvexport::writeVisible).
QString writeCsv(StripChart& chart, const std::vector<csvexport::Column>& columns,
                 const QString& path);

} // namespace chartexport
} // namespace trendax
