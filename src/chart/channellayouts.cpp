#include "chart/channellayouts.h"

#include <array>

namespace trendax::layouts {

namespace {

constexpr quint32 paleYellow190 = packedColor(255, 255, 190);
constexpr quint32 paleYellow210 = packedColor(255, 255, 210);
constexpr quint32 paleYellow220 = packedColor(255, 255, 220);
constexpr quint32 paleYellow230 = packedColor(255, 255, 230);

const QStringList currentAndVoltageNames = {"Phase A", "Phase B", "Phase C", "A B Voltage",
                                            "C A Voltage"};

void addNames(Plan& p, const QStringList& names, int firstRow = 0) {
    for (int i = 0; i < names.size(); ++i)
        p.names.emplace_back(firstRow + i, names[i]);
}

// Pressures, temperatures and vibrations of the gauge and the thirteen-channel sets share these
// colour writes. Track 1 is written twice and track 2 never: the second write was meant for
// track 2, and users know the result (track 1 pale, track 2 as it was), so it stays.
void gaugeTrackColors(Plan& p) {
    p.trackColors = {{0, paleYellow190}, {1, paleYellow210}, {1, paleYellow230}};
}

} // namespace

Plan plan(Layout layout) {
    Plan p;
    switch (layout) {
    case Layout::SingleChannel:
        p.panelHeightTwips = 800;
        p.names = {{0, QStringLiteral("Channel 1")}};
        p.trackCount = 1;
        p.trackColors = {{0, paleYellow190}};
        break;
    case Layout::Separate:
        p.panelHeightTwips = 1630;
        addNames(p, currentAndVoltageNames);
        p.trackCount = 5;
        for (int i = 0; i < 5; ++i)
            p.varTracks.emplace_back(i, i);
        p.trackColors = {{0, paleYellow190},
                         {1, paleYellow190},
                         {2, paleYellow190},
                         {3, paleYellow210},
                         {4, paleYellow210}};
        break;
    case Layout::CurrentAndVoltage:
        p.arrange = false;
        p.varTracks = {{0, 0}, {1, 0}, {2, 0}, {3, 1}, {4, 1}};
        p.trackCount = 2;
        p.trackColors = {{0, paleYellow190}, {1, paleYellow220}};
        break;
    case Layout::GaugeChannels:
        // 2442.15 twips is the height the panel has always had for eight rows.
        p.panelHeightTwips = 2442.15;
        addNames(p, {"Intake Temp.", "Intake Pressure", "Winding Temp", "X Vibration",
                     "Y Vibration", "Discharge Pressure", "Discharge Temp", "Expansion"});
        p.reloadColors = true;
        p.trackCount = 3;
        // "Expansion" (variable 7) keeps the track it had: track 2 after start-up or the
        // thirteen-channel layout.
        p.varTracks = {{1, 0}, {5, 0}, {0, 1}, {2, 1}, {6, 1}, {3, 2}, {4, 2}};
        gaugeTrackColors(p);
        break;
    case Layout::AllChannels:
        p.panelHeightTwips = 3645;
        addNames(p, currentAndVoltageNames);
        for (int i = 0; i < 8; ++i)
            p.names.emplace_back(5 + i, QStringLiteral("Quill Channel %1").arg(i + 1));
        p.quillCaptions = true;
        p.trackCount = 3;
        p.varTracks = {{0, 0}, {1, 0}, {2, 0}, {3, 1}, {4, 1}};
        for (int v = 5; v <= 12; ++v)
            p.varTracks.emplace_back(v, 2);
        gaugeTrackColors(p);
        break;
    }
    return p;
}

std::optional<Layout> forChannelCount(int n) {
    switch (n) {
    case 1:
        return Layout::SingleChannel;
    case 2:
    case 3:
    case 4:
        return std::nullopt;
    case 5:
        return Layout::Separate;
    case 8:
        return Layout::GaugeChannels;
    default:
        return Layout::AllChannels;
    }
}

InitialVariable initialVariable(int index) {
    // The green of variable 2 is 1,128,0 and has always been.
    static constexpr std::array<InitialVariable, 13> table = {{
        {packedColor(0, 0, 160), 0},
        {packedColor(255, 0, 0), 1},
        {packedColor(1, 128, 0), 2},
        {packedColor(128, 64, 0), 3},
        {packedColor(0, 0, 0), 4},
        {packedColor(0, 0, 255), 2},
        {packedColor(0, 128, 0), 2},
        {packedColor(255, 0, 0), 2},
        {packedColor(0, 0, 0), 2},
        {packedColor(128, 128, 0), 2},
        {packedColor(255, 255, 0), 2},
        {packedColor(0, 255, 255), 2},
        {packedColor(128, 128, 255), 2},
    }};
    return table.at(size_t(index));
}

QString colorSection(int index) {
    return QStringLiteral("Channel%1").arg(index);
}

std::optional<PackedColor> storedColor(const QString& text) {
    if (text == QLatin1String("?"))
        return std::nullopt;
    bool ok = false;
    const qlonglong value = text.trimmed().toLongLong(&ok);
    if (!ok || value < 0 || value > 0xFFFFFF)
        return std::nullopt;
    return PackedColor(value);
}

} // namespace trendax::layouts
