#include "chart/stripchart.h"

#include "chart/chartmapping.h"
#include "chart/chartsettingsdialog.h"
#include "chart/gaps.h"
#include "chart/legend.h"
#include "chart/navigation.h"
#include "chart/pixelpath.h"
#include "chart/stripchartmodel.h"
#include "chart/timeticks.h"
#include "chart/valueticks.h"
#include "chart/viewmoves.h"
#include "storage/dialogs.h"
#include "storage/qtcolor.h"

#include <QElapsedTimer>
#include <QFontMetricsF>
#include <QHelpEvent>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEngine>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QPrinter>
#include <QTimer>
#include <QToolTip>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

namespace trendax {

namespace {

// Sizes below are in screen pixels at 96 dpi and multiplied by a scale for other resolutions,
// so a printed chart keeps the proportions of the one on screen.
constexpr double axisFontPixels = 11.0;
constexpr double captionFontPixels = 15.0;
constexpr double bandGap = 4.0;
constexpr double markerSize = 7.0;
constexpr double flagWidth = 7.0;
constexpr double flagHeight = 6.0;

// Black at an opacity of alpha in 255 over a track's colour, mixed beforehand: the raster engine
// fills an opaque colour in place, but blends a translucent one span by span and hands every
// tall blend to its thread pool, which costs more than the rest of a repaint.
QColor shadeOf(const QColor& track, int alpha) {
    const auto mix = [alpha](int c) { return (c * (255 - alpha) + 127) / 255; };
    return QColor(mix(track.red()), mix(track.green()), mix(track.blue()));
}
constexpr int gridAlpha = 60;
constexpr int gapAlpha = 28;

// Where everything goes for one area and resolution; recomputed per paint (cheap) so that the
// click mapping and the picture always agree.
struct Geometry {
    QRectF area;
    double scale = 1.0;
    QRectF plot;
    std::vector<QRectF> bands;
    std::vector<std::vector<ValueTick>> valueTicks; // per band
    TimeMapping time;
    int maxTimeTicks = 1; // labelled tics the time axis has room for
    QFont axisFont;
    QFont captionFont;
    double captionHeight = 0.0;
};

} // namespace

// ---- Private state ----

struct StripChart::Impl {
    StripChartModel model;
    QStringList legendNames;
    QPixmap layer;
    std::uint64_t layerRevision = 0;
    bool layerValid = false;
    // Curves redrawn at most every curveRepaintInterval ms, when set; a change within it waits
    // for the timer.
    int curveRepaintInterval = 0;
    QElapsedTimer lastLayerPaint;
    QTimer deferredRepaint;
    int lastCursorPx = -1;
    std::optional<int> lastReferencePx;
    // A left press in the plot drags the cursor until the release. Positions that arrive
    // before the previous one was painted wait; only the last of them is applied.
    bool dragging = false;
    bool awaitingPaint = false;
    bool flushQueued = false;
    std::optional<double> pendingDrag;
    std::vector<CurvePoint> curve; // scratch, kept to avoid an allocation per curve
    std::vector<QPointF> polyline; // the same in pixels
    EventMarkers markers;
    std::vector<MarkerColumn> markerColumns; // scratch
    std::vector<gaps::Gap> gapList;          // scratch
    std::vector<std::size_t> gapBreaks;      // scratch
    std::vector<std::size_t> pieceStarts;    // where each piece of the polyline begins
    // Mouse navigation: what the press under way does, where it went down (pixels), the window
    // then, and the moving edge of a range selection. A pan is one view for Back.
    enum class Navigation { None, Pan, Range, Reference };
    Navigation navigation = Navigation::None;
    Qt::MouseButton navigationButton = Qt::NoButton;
    double pressX = 0.0;
    double rangeX = 0.0;
    TimeWindow grabbed;
    std::optional<ViewGesture> panGesture;
    std::optional<ViewGesture> touchpadGesture;

