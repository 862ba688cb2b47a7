#pragma once

#include "chart/chunkedarray.h"

#include <cstddef>
#include <limits>
#include <vector>

namespace trendax {

// Minimum, maximum, sum and count of a set of values; an empty set reports 0 for all three so
// that the statistics of an empty variable or an empty window read the same everywhere.
struct RangeSummary {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();
    double sum = 0.0;
    std::size_t count = 0;

    void add(double value) {
        low = value < low ? value : low;
        high = value > high ? value : high;
        sum += value;
        ++count;
    }
    void merge(const RangeSummary& other) {
        low = other.low < low ? other.low : low;
        high = other.high > high ? other.high : high;
        sum += other.sum;
        count += other.count;
    }
    double min() const { return count ? low : 0.0; }
    double max() const { return count ? high : 0.0; }
    double mean() const { return count ? sum / double(count) : 0.0; }
};

// Values of one series in the chart's block layout.
using ValueColumn = ChunkedArray<double, 8192>;

// Per-group minimum, maximum and sum over a value column, in levels of 64: level 1 summarises 64
// values, level 2 64 level-1 nodes, and so on. A range query reads at most 2 x 63 entries per
// level, so statistics and per-pixel minima/maxima never scan the points themselves. A node also
// keeps its first and last value, the ends of a pixel column. All of it costs half a byte per
// point: a month of 13 channels is 2.6 million rows, and at sixteen values a node its summaries
// took 70 MB beside the 290 MB of points, enough to push a month's load past the memory a
// laptop can spare for it; a repaint at zoom-all still reads whole nodes of the upper levels.
// Only complete groups get a node, which keeps the summaries append-only.
class SummaryPyramid {
public:
    static constexpr std::size_t fanout = 64;

    // Adds the nodes for values appended to the column since the last call.
    void update(const ValueColumn& values);
    void clear() { levels_.clear(); }
    // Summary of values [begin, end) of the column the pyramid was built on.
    RangeSummary query(const ValueColumn& values, std::size_t begin, std::size_t end) const;
    // values[i] for drawing, read from a node that begins or ends with it where there is one (in
    // single precision): a zoomed-out repaint then stays inside the small upper levels instead of
    // touching the points.
    double valueAt(const ValueColumn& values, std::size_t i) const;
    // Frees nodes that only cover values before index.
    void releaseBefore(std::size_t index);
    std::size_t allocatedBytes() const;

private:
    // The ends only place a pixel column's first and last point on screen, where single
    // precision is far finer than a pixel; halving them keeps the summaries under two bytes a
    // point. Minimum, maximum and sum feed the statistics and stay exact.
    struct Node {
        double low;
        double high;
        double sum;
        float first;
        float last;
    };
    // Blocks of the pool's size, like the values': the upper levels waste most of theirs, but
    // they are few, and level 1 is faulted in with huge pages instead of page by page.
    using NodeColumn = ChunkedArray<Node, 2048>;
    std::vector<NodeColumn> levels_;
};

} // namespace trendax
