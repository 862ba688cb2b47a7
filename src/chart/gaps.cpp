#include "chart/gaps.h"

#include "chart/chartmapping.h"
#include "chart/pixelpath.h"
#include "chart/stripchartmodel.h"

#include <algorithm>
#include <cmath>

namespace trendax::gaps {

namespace {

// Spacings sampled from each appended block: a day of one-second rows gives its usual spacing
// from these as well as from all 86,400.
constexpr std::size_t samplesPerBlock = 64;

double median(std::vector<double>& values) {
    if (values.empty())
        return 0.0;
    const auto mid = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), mid, values.end());
    return *mid;
}

double column(const TimeMapping& mapping, double time) {
    return std::floor(safePixel(mapping.toX(time)));
}

} // namespace

double gapLimit(double medianSpacing) {
    return std::max(spacingFactor * medianSpacing, minimumLimit);
}

double medianSpacing(std::span<const double> ascending) {
    std::vector<double> spacings;
    spacings.reserve(ascending.size());
    for (std::size_t i = 1; i < ascending.size(); ++i)
        spacings.push_back(ascending[i] - ascending[i - 1]);
    return median(spacings);
}

std::vector<Gap> findGaps(std::span<const double> times, double limit) {
    std::vector<double> sorted;
    sorted.reserve(times.size());
    for (double t : times)
        if (!std::isnan(t))
            sorted.push_back(t);
    std::sort(sorted.begin(), sorted.end());
    std::vector<Gap> found;
    for (std::size_t i = 1; i < sorted.size(); ++i)
        if (sorted[i] - sorted[i - 1] > limit)
            found.push_back({sorted[i - 1], sorted[i]});
    return found;
}

// ---- GapIndex ----

void GapIndex::append(const double* times, std::size_t n) {
    if (n == 0)
        return;
    const std::size_t stride = std::max<std::size_t>(1, n / samplesPerBlock);
    double previous = any_ ? last_ : times[0];
    for (std::size_t i = any_ ? 0 : 1; i < n; ++i) {
        const double spacing = times[i] - previous;
        if (spacing > minimumLimit)
            candidates_.push_back({previous, times[i]});
        if (i % stride == 0 && std::isfinite(spacing))
            samples_.push_back(spacing);
        previous = times[i];
    }
    last_ = times[n - 1];
    any_ = true;
}

void GapIndex::clear() {
    *this = GapIndex{};
}

double GapIndex::limit() const {
    if (limitSamples_ != samples_.size()) {
        std::vector<double> copy = samples_;
        limit_ = gapLimit(median(copy));
        limitSamples_ = samples_.size();
    }
    return limit_;
}

void GapIndex::gapsIn(double from, double to, std::vector<Gap>& out) const {
    const double wide = limit();
    // Candidates of ascending times are ascending and do not overlap: their ends are sorted too.
    auto it = std::partition_point(candidates_.begin(), candidates_.end(),
                                   [from](const Gap& g) { return g.end < from; });
    for (; it != candidates_.end() && it->start <= to; ++it)
        if (it->end - it->start > wide)
            out.push_back(*it);
}

// ---- Drawing ----

void gapBreaks(std::span<const CurvePoint> points, std::span<const Gap> gaps,
               const TimeMapping& mapping, std::vector<std::size_t>& breaks) {
    breaks.clear();
    if (gaps.empty())
        return;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const double lo = std::min(points[i - 1].time, points[i].time);
        const double hi = std::max(points[i - 1].time, points[i].time);
        if (!(hi - lo > 0.0))
            continue;
        const double loColumn = column(mapping, lo);
        const double hiColumn = column(mapping, hi);
        if (loColumn == hiColumn) {
            // Both ends in one column: only the gap's own points frame it.
            auto g = std::partition_point(gaps.begin(), gaps.end(),
                                          [lo](const Gap& x) { return x.start < lo; });
            if (g != gaps.end() && g->end <= hi)
                breaks.push_back(i);
            continue;
        }
        // Across columns: a gap that leaves a column boundary between its ends lies under the line.
        auto g = std::partition_point(gaps.begin(), gaps.end(), [&](const Gap& x) {
            return column(mapping, x.start) < loColumn;
        });
        for (; g != gaps.end() && column(mapping, g->start) <= hiColumn; ++g) {
            const double endColumn = column(mapping, g->end);
            if (endColumn > hiColumn)
                break;
            if (endColumn > column(mapping, g->start)) {
                breaks.push_back(i);
                break;
            }
        }
    }
}

void collapsePieces(std::vector<QPointF>& polyline, std::span<const std::size_t> breaks,
                    std::vector<std::size_t>& starts) {
    starts.assign(1, 0);
    if (breaks.empty()) {
        collapsePixelColumns(polyline);
        return;
    }
    std::vector<QPointF> piece;
    std::size_t write = 0;
    std::size_t from = 0;
    for (std::size_t b = 0; b <= breaks.size(); ++b) {
        const std::size_t to = b < breaks.size() ? breaks[b] : polyline.size();
        piece.assign(polyline.begin() + std::ptrdiff_t(from),
                     polyline.begin() + std::ptrdiff_t(to));
        collapsePixelColumns(piece);
        if (b > 0)
            starts.push_back(write);
        std::copy(piece.begin(), piece.end(), polyline.begin() + std::ptrdiff_t(write));
        write += piece.size();
        from = to;
    }
    polyline.resize(write);
}

} // namespace trendax::gaps
