// The chart's point storage: the block pool behind it, bulk appends into blocks, and the time
// columns that whole days of shared time stamps are appended to.
#include "chart/blockpool.h"
#include "chart/chunkedarray.h"
#include "chart/stripchartmodel.h"
#include "chart/xyarray.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <numeric>
#include <set>
#include <vector>

namespace trendax {
namespace {

TEST(BlockPool, HandsOutDistinctAlignedBlocksAndTakesReleasedOnesBackFirst) {
    BlockPool pool;
    std::vector<void*> blocks;
    // More than one region's worth, so that a second region is mapped.
    const std::size_t count = BlockPool::regionBytes / BlockPool::blockBytes + 3;
    for (std::size_t i = 0; i < count; ++i) {
        void* b = pool.allocate();
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(b) % BlockPool::blockBytes, 0u) << i;
        std::memset(b, int(i), BlockPool::blockBytes); // writable to its last byte
        blocks.push_back(b);
    }
    EXPECT_EQ(std::set<void*>(blocks.begin(), blocks.end()).size(), count);
    EXPECT_EQ(pool.mappedBytes(), 2 * BlockPool::regionBytes);
    EXPECT_EQ(pool.usedBytes(), count * BlockPool::blockBytes);

    pool.release(blocks[5]);
    EXPECT_EQ(pool.allocate(), blocks[5]);
    EXPECT_EQ(pool.mappedBytes(), 2 * BlockPool::regionBytes);

    // A region with a block still held stays; one entirely free goes.
    for (std::size_t i = 1; i < count; ++i)
        pool.release(blocks[i]);
    pool.trim();
    EXPECT_EQ(pool.mappedBytes(), BlockPool::regionBytes);
    EXPECT_EQ(pool.usedBytes(), BlockPool::blockBytes);
    EXPECT_EQ(static_cast<unsigned char*>(blocks[0])[BlockPool::blockBytes - 1], 0u);
}

TEST(BlockPool, PreparedBlocksAreFaultedInAheadAndThenHandedOut) {
    BlockPool pool;
    pool.prepare(BlockPool::regionBytes + 1);
    pool.waitPrepared();
    EXPECT_EQ(pool.helperRegions(), 2u);
    EXPECT_EQ(pool.preparedBytes(), 2 * BlockPool::regionBytes);
    EXPECT_EQ(pool.usedBytes(), 0u);
    // What is already prepared is not asked for again.
    pool.prepare(BlockPool::regionBytes);
    pool.waitPrepared();
    EXPECT_EQ(pool.helperRegions(), 2u);

    void* b = pool.allocate();
    EXPECT_EQ(pool.preparedBytes(), 2 * BlockPool::regionBytes - BlockPool::blockBytes);
    EXPECT_EQ(pool.mappedBytes(), 2 * BlockPool::regionBytes);
    pool.release(b);

    pool.setHelperEnabled(false);
    pool.prepare(10 * BlockPool::regionBytes);
    pool.waitPrepared();
    EXPECT_EQ(pool.helperRegions(), 2u);
}

TEST(ChunkedArray, BulkAppendsMatchOneByOneAcrossBlockEdges) {
    using Column = ChunkedArray<double, 8192>; // pooled blocks
    Column bulk, single;
    std::vector<double> values(30000);
    std::iota(values.begin(), values.end(), -5.5);
    std::size_t at = 0;
    for (std::size_t batch : {1u, 8190u, 3u, 8192u, 13614u}) {
        bulk.append(values.data() + at, batch);
        for (std::size_t i = 0; i < batch; ++i)
            single.push_back(values[at + i]);
        at += batch;
    }
    ASSERT_EQ(at, values.size());
    ASSERT_EQ(bulk.size(), values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        ASSERT_EQ(bulk[i], single[i]) << i;
}

// Days of a 13-channel log as the reader hands them over: one time column shared by all.
std::vector<std::shared_ptr<XYArray>> dayArrays(double firstTime, std::size_t rows,
                                                double timeStep) {
    auto times = std::make_shared<std::vector<double>>(rows);
    for (std::size_t i = 0; i < rows; ++i)
        (*times)[i] = firstTime + double(i) * timeStep;
    std::vector<std::shared_ptr<XYArray>> arrays;
    for (int k = 0; k < StripChartModel::variableCount; ++k) {
        auto a = std::make_shared<XYArray>(times, rows);
        for (std::size_t i = 0; i < rows; ++i)
            a->at(1, i) = double(k * 1000) + double(i);
        arrays.push_back(a);
    }
    return arrays;
}

TEST(StripChartModelStorage, DaysWithSharedTimesKeepTheirPointsAndTheirOrder) {
    struct Case {
        const char* name;
        double secondDayStart; // the first day runs from 100.0 in steps of 0.001
        bool ordered;
    };
    const Case cases[] = {
        {"second day after the first", 200.0, true},
        {"second day starting at the first's last time", 100.0 + 9999 * 0.001, true},
        {"clock set back at the day's start", 105.0, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        StripChartModel model;
        model.setMaxBufferSize(100000);
        const auto day1 = dayArrays(100.0, 10000, 0.001);
        const auto day2 = dayArrays(c.secondDayStart, 9000, 0.001);
        for (const auto& day : {day1, day2})
            for (int k = 0; k < StripChartModel::variableCount; ++k)
                model.addXYArray(k, *day[std::size_t(k)]);
        for (int k = 0; k < StripChartModel::variableCount; ++k) {
            ASSERT_EQ(model.pointCount(k), 19000u);
            EXPECT_EQ(model.isTimeOrdered(k), c.ordered);
            EXPECT_TRUE(model.sharesTimeColumn(0, k));
            for (std::size_t i : {0u, 8191u, 8192u, 9999u, 10000u, 16383u, 16384u, 18999u}) {
                const auto& day = i < 10000 ? day1 : day2;
                const std::size_t j = i < 10000 ? i : i - 10000;
                EXPECT_EQ(model.point(k, i).time, day[0]->x(j)) << k << " " << i;
                EXPECT_EQ(model.point(k, i).value, day[std::size_t(k)]->y(j)) << k << " " << i;
            }
            EXPECT_EQ(model.dataMax(k), double(k * 1000) + 9999.0);
        }
    }
}

} // namespace
} // namespace trendax
