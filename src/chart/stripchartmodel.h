#pragma once

#include "chart/chartmapping.h"
#include "chart/charttypes.h"
#include "chart/gaps.h"
#include "chart/summarypyramid.h"
#include "chart/viewhistory.h"
#include "chart/xyarray.h"

#include <QString>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace trendax {

// A point of a curve: date-time and value.
struct CurvePoint {
    double time = 0.0;
    double value = 0.0;
};

// Presentation options of the chart that its settings dialog edits.
struct ChartAppearance {
    bool gridLines = true;
    int lineWidth = 1; // pixels on screen; scaled with the resolution when printing
    // History events and comments drawn as markers across the tracks.
    bool eventMarkers = true;
    // Recording gaps drawn as lines like any other spacing, instead of breaking the curves.
    bool bridgeGaps = false;

    bool operator==(const ChartAppearance&) const = default;
};

struct VariableSettings {
    QString name;
    PackedColor color = 0;
    int symbol = 0; // 0 none, 1 to 13 a marker style each
    bool visible = true;
    int track = 0;
    double yMin = 0.0;
    double yMax = 100.0;
};

struct TrackSettings {
    PackedColor color = 0xFFFFFF;
    double yMin = 0.0;
    double yMax = 100.0;
};

// The strip chart without its window: 13 variable slots of points and settings, per-track
// settings, the visible time window, the cursor and the statistics. The widget paints from it;
// everything that can be decided without a painter is decided here.
//
// Storage: each variable holds its values in blocks with a summary pyramid beside them; the time
// column is shared between variables that were given the same X values at the same positions
// (the data log reader appends all channels of a log with one time column), so a month of 13
// channels stores its times once.
class StripChartModel {
public:
    static constexpr int variableCount = 13;
    // Track settings are kept for any track index a caller writes (16-bit, as the callers hold
    // it); this many tracks can be shown at once.
    static constexpr int maxTrackCount = 16;
    static constexpr int maxTrackIndex = 32767;

    enum class Change {
        Curves, // anything drawn except the cursors
        Cursor,
        Reference, // the reference cursor was set, moved or removed
    };

    StripChartModel();
    ~StripChartModel();
    StripChartModel(const StripChartModel&) = delete;
    StripChartModel& operator=(const StripChartModel&) = delete;

    // Called after every change that needs a repaint, with what changed.
    void setChangeListener(std::function<void(Change)> listener);
    // Grows with every change of what the curve layer shows (not with cursor moves).
    std::uint64_t curveRevision() const { return revision_; }
    // Grows with every change of the points themselves: added, dropped or cleared.
    std::uint64_t pointsRevision() const { return pointsRevision_; }

    // ---- Chart-wide state ----
    int maxBufferSize() const { return maxBufferSize_; }
    // Lowering the limit drops the oldest points of longer variables at once; a limit of zero
    // or below keeps no points. Raising it never brings points back.
    void setMaxBufferSize(int points);
    int trackCount() const { return trackCount_; }
    // 1 to maxTrackCount; anything else throws ChartError.
    void setTrackCount(int tracks);
    PackedColor backColor() const { return backColor_; }
    void setBackColor(PackedColor color);
    const QString& caption() const { return caption_; }
    void setCaption(const QString& caption);
    int chartMode() const { return chartMode_; }
    void setChartMode(int mode) { chartMode_ = mode; }
    const ChartAppearance& appearance() const { return appearance_; }
    void setAppearance(const ChartAppearance& appearance);

    // ---- Time window and cursor ----
    double xViewStart() const { return viewStart_; }
    double xViewEnd() const { return viewEnd_; }
    double xSpan() const { return viewEnd_ - viewStart_; }
    // Shows [start, end]. A window that is empty, inverted or not finite (zoom-all before any
    // load asks for [0, 0], after a load without rows for [1e11, 0]) keeps the previous one. A
    // window reaching before 30 December 1899 or beyond the year 9999 is moved inside, keeping
    // its span (a wider one shows the whole calendar): the axis has no dates out there.
    void showXRange(double start, double end);
    // Keeps XViewStart and moves XViewEnd; a span that is not positive is ignored. Near the end of
    // the calendar the window moves left to keep the span.
    void setXSpan(double days);
    double cursorX() const { return cursorX_; }
    // Moves the cursor (no CursorChange: that is for the user's clicks); not finite is ignored.
    void setCursorX(double x);
    // A second, reference cursor that the user may set beside the cursor; absent by default.
    // Setting a time that is not finite is ignored.
    const std::optional<double>& referenceX() const { return referenceX_; }
    void setReferenceX(std::optional<double> x);

    // ---- View history ----
    // Every change of the window is recorded, whatever asked for it; Back and Forward show the
    // recorded windows exactly and record nothing themselves. Each returns whether it moved.
    bool backView();
    bool forwardView();
    // Starts a new history whose only view is the window on screen (a load ends with this).
    void restartViewHistory();
    // For gestures (ViewGesture) and for reading the history.
    ViewHistory& viewHistory() { return history_; }
    const ViewHistory& viewHistory() const { return history_; }

    // ---- Selectors ----
    int currentVar() const { return currentVar_; }
    void setCurrentVar(int index); // 0 to 12, else throws ChartError
    int currentTrack() const { return currentTrack_; }
    void setCurrentTrack(int index); // 0 to maxTrackIndex, not bounded by trackCount()

