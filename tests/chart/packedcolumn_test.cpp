#include "chart/blockpool.h"
#include "chart/packedcolumn.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace trendax {
namespace {

using Values = std::vector<double>;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double denormal = std::numeric_limits<double>::denorm_min();

// n two-decimal readings wandering within a few units of centre.
Values readings(std::size_t n, double centre, unsigned seed = 1) {
    std::mt19937 rng(seed);
    std::uniform_int_distribution<int> step(-300, 300);
    Values out;
    for (std::size_t i = 0; i < n; ++i)
        out.push_back(double(int(centre * 100.0) + step(rng)) / 100.0);
    return out;
}

Values concat(Values a, const Values& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

std::size_t blocksOf(const PackedColumn& c) {
    return c.allocatedBytes() / BlockPool::blockBytes; // the segment table is far below a block
}

struct Row {
    const char* name;
    std::vector<Values> parts;                 // appended one after the other
    std::vector<std::size_t> blocksAfterParts; // pool blocks held after each part
    std::size_t releaseBefore = 0;
    std::size_t blocksAfterRelease = 0;
};

TEST(PackedColumn, EveryValueReadsBackBitIdenticalInTheNarrowestFormItAllows) {
    const Values crossing = concat(readings(PackedColumn::segmentSize, 54.4), {32.768, 1.25});
    const Row rows[] = {
        {"two-decimal readings stay in 16 bits", {readings(5000, 466.3)}, {1}},
        {"a jump beyond 327.67 widens to 32 bits mid-segment",
         {readings(3000, 54.4), {2452.8, 0.28, -21474836.48 / 2}},
         {1, 2}},
        {"16-bit offsets reach -327.68 and 327.67 but not 327.68",
         {{0.0, 327.67, -327.68}, {327.68}},
         {1, 2}},
        {"a third decimal forces doubles", {{1.5, 2.25}, {0.125, 3.5}}, {1, 4}},
        {"negative zero forces doubles", {{1.0, 0.0}, {-0.0, 1.0}}, {1, 4}},
        {"NaN and infinities as first values", {{nan, inf, -inf, 2.0}}, {4}},
        {"huge values and denormals", {{7.0}, {1e300, denormal, -denormal * 3}}, {1, 4}},
        {"beyond 2^30 hundredths is kept as doubles",
         {{10737418.24}, {-10737418.24}, {10737418.25}},
         {1, 2, 4}},
        {"a value forcing doubles starts the next segment", {crossing}, {1 + 4}},
        {"released segments leave the later values readable",
         {crossing, readings(100, 3.0)},
         {5, 5},
         PackedColumn::segmentSize + 5,
         4},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        PackedColumn column;
        Values all;
        for (std::size_t p = 0; p < row.parts.size(); ++p) {
            const Values& part = row.parts[p];
            if (part.size() == 1)
                column.push_back(part[0]);
            else
                column.append(part.data(), part.size());
            all.insert(all.end(), part.begin(), part.end());
            EXPECT_EQ(blocksOf(column), row.blocksAfterParts[p]) << "after part " << p;
        }
        if (row.releaseBefore > 0) {
            column.releaseBefore(row.releaseBefore);
            EXPECT_EQ(blocksOf(column), row.blocksAfterRelease);
        }
        ASSERT_EQ(column.size(), all.size());
        const std::size_t live = column.firstLiveIndex();
        EXPECT_LE(live, row.releaseBefore);

        for (std::size_t i = live; i < all.size(); ++i)
            ASSERT_EQ(std::bit_cast<std::uint64_t>(column[i]), std::bit_cast<std::uint64_t>(all[i]))
                << "value " << i;

        std::mt19937 rng(7);
        std::uniform_int_distribution<std::size_t> index(live, all.size());
        for (int round = 0; round < 30; ++round) {
            std::size_t a = round == 0 ? live : index(rng);
            std::size_t b = round == 0 ? all.size() : index(rng);
            if (a > b)
                std::swap(a, b);
            std::size_t at = a;
            column.forEachRun(a, b, [&](const double* run, std::size_t n) {
                // The summaries rely on runs breaking only at aligned indices.
                if (at != a) {
                    EXPECT_EQ(at % PackedColumn::runAlignment, 0u) << "run at " << at;
                }
                for (std::size_t i = 0; i < n; ++i, ++at)
                    ASSERT_EQ(std::bit_cast<std::uint64_t>(run[i]),
                              std::bit_cast<std::uint64_t>(all[at]))
                        << "run value " << at;
            });
            EXPECT_EQ(at, b) << "range " << a << ".." << b;
            // The extremes of the stored integers are those of the values they decode to.
            double low = INFINITY, high = -INFINITY, scanLow = INFINITY, scanHigh = -INFINITY;
            column.extremes(a, b, low, high);
            for (std::size_t i = a; i < b; ++i) {
                scanLow = all[i] < scanLow ? all[i] : scanLow;
                scanHigh = all[i] > scanHigh ? all[i] : scanHigh;
            }
            EXPECT_EQ(std::bit_cast<std::uint64_t>(low), std::bit_cast<std::uint64_t>(scanLow))
                << "range " << a << ".." << b;
            EXPECT_EQ(std::bit_cast<std::uint64_t>(high), std::bit_cast<std::uint64_t>(scanHigh))
                << "range " << a << ".." << b;
        }
    }
}

TEST(PackedColumn, ClearFreesEveryBlockAndStartsAgain) {
    PackedColumn column;
    const Values values = readings(40000, 10.0);
    column.append(values.data(), values.size());
    column.clear();
    EXPECT_EQ(std::pair(column.size(), column.allocatedBytes()),
              std::pair(std::size_t(0), std::size_t(0)));
    column.push_back(-0.0);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(column[0]), std::bit_cast<std::uint64_t>(-0.0));
}

} // namespace
} // namespace trendax
