#include "calibration/factorfiles.h"

#include "storage/filenames.h"
#include "storage/homefolder.h"
#include "storage/numbers.h"
#include "storage/textfile.h"

#include <QFile>

namespace trendax {

namespace {

// Only the first line matters; a longer file is never read further than this.
constexpr qint64 firstLineLimit = 1 << 16;

std::optional<double> readFactor(const QString& path) {
    QFile file(filenames::resolve(path));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return factorFromBytes(file.readLine(firstLineLimit));
}

} // namespace

QString scaleFilePath(const QString& appFolder, const QString& site) {
    return filenames::join(homefolder::configFolder(appFolder), site + QStringLiteral("scal.txt"));
}

QString offsetFilePath(const QString& appFolder, const QString& site) {
    return filenames::join(homefolder::configFolder(appFolder), site + QStringLiteral("offs.txt"));
}

std::optional<double> factorFromBytes(QByteArrayView bytes) {
    qsizetype end = 0;
    while (end < bytes.size() && bytes[end] != '\n' && bytes[end] != '\r')
        ++end;
    if (end == 0)
        return std::nullopt;
    return numbers::parse(std::string_view(bytes.data(), size_t(end)));
}

double ReadScale(const QString& appFolder, const QString& site, QString& ScaleFilePath) {
    ScaleFilePath = scaleFilePath(appFolder, site);
    return readFactor(ScaleFilePath).value_or(1.0);
}

double ReadOffset(const QString& appFolder, const QString& site, QString& OffsetFilePath) {
    OffsetFilePath = offsetFilePath(appFolder, site);
    return readFactor(OffsetFilePath).value_or(0.0);
}

bool WriteFactors(const QString& ScaleFilePath, const QString& scaleText,
                  const QString& OffsetFilePath, const QString& offsetText) {
    if (ScaleFilePath.isEmpty() || !textfile::writeLines(ScaleFilePath, {scaleText}))
        return false;
    if (OffsetFilePath.isEmpty() || !textfile::writeLines(OffsetFilePath, {offsetText}))
        return false;
    return true;
}

} // namespace trendax
