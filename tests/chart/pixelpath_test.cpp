#include "chart/pixelpath.h"

#include <gtest/gtest.h>

namespace trendax {
namespace {

struct CollapseRow {
    const char* name;
    std::vector<QPointF> in;
    std::vector<QPointF> out;
};

class CollapsePixelColumns : public testing::TestWithParam<CollapseRow> {};

TEST_P(CollapsePixelColumns, KeepsTheExtremesOfEachColumnInOrder) {
    std::vector<QPointF> points = GetParam().in;
    collapsePixelColumns(points);
    EXPECT_EQ(points, GetParam().out);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CollapsePixelColumns,
    testing::Values(
        CollapseRow{"sparse", {{0.5, 10}, {3.2, 20}, {7.9, 5}}, {{0.5, 10}, {3.2, 20}, {7.9, 5}}},
        CollapseRow{"two in a column stay", {{1.1, 10}, {1.6, 20}}, {{1.1, 10}, {1.6, 20}}},
        // First, minimum, maximum, last of one column: the spike at y 2 survives.
        CollapseRow{"rising then spike",
                    {{4.0, 50}, {4.2, 60}, {4.4, 2}, {4.9, 40}, {5.0, 41}},
                    {{4.0, 60}, {4.0, 2}, {5.0, 41}}},
        CollapseRow{"top reached first",
                    {{4.0, 50}, {4.2, 2}, {4.4, 60}, {4.9, 40}},
                    {{4.0, 2}, {4.0, 60}}},
        CollapseRow{
            "flat column is one vertex", {{9.0, 30.1}, {9.3, 29.9}, {9.6, 30.2}}, {{9.0, 30.1}}},
        CollapseRow{"empty", {}, {}}),
    [](const testing::TestParamInfo<CollapseRow>& info) {
        std::string name = info.param.name;
        for (char& c : name)
            if (!std::isalnum(static_cast<unsigned char>(c)))
                c = '_';
        return name;
    });

} // namespace
} // namespace trendax
