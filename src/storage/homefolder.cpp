#include "storage/homefolder.h"

#include "storage/environment.h"
#include "storage/filenames.h"
#include "storage/textfile.h"

#include <QFileInfo>

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
