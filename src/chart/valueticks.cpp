#include "chart/valueticks.h"

#include <algorithm>
#include <cmath>

namespace trendax {

namespace {

// Inner labels stay clear of the end labels by this many label heights: an end label sits
// inside the band, a whole label height from its edge, and an inner one is centred on its tic.
constexpr double endClearance = 1.5;
// Never more tics than this, whatever the band's height.
constexpr int tickLimit = 50;

// The ends show TrackYMin and TrackYMax as they are, in six significant digits; a value that is
// only rounding noise next to the range shows as 0.
QString endLabel(double value, double range) {
    if (std::isfinite(range) && std::abs(value) < 1e-9 * std::abs(range))
        value = 0.0;
    return QString::number(value, 'g', 6);
}

} // namespace

double valueTickStep(double low, double high, int maxTicks) {
    if (low > high)
        std::swap(low, high);
    const double range = high - low;
    if (!std::isfinite(range) || !(range > 0.0) || maxTicks < 1)
        return 0.0;
    // Values that differ only in their last few digits cannot be labelled apart.
    if (range < 1e-12 * std::max(std::abs(low), std::abs(high)))
        return 0.0;
    const double rough = range / maxTicks;
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    if (!(power > 0.0) || !std::isfinite(power))
        return 0.0;
    for (const double m : {1.0, 2.0, 5.0})
        if (m * power >= rough * (1.0 - 1e-9))
            return m * power;
    return 10.0 * power;
}

QString valueTickLabel(double value, double step) {
    if (!(step > 0.0) || !std::isfinite(step))
        return QString::number(value, 'g', 6);
    // The small epsilon keeps 0.1, which is a hair below a tenth, at exponent -1.
    const int exponent = int(std::floor(std::log10(step) + 1e-9));
    if (std::abs(value) < step * 1e-6)
        value = 0.0; // no "-0" and no 1e-17 where the tics cross zero
    const double magnitude = std::abs(value);
    if (exponent >= -6 && exponent <= 5 && magnitude < 1e9)
        return QString::number(value, 'f', std::max(0, -exponent));
    // Very large or very small numbers in exponent form, with the digits the step needs.
    const int leading = int(std::floor(std::log10(std::max(magnitude, step))));
    return QString::number(value, 'g', std::clamp(leading - exponent + 1, 1, 17));
}

std::vector<ValueTick> valueTicks(double bottom, double top, double height, double labelHeight) {
    std::vector<ValueTick> ticks;
    const bool bottomFinite = std::isfinite(bottom);
    const bool topFinite = std::isfinite(top);
    if (bottomFinite && topFinite && bottom == top) {
        ticks.push_back({bottom, 0.5, endLabel(bottom, 0.0), true});
        return ticks;
    }
    const double range = top - bottom;
    if (bottomFinite)
        ticks.push_back({bottom, 0.0, endLabel(bottom, range), true});
    if (topFinite)
        ticks.push_back({top, 1.0, endLabel(top, range), true});
    if (!bottomFinite || !topFinite || !std::isfinite(range) || !(height > 0.0))
        return ticks;

    labelHeight = std::max(labelHeight, 1.0);
    const int maxTicks = std::clamp(int(height / (2.0 * labelHeight)), 1, tickLimit);
    const double step = valueTickStep(bottom, top, maxTicks);
    if (step == 0.0)
        return ticks;
    const double first = std::ceil(std::min(bottom, top) / step);
    const double last = std::floor(std::max(bottom, top) / step);
    for (double k = first; k <= last && ticks.size() < tickLimit + 2; k += 1.0) {
        const double value = k * step;
        const double position = (value - bottom) / range;
        const double fromEnd = std::min(position, 1.0 - position) * height;
        if (fromEnd < 0.5)
            continue; // on an end, which is labelled already
        QString label;
        if (fromEnd >= endClearance * labelHeight)
            label = valueTickLabel(value, step);
        ticks.push_back({value, position, label, false});
    }
    return ticks;
}

} // namespace trendax
