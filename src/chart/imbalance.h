#pragma once

#include <QString>
#include <QStringList>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace trendax {

class StripChartModel;

// Current imbalance of a three-phase motor: the largest deviation of one phase current from the
// mean of the three, as a percentage of that mean.
namespace imbalance {

// nullopt when the mean is zero or a current is not a finite number.
std::optional<double> percent(double a, double b, double c);

struct Peak {
    double percent = 0.0;
    double time = 0.0;
};

// The largest imbalance over the points of the visible window of the three phase variables, and
// the time of the first point where it occurs; nullopt when no point in the window has one.
// Phases logged together (one time column) are read position by position in blocks; phases with
// time columns of their own pair each point of the first phase with the latest points of the
// others at or before its time.
std::optional<Peak> windowPeak(const StripChartModel& model, int a, int b, int c);

// The variables whose channel names (as the statistics panel shows them, by variable) are
// "Phase A", "Phase B" and "Phase C", each holding points; nullopt for any other layout.
std::optional<std::array<int, 3>> phaseVariables(const StripChartModel& model,
                                                 const QStringList& names);

struct Reading {
    std::optional<double> atCursor;
    std::optional<Peak> window;
};

// The status bar's imbalance read-out, kept up to date cheaply: the window's peak is computed
// again only when the visible window or the points change, not for every cursor move. For
// phases logged together it keeps the peak of every run of 64 instants, made once per set of
// points, so that a zoom or scroll step over half a year reads a quarter of a million run peaks
// and the points at the window's two ends instead of fifty million values.
class Monitor {
public:
    // nullopt when the chart holds no three phases.
    std::optional<Reading> read(const StripChartModel& model, const QStringList& names);

private:
    std::optional<Peak> peakOf(const StripChartModel& model, const std::array<int, 3>& k);

    std::array<int, 3> phases_{};
    std::uint64_t revision_ = ~std::uint64_t(0);
    double start_ = 0.0;
    double end_ = 0.0;
    std::optional<Peak> window_;
    // Largest ratio of each run of 64 positions of runPhases_, for points of runRevision_.
    std::vector<double> runPeaks_;
    std::array<int, 3> runPhases_{};
    std::uint64_t runRevision_ = ~std::uint64_t(0);
};

// "Imbalance: 3.2 %", then "  Max in view: 7.9 % at " + the time, each part only when there is
// one; empty when there is neither.
QString statusText(const Reading& reading);

} // namespace imbalance
} // namespace trendax
