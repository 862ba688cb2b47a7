#include "chart/chartview.h"

#include "storage/numbers.h"

#include <cmath>
#include <limits>

namespace trendax::chartview {

std::optional<int> bufferSizeAnswer(QStringView answer) {
    const std::optional<double> value = numbers::parse(answer);
    if (!value)
        return std::nullopt;
    const double rounded = std::nearbyint(*value); // the default rounding mode: half to even
    if (!(rounded >= 1.0) || rounded > double(std::numeric_limits<qint32>::max()))
        return std::nullopt;
    return int(rounded);
}

std::optional<int> quillItemForRow(int row) {
    if (row < firstQuillRow || row >= firstQuillRow + quillItemCount)
        return std::nullopt;
    return row - firstQuillRow + 1;
}

QSize initialWindowSize(QSize available, QSize minimum) {
    const auto share = [](int length) { return int(std::lround(length * 0.8)); };
    return {std::max(minimum.width(), share(available.width())),
            std::max(minimum.height(), share(available.height()))};
}

} // namespace trendax::chartview
