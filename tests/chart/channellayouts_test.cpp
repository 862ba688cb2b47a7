#include "chart/channellayouts.h"

#include <gtest/gtest.h>

namespace trendax::layouts {
namespace {

int trackOf(const Plan& p, int var) {
    int track = -1;
    for (const auto& [v, t] : p.varTracks)
        if (v == var)
            track = t;
    return track;
}

TEST(LayoutChoice, FollowsTheChannelCount) {
    EXPECT_EQ(forChannelCount(1), Layout::SingleChannel);
    for (int n : {2, 3, 4})
        EXPECT_FALSE(forChannelCount(n).has_value()) << n;
    EXPECT_EQ(forChannelCount(5), Layout::Separate);
    EXPECT_EQ(forChannelCount(8), Layout::GaugeChannels);
    for (int n : {0, 6, 7, 9, 13, 88, -1})
        EXPECT_EQ(forChannelCount(n), Layout::AllChannels) << n;
}

TEST(Layouts, GaugeSetLeavesExpansionAndTrackTwoAlone) {
    const Plan p = plan(Layout::GaugeChannels);
    EXPECT_EQ(p.trackCount, 3);
    EXPECT_EQ(trackOf(p, 7), -1);
    EXPECT_EQ(trackOf(p, 1), 0);
    EXPECT_EQ(trackOf(p, 6), 1);
    EXPECT_EQ(trackOf(p, 4), 2);
    ASSERT_EQ(p.trackColors.size(), 3u);
    EXPECT_EQ(p.trackColors.back(), (std::pair<int, quint32>{1, packedColor(255, 255, 230)}));
    for (const auto& [track, color] : p.trackColors)
        EXPECT_NE(track, 2);
    EXPECT_TRUE(p.reloadColors);
    EXPECT_DOUBLE_EQ(*p.panelHeightTwips, 2442.15);
}

TEST(Layouts, CurrentAndVoltageKeepsNamesAndPanel) {
    const Plan p = plan(Layout::CurrentAndVoltage);
    EXPECT_TRUE(p.names.empty());
    EXPECT_FALSE(p.panelHeightTwips.has_value());
    EXPECT_FALSE(p.arrange);
    EXPECT_EQ(p.trackCount, 2);
    EXPECT_EQ(trackOf(p, 5), -1);
}

TEST(Layouts, AllChannelsNamesThirteenRows) {
    const Plan p = plan(Layout::AllChannels);
    ASSERT_EQ(p.names.size(), 13u);
    EXPECT_EQ(p.names[3].second, QStringLiteral("A B Voltage"));
    EXPECT_EQ(p.names[12].second, QStringLiteral("Quill Channel 8"));
    EXPECT_EQ(trackOf(p, 12), 2);
    EXPECT_TRUE(p.quillCaptions);
}

TEST(InitialColours, KeepTheOddGreen) {
    EXPECT_EQ(initialVariable(0).color, packedColor(0, 0, 160));
    EXPECT_EQ(initialVariable(2).color, packedColor(1, 128, 0));
    EXPECT_EQ(initialVariable(4).track, 4);
    EXPECT_EQ(initialVariable(12).track, 2);
}

TEST(SavedColours, AcceptOnlyAColourNumber) {
    const std::pair<const char*, std::optional<PackedColor>> rows[] = {{"0", 0u},
                                                                       {"16777215", 0xFFFFFFu},
                                                                       {"10526880", 10526880u},
                                                                       {" 255 ", 255u},
                                                                       {"?", {}},
                                                                       {"16777216", {}},
                                                                       {"-1", {}},
                                                                       {"", {}},
                                                                       {"red", {}},
                                                                       {"12abc", {}},
                                                                       {"1.5", {}},
                                                                       {"&HFF", {}}};
    for (const auto& [text, colour] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(storedColor(QString::fromLatin1(text)), colour);
    }
}

} // namespace
} // namespace trendax::layouts