    Geometry geometry(const QRectF& area, double scale, const QFont& base) const;
    void paintBase(QPainter& p, const Geometry& g);
    bool curvesWait() const {
        return curveRepaintInterval > 0 && lastLayerPaint.isValid() &&
               lastLayerPaint.elapsed() < curveRepaintInterval;
    }
    void paintCurves(QPainter& p, const Geometry& g);
    void paintMarkers(QPainter& p, int style, const QColor& color, double scale);
    void paintGaps(QPainter& p, const Geometry& g);
    void breakAtGaps(int k, const Geometry& g);
    void drawPieces(QPainter& p);
    void paintMarkerLines(QPainter& p, const Geometry& g);
    void paintMarkerFlags(QPainter& p, const Geometry& g);
    std::optional<MarkerColumn> flagAt(const Geometry& g, const QPointF& pos) const;
    void paintAxes(QPainter& p, const Geometry& g) const;
    void paintCursor(QPainter& p, const Geometry& g) const;
    void paintRangeSelection(QPainter& p, const Geometry& g) const;
    void paintReference(QPainter& p, const Geometry& g) const;
    // The Y tics of every shown track in bands between top and bottom; the widest label.
    double placeValueTicks(Geometry& g, double top, double bottom) const;
    // Repaints where the reference cursor was and where it is now.
    void updateReferenceStrips(QWidget& widget);
    void paintLegend(QPainter& p, const Geometry& g) const;
};

Geometry StripChart::Impl::geometry(const QRectF& area, double scale, const QFont& base) const {
    Geometry g;
    g.area = area;
    g.scale = scale;
    g.axisFont = base;
    g.axisFont.setPixelSize(std::max(1, pixelIndex(axisFontPixels * scale)));
    g.captionFont = base;
    g.captionFont.setPixelSize(std::max(1, pixelIndex(captionFontPixels * scale)));
    g.captionFont.setBold(true);

    const QFontMetricsF fm(g.axisFont);
    double top = area.top() + 6.0 * scale;
    if (!model.caption().isEmpty()) {
        g.captionHeight = QFontMetricsF(g.captionFont).height();
        top += g.captionHeight + 4.0 * scale;
    }
    const double bottom = area.bottom() - 2.0 * fm.height() - 8.0 * scale;
    // The Y axis is as wide as its widest label.
    const double labelWidth = placeValueTicks(g, top, bottom);
    const double left = area.left() + labelWidth + 10.0 * scale;
    const double right = area.right() - fm.horizontalAdvance(QStringLiteral("00/00/0000")) / 2.0;
    g.plot = QRectF(QPointF(left, top),
                    QPointF(std::max(left + 1.0, right), std::max(top + 1.0, bottom)));

    const int n = model.trackCount();
    const double gap = bandGap * scale;
    const double bandHeight = std::max(1.0, (g.plot.height() - gap * (n - 1)) / n);
    for (int t = 0; t < n; ++t)
        g.bands.emplace_back(g.plot.left(), g.plot.top() + t * (bandHeight + gap), g.plot.width(),
                             bandHeight);
    g.time = TimeMapping{model.xViewStart(), model.xViewEnd(), g.plot.left(), g.plot.width()};
    // A slot as wide as the widest label line, a date or a time with tenths.
    const double tickWidth = std::max(fm.horizontalAdvance(QStringLiteral("00/00/0000")),
                                      fm.horizontalAdvance(QStringLiteral("00:00:00.0"))) +
                             16.0 * scale;
    g.maxTimeTicks = std::max(1, pixelIndex(std::floor(g.plot.width() / tickWidth)));
    return g;
}

double StripChart::Impl::placeValueTicks(Geometry& g, double top, double bottom) const {
    const QFontMetricsF fm(g.axisFont);
    const int n = model.trackCount();
    const double bandHeight =
        std::max(1.0, (std::max(top + 1.0, bottom) - top - bandGap * g.scale * (n - 1)) / n);
    double labelWidth = fm.horizontalAdvance(QStringLiteral("0000"));
    g.valueTicks.clear();
    for (int t = 0; t < n; ++t) {
        const TrackSettings track = model.track(t);
        g.valueTicks.push_back(valueTicks(track.yMin, track.yMax, bandHeight, fm.height()));
        for (const ValueTick& tick : g.valueTicks.back())
            labelWidth = std::max(labelWidth, fm.horizontalAdvance(tick.label));
    }
    return labelWidth;
}

// ---- Painting ----

void StripChart::Impl::paintBase(QPainter& p, const Geometry& g) {
    p.save();
    p.setRenderHint(QPainter::Antialiasing, false);
    p.fillRect(g.area, toQColor(model.backColor()));
    const QPen frame(QColor(128, 128, 128), 0.0);
    for (std::size_t t = 0; t < g.bands.size(); ++t) {
        p.fillRect(g.bands[t], toQColor(model.track(int(t)).color));
    }
    // Gaps are shaded under the grid: both colours are mixed with the track's, not blended.
    paintGaps(p, g);
    if (model.appearance().gridLines) {
        const auto ticks = timeTicks(model.xViewStart(), model.xViewEnd(), g.maxTimeTicks);
        for (std::size_t t = 0; t < g.bands.size(); ++t) {
            const QRectF& band = g.bands[t];
            p.setPen(
                QPen(shadeOf(toQColor(model.track(int(t)).color), gridAlpha), 0.0, Qt::DotLine));
            for (const TimeTick& tick : ticks) {
                const double x = safePixel(g.time.toX(tick.time));
                p.drawLine(QPointF(x, band.top()), QPointF(x, band.bottom()));
            }
            for (const ValueTick& tick : g.valueTicks[t]) {
                if (tick.end)
                    continue;
                const double y = band.bottom() - band.height() * tick.position;
                p.drawLine(QPointF(band.left(), y), QPointF(band.right(), y));
            }
        }
    }
    paintMarkerLines(p, g);
    paintCurves(p, g);
    paintMarkerFlags(p, g);
    p.setPen(frame);
    p.setBrush(Qt::NoBrush);
    for (const QRectF& band : g.bands)
        p.drawRect(band);
    paintAxes(p, g);
    if (!model.caption().isEmpty()) {
        p.setFont(g.captionFont);
        p.setPen(Qt::black);
        const QRectF captionRect(g.area.left(), g.area.top() + 4.0 * g.scale, g.area.width(),
                                 g.captionHeight);
        p.drawText(captionRect, Qt::AlignHCenter | Qt::AlignTop, model.caption());
    }
    p.restore();
}

void StripChart::Impl::paintCurves(QPainter& p, const Geometry& g) {
    const double lineWidth = model.appearance().lineWidth * g.scale;
    for (int k = 0; k < StripChartModel::variableCount; ++k) {
        const VariableSettings& v = model.variable(k);
        if (!v.visible || v.track >= model.trackCount() || model.pointCount(k) == 0)
            continue;
        const QRectF& band = g.bands[std::size_t(v.track)];
        model.curvePoints(k, g.time, curve);
        const ValueMapping values{v.yMin, v.yMax, band.top(), band.height()};
        polyline.clear();
        polyline.reserve(curve.size());
        for (const CurvePoint& c : curve)
            polyline.emplace_back(safePixel(g.time.toX(c.time)), values.toY(c.value));
        breakAtGaps(k, g);
        p.save();
        p.setClipRect(band);
        const QColor color = toQColor(v.color);
        p.setPen(QPen(color, lineWidth < 1.5 ? 0.0 : lineWidth, Qt::SolidLine, Qt::FlatCap,
                      Qt::BevelJoin));
        drawPieces(p);
        if (v.symbol > 0)
            paintMarkers(p, (v.symbol - 1) % 13 + 1, color, g.scale);
        p.restore();
    }
}

// Thirteen marker styles: outlined and filled squares, circles, triangles and diamonds, a plus,
// a cross, a star and a bar, so every variable of a full chart has its own.
void StripChart::Impl::paintMarkers(QPainter& p, int style, const QColor& color, double scale) {
    const double r = markerSize * scale / 2.0;
    const bool filled = style >= 9;
    p.setPen(QPen(color, scale < 1.5 ? 0.0 : scale));
    p.setBrush(filled ? QBrush(color) : QBrush(Qt::NoBrush));
    QPointF poly[4];
    for (const QPointF& c : polyline) {
        switch (style) {
        case 1:
        case 9:
            p.drawRect(QRectF(c.x() - r, c.y() - r, 2 * r, 2 * r));
            break;
        case 2:
        case 10:
            p.drawEllipse(c, r, r);
            break;
        case 3:
        case 11:
            poly[0] = {c.x(), c.y() - r};
            poly[1] = {c.x() + r, c.y() + r};
            poly[2] = {c.x() - r, c.y() + r};
            p.drawPolygon(poly, 3);
            break;
        case 4:
        case 13:
            poly[0] = {c.x(), c.y() + r};
            poly[1] = {c.x() + r, c.y() - r};
            poly[2] = {c.x() - r, c.y() - r};
            p.drawPolygon(poly, 3);
            break;
        case 5:
        case 12:
            poly[0] = {c.x(), c.y() - r};
            poly[1] = {c.x() + r, c.y()};
            poly[2] = {c.x(), c.y() + r};
            poly[3] = {c.x() - r, c.y()};
            p.drawPolygon(poly, 4);
            break;
        case 6:
            p.drawLine(QPointF(c.x() - r, c.y()), QPointF(c.x() + r, c.y()));
            p.drawLine(QPointF(c.x(), c.y() - r), QPointF(c.x(), c.y() + r));
            break;
        case 7:
            p.drawLine(QPointF(c.x() - r, c.y() - r), QPointF(c.x() + r, c.y() + r));
            p.drawLine(QPointF(c.x() - r, c.y() + r), QPointF(c.x() + r, c.y() - r));
            break;
        case 8:
            p.drawLine(QPointF(c.x() - r, c.y()), QPointF(c.x() + r, c.y()));
            p.drawLine(QPointF(c.x(), c.y() - r), QPointF(c.x(), c.y() + r));
            p.drawLine(QPointF(c.x() - r * 0.7, c.y() - r * 0.7),
                       QPointF(c.x() + r * 0.7, c.y() + r * 0.7));
            p.drawLine(QPointF(c.x() - r * 0.7, c.y() + r * 0.7),
                       QPointF(c.x() + r * 0.7, c.y() - r * 0.7));
            break;
        }
    }
}

// ---- Recording gaps ----

// Each band shades the stretches where any of its curves has a recording gap.
void StripChart::Impl::paintGaps(QPainter& p, const Geometry& g) {
    if (model.appearance().bridgeGaps)
        return;
    std::vector<gaps::Gap> bandGaps;
    for (std::size_t t = 0; t < g.bands.size(); ++t) {
        bandGaps.clear();
        for (int k = 0; k < StripChartModel::variableCount; ++k) {
            const VariableSettings& v = model.variable(k);
            if (!v.visible || v.track != int(t))
                continue;
            model.recordingGaps(k, model.xViewStart(), model.xViewEnd(), gapList);
            bandGaps.insert(bandGaps.end(), gapList.begin(), gapList.end());
        }
        std::sort(bandGaps.begin(), bandGaps.end(),
                  [](const gaps::Gap& a, const gaps::Gap& b) { return a.start < b.start; });
        const QRectF& band = g.bands[t];
        const QColor shade = shadeOf(toQColor(model.track(int(t)).color), gapAlpha);
        const auto fill = [&](double x0, double x1) {
            x0 = std::max(x0, band.left());
            x1 = std::min(x1, band.right());
            if (x1 - x0 >= 1.0)
                p.fillRect(QRectF(x0, band.top(), x1 - x0, band.height()), shade);
        };
        // Overlapping gaps of several curves are shaded once, so the shade stays even.
        double from = 0.0, to = 0.0;
        bool open = false;
        for (const gaps::Gap& gap : bandGaps) {
            const double x0 = safePixel(g.time.toX(gap.start));
            const double x1 = safePixel(g.time.toX(gap.end));
            if (open && x0 <= to) {
                to = std::max(to, x1);
                continue;
            }
            if (open)
                fill(from, to);
            from = x0;
            to = x1;
            open = true;
        }
        if (open)
            fill(from, to);
    }
}

// Shortens the polyline of variable k's curve and cuts it where it would bridge a gap.
void StripChart::Impl::breakAtGaps(int k, const Geometry& g) {
    gapBreaks.clear();
    if (!model.appearance().bridgeGaps) {
        model.recordingGaps(k, model.xViewStart(), model.xViewEnd(), gapList);
        gaps::gapBreaks(curve, gapList, g.time, gapBreaks);
    }
    gaps::collapsePieces(polyline, gapBreaks, pieceStarts);
}

void StripChart::Impl::drawPieces(QPainter& p) {
    for (std::size_t i = 0; i < pieceStarts.size(); ++i) {
        const std::size_t from = pieceStarts[i];
        const std::size_t to = i + 1 < pieceStarts.size() ? pieceStarts[i + 1] : polyline.size();
        if (to - from == 1)
            p.drawPoint(polyline[from]); // a lone point between two gaps stays visible
        else if (to > from)
            p.drawPolyline(polyline.data() + from, int(to - from));
    }
}

// ---- Event markers ----

namespace {

QColor markerColor(MarkerKind kind) {
    switch (kind) {
    case MarkerKind::Fault:
        return QColor(220, 20, 20);
    case MarkerKind::StartStop:
        return QColor(0, 150, 60);
    case MarkerKind::Comment:
        return QColor(150, 60, 220);
    case MarkerKind::Other:
        break;
    }
    return QColor(110, 110, 110);
}

// The colour of a marker's line: opaque and pale, so the curves drawn over it stay clear.
QColor lineColor(MarkerKind kind) {
    const QColor c = markerColor(kind);
    return QColor((c.red() + 2 * 255) / 3, (c.green() + 2 * 255) / 3, (c.blue() + 2 * 255) / 3);
}

// Whole-pixel rectangles of one colour per marker kind, the most urgent kinds on top.
void paintByKind(QPainter& p, std::vector<QRect> (&rects)[4], bool lines) {
    for (int k = 3; k >= 0; --k) {
        const QColor color = lines ? lineColor(MarkerKind(k)) : markerColor(MarkerKind(k));
        for (const QRect& r : rects[k])
            p.fillRect(r, color);
    }
}

} // namespace

// A thin line across all tracks per pixel column that holds markers, under the curves.
void StripChart::Impl::paintMarkerLines(QPainter& p, const Geometry& g) {
    if (!model.appearance().eventMarkers || markers.empty())
        return;
    markers.columns(g.time, markerColumns);
    const QRect plot = g.plot.toAlignedRect() & g.plot.toRect();
    if (plot.isEmpty())
        return;
    if (p.paintEngine() && p.paintEngine()->type() == QPaintEngine::Raster && g.scale == 1.0) {
        // A marker in every pixel column would cost a span per line and row; a strip of all the
        // lines, tiled down the plot, is blended whole rows at a time instead.
        QImage strip(plot.width(), std::min(plot.height(), 32),
                     QImage::Format_ARGB32_Premultiplied);
        strip.fill(Qt::transparent);
        auto* pixels = reinterpret_cast<QRgb*>(strip.scanLine(0));
        for (const MarkerColumn& c : markerColumns)
            if (c.x >= plot.left() && c.x <= plot.right())
                pixels[c.x - plot.left()] = lineColor(c.kind).rgba();
        for (int y = 1; y < strip.height(); ++y)
            std::memcpy(strip.scanLine(y), pixels, std::size_t(strip.bytesPerLine()));
        p.drawTiledPixmap(plot, QPixmap::fromImage(strip));
        return;
    }
    std::vector<QRect> lines[4];
    const int w = std::max(1, pixelIndex(g.scale));
    for (const MarkerColumn& c : markerColumns)
        if (c.x >= plot.left() && c.x <= plot.right())
            lines[int(c.kind)].emplace_back(c.x, plot.top(), std::min(w, plot.right() + 1 - c.x),
                                            plot.height());
    paintByKind(p, lines, true);
}

// The flags at the top of the plot, over the curves; the columns are those of the lines.
void StripChart::Impl::paintMarkerFlags(QPainter& p, const Geometry& g) {
    if (!model.appearance().eventMarkers || markers.empty())
        return;
    std::vector<QRect> flags[4];
    const QRect plot = g.plot.toAlignedRect() & g.plot.toRect();
    const QSize size(pixelIndex(flagWidth * g.scale), pixelIndex(flagHeight * g.scale));
    for (const MarkerColumn& c : markerColumns)
        if (c.x >= plot.left() && c.x <= plot.right())
            flags[int(c.kind)].push_back(QRect(QPoint(c.x, plot.top()), size) & plot);
    paintByKind(p, flags, false);
}

std::optional<MarkerColumn> StripChart::Impl::flagAt(const Geometry& g, const QPointF& pos) const {
    if (!model.appearance().eventMarkers || pos.y() < g.plot.top() - 1.0 ||
        pos.y() > g.plot.top() + flagHeight + 1.0 || pos.x() < g.plot.left() - 1.0 ||
        pos.x() > g.plot.right() + flagWidth)
        return std::nullopt;
    return markers.columnAt(g.time, pos.x(), flagWidth);
}

void StripChart::Impl::paintAxes(QPainter& p, const Geometry& g) const {
    p.setFont(g.axisFont);
    p.setPen(QPen(Qt::black, 0.0));
    const QFontMetricsF fm(g.axisFont);
    const double tickLength = 4.0 * g.scale;

    // Y axis of every band, labelled from TrackYMin at the bottom to TrackYMax at the top.
    for (std::size_t t = 0; t < g.bands.size(); ++t) {
        const QRectF& band = g.bands[t];
        for (const ValueTick& tick : g.valueTicks[t]) {
            const double y = band.bottom() - band.height() * tick.position;
            p.drawLine(QPointF(band.left() - tickLength, y), QPointF(band.left(), y));
            if (tick.label.isEmpty())
                continue;
            const QString& label = tick.label;
            // Keep the end labels inside the band so neighbouring bands do not collide.
            const double h = fm.height();
            // (Not std::clamp: a band lower than a label has its bounds the wrong way round.)
            const double top = std::max(band.top(), std::min(y - h / 2.0, band.bottom() - h));
            p.drawText(QRectF(g.area.left(), top,
                              band.left() - tickLength - g.area.left() - 2.0 * g.scale, h),
                       Qt::AlignRight | Qt::AlignVCenter, label);
        }
    }

    // Time axis under the last band.
    const double axisY = g.plot.bottom();
    for (const TimeTick& tick : timeTicks(model.xViewStart(), model.xViewEnd(), g.maxTimeTicks)) {
        const double x = safePixel(g.time.toX(tick.time));
        p.drawLine(QPointF(x, axisY), QPointF(x, axisY + tickLength));
        const double w = fm.horizontalAdvance(QStringLiteral("00/00/0000")) + 8.0 * g.scale;
        p.drawText(QRectF(x - w / 2.0, axisY + tickLength + 1.0 * g.scale, w, 2.0 * fm.height()),
                   Qt::AlignHCenter | Qt::AlignTop, tick.label);
    }
}

// On paper each track names its curves in their colours, at the track's top left corner, on a
// white box so that the names stay readable over the curves.
void StripChart::Impl::paintLegend(QPainter& p, const Geometry& g) const {
    const auto tracks = legendByTrack(model, legendNames);
    p.save();
    p.setFont(g.axisFont);
    const QFontMetricsF fm(g.axisFont);
    const double pad = 3.0 * g.scale;
    for (std::size_t t = 0; t < tracks.size() && t < g.bands.size(); ++t) {
        if (tracks[t].empty())
            continue;
        const QRectF& band = g.bands[t];
        double width = pad;
        for (const LegendEntry& e : tracks[t])
            width += fm.horizontalAdvance(e.name) + 2.0 * pad;
        const QRectF box(band.left() + pad, band.top() + pad,
                         std::min(width, band.width() - 2 * pad), fm.height() + pad);
        p.setClipRect(band);
        p.fillRect(box, QColor(255, 255, 255, 220));
        double x = box.left() + pad;
        for (const LegendEntry& e : tracks[t]) {
            p.setPen(toQColor(e.color));
            p.drawText(QPointF(x, box.top() + pad / 2 + fm.ascent()), e.name);
            x += fm.horizontalAdvance(e.name) + 2.0 * pad;
        }
    }
    p.restore();
}

void StripChart::Impl::paintCursor(QPainter& p, const Geometry& g) const {
    const double x = safePixel(g.time.toX(model.cursorX()));
    if (x < g.plot.left() || x > g.plot.right())
        return;
    p.save();
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setPen(QPen(Qt::black, g.scale < 1.5 ? 0.0 : g.scale));
    p.drawLine(QPointF(x, g.plot.top()), QPointF(x, g.plot.bottom()));
    p.restore();
}

// The reference cursor: a dashed line across all bands, over the curve layer like the cursor.
void StripChart::Impl::paintReference(QPainter& p, const Geometry& g) const {
    if (!model.referenceX())
        return;
    const double x = safePixel(g.time.toX(*model.referenceX()));
    if (x < g.plot.left() || x > g.plot.right())
        return;
    p.save();
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setPen(QPen(QColor(0, 0, 160), g.scale < 1.5 ? 0.0 : g.scale, Qt::DashLine));
    p.drawLine(QPointF(x, g.plot.top()), QPointF(x, g.plot.bottom()));
    p.restore();
}

void StripChart::Impl::updateReferenceStrips(QWidget& widget) {
    const Geometry g = geometry(QRectF(widget.rect()), 1.0, widget.font());
    const int top = pixelIndex(g.plot.top()) - 1;
    const int height = pixelIndex(g.plot.height()) + 3;
    if (lastReferencePx)
        widget.update(QRect(*lastReferencePx - 2, top, 5, height));
    lastReferencePx.reset();
    if (model.referenceX()) {
        lastReferencePx = pixelIndex(g.time.toX(*model.referenceX()));
        widget.update(QRect(*lastReferencePx - 2, top, 5, height));
    }
}

// ---- Widget ----

StripChart::StripChart(QWidget* parent) : QWidget(parent), d(std::make_unique<Impl>()) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(200, 120);
    setFocusPolicy(Qt::StrongFocus); // the navigation keys
    d->deferredRepaint.setSingleShot(true);
    connect(&d->deferredRepaint, &QTimer::timeout, this, [this] { update(); });
    d->model.setChangeListener([this](StripChartModel::Change change) {
        if (change == StripChartModel::Change::Reference) {
            d->updateReferenceStrips(*this);
            emit ReferenceChange();
            return;
        }
        if (change != StripChartModel::Change::Cursor) {
            if (!d->curvesWait())
                update();
            else if (!d->deferredRepaint.isActive())
                d->deferredRepaint.start(
                    std::max(1, d->curveRepaintInterval - int(d->lastLayerPaint.elapsed())));
            return;
        }
        // A cursor move repaints two thin strips: where the cursor was and where it is now. A
        // cursor far outside the view (the middle of a load without rows lies 5 * 10^10 days
        // out) gives a strip far outside the widget, which repaints nothing.
        const Geometry g = d->geometry(QRectF(rect()), 1.0, font());
        const int x = pixelIndex(g.time.toX(d->model.cursorX()));
        const int top = pixelIndex(g.plot.top()) - 1;
        const int height = pixelIndex(g.plot.height()) + 3;
        if (d->lastCursorPx >= 0)
            update(QRect(d->lastCursorPx - 2, top, 5, height));
        update(QRect(x - 2, top, 5, height));
        d->lastCursorPx = x;
    });
}

