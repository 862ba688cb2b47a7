#include "chart/viewhistory.h"

namespace trendax {

ViewHistory::ViewHistory(TimeWindow first) {
    restart(first);
}

void ViewHistory::restart(TimeWindow first) {
    views_.assign(1, first);
    position_ = 0;
    gestureRecorded_ = false;
}

void ViewHistory::record(TimeWindow view) {
    if (gestureRecorded_) {
        views_[position_] = view;
        // Back where the gesture started: the gesture made no view of its own.
        if (position_ > 0 && views_[position_ - 1] == view) {
            views_.pop_back();
            --position_;
            gestureRecorded_ = false;
        }
        return;
    }
    if (views_[position_] == view)
        return;
    views_.erase(views_.begin() + std::ptrdiff_t(position_) + 1, views_.end());
    views_.push_back(view);
    if (views_.size() > capacity)
        views_.pop_front();
    position_ = views_.size() - 1;
    gestureRecorded_ = gestureDepth_ > 0;
}

std::optional<TimeWindow> ViewHistory::back() {
    gestureRecorded_ = false;
    if (position_ == 0)
        return std::nullopt;
    return views_[--position_];
}

std::optional<TimeWindow> ViewHistory::forward() {
    gestureRecorded_ = false;
    if (position_ + 1 >= views_.size())
        return std::nullopt;
    return views_[++position_];
}

void ViewHistory::beginGesture() {
    ++gestureDepth_;
}

void ViewHistory::endGesture() {
    if (gestureDepth_ > 0 && --gestureDepth_ == 0)
        gestureRecorded_ = false;
}

} // namespace trendax
