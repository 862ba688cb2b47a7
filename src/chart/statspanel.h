#pragma once

#include "chart/statslayout.h"

#include <QFrame>
#include <array>

class QCheckBox;
class QLabel;

namespace trendax {

// A row of the statistics panel: visibility box, colour sample, name and seven read-outs.
struct StatsRow {
    QCheckBox* chkChannelVisible = nullptr;
    QFrame* Line1 = nullptr;
    QLabel* lblVar = nullptr;
    QLabel* lblCursorValue = nullptr;
    QLabel* lblMinDisp = nullptr;
    QLabel* lblAvgDisp = nullptr;
    QLabel* lblMaxDisp = nullptr;
    QLabel* lblMin = nullptr;
    QLabel* lblAvg = nullptr;
    QLabel* lblMax = nullptr;
    // While the reference cursor is set: the value there and the cursor value minus it. Created
    // when first shown.
    QLabel* lblRefValue = nullptr;
    QLabel* lblDelta = nullptr;
};

// What the chart answers for one variable, shown in a row of the panel.
struct RowStatistics {
    double cursorValue = 0;
    double viewMin = 0, viewAvg = 0, viewMax = 0; // over the visible window
    double dataMin = 0, dataAvg = 0, dataMax = 0; // over all loaded points
};

// The statistics panel under the chart (picStats): the cursor time and one row per variable,
// laid out from its design places in twips at the given resolution, in a font of that
// resolution, and moved apart where the texts need more room. Its height in twips (set by the
// layouts) decides how many rows show.
class StatsPanel : public QFrame {
    Q_OBJECT

public:
    static constexpr int rowCount = 13;

    explicit StatsPanel(double dpi, QWidget* parent = nullptr);

    QLabel* lblCursor = nullptr;
    std::array<StatsRow, rowCount> rows;

    double heightTwips() const { return heightTwips_; }
    void setHeightTwips(double twips);
    // The height in pixels that shows the rows of heightTwips() whole.
    int shownHeight() const;
    // The width in pixels that shows every column whole.
    int neededWidth() const { return geometry_.width; }
    void setRowName(int row, const QString& name);
    // The name's text colour and the colour sample's colour of a row.
    QColor rowColor(int row) const;
    void setRowColor(int row, const QColor& color);
    void setCursorText(const QString& text);
    // The seven read-outs of a row in the "0.00" pattern.
    void showStatistics(int row, const RowStatistics& values);
    // Adds the columns "Ref Value" and "Delta" right of "Max", or takes them away again: without
    // them the panel is laid out exactly as before.
    void setReferenceShown(bool shown);
    bool referenceShown() const { return referenceShown_; }
    // The two reference read-outs of a row in the "0.00" pattern (shown or not).
    void showReference(int row, double referenceValue, double cursorValue);

signals:
    // A click on the name of a row (lblVar).
    void nameClicked(int row);
    // A row's visibility box changed, by the user or by the program.
    void visibilityChanged(int row, bool visible);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Measures the texts and places every control again.
    void relayout();
    // Measures only the reference columns and places every control with the other measures of
    // the last relayout, so that showing and removing them leaves the rest as it was.
    void placeReference();
    void place(const statslayout::Metrics& m);
    // Whether a read-out's text no longer fits its column.
    bool overflows(const QLabel* label) const;
    void createReferenceLabels();

    double dpi_;
    double heightTwips_ = 1630;
    QLabel* cursorHeading_ = nullptr;
    std::array<QLabel*, statslayout::columnCount> headings_{};
    std::array<QLabel*, statslayout::referenceColumnCount> referenceHeadings_{};
    bool referenceShown_ = false;
    statslayout::Metrics metrics_;
    statslayout::Geometry geometry_;
};

} // namespace trendax