void StripChart::setCurveRepaintInterval(int milliseconds) {
    d->curveRepaintInterval = std::max(0, milliseconds);
    if (d->curveRepaintInterval == 0) {
        d->deferredRepaint.stop();
        update();
    }
}

StripChart::~StripChart() {
    d->model.setChangeListener({});
}

StripChartModel& StripChart::model() {
    return d->model;
}
const StripChartModel& StripChart::model() const {
    return d->model;
}

QRectF StripChart::plotArea() const {
    return d->geometry(QRectF(rect()), 1.0, font()).plot;
}

void StripChart::paintEvent(QPaintEvent* event) {
    const qreal dpr = devicePixelRatioF();
    const QSize pixels = (QSizeF(size()) * dpr).toSize();
    const Geometry g = d->geometry(QRectF(rect()), 1.0, font());
    const bool stale = d->layerRevision != d->model.curveRevision() && !d->curvesWait();
    if (!d->layerValid || d->layer.size() != pixels || d->layer.devicePixelRatio() != dpr ||
        stale) {
        if (d->layer.size() != pixels) // reused otherwise: a full-size allocation per frame costs
            d->layer = QPixmap(pixels);
        d->layer.setDevicePixelRatio(dpr);
        QPainter lp(&d->layer);
        d->paintBase(lp, g);
        d->layerRevision = d->model.curveRevision();
        d->layerValid = true;
        d->lastLayerPaint.start();
    }
    QPainter p(this);
    p.setClipRegion(event->region());
    p.drawPixmap(0, 0, d->layer);
    d->paintCursor(p, g);
    d->paintRangeSelection(p, g);
    d->lastCursorPx = pixelIndex(g.time.toX(d->model.cursorX()));
    d->paintReference(p, g);
    if (const auto& b = d->model.referenceX())
        d->lastReferencePx = pixelIndex(g.time.toX(*b));
    d->awaitingPaint = false;
    if (d->pendingDrag && !d->flushQueued) {
        // Reported after the paint, never from inside it: the handlers change other widgets.
        d->flushQueued = true;
        QTimer::singleShot(0, this, [this] { flushDrag(); });
    }
}

