#include "storage/environment.h"

#include "storage/programtitle.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryFile>

#include <pwd.h>
#include <unistd.h>

namespace trendax {

namespace {

bool folderIsWritable(const QString& folder) {
    QTemporaryFile probe(folder + QStringLiteral("/.trendax-write-probe-XXXXXX"));
    return probe.open();
}

QString defaultAppFolder() {
    const QString exeFolder = QCoreApplication::applicationDirPath();
    if (!exeFolder.isEmpty() && folderIsWritable(exeFolder))
        return exeFolder;
    // A system-wide install: the per-user data folder stands in for the protected one.
    QString userFolder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    userFolder += QStringLiteral("/Trendax2");
    QDir().mkpath(userFolder);
    return userFolder;
}

QSettings& store() {
    static QSettings settings(QSettings::IniFormat, QSettings::UserScope, programTitle(),
                              programTitle());
    return settings;
}

} // namespace

SystemEnvironment::SystemEnvironment(QString appFolder)
    : appFolder_(appFolder.isEmpty() ? defaultAppFolder() : QDir::cleanPath(appFolder)) {}

datetime::DateTime SystemEnvironment::now() const {
    const QDateTime t = QDateTime::currentDateTime();
    const QDate d = t.date();
    const QTime c = t.time();
    return *datetime::fromDate(d.year(), d.month(), d.day()) +
           (c.msecsSinceStartOfDay() / 1000.0) / datetime::secondsPerDay;
}

QString SystemEnvironment::userName() const {
    if (const passwd* pw = getpwuid(geteuid()); pw && pw->pw_name)
        return QString::fromLocal8Bit(pw->pw_name);
    return qEnvironmentVariable("USER");
}

QString SystemEnvironment::readSetting(const QString& section, const QString& key,
                                       const QString& defaultValue) const {
    return store().value(section + QLatin1Char('/') + key, defaultValue).toString();
}

bool SystemEnvironment::writeSetting(const QString& section, const QString& key,
                                     const QString& value) {
    store().setValue(section + QLatin1Char('/') + key, value);
    store().sync();
    return store().status() == QSettings::NoError;
}

bool SystemEnvironment::openFolder(const QString& path) {
    // An argument list, never a shell line: blanks, quotes and semicolons in the name are safe.
    return QProcess::startDetached(QStringLiteral("xdg-open"), {path});
}

} // namespace trendax
