#include "storage/programtitle.h"

#include "version.h"

namespace trendax {

QString programTitle() {
    return QStringLiteral("Trendax2");
}

QString mainWindowCaption() {
    return QStringLiteral("Trendax 2 - V%1.%2.%3")
        .arg(version::major)
        .arg(version::minor)
        .arg(version::revision);
}

} // namespace trendax