void StripChart::moveCursorByUser(double t) {
    const double before = d->model.cursorX();
    d->model.setCursorX(t);
    // A cursor that did not move asks for no repaint, so there is none to wait for.
    d->awaitingPaint = isVisible() && d->model.cursorX() != before;
    emit CursorChange(t);
}

void StripChart::flushDrag() {
    d->flushQueued = false;
    if (const auto t = std::exchange(d->pendingDrag, std::nullopt))
        moveCursorByUser(*t);
}

void StripChart::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    d->layerValid = false;
}

bool StripChart::clickMarkerFlag(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || event->modifiers() != Qt::NoModifier)
        return false;
    const QPointF pos = event->position();
    const auto column = markerFlagAt(pos);
    if (!column)
        return false;
    emit ChartMouseDown(1, 0, pos.x(), pos.y());
    const EventMarker& marker = d->markers.at(column->first);
    emit MarkerClick(marker.source, marker.index);
    event->accept();
    return true;
}

void StripChart::mousePressEvent(QMouseEvent* event) {
    if (clickMarkerFlag(event))
        return;
    int button = 0;
    switch (event->button()) {
    case Qt::LeftButton:
        button = 1;
        break;
    case Qt::RightButton:
        button = 2;
        break;
    case Qt::MiddleButton:
        button = 4;
        break;
    default:
        QWidget::mousePressEvent(event);
        return;
    }
    const Qt::KeyboardModifiers m = event->modifiers();
    const int shift = (m & Qt::ShiftModifier ? 1 : 0) | (m & Qt::ControlModifier ? 2 : 0) |
                      (m & Qt::AltModifier ? 4 : 0);
    const QPointF pos = event->position();
    // The press is reported first; a left press inside the plot then moves the cursor.
    emit ChartMouseDown(button, shift, pos.x(), pos.y());
    if (startNavigation(event)) {
        event->accept();
        return;
    }
    if (button == 1) {
        const Geometry g = d->geometry(QRectF(rect()), 1.0, font());
        if (g.plot.contains(pos)) {
            d->dragging = true;
            d->pendingDrag.reset();
            moveCursorByUser(g.time.toTime(pos.x()));
        }
    }
    event->accept();
}

