// The main window's channel sets: layouts applied to the chart and the statistics panel, and the
// channel colours kept in the settings store.
#include "app/form1.h"

#include "chart/channellayouts.h"
#include "chart/stripchart.h"
#include "storage/environment.h"
#include "storage/qtcolor.h"

#include <QAction>

namespace trendax {

void Form1::SetTrackColor(int track, quint32 color) {
    Strip1->setCurrentTrack(track);
    Strip1->setTrackColor(color);
}

namespace {

void applyPlan(Form1& w, const layouts::Plan& plan) {
    if (plan.panelHeightTwips)
        w.picStats->setHeightTwips(*plan.panelHeightTwips);
    for (const auto& [row, name] : plan.names)
        w.picStats->setRowName(row, name);
    if (plan.reloadColors)
        w.LoadChannelColors();
    if (plan.quillCaptions) {
        for (int k = 0; k < 8; ++k)
            w.mnuChannel[size_t(k)]->setText(QStringLiteral("Channel %1").arg(k + 1));
    }
    if (plan.arrange)
        w.ArrangeControls();
    w.Strip1->setTrackCount(plan.trackCount);
    for (const auto& [var, track] : plan.varTracks) {
        w.Strip1->setCurrentVar(var);
        w.Strip1->setVarTrack(track);
    }
    for (const auto& [track, color] : plan.trackColors)
        w.SetTrackColor(track, color);
    w.AutoScaleY();
    w.AutoScaleY();
}

} // namespace

void Form1::ApplyLayout(layouts::Layout layout) {
    applyPlan(*this, layouts::plan(layout));
}
void Form1::LayoutSingleChannel() {
    ApplyLayout(layouts::Layout::SingleChannel);
}
void Form1::LayoutSeparate() {
    ApplyLayout(layouts::Layout::Separate);
}
void Form1::LayoutCurrentAndVoltage() {
    ApplyLayout(layouts::Layout::CurrentAndVoltage);
}
void Form1::LayoutGaugeChannels() {
    ApplyLayout(layouts::Layout::GaugeChannels);
}
void Form1::LayoutAllChannels() {
    ApplyLayout(layouts::Layout::AllChannels);
}

void Form1::LoadChannelColors() {
    for (int i = 0; i < 13; ++i) {
        Strip1->setCurrentVar(i);
        const QString text = env_.readSetting(layouts::colorSection(i), QStringLiteral("Color"),
                                              QStringLiteral("?"));
        if (const auto color = layouts::storedColor(text))
            Strip1->setVarColor(*color);
        picStats->setRowColor(i, toQColor(Strip1->VarColor()));
    }
}

void Form1::SaveChannelColors() {
    for (int i = 0; i < 13; ++i) {
        env_.writeSetting(layouts::colorSection(i), QStringLiteral("Color"),
                          QString::number(toPackedColor(picStats->rowColor(i))));
    }
}

} // namespace trendax
