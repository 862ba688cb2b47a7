#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace trendax {

// A rows x N array of doubles in the layout the chart takes: element (r, i) lies at
// values[i * rows + r], so a 2 x N array is the sequence x0, y0, x1, y1, ...
//
// A 2 x N array may instead take its X row from a column shared with other arrays: the thirteen
// channels of one data log carry the same time stamps, and a day then keeps them once instead of
// thirteen times. Element access reads the same either way.
class XYArray {
public:
    XYArray() = default;
    XYArray(int rows, std::size_t count)
        : rows_(rows), count_(rows > 0 ? count : 0), values_(std::size_t(rows) * count, 0.0) {}
    // A 2 x count array whose X row is sharedX (at least count long) and whose Y row starts 0.
    XYArray(std::shared_ptr<std::vector<double>> sharedX, std::size_t count)
        : rows_(2), count_(count), values_(count, 0.0), sharedX_(std::move(sharedX)) {}

    int rows() const { return rows_; }
    std::size_t count() const { return count_; }

    double& at(int row, std::size_t i) {
        if (sharedX_)
            return row == 0 ? (*sharedX_)[i] : values_[i];
        return values_[i * std::size_t(rows_) + std::size_t(row)];
    }
    double at(int row, std::size_t i) const { return const_cast<XYArray*>(this)->at(row, i); }
    double x(std::size_t i) const { return at(0, i); }
    double y(std::size_t i) const { return at(1, i); }

    // Keeps the first count columns (a shrink never moves the kept elements).
    void resize(std::size_t count) {
        count_ = count;
        values_.resize(sharedX_ ? count : std::size_t(rows_) * count);
    }

    // The shared X row, or null when the array keeps its own.
    const std::vector<double>* sharedX() const { return sharedX_.get(); }
    // The Y row of an array with a shared X row; the interleaved elements otherwise.
    const double* data() const { return values_.data(); }
    double* data() { return values_.data(); }

private:
    int rows_ = 2;
    std::size_t count_ = 0;
    std::vector<double> values_;
    std::shared_ptr<std::vector<double>> sharedX_;
};

} // namespace trendax
