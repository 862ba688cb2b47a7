#pragma once

#include <QString>
#include <cstddef>
#include <optional>
#include <vector>

namespace trendax {

struct TimeMapping;

// What a marker stands for; each kind has its own colour on the chart.
enum class MarkerKind {
    Fault,     // overloads, underloads, imbalances, power failures, high and low alarms
    StartStop, // starts and stops of the motor
    Comment,   // a comment of the user
    Other,     // any other controller event
};

// Where a marker comes from: an entry of the history list or a row of the comment grid.
enum class MarkerSource {
    HistoryEvent,
    Comment,
};

// A history event or comment at its moment on the time axis.
struct EventMarker {
    double time = 0.0;
    MarkerKind kind = MarkerKind::Other;
    MarkerSource source = MarkerSource::HistoryEvent;
    int index = 0; // the row in its list or grid
    QString text;  // the list entry or the comment
};

// The markers in one pixel column: markers [first, first + count) of the sorted set. Its kind is
// the most urgent of theirs (a fault before a start or stop, before a comment, before others).
struct MarkerColumn {
    int x = 0;
    std::size_t first = 0;
    std::size_t count = 0;
    MarkerKind kind = MarkerKind::Other;
};

// The event markers of a chart, sorted by time once when they are set, so that drawing a window
// costs a binary search and one step per marker in view, whatever the number loaded.
class EventMarkers {
public:
    // Replaces the markers; those whose time is not finite are left out. Markers of equal time
    // keep the order given.
    void assign(std::vector<EventMarker> markers);
    void clear() { markers_.clear(); }
    bool empty() const { return markers_.empty(); }
    std::size_t size() const { return markers_.size(); }
    // The i-th marker in time order.
    const EventMarker& at(std::size_t i) const { return markers_.at(i); }

    // One column per pixel column that holds markers inside the mapping's window, left to right.
    void columns(const TimeMapping& mapping, std::vector<MarkerColumn>& out) const;
    // The column whose flag, flagWidth pixels wide to the right of its marker line, covers pixel
    // x; of overlapping flags the one drawn last (the rightmost). nullopt where there is none.
    std::optional<MarkerColumn> columnAt(const TimeMapping& mapping, double x,
                                         double flagWidth) const;
    // The tooltip of a column: the marker's text, or for several the count and the first
    // maxLines texts with how many more there are.
    QString toolTip(const MarkerColumn& column, std::size_t maxLines = 10) const;

private:
    std::vector<EventMarker> markers_;
};

} // namespace trendax
