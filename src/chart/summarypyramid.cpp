#include "chart/summarypyramid.h"

#include <algorithm>
#include <bit>

namespace trendax {

void SummaryPyramid::update(const ValueColumn& values) {
    // Level 1 from the values.
    if (values.size() >= fanout && levels_.empty())
        levels_.emplace_back();
    if (levels_.empty())
        return;
    {
        NodeColumn& nodes = levels_[0];
        static_assert(ValueColumn::blockSize % fanout == 0, "a group lies inside one block");
        for (std::size_t j = nodes.size(); j < values.size() / fanout; ++j) {
            const double* group = &values[j * fanout];
            // Four lanes, so that the additions do not wait for each other and the compiler can
            // pack them; this runs once per point of a load.
            constexpr std::size_t lanes = 4;
            double low[lanes], high[lanes], sum[lanes];
            for (std::size_t l = 0; l < lanes; ++l) {
                low[l] = high[l] = group[0];
                sum[l] = 0.0;
            }
            for (std::size_t i = 0; i < fanout; i += lanes) {
                for (std::size_t l = 0; l < lanes; ++l) {
                    const double v = group[i + l];
                    low[l] = v < low[l] ? v : low[l];
                    high[l] = v > high[l] ? v : high[l];
                    sum[l] += v;
                }
            }
            Node node{low[0], high[0], (sum[0] + sum[1]) + (sum[2] + sum[3]), float(group[0]),
                      float(group[fanout - 1])};
            for (std::size_t l = 1; l < lanes; ++l) {
                node.low = low[l] < node.low ? low[l] : node.low;
                node.high = high[l] > node.high ? high[l] : node.high;
            }
            nodes.push_back(node);
        }
    }
    // Higher levels from the level below, adding a level once the one below fills a group.
    for (std::size_t level = 1;; ++level) {
        const std::size_t below = levels_[level - 1].size();
        if (below < fanout)
            break;
        if (levels_.size() == level)
            levels_.emplace_back();
        const NodeColumn& lower = levels_[level - 1];
        NodeColumn& nodes = levels_[level];
        for (std::size_t j = nodes.size(); j < below / fanout; ++j) {
            Node node = lower[j * fanout];
            for (std::size_t i = j * fanout + 1; i < (j + 1) * fanout; ++i) {
                const Node& n = lower[i];
                node.low = std::min(node.low, n.low);
                node.high = std::max(node.high, n.high);
                node.sum += n.sum;
            }
            node.last = lower[(j + 1) * fanout - 1].last;
            nodes.push_back(node);
        }
    }
}

namespace {

void foldValues(RangeSummary& r, const double* p, std::size_t n) {
    double low = r.low, high = r.high, sum = r.sum;
    for (std::size_t i = 0; i < n; ++i) {
        const double v = p[i];
        low = v < low ? v : low;
        high = v > high ? v : high;
        sum += v;
    }
    r.low = low;
    r.high = high;
    r.sum = sum;
}

template <class Node> void foldNodes(RangeSummary& r, const Node* p, std::size_t n) {
    double low = r.low, high = r.high, sum = r.sum;
    for (std::size_t i = 0; i < n; ++i) {
        low = p[i].low < low ? p[i].low : low;
        high = p[i].high > high ? p[i].high : high;
        sum += p[i].sum;
    }
    r.low = low;
    r.high = high;
    r.sum = sum;
}

} // namespace

RangeSummary SummaryPyramid::query(const ValueColumn& values, std::size_t begin,
                                   std::size_t end) const {
    RangeSummary result;
    if (begin >= end)
        return result;
    const std::size_t count = end - begin;
    // Reads [a, b) of level 0 (the values) or of levels_[level - 1].
    auto fold = [&](std::size_t level, std::size_t a, std::size_t b) {
        if (level == 0)
            values.forEachRun(a, b,
                              [&](const double* p, std::size_t n) { foldValues(result, p, n); });
        else
            levels_[level - 1].forEachRun(
                a, b, [&](const Node* p, std::size_t n) { foldNodes(result, p, n); });
    };
    for (std::size_t level = 0; begin < end; ++level) {
        if (level == levels_.size()) {
            fold(level, begin, end); // no level above: read what is left
            break;
        }
        const std::size_t headEnd = std::min(end, (begin + fanout - 1) / fanout * fanout);
        const std::size_t tailBegin = std::max(headEnd, end / fanout * fanout);
        fold(level, begin, headEnd);
        fold(level, tailBegin, end);
        begin = headEnd / fanout;
        end = tailBegin / fanout;
    }
    result.count = count;
    return result;
}

double SummaryPyramid::valueAt(const ValueColumn& values, std::size_t i) const {
    static_assert(std::has_single_bit(fanout), "the shifts below assume a power of two");
    constexpr unsigned bits = unsigned(std::countr_zero(fanout));
    // Shifts rather than divisions: this runs twice per pixel column and curve.
    for (std::size_t level = levels_.size(); level >= 1; --level) {
        const unsigned shift = unsigned(bits * level);
        const std::size_t mask = (std::size_t(1) << shift) - 1;
        const NodeColumn& nodes = levels_[level - 1];
        if ((i & mask) == 0 && (i >> shift) < nodes.size())
            return nodes[i >> shift].first;
        if (((i + 1) & mask) == 0 && ((i + 1) >> shift) <= nodes.size())
            return nodes[((i + 1) >> shift) - 1].last;
    }
    return values[i];
}

void SummaryPyramid::releaseBefore(std::size_t index) {
    for (NodeColumn& nodes : levels_) {
        index /= fanout;
        nodes.releaseBefore(index);
    }
}

std::size_t SummaryPyramid::allocatedBytes() const {
    std::size_t bytes = levels_.capacity() * sizeof(NodeColumn);
    for (const NodeColumn& nodes : levels_)
        bytes += nodes.allocatedBytes();
    return bytes;
}

} // namespace trendax
