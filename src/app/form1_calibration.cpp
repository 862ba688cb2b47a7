// The main window's side of calibration.
#include "app/form1.h"
#include "calibration/factorfiles.h"
#include "calibration/frmcalibrate2.h"

namespace trendax {

// One dialog at a time: a second command brings the open one to the front and shows it the
// factors in effect again. Every close destroys it, so the next opening starts afresh; a dialog
// already hidden on its way out is left to go.
void Form1::OpenCalibrationDialog() {
    if (calibrationDialog_ && calibrationDialog_->isVisible()) {
        calibrationDialog_->raise();
        calibrationDialog_->activateWindow();
        ShowFactorsInCalibrationDialog();
        return;
    }
    calibrationDialog_ = new frmCalibrate2(
        dialogs_,
        [this](const QString& scaleText, const QString& offsetText) {
            WriteCalibrationFactors(scaleText, offsetText);
        },
        this);
    calibrationDialog_->show();
    ShowFactorsInCalibrationDialog();
}

// An open dialog always calculates from the factors of the site loaded last, also when another
// site was loaded while it stayed open.
void Form1::ShowFactorsInCalibrationDialog() {
    if (calibrationDialog_ && calibrationDialog_->isVisible())
        calibrationDialog_->showCurrentFactors(mScale, mOffset);
}

frmCalibrate2* Form1::calibrationDialog() const {
    return calibrationDialog_;
}

void Form1::WriteCalibrationFactors(const QString& scaleText, const QString& offsetText) {
    // The paths are those of the site loaded last; before any load they are empty, the first
    // write fails and nothing happens.
    if (WriteFactors(ScaleFilePath, scaleText, OffsetFilePath, offsetText))
        LoadWell();
}

} // namespace trendax
