#pragma once

#include "chart/charttypes.h"
#include "chart/stripchartmodel.h"

#include <QDialog>

class QCheckBox;
class QSpinBox;
class QPushButton;
class QDialogButtonBox;

namespace trendax {

class Dialogs;

// What the chart's settings dialog edits.
struct ChartSettings {
    ChartAppearance appearance;
    PackedColor backColor = 0xFFFFFF;

    bool operator==(const ChartSettings&) const = default;
};

// The chart's own settings dialog: grid lines, curve line width, background colour, event markers
// and recording gaps. It only edits a ChartSettings value; the chart applies it when the dialog
// is accepted, so the dialog can be built and driven without a chart and without exec(). The
// background's colour chooser is asked through dialogs.
class ChartSettingsDialog : public QDialog {
    Q_OBJECT

public:
    explicit ChartSettingsDialog(Dialogs& dialogs, QWidget* parent = nullptr);

    void setSettings(const ChartSettings& settings);
    ChartSettings settings() const;

    QCheckBox* gridLinesBox() const { return chkGridLines; }
    QSpinBox* lineWidthBox() const { return spnLineWidth; }
    QCheckBox* eventMarkersBox() const { return chkEventMarkers; }
    QCheckBox* bridgeGapsBox() const { return chkBridgeGaps; }
    QPushButton* backColorButton() const { return cmdBackColor; }
    QDialogButtonBox* buttons() const { return buttonBox; }
    // Sets the background colour shown (the colour button's chooser ends here too).
    void setBackColor(PackedColor color);

private:
    void cmdBackColor_Click();

    Dialogs& dialogs_;
    QCheckBox* chkGridLines = nullptr;
    QSpinBox* spnLineWidth = nullptr;
    QCheckBox* chkEventMarkers = nullptr;
    QCheckBox* chkBridgeGaps = nullptr;
    QPushButton* cmdBackColor = nullptr;
    QDialogButtonBox* buttonBox = nullptr;
    PackedColor backColor_ = 0xFFFFFF;
};

} // namespace trendax
