// The data log reader under a fuzzer: any bytes must parse without a crash, the fast path must
// give exactly what the general path gives, and the arrays must hold the good rows only.
#include "loading/datalog.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

using namespace trendax;

namespace {

void check(bool ok) {
    if (!ok)
        std::abort();
}

DataLogResult parse(const uint8_t* data, size_t size, bool fast, LoadState& state) {
    DataLogOptions options;
    std::size_t lines = 0;
    options.debugOut = [&lines](const QString&) { ++lines; };
    options.dumpTable = true;
    options.fastPath = fast;
    state.mScale = 2;
    state.mOffset = -1;
    return parseDataLog(QByteArrayView(reinterpret_cast<const char*>(data), qsizetype(size)), state,
                        options);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    LoadState fastState, generalState;
    const DataLogResult fast = parse(data, size, true, fastState);
    const DataLogResult general = parse(data, size, false, generalState);

    check(fast.rowCount == general.rowCount && fast.badRowCount == general.badRowCount);
    check(fastState.numChannels == generalState.numChannels);
    check(std::memcmp(&fastState.XMin, &generalState.XMin, sizeof(double)) == 0);
    check(std::memcmp(&fastState.XMax, &generalState.XMax, sizeof(double)) == 0);
    check(fast.channels[0] != nullptr);
    for (int k = 0; k < channelSlots; ++k) {
        check(bool(fast.channels[k]) == bool(general.channels[k]));
        if (!fast.channels[k])
            continue;
        const std::size_t n = fast.channels[k]->count();
        check(n == std::size_t(fast.rowCount - fast.badRowCount));
        check(general.channels[k]->count() == n);
        for (std::size_t i = 0; i < n; ++i) {
            for (int row = 0; row < 2; ++row) {
                const double u = fast.channels[k]->at(row, i), v = general.channels[k]->at(row, i);
                check(std::memcmp(&u, &v, sizeof u) == 0);
            }
        }
    }
    return 0;
}
