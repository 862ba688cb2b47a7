#include "chart/statspanel.h"

#include "chart/readouts.h"

#include <QCheckBox>
#include <QEvent>
#include <QFontMetrics>
#include <QLabel>
#include <QMouseEvent>
#include <cmath>

namespace trendax {

namespace {

constexpr const char* headingTexts[statslayout::columnCount] = {
    "Cursor Value", "Min Disp", "Avg Disp", "Max Disp", "Min", "Average", "Max"};
constexpr const char* referenceHeadingTexts[statslayout::referenceColumnCount] = {"Ref Value",
                                                                                  "Delta"};

// Room every value column keeps at least: a pressure or a current with sign and two decimals.
const QString widestValue = QStringLiteral("-00000.00");
// The cursor time at its widest in the general date-and-time form.
const QString widestCursorText = QStringLiteral("12/28/2088 10:58:58 PM");

// The panel's font size in points; in pixels of the panel's own resolution, so that the texts
// keep their proportion to the twips of the layout at any resolution.
constexpr double fontPoints = 8.0;

int textWidth(const QFontMetrics& fm, const QString& text) {
    return fm.horizontalAdvance(text) + 2;
}

std::array<QLabel*, statslayout::columnCount> readoutsOf(const StatsRow& row) {
    return {row.lblCursorValue, row.lblMinDisp, row.lblAvgDisp, row.lblMaxDisp,
            row.lblMin,         row.lblAvg,     row.lblMax};
}

std::array<QLabel*, statslayout::referenceColumnCount> referenceReadoutsOf(const StatsRow& row) {
    return {row.lblRefValue, row.lblDelta};
}

} // namespace

StatsPanel::StatsPanel(double dpi, QWidget* parent) : QFrame(parent), dpi_(dpi) {
    setObjectName(QStringLiteral("picStats"));
    setAutoFillBackground(true);
    setFrameShape(QFrame::StyledPanel);
    QFont small = font();
    small.setPixelSize(std::max(6, int(std::lround(fontPoints * dpi / 72.0))));
    setFont(small);

    cursorHeading_ = new QLabel(QStringLiteral("Cursor:"), this);
    QFont bold = small;
    bold.setBold(true);
    cursorHeading_->setFont(bold);
    lblCursor = new QLabel(QStringLiteral("mm/dd/yyyy hh:mm:ss am"), this);
    for (int c = 0; c < statslayout::columnCount; ++c)
        headings_[size_t(c)] = new QLabel(QString::fromLatin1(headingTexts[c]), this);

    for (int i = 0; i < rowCount; ++i) {
        StatsRow& row = rows[size_t(i)];
        row.chkChannelVisible = new QCheckBox(this);
        row.chkChannelVisible->setChecked(i < 8);
        connect(row.chkChannelVisible, &QCheckBox::toggled, this,
                [this, i](bool checked) { emit visibilityChanged(i, checked); });
        row.Line1 = new QFrame(this);
        row.Line1->setFrameShape(QFrame::NoFrame);
        row.Line1->setAutoFillBackground(true);
        row.lblVar = new QLabel(QStringLiteral("Var%1").arg(i + 1), this);
        row.lblVar->setToolTip(QStringLiteral("Click to change color."));
        row.lblVar->installEventFilter(this);
        QLabel** readouts[] = {&row.lblCursorValue, &row.lblMinDisp, &row.lblAvgDisp,
                               &row.lblMaxDisp,     &row.lblMin,     &row.lblAvg,
                               &row.lblMax};
        for (QLabel** readout : readouts)
            *readout = new QLabel(QStringLiteral("0"), this);
    }
    relayout();
}

void StatsPanel::relayout() {
    const QFontMetrics fm(font());
    statslayout::Metrics m;
    m.dpi = dpi_;
    m.lineHeight = fm.height() + 2;
    m.boldLineHeight = QFontMetrics(cursorHeading_->font()).height() + 2;
    m.checkBox = rows[0].chkChannelVisible->sizeHint().height();
    m.cursorTextWidth = std::max(textWidth(fm, widestCursorText), textWidth(fm, lblCursor->text()));
    for (const StatsRow& row : rows)
        m.nameWidth = std::max(m.nameWidth, textWidth(fm, row.lblVar->text()));
    for (int c = 0; c < statslayout::columnCount; ++c) {
        int width =
            std::max(textWidth(fm, widestValue), textWidth(fm, headings_[size_t(c)]->text()));
        for (const StatsRow& row : rows)
            width = std::max(width, textWidth(fm, readoutsOf(row)[size_t(c)]->text()));
        m.columnWidth[size_t(c)] = width;
    }
    metrics_ = m;
    placeReference();
}

void StatsPanel::placeReference() {
    statslayout::Metrics m = metrics_;
    m.referenceColumns = referenceShown_;
    if (referenceShown_) {
        const QFontMetrics fm(font());
        for (int c = 0; c < statslayout::referenceColumnCount; ++c) {
            int width = std::max(textWidth(fm, widestValue),
                                 textWidth(fm, referenceHeadings_[size_t(c)]->text()));
            for (const StatsRow& row : rows)
                width = std::max(width, textWidth(fm, referenceReadoutsOf(row)[size_t(c)]->text()));
            m.referenceWidth[size_t(c)] = width;
        }
    }
    place(m);
}

void StatsPanel::place(const statslayout::Metrics& m) {
    geometry_ = statslayout::compute(m);

    cursorHeading_->setGeometry(geometry_.cursorHeading);
    lblCursor->setGeometry(geometry_.cursorText);
    for (int c = 0; c < statslayout::columnCount; ++c)
        headings_[size_t(c)]->setGeometry(geometry_.headings[size_t(c)]);
    for (int i = 0; i < rowCount; ++i) {
        StatsRow& row = rows[size_t(i)];
        row.chkChannelVisible->setGeometry(geometry_.checkBoxes[size_t(i)]);
        row.Line1->setGeometry(geometry_.samples[size_t(i)]);
        row.lblVar->setGeometry(geometry_.names[size_t(i)]);
        const auto readouts = readoutsOf(row);
        for (int c = 0; c < statslayout::columnCount; ++c)
            readouts[size_t(c)]->setGeometry(geometry_.values[size_t(i)][size_t(c)]);
    }
    if (referenceShown_) {
        for (int c = 0; c < statslayout::referenceColumnCount; ++c) {
            referenceHeadings_[size_t(c)]->setGeometry(geometry_.referenceHeadings[size_t(c)]);
            for (int i = 0; i < rowCount; ++i)
                referenceReadoutsOf(rows[size_t(i)])[size_t(c)]->setGeometry(
                    geometry_.referenceValues[size_t(i)][size_t(c)]);
        }
    }
    setMinimumWidth(geometry_.width);
    resize(std::max(width(), geometry_.width), shownHeight());
}

bool StatsPanel::overflows(const QLabel* label) const {
    return label->fontMetrics().horizontalAdvance(label->text()) >= label->width();
}

int StatsPanel::shownHeight() const {
    return geometry_.heightForRows(statslayout::rowsShown(heightTwips_));
}

void StatsPanel::setHeightTwips(double twips) {
    heightTwips_ = twips;
    resize(width(), shownHeight());
}

void StatsPanel::setRowName(int row, const QString& name) {
    QLabel* label = rows[size_t(row)].lblVar;
    label->setText(name);
    if (overflows(label))
        relayout();
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
    if (overflows(lblCursor))
        relayout();
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
    for (const QLabel* label : readoutsOf(r)) {
        if (overflows(label)) {
            relayout();
            break;
        }
    }
}

void StatsPanel::createReferenceLabels() {
    if (referenceHeadings_[0])
        return;
    // Hidden explicitly: a panel shown later must not bring them up by itself.
    const auto hiddenLabel = [this](const QString& text) {
        auto* label = new QLabel(text, this);
        label->hide();
        return label;
    };
    for (int c = 0; c < statslayout::referenceColumnCount; ++c)
        referenceHeadings_[size_t(c)] = hiddenLabel(QString::fromLatin1(referenceHeadingTexts[c]));
    for (StatsRow& row : rows) {
        row.lblRefValue = hiddenLabel(QStringLiteral("0"));
        row.lblDelta = hiddenLabel(QStringLiteral("0"));
    }
}

void StatsPanel::setReferenceShown(bool shown) {
    if (shown == referenceShown_)
        return;
    if (shown)
        createReferenceLabels();
    referenceShown_ = shown;
    for (QLabel* heading : referenceHeadings_)
        if (heading)
            heading->setVisible(shown);
    for (const StatsRow& row : rows)
        for (QLabel* label : referenceReadoutsOf(row))
            if (label)
                label->setVisible(shown);
    placeReference(); // the seven columns keep their widths
}

void StatsPanel::showReference(int row, double referenceValue, double cursorValue) {
    createReferenceLabels();
    StatsRow& r = rows[size_t(row)];
    r.lblRefValue->setText(readouts::formatValue(referenceValue));
    r.lblDelta->setText(readouts::formatDelta(cursorValue, referenceValue));
    if (referenceShown_ && (overflows(r.lblRefValue) || overflows(r.lblDelta)))
        placeReference();
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
