#pragma once

#include <QRect>
#include <array>

// Where the statistics panel puts its controls. The rows and columns start at their design
// places in twips; where the panel's font needs more room than the design gives (a long channel
// name, a wide value, a small screen resolution), the columns move right and the rows down, so
// nothing overlaps and every text is shown whole.
namespace trendax::statslayout {

inline constexpr int rowCount = 13;
inline constexpr int columnCount = 7;
// "Ref Value" and "Delta", right of "Max" while the reference cursor is set.
inline constexpr int referenceColumnCount = 2;

// Measured by the panel, in pixels.
struct Metrics {
    double dpi = 96;
    int lineHeight = 0;                         // height of a line of the panel's font
    int boldLineHeight = 0;                     // the same for the bold "Cursor:" heading
    int checkBox = 0;                           // a check box without text
    int nameWidth = 0;                          // the widest channel name
    int cursorTextWidth = 0;                    // the widest cursor time text
    std::array<int, columnCount> columnWidth{}; // widest heading or value of each column
    // The reference columns are laid out only when asked for; without them the panel is the
    // design's.
    bool referenceColumns = false;
    std::array<int, referenceColumnCount> referenceWidth{};
};

struct Geometry {
    QRect cursorHeading;
    QRect cursorText;
    std::array<QRect, columnCount> headings;
    std::array<QRect, rowCount> checkBoxes;
    std::array<QRect, rowCount> samples; // the colour sample lines
    std::array<QRect, rowCount> names;
    std::array<std::array<QRect, columnCount>, rowCount> values;
    // Empty rectangles unless Metrics::referenceColumns.
    std::array<QRect, referenceColumnCount> referenceHeadings;
    std::array<std::array<QRect, referenceColumnCount>, rowCount> referenceValues;
    int width = 0; // what the panel needs to show every column whole

    // The panel height that shows the first `rows` rows whole and nothing of the next.
    int heightForRows(int rows) const;
};

Geometry compute(const Metrics& m);

// How many rows a panel height in twips set by the layouts shows: 800 one, 1630 five, 2442.15
// eight, 3645 all thirteen; a height between them shows the rows of the next lower one.
int rowsShown(double heightTwips);

} // namespace trendax::statslayout
