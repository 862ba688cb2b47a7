#pragma once

#include "storage/packedcolor.h"

#include <QColor>

// Packed colours and the toolkit's colours; for windows only (the core has no QColor).
namespace trendax {

inline QColor toQColor(PackedColor c) {
    return QColor(int(c & 0xFF), int((c >> 8) & 0xFF), int((c >> 16) & 0xFF));
}

inline PackedColor toPackedColor(const QColor& c) {
    return packedColor(c.red(), c.green(), c.blue());
}

} // namespace trendax
