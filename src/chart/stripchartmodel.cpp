#include "chart/stripchartmodel.h"

#include "chart/chunkedarray.h"
#include "chart/packedcolumn.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>

namespace trendax {

// ---- Storage ----

// Times of one or more variables. A variable reads positions [begin, end) of its column; a
// column may be longer than a variable's end when another variable sharing it has been given
// more points already.
struct StripChartModel::TimeColumn {
    ChunkedArray<double, 8192> x;
    // Positions i where x[i] < x[i - 1] (the controller's clock was set back), ascending.
    std::vector<std::size_t> descents;
    // The recording gaps, found as the times arrive; of use only while no time goes back.
    gaps::GapIndex gaps;

    void append(const XYArray& array) {
        const std::size_t n = array.count();
        const std::size_t from = x.size();
        if (const std::vector<double>* shared = array.sharedX()) {
            x.append(shared->data(), n);
        } else {
            for (std::size_t i = 0; i < n; ++i)
                x.push_back(array.x(i));
        }
        // The first new time is compared with the last one stored before it.
        double previous = from > 0 ? x[from - 1] : 0.0;
        std::size_t at = from;
        x.forEachRun(from, x.size(), [&](const double* p, std::size_t count) {
            for (std::size_t i = 0; i < count; ++i, ++at) {
                if (at > 0 && !(p[i] >= previous))
                    descents.push_back(at);
                previous = p[i];
            }
            gaps.append(p, count);
        });
    }

    // Whether the array's X values equal, bit for bit, the times stored from position at on.
    bool matches(std::size_t at, const XYArray& array) const {
        const std::size_t n = array.count();
        if (at < x.firstLiveIndex() || at + n > x.size())
            return false;
        if (const std::vector<double>* shared = array.sharedX()) {
            const double* p = shared->data();
            bool same = true;
            x.forEachRun(at, at + n, [&](const double* q, std::size_t count) {
                same = same && std::memcmp(q, p, count * sizeof(double)) == 0;
                p += count;
            });
            return same;
        }
        for (std::size_t i = 0; i < n; ++i)
            if (std::bit_cast<std::uint64_t>(x[at + i]) != std::bit_cast<std::uint64_t>(array.x(i)))
                return false;
        return true;
    }

    bool ordered(std::size_t begin, std::size_t end) const {
        auto it = std::upper_bound(descents.begin(), descents.end(), begin);
        return it == descents.end() || *it >= end;
    }

    std::shared_ptr<TimeColumn> prefix(std::size_t n) const {
        auto copy = std::make_shared<TimeColumn>();
        copy->x = x.prefix(n);
        for (std::size_t d : descents)
            if (d < n)
                copy->descents.push_back(d);
        copy->x.forEachRun(copy->x.firstLiveIndex(), n, [&](const double* p, std::size_t count) {
            copy->gaps.append(p, count);
        });
        return copy;
    }
};

struct StripChartModel::Series {
    std::shared_ptr<TimeColumn> time;
    PackedColumn y; // same positions as the time column
    SummaryPyramid summary;
    std::size_t begin = 0;
    std::size_t end = 0;

    mutable bool dataValid = false;
    mutable RangeSummary data;
    mutable bool viewValid = false;
    mutable double viewStart = 0.0;
    mutable double viewEnd = 0.0;
    mutable RangeSummary view;
    // The gaps of a series whose times go back, found from its sorted times when first asked.
    mutable bool unorderedGapsValid = false;
    mutable std::vector<gaps::Gap> unorderedGaps;

