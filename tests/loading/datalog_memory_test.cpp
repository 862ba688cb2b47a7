// Counts every byte taken through operator new (all of the reader's own memory).
#include "loading/datalog.h"

#include <QByteArray>
#include <atomic>
#include <cstdlib>
#include <gtest/gtest.h>
#include <malloc.h>
#include <new>

namespace {

std::atomic<std::size_t> heldBytes{0};
std::atomic<std::size_t> peakBytes{0};

void* allocate(std::size_t n, bool nothrow = false) {
    void* p = std::malloc(n ? n : 1);
    if (!p && nothrow)
        return nullptr;
    if (!p)
        throw std::bad_alloc();
    const std::size_t now = heldBytes += malloc_usable_size(p);
    std::size_t peak = peakBytes.load();
    while (now > peak && !peakBytes.compare_exchange_weak(peak, now)) {
    }
    return p;
}

void release(void* p) noexcept {
    if (p)
        heldBytes -= malloc_usable_size(p);
    std::free(p);
}

} // namespace

// clang-format off
void* operator new(std::size_t n) { return allocate(n); }
void* operator new[](std::size_t n) { return allocate(n); }
void* operator new(std::size_t n, const std::nothrow_t&) noexcept { return allocate(n, true); }
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept { return allocate(n, true); }
void operator delete(void* p) noexcept { release(p); }
void operator delete[](void* p) noexcept { release(p); }
void operator delete(void* p, std::size_t) noexcept { release(p); }
void operator delete[](void* p, std::size_t) noexcept { release(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { release(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { release(p); }
// clang-format on

namespace trendax {
namespace {

// One quote in a line of many short fields once made the reader keep a dozen times the line.
TEST(DataLogMemory, OneQuoteInALongLineKeepsItsFieldsWithinAFewTimesTheLine) {
    const QByteArray manyFields = QByteArray(",1").repeated(2'000'000);
    const std::pair<const char*, QByteArray> lines[] = {
        {"quoted time", "AB12,03/15/12,\"00:00:01.00\",5" + manyFields + "\r\n"},
        {"never closed", "AB12,03/15/12,00:00:01.00,5,\"" + manyFields + "\r\n"},
    };
    for (const auto& [name, bytes] : lines) {
        for (const bool fast : {true, false}) {
            SCOPED_TRACE(std::string(name) + (fast ? ", fast path" : ", general path"));
            LoadState state;
            DataLogOptions options;
            options.fastPath = fast;
            const std::size_t before = heldBytes.load();
            peakBytes = before;
            const DataLogResult result = parseDataLog(bytes, state, options);
            EXPECT_LE(peakBytes.load() - before, 3 * std::size_t(bytes.size()));
            ASSERT_EQ(result.rowCount, 1);
            EXPECT_EQ(result.badRowCount, 0);
        }
    }
}

} // namespace
} // namespace trendax
