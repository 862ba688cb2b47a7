#pragma once

#include <QPointF>
#include <cstddef>
#include <span>
#include <vector>

namespace trendax {

struct CurvePoint;
struct TimeMapping;

// Recording gaps: stretches of the time axis where a variable has no points because the
// controller was not logging. A curve is broken there rather than drawn as a straight line across
// hours that were never measured. Only the drawing changes; the points and every statistic stay.
namespace gaps {

// Two neighbouring points (by time) further apart than this many of the variable's usual
// spacings are separated by a gap...
inline constexpr double spacingFactor = 10.0;
// ...and never closer than a minute: a controller that logs every second and misses a few rows
// has not stopped recording.
inline constexpr double minimumLimit = 60.0 / 86400.0;

// A gap: the last point before it and the first after it, as date-times.
struct Gap {
    double start = 0.0;
    double end = 0.0;

    bool operator==(const Gap&) const = default;
};

// The gap limit for a median spacing (days): ten spacings, at least a minute.
double gapLimit(double medianSpacing);

// The median of the spacings between the times in ascending order (0 for fewer than 2 times).
double medianSpacing(std::span<const double> ascending);

// The gaps of times given in any order: neighbours after sorting further apart than limit,
// ascending. Times that are not numbers are left out.
std::vector<Gap> findGaps(std::span<const double> times, double limit);

// Gaps of a series whose times arrive in blocks in ascending order, found while the blocks are
// appended: every spacing wider than a minute is kept as a candidate and the usual spacing is
// estimated from a sample of each block, so a query only filters the candidates of a window.
class GapIndex {
public:
    // Appends the next n times of the series.
    void append(const double* times, std::size_t n);
    void clear();
    // The gap limit of the times appended so far.
    double limit() const;
    // Appends to out the gaps wider than limit() that overlap [from, to], ascending.
    void gapsIn(double from, double to, std::vector<Gap>& out) const;

private:
    std::vector<Gap> candidates_; // spacings wider than minimumLimit, in the order appended
    std::vector<double> samples_; // spacings sampled from every block
    double last_ = 0.0;
    bool any_ = false;
    mutable double limit_ = minimumLimit;
    mutable std::size_t limitSamples_ = 0; // samples_.size() when limit_ was computed
};

// Where a line through points (in the order drawn) crosses a gap: the positions i at which the
// line from points[i - 1] to points[i] must not be drawn. gaps are ascending. Points are compared
// by pixel column through the mapping, so a reduced curve (one group of points per column, placed
// at the column's middle) breaks at every gap that leaves a column empty; points in one column
// break only where they are the gap's own ends.
void gapBreaks(std::span<const CurvePoint> points, std::span<const Gap> gaps,
               const TimeMapping& mapping, std::vector<std::size_t>& breaks);

// Shortens each piece of a broken polyline like collapsePixelColumns, in place; starts receives
// the position where each piece begins in the shortened polyline (the first always 0).
void collapsePieces(std::vector<QPointF>& polyline, std::span<const std::size_t> breaks,
                    std::vector<std::size_t>& starts);

} // namespace gaps
} // namespace trendax