bool StripChart::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const QString text = markerToolTip(help->pos());
        if (text.isEmpty()) {
            QToolTip::hideText();
            event->ignore();
        } else {
            QToolTip::showText(help->globalPos(), text, this);
        }
        return true;
    }
    return QWidget::event(event);
}

void StripChart::mouseMoveEvent(QMouseEvent* event) {
    if (continueNavigation(event)) {
        event->accept();
        return;
    }
    if (!d->dragging || !(event->buttons() & Qt::LeftButton)) {
        QWidget::mouseMoveEvent(event);
        return;
    }
    // Beyond the plot's edges the cursor stays on the edge.
    const Geometry g = d->geometry(QRectF(rect()), 1.0, font());
    const double x = std::clamp(event->position().x(), g.plot.left(), g.plot.right());
    const double t = g.time.toTime(x);
    if (d->awaitingPaint)
        d->pendingDrag = t;
    else
        moveCursorByUser(t);
    event->accept();
}

void StripChart::mouseReleaseEvent(QMouseEvent* event) {
    if (finishNavigation(event)) {
        event->accept();
        return;
    }
    if (event->button() == Qt::LeftButton && d->dragging) {
        d->dragging = false;
        flushDrag(); // the place of the release is always reported
    }
    QWidget::mouseReleaseEvent(event);
}

