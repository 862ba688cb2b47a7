// What the data log reader holds while it reads one long line. This binary counts every byte
// taken through operator new (all of the reader's own memory), so it is a test executable of
// its own: the count must not disturb the other tests.
#include "loading/datalog.h"

#include <QByteArray>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <new>

namespace {

std::atomic<std::size_t> heldBytes{0};
std::atomic<std::size_t> peakBytes{0};

// Each block carries its size in front, aligned as operator new promises.
constexpr std::size_t header = __STDCPP_DEFAULT_NEW_ALIGNMENT__;

void* allocate(std::size_t n) {
    auto* block = static_cast<unsigned char*>(std::malloc(n + header));
    if (!block)
        throw std::bad_alloc();
    std::memcpy(block, &n, sizeof n);
    const std::size_t now = heldBytes += n;
    std::size_t peak = peakBytes.load();
    while (now > peak && !peakBytes.compare_exchange_weak(peak, now)) {
    }
    return block + header;
}

void release(void* p) noexcept {
    if (!p)
        return;
    auto* block = static_cast<unsigned char*>(p) - header;
    std::size_t n;
    std::memcpy(&n, block, sizeof n);
    heldBytes -= n;
    std::free(block);
}

void* allocateNoThrow(std::size_t n) noexcept {
    try {
        return allocate(n);
    } catch (...) {
        return nullptr;
    }
}

} // namespace

void* operator new(std::size_t n) {
    return allocate(n);
}
void* operator new[](std::size_t n) {
    return allocate(n);
}
void* operator new(std::size_t n, const std::nothrow_t&) noexcept {
    return allocateNoThrow(n);
}
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept {
    return allocateNoThrow(n);
}
void operator delete(void* p) noexcept {
    release(p);
}
void operator delete[](void* p) noexcept {
    release(p);
}
void operator delete(void* p, std::size_t) noexcept {
    release(p);
}
void operator delete[](void* p, std::size_t) noexcept {
    release(p);
}
void operator delete(void* p, const std::nothrow_t&) noexcept {
    release(p);
}
void operator delete[](void* p, const std::nothrow_t&) noexcept {
    release(p);
}

namespace trendax {
namespace {

// The peak of what parsing the bytes took on top of what was held before.
std::size_t peakWhileParsing(const QByteArray& bytes, bool fast, DataLogResult& result) {
    LoadState state;
    DataLogOptions options;
    options.fastPath = fast;
    const std::size_t before = heldBytes.load();
    peakBytes = before;
    result = parseDataLog(bytes, state, options);
    return peakBytes.load() - before;
}

// One quote in a line of many short fields once made the reader keep a record of every field
// of the line, a dozen times the line's size (14 GB for a line of 1 GB). A row uses sixteen
// fields; the line's fields may take a few times the line, never more.
TEST(DataLogMemory, OneQuoteInALongLineKeepsItsFieldsWithinAFewTimesTheLine) {
    struct Line {
        const char* name;
        QByteArray bytes;
    };
    const QByteArray manyFields = QByteArray(",1").repeated(2'000'000);
    const Line lines[] = {
        {"quoted time", "AB12,03/15/12,\"00:00:01.00\",5" + manyFields + "\r\n"},
        {"quote far out", "AB12,03/15/12,00:00:01.00,5" + manyFields + ",\"x\"\r\n"},
        {"never closed", "AB12,03/15/12,00:00:01.00,5,\"" + manyFields + "\r\n"},
        {"doubled quotes", "AB12,03/15/12,00:00:01.00,5,\"" +
                               QByteArray("a\"\",").repeated(1'000'000) + "\"" + manyFields +
                               "\r\n"},
    };
    for (const Line& line : lines) {
        for (const bool fast : {true, false}) {
            SCOPED_TRACE(std::string(line.name) + (fast ? ", fast path" : ", general path"));
            DataLogResult result;
            const std::size_t peak = peakWhileParsing(line.bytes, fast, result);
            ASSERT_EQ(result.rowCount, 1);
            EXPECT_EQ(result.badRowCount, 0);
            EXPECT_LE(peak, 3 * std::size_t(line.bytes.size()));
        }
    }
}

} // namespace
} // namespace trendax
