#pragma once

#include "storage/environment.h"

#include <QMap>
#include <QStringList>

namespace trendax::test {

// An Environment for tests: a scratch application folder, a settable clock and user name, an
// in-memory settings store, and a record of the folders it was asked to open.
class ScriptedEnvironment : public Environment {
public:
    explicit ScriptedEnvironment(QString appFolder) : appFolder_(std::move(appFolder)) {}

    QString appFolder() const override { return appFolder_; }
    datetime::DateTime now() const override { return now_; }
    QString userName() const override { return userName_; }
    QString readSetting(const QString& section, const QString& key,
                        const QString& defaultValue) const override {
        return settings.value(section + '/' + key, defaultValue);
    }
    bool writeSetting(const QString& section, const QString& key, const QString& value) override {
        settings.insert(section + '/' + key, value);
        return true;
    }
    bool openFolder(const QString& path) override {
        openedFolders << path;
        return openFolderSucceeds_;
    }

    void setNow(datetime::DateTime t) { now_ = t; }
    void setUserName(QString name) { userName_ = std::move(name); }
    void setOpenFolderSucceeds(bool ok) { openFolderSucceeds_ = ok; }

    // "Section/Key" -> value.
    QMap<QString, QString> settings;
    QStringList openedFolders;

private:
    QString appFolder_;
    datetime::DateTime now_ = 46000.5; // 11/9/2025 12:00:00 PM
    QString userName_ = QStringLiteral("fieldtech");
    bool openFolderSucceeds_ = true;
};

} // namespace trendax::test
