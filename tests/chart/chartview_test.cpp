#include "chart/channellayouts.h"
#include "chart/chartview.h"
#include "chart/readouts.h"
#include "chart/statslayout.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

namespace trendax {
namespace {

TEST(BufferSizeAnswer, TakesWholePositiveSizesAndRefusesTheRest) {
    const std::pair<const char*, std::optional<int>> rows[] = {
        {" 30000 ", 30000}, {"2.5", 2},  {"3.5", 4}, {"1e5", 100000},    {"2147483647", 2147483647},
        {"12abc", {}},      {"0.4", {}}, {"-5", {}}, {"2147483648", {}}, {"1e12", {}}};
    for (const auto& [text, size] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(chartview::bufferSizeAnswer(QString::fromLatin1(text)), size);
    }
}

TEST(InitialWindowSize, IsMostOfTheScreenButNeverBelowTheMinimum) {
    const QSize rows[][3] = {{{1600, 1000}, {800, 600}, {1280, 800}}, // available, minimum, size
                             {{800, 600}, {800, 600}, {800, 600}},
                             {{1280, 1024}, {1200, 900}, {1200, 900}}};
    for (const auto& [available, minimum, expected] : rows)
        EXPECT_EQ(chartview::initialWindowSize(available, minimum), expected) << available.width();
}

// Texts of a plain font at the given resolution: every column 64 pixels wide.
statslayout::Metrics metricsAt(double dpi) {
    statslayout::Metrics m;
    m.dpi = dpi;
    m.lineHeight = m.boldLineHeight = int(dpi / 6);
    m.checkBox = 20;
    m.nameWidth = m.cursorTextWidth = 130;
    m.columnWidth.fill(64);
    return m;
}

// Each layout's panel height shows its rows whole and nothing of the next one.
TEST(StatsLayout, PanelHeightsShowWholeRows) {
    for (const double dpi : {96.0, 144.0}) {
        const statslayout::Geometry g = statslayout::compute(metricsAt(dpi));
        for (const auto& [twips, rows] :
             {std::pair{800.0, 1}, {1630.0, 5}, {2442.15, 8}, {3645.0, 13}}) {
            SCOPED_TRACE(testing::Message() << dpi << " dpi, " << twips << " twips");
            ASSERT_EQ(statslayout::rowsShown(twips), rows);
            EXPECT_GT(g.heightForRows(rows), g.names[rows - 1].bottom());
            if (rows < statslayout::rowCount) {
                EXPECT_LE(g.heightForRows(rows), g.names[rows].top());
            }
        }
    }
}

// The reference columns follow "Max"; the seven columns and the rows stay where they are.
TEST(StatsLayout, ReferenceColumnsRightOfMaxAndOnlyWhenAsked) {
    for (const double dpi : {96.0, 144.0}) {
        SCOPED_TRACE(dpi);
        statslayout::Metrics m = metricsAt(dpi);
        m.referenceWidth = {70, 200};
        const statslayout::Geometry plain = statslayout::compute(m);
        EXPECT_TRUE(plain.referenceValues[12][1].isNull());
        m.referenceColumns = true;
        const statslayout::Geometry g = statslayout::compute(m);
        EXPECT_EQ(g.headings, plain.headings);
        EXPECT_EQ(g.values, plain.values);
        EXPECT_EQ(g.names, plain.names);
        const QRect max = g.headings[statslayout::columnCount - 1];
        const QRect ref = g.referenceHeadings[0], delta = g.referenceHeadings[1];
        EXPECT_GT(ref.left(), max.right());
        EXPECT_GT(delta.left(), ref.right());
        EXPECT_EQ(delta.width(), 200);
        EXPECT_GT(g.width, delta.right());
        for (int r = 0; r < statslayout::rowCount; ++r) {
            EXPECT_EQ(g.referenceValues[r][0].left(), ref.left()) << r;
            EXPECT_EQ(g.referenceValues[r][1].top(), g.values[r][0].top()) << r;
        }
    }
}

TEST(ValueText, ValuesAndDeltasFollowTheTwoDecimalPattern) {
    const std::pair<double, const char*> rows[] = {
        {0, "0.00"},       {0.004, "0.00"},          {0.5, "0.50"},
        {12.345, "12.35"}, {19.996, "20.00"},        {1234.5678, "1234.57"},
        {-1.004, "-1.00"}, {-1234.5678, "-1234.57"}, {1234567.891, "1234567.89"},
        {-0.001, "0.00"}};
    for (const auto& [value, text] : rows)
        EXPECT_EQ(readouts::formatValue(value), QString::fromLatin1(text)) << value;
    // Values too large to count in hundredths keep all their digits.
    for (const double huge : {1e307, -1.7e308}) {
        const QString text = readouts::formatValue(huge);
        EXPECT_TRUE(text.endsWith(".00") && text.toDouble() == huge) << text.toStdString();
    }
    // A delta is of the unrounded values: 12.35 and 2.34 shown, but 10.002 apart.
    EXPECT_EQ(readouts::formatDelta(12.346, 2.344), "10.00");
    EXPECT_EQ(readouts::formatDelta(-1.5, 2.25), "-3.75");
}

TEST(ValueText, TimeDifferenceInHoursMinutesAndSeconds) {
    constexpr double second = 1.0 / 86400.0;
    const std::tuple<const char*, double, const char*> rows[] = {
        // name, days, text
        {"none", 0, "0:00:00"},
        {"cursor before the reference", -(3723 * second), "-1:02:03"},
        {"days count as hours", 2 + 1.0 / 24, "49:00:00"},
        {"rounded to the second", 59.7 * second, "0:01:00"},
        {"just under a second back", -0.6 * second, "-0:00:01"},
        {"far apart", 1e11, "2400000000000:00:00"},
        {"not a number", std::numeric_limits<double>::quiet_NaN(), "?"},
    };
    for (const auto& [name, days, text] : rows) {
        SCOPED_TRACE(name);
        EXPECT_EQ(readouts::formatTimeDifference(days).toStdString(), text);
    }
}

} // namespace
} // namespace trendax

namespace trendax::layouts {
namespace {

TEST(LayoutChoice, FollowsTheChannelCount) {
    EXPECT_EQ(forChannelCount(1), Layout::SingleChannel);
    EXPECT_EQ(forChannelCount(5), Layout::Separate);
    EXPECT_EQ(forChannelCount(8), Layout::GaugeChannels);
    for (int n : {2, 4})
        EXPECT_FALSE(forChannelCount(n).has_value()) << n;
    for (int n : {0, 6, 9, 13, -1})
        EXPECT_EQ(forChannelCount(n), Layout::AllChannels) << n;
}

TEST(Layouts, CurrentAndVoltageKeepsNamesAndPanel) {
    const Plan p = plan(Layout::CurrentAndVoltage);
    EXPECT_EQ(std::tuple(p.names.empty(), p.panelHeightTwips.has_value(), p.arrange, p.trackCount),
              std::tuple(true, false, false, 2));
    for (const auto& [var, track] : p.varTracks)
        EXPECT_NE(var, 5) << "variable 5 stays where it is";
}

TEST(SavedColours, AcceptOnlyAColourNumber) {
    const std::pair<const char*, std::optional<PackedColor>> rows[] = {
        {"16777215", 0xFFFFFFu}, {" 255 ", 255u}, {"16777216", {}}, {"-1", {}}, {"", {}},
        {"12abc", {}},           {"1.5", {}},     {"&HFF", {}}};
    for (const auto& [text, colour] : rows)
        EXPECT_EQ(storedColor(QString::fromLatin1(text)), colour) << text;
}

} // namespace
} // namespace trendax::layouts
