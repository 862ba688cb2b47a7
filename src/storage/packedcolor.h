#pragma once

#include <cstdint>

namespace trendax {

// A packed 24-bit colour R + 256*G + 65536*B, the form the settings store also uses.
using PackedColor = std::uint32_t;

constexpr PackedColor packedColor(int r, int g, int b) {
    return PackedColor(r & 0xFF) + 256u * PackedColor(g & 0xFF) + 65536u * PackedColor(b & 0xFF);
}

} // namespace trendax
