#pragma once

#include "chart/timewindow.h"

#include <cstddef>
#include <deque>
#include <optional>

namespace trendax {

// The views the chart has shown, for Back and Forward: the most recent `capacity` windows, exact
// to the bit, and the position of the one on screen. Recording a view after going back drops the
// views ahead, as a browser does.
//
// A gesture (a drag, a touchpad scroll, a zoom that first narrows and then re-centres) is one
// view: between beginGesture and the matching endGesture every recorded window replaces the one
// the gesture recorded first, and a gesture that ends where it began leaves no view behind.
class ViewHistory {
public:
    static constexpr std::size_t capacity = 100;

    explicit ViewHistory(TimeWindow first = {});

    // Forgets every view; first becomes the only one.
    void restart(TimeWindow first);
    // Records the window now on screen; the view already current is not recorded twice.
    void record(TimeWindow view);
    // Steps back or forward and returns the view to show, or nothing at either end.
    std::optional<TimeWindow> back();
    std::optional<TimeWindow> forward();

    TimeWindow current() const { return views_[position_]; }
    std::size_t size() const { return views_.size(); }
    std::size_t position() const { return position_; }

    // Gestures nest; the outermost one decides where the view ends.
    void beginGesture();
    void endGesture();

private:
    std::deque<TimeWindow> views_;
    std::size_t position_ = 0;
    int gestureDepth_ = 0;
    bool gestureRecorded_ = false; // the current view is the open gesture's own
};

// Holds a gesture open for the life of a scope.
class ViewGesture {
public:
    explicit ViewGesture(ViewHistory& history) : history_(history) { history_.beginGesture(); }
    ~ViewGesture() { history_.endGesture(); }
    ViewGesture(const ViewGesture&) = delete;
    ViewGesture& operator=(const ViewGesture&) = delete;

private:
    ViewHistory& history_;
};

} // namespace trendax
