// The main window's arrangement: the band container, the history column, the chart and the
// statistics panel follow the window's size, in twips converted at the screen's resolution.
#include "app/form1.h"

#include "chart/stripchart.h"
#include "history/historypanel.h"
#include "storage/twips.h"

#include <QGuiApplication>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>
#include <QTableWidget>
#include <QToolBar>

namespace trendax {

double Form1::logicalDpi() const {
    const QScreen* s = screen() ? screen() : QGuiApplication::primaryScreen();
    return s ? s->logicalDotsPerInchX() : 96.0;
}

int Form1::twipsToPixels(double twips) const {
    return twips::toPixels(twips, logicalDpi());
}

double Form1::pixelsToTwips(int pixels) const {
    return twips::fromPixels(pixels, logicalDpi());
}

int Form1::bandWidthTwips() const {
    return int(std::lround(pixelsToTwips(CoolBar1->sizes().value(0))));
}

void Form1::setBandWidthTwips(int twips) {
    QList<int> sizes = CoolBar1->sizes();
    const int total = sizes.value(0) + sizes.value(1);
    const int first = twipsToPixels(twips);
    CoolBar1->setSizes({first, std::max(0, total - first)});
}

void Form1::ArrangeBands() {
    const QRect outer = frameGeometry();
    const int toolbarHeight = Toolbar1->isVisible() ? Toolbar1->height() : 0;
    CoolBar1->setGeometry(0, 0, std::max(0, outer.width() - twipsToPixels(100)),
                          std::max(0, outer.height() - toolbarHeight - twipsToPixels(500)));
    const int width = frameHist->width();
    lstHST->resize(width, lstHST->height());
    gridHistoryEvents->resize(width, gridHistoryEvents->height());
    cmdAddComment->resize(width, cmdAddComment->height());
    Strip1->move(0, 0);
}

void Form1::ArrangeControls() {
    if (isMinimized())
        return;
    ArrangeBands();
    if (!isMaximized() && !isFullScreen()) {
        const QRect outer = frameGeometry();
        const QSize frame = outer.size() - size();
        const int minWidth = twipsToPixels(12000);
        const int minHeight = twipsToPixels(9000);
        if (outer.width() < minWidth || outer.height() < minHeight) {
            resize(std::max(outer.width(), minWidth) - frame.width(),
                   std::max(outer.height(), minHeight) - frame.height());
            ArrangeBands();
        }
    }
    const int T = Toolbar1->isVisible() ? Toolbar1->height() : 0;
    const int S = StatusBar1->isVisible() ? StatusBar1->height() : 0;
    const int H = height();
    const int listHeight = std::max(0, (H - T - S) / 2);
    const int buttonHeight = cmdAddComment->sizeHint().height();

    lstHST->setGeometry(0, 0, frameHist->width(), listHeight);
    cmdAddComment->resize(frameHist->width(), buttonHeight);
    if (numChannels != 1) {
        cmdAddComment->move(0, lstHST->y() + lstHST->height());
        gridHistoryEvents->setGeometry(0, cmdAddComment->y() + buttonHeight, frameHist->width(),
                                       listHeight);
    } else {
        // A one-channel log has no history events: the comments take the whole column.
        lstHST->setVisible(false);
        cmdAddComment->move(0, lstHST->y());
        gridHistoryEvents->setGeometry(0, cmdAddComment->y() + buttonHeight, frameHist->width(),
                                       2 * listHeight);
    }

    if (!gridHistoryEvents->isHidden()) {
        Strip1->resize(frameGraph->width(), Strip1->height());
    } else {
        Strip1->move(0, Strip1->y());
        Strip1->resize(width(), Strip1->height());
    }
    picStats->setGeometry(Strip1->x(), picStats->y(), Strip1->width(), picStats->height());
    if (numChannels != 1)
        lstHST->setVisible(!gridHistoryEvents->isHidden());
    cmdAddComment->setVisible(!gridHistoryEvents->isHidden());

    // The chart column never becomes narrower than the statistics panel needs to show every
    // name and value whole, also when the history column is dragged wider.
    frameGraph->setMinimumWidth(
        std::max(twipsToPixels(1995), picStats->isHidden() ? 0 : picStats->neededWidth()));

    const int chartArea = std::max(0, H - T - S);
    if (!picStats->isHidden()) {
        const int statsHeight = picStats->shownHeight();
        Strip1->resize(Strip1->width(), std::max(0, chartArea - statsHeight));
        picStats->setGeometry(picStats->x(), Strip1->height(), picStats->width(), statsHeight);
    } else {
        Strip1->resize(Strip1->width(), chartArea);
    }
}

} // namespace trendax
