#include "chart/chartsettingsdialog.h"

#include "storage/dialogs.h"
#include "storage/qtcolor.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace trendax {

ChartSettingsDialog::ChartSettingsDialog(Dialogs& dialogs, QWidget* parent)
    : QDialog(parent), dialogs_(dialogs) {
    setWindowTitle(tr("Chart Settings"));
    chkGridLines = new QCheckBox(tr("Show grid lines"), this);
    spnLineWidth = new QSpinBox(this);
    spnLineWidth->setRange(1, 10);
    spnLineWidth->setSuffix(tr(" px"));
    cmdBackColor = new QPushButton(this);
    chkEventMarkers = new QCheckBox(tr("Show event markers"), this);
    chkBridgeGaps = new QCheckBox(tr("Bridge recording gaps"), this);
    cmdBackColor->setMinimumWidth(80);
    buttonBox = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);

    auto* form = new QFormLayout;
    form->addRow(chkGridLines);
    form->addRow(tr("Line width:"), spnLineWidth);
    form->addRow(tr("Background:"), cmdBackColor);
    form->addRow(chkEventMarkers);
    form->addRow(chkBridgeGaps);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttonBox);

    connect(cmdBackColor, &QPushButton::clicked, this, &ChartSettingsDialog::cmdBackColor_Click);
    connect(buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
    setSettings(ChartSettings{});
}

void ChartSettingsDialog::setSettings(const ChartSettings& settings) {
    chkGridLines->setChecked(settings.appearance.gridLines);
    spnLineWidth->setValue(settings.appearance.lineWidth);
    chkEventMarkers->setChecked(settings.appearance.eventMarkers);
    chkBridgeGaps->setChecked(settings.appearance.bridgeGaps);
    setBackColor(settings.backColor);
}

ChartSettings ChartSettingsDialog::settings() const {
    ChartSettings s;
    s.appearance.gridLines = chkGridLines->isChecked();
    s.appearance.lineWidth = spnLineWidth->value();
    s.appearance.eventMarkers = chkEventMarkers->isChecked();
    s.appearance.bridgeGaps = chkBridgeGaps->isChecked();
    s.backColor = backColor_;
    return s;
}

void ChartSettingsDialog::setBackColor(PackedColor color) {
    backColor_ = color & 0xFFFFFFu;
    const QColor c = toQColor(backColor_);
    cmdBackColor->setText(c.name());
    cmdBackColor->setStyleSheet(QStringLiteral("background-color: %1; color: %2")
                                    .arg(c.name(), c.lightness() < 128 ? "white" : "black"));
}

void ChartSettingsDialog::cmdBackColor_Click() {
    if (const auto chosen = dialogs_.chooseColor(this, toQColor(backColor_), tr("Background")))
        setBackColor(toPackedColor(*chosen));
}

} // namespace trendax
