#pragma once

#include "storage/datetime.h"

#include <QString>

namespace trendax {

// What the program asks of the machine it runs on, behind one seam so that tests run against a
// scratch folder, a fixed clock and an in-memory settings store, never the real user's.
class Environment {
public:
    virtual ~Environment() = default;

    // The application folder: the executable's folder, or the per-user data folder standing in
    // for it when that folder cannot be written. No trailing separator.
    virtual QString appFolder() const = 0;
    // Local time now.
    virtual datetime::DateTime now() const = 0;
    // The logged-on user's name.
    virtual QString userName() const = 0;
    // Per-user settings store: a text under section and key, or the default when absent.
    virtual QString readSetting(const QString& section, const QString& key,
                                const QString& defaultValue) const = 0;
    virtual bool writeSetting(const QString& section, const QString& key, const QString& value) = 0;
    // Opens a folder in the desktop's file manager without waiting; false if it could not start.
    virtual bool openFolder(const QString& path) = 0;
};

// The real machine. Settings live in the per-user INI store of application "Trendax2".
class SystemEnvironment : public Environment {
public:
    // appFolder empty: the executable's folder, or ~/.local/share/Trendax2 when that is not
    // writable. Otherwise the given folder (used by tools and benchmarks).
    explicit SystemEnvironment(QString appFolder = {});

    QString appFolder() const override { return appFolder_; }
    datetime::DateTime now() const override;
    QString userName() const override;
    QString readSetting(const QString& section, const QString& key,
                        const QString& defaultValue) const override;
    bool writeSetting(const QString& section, const QString& key, const QString& value) override;
    bool openFolder(const QString& path) override;

private:
    QString appFolder_;
};

} // namespace trendax
