#include "calibration/factorfiles.h"

#include "storage/filenames.h"
#include "storage/homefolder.h"
#include "storage/numbers.h"
#include "storage/textfile.h"

#include <QFile>

namespace trendax {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

// The whole first line counts, however long; only the file's first line is read. Blanks before
// the number are skipped and a run of blanks after it is kept as one, so memory stays bounded
// while "5", many blanks and "x" still reads as no number.
std::optional<double> readFactor(const QString& path) {
    constexpr qint64 chunkBytes = 1 << 16;
    constexpr qsizetype numberLimit = 1 << 16;
    QFile file(filenames::resolve(path));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QByteArray line;
    for (;;) {
        const QByteArray chunk = file.read(chunkBytes);
        if (chunk.isEmpty())
            break;
        qsizetype end = 0;
        while (end < chunk.size() && chunk[end] != '\n' && chunk[end] != '\r')
            ++end;
        qsizetype begin = 0;
        while (line.isEmpty() && begin < end && isBlank(chunk[begin]))
            ++begin;
        line.append(chunk.constData() + begin, end - begin);
        if (line.size() > numberLimit) {
            qsizetype kept = line.size();
            while (kept > 1 && isBlank(line[kept - 1]) && isBlank(line[kept - 2]))
                --kept;
            line.truncate(kept);
            if (line.size() > numberLimit)
                return std::nullopt; // no number is that long
        }
        if (end < chunk.size())
            break;
    }
    return factorFromBytes(line);
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
