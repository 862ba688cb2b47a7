#include "loading/dlgprogress.h"

#include "storage/twips.h"

#include <QGuiApplication>
#include <QLabel>
#include <QProgressBar>
#include <QScreen>
#include <algorithm>

namespace trendax {

dlgProgress::dlgProgress(QWidget* parent) : QDialog(parent) {
    setWindowTitle(QStringLiteral("Loading Files ..."));
    setModal(false);
    const QScreen* screen = QGuiApplication::primaryScreen();
    const double dpi = screen ? screen->logicalDotsPerInchX() : 96.0;
    const auto px = [dpi](int length) { return twips::toPixels(length, dpi); };

    lblLines = new QLabel(QStringLiteral("File Loading Progress"), this);
    lblLines->setGeometry(px(120), px(60), px(5772), px(240));
    ProgressBar2 = new QProgressBar(this);
    ProgressBar2->setGeometry(px(60), px(300), px(5892), px(312));
    lblFiles = new QLabel(QStringLiteral("Overall Progress"), this);
    lblFiles->setGeometry(px(60), px(780), px(5832), px(240));
    ProgressBar1 = new QProgressBar(this);
    ProgressBar1->setGeometry(px(60), px(1020), px(5892), px(312));
    for (QProgressBar* bar : {ProgressBar1, ProgressBar2}) {
        bar->setRange(0, 100);
        bar->setValue(0);
        bar->setTextVisible(false);
    }
    setFixedSize(px(6060), px(1500));
}

void dlgProgress::bringToFront() {
    raise();
    activateWindow();
}

void dlgProgress::beginFiles(int count) {
    ProgressBar1->setMaximum(count + 1);
    ProgressBar1->setValue(0);
}

void dlgProgress::showFile(int fileNumber, int count) {
    ProgressBar1->setValue(fileNumber);
    lblFiles->setText(QStringLiteral("Loading file %1 of %2").arg(fileNumber).arg(count));
}

int dlgProgress::fileNumber() const {
    return ProgressBar1->value();
}

int dlgProgress::fileCount() const {
    return std::max(0, ProgressBar1->maximum() - 1);
}

void dlgProgress::finishFiles() {
    ProgressBar1->setValue(ProgressBar1->maximum());
}

void dlgProgress::showLine(qsizetype row, qsizetype rowCount) {
    lblLines->setText(QStringLiteral("Reading line %1 of %2").arg(row).arg(rowCount));
    if (ProgressBar2->maximum() != int(rowCount))
        ProgressBar2->setMaximum(int(rowCount));
    ProgressBar2->setValue(ProgressBar2->maximum() > ProgressBar2->value() ? int(row) : 0);
}

} // namespace trendax
