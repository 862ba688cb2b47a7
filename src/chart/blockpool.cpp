#include "chart/blockpool.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <sys/mman.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#define TRENDAX_POISON(p, n) ASAN_POISON_MEMORY_REGION(p, n)
#define TRENDAX_UNPOISON(p, n) ASAN_UNPOISON_MEMORY_REGION(p, n)
#else
#define TRENDAX_POISON(p, n) ((void)(p), (void)(n))
#define TRENDAX_UNPOISON(p, n) ((void)(p), (void)(n))
#endif

namespace trendax {

namespace {

constexpr std::size_t blocksPerRegion = BlockPool::regionBytes / BlockPool::blockBytes;

} // namespace

BlockPool& BlockPool::shared() {
    // Never destroyed: blocks may still be released by statics that outlive it.
    static BlockPool* pool = new BlockPool;
    return *pool;
}

BlockPool::~BlockPool() {
    {
        std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    wake_.notify_all();
    if (helper_.joinable())
        helper_.join();
    for (char* region : regions_) {
        TRENDAX_UNPOISON(region, regionBytes);
        munmap(region, regionBytes);
    }
}

char* BlockPool::mapAligned() {
    // Over-map by one huge page and cut the ends off, which leaves a region aligned to it.
    const std::size_t length = regionBytes + hugePageBytes;
    void* mapped =
        mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED)
        throw std::bad_alloc();
    auto* raw = static_cast<char*>(mapped);
    const auto address = reinterpret_cast<std::uintptr_t>(raw);
    char* region = raw + (hugePageBytes - address % hugePageBytes) % hugePageBytes;
    if (region > raw)
        munmap(raw, std::size_t(region - raw));
    if (char* end = region + regionBytes; end < raw + length)
        munmap(end, std::size_t(raw + length - end));
#if defined(MADV_HUGEPAGE)
    // Advice only: without transparent huge pages the region still works with small pages.
    madvise(region, regionBytes, MADV_HUGEPAGE);
#endif
    return region;
}

void BlockPool::addRegion(char* region, bool faulted) {
    TRENDAX_POISON(region, regionBytes);
    regions_.push_back(region);
    // Handed out from the region's start, so that a part-used region stays dense.
    std::vector<void*>& list = faulted ? free_ : fresh_;
    for (std::size_t b = blocksPerRegion; b-- > 0;)
        list.push_back(region + b * blockBytes);
}

void* BlockPool::allocate() {
    std::lock_guard lock(mutex_);
    if (free_.empty() && fresh_.empty())
        addRegion(mapAligned(), false);
    std::vector<void*>& list = free_.empty() ? fresh_ : free_;
    void* block = list.back();
    list.pop_back();
    TRENDAX_UNPOISON(block, blockBytes);
    return block;
}

void BlockPool::release(void* block) noexcept {
    if (!block)
        return;
    TRENDAX_POISON(block, blockBytes);
    std::lock_guard lock(mutex_);
    free_.push_back(block);
}

void BlockPool::prepare(std::size_t bytes) {
    {
        std::lock_guard lock(mutex_);
        const std::size_t ready = free_.size() * blockBytes + pending_;
        if (ready >= bytes || stopping_ || !helperEnabled_)
            return;
        pending_ += bytes - ready;
        if (!helper_.joinable())
            helper_ = std::thread([this] { helperLoop(); });
    }
    wake_.notify_one();
}

void BlockPool::helperLoop() {
    std::unique_lock lock(mutex_);
    for (;;) {
        wake_.wait(lock, [&] { return stopping_ || pending_ > 0; });
        if (stopping_)
            return;
        pending_ = pending_ > regionBytes ? pending_ - regionBytes : 0;
        helperBusy_ = true;
        lock.unlock();
        char* region = nullptr;
        try {
            region = mapAligned();
            // The kernel zeroes the pages here, on this thread; older kernels get one write per
            // page instead.
            bool populated = false;
#if defined(MADV_POPULATE_WRITE)
            populated = madvise(region, regionBytes, MADV_POPULATE_WRITE) == 0;
#endif
            if (!populated) {
                for (std::size_t at = 0; at < regionBytes; at += 4096)
                    static_cast<volatile char*>(region)[at] = 0;
            }
        } catch (const std::bad_alloc&) {
            region = nullptr;
        }
        lock.lock();
        helperBusy_ = false;
        if (region) {
            addRegion(region, true);
            ++helperRegions_;
        } else
            pending_ = 0; // out of memory: the blocks are taken on demand, or not at all
        if (pending_ == 0)
            idle_.notify_all();
    }
}

void BlockPool::waitPrepared() {
    std::unique_lock lock(mutex_);
    idle_.wait(lock, [&] { return pending_ == 0 && !helperBusy_; });
}

void BlockPool::trim() {
    waitPrepared();
    std::lock_guard lock(mutex_);
    std::sort(regions_.begin(), regions_.end());
    auto regionOf = [&](const void* block) {
        const auto* p = static_cast<const char*>(block);
        return std::size_t(std::upper_bound(regions_.begin(), regions_.end(), p) -
                           regions_.begin()) -
               1;
    };
    std::vector<std::size_t> freeCount(regions_.size(), 0);
    for (const void* block : free_)
        ++freeCount[regionOf(block)];
    for (const void* block : fresh_)
        ++freeCount[regionOf(block)];
    std::vector<bool> unmapped(regions_.size(), false);
    std::vector<char*> kept;
    for (std::size_t r = 0; r < regions_.size(); ++r) {
        unmapped[r] = freeCount[r] == blocksPerRegion;
        if (unmapped[r]) {
            TRENDAX_UNPOISON(regions_[r], regionBytes);
            munmap(regions_[r], regionBytes);
        } else {
            kept.push_back(regions_[r]);
        }
    }
    std::erase_if(free_, [&](const void* block) { return unmapped[regionOf(block)]; });
    std::erase_if(fresh_, [&](const void* block) { return unmapped[regionOf(block)]; });
    regions_ = std::move(kept);
}

void BlockPool::setHelperEnabled(bool enabled) {
    std::lock_guard lock(mutex_);
    helperEnabled_ = enabled;
}

std::size_t BlockPool::helperRegions() const {
    std::lock_guard lock(mutex_);
    return helperRegions_;
}

std::size_t BlockPool::mappedBytes() const {
    std::lock_guard lock(mutex_);
    return regions_.size() * regionBytes;
}

std::size_t BlockPool::usedBytes() const {
    std::lock_guard lock(mutex_);
    return regions_.size() * regionBytes - (free_.size() + fresh_.size()) * blockBytes;
}

std::size_t BlockPool::preparedBytes() const {
    std::lock_guard lock(mutex_);
    return free_.size() * blockBytes;
}

} // namespace trendax
