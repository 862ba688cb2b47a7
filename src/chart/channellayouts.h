#pragma once

#include "storage/packedcolor.h"

#include <QString>
#include <QStringList>
#include <optional>
#include <utility>
#include <vector>

// What each channel set puts where: the statistics panel height, the channel names, the tracks
// and their colours. The main window applies a plan to the chart and the panel.
namespace trendax::layouts {

enum class Layout { SingleChannel, Separate, CurrentAndVoltage, GaugeChannels, AllChannels };

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

// The settings section of a variable's saved colour: "Channel0" to "Channel12", key "Color".
QString colorSection(int index);

// The colour a saved text stands for: a decimal colour number from 0 to 0xFFFFFF, blanks around
// it allowed. nullopt for the placeholder "?" of a colour never saved and for anything that is
// not such a number: the variable then keeps its colour, without a message.
std::optional<PackedColor> storedColor(const QString& text);

} // namespace trendax::layouts
