#include "history/eventcodes.h"
#include "history/historyfile.h"

#include <gtest/gtest.h>

namespace trendax::history {
namespace {

struct Row {
    const char* code;
    const char* text;
    const char* shown; // what an event with the trimmed code shows in the history list
};

// The table as the controllers' manuals print it, with what each code shows.
const Row expected[] = {
    {"OLD", "Overload", "Overload"},
    {"ULD", "Underload", "Underload"},
    {"CUB", "Current Imbalance", "Current Imbalance"},
    {"OVT", "Overvoltage", "Overvoltage"},
    {"UVT", "Undervoltage", "Undervoltage"},
    {"VUB", "Voltage Imbalance", "Voltage Imbalance"},
    {"ROT", "Rotation Error", "Rotation Error"},
    {"DI1", "Digital Input One", "Digital Input One"},
    {"DI2", "Digital Input Two", "Digital Input Two"},
    {"A1Hi", "Analog One High", "Analog One High"},
    {"A1Lo", "Analog One Low", "Analog One Low"},
    {"MAN", "Switch to Manual", "Switch to Manual"},
    {"PUV", "Power Restored", "Power Restored"},
    {"PWRF", "Power Failed", "Power Failed"},
    {"MSTR", "Manual Start", "Manual Start"},
    {"ASTR", "Auto Start", "Auto Start"},
    {"RSTR", "Remote Start", "Remote Start"},
    {"RSTO", "Remote Stop", "Remote Stop"},
    {"HI20    ", "ORB Intake Temp. High", "History Event (HI20)"},
    {"HI21", "ORB Intake Pressure High", "ORB Intake Pressure High"},
    {"HI22", "ORB Winding Temp. High", "ORB Winding Temp. High"},
    {"HI23", "ORB X Vibration High", "ORB X Vibration High"},
    {"HI24", "ORB Y Vibration High", "ORB Y Vibration High"},
    {"HI25", "ORB Discharge Pressure High", "ORB Discharge Pressure High"},
    {"HI26", "ORB Discharge Temp High", "ORB Discharge Temp High"},
    {"HI27", "ORB Expansion High", "ORB Expansion High"},
    {"HI28", "ORB Intake Temp.  Low", "ORB Intake Temp.  Low"},
    {"HI29", "ORB Intake Pressure  Low", "ORB Intake Pressure  Low"},
    {"HI30", "ORB Winding Temp Low", "ORB Winding Temp Low"},
    {"HI31", "ORB X Vibration Low", "ORB X Vibration Low"},
    {"HI32", "ORB Y Vibration Low", "ORB Y Vibration Low"},
    {"HI33", "ORB Discharge Pressure Low", "ORB Discharge Pressure Low"},
    {"HI34", "ORB Discharge Temp Low", "ORB Discharge Temp Low"},
    {"HI35", "ORB Expansion Low", "ORB Expansion Low"},
    {"HI36", "Rem Comms Connect", "Rem Comms Connect"},
    {"HI37", "Rem Comms Lost", "Rem Comms Lost"},
    {"HI38", "Rem Lockout Clear", "Rem Lockout Clear"},
    {"HI63", "--", "--"},
    {"HIMIN", "First code", "First code"},
    {"OLD", "Overload", "Overload"},
    {"ULD", "Underload", "Underload"},
    {"IUB", "Current Unbalance", "Current Unbalance"},
    {"OV", "Voltage Too High", "Voltage Too High"},
    {"UV", "Voltage Too Low", "Voltage Too Low"},
    {"VUB", "Voltage Unbalance", "Voltage Imbalance"},
    {"ROT", "Rotation Error", "Rotation Error"},
    {"Di 1", "Dig. Input 1", "Dig. Input 1"},
    {"Di 2", "Dig. Input 2", "Dig. Input 2"},
    {"Ai1 Hi", "Analog 1 High", "Analog 1 High"},
    {"Ai2 Lo", "Analog 1 Low", "Analog 1 Low"},
    {"MnStop", "Manual Stop", "Manual Stop"},
    {"Pwr On", "Power Restored", "Power Restored"},
    {"PwrOff", "Power Fail", "Power Fail"},
    {"Brown", "Brown-out", "Brown-out"},
    {"MnStrt", "Manual Start", "Manual Start"},
    {"AuStrt", "Auto Start", "Auto Start"},
    {"RmStrt", "Remote Start", "Remote Start"},
    {"RmStop", "Remote Stop", "Remote Stop"},
    {"BHT Hi", "Orb Intake Temp. High", "Orb Intake Temp. High"},
    {"BHP Hi", "Orb Pressure High", "Orb Pressure High"},
    {"MT  Hi", "Orb Winding Temp. High", "Orb Winding Temp. High"},
    {"CH4 Hi", "Orb Vibration X High", "Orb Vibration X High"},
    {"CH5 Hi", "Orb Vibration Y High", "Orb Vibration Y High"},
    {"DSPIHi", "Orb Discharge Press High", "Orb Discharge Press High"},
    {"CH7 Hi", "Orb Discharge Temp High", "Orb Discharge Temp High"},
    {"CH8 Hi", "Orb Spare High", "Orb Spare High"},
    {"BHT Lo", "Orb Intake Temp. Low", "Orb Intake Temp. Low"},
    {"BHP Lo", "Orb Pressure Low", "Orb Pressure Low"},
    {"MT  Lo", "Orb Winding Temp. Low", "Orb Winding Temp. Low"},
    {"CH4 Lo", "Orb Vibration X Low", "Orb Vibration X Low"},
    {"CH5 Lo", "Orb Vibration Y Low", "Orb Vibration Y Low"},
    {"DSPILo", "Orb Discharge Press Low", "Orb Discharge Press Low"},
    {"CH7 Lo", "Orb Discharge Temp Low", "Orb Discharge Temp Low"},
    {"CH8 Lo", "Orb Spare Low", "Orb Spare Low"},
    {"RMComm", "Remote Comms connected", "Remote Comms connected"},
    {"RMLost", "Remote Comms Lost", "Remote Comms Lost"},
    {"RMClr", "Lockout Cleared Remotely", "Lockout Cleared Remotely"},
    {"Ai2 Hi", "Analog 2 High", "Analog 2 High"},
    {"Ai2 Lo", "Analog 2 Low", "Analog 1 Low"},
    {"None", "Nothing stored", "Nothing stored"},
    {"HIMAX", "Last code", "Last code"},
};

TEST(EventCodeTable, HoldsEveryRowInOrderWithItsExactText) {
    const auto table = eventCodeTable();
    ASSERT_EQ(table.size(), std::size(expected));
    for (size_t i = 0; i < table.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "row " << i + 1 << " " << expected[i].code);
        EXPECT_STREQ(table[i].code, expected[i].code);
        EXPECT_STREQ(table[i].text, expected[i].text);
    }
}

// Every code of the table as it arrives in a history line, its code column padded to eight.
TEST(EventCodeTable, EveryCodeShowsItsTextInTheHistoryList) {
    for (size_t i = 0; i < std::size(expected); ++i) {
        const QString code = QString::fromLatin1(expected[i].code).trimmed();
        SCOPED_TRACE(testing::Message() << "row " << i + 1 << " " << code.toStdString());
        const QString line = code.leftJustified(8) + "03/15 10:22:33 AAAABBBBCCCC";
        const auto entry = HistoryEventText(line, u"12");
        ASSERT_TRUE(entry);
        EXPECT_EQ(*entry, "03/15/12 10:22:33 - " + QString::fromLatin1(expected[i].shown));
    }
}

struct Quirk {
    const char* name;
    const char* code;
    const char* shown;
};

class EventCodeQuirks : public testing::TestWithParam<Quirk> {};

TEST_P(EventCodeQuirks, ShowTheirText) {
    EXPECT_EQ(eventText(QString::fromLatin1(GetParam().code)),
              QString::fromLatin1(GetParam().shown));
}

INSTANTIATE_TEST_SUITE_P(
    Lookup, EventCodeQuirks,
    testing::Values(Quirk{"Hi20NeverMatchesItsPaddedRow", "HI20", "History Event (HI20)"},
                    Quirk{"TwoInnerBlanksFound", "MT  Hi", "Orb Winding Temp. High"},
                    Quirk{"OneInnerBlankUnknown", "MT Hi", "History Event (MT Hi)"},
                    Quirk{"Ai2LoReadsAnalogOne", "Ai2 Lo", "Analog 1 Low"},
                    Quirk{"Ai1LoIsNoCode", "Ai1 Lo", "History Event (Ai1 Lo)"},
                    Quirk{"VubFirstRowWins", "VUB", "Voltage Imbalance"},
                    Quirk{"LowerCaseIsUnknown", "old", "History Event (old)"},
                    Quirk{"MixedCaseMatters", "mnstop", "History Event (mnstop)"},
                    Quirk{"UnknownCode", "XYZ9", "History Event (XYZ9)"},
                    Quirk{"EmptyCode", "", "History Event ()"}),
    [](const auto& info) { return std::string(info.param.name); });

} // namespace
} // namespace trendax::history
