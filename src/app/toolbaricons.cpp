#include "app/toolbaricons.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QTransform>

namespace trendax {

namespace {

constexpr int side = 32;

void drawMagnifier(QPainter& p, const QString& sign) {
    p.setPen(QPen(QColor(40, 40, 40), 2.5));
    p.setBrush(QColor(210, 230, 255));
    p.drawEllipse(QRectF(4, 4, 18, 18));
    p.setPen(QPen(QColor(90, 60, 30), 4, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(20, 20), QPointF(28, 28));
    p.setPen(QPen(QColor(20, 20, 120), 2.5));
    p.drawLine(QPointF(8.5, 13), QPointF(17.5, 13));
    if (sign == QLatin1String("+"))
        p.drawLine(QPointF(13, 8.5), QPointF(13, 17.5));
    if (sign == QLatin1String("all")) {
        p.setPen(QPen(QColor(20, 20, 120), 1.5));
        p.drawRect(QRectF(8, 9, 10, 8));
    }
}

void drawArrow(QPainter& p, bool left) {
    QPainterPath path;
    path.moveTo(4, 16);
    path.lineTo(16, 5);
    path.lineTo(16, 11);
    path.lineTo(28, 11);
    path.lineTo(28, 21);
    path.lineTo(16, 21);
    path.lineTo(16, 27);
    path.closeSubpath();
    if (!left) // the right arrow is the left one mirrored about the icon's middle
        path = QTransform(-1, 0, 0, 1, side, 0).map(path);
    p.setPen(QPen(QColor(20, 60, 20), 1.5));
    p.setBrush(QColor(70, 170, 70));
    p.drawPath(path);
}

void drawTrace(QPainter& p, bool withPoints) {
    p.setPen(QPen(QColor(120, 120, 120), 1));
    p.drawLine(4, 27, 28, 27);
    p.drawLine(4, 27, 4, 4);
    const QPointF pts[] = {{6, 22}, {11, 12}, {16, 18}, {21, 8}, {27, 14}};
    p.setPen(QPen(QColor(200, 30, 30), 2));
    p.drawPolyline(pts, 5);
    if (withPoints) {
        p.setBrush(QColor(30, 30, 180));
        p.setPen(Qt::NoPen);
        for (const QPointF& pt : pts)
            p.drawEllipse(pt, 2.5, 2.5);
    }
}

void drawPicture(QPainter& p, const QString& name) {
    if (name == QLatin1String("open")) {
        p.setPen(QPen(QColor(120, 90, 20), 1.5));
        p.setBrush(QColor(240, 200, 80));
        p.drawRect(QRectF(3, 9, 24, 17));
        p.setBrush(QColor(250, 220, 120));
        QPainterPath flap;
        flap.moveTo(3, 26);
        flap.lineTo(8, 14);
        flap.lineTo(30, 14);
        flap.lineTo(27, 26);
        flap.closeSubpath();
        p.drawPath(flap);
    } else if (name == QLatin1String("print")) {
        p.setPen(QPen(QColor(50, 50, 50), 1.5));
        p.setBrush(Qt::white);
        p.drawRect(QRectF(9, 3, 14, 10));
        p.setBrush(QColor(170, 170, 180));
        p.drawRoundedRect(QRectF(3, 12, 26, 11), 2, 2);
        p.setBrush(Qt::white);
        p.drawRect(QRectF(9, 19, 14, 9));
    } else if (name == QLatin1String("zoomall")) {
        drawMagnifier(p, QStringLiteral("all"));
    } else if (name == QLatin1String("3dminus")) {
        drawMagnifier(p, QStringLiteral("-"));
    } else if (name == QLatin1String("3dplus")) {
        drawMagnifier(p, QStringLiteral("+"));
    } else if (name == QLatin1String("left") || name == QLatin1String("right")) {
        drawArrow(p, name == QLatin1String("left"));
    } else if (name == QLatin1String("graph")) {
        drawTrace(p, true);
    } else if (name == QLatin1String("scale")) {
        p.setPen(QPen(QColor(60, 60, 60), 1.5));
        p.setBrush(QColor(250, 235, 160));
        p.drawRect(QRectF(11, 2, 10, 28));
        for (int y = 5; y < 29; y += 4)
            p.drawLine(QPointF(11, y), QPointF(y % 8 == 1 ? 18 : 15, y));
    } else if (name == QLatin1String("points")) {
        const QColor bands[] = {QColor(255, 255, 190), QColor(255, 255, 210),
                                QColor(255, 255, 230)};
        for (int i = 0; i < 3; ++i) {
            p.setPen(QPen(QColor(90, 90, 90), 1));
            p.setBrush(bands[i]);
            p.drawRect(QRectF(3, 3 + i * 9, 26, 8));
            p.setPen(QPen(QColor(40 + i * 70, 40, 200 - i * 60), 1.5));
            p.drawLine(QPointF(5, 8 + i * 9), QPointF(27, 5 + i * 9));
        }
    } else if (name == QLatin1String("stats")) {
        p.setPen(QPen(QColor(60, 60, 60), 1.5));
        p.setBrush(Qt::white);
        p.drawRect(QRectF(3, 4, 26, 24));
        p.setPen(QPen(QColor(30, 30, 150), 1.5));
        for (int y = 10; y < 28; y += 5)
            p.drawLine(QPointF(6, y), QPointF(26, y));
        p.drawLine(QPointF(14, 6), QPointF(14, 26));
    } else if (name == QLatin1String("history")) {
        p.setPen(QPen(QColor(60, 60, 60), 1.5));
        p.setBrush(QColor(235, 245, 255));
        p.drawRect(QRectF(3, 3, 26, 26));
        p.setPen(QPen(QColor(160, 40, 40), 2));
        for (int y = 9; y < 28; y += 6) {
            p.drawPoint(QPointF(7, y));
            p.drawLine(QPointF(11, y), QPointF(25, y));
        }
    } else if (name == QLatin1String("help")) {
        p.setPen(QPen(QColor(20, 40, 120), 1.5));
        p.setBrush(QColor(90, 130, 220));
        p.drawEllipse(QRectF(3, 3, 26, 26));
        p.setPen(Qt::white);
        QFont f = p.font();
        f.setBold(true);
        f.setPixelSize(20);
        p.setFont(f);
        p.drawText(QRectF(3, 3, 26, 26), Qt::AlignCenter, QStringLiteral("?"));
    }
}

} // namespace

QIcon toolbarIcon(const QString& name) {
    QIcon icon;
    for (int scale : {1, 2}) {
        QPixmap pm(side * scale, side * scale);
        pm.setDevicePixelRatio(scale);
        pm.fill(Qt::transparent);
        QPainter p(&pm);
        p.setRenderHint(QPainter::Antialiasing);
        drawPicture(p, name);
        p.end();
        icon.addPixmap(pm);
    }
    return icon;
}

QPixmap productArtwork(int width, int height) {
    QPixmap pm(width, height);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, height);
    sky.setColorAt(0, QColor(30, 40, 90));
    sky.setColorAt(0.6, QColor(220, 120, 60));
    sky.setColorAt(1, QColor(250, 200, 120));
    p.fillRect(pm.rect(), sky);
    const double ground = height * 0.8;
    p.fillRect(QRectF(0, ground, width, height - ground), QColor(60, 45, 30));
    // The pump jack: a walking beam on a samson post, the horse head over the well.
    p.setPen(QPen(QColor(20, 20, 20), 5, Qt::SolidLine, Qt::RoundCap));
    const double x = width * 0.62;
    p.drawLine(QPointF(x - 30, ground), QPointF(x, ground - 70));
    p.drawLine(QPointF(x + 30, ground), QPointF(x, ground - 70));
    p.drawLine(QPointF(x - 80, ground - 60), QPointF(x + 70, ground - 82));
    p.setBrush(QColor(20, 20, 20));
    p.drawChord(QRectF(x + 55, ground - 102, 30, 44), -90 * 16, 180 * 16);
    p.drawLine(QPointF(x + 80, ground - 60), QPointF(x + 80, ground));
    p.drawEllipse(QPointF(x - 70, ground - 30), 12, 12);
    // A current trace across the sky.
    p.setPen(QPen(QColor(255, 255, 210), 2));
    QPainterPath trace;
    trace.moveTo(0, height * 0.35);
    for (int i = 1; i <= 40; ++i) {
        const double tx = width * i / 40.0;
        const double ty = height * (0.35 + 0.08 * ((i * 7) % 5 - 2) / 2.0 - (i == 17 ? 0.15 : 0));
        trace.lineTo(tx, ty);
    }
    p.setBrush(Qt::NoBrush);
    p.drawPath(trace);
    p.setPen(QColor(255, 255, 230));
    QFont f(QStringLiteral("Arial"));
    f.setPixelSize(height / 7);
    f.setBold(true);
    p.setFont(f);
    p.drawText(QRectF(20, 14, width - 40, height / 4.0), Qt::AlignLeft | Qt::AlignVCenter,
               QStringLiteral("Trendax 2"));
    return pm;
}

} // namespace trendax
