#include "chart/summarypyramid.h"

#include <algorithm>

namespace trendax {

void SummaryPyramid::update(const ValueColumn& values) {
    // Level 1 from the values.
    if (values.size() >= fanout && levels_.empty())
        levels_.emplace_back();
    if (levels_.empty())
        return;
    {
        NodeColumn& nodes = levels_[0];
        for (std::size_t j = nodes.size(); j < values.size() / fanout; ++j) {
            Node node{values[j * fanout], values[j * fanout], 0.0};
            for (std::size_t i = j * fanout; i < (j + 1) * fanout; ++i) {
                const double v = values[i];
                node.low = std::min(node.low, v);
                node.high = std::max(node.high, v);
                node.sum += v;
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
            nodes.push_back(node);
        }
    }
}

RangeSummary SummaryPyramid::query(const ValueColumn& values, std::size_t begin,
                                   std::size_t end) const {
    RangeSummary result;
    if (begin >= end)
        return result;
    const std::size_t count = end - begin;
    std::size_t level = 0; // 0: the values themselves; n: levels_[n - 1]
    auto take = [&](std::size_t i) {
        if (level == 0) {
            const double v = values[i];
            result.low = std::min(result.low, v);
            result.high = std::max(result.high, v);
            result.sum += v;
        } else {
            const Node& n = levels_[level - 1][i];
            result.low = std::min(result.low, n.low);
            result.high = std::max(result.high, n.high);
            result.sum += n.sum;
        }
    };
    while (begin < end) {
        if (level == levels_.size()) {
            // No level above: read what is left.
            for (std::size_t i = begin; i < end; ++i)
                take(i);
            break;
        }
        while (begin < end && begin % fanout != 0)
            take(begin++);
        while (begin < end && end % fanout != 0)
            take(--end);
        begin /= fanout;
        end /= fanout;
        ++level;
    }
    result.count = count;
    return result;
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
