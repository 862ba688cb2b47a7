// The calibration factor reader under a fuzzer: any bytes give a finite factor or none.
#include "calibration/factorfiles.h"
#include "storage/numbers.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace trendax;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto* text = reinterpret_cast<const char*>(data);
    const auto factor = factorFromBytes(QByteArrayView(text, qsizetype(size)));
    if (factor && !std::isfinite(*factor))
        std::abort();
    const auto whole = numbers::parse(std::string_view(text, size));
    if (whole && !std::isfinite(*whole))
        std::abort();
    return 0;
}
