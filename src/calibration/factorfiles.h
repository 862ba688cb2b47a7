#pragma once

#include <QByteArrayView>
#include <QString>
#include <optional>

// The site's calibration pair in two one-line files of the configuration folder: site + "scal.txt"
// holds the scale factor, site + "offs.txt" the offset. Shown value = raw x scale + offset.
namespace trendax {

QString scaleFilePath(const QString& appFolder, const QString& site);
QString offsetFilePath(const QString& appFolder, const QString& site);

// The factor in a file's bytes: its first line as a number with a period as decimal mark and
// blanks allowed; nullopt for an empty file or a line that is no number.
std::optional<double> factorFromBytes(QByteArrayView bytes);

// The site's scale factor, 1 when the file is missing or unreadable. ScaleFilePath is set to the
// file's path whatever happens; writers later write through it.
double ReadScale(const QString& appFolder, const QString& site, QString& ScaleFilePath);
// The site's offset, 0 when the file is missing or unreadable; sets OffsetFilePath.
double ReadOffset(const QString& appFolder, const QString& site, QString& OffsetFilePath);

// The one writer of new factors: the scale file, then the offset file, each one line replaced
// atomically. A failure stops it there silently (a failed scale file leaves the offset file
// alone). Returns whether both were written, that is whether the site is to be reloaded.
bool WriteFactors(const QString& ScaleFilePath, const QString& scaleText,
                  const QString& OffsetFilePath, const QString& offsetText);

} // namespace trendax
