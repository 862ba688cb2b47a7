#pragma once

#include <QString>
#include <vector>

namespace trendax {

// A tic of a track's Y axis. The position is the fraction of the band's height from its bottom
// (0 at TrackYMin, 1 at TrackYMax); a tic whose label would collide with an end label keeps its
// grid line and mark but has no label.
struct ValueTick {
    double value = 0.0;
    double position = 0.0;
    QString label;
    bool end = false; // one of the two end labels (or the single value of a flat track)
};

// Round step (1, 2 or 5 times a power of ten) that gives at most maxTicks steps over the range;
// 0 when the range is empty, not finite, or too narrow for its values to tell apart.
double valueTickStep(double low, double high, int maxTicks);

// Label of an inner tic: no more decimals than the step needs, never "-0".
QString valueTickLabel(double value, double step);

// The tics of a band `height` pixels high whose labels are `labelHeight` pixels high: the end
// labels at bottom (TrackYMin) and top (TrackYMax) as they are, then inner tics at round values
// between them, about two label heights apart. A range of a single value shows that value once,
// in the middle; an inverted range runs downwards; ends that are not finite get no label and
// the range no inner tics.
std::vector<ValueTick> valueTicks(double bottom, double top, double height, double labelHeight);

} // namespace trendax
