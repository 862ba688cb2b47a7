#pragma once

#include "chart/blockpool.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <type_traits>
#include <vector>

namespace trendax {

// Values kept in fixed-size blocks. Growth allocates one block at a time and never moves what is
// stored, so a month of points does not pass through the transient double allocation of a
// growing std::vector. Whole blocks in front of an index can be released when old points are
// dropped; the remaining values keep their indices, which the summaries and shared time
// columns rely on.
//
// Blocks of exactly the pool's block size come from the shared BlockPool (huge pages, reused
// from load to load); other sizes from the heap.
template <class T, std::size_t BlockSize> class ChunkedArray {
    static_assert(BlockSize > 0 && (BlockSize & (BlockSize - 1)) == 0,
                  "block size must be a power of two");
    static constexpr bool pooled = sizeof(T) * BlockSize == BlockPool::blockBytes;
    static_assert(!pooled || std::is_trivially_copyable_v<T>,
                  "pooled blocks hold plain values only");

    // Frees a block the way it was taken.
    struct BlockDeleter {
        void operator()(T* block) const noexcept {
            if constexpr (pooled)
                BlockPool::shared().release(block);
            else
                delete[] block;
        }
    };
    using Block = std::unique_ptr<T[], BlockDeleter>;

    static Block newBlock() {
        if constexpr (pooled)
            return Block(static_cast<T*>(BlockPool::shared().allocate()));
        else
            return Block(new T[BlockSize]);
    }

public:
    static constexpr std::size_t blockSize = BlockSize;

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

    // Indices before firstLiveIndex() must not be read.
    const T& operator[](std::size_t i) const { return blocks_[i / BlockSize][i % BlockSize]; }
    T& operator[](std::size_t i) { return blocks_[i / BlockSize][i % BlockSize]; }

    // Calls f(pointer, count) for the contiguous runs that make up [begin, end).
    template <class F> void forEachRun(std::size_t begin, std::size_t end, F&& f) const {
        while (begin < end) {
            const std::size_t offset = begin % BlockSize;
            const std::size_t n = std::min(end - begin, BlockSize - offset);
            f(blocks_[begin / BlockSize].get() + offset, n);
            begin += n;
        }
    }

    void push_back(const T& value) {
        if (size_ % BlockSize == 0)
            blocks_.push_back(newBlock());
        blocks_.back()[size_ % BlockSize] = value;
        ++size_;
    }

    // Appends n values, a block's worth at a time.
    void append(const T* values, std::size_t n) {
        while (n > 0) {
            if (size_ % BlockSize == 0)
                blocks_.push_back(newBlock());
            const std::size_t offset = size_ % BlockSize;
            const std::size_t run = std::min(n, BlockSize - offset);
            std::copy_n(values, run, blocks_.back().get() + offset);
            values += run;
            size_ += run;
            n -= run;
        }
    }

    void clear() {
        blocks_.clear();
        blocks_.shrink_to_fit();
        size_ = 0;
        released_ = 0;
    }

    // Frees the blocks that lie entirely before index.
    void releaseBefore(std::size_t index) {
        const std::size_t upTo = std::min(index, size_) / BlockSize;
        for (std::size_t b = released_; b < upTo; ++b)
            blocks_[b].reset();
        released_ = std::max(released_, upTo);
    }

    std::size_t firstLiveIndex() const { return released_ * BlockSize; }

    // A copy of the first n values that keeps the same indices (released blocks stay released).
    ChunkedArray prefix(std::size_t n) const {
        ChunkedArray copy;
        n = std::min(n, size_);
        const std::size_t blocks = (n + BlockSize - 1) / BlockSize;
        copy.blocks_.reserve(blocks);
        for (std::size_t b = 0; b < blocks; ++b) {
            if (b < released_) {
                copy.blocks_.emplace_back();
                continue;
            }
            Block block = newBlock();
            const std::size_t used = std::min(BlockSize, n - b * BlockSize);
            std::copy_n(blocks_[b].get(), used, block.get());
            copy.blocks_.push_back(std::move(block));
        }
        copy.size_ = n;
        copy.released_ = std::min(released_, blocks);
        return copy;
    }

    // Heap bytes held: live blocks and the block table.
    std::size_t allocatedBytes() const {
        return (blocks_.size() - released_) * BlockSize * sizeof(T) +
               blocks_.capacity() * sizeof(Block);
    }

private:
    std::vector<Block> blocks_;
    std::size_t size_ = 0;
    std::size_t released_ = 0;
};

} // namespace trendax
