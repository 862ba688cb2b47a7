#include "chart/imbalance.h"

#include "chart/stripchartmodel.h"
#include "storage/datetime.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace trendax::imbalance {

std::optional<double> percent(double a, double b, double c) {
    if (!std::isfinite(a) || !std::isfinite(b) || !std::isfinite(c))
        return std::nullopt;
    const double mean = (a + b + c) / 3.0;
    if (mean == 0.0 || !std::isfinite(mean))
        return std::nullopt;
    const double deviation =
        std::max({std::fabs(a - mean), std::fabs(b - mean), std::fabs(c - mean)});
    return 100.0 * deviation / std::fabs(mean);
}

namespace {

class PeakFinder {
public:
    PeakFinder(double start, double end) : start_(start), end_(end) {}

    void add(double time, double a, double b, double c) {
        if (!(time >= start_ && time <= end_))
            return;
        const auto p = percent(a, b, c);
        if (p && (!peak_ || *p > peak_->percent))
            peak_ = Peak{*p, time};
    }

    std::optional<Peak> result() const { return peak_; }

private:
    double start_;
    double end_;
    std::optional<Peak> peak_;
};

// The imbalance of one instant as a ratio of the mean. A zero mean has none (-1); a current that
// is not a number or infinite makes it not a number, which never compares greater.
double ratioAt(double a, double b, double c) {
    const double mean = (a + b + c) / 3.0;
    if (mean == 0.0)
        return -1.0;
    return std::max({std::fabs(a - mean), std::fabs(b - mean), std::fabs(c - mean)}) /
           std::fabs(mean);
}

// f(position, ratio) for the positions [from, to) of phases logged together, read in blocks of
// the three value columns.
template <class F>
void forEachRatio(const StripChartModel& model, const std::array<int, 3>& k, std::size_t from,
                  std::size_t to, F&& f) {
    constexpr std::size_t block = 4096;
    std::array<std::array<double, block>, 3> values{};
    for (std::size_t i = from; i < to; i += block) {
        const std::size_t n = std::min(block, to - i);
        for (std::size_t p = 0; p < 3; ++p)
            model.readPoints(k[p], i, n, nullptr, values[p].data());
        for (std::size_t j = 0; j < n; ++j)
            f(i + j, ratioAt(values[0][j], values[1][j], values[2][j]));
    }
}

// The first position of [from, to) whose ratio exceeds best, and that ratio.
void scanPositions(const StripChartModel& model, const std::array<int, 3>& k, std::size_t from,
                   std::size_t to, double& best, std::size_t& bestAt) {
    forEachRatio(model, k, from, to, [&](std::size_t at, double r) {
        if (r > best) {
            best = r;
            bestAt = at;
        }
    });
}

std::optional<Peak> peakAt(const StripChartModel& model, int k, double best, std::size_t at) {
    if (best < 0.0)
        return std::nullopt;
    return Peak{100.0 * best, model.point(k, at).time};
}

// Phases that share one time column and hold the same points: position i is one instant. The
// scan fetches a time only for the peak found; a series whose times go back somewhere is read
// whole and filtered by time.
std::optional<Peak> alignedPeak(const StripChartModel& model, const std::array<int, 3>& k,
                                PeakFinder finder) {
    const auto [first, last] = model.visibleRange(k[0]);
    if (!model.isTimeOrdered(k[0])) {
        constexpr std::size_t block = 4096;
        std::array<double, block> times{};
        std::array<std::array<double, block>, 3> values{};
        for (std::size_t i = first; i < last; i += block) {
            const std::size_t n = std::min(block, last - i);
            model.readPoints(k[0], i, n, times.data(), values[0].data());
            model.readPoints(k[1], i, n, nullptr, values[1].data());
            model.readPoints(k[2], i, n, nullptr, values[2].data());
            for (std::size_t j = 0; j < n; ++j)
                finder.add(times[j], values[0][j], values[1][j], values[2][j]);
        }
        return finder.result();
    }
    double best = -1.0;
    std::size_t bestAt = 0;
    scanPositions(model, k, first, last, best, bestAt);
    return peakAt(model, k[0], best, bestAt);
}

// The latest point of variable k at or before t, walking forward from position at.
std::optional<double> valueAtOrBefore(const StripChartModel& model, int k, std::size_t& at,
                                      double t) {
    const std::size_t count = model.pointCount(k);
    while (at + 1 < count && model.point(k, at + 1).time <= t)
        ++at;
    if (at >= count || model.point(k, at).time > t)
        return std::nullopt;
    return model.point(k, at).value;
}

std::optional<Peak> separatePeak(const StripChartModel& model, const std::array<int, 3>& k,
                                 PeakFinder finder) {
    for (const int v : k) {
        if (!model.isTimeOrdered(v))
            return std::nullopt;
    }
    const auto [first, last] = model.visibleRange(k[0]);
    // Start one point before each phase's window: the latest point at or before its start.
    const auto startOf = [&model](int v) {
        const std::size_t from = model.visibleRange(v).first;
        return from > 0 ? from - 1 : 0;
    };
    std::size_t atB = startOf(k[1]);
    std::size_t atC = startOf(k[2]);
    for (std::size_t i = first; i < last; ++i) {
        const CurvePoint p = model.point(k[0], i);
        const auto b = valueAtOrBefore(model, k[1], atB, p.time);
        const auto c = valueAtOrBefore(model, k[2], atC, p.time);
        if (b && c)
            finder.add(p.time, p.value, *b, *c);
    }
    return finder.result();
}

} // namespace

