// The main window's side of calibration.
#include "app/form1.h"
#include "calibration/factorfiles.h"

namespace trendax {

// The two-point calibration dialog comes with its own module; until then the command is present
// and does nothing.
void Form1::OpenCalibrationDialog() {}

void Form1::WriteCalibrationFactors(const QString& scaleText, const QString& offsetText) {
    // The paths are those of the site loaded last; before any load they are empty, the first
    // write fails and nothing happens.
    if (WriteFactors(ScaleFilePath, scaleText, OffsetFilePath, offsetText))
        LoadWell();
}

} // namespace trendax
