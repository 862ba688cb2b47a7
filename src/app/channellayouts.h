#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <utility>
#include <vector>

// What each channel set puts where: the statistics panel height, the channel names, the tracks
// and their colours. The main window applies a plan to the chart and the panel.
namespace trendax::layouts {

enum class Layout { SingleChannel, Separate, CurrentAndVoltage, GaugeChannels, AllChannels };

// Packed colour R + 256*G + 65536*B.
constexpr quint32 rgb(int r, int g, int b) {
    return quint32(r) + 256u * quint32(g) + 65536u * quint32(b);
}

struct Plan {
    std::optional<double> panelHeightTwips;     // unset: the panel keeps its height
    std::vector<std::pair<int, QString>> names; // statistics row -> channel name
    bool reloadColors = false;                  // colours from the settings store first
    bool arrange = true;                        // re-arrange the window
    int trackCount = 1;
    std::vector<std::pair<int, int>> varTracks;       // variable -> track, in order
    std::vector<std::pair<int, quint32>> trackColors; // track -> colour, in order of writing
    bool quillCaptions = false; // auxiliary channel menu items become "Channel 1".."Channel 8"
};

Plan plan(Layout layout);

// The layout a load chooses for its channel count; nullopt keeps the current one (2 to 4).
std::optional<Layout> forChannelCount(int numChannels);

// Start-up colour and track of each variable, before any saved colour is loaded.
struct InitialVariable {
    quint32 color;
    int track;
};
InitialVariable initialVariable(int index);

} // namespace trendax::layouts