// ---- Event markers ----

void StripChart::setEventMarkers(std::vector<EventMarker> markers) {
    d->markers.assign(std::move(markers));
    d->layerValid = false;
    update();
}

const EventMarkers& StripChart::eventMarkers() const {
    return d->markers;
}

std::optional<MarkerColumn> StripChart::markerFlagAt(const QPointF& pos) const {
    return d->flagAt(d->geometry(QRectF(rect()), 1.0, font()), pos);
}

QString StripChart::markerToolTip(const QPointF& pos) const {
    const auto column = markerFlagAt(pos);
    return column ? d->markers.toolTip(*column) : QString();
}

// ---- Navigation ----

void StripChart::Impl::paintRangeSelection(QPainter& p, const Geometry& g) const {
    if (navigation != Navigation::Range)
        return;
    const double a = std::min(pressX, rangeX);
    const double b = std::max(pressX, rangeX);
    p.save();
    p.setRenderHint(QPainter::Antialiasing, false);
    const QRectF band(QPointF(a, g.plot.top()), QPointF(b, g.plot.bottom()));
    p.fillRect(band, QColor(0, 90, 200, 50));
    p.setPen(QPen(QColor(0, 90, 200), 0.0));
    p.drawLine(QPointF(a, g.plot.top()), QPointF(a, g.plot.bottom()));
    p.drawLine(QPointF(b, g.plot.top()), QPointF(b, g.plot.bottom()));
    p.restore();
}

bool StripChart::startNavigation(const QMouseEvent* event) {
    if (d->navigation != Impl::Navigation::None)
        return true; // a second button during a gesture is ignored
    const Geometry g = d->geometry(QRectF(rect()), 1.0, font());
    const QPointF pos = event->position();
    const Qt::KeyboardModifiers m = event->modifiers();
    const bool inPlot = g.plot.contains(pos);
    // The strip of tic labels under the last track.
    const bool onTimeAxis =
        pos.y() > g.plot.bottom() && pos.x() >= g.plot.left() && pos.x() <= g.plot.right();
    Impl::Navigation what = Impl::Navigation::None;
    if (event->button() == Qt::MiddleButton)
        what = Impl::Navigation::Pan;
    else if (event->button() == Qt::LeftButton && inPlot && (m & Qt::ControlModifier))
        what = Impl::Navigation::Range;
    else if (event->button() == Qt::LeftButton && inPlot && (m & Qt::ShiftModifier))
        what = Impl::Navigation::Reference;
    else if (event->button() == Qt::LeftButton && onTimeAxis)
        what = Impl::Navigation::Pan;
    if (what == Impl::Navigation::None)
        return false;
    d->navigation = what;
    d->navigationButton = event->button();
    d->pressX = std::clamp(pos.x(), g.plot.left(), g.plot.right());
    d->rangeX = d->pressX;
    d->grabbed = {d->model.xViewStart(), d->model.xViewEnd()};
    if (what == Impl::Navigation::Pan) {
        d->panGesture.emplace(d->model.viewHistory());
        setCursor(Qt::ClosedHandCursor);
    } else if (what == Impl::Navigation::Reference) {
        d->model.setReferenceX(g.time.toTime(d->pressX));
    }
    return true;
}

