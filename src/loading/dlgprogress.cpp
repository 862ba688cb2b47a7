#include "loading/dlgprogress.h"

#include <QGuiApplication>
#include <QLabel>
#include <QProgressBar>
#include <QScreen>

namespace trendax {

dlgProgress::dlgProgress(QWidget* parent) : QDialog(parent) {
    setWindowTitle(QStringLiteral("Loading Files ..."));
    setModal(false);
    const QScreen* screen = QGuiApplication::primaryScreen();
    const double dpi = screen ? screen->logicalDotsPerInchX() : 96.0;
    const auto px = [dpi](int twips) { return int(twips * dpi / 1440.0 + 0.5); };

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

} // namespace trendax