std::optional<Peak> windowPeak(const StripChartModel& model, int a, int b, int c) {
    const std::array<int, 3> k{a, b, c};
    const PeakFinder finder(model.xViewStart(), model.xViewEnd());
    const bool aligned = model.sharesTimeColumn(a, b) && model.sharesTimeColumn(a, c) &&
                         model.pointCount(a) == model.pointCount(b) &&
                         model.pointCount(a) == model.pointCount(c);
    return aligned ? alignedPeak(model, k, finder) : separatePeak(model, k, finder);
}

std::optional<Peak> Monitor::peakOf(const StripChartModel& model, const std::array<int, 3>& k) {
    constexpr std::size_t run = 64;
    const bool aligned = model.sharesTimeColumn(k[0], k[1]) && model.sharesTimeColumn(k[0], k[2]) &&
                         model.pointCount(k[0]) == model.pointCount(k[1]) &&
                         model.pointCount(k[0]) == model.pointCount(k[2]);
    if (!aligned || !model.isTimeOrdered(k[0]))
        return windowPeak(model, k[0], k[1], k[2]);
    if (k != runPhases_ || model.pointsRevision() != runRevision_) {
        runPeaks_.assign(model.pointCount(k[0]) / run, -1.0);
        forEachRatio(model, k, 0, runPeaks_.size() * run, [this](std::size_t at, double r) {
            double& peak = runPeaks_[at / run];
            peak = r > peak ? r : peak;
        });
        runPhases_ = k;
        runRevision_ = model.pointsRevision();
    }
    // The window's ends point by point, whole runs between them from their peaks; a run that
    // holds the peak is read again for the position of its first largest ratio.
    const auto [first, last] = model.visibleRange(k[0]);
    const std::size_t headEnd = std::min(last, (first + run - 1) / run * run);
    const std::size_t tailBegin = std::max(headEnd, last / run * run);
    double best = -1.0;
    std::size_t bestAt = 0;
    scanPositions(model, k, first, headEnd, best, bestAt);
    std::optional<std::size_t> bestRun;
    for (std::size_t r = headEnd / run; r < tailBegin / run; ++r) {
        if (runPeaks_[r] > best) {
            best = runPeaks_[r];
            bestRun = r;
        }
    }
    const double beforeTail = best;
    scanPositions(model, k, tailBegin, last, best, bestAt);
    if (bestRun && best == beforeTail) {
        double again = -1.0;
        scanPositions(model, k, *bestRun * run, (*bestRun + 1) * run, again, bestAt);
    }
    return peakAt(model, k[0], best, bestAt);
}

std::optional<std::array<int, 3>> phaseVariables(const StripChartModel& model,
                                                 const QStringList& names) {
    static const char* const phases[3] = {"Phase A", "Phase B", "Phase C"};
    std::array<int, 3> found{-1, -1, -1};
    for (int k = 0; k < StripChartModel::variableCount; ++k) {
        for (int p = 0; p < 3; ++p) {
            if (found[p] < 0 && names.value(k) == QLatin1String(phases[p]) &&
                model.pointCount(k) > 0)
                found[p] = k;
        }
    }
    if (found[0] < 0 || found[1] < 0 || found[2] < 0)
        return std::nullopt;
    return found;
}

std::optional<Reading> Monitor::read(const StripChartModel& model, const QStringList& names) {
    const auto phases = phaseVariables(model, names);
    if (!phases)
        return std::nullopt;
    if (*phases != phases_ || model.curveRevision() != revision_ || model.xViewStart() != start_ ||
        model.xViewEnd() != end_) {
        window_ = peakOf(model, *phases);
        phases_ = *phases;
        revision_ = model.curveRevision();
        start_ = model.xViewStart();
        end_ = model.xViewEnd();
    }
    return Reading{percent(model.cursorValue(phases_[0]), model.cursorValue(phases_[1]),
                           model.cursorValue(phases_[2])),
                   window_};
}

QString statusText(const Reading& reading) {
    QString text;
    if (reading.atCursor)
        text = QStringLiteral("Imbalance: %1 %").arg(*reading.atCursor, 0, 'f', 1);
    if (reading.window) {
        if (!text.isEmpty())
            text += QStringLiteral("  ");
        text += QStringLiteral("Max in view: %1 % at %2")
                    .arg(reading.window->percent, 0, 'f', 1)
                    .arg(datetime::formatGeneral(reading.window->time));
    }
    return text;
}

} // namespace trendax::imbalance
