#include "chart/summarypyramid.h"

#include <algorithm>

namespace trendax {

void SummaryPyramid::update(const PackedColumn& values, const double* appended,
                            std::size_t appendedCount) {
    auto addGroup = [this](const double* group) {
        // Four lanes, so that the additions do not wait for each other and the compiler can
        // pack them; this runs once per point of a load.
        constexpr std::size_t lanes = 4;
        double low[lanes], high[lanes], sum[lanes];
        for (std::size_t l = 0; l < lanes; ++l) {
            low[l] = high[l] = group[0];
            sum[l] = 0.0;
        }
        for (std::size_t i = 0; i < leafFanout; i += lanes) {
            for (std::size_t l = 0; l < lanes; ++l) {
                const double v = group[i + l];
                low[l] = v < low[l] ? v : low[l];
                high[l] = v > high[l] ? v : high[l];
                sum[l] += v;
            }
        }
        Node node{low[0], high[0], (sum[0] + sum[1]) + (sum[2] + sum[3]), float(group[0]),
                  float(group[leafFanout - 1])};
        for (std::size_t l = 1; l < lanes; ++l) {
            node.low = low[l] < node.low ? low[l] : node.low;
            node.high = high[l] > node.high ? high[l] : node.high;
        }
        leaf_.push_back(node);
    };

    // Level 1: groups of older values from decoded runs, a group that straddles older and
    // appended values gathered, and the rest straight from the appended values.
    static_assert(PackedColumn::runAlignment % leafFanout == 0, "a group lies inside one run");
    const std::size_t to = values.size() / leafFanout * leafFanout;
    const std::size_t freshBegin =
        appended ? values.size() - std::min(appendedCount, values.size()) : values.size();
    std::size_t j = leaf_.size() * leafFanout;
    if (const std::size_t decodedEnd = std::min(to, freshBegin / leafFanout * leafFanout);
        j < decodedEnd) {
        values.forEachRun(j, decodedEnd, [&](const double* run, std::size_t count) {
            for (const double* group = run; group < run + count; group += leafFanout)
                addGroup(group);
        });
        j = decodedEnd;
    }
    if (j < to && j < freshBegin) {
        double group[leafFanout];
        for (std::size_t i = 0; i < leafFanout; ++i)
            group[i] = j + i >= freshBegin ? appended[j + i - freshBegin] : values[j + i];
        addGroup(group);
        j += leafFanout;
    }
    for (; j < to; j += leafFanout)
        addGroup(appended + (j - freshBegin));

    // Higher levels from the level below, adding a level once the one below fills a group.
    for (std::size_t level = 2; levels() >= level - 1; ++level) {
        const std::size_t below = levelSize(level - 1);
        if (below < upperFanout)
            break;
        if (levels() == level - 1)
            upper_.emplace_back();
        UpperColumn& nodes = upper_[level - 2];
        for (std::size_t j = nodes.size(); j < below / upperFanout; ++j) {
            Node n = node(level - 1, j * upperFanout);
            for (std::size_t i = j * upperFanout + 1; i < (j + 1) * upperFanout; ++i) {
                const Node& m = node(level - 1, i);
                n.low = std::min(n.low, m.low);
                n.high = std::max(n.high, m.high);
                n.sum += m.sum;
            }
            n.last = node(level - 1, (j + 1) * upperFanout - 1).last;
            nodes.push_back(n);
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

RangeSummary SummaryPyramid::query(const PackedColumn& values, std::size_t begin, std::size_t end,
                                   bool sums) const {
    RangeSummary result;
    if (begin >= end)
        return result;
    const std::size_t count = end - begin;
    // Reads [a, b) of level 0 (the values) or of a level of nodes.
    auto fold = [&](std::size_t level, std::size_t a, std::size_t b) {
        const auto nodes = [&](const Node* p, std::size_t n) { foldNodes(result, p, n); };
        if (level == 0 && !sums)
            values.extremes(a, b, result.low, result.high);
        else if (level == 0)
            values.forEachRun(a, b,
                              [&](const double* p, std::size_t n) { foldValues(result, p, n); });
        else if (level == 1)
            leaf_.forEachRun(a, b, nodes);
        else
            upper_[level - 2].forEachRun(a, b, nodes);
    };
    for (std::size_t level = 0; begin < end; ++level) {
        if (level == levels()) {
            fold(level, begin, end); // no level above: read what is left
            break;
        }
        const std::size_t fanout = level == 0 ? leafFanout : upperFanout;
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

double SummaryPyramid::valueAt(const PackedColumn& values, std::size_t i) const {
    static_assert(leafFanout == 64 && upperFanout == 8, "the shifts below assume 64 and then 8");
    // Shifts rather than divisions: this runs twice per pixel column and curve.
    for (std::size_t level = levels(); level >= 1; --level) {
        const unsigned shift = unsigned(6 + 3 * (level - 1));
        const std::size_t mask = (std::size_t(1) << shift) - 1;
        const std::size_t size = levelSize(level);
        if ((i & mask) == 0 && (i >> shift) < size)
            return node(level, i >> shift).first;
        if (((i + 1) & mask) == 0 && ((i + 1) >> shift) <= size)
            return node(level, ((i + 1) >> shift) - 1).last;
    }
    return values[i];
}

void SummaryPyramid::releaseBefore(std::size_t index) {
    index /= leafFanout;
    leaf_.releaseBefore(index);
    for (UpperColumn& nodes : upper_) {
        index /= upperFanout;
        nodes.releaseBefore(index);
    }
}

std::size_t SummaryPyramid::allocatedBytes() const {
    std::size_t bytes = leaf_.allocatedBytes() + upper_.capacity() * sizeof(UpperColumn);
    for (const UpperColumn& nodes : upper_)
        bytes += nodes.allocatedBytes();
    return bytes;
}

} // namespace trendax
