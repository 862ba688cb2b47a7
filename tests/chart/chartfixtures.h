#pragma once

#include "chart/xyarray.h"

#include <initializer_list>
#include <memory>
#include <utility>

namespace trendax::test {

// A 2 x N array from (time, value) pairs.
inline XYArray makeArray(std::initializer_list<std::pair<double, double>> points) {
    XYArray a(2, points.size());
    std::size_t i = 0;
    for (const auto& [x, y] : points) {
        a.at(0, i) = x;
        a.at(1, i++) = y;
    }
    return a;
}

// n points one second apart from day start, values from f(i).
// With sharedTimes the times are a column of their own, as a data log's days hand them over.
template <class F>
XYArray secondsArray(double dayStart, std::size_t first, std::size_t n, F f,
                     bool sharedTimes = false) {
    XYArray a = sharedTimes ? XYArray(std::make_shared<std::vector<double>>(n), n) : XYArray(2, n);
    for (std::size_t i = 0; i < n; ++i) {
        a.at(0, i) = dayStart + double(first + i) / 86400.0;
        a.at(1, i) = f(first + i);
    }
    return a;
}

} // namespace trendax::test
