#include "chart/chartview.h"
#include "chart/statslayout.h"

#include <gtest/gtest.h>

namespace trendax {
namespace {

TEST(BufferSizeAnswer, TakesWholePositiveSizesAndRefusesTheRest) {
    const std::pair<const char*, std::optional<int>> rows[] = {
        {"25000", 25000}, {" 30000 ", 30000}, {"2.5", 2}, // half to even
        {"3.5", 4},       {"1e5", 100000},    {"2147483647", 2147483647},
        {"", {}}, // a cancelled box
        {"abc", {}},      {"12abc", {}},      {"0", {}},
        {"0.4", {}},      {"-5", {}},         {"2147483648", {}},
        {"1e12", {}},
    };
    for (const auto& [text, size] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(chartview::bufferSizeAnswer(QString::fromLatin1(text)), size);
    }
}

TEST(QuillChannelItems, PairWithStatisticsRowsFiveToTwelve) {
    EXPECT_EQ(chartview::quillItemForRow(4), std::nullopt);
    EXPECT_EQ(chartview::quillItemForRow(5), 1);
    EXPECT_EQ(chartview::quillItemForRow(12), 8);
    EXPECT_EQ(chartview::quillItemForRow(13), std::nullopt);
}

TEST(InitialWindowSize, IsMostOfTheScreenButNeverBelowTheMinimum) {
    struct Row {
        const char* name;
        QSize available, minimum, expected;
    };
    const Row rows[] = {
        {"LargeScreen", {1600, 1000}, {800, 600}, {1280, 800}},
        {"ScreenOfTheMinimum", {800, 600}, {800, 600}, {800, 600}},
        {"HighResolutionMinimumWins", {1280, 1024}, {1200, 900}, {1200, 900}},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        EXPECT_EQ(chartview::initialWindowSize(r.available, r.minimum), r.expected);
    }
}

// ---- Statistics panel geometry ----

struct PanelCase {
    const char* name;
    statslayout::Metrics metrics;
    bool designPlaces; // texts small enough to stand at their design places
};

statslayout::Metrics metrics(double dpi, int line, int check, int name, int value) {
    statslayout::Metrics m;
    m.dpi = dpi;
    m.lineHeight = line;
    m.boldLineHeight = line;
    m.checkBox = check;
    m.nameWidth = name;
    m.cursorTextWidth = name;
    m.columnWidth.fill(value);
    return m;
}

class StatsLayout : public testing::TestWithParam<PanelCase> {};

TEST_P(StatsLayout, KeepsEveryTextClearOfTheOthers) {
    const PanelCase& c = GetParam();
    const statslayout::Geometry g = statslayout::compute(c.metrics);
    for (int r = 0; r < statslayout::rowCount; ++r) {
        SCOPED_TRACE("row " + std::to_string(r));
        EXPECT_GE(g.names[r].width(), c.metrics.nameWidth);
        EXPECT_GE(g.names[r].height(), c.metrics.lineHeight);
        EXPECT_FALSE(g.checkBoxes[r].intersects(g.samples[r]));
        EXPECT_FALSE(g.samples[r].intersects(g.names[r]));
        EXPECT_FALSE(g.names[r].intersects(g.values[r][0]));
        for (int col = 0; col < statslayout::columnCount; ++col) {
            EXPECT_GE(g.values[r][col].width(), c.metrics.columnWidth[col]);
            if (col > 0) {
                EXPECT_GT(g.values[r][col].left(), g.values[r][col - 1].right());
            }
            EXPECT_LE(g.values[r][col].right(), g.width);
        }
        if (r > 0) {
            EXPECT_GT(g.names[r].top(), g.names[r - 1].bottom());
            EXPECT_GT(g.checkBoxes[r].top(), g.checkBoxes[r - 1].bottom());
        }
    }
    EXPECT_GT(g.names[0].top(), g.headings[0].bottom());
    EXPECT_GT(g.headings[0].left(), g.cursorText.right());
    EXPECT_GE(g.cursorText.width(), c.metrics.cursorTextWidth);
    // Each layout's height shows its rows whole and nothing of the next one.
    for (const auto& [twips, rows] :
         {std::pair{800.0, 1}, {1630.0, 5}, {2442.15, 8}, {3645.0, 13}}) {
        SCOPED_TRACE(twips);
        ASSERT_EQ(statslayout::rowsShown(twips), rows);
        const int height = g.heightForRows(rows);
        EXPECT_GT(height, g.names[rows - 1].bottom());
        if (rows < statslayout::rowCount) {
            EXPECT_LE(height, g.names[rows].top());
        }
    }
    if (c.designPlaces) {
        // At 96 dpi: name at 840 twips, first column at 2160, row 5 at 1680.
        EXPECT_EQ(g.names[0].left(), 56);
        EXPECT_EQ(g.headings[0].left(), 144);
        EXPECT_EQ(g.names[5].top(), 112);
    }
}

const PanelCase panelCases[] = {
    {"SmallTextsStandAtTheDesignPlaces", metrics(96, 12, 13, 70, 50), true},
    {"LongNameAndTallCheckBoxAt96Dpi", metrics(96, 16, 20, 130, 64), false},
    {"At144Dpi", metrics(144, 22, 20, 190, 92), false},
};

INSTANTIATE_TEST_SUITE_P(Metrics, StatsLayout, testing::ValuesIn(panelCases),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
} // namespace trendax
