#pragma once

#include <cmath>

// Lengths on windows are laid out in twips, 1440 to the inch.
namespace trendax::twips {

inline constexpr double perInch = 1440.0;

// Twips to pixels at a resolution in dots per inch, rounded to the nearest pixel.
inline int toPixels(double twips, double dpi) {
    return int(std::lround(twips * dpi / perInch));
}

inline double fromPixels(int pixels, double dpi) {
    return pixels * perInch / dpi;
}

} // namespace trendax::twips
