#pragma once

#include <QString>
#include <QStringView>
#include <span>

// The controllers' event codes and the texts the history list shows for them.
namespace trendax::history {

struct EventCode {
    const char* code;
    const char* text;
};

// The whole table in its order. Two controller families share it, so some codes appear twice;
// the first row of a code wins and the later ones are never reached. Row 19 ("HI20" with four
// trailing blanks) never matches a trimmed code, and "Ai2 Lo" reads "Analog 1 Low": field
// engineers know these texts from years of reports, so they stay as they are.
std::span<const EventCode> eventCodeTable();

// The text of a code already trimmed: the first row whose code is equal, letter case respected;
// "History Event (" + code + ")" for a code in no row.
QString eventText(QStringView code);

} // namespace trendax::history
