#pragma once

#include <QSize>
#include <QStringView>
#include <optional>

// Rules of the main window's chart commands that need no window: the buffer-size answer, the
// auxiliary channel menu's pairing with the statistics rows, and the first window size.
namespace trendax::chartview {

// The buffer size an answer of the "Enter buffer size." box asks for: a number (blanks, sign,
// decimals and exponent allowed) rounded half to even. nullopt, so that the caller shows
// "MaxBufferSize must be numeric!" and changes nothing, for anything else: an empty answer (the
// box was cancelled), text, and sizes below 1 or beyond a 32-bit integer, which would either
// throw away every loaded point or promise room the chart cannot hold.
std::optional<int> bufferSizeAnswer(QStringView answer);

// Items 1 to 8 of the "Quill Channels" menu stand for the statistics rows 5 to 12.
inline constexpr int firstQuillRow = 5;
inline constexpr int quillItemCount = 8;
// The menu item of a statistics row, or nullopt for rows 0 to 4.
std::optional<int> quillItemForRow(int row);

// The outer size of the main window when it first opens: about 80 % of the screen's available
// area, so that the whole toolbar and the statistics panel show, but never below the window's
// minimum (the minimum wins on a screen smaller than itself).
QSize initialWindowSize(QSize available, QSize minimum);

} // namespace trendax::chartview
