#include "support/scriptedenvironment.h"

namespace trendax::test {

QString ScriptedEnvironment::readSetting(const QString& section, const QString& key,
                                         const QString& defaultValue) const {
    return settings.value(section + QLatin1Char('/') + key, defaultValue);
}

bool ScriptedEnvironment::writeSetting(const QString& section, const QString& key,
                                       const QString& value) {
    settings.insert(section + QLatin1Char('/') + key, value);
    return true;
}

bool ScriptedEnvironment::openFolder(const QString& path) {
    openedFolders << path;
    return openFolderSucceeds_;
}

} // namespace trendax::test