    // ---- Variable and track settings, by index ----
    const VariableSettings& variable(int k) const;
    void setVarName(int k, const QString& name);
    void setVarColor(int k, PackedColor color);
    void setVarSymbol(int k, int symbol);
    void setVarVisible(int k, bool visible);
    void setVarTrack(int k, int track); // 0 to maxTrackIndex
    void setVarYMin(int k, double y);
    void setVarYMax(int k, double y);
    // Tracks never written report the defaults.
    TrackSettings track(int t) const;
    void setTrackColor(int t, PackedColor color);
    void setTrackYMin(int t, double y);
    void setTrackYMax(int t, double y);

    // ---- Points ----
    // Appends the N points of a 2 x N array after those variable k holds; throws ChartError on
    // a bad index or shape and then changes nothing.
    void addXYArray(int k, const XYArray& array);
    void clearData();
    std::size_t pointCount(int k) const;
    // The i-th point kept, in the order added.
    CurvePoint point(int k, std::size_t i) const;
    // The positions [first, last) of variable k's points inside the visible window, edges
    // included, for point() and readPoints(). A series whose times go back somewhere gives all of
    // its positions; the caller then filters by time.
    std::pair<std::size_t, std::size_t> visibleRange(int k) const;
    // Copies the n points from position first on into times (unless null) and values; throws
    // ChartError for positions that do not exist.
    void readPoints(int k, std::size_t first, std::size_t n, double* times, double* values) const;
    // Whether the variable's times never decrease (the fast paths rely on it).
    bool isTimeOrdered(int k) const;
    // Whether two variables store one time column between them.
    bool sharesTimeColumn(int a, int b) const;

    // ---- Statistics ----
    // All of them answer 0 for a variable without points and the View ones 0 for a window
    // without points; points exactly on a window edge are inside.
    // CursorValue is the value of the point nearest in time to the cursor; at equal distance the
    // later time wins, and of several points with that same time the one added last.
    double cursorValue(int k) const;
    // The value of the point nearest in time to t by the same rule (the reference cursor's).
    double valueAt(int k, double t) const;
    double dataMin(int k) const;
    double dataMax(int k) const;
    double dataAvg(int k) const;
    double viewMin(int k) const;
    double viewMax(int k) const;
    double viewAvg(int k) const;
    RangeSummary dataSummary(int k) const;
    RangeSummary viewSummary(int k) const;

    // ---- Drawing ----
    // The points to draw for variable k through the mapping, replacing out. When the window
    // holds few points per pixel column these are the visible points themselves; otherwise each
    // column gives its first, minimum, maximum and last value (so spikes survive) from the
    // summaries, placed at the column's middle. One point beyond each edge is included so the
    // lines reach the edges.
    void curvePoints(int k, const TimeMapping& mapping, std::vector<CurvePoint>& out) const;
    // The recording gaps of variable k that overlap [from, to], ascending, replacing out: where
    // its points, taken in time order, lie further apart than its gap limit (ten times their
    // median spacing, at least a minute).
    void recordingGaps(int k, double from, double to, std::vector<gaps::Gap>& out) const;

    // ---- Accounting ----
    // Heap bytes held for points and summaries (a shared time column counted once).
    std::size_t allocatedBytes() const;
    std::size_t storedPoints() const;

private:
    struct TimeColumn;
    struct Series;

    void checkVariable(int k) const;
    static void checkTrack(int t);
    TrackSettings& writableTrack(int t);
    void curvesChanged();
    void cursorChanged();
    void showWindow(TimeWindow window);
    bool restoreView(std::optional<TimeWindow> window);
    void resetSeries(Series& s);
    void enforceLimit(Series& s);
    void releaseTimeBlocks(const std::shared_ptr<TimeColumn>& column);
    std::size_t lowerIndex(const Series& s, std::size_t from, std::size_t to, double t) const;
    std::size_t lowerIndexNear(const Series& s, std::size_t from, std::size_t to, double t,
                               std::size_t guess) const;
    const std::vector<std::size_t>& columnCuts(const Series& s, std::size_t a, std::size_t b,
                                               const TimeMapping& mapping,
                                               std::size_t columns) const;
    std::size_t upperIndex(const Series& s, std::size_t from, std::size_t to, double t) const;

    std::function<void(Change)> listener_;
    std::uint64_t revision_ = 0;
    std::uint64_t pointsRevision_ = 0;

    int maxBufferSize_ = 20000;
    int trackCount_ = 1;
    PackedColor backColor_ = 0xFFFFFF;
    QString caption_;
    int chartMode_ = 0;
    ChartAppearance appearance_;
    double viewStart_ = 0.0;
    double viewEnd_ = 1.0;
    double cursorX_ = 0.0;
    std::optional<double> referenceX_;
    ViewHistory history_{TimeWindow{viewStart_, viewEnd_}};
    int currentVar_ = 0;
    int currentTrack_ = 0;

    std::array<VariableSettings, variableCount> variables_;
    std::vector<TrackSettings> tracks_;
    std::array<std::unique_ptr<Series>, variableCount> series_;

    struct ColumnCuts {
        std::uint64_t revision = ~std::uint64_t(0);
        const TimeColumn* column = nullptr;
        std::size_t a = 0;
        std::size_t b = 0;
        TimeMapping mapping;
        std::vector<std::size_t> cuts;
    };
    mutable ColumnCuts cuts_;
};

} // namespace trendax
