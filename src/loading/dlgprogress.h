#pragma once

#include <QDialog>

class QLabel;
class QProgressBar;

namespace trendax {

// The modeless window a load shows in front of the main window: the current file's progress at
// the top, the overall progress below. It has no commands.
class dlgProgress : public QDialog {
    Q_OBJECT

public:
    explicit dlgProgress(QWidget* parent = nullptr);

    QLabel* lblLines = nullptr;
    QProgressBar* ProgressBar2 = nullptr;
    QLabel* lblFiles = nullptr;
    QProgressBar* ProgressBar1 = nullptr;

    // Brings the window to the front of the main window.
    void bringToFront();
};

} // namespace trendax
