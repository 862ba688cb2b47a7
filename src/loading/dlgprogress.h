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

    // The overall bar for a load of this many files (one step more than files, so that it is
    // full only once the load has ended).
    void beginFiles(int count);
    // The file with this number (from 1) of count is being read.
    void showFile(int fileNumber, int count);
    // The number of the file being read, 0 before the first.
    int fileNumber() const;
    // The number of files of the load that beginFiles began.
    int fileCount() const;
    // The whole load has been read.
    void finishFiles();
    // The row being read of the current file and its row count.
    void showLine(qsizetype row, qsizetype rowCount);
};

} // namespace trendax
