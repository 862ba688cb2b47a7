// The colour text of the settings store under a fuzzer: any text gives no colour or a 24-bit
// colour number, and the decimal text the store is written with reads back as the same colour.
#include "chart/channellayouts.h"

#include <QString>
#include <cstdint>
#include <cstdlib>

using namespace trendax;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const auto colour = layouts::storedColor(text);
    if (!colour)
        return 0;
    if (*colour > 0xFFFFFFu || text == QLatin1String("?"))
        std::abort();
    if (layouts::storedColor(QString::number(*colour)) != colour)
        std::abort();
    if (packedColor(int(*colour & 0xFF), int((*colour >> 8) & 0xFF), int(*colour >> 16)) != *colour)
        std::abort();
    return 0;
}