bool StripChart::continueNavigation(const QMouseEvent* event) {
    if (d->navigation == Impl::Navigation::None)
        return false;
    if (!(event->buttons() & d->navigationButton)) {
        finishNavigation(nullptr); // the release went elsewhere
        return true;
    }
    const Geometry g = d->geometry(QRectF(rect()), 1.0, font());
    const double x = event->position().x();
    switch (d->navigation) {
    case Impl::Navigation::Pan: {
        // From the window at the press, so that a long drag does not gather rounding.
        const double fraction = (x - d->pressX) / std::max(1.0, g.plot.width());
        const TimeWindow w = viewmoves::dragPan(d->grabbed, fraction);
        d->model.showXRange(w.start, w.end);
        break;
    }
    case Impl::Navigation::Range:
        d->rangeX = std::clamp(x, g.plot.left(), g.plot.right());
        update();
        break;
    case Impl::Navigation::Reference:
        d->model.setReferenceX(g.time.toTime(std::clamp(x, g.plot.left(), g.plot.right())));
        break;
    case Impl::Navigation::None:
        break;
    }
    return true;
}

bool StripChart::finishNavigation(const QMouseEvent* event) {
    if (d->navigation == Impl::Navigation::None)
        return false;
    if (event && event->button() != d->navigationButton)
        return true; // another button of the same gesture
    const Impl::Navigation what = std::exchange(d->navigation, Impl::Navigation::None);
    d->panGesture.reset();
    unsetCursor();
    if (what == Impl::Navigation::Range) {
        // A click or a twitch of the hand is no selection: only a range of a few pixels zooms.
        constexpr double smallestRangePixels = 3.0;
        const Geometry g = d->geometry(QRectF(rect()), 1.0, font());
        if (std::abs(d->rangeX - d->pressX) >= smallestRangePixels) {
            if (const auto w =
                    viewmoves::rangeZoom(g.time.toTime(d->pressX), g.time.toTime(d->rangeX)))
                d->model.showXRange(w->start, w->end);
        }
        update(); // the selection goes
    }
    return true;
}

void StripChart::wheelEvent(QWheelEvent* event) {
    // A touchpad scroll from touch to lift is one view for Back; wheel notches are a view each.
    const Qt::ScrollPhase phase = event->phase();
    if (phase == Qt::ScrollBegin || phase == Qt::ScrollUpdate || phase == Qt::ScrollMomentum) {
        if (!d->touchpadGesture)
            d->touchpadGesture.emplace(d->model.viewHistory());
    } else {
        d->touchpadGesture.reset();
    }
    const QPointF delta =
        event->angleDelta().isNull() ? QPointF(event->pixelDelta()) : QPointF(event->angleDelta());
    const QPointF notches = delta / viewmoves::eighthsPerNotch;
    const TimeWindow window{d->model.xViewStart(), d->model.xViewEnd()};
    std::optional<TimeWindow> next;
    if (event->modifiers() & Qt::ShiftModifier) {
        // Some systems turn a shifted wheel into a horizontal one themselves.
        const double amount = notches.y() != 0.0 ? notches.y() : notches.x();
        if (amount != 0.0)
            next = viewmoves::panByNotches(window, -amount);
    } else if (notches.y() != 0.0) {
        const Geometry g = d->geometry(QRectF(rect()), 1.0, font());
        const double x = std::clamp(event->position().x(), g.plot.left(), g.plot.right());
        next = viewmoves::zoomAbout(window, g.time.toTime(x), notches.y());
    } else if (notches.x() != 0.0) {
        next = viewmoves::panByNotches(window, -notches.x());
    }
    if (next)
        d->model.showXRange(next->start, next->end);
    if (phase == Qt::ScrollEnd)
        d->touchpadGesture.reset();
    event->accept();
}

