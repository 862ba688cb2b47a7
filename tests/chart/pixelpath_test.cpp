#include "chart/pixelpath.h"

#include <gtest/gtest.h>

namespace trendax {
namespace {

TEST(CollapsePixelColumns, KeepsTheExtremesOfEachColumnInOrder) {
    const struct {
        const char* name;
        std::vector<QPointF> in, out;
    } rows[] = {
        {"sparse", {{0.5, 10}, {3.2, 20}, {7.9, 5}}, {{0.5, 10}, {3.2, 20}, {7.9, 5}}},
        {"two in a column stay", {{1.1, 10}, {1.6, 20}}, {{1.1, 10}, {1.6, 20}}},
        // First, minimum, maximum, last of one column: the spike at y 2 survives.
        {"rising then spike",
         {{4.0, 50}, {4.2, 60}, {4.4, 2}, {4.9, 40}, {5.0, 41}},
         {{4.0, 60}, {4.0, 2}, {5.0, 41}}},
        {"top reached first", {{4.0, 50}, {4.2, 2}, {4.4, 60}, {4.9, 40}}, {{4.0, 2}, {4.0, 60}}},
        {"flat column is one vertex", {{9.0, 30.1}, {9.3, 29.9}, {9.6, 30.2}}, {{9.0, 30.1}}},
        {"empty", {}, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<QPointF> points = row.in;
        collapsePixelColumns(points);
        EXPECT_EQ(points, row.out);
    }
}

} // namespace
} // namespace trendax
