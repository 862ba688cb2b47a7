// The main window's read-outs of the reference cursor: its time and the cursor's distance from
// it in the status bar, and the "Ref Value" and "Delta" columns of the statistics panel.
#include "app/form1.h"

#include "chart/readouts.h"
#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"

#include <QLabel>
#include <QStatusBar>

namespace trendax {

void Form1::buildReferencePanel() {
    referencePanel = new QLabel(this);
    referencePanel->setObjectName(QStringLiteral("referencePanel"));
    referencePanel->setVisible(false);
    StatusBar1->addWidget(referencePanel, 0);
    connect(Strip1, &StripChart::ReferenceChange, this, &Form1::Strip1_ReferenceChange);
}

void Form1::Strip1_ReferenceChange() {
    UpdateReferenceDisplay();
}

void Form1::UpdateReferenceDisplay() {
    const std::optional<double> b = Strip1->model().referenceX();
    const bool columnsBefore = picStats->referenceShown();
    if (b) {
        for (int i = 0; i < StatsPanel::rowCount; ++i)
            picStats->showReference(i, Strip1->model().valueAt(i, *b), Strip1->CursorValue(i));
        referencePanel->setText(readouts::referenceStatus(Strip1->CursorX(), *b));
    }
    picStats->setReferenceShown(b.has_value());
    referencePanel->setVisible(b.has_value());
    if (columnsBefore != b.has_value())
        ArrangeControls(); // the chart column keeps room for every column of the panel
}

} // namespace trendax
