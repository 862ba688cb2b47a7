#include "chart/statslayout.h"

#include "storage/twips.h"

#include <algorithm>

namespace trendax::statslayout {

namespace {

// Design places in twips.
constexpr std::array<int, columnCount> columnLeftTwips = {2160, 3240, 4320, 5160, 6120, 7200, 8040};
// The reference columns continue the pitch of the last ones.
constexpr std::array<int, referenceColumnCount> referenceLeftTwips = {8880, 9720};
constexpr int headingTopTwips = 270;
constexpr int cursorHeadingTopTwips = 30;
constexpr int leftMarginTwips = 60;
constexpr int sampleLeftTwips = 240;
constexpr int sampleRightTwips = 720;
constexpr int nameLeftTwips = 840;
constexpr int nameWidthTwips = 1755;
// The design's check boxes and names are 255 high on a pitch of 210 and overlap; a row here is
// as high as the narrowest pitch, or as the font or the check box needs.
constexpr int rowHeightTwips = 210;

int designRowTopTwips(int row) {
    return row < 5 ? 540 + 210 * row : 1680 + 240 * (row - 5);
}

} // namespace

Geometry compute(const Metrics& m) {
    const auto px = [&m](double twips) { return twips::toPixels(twips, m.dpi); };
    const int gap = std::max(3, px(60));
    Geometry g;

    // ---- Rows: the design pitch, or more where the font or the check box needs it ----
    const int rowHeight = std::max({px(rowHeightTwips), m.lineHeight, m.checkBox});
    const int cursorHeadingTop = px(cursorHeadingTopTwips);
    const int headingTop = std::max(px(headingTopTwips), cursorHeadingTop + m.boldLineHeight);
    const int headingHeight = std::max(m.lineHeight, 1);
    int previousBottom = headingTop + headingHeight;
    std::array<int, rowCount> rowTop{};
    for (int r = 0; r < rowCount; ++r) {
        rowTop[r] = std::max(px(designRowTopTwips(r)), previousBottom + (r == 0 ? gap / 2 : 0));
        previousBottom = rowTop[r] + rowHeight;
    }

    // ---- Columns: the design place, or right of the column before it ----
    const int checkLeft = 0;
    const int checkSize = std::max(m.checkBox, 1);
    const int sampleLeft = std::max(px(sampleLeftTwips), checkLeft + checkSize + 2);
    const int sampleWidth = std::max(px(sampleRightTwips) - px(sampleLeftTwips), 8);
    const int nameLeft = std::max(px(nameLeftTwips), sampleLeft + sampleWidth + gap);
    const int nameWidth = std::max(px(nameWidthTwips), m.nameWidth);
    // The design name label reaches under the first column; only its text must stay clear.
    const int nameTextRight = nameLeft + m.nameWidth;
    const int cursorLeft = px(leftMarginTwips);
    int left = std::max(
        {px(columnLeftTwips[0]), nameTextRight + gap, cursorLeft + m.cursorTextWidth + gap});
    std::array<int, columnCount> columnLeft{};
    std::array<int, columnCount> columnWidth{};
    for (int c = 0; c < columnCount; ++c) {
        columnLeft[c] = std::max(left, px(columnLeftTwips[c]));
        columnWidth[c] = std::max(m.columnWidth[c], 1);
        left = columnLeft[c] + columnWidth[c] + gap;
    }
    std::array<int, referenceColumnCount> referenceLeft{};
    if (m.referenceColumns) {
        for (int c = 0; c < referenceColumnCount; ++c) {
            referenceLeft[c] = std::max(left, px(referenceLeftTwips[c]));
            left = referenceLeft[c] + std::max(m.referenceWidth[c], 1) + gap;
        }
    }
    g.width = left;

    g.cursorHeading = QRect(cursorLeft, cursorHeadingTop, columnLeft[0] - gap - cursorLeft,
                            std::max(m.boldLineHeight, 1));
    g.cursorText = QRect(cursorLeft, headingTop, columnLeft[0] - gap - cursorLeft, headingHeight);
    for (int c = 0; c < columnCount; ++c)
        g.headings[c] = QRect(columnLeft[c], headingTop, columnWidth[c], headingHeight);
    for (int r = 0; r < rowCount; ++r) {
        const int top = rowTop[r];
        g.checkBoxes[r] = QRect(checkLeft, top + (rowHeight - checkSize) / 2, checkSize, checkSize);
        g.samples[r] = QRect(sampleLeft, top + rowHeight / 2, sampleWidth, std::max(2, px(30)));
        g.names[r] =
            QRect(nameLeft, top, std::min(nameWidth, columnLeft[0] - gap - nameLeft), rowHeight);
        for (int c = 0; c < columnCount; ++c)
            g.values[r][c] = QRect(columnLeft[c], top, columnWidth[c], rowHeight);
    }
    if (m.referenceColumns) {
        for (int c = 0; c < referenceColumnCount; ++c) {
            const int width = std::max(m.referenceWidth[c], 1);
            g.referenceHeadings[c] = QRect(referenceLeft[c], headingTop, width, headingHeight);
            for (int r = 0; r < rowCount; ++r)
                g.referenceValues[r][c] = QRect(referenceLeft[c], rowTop[r], width, rowHeight);
        }
    }
    return g;
}

int Geometry::heightForRows(int rows) const {
    rows = std::clamp(rows, 1, rowCount);
    const QRect& last = names[rows - 1];
    int bottom = last.top() + last.height() + 2;
    if (rows < rowCount) // never a sliver of the next row
        bottom = std::min(bottom, names[rows].top());
    return bottom;
}

int rowsShown(double heightTwips) {
    if (heightTwips >= 3645)
        return 13;
    if (heightTwips >= 2442.15)
        return 8;
    if (heightTwips >= 1630)
        return 5;
    return 1;
}

} // namespace trendax::statslayout
