#include "storage/filenames.h"

#include <QDir>
#include <QFileInfo>

namespace trendax::filenames {

QString resolve(const QString& path) {
    const QFileInfo info(path);
    if (info.exists())
        return path;
    const QDir folder = info.dir();
    const QString wanted = info.fileName();
    const QStringList entries = folder.entryList(QDir::Files | QDir::Dirs | QDir::Hidden |
                                                 QDir::System | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        if (entry.compare(wanted, Qt::CaseInsensitive) == 0)
            return folder.filePath(entry);
    }
    return path;
}

QString join(const QString& folder, const QString& name) {
    if (folder.endsWith(QLatin1Char('/')))
        return folder + name;
    return folder + QLatin1Char('/') + name;
}

} // namespace trendax::filenames
