#pragma once

#include "chart/blockpool.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace trendax {

// The values of one series, kept without loss in a quarter or half the memory of plain doubles
// where the numbers allow it. Controllers write values with at most two decimals, and such a
// value is exactly double(k) / 100.0 for its whole number k of hundredths, so a segment of
// 32,768 values keeps 16-bit offsets of k from the segment's first value (one pool block),
// or k itself in 32 bits (two blocks), or the doubles (four blocks). A value goes into a narrow
// form only when decoding it gives back the same bits; anything else (a third decimal, -0.0,
// NaN, infinities, huge numbers) widens the segment it lands in, and a segment never narrows.
//
// A month of thirteen channels took 257 MiB as doubles, and on machines where faulting in fresh
// memory is slow that cost more than parsing the logs; packed it takes about a quarter.
//
// Values are read by value or as decoded runs; nothing can write them in place.
class PackedColumn {
public:
    static constexpr std::size_t segmentSize = 32768;
    // forEachRun hands out runs that only break at multiples of this index, so that groups of
    // a divisor of it never straddle two runs.
    static constexpr std::size_t runAlignment = 1024;

    PackedColumn() = default;
    PackedColumn(const PackedColumn&) = delete;
    PackedColumn& operator=(const PackedColumn&) = delete;
    PackedColumn(PackedColumn&&) noexcept = default;
    PackedColumn& operator=(PackedColumn&&) noexcept = default;

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

    // Indices before firstLiveIndex() must not be read.
    double operator[](std::size_t i) const {
        const Segment& s = segments_[i / segmentSize];
        const std::size_t j = i % segmentSize;
        switch (s.form) {
        case Form::offsets16:
            return decode(s.base, s.data<std::int16_t>(0)[j]);
        case Form::hundredths32:
            return decode(s.data<std::int32_t>(j / perBlock32)[j % perBlock32]);
        default:
            return s.data<double>(j / perBlock64)[j % perBlock64];
        }
    }

    // Calls f(pointer, count) for consecutive runs that make up [begin, end). Narrow values are
    // decoded into a buffer on the stack: the pointer is only valid during the call.
    template <class F> void forEachRun(std::size_t begin, std::size_t end, F&& f) const {
        double buffer[decodeRun];
        while (begin < end) {
            const Segment& s = segments_[begin / segmentSize];
            const std::size_t j = begin % segmentSize;
            std::size_t n;
            switch (s.form) {
            case Form::offsets16: {
                n = std::min(end - begin, decodeRun - j % decodeRun);
                const std::int16_t* p = s.data<std::int16_t>(0) + j;
                const std::int32_t base = s.base;
                for (std::size_t i = 0; i < n; ++i)
                    buffer[i] = decode(base, p[i]);
                f(static_cast<const double*>(buffer), n);
                break;
            }
            case Form::hundredths32: {
                n = std::min(end - begin, decodeRun - j % decodeRun);
                const std::int32_t* p = s.data<std::int32_t>(j / perBlock32) + j % perBlock32;
                for (std::size_t i = 0; i < n; ++i)
                    buffer[i] = decode(p[i]);
                f(static_cast<const double*>(buffer), n);
                break;
            }
            default: {
                n = std::min(end - begin, perBlock64 - j % perBlock64);
                f(static_cast<const double*>(s.data<double>(j / perBlock64) + j % perBlock64), n);
                break;
            }
            }
            begin += n;
        }
    }

    // Lowers low and raises high to the extremes of [begin, end), as a scan of the decoded values
    // with < and > would. Narrow segments find their extremes among the stored integers and
    // decode only those two (the decoding never reverses an order): a pixel column of a zoomed
    // out repaint reads up to 126 values at its ends, and decoding each took most of the time.
    void extremes(std::size_t begin, std::size_t end, double& low, double& high) const;

    void push_back(double value) { append(&value, 1); }
    // Appends n values, encoding each into the narrowest form its segment still allows.
    void append(const double* values, std::size_t n);

    void clear();
    // Frees the segments that lie entirely before index.
    void releaseBefore(std::size_t index);
    std::size_t firstLiveIndex() const { return released_ * segmentSize; }

    // Bytes held: the pool blocks of live segments and the segment table.
    std::size_t allocatedBytes() const;

    // The two decodings. Encoding checks a value by running exactly these and comparing bits,
    // which is what makes the narrow forms lossless; the division (not a multiplication by
    // 0.01) is what gives back the parser's nearest double.
    static double decode(std::int32_t base, std::int16_t offset) {
        return double(base + offset) / 100.0;
    }
    static double decode(std::int32_t hundredths) { return double(hundredths) / 100.0; }

private:
    enum class Form : std::uint8_t { released, offsets16, hundredths32, doubles };

    using Block = std::unique_ptr<void, PooledBlockDeleter>;
    static constexpr std::size_t perBlock32 = BlockPool::blockBytes / sizeof(std::int32_t);
    static constexpr std::size_t perBlock64 = BlockPool::blockBytes / sizeof(double);
    static constexpr std::size_t decodeRun = runAlignment;
    static_assert(segmentSize * sizeof(std::int16_t) == BlockPool::blockBytes,
                  "a 16-bit segment is one pool block");
    static_assert(perBlock32 % runAlignment == 0 && perBlock64 % runAlignment == 0,
                  "runs break at block boundaries that are multiples of the alignment");

    struct Segment {
        std::array<Block, 4> blocks;
        std::int32_t base = 0; // hundredths of the segment's first value, for offsets16
        Form form = Form::released;

        template <class T> T* data(std::size_t block) const {
            return static_cast<T*>(blocks[block].get());
        }
    };

    static std::size_t blockCount(Form form);
    static void allocate(Segment& s, Form form);
    // Converts the first fill values of the last segment to the narrowest form wider than its
    // own that holds value as well.
    void widen(Segment& s, std::size_t fill, double value);
    // Encodes up to n values at position fill of s; returns how many leading values it took.
    static std::size_t encode(Segment& s, std::size_t fill, const double* values, std::size_t n);

    std::vector<Segment> segments_;
    std::size_t size_ = 0;
    std::size_t released_ = 0; // segments
};

} // namespace trendax
