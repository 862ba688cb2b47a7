#include "chart/statspanel.h"

#include "chart/readouts.h"
#include "storage/twips.h"

#include <QCheckBox>
#include <QEvent>
#include <QLabel>
#include <QMouseEvent>

namespace trendax {

namespace {

// Column headings and their left edges in twips.
constexpr std::pair<const char*, int> columns[] = {
    {"Cursor Value", 2160}, {"Min Disp", 3240}, {"Avg Disp", 4320}, {"Max Disp", 5160},
    {"Min", 6120},          {"Average", 7200},  {"Max", 8040}};

int rowTopTwips(int row) {
    return row < 5 ? 540 + 210 * row : 1680 + 240 * (row - 5);
}

} // namespace

StatsPanel::StatsPanel(double dpi, QWidget* parent) : QFrame(parent), dpi_(dpi) {
    setObjectName(QStringLiteral("picStats"));
    setAutoFillBackground(true);
    setFrameShape(QFrame::StyledPanel);
    QFont small = font();
    small.setPointSizeF(std::max(7.0, small.pointSizeF() - 1.5));
    setFont(small);

    auto* cursorHeading = new QLabel(QStringLiteral("Cursor:"), this);
    QFont bold = small;
    bold.setBold(true);
    cursorHeading->setFont(bold);
    cursorHeading->setGeometry(px(60), px(30), px(2000), px(240));
    lblCursor = new QLabel(QStringLiteral("mm/dd/yyyy hh:mm:ss am"), this);
    lblCursor->setGeometry(px(60), px(270), px(2100), px(240));

    for (const auto& [caption, left] : columns) {
        auto* heading = new QLabel(QString::fromLatin1(caption), this);
        heading->setGeometry(px(left), px(270), px(1100), px(240));
    }

    for (int i = 0; i < rowCount; ++i) {
        StatsRow& row = rows[size_t(i)];
        const int top = rowTopTwips(i);
        row.chkChannelVisible = new QCheckBox(this);
        row.chkChannelVisible->setGeometry(0, px(top), px(255), px(255));
        row.chkChannelVisible->setChecked(i < 8);
        connect(row.chkChannelVisible, &QCheckBox::toggled, this,
                [this, i](bool checked) { emit visibilityChanged(i, checked); });
        row.Line1 = new QFrame(this);
        row.Line1->setFrameShape(QFrame::NoFrame);
        row.Line1->setAutoFillBackground(true);
        row.Line1->setGeometry(px(240), px(top + 120), px(480), std::max(2, px(30)));
        row.lblVar = new QLabel(QStringLiteral("Var%1").arg(i + 1), this);
        row.lblVar->setToolTip(QStringLiteral("Click to change color."));
        row.lblVar->setGeometry(px(840), px(top), px(1755), px(255));
        row.lblVar->installEventFilter(this);
        QLabel** readouts[] = {&row.lblCursorValue, &row.lblMinDisp, &row.lblAvgDisp,
                               &row.lblMaxDisp,     &row.lblMin,     &row.lblAvg,
                               &row.lblMax};
        for (size_t c = 0; c < std::size(readouts); ++c) {
            auto* label = new QLabel(QStringLiteral("0"), this);
            label->setGeometry(px(columns[c].second), px(top), px(1000), px(255));
            *readouts[c] = label;
        }
    }
}

int StatsPanel::px(double twips) const {
    return twips::toPixels(twips, dpi_);
}

void StatsPanel::setHeightTwips(double twips) {
    heightTwips_ = twips;
    resize(width(), px(twips));
}

void StatsPanel::setRowName(int row, const QString& name) {
    rows[size_t(row)].lblVar->setText(name);
}

QColor StatsPanel::rowColor(int row) const {
    return rows[size_t(row)].lblVar->palette().color(QPalette::WindowText);
}

void StatsPanel::setRowColor(int row, const QColor& color) {
    StatsRow& r = rows[size_t(row)];
    QPalette textPalette = r.lblVar->palette();
    textPalette.setColor(QPalette::WindowText, color);
    r.lblVar->setPalette(textPalette);
    QPalette linePalette = r.Line1->palette();
    linePalette.setColor(QPalette::Window, color);
    r.Line1->setPalette(linePalette);
}

void StatsPanel::setCursorText(const QString& text) {
    lblCursor->setText(text);
}

void StatsPanel::showStatistics(int row, const RowStatistics& values) {
    StatsRow& r = rows[size_t(row)];
    r.lblCursorValue->setText(readouts::formatValue(values.cursorValue));
    r.lblMax->setText(readouts::formatValue(values.dataMax));
    r.lblAvg->setText(readouts::formatValue(values.dataAvg));
    r.lblMin->setText(readouts::formatValue(values.dataMin));
    r.lblMaxDisp->setText(readouts::formatValue(values.viewMax));
    r.lblAvgDisp->setText(readouts::formatValue(values.viewAvg));
    r.lblMinDisp->setText(readouts::formatValue(values.viewMin));
}

bool StatsPanel::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease &&
        static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
        for (int i = 0; i < rowCount; ++i) {
            if (watched == rows[size_t(i)].lblVar) {
                emit nameClicked(i);
                break;
            }
        }
    }
    return QFrame::eventFilter(watched, event);
}

} // namespace trendax
