#pragma once

#include <cstddef>
#include <vector>

namespace trendax {

// A rows x N array of doubles in the layout the chart takes: element (r, i) lies at
// values[i * rows + r], so a 2 x N array is the sequence x0, y0, x1, y1, ...
class XYArray {
public:
    XYArray() = default;
    XYArray(int rows, std::size_t count) : rows_(rows), values_(std::size_t(rows) * count, 0.0) {}

    int rows() const { return rows_; }
    std::size_t count() const { return rows_ > 0 ? values_.size() / std::size_t(rows_) : 0; }

    double& at(int row, std::size_t i) {
        return values_[i * std::size_t(rows_) + std::size_t(row)];
    }
    double at(int row, std::size_t i) const {
        return values_[i * std::size_t(rows_) + std::size_t(row)];
    }
    double x(std::size_t i) const { return at(0, i); }
    double y(std::size_t i) const { return at(1, i); }

    // Keeps the first count columns (a shrink never moves the kept elements).
    void resize(std::size_t count) { values_.resize(std::size_t(rows_) * count); }

    const double* data() const { return values_.data(); }
    double* data() { return values_.data(); }

private:
    int rows_ = 2;
    std::vector<double> values_;
};

} // namespace trendax