void StripChart::keyPressEvent(QKeyEvent* event) {
    // Shortcuts with Ctrl belong to the window's menus.
    if (event->modifiers() & (Qt::ControlModifier | Qt::MetaModifier)) {
        QWidget::keyPressEvent(event);
        return;
    }
    const bool alt = event->modifiers() & Qt::AltModifier;
    switch (event->key()) {
    case Qt::Key_Left:
        if (alt)
            d->model.backView();
        else
            navigation::scrollTime(d->model, 0);
        break;
    case Qt::Key_Right:
        if (alt)
            d->model.forwardView();
        else
            navigation::scrollTime(d->model, 1);
        break;
    case Qt::Key_Plus:
    case Qt::Key_Equal: // the plus key without Shift
        navigation::zoomTime(d->model, 0);
        break;
    case Qt::Key_Minus:
        navigation::zoomTime(d->model, 1);
        break;
    case Qt::Key_Home:
        emit ZoomAllRequest();
        break;
    case Qt::Key_Backspace:
        d->model.backView();
        break;
    case Qt::Key_Escape:
        d->model.setReferenceX(std::nullopt);
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    event->accept();
}

// ---- Properties ----

int StripChart::MaxBufferSize() const {
    return d->model.maxBufferSize();
}
void StripChart::setMaxBufferSize(int points) {
    d->model.setMaxBufferSize(points);
}
int StripChart::VarCount() const {
    return StripChartModel::variableCount;
}
int StripChart::TrackCount() const {
    return d->model.trackCount();
}
void StripChart::setTrackCount(int tracks) {
    d->model.setTrackCount(tracks);
}
PackedColor StripChart::BackColor() const {
    return d->model.backColor();
}
void StripChart::setBackColor(PackedColor color) {
    d->model.setBackColor(color);
}
QString StripChart::Caption() const {
    return d->model.caption();
}
void StripChart::setCaption(const QString& caption) {
    d->model.setCaption(caption);
}
double StripChart::XSpan() const {
    return d->model.xSpan();
}
void StripChart::setXSpan(double days) {
    d->model.setXSpan(days);
}
double StripChart::XViewStart() const {
    return d->model.xViewStart();
}
double StripChart::XViewEnd() const {
    return d->model.xViewEnd();
}
double StripChart::CursorX() const {
    return d->model.cursorX();
}
void StripChart::setCursorX(double x) {
    d->model.setCursorX(x);
}
int StripChart::ChartMode() const {
    return d->model.chartMode();
}
void StripChart::setChartMode(int mode) {
    d->model.setChartMode(mode);
}
int StripChart::CurrentVar() const {
    return d->model.currentVar();
}
void StripChart::setCurrentVar(int index) {
    d->model.setCurrentVar(index);
}
int StripChart::CurrentTrack() const {
    return d->model.currentTrack();
}
void StripChart::setCurrentTrack(int index) {
    d->model.setCurrentTrack(index);
}

QString StripChart::VarName() const {
    return d->model.variable(CurrentVar()).name;
}
void StripChart::setVarName(const QString& name) {
    d->model.setVarName(CurrentVar(), name);
}
PackedColor StripChart::VarColor() const {
    return d->model.variable(CurrentVar()).color;
}
void StripChart::setVarColor(PackedColor color) {
    d->model.setVarColor(CurrentVar(), color);
}
int StripChart::VarSymbol() const {
    return d->model.variable(CurrentVar()).symbol;
}
void StripChart::setVarSymbol(int symbol) {
    d->model.setVarSymbol(CurrentVar(), symbol);
}
bool StripChart::VarVisible() const {
    return d->model.variable(CurrentVar()).visible;
}
void StripChart::setVarVisible(bool visible) {
    d->model.setVarVisible(CurrentVar(), visible);
}
int StripChart::VarTrack() const {
    return d->model.variable(CurrentVar()).track;
}
void StripChart::setVarTrack(int track) {
    d->model.setVarTrack(CurrentVar(), track);
}
double StripChart::VarYMin() const {
    return d->model.variable(CurrentVar()).yMin;
}
void StripChart::setVarYMin(double y) {
    d->model.setVarYMin(CurrentVar(), y);
}
double StripChart::VarYMax() const {
    return d->model.variable(CurrentVar()).yMax;
}
void StripChart::setVarYMax(double y) {
    d->model.setVarYMax(CurrentVar(), y);
}

PackedColor StripChart::TrackColor() const {
    return d->model.track(CurrentTrack()).color;
}
void StripChart::setTrackColor(PackedColor color) {
    d->model.setTrackColor(CurrentTrack(), color);
}
double StripChart::TrackYMin() const {
    return d->model.track(CurrentTrack()).yMin;
}
void StripChart::setTrackYMin(double y) {
    d->model.setTrackYMin(CurrentTrack(), y);
}
double StripChart::TrackYMax() const {
    return d->model.track(CurrentTrack()).yMax;
}
void StripChart::setTrackYMax(double y) {
    d->model.setTrackYMax(CurrentTrack(), y);
}

// ---- Operations ----

void StripChart::AddXYArray(int k, const XYArray* array) {
    if (!array)
        throw ChartError("AddXYArray was given no array");
    d->model.addXYArray(k, *array);
}

void StripChart::ClearData() {
    d->model.clearData();
}
void StripChart::ShowXRange(double start, double end) {
    d->model.showXRange(start, end);
}
double StripChart::CursorValue(int i) const {
    return d->model.cursorValue(i);
}
double StripChart::DataMin(int i) const {
    return d->model.dataMin(i);
}
double StripChart::DataMax(int i) const {
    return d->model.dataMax(i);
}
double StripChart::DataAvg(int i) const {
    return d->model.dataAvg(i);
}
double StripChart::ViewMin(int i) const {
    return d->model.viewMin(i);
}
double StripChart::ViewMax(int i) const {
    return d->model.viewMax(i);
}
double StripChart::ViewAvg(int i) const {
    return d->model.viewAvg(i);
}

void StripChart::PrintChart(QPrinter& printer, double left, double top, double width,
                            double height) {
    QPainter p;
    if (!p.begin(&printer))
        return; // the printer could not be opened; nothing was drawn
    // Inches count from the paper's corner; the painter's origin is the printable area's.
    if (!printer.fullPage())
        p.translate(-printer.pageRect(QPrinter::DevicePixel).topLeft());
    PrintChart(p, printer.resolution(), left, top, width, height);
    p.end();
}

void StripChart::PrintChart(QPainter& painter, double dpi, double left, double top, double width,
                            double height) {
    if (!(dpi > 0.0) || !(width > 0.0) || !(height > 0.0))
        return;
    const QRectF area(left * dpi, top * dpi, width * dpi, height * dpi);
    if (!std::isfinite(area.left() + area.width()) || !std::isfinite(area.top() + area.height()))
        return;
    const Geometry g = d->geometry(area, dpi / 96.0, font());
    painter.save();
    painter.setClipRect(area);
    d->paintBase(painter, g);
    d->paintLegend(painter, g);
    d->paintCursor(painter, g);
    d->paintReference(painter, g);
    painter.restore();
}

ChartSettings StripChart::settings() const {
    return ChartSettings{d->model.appearance(), d->model.backColor()};
}

void StripChart::applySettings(const ChartSettings& settings) {
    d->model.setAppearance(settings.appearance);
    d->model.setBackColor(settings.backColor);
}

void StripChart::setLegendNames(const QStringList& names) {
    d->legendNames = names;
}

void StripChart::ShowSettingsDialog(Dialogs& dialogs) {
    ChartSettingsDialog dialog(dialogs, this);
    dialog.setSettings(settings());
    if (dialogs.runModal(dialog))
        applySettings(dialog.settings());
}

} // namespace trendax
