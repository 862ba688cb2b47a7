#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <thread>
#include <vector>

namespace trendax {

// The memory of the chart's point storage: fixed blocks of 64 KiB carved out of 2 MiB-aligned
// regions that the kernel is asked to back with huge pages, and kept for reuse when the chart
// lets them go. A month of points is some 350 MB; taken from the system page by page, faulting it
// in cost more than parsing the logs, and every reload paid it again. A region is faulted in once
// and a reload takes back the same blocks.
//
// Faulting memory in means the kernel zeroes it, which for a month costs as much as parsing it.
// prepare() has that done ahead on a helper thread, on the machine's other core, while the
// caller reads the next day; the helper only maps and faults in memory nobody holds yet.
//
// The pool never gives memory back to the system on its own: it holds what the largest load
// needed, like the C library's heap would. trim() returns regions none of whose blocks is in use.
class BlockPool {
public:
    static constexpr std::size_t blockBytes = 64 * 1024;
    static constexpr std::size_t hugePageBytes = 2 * 1024 * 1024;
    // Regions are mapped this many bytes at a time.
    static constexpr std::size_t regionBytes = 2 * hugePageBytes;

    // The pool of the process.
    static BlockPool& shared();

    BlockPool() = default;
    ~BlockPool();
    BlockPool(const BlockPool&) = delete;
    BlockPool& operator=(const BlockPool&) = delete;

    // A block of blockBytes, aligned to blockBytes, contents unspecified. Throws std::bad_alloc.
    void* allocate();
    // Takes back a block of this pool (null is ignored).
    void release(void* block) noexcept;
    // Unmaps every region none of whose blocks is in use (after waiting for the helper).
    void trim();

    // Asks for at least bytes of free blocks already faulted in, and returns at once; the helper
    // thread maps and faults in what is missing, a region at a time.
    void prepare(std::size_t bytes);
    // Waits until the helper has done what was asked of it.
    void waitPrepared();
    // Off: prepare() does nothing and every block is faulted in by whoever takes it.
    void setHelperEnabled(bool enabled);
    // Regions the helper has faulted in so far.
    std::size_t helperRegions() const;

    // Bytes mapped, bytes of those held by callers, and free bytes already faulted in.
    std::size_t mappedBytes() const;
    std::size_t usedBytes() const;
    std::size_t preparedBytes() const;

private:
    static char* mapAligned();
    void addRegion(char* region, bool faulted);
    void helperLoop();

    mutable std::mutex mutex_;
    std::condition_variable wake_;
    std::condition_variable idle_;
    std::vector<char*> regions_;
    std::vector<void*> free_;  // faulted in: released blocks and prepared regions
    std::vector<void*> fresh_; // never touched: the rest of regions mapped on demand
    std::size_t pending_ = 0;  // bytes the helper has still to prepare
    bool helperBusy_ = false;
    bool helperEnabled_ = true;
    std::size_t helperRegions_ = 0;
    bool stopping_ = false;
    std::thread helper_;
};

// Deleter of a block taken from the shared pool.
struct PooledBlockDeleter {
    void operator()(void* block) const noexcept { BlockPool::shared().release(block); }
};

} // namespace trendax
