// The main window's chart view commands that act through the statistics panel, the chart's
// context menu, the toolbar's mouse and the chart's keys: channel colours and visibility, the
// auxiliary channel menu, the buffer size, zoom all from the keyboard and the held scroll buttons.
#include "app/form1.h"

#include "chart/chartview.h"
#include "chart/stripchart.h"
#include "storage/dialogs.h"
#include "storage/programtitle.h"
#include "storage/qtcolor.h"

#include <QAction>
#include <QCheckBox>
#include <QToolBar>
#include <QToolButton>

namespace trendax {

// ---- Channel colours and visibility ----

void Form1::lblVar_Click(int i) {
    const std::optional<QColor> chosen =
        dialogs_.chooseColor(this, picStats->rowColor(i), QStringLiteral("Variable Color"));
    if (!chosen)
        return;
    picStats->setRowColor(i, *chosen);
    Strip1->setCurrentVar(i);
    Strip1->setVarColor(toPackedColor(*chosen)); // saved at the next unload
}

void Form1::chkChannelVisible_Click(int i) {
    const bool visible = stats[size_t(i)].chkChannelVisible->isChecked();
    Strip1->setCurrentVar(i);
    Strip1->setVarVisible(visible);
    if (const auto item = chartview::quillItemForRow(i))
        mnuChannel[size_t(*item - 1)]->setChecked(visible);
}

void Form1::mnuChannel_Click(int k) {
    QAction* item = mnuChannel[size_t(k - 1)];
    item->setChecked(!item->isChecked());
    const bool visible = item->isChecked();
    const int row = chartview::firstQuillRow + k - 1;
    stats[size_t(row)].chkChannelVisible->setChecked(visible);
    Strip1->setCurrentVar(row);
    Strip1->setVarVisible(visible);
    LayoutAllChannels();
    UpdateStatistics();
}

// ---- Buffer size ----

void Form1::mnuGraphSettings_Click() {
    const QString answer =
        dialogs_.input(this, QStringLiteral("Enter buffer size."), QStringLiteral("MaxBufferSize"),
                       QString::number(Strip1->MaxBufferSize()));
    if (const auto size = chartview::bufferSizeAnswer(answer)) {
        Strip1->setMaxBufferSize(*size);
        return;
    }
    // A cancelled box answers empty text and gets the same message.
    dialogs_.message(this, QStringLiteral("MaxBufferSize must be numeric!"), programTitle(),
                     QMessageBox::Ok, QMessageBox::Warning);
}

// ---- Chart keys ----

void Form1::Strip1_ZoomAllRequest() {
    ZoomAll();
}

// ---- Held scroll buttons ----

void Form1::Toolbar1_MouseDown(int, int, double x, double y) {
    const QPointF at(x, y);
    const auto inside = [this, at](const char* key) {
        const QToolButton* b = toolButton(QString::fromLatin1(key));
        return b && b->isVisible() && QRectF(b->geometry()).contains(at);
    };
    if (inside("left"))
        scrollLeft = true;
    if (inside("right"))
        scrollRight = true;
}

void Form1::Toolbar1_MouseUp(int, int, double, double) {
    scrollLeft = false;
    scrollRight = false;
}

} // namespace trendax