    std::size_t count() const { return end - begin; }
    double x(std::size_t i) const { return time->x[i]; }
    bool ordered() const { return !time || time->ordered(begin, end); }
    void invalidate() {
        dataValid = false;
        viewValid = false;
        unorderedGapsValid = false;
    }
};

namespace {

// Distinct default colours so that curves can be told apart before the main window assigns its
// own.
constexpr PackedColor defaultColors[StripChartModel::variableCount] = {
    0x0000FF, 0x008000, 0xFF0000, 0x808000, 0x800080, 0x008080, 0x000080,
    0x0080FF, 0x00A000, 0xC000C0, 0x404040, 0x8080FF, 0x00C0C0};

std::size_t midpoint(std::size_t a, std::size_t b) {
    return a + (b - a) / 2;
}

} // namespace

StripChartModel::StripChartModel() : tracks_(5) {
    for (int k = 0; k < variableCount; ++k) {
        variables_[k].color = defaultColors[k];
        series_[k] = std::make_unique<Series>();
    }
}

StripChartModel::~StripChartModel() = default;

void StripChartModel::setChangeListener(std::function<void(Change)> listener) {
    listener_ = std::move(listener);
}

void StripChartModel::curvesChanged() {
    ++revision_;
    if (listener_)
        listener_(Change::Curves);
}

void StripChartModel::cursorChanged() {
    if (listener_)
        listener_(Change::Cursor);
}

// ---- Checks ----

void StripChartModel::checkVariable(int k) const {
    if (k < 0 || k >= variableCount)
        throw ChartError("variable index " + std::to_string(k) + " is outside 0 to 12");
}

void StripChartModel::checkTrack(int t) {
    if (t < 0 || t > maxTrackIndex)
        throw ChartError("track index " + std::to_string(t) + " is outside 0 to " +
                         std::to_string(maxTrackIndex));
}

// ---- Chart-wide state ----

void StripChartModel::setMaxBufferSize(int points) {
    maxBufferSize_ = points;
    bool dropped = false;
    for (auto& s : series_) {
        const std::size_t before = s->count();
        enforceLimit(*s);
        dropped = dropped || s->count() != before;
    }
    if (dropped) {
        ++pointsRevision_;
        curvesChanged();
    }
}

void StripChartModel::setTrackCount(int tracks) {
    if (tracks < 1 || tracks > maxTrackCount)
        throw ChartError("track count " + std::to_string(tracks) + " is outside 1 to " +
                         std::to_string(maxTrackCount));
    if (tracks != trackCount_) {
        trackCount_ = tracks;
        curvesChanged();
    }
}

void StripChartModel::setBackColor(PackedColor color) {
    if (color != backColor_) {
        backColor_ = color;
        curvesChanged();
    }
}

void StripChartModel::setCaption(const QString& caption) {
    if (caption != caption_) {
        caption_ = caption;
        curvesChanged();
    }
}

void StripChartModel::setAppearance(const ChartAppearance& appearance) {
    if (!(appearance == appearance_)) {
        appearance_ = appearance;
        appearance_.lineWidth = std::clamp(appearance_.lineWidth, 1, 10);
        curvesChanged();
    }
}

// ---- Time window and cursor ----

void StripChartModel::showXRange(double start, double end) {
    // Ends that are not numbers are refused, and so is a window whose width overflows a double:
    // it would map every time onto one pixel column.
    TimeWindow window{start, end};
    if (!timewindow::clampToCalendar(window))
        return;
    showWindow(window);
}

void StripChartModel::setXSpan(double days) {
    if (!std::isfinite(days) || !(days > 0.0) || !std::isfinite(viewStart_ + days))
        return;
    TimeWindow window{viewStart_, viewStart_ + days};
    if (!timewindow::clampToCalendar(window))
        return;
    showWindow(window);
}

void StripChartModel::showWindow(TimeWindow window) {
    viewStart_ = window.start;
    viewEnd_ = window.end;
    history_.record(window);
    // Always a redraw: callers use ShowXRange to refresh the chart after a load.
    curvesChanged();
}

bool StripChartModel::backView() {
    return restoreView(history_.back());
}

bool StripChartModel::forwardView() {
    return restoreView(history_.forward());
}

bool StripChartModel::restoreView(std::optional<TimeWindow> window) {
    if (!window)
        return false;
    viewStart_ = window->start;
    viewEnd_ = window->end;
    curvesChanged();
    return true;
}

void StripChartModel::restartViewHistory() {
    history_.restart({viewStart_, viewEnd_});
}

void StripChartModel::setCursorX(double x) {
    if (!std::isfinite(x) || x == cursorX_)
        return;
    cursorX_ = x;
    cursorChanged();
}

void StripChartModel::setReferenceX(std::optional<double> x) {
    if ((x && !std::isfinite(*x)) || x == referenceX_)
        return;
    referenceX_ = x;
    if (listener_)
        listener_(Change::Reference);
}

// ---- Selectors and settings ----

void StripChartModel::setCurrentVar(int index) {
    checkVariable(index);
    currentVar_ = index;
}

void StripChartModel::setCurrentTrack(int index) {
    checkTrack(index);
    currentTrack_ = index;
}

const VariableSettings& StripChartModel::variable(int k) const {
    checkVariable(k);
    return variables_[k];
}

namespace {

template <class T> bool assign(T& field, const T& value) {
    if (field == value)
        return false;
    field = value;
    return true;
}

} // namespace

void StripChartModel::setVarName(int k, const QString& name) {
    checkVariable(k);
    if (assign(variables_[k].name, name))
        curvesChanged();
}

void StripChartModel::setVarColor(int k, PackedColor color) {
    checkVariable(k);
    if (assign(variables_[k].color, color & 0xFFFFFFu))
        curvesChanged();
}

void StripChartModel::setVarSymbol(int k, int symbol) {
    checkVariable(k);
    if (assign(variables_[k].symbol, symbol))
        curvesChanged();
}

void StripChartModel::setVarVisible(int k, bool visible) {
    checkVariable(k);
    if (assign(variables_[k].visible, visible))
        curvesChanged();
}

void StripChartModel::setVarTrack(int k, int track) {
    checkVariable(k);
    checkTrack(track);
    if (assign(variables_[k].track, track))
        curvesChanged();
}

void StripChartModel::setVarYMin(int k, double y) {
    checkVariable(k);
    if (assign(variables_[k].yMin, y))
        curvesChanged();
}

void StripChartModel::setVarYMax(int k, double y) {
    checkVariable(k);
    if (assign(variables_[k].yMax, y))
        curvesChanged();
}

TrackSettings StripChartModel::track(int t) const {
    checkTrack(t);
    return std::size_t(t) < tracks_.size() ? tracks_[t] : TrackSettings{};
}

TrackSettings& StripChartModel::writableTrack(int t) {
    checkTrack(t);
    if (std::size_t(t) >= tracks_.size())
        tracks_.resize(std::size_t(t) + 1);
    return tracks_[t];
}

void StripChartModel::setTrackColor(int t, PackedColor color) {
    if (assign(writableTrack(t).color, color & 0xFFFFFFu) && t < trackCount_)
        curvesChanged();
}

void StripChartModel::setTrackYMin(int t, double y) {
    if (assign(writableTrack(t).yMin, y) && t < trackCount_)
        curvesChanged();
}

void StripChartModel::setTrackYMax(int t, double y) {
    if (assign(writableTrack(t).yMax, y) && t < trackCount_)
        curvesChanged();
}

// ---- Points ----

void StripChartModel::addXYArray(int k, const XYArray& array) {
    checkVariable(k);
    if (array.rows() != 2)
        throw ChartError("the array has " + std::to_string(array.rows()) +
                         " rows; the chart takes 2 x N");
    const std::size_t n = array.count();
    if (n == 0)
        return;
    Series& s = *series_[k];
    if (s.count() == 0)
        resetSeries(s);

    if (!s.time) {
        // A fresh variable shares the column of another whose first times are these.
        for (int j = 0; j < variableCount && !s.time; ++j) {
            const auto& other = series_[j]->time;
            if (j != k && other && other->matches(0, array))
                s.time = other;
        }
        if (!s.time) {
            s.time = std::make_shared<TimeColumn>();
            s.time->append(array);
        }
    } else if (s.time->x.size() == s.end) {
        // At the column's tip: extend it in place; sharers behind us only read their prefix.
        s.time->append(array);
    } else if (!s.time->matches(s.end, array)) {
        // A sharer went on with other times: this variable continues on its own copy.
        s.time = s.time->prefix(s.end);
        s.time->append(array);
    }

    const double* appended = nullptr;
    if (array.sharedX()) {
        s.y.append(array.data(), n);
        appended = array.data();
    } else {
        // Gathered out of the interleaved array so that they are encoded a stretch at a time.
        double stretch[1024];
        for (std::size_t i = 0; i < n; i += std::size(stretch)) {
            const std::size_t m = std::min(n - i, std::size(stretch));
            for (std::size_t j = 0; j < m; ++j)
                stretch[j] = array.y(i + j);
            s.y.append(stretch, m);
        }
    }
    s.end += n;
    s.summary.update(s.y, appended, appended ? n : 0);
    s.invalidate();
    enforceLimit(s);
    ++pointsRevision_;
    curvesChanged();
}

void StripChartModel::resetSeries(Series& s) {
    s.time.reset();
    s.y.clear();
    s.summary.clear();
    s.begin = 0;
    s.end = 0;
    s.invalidate();
}

// Keeps the newest points: a display of recent data is what a limited buffer is for.
void StripChartModel::enforceLimit(Series& s) {
    const std::size_t limit = std::size_t(std::max(maxBufferSize_, 0));
    if (s.count() <= limit)
        return;
    if (limit == 0) {
        auto column = s.time;
        resetSeries(s);
        releaseTimeBlocks(column);
        return;
    }
    s.begin = s.end - limit;
    s.y.releaseBefore(s.begin);
    s.summary.releaseBefore(s.begin);
    s.invalidate();
    releaseTimeBlocks(s.time);
}

void StripChartModel::releaseTimeBlocks(const std::shared_ptr<TimeColumn>& column) {
    if (!column)
        return;
    std::size_t keepFrom = column->x.size();
    for (const auto& other : series_)
        if (other->time == column)
            keepFrom = std::min(keepFrom, other->begin);
    column->x.releaseBefore(keepFrom);
}

void StripChartModel::clearData() {
    for (auto& s : series_)
        resetSeries(*s);
    ++pointsRevision_;
    curvesChanged();
}

std::size_t StripChartModel::pointCount(int k) const {
    checkVariable(k);
    return series_[k]->count();
}

CurvePoint StripChartModel::point(int k, std::size_t i) const {
    checkVariable(k);
    const Series& s = *series_[k];
    if (i >= s.count())
        throw ChartError("point " + std::to_string(i) + " of variable " + std::to_string(k) +
                         " does not exist");
    return {s.x(s.begin + i), s.y[s.begin + i]};
}

std::pair<std::size_t, std::size_t> StripChartModel::visibleRange(int k) const {
    checkVariable(k);
    const Series& s = *series_[k];
    if (s.count() == 0 || !s.ordered())
        return {0, s.count()};
    const std::size_t a = lowerIndex(s, s.begin, s.end, viewStart_);
    const std::size_t b = upperIndex(s, a, s.end, viewEnd_);
    return {a - s.begin, b - s.begin};
}

void StripChartModel::readPoints(int k, std::size_t first, std::size_t n, double* times,
                                 double* values) const {
    checkVariable(k);
    const Series& s = *series_[k];
    if (first > s.count() || n > s.count() - first)
        throw ChartError("points " + std::to_string(first) + " to " + std::to_string(first + n) +
                         " of variable " + std::to_string(k) + " do not exist");
    if (n == 0)
        return;
    const std::size_t from = s.begin + first;
    s.y.forEachRun(from, from + n, [&values](const double* run, std::size_t count) {
        values = std::copy_n(run, count, values);
    });
    if (times)
        s.time->x.forEachRun(from, from + n, [&times](const double* run, std::size_t count) {
            times = std::copy_n(run, count, times);
        });
}

bool StripChartModel::isTimeOrdered(int k) const {
    checkVariable(k);
    return series_[k]->ordered();
}

bool StripChartModel::sharesTimeColumn(int a, int b) const {
    checkVariable(a);
    checkVariable(b);
    return series_[a]->time && series_[a]->time == series_[b]->time;
}

// First position in [from, to) whose time is not before t (to if none); ordered series only.
std::size_t StripChartModel::lowerIndex(const Series& s, std::size_t from, std::size_t to,
                                        double t) const {
    while (from < to) {
        const std::size_t mid = midpoint(from, to);
        if (s.x(mid) < t)
            from = mid + 1;
        else
            to = mid;
    }
    return from;
}

// First position in [from, to) whose time is after t (to if none); ordered series only.
std::size_t StripChartModel::upperIndex(const Series& s, std::size_t from, std::size_t to,
                                        double t) const {
    while (from < to) {
        const std::size_t mid = midpoint(from, to);
        if (!(t < s.x(mid)))
            from = mid + 1;
        else
            to = mid;
    }
    return from;
}

// lowerIndex of [from, to) starting at a guess of the answer: doubling steps away from the
// guess, then a binary search over the last step. With a good guess (the logs are regular) the
// search reads a few neighbouring times instead of jumping across the whole series.
std::size_t StripChartModel::lowerIndexNear(const Series& s, std::size_t from, std::size_t to,
                                            double t, std::size_t guess) const {
    if (from >= to)
        return from;
    guess = std::clamp(guess, from, to - 1);
    std::size_t step = 1;
    if (s.x(guess) < t) {
        std::size_t below = guess; // x[below] < t
        for (;;) {
            const std::size_t probe = below + step;
            if (probe >= to)
                return lowerIndex(s, below + 1, to, t);
            if (!(s.x(probe) < t))
                return lowerIndex(s, below + 1, probe, t);
            below = probe;
            step *= 2;
        }
    }
    std::size_t above = guess; // x[above] >= t
    for (;;) {
        if (above - from < step)
            return lowerIndex(s, from, above, t);
        const std::size_t probe = above - step;
        if (s.x(probe) < t)
            return lowerIndex(s, probe + 1, above, t);
        above = probe;
        step *= 2;
    }
}

// Where the visible points [a, b) split into pixel columns. Variables that share a time column
// share these too, so one repaint searches the times once instead of once per variable. When a
// column holds at least four summary groups its edges are snapped to the nearest group
// boundary: an edge then moves by at most an eighth of a pixel, and the column's query reads a
// few whole nodes of a high level instead of streaming the lower levels through the cache.
const std::vector<std::size_t>& StripChartModel::columnCuts(const Series& s, std::size_t a,
                                                            std::size_t b,
                                                            const TimeMapping& mapping,
                                                            std::size_t columns) const {
    ColumnCuts& cc = cuts_;
    if (cc.revision == revision_ && cc.column == s.time.get() && cc.a == a && cc.b == b &&
        cc.mapping.start == mapping.start && cc.mapping.end == mapping.end &&
        cc.mapping.left == mapping.left && cc.mapping.width == mapping.width &&
        cc.cuts.size() == columns + 1)
        return cc.cuts;
    // Cuts fall on whole nodes of the largest span within a quarter of a column.
    std::size_t group = 1;
    for (std::size_t level = 1; SummaryPyramid::nodeSpan(level) * 4 <= (b - a) / columns; ++level)
        group = SummaryPyramid::nodeSpan(level);
    cc.cuts.assign(columns + 1, b);
    cc.cuts[0] = a;
    // Guesses by linear interpolation between the first and last visible time.
    const double t0 = s.x(a);
    const double perTime = double(b - 1 - a) / std::max(s.x(b - 1) - t0, 1e-300);
    std::size_t exact = a;
    for (std::size_t c = 1; c < columns; ++c) {
        const double t = mapping.toTime(mapping.left + double(c));
        const double guess = double(a) + (t - t0) * perTime;
        exact =
            lowerIndexNear(s, exact, b, t,
                           guess > double(exact) ? std::size_t(std::min(guess, double(b))) : exact);
        cc.cuts[c] = std::clamp((exact + group / 2) / group * group, cc.cuts[c - 1], b);
    }
    cc.revision = revision_;
    cc.column = s.time.get();
    cc.a = a;
    cc.b = b;
    cc.mapping = mapping;
    return cc.cuts;
}

// ---- Statistics ----

RangeSummary StripChartModel::dataSummary(int k) const {
    checkVariable(k);
    const Series& s = *series_[k];
    if (!s.dataValid) {
        s.data = s.summary.query(s.y, s.begin, s.end);
        s.dataValid = true;
    }
    return s.data;
}

RangeSummary StripChartModel::viewSummary(int k) const {
    checkVariable(k);
    const Series& s = *series_[k];
    if (s.viewValid && s.viewStart == viewStart_ && s.viewEnd == viewEnd_)
        return s.view;
    RangeSummary result;
    if (s.count() > 0) {
        if (s.ordered()) {
            const std::size_t a = lowerIndex(s, s.begin, s.end, viewStart_);
            const std::size_t b = upperIndex(s, a, s.end, viewEnd_);
            result = s.summary.query(s.y, a, b);
        } else {
            for (std::size_t i = s.begin; i < s.end; ++i) {
                const double t = s.x(i);
                if (t >= viewStart_ && t <= viewEnd_)
                    result.add(s.y[i]);
            }
        }
    }
    s.view = result;
    s.viewStart = viewStart_;
    s.viewEnd = viewEnd_;
    s.viewValid = true;
    return result;
}

double StripChartModel::dataMin(int k) const {
    return dataSummary(k).min();
}
double StripChartModel::dataMax(int k) const {
    return dataSummary(k).max();
}
double StripChartModel::dataAvg(int k) const {
    return dataSummary(k).mean();
}
double StripChartModel::viewMin(int k) const {
    return viewSummary(k).min();
}
double StripChartModel::viewMax(int k) const {
    return viewSummary(k).max();
}
double StripChartModel::viewAvg(int k) const {
    return viewSummary(k).mean();
}

double StripChartModel::cursorValue(int k) const {
    return valueAt(k, cursorX_);
}

double StripChartModel::valueAt(int k, double c) const {
    checkVariable(k);
    const Series& s = *series_[k];
    if (s.count() == 0)
        return 0.0;
    if (s.ordered()) {
        const std::size_t after = lowerIndex(s, s.begin, s.end, c);
        std::size_t chosen;
        if (after == s.end)
            chosen = s.end - 1;
        else if (after == s.begin || c - s.x(after - 1) >= s.x(after) - c)
            chosen = upperIndex(s, after, s.end, s.x(after)) - 1; // last added at that time
        else
            chosen = after - 1;
        return s.y[chosen];
    }
    std::size_t best = s.begin;
    double bestDistance = std::numeric_limits<double>::infinity();
    double bestTime = -std::numeric_limits<double>::infinity();
    for (std::size_t i = s.begin; i < s.end; ++i) {
        const double t = s.x(i);
        const double distance = std::abs(t - c);
        if (distance < bestDistance || (distance == bestDistance && t >= bestTime)) {
            best = i;
            bestDistance = distance;
            bestTime = t;
        }
    }
    return s.y[best];
}

// ---- Drawing ----

void StripChartModel::curvePoints(int k, const TimeMapping& mapping,
                                  std::vector<CurvePoint>& out) const {
    checkVariable(k);
    out.clear();
    const Series& s = *series_[k];
    if (s.count() == 0 || !(mapping.end > mapping.start))
        return;
    const std::size_t columns = std::size_t(std::clamp(std::ceil(mapping.width), 1.0, pixelLimit));
    auto emitRaw = [&](std::size_t i) { out.push_back({s.x(i), s.y[i]}); };
    // One column's worth of points [a, b) as first, min, max, last, in the order that keeps the
    // line from first to last continuous, all at time t (a time inside the column).
    auto emitColumn = [&](std::size_t a, std::size_t b, const RangeSummary& r, double t) {
        const double first = s.summary.valueAt(s.y, a);
        const double last = s.summary.valueAt(s.y, b - 1);
        out.push_back({t, first});
        if (first <= last) {
            out.push_back({t, r.min()});
            out.push_back({t, r.max()});
        } else {
            out.push_back({t, r.max()});
            out.push_back({t, r.min()});
        }
        out.push_back({t, last});
    };

    if (s.ordered()) {
        const std::size_t a = lowerIndex(s, s.begin, s.end, mapping.start);
        const std::size_t b = upperIndex(s, a, s.end, mapping.end);
        const std::size_t lo = a > s.begin ? a - 1 : a;
        const std::size_t hi = b < s.end ? b + 1 : b;
        if (b - a <= 4 * columns) {
            out.reserve(hi - lo);
            for (std::size_t i = lo; i < hi; ++i)
                emitRaw(i);
            return;
        }
        out.reserve(4 * columns + 2);
        if (lo < a)
            emitRaw(lo);
        const std::vector<std::size_t>& cut = columnCuts(s, a, b, mapping, columns);
        for (std::size_t c = 0; c < columns; ++c) {
            const std::size_t from = cut[c];
            const std::size_t to = cut[c + 1];
            if (to - from <= 4) {
                for (std::size_t i = from; i < to; ++i)
                    emitRaw(i);
            } else {
                emitColumn(from, to, s.summary.query(s.y, from, to, false),
                           mapping.toTime(mapping.left + double(c) + 0.5));
            }
        }
        if (hi > b)
            emitRaw(b);
        return;
    }

    // Times out of order: walk every point in the order added, merging runs that fall into one
    // pixel column. Everything before the window is column -1, everything after it column
    // `columns`, so the lines that leave and re-enter the window are kept.
    auto columnOf = [&](double t) -> long long {
        const double x = std::floor(mapping.toX(t) - mapping.left);
        if (!(x >= 0.0)) // NaN included: an infinite time in an infinitely wide window
            return -1;
        if (x >= double(columns))
            return (long long)(columns);
        return (long long)(x);
    };
    std::size_t runStart = s.end;
    long long runColumn = 0;
    RangeSummary run;
    auto flush = [&](std::size_t runEnd) {
        if (runStart >= runEnd)
            return;
        if (runEnd - runStart <= 4) {
            for (std::size_t i = runStart; i < runEnd; ++i)
                emitRaw(i);
        } else {
            emitColumn(runStart, runEnd, run, s.x(runStart));
        }
    };
    for (std::size_t i = s.begin; i < s.end; ++i) {
        const double t = s.x(i);
        if (std::isnan(t)) {
            flush(i);
            runStart = s.end;
            continue;
        }
        const long long column = columnOf(t);
        if (runStart == s.end || column != runColumn) {
            flush(i);
            runStart = i;
            runColumn = column;
            run = RangeSummary{};
        }
        run.add(s.y[i]);
    }
    flush(s.end);
}

// ---- Recording gaps ----

void StripChartModel::recordingGaps(int k, double from, double to,
                                    std::vector<gaps::Gap>& out) const {
    checkVariable(k);
    out.clear();
    const Series& s = *series_[k];
    if (s.count() < 2)
        return;
    if (s.ordered()) {
        // The column may hold times before and after this variable's own.
        const double first = s.x(s.begin);
        const double last = s.x(s.end - 1);
        s.time->gaps.gapsIn(std::max(from, first), std::min(to, last), out);
        std::erase_if(out, [&](const gaps::Gap& g) { return g.start < first || g.end > last; });
        return;
    }
    if (!s.unorderedGapsValid) {
        std::vector<double> sorted;
        sorted.reserve(s.count());
        s.time->x.forEachRun(s.begin, s.end, [&sorted](const double* p, std::size_t count) {
            for (std::size_t i = 0; i < count; ++i)
                if (!std::isnan(p[i]))
                    sorted.push_back(p[i]);
        });
        std::sort(sorted.begin(), sorted.end());
        s.unorderedGaps = gaps::findGaps(sorted, gaps::gapLimit(gaps::medianSpacing(sorted)));
        s.unorderedGapsValid = true;
    }
    for (const gaps::Gap& g : s.unorderedGaps)
        if (g.end >= from && g.start <= to)
            out.push_back(g);
}

// ---- Accounting ----

std::size_t StripChartModel::allocatedBytes() const {
    std::size_t bytes = 0;
    std::vector<const TimeColumn*> counted;
    for (const auto& s : series_) {
        bytes += s->y.allocatedBytes() + s->summary.allocatedBytes();
        const TimeColumn* column = s->time.get();
        if (column && std::find(counted.begin(), counted.end(), column) == counted.end()) {
            counted.push_back(column);
            bytes += column->x.allocatedBytes() + column->descents.capacity() * sizeof(std::size_t);
        }
    }
    return bytes;
}

std::size_t StripChartModel::storedPoints() const {
    std::size_t points = 0;
    for (const auto& s : series_)
        points += s->count();
    return points;
}

} // namespace trendax
