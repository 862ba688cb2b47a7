#include "history/eventcodes.h"

#include <QHash>
#include <array>

namespace trendax::history {

namespace {

constexpr std::array<EventCode, 81> table = {{
    {"OLD", "Overload"},
    {"ULD", "Underload"},
    {"CUB", "Current Imbalance"},
    {"OVT", "Overvoltage"},
    {"UVT", "Undervoltage"},
    {"VUB", "Voltage Imbalance"},
    {"ROT", "Rotation Error"},
    {"DI1", "Digital Input One"},
    {"DI2", "Digital Input Two"},
    {"A1Hi", "Analog One High"},
    {"A1Lo", "Analog One Low"},
    {"MAN", "Switch to Manual"},
    {"PUV", "Power Restored"},
    {"PWRF", "Power Failed"},
    {"MSTR", "Manual Start"},
    {"ASTR", "Auto Start"},
    {"RSTR", "Remote Start"},
    {"RSTO", "Remote Stop"},
    {"HI20    ", "ORB Intake Temp. High"},
    {"HI21", "ORB Intake Pressure High"},
    {"HI22", "ORB Winding Temp. High"},
    {"HI23", "ORB X Vibration High"},
    {"HI24", "ORB Y Vibration High"},
    {"HI25", "ORB Discharge Pressure High"},
    {"HI26", "ORB Discharge Temp High"},
    {"HI27", "ORB Expansion High"},
    {"HI28", "ORB Intake Temp.  Low"},
    {"HI29", "ORB Intake Pressure  Low"},
    {"HI30", "ORB Winding Temp Low"},
    {"HI31", "ORB X Vibration Low"},
    {"HI32", "ORB Y Vibration Low"},
    {"HI33", "ORB Discharge Pressure Low"},
    {"HI34", "ORB Discharge Temp Low"},
    {"HI35", "ORB Expansion Low"},
    {"HI36", "Rem Comms Connect"},
    {"HI37", "Rem Comms Lost"},
    {"HI38", "Rem Lockout Clear"},
    {"HI63", "--"},
    {"HIMIN", "First code"},
    {"OLD", "Overload"},
    {"ULD", "Underload"},
    {"IUB", "Current Unbalance"},
    {"OV", "Voltage Too High"},
    {"UV", "Voltage Too Low"},
    {"VUB", "Voltage Unbalance"},
    {"ROT", "Rotation Error"},
    {"Di 1", "Dig. Input 1"},
    {"Di 2", "Dig. Input 2"},
    {"Ai1 Hi", "Analog 1 High"},
    {"Ai2 Lo", "Analog 1 Low"},
    {"MnStop", "Manual Stop"},
    {"Pwr On", "Power Restored"},
    {"PwrOff", "Power Fail"},
    {"Brown", "Brown-out"},
    {"MnStrt", "Manual Start"},
    {"AuStrt", "Auto Start"},
    {"RmStrt", "Remote Start"},
    {"RmStop", "Remote Stop"},
    {"BHT Hi", "Orb Intake Temp. High"},
    {"BHP Hi", "Orb Pressure High"},
    {"MT  Hi", "Orb Winding Temp. High"},
    {"CH4 Hi", "Orb Vibration X High"},
    {"CH5 Hi", "Orb Vibration Y High"},
    {"DSPIHi", "Orb Discharge Press High"},
    {"CH7 Hi", "Orb Discharge Temp High"},
    {"CH8 Hi", "Orb Spare High"},
    {"BHT Lo", "Orb Intake Temp. Low"},
    {"BHP Lo", "Orb Pressure Low"},
    {"MT  Lo", "Orb Winding Temp. Low"},
    {"CH4 Lo", "Orb Vibration X Low"},
    {"CH5 Lo", "Orb Vibration Y Low"},
    {"DSPILo", "Orb Discharge Press Low"},
    {"CH7 Lo", "Orb Discharge Temp Low"},
    {"CH8 Lo", "Orb Spare Low"},
    {"RMComm", "Remote Comms connected"},
    {"RMLost", "Remote Comms Lost"},
    {"RMClr", "Lockout Cleared Remotely"},
    {"Ai2 Hi", "Analog 2 High"},
    {"Ai2 Lo", "Analog 2 Low"},
    {"None", "Nothing stored"},
    {"HIMAX", "Last code"},
}};

// Code to text of the first row of each code, so that a lookup costs one hash probe instead of
// a walk through the table for every line of a month of history files.
const QHash<QString, QString>& firstRows() {
    static const QHash<QString, QString> index = [] {
        QHash<QString, QString> h;
        for (const EventCode& row : table) {
            const QString code = QString::fromLatin1(row.code);
            if (!h.contains(code))
                h.insert(code, QString::fromLatin1(row.text));
        }
        return h;
    }();
    return index;
}

// Faults and starts/stops by code; every other code is Other.
constexpr const char* faultCodes[] = {
    "OLD",    "ULD",    "CUB",    "OVT",    "UVT",    "VUB",    "A1Hi",   "A1Lo",   "PWRF",
    "HI20",   "HI21",   "HI22",   "HI23",   "HI24",   "HI25",   "HI26",   "HI27",   "HI28",
    "HI29",   "HI30",   "HI31",   "HI32",   "HI33",   "HI34",   "HI35",   "IUB",    "OV",
    "UV",     "Ai1 Hi", "Ai2 Lo", "Ai2 Hi", "PwrOff", "Brown",  "BHT Hi", "BHP Hi", "MT  Hi",
    "CH4 Hi", "CH5 Hi", "DSPIHi", "CH7 Hi", "CH8 Hi", "BHT Lo", "BHP Lo", "MT  Lo", "CH4 Lo",
    "CH5 Lo", "DSPILo", "CH7 Lo", "CH8 Lo"};
constexpr const char* startStopCodes[] = {"MSTR",   "ASTR",   "RSTR",   "RSTO",  "MnStop",
                                          "MnStrt", "AuStrt", "RmStrt", "RmStop"};

const QHash<QString, EventClass>& codeClasses() {
    static const QHash<QString, EventClass> classes = [] {
        QHash<QString, EventClass> h;
        for (const char* code : faultCodes)
            h.insert(QString::fromLatin1(code), EventClass::Fault);
        for (const char* code : startStopCodes)
            h.insert(QString::fromLatin1(code), EventClass::StartStop);
        return h;
    }();
    return classes;
}

// The class of each text the history list shows, by the code of the first row with that text.
const QHash<QString, EventClass>& textClasses() {
    static const QHash<QString, EventClass> classes = [] {
        QHash<QString, EventClass> h;
        for (const EventCode& row : table) {
            const QString text = QString::fromLatin1(row.text);
            if (!h.contains(text))
                h.insert(text, eventClass(QString::fromLatin1(row.code).trimmed()));
        }
        return h;
    }();
    return classes;
}

} // namespace

EventClass eventClass(QStringView code) {
    return codeClasses().value(code.toString(), EventClass::Other);
}

EventClass entryEventClass(QStringView entry) {
    // The date and time fill the first 17 characters, the separator follows.
    constexpr qsizetype textAt = 20;
    if (entry.size() <= textAt || entry.mid(17, 3) != u" - ")
        return EventClass::Other;
    const QStringView text = entry.mid(textAt);
    const QStringView unknown = u"History Event (";
    if (text.startsWith(unknown) && text.endsWith(u')'))
        return eventClass(text.mid(unknown.size(), text.size() - unknown.size() - 1));
    return textClasses().value(text.toString(), EventClass::Other);
}

std::span<const EventCode> eventCodeTable() {
    return table;
}

QString eventText(QStringView code) {
    const auto& index = firstRows();
    const auto it = index.constFind(code.toString());
    if (it != index.constEnd())
        return *it;
    QString text = QStringLiteral("History Event (");
    text += code;
    text += QLatin1Char(')');
    return text;
}

} // namespace trendax::history
