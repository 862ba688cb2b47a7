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

// What an event means for the pump, for the chart's markers.
enum class EventClass {
    Fault,     // overloads, underloads, imbalances, power failures, high and low alarms
    StartStop, // manual, automatic and remote starts and stops
    Other,     // inputs, restored power, communications, markers of the table, unknown codes
};

// The class of a trimmed code; Other for a code in no row. The gauge code HI20, whose padded row
// never matches, is still the high alarm it stands for.
EventClass eventClass(QStringView code);

// The class of a history list entry such as "03/15/12 10:22:33 - Overload", from the event text
// after " - " (or the code inside "History Event (...)"); Other for an entry without one.
EventClass entryEventClass(QStringView entry);

} // namespace trendax::history
