#include "chart/packedcolumn.h"

#include <bit>

namespace trendax {

namespace {

// Adding and subtracting 1.5 x 2^52 rounds a double of magnitude below 2^51 to the nearest
// integer (ties to even) in the current rounding mode, without a library call, so the loops
// below stay vectorisable on plain SSE2.
constexpr double roundingShift = 6755399441055744.0;
// Hundredths are kept within +-2^30, so that a 32-bit difference of two of them and a base plus
// a 16-bit offset never overflow.
constexpr double hundredthsLimit = 1073741824.0;

std::uint64_t bits(double v) {
    return std::bit_cast<std::uint64_t>(v);
}

// The nearest number of hundredths to v, clamped to the kept range (NaN to its lower end): the
// caller compares the decoded value with v anyway, and a clamped one never decodes to v. The
// clamp is a plain min and max so that the compiler neither branches nor converts out of range.
std::int32_t hundredthsOf(double v) {
    const double t = v * 100.0;
    const double r = (t + roundingShift) - roundingShift;
    return std::int32_t(std::max(-hundredthsLimit, std::min(r, hundredthsLimit)));
}

// Encodes v as an offset from base into *out; non-zero when the offset does not decode to v.
std::uint64_t encode16(double v, std::int32_t base, std::int16_t* out) {
    // Unsigned, so that a difference beyond 16 bits wraps instead of overflowing; the decode
    // check then rejects it.
    const auto offset = std::int16_t(std::uint32_t(hundredthsOf(v)) - std::uint32_t(base));
    *out = offset;
    return bits(PackedColumn::decode(base, offset)) ^ bits(v);
}

std::uint64_t encode32(double v, std::int32_t* out) {
    const std::int32_t k = hundredthsOf(v);
    *out = k;
    return bits(PackedColumn::decode(k)) ^ bits(v);
}

// Encodes the leading values of [values, values + n) that fit into out; returns how many. The
// check of a stretch is or-ed together so the loop has no exit inside; the first misfit is
// then found again one value at a time. GCC 12 packs the 16-bit loop, the common one.
template <class Out, class Encode>
std::size_t encodeRun(const double* values, std::size_t n, Out* out, Encode encode) {
    constexpr std::size_t stretch = 256;
    std::size_t done = 0;
    while (done < n) {
        const std::size_t m = std::min(stretch, n - done);
        const double* v = values + done;
        Out* o = out + done;
        std::uint64_t differ = 0;
        for (std::size_t i = 0; i < m; ++i)
            differ |= encode(v[i], o + i);
        if (differ != 0) {
            std::size_t i = 0;
            while (encode(v[i], o + i) == 0)
                ++i;
            return done + i;
        }
        done += m;
    }
    return n;
}

// The 32-bit form as two plain loops, rounding and then checking, which the compiler packs where
// it leaves the one-loop form of encodeRun scalar; segments whose values spread wider than
// 327.67 (a gauge from a few hundred to a few thousand) take it.
std::size_t encodeRun32(const double* values, std::size_t n, std::int32_t* out) {
    constexpr std::size_t stretch = 256;
    std::size_t done = 0;
    while (done < n) {
        const std::size_t m = std::min(stretch, n - done);
        const double* v = values + done;
        std::int32_t* o = out + done;
        for (std::size_t i = 0; i < m; ++i)
            o[i] = hundredthsOf(v[i]);
        std::uint64_t differ = 0;
        for (std::size_t i = 0; i < m; ++i)
            differ |= bits(PackedColumn::decode(o[i])) ^ bits(v[i]);
        if (differ != 0) {
            std::size_t i = 0;
            while (bits(PackedColumn::decode(o[i])) == bits(v[i]))
                ++i;
            return done + i;
        }
        done += m;
    }
    return n;
}

} // namespace

std::size_t PackedColumn::blockCount(Form form) {
    switch (form) {
    case Form::offsets16:
        return 1;
    case Form::hundredths32:
        return 2;
    case Form::doubles:
        return 4;
    default:
        return 0;
    }
}

void PackedColumn::allocate(Segment& s, Form form) {
    std::array<Block, 4> blocks;
    for (std::size_t b = 0; b < blockCount(form); ++b)
        blocks[b] = Block(BlockPool::shared().allocate());
    s.blocks = std::move(blocks);
    s.form = form;
}

std::size_t PackedColumn::encode(Segment& s, std::size_t fill, const double* values,
                                 std::size_t n) {
    switch (s.form) {
    case Form::offsets16: {
        const std::int32_t base = s.base;
        return encodeRun(values, n, s.data<std::int16_t>(0) + fill,
                         [base](double v, std::int16_t* out) { return encode16(v, base, out); });
    }
    case Form::hundredths32: {
        // One block at a time.
        std::size_t done = 0;
        while (done < n) {
            const std::size_t at = fill + done;
            const std::size_t m = std::min(n - done, perBlock32 - at % perBlock32);
            const std::size_t took = encodeRun32(
                values + done, m, s.data<std::int32_t>(at / perBlock32) + at % perBlock32);
            done += took;
            if (took < m)
                break;
        }
        return done;
    }
    default: {
        std::size_t done = 0;
        while (done < n) {
            const std::size_t at = fill + done;
            const std::size_t m = std::min(n - done, perBlock64 - at % perBlock64);
            std::copy_n(values + done, m, s.data<double>(at / perBlock64) + at % perBlock64);
            done += m;
        }
        return done;
    }
    }
}

void PackedColumn::widen(Segment& s, std::size_t fill, double value) {
    std::int32_t k;
    const bool fits32 = s.form == Form::offsets16 && encode32(value, &k) == 0;
    Segment wide;
    allocate(wide, fits32 ? Form::hundredths32 : Form::doubles);
    for (std::size_t j = 0; j < fill; ++j) {
        if (s.form == Form::offsets16) {
            const std::int16_t offset = s.data<std::int16_t>(0)[j];
            if (fits32)
                wide.data<std::int32_t>(j / perBlock32)[j % perBlock32] = s.base + offset;
            else
                wide.data<double>(j / perBlock64)[j % perBlock64] = decode(s.base, offset);
        } else {
            wide.data<double>(j / perBlock64)[j % perBlock64] =
                decode(s.data<std::int32_t>(j / perBlock32)[j % perBlock32]);
        }
    }
    s = std::move(wide); // releases the narrow blocks
}

void PackedColumn::append(const double* values, std::size_t n) {
    while (n > 0) {
        const std::size_t fill = size_ % segmentSize;
        if (fill == 0) {
            // A segment starts in the narrowest form its first value allows.
            Segment s;
            std::int32_t k;
            if (encode32(values[0], &k) == 0) {
                allocate(s, Form::offsets16);
                s.base = k;
            } else {
                allocate(s, Form::doubles);
            }
            segments_.push_back(std::move(s));
        }
        Segment& s = segments_.back();
        const std::size_t room = std::min(n, segmentSize - fill);
        const std::size_t took = encode(s, fill, values, room);
        size_ += took;
        values += took;
        n -= took;
        if (took < room)
            widen(s, fill + took, values[0]);
    }
}

void PackedColumn::extremes(std::size_t begin, std::size_t end, double& low, double& high) const {
    while (begin < end) {
        const Segment& s = segments_[begin / segmentSize];
        const std::size_t j = begin % segmentSize;
        std::size_t n = std::min(end - begin, segmentSize - j);
        switch (s.form) {
        case Form::offsets16: {
            const std::int16_t* p = s.data<std::int16_t>(0) + j;
            std::int16_t lo = p[0], hi = p[0];
            for (std::size_t i = 1; i < n; ++i) {
                lo = std::min(lo, p[i]);
                hi = std::max(hi, p[i]);
            }
            const double a = decode(s.base, lo), b = decode(s.base, hi);
            low = a < low ? a : low;
            high = b > high ? b : high;
            break;
        }
        case Form::hundredths32: {
            n = std::min(n, perBlock32 - j % perBlock32);
            const std::int32_t* p = s.data<std::int32_t>(j / perBlock32) + j % perBlock32;
            std::int32_t lo = p[0], hi = p[0];
            for (std::size_t i = 1; i < n; ++i) {
                lo = std::min(lo, p[i]);
                hi = std::max(hi, p[i]);
            }
            const double a = decode(lo), b = decode(hi);
            low = a < low ? a : low;
            high = b > high ? b : high;
            break;
        }
        default: {
            n = std::min(n, perBlock64 - j % perBlock64);
            const double* p = s.data<double>(j / perBlock64) + j % perBlock64;
            for (std::size_t i = 0; i < n; ++i) {
                low = p[i] < low ? p[i] : low;
                high = p[i] > high ? p[i] : high;
            }
            break;
        }
        }
        begin += n;
    }
}

void PackedColumn::clear() {
    segments_.clear();
    segments_.shrink_to_fit();
    size_ = 0;
    released_ = 0;
}

void PackedColumn::releaseBefore(std::size_t index) {
    const std::size_t upTo = std::min(index, size_) / segmentSize;
    for (std::size_t j = released_; j < upTo; ++j)
        segments_[j] = Segment{};
    released_ = std::max(released_, upTo);
}

std::size_t PackedColumn::allocatedBytes() const {
    std::size_t bytes = segments_.capacity() * sizeof(Segment);
    for (std::size_t j = released_; j < segments_.size(); ++j)
        bytes += blockCount(segments_[j].form) * BlockPool::blockBytes;
    return bytes;
}

} // namespace trendax
