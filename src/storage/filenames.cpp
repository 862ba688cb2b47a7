#include "storage/filenames.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <sys/stat.h>

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

unsigned newFilePermissions() {
    // Read from the process status where the kernel shows it, as setting the mask to read it
    // back would change it for a moment under any other thread.
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly)) {
        for (QByteArray line = status.readLine(); !line.isEmpty(); line = status.readLine()) {
            if (line.startsWith("Umask:")) {
                bool ok = false;
                const unsigned mask = line.mid(6).trimmed().toUInt(&ok, 8);
                if (ok)
                    return 0666u & ~mask;
            }
        }
    }
    const mode_t mask = ::umask(022);
    ::umask(mask);
    return 0666u & ~unsigned(mask);
}

bool lessByName(QStringView a, QStringView b) {
    const int c = a.compare(b, Qt::CaseInsensitive);
    return c != 0 ? c < 0 : a < b;
}

QString join(const QString& folder, const QString& name) {
    if (folder.endsWith(QLatin1Char('/')))
        return folder + name;
    return folder + QLatin1Char('/') + name;
}

} // namespace trendax::filenames
