#pragma once

#include <algorithm>
#include <cmath>

namespace trendax {

// How far from the origin a pixel coordinate may lie once it leaves the mappings. A cursor at
// 10^11 days seen through a one-day window maps about 10^14 pixels away, which no int holds;
// pulled in to here it stays far outside any plot, screen or printed page, while rounding it and
// adding a few pixels stays well inside an int and the painter's fixed-point range.
inline constexpr double pixelLimit = 1.0e6;

// A pixel coordinate fit for painting: beyond the limit (infinities included) it is pulled to the
// limit, and NaN goes to the far left (or top), off every plot.
inline double safePixel(double x) {
    if (std::isnan(x))
        return -pixelLimit;
    return std::clamp(x, -pixelLimit, pixelLimit);
}

// The same rounded to a whole pixel, for integer arithmetic (repaint strips, font sizes).
inline int pixelIndex(double x) {
    return int(std::lround(safePixel(x)));
}

// Maps the visible time window [start, end] (date-times) onto the pixels [left, left + width]
// of the plot area. Every drawing of the time axis, every click and every per-pixel reduction of
// the curves goes through one of these, so a point and the column it is drawn in always agree.
struct TimeMapping {
    double start = 0.0;
    double end = 1.0;
    double left = 0.0;
    double width = 1.0;

    // A degenerate window or a zero width maps everything to the left edge rather than dividing
    // by zero: the chart never shows such a window, but a zero-sized widget can exist.
    double toX(double time) const {
        const double span = end - start;
        if (!(span > 0.0) || !(width > 0.0))
            return left;
        return left + (time - start) / span * width;
    }
    double toTime(double x) const {
        if (!(width > 0.0))
            return start;
        return start + (x - left) / width * (end - start);
    }
};

// Maps a variable's value range [low, high] onto a band whose top is at top, height pixels
// high: low at the bottom edge, high at the top edge.
struct ValueMapping {
    double low = 0.0;
    double high = 1.0;
    double top = 0.0;
    double height = 1.0;

    // An empty or inverted range puts every value on the middle line, so a flat channel still
    // shows; values far outside are clamped to keep the painter's coordinates sane, and a value
    // that is not a number lands far above the band: the painter is never handed a NaN.
    double toY(double value) const {
        const double range = high - low;
        if (!(range > 0.0))
            return top + height / 2.0;
        const double y = top + height - (value - low) / range * height;
        if (std::isnan(y))
            return top - pixelLimit;
        return std::clamp(y, top - pixelLimit, top + height + pixelLimit);
    }
};

} // namespace trendax
