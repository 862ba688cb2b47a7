#include "storage/environment.h"

#include "storage/homefolder.h"
#include "storage/programtitle.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QSettings>
#include <QTemporaryFile>

#include <pwd.h>
#include <unistd.h>

namespace trendax {

namespace appfolder {

QString perUserFolder(const QString& xdgDataHome, const QString& home) {
    const QString dataFolder =
        QDir::isAbsolutePath(xdgDataHome) ? xdgDataHome : home + QStringLiteral("/.local/share");
    return QDir::cleanPath(dataFolder + QLatin1Char('/') + programTitle());
}

QString perUserFolder() {
    return perUserFolder(qEnvironmentVariable("XDG_DATA_HOME"), QDir::homePath());
}

QString choose(const QString& exeFolder, bool exeFolderWritable, const QString& xdgDataHome,
               const QString& home) {
    if (exeFolderWritable)
        return QDir::cleanPath(exeFolder);
    return perUserFolder(xdgDataHome, home);
}

bool isWritable(const QString& folder) {
    if (folder.isEmpty())
        return false;
    QTemporaryFile probe(folder + QStringLiteral("/.trendax-write-probe-XXXXXX"));
    return probe.open();
}

QString locate(const QString& exeFolder, const QString& xdgDataHome, const QString& home) {
    const bool writable = isWritable(exeFolder);
    const QString folder = choose(exeFolder, writable, xdgDataHome, home);
    if (!writable) {
        // Failures surface later, where the folders are used; start-up goes on regardless.
        QDir().mkpath(homefolder::homeFolder(folder));
        QDir().mkpath(homefolder::configFolder(folder));
    }
    return folder;
}

} // namespace appfolder

namespace {

QString defaultAppFolder() {
    return appfolder::locate(QCoreApplication::applicationDirPath(),
                             qEnvironmentVariable("XDG_DATA_HOME"), QDir::homePath());
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
