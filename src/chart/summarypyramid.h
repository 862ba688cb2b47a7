#pragma once

#include "chart/chunkedarray.h"
#include "chart/packedcolumn.h"

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

// Per-group minimum, maximum and sum over a value column: level 1 summarises 64 values, and every
// level above it 8 nodes of the level below. A range query reads at most 2 x 63 values and
// 2 x 7 nodes per level, so statistics and per-pixel minima/maxima never scan the points
// themselves. A node also keeps its first and last value, the ends of a pixel column.
//
// Level 1 costs half a byte per point: a month of 13 channels is 2.6 million rows, and at
// sixteen values a node its summaries took 70 MB beside the 290 MB of points, enough to push a
// month's load past the memory a laptop can spare for it. Above it the narrow levels add a
// seventh of that, and spare a zoomed-out repaint of a year most of level 1: pixel columns of
// a few thousand points each read whole nodes of 512 instead of up to 126 nodes of 64.
// Only complete groups get a node, which keeps the summaries append-only.
class SummaryPyramid {
public:
    static constexpr std::size_t leafFanout = 64;
    static constexpr std::size_t upperFanout = 8;

    // Values that a node of the given level (1, 2, ...) summarises.
    static constexpr std::size_t nodeSpan(std::size_t level) {
        return leafFanout << (3 * (level - 1));
    }

    // Adds the nodes for values appended to the column since the last call. appended, when
    // given, holds the column's last appendedCount values as they were handed in: they are read
    // there instead of being decoded again (a division per value, for every point of a load).
    void update(const PackedColumn& values, const double* appended = nullptr,
                std::size_t appendedCount = 0);
    void clear() {
        leaf_.clear();
        upper_.clear();
    }
    // Summary of values [begin, end) of the column the pyramid was built on. Without sums only
    // the minimum, the maximum and the count are right, which is all a pixel column draws.
    RangeSummary query(const PackedColumn& values, std::size_t begin, std::size_t end,
                       bool sums = true) const;
    // values[i] for drawing, read from a node that begins or ends with it where there is one (in
    // single precision): a zoomed-out repaint then stays inside the small upper levels instead of
    // touching the points.
    double valueAt(const PackedColumn& values, std::size_t i) const;
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
    // Level 1 in blocks of the pool's size, like the values', faulted in with huge pages; the
    // small upper levels in blocks of their own size from the heap.
    using LeafColumn = ChunkedArray<Node, 2048>;
    using UpperColumn = ChunkedArray<Node, 256>;

    // Levels with nodes: 0, or 1 plus the upper ones.
    std::size_t levels() const { return leaf_.empty() ? 0 : 1 + upper_.size(); }
    std::size_t levelSize(std::size_t level) const {
        return level == 1 ? leaf_.size() : upper_[level - 2].size();
    }
    const Node& node(std::size_t level, std::size_t j) const {
        return level == 1 ? leaf_[j] : upper_[level - 2][j];
    }

    LeafColumn leaf_;
    std::vector<UpperColumn> upper_;
};

} // namespace trendax
