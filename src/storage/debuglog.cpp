#include "storage/debuglog.h"

#include "storage/datetime.h"
#include "storage/environment.h"
#include "storage/textfile.h"

#include <QFile>

namespace trendax {

namespace {

bool writeTo(const QString& path, QIODevice::OpenMode mode, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(mode))
        return false;
    return file.write(bytes) == bytes.size();
}

} // namespace

DebugLog::DebugLog(const Environment& environment, QString path)
    : environment_(environment), path_(std::move(path)) {}

QByteArray DebugLog::line(const QString& message) const {
    return textfile::encode(datetime::formatGeneral(environment_.now()) + QStringLiteral(": \t") +
                            message) +
           "\r\n";
}

void DebugLog::DebugOutBegin() {
    if (!bbDebugOut)
        return;
    writeTo(path_, QIODevice::WriteOnly | QIODevice::Truncate,
            line(QStringLiteral("Begin Debug") + QString(21, QLatin1Char('.'))) + line(QString()));
}

void DebugLog::DebugOut(const QString& message) {
    if (!bbDebugOut)
        return;
    writeTo(path_, QIODevice::WriteOnly | QIODevice::Append, line(message));
}

} // namespace trendax
