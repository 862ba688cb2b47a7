#include "storage/homefolder.h"

#include "storage/environment.h"
#include "storage/filenames.h"
#include "storage/textfile.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

namespace trendax {

namespace homefolder {

QString homeFolder(const QString& appFolder) {
    return appFolder + QStringLiteral("/logfiles");
}

QString configFolder(const QString& appFolder) {
    return appFolder + QStringLiteral("/cnffiles");
}

QString redirectedHomeFolder() {
    return homeFolder(appfolder::perUserFolder());
}

bool isOwnTemporary(QStringView name) {
    // The six characters are those of mkstemp and of the earlier QSaveFile writer alike.
    static const QRegularExpression pattern(
        QStringLiteral(
            "^(\\.trendax-copy-|(.{4}(scal|offs)\\.txt|schema\\.ini|.{4}userevents\\.txt)\\.)"
            "[A-Za-z0-9]{6}$"),
        QRegularExpression::CaseInsensitiveOption);
    return pattern.match(name.toString()).hasMatch();
}

QStringList removeStaleTemporaries(const QString& folder) {
    constexpr qint64 staleAfterSeconds = 5 * 60;
    QStringList removed;
    if (folder.isEmpty())
        return removed;
    const QDir dir(folder);
    const QDateTime now = QDateTime::currentDateTime();
    for (const QFileInfo& file : dir.entryInfoList(QDir::Files | QDir::Hidden | QDir::System)) {
        if (!isOwnTemporary(file.fileName()) || file.isSymLink())
            continue;
        if (file.lastModified().secsTo(now) < staleAfterSeconds)
            continue;
        if (QFile::remove(file.filePath()))
            removed << file.fileName();
    }
    return removed;
}

} // namespace homefolder

QString CurrentUserName(const Environment& environment) {
    return environment.userName().left(127);
}

QStringList schemaIniLines(const QString& fileName) {
    return {QLatin1Char('[') + fileName + QLatin1Char(']'), QStringLiteral("Format=CSVDelimited"),
            QStringLiteral("CharacterSet=ANSI"), QStringLiteral("DecimalSymbol=.")};
}

void WriteSchemaIni(const QString& appFolder, const QString& fileName) {
    const QString path =
        filenames::join(homefolder::homeFolder(appFolder), QStringLiteral("Schema.ini"));
    textfile::writeLines(path, schemaIniLines(fileName));
}

ShowHomeFolderResult ShowHomeFolder(Environment& environment, const QString& redirectedFolder) {
    const QFileInfo redirected(redirectedFolder);
    const QString folder = (!redirectedFolder.isEmpty() && redirected.isDir())
                               ? redirectedFolder
                               : homefolder::homeFolder(environment.appFolder());
    const bool opened = environment.openFolder(folder);
    return {folder, opened, QString::fromLatin1(unableToDetermineWorkingFolder)};
}

} // namespace trendax
