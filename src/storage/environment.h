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

// Where the application folder lies. A program installed into a protected folder (a package in
// /usr/bin) cannot write next to its executable, so a per-user folder stands in for it there.
namespace appfolder {

// "Trendax2" in the per-user data folder: xdgDataHome when it is an absolute path, otherwise
// home + "/.local/share" (a relative value is invalid under the XDG rules and ignored).
QString perUserFolder(const QString& xdgDataHome, const QString& home);
// The same for this process's XDG_DATA_HOME and home.
QString perUserFolder();

// The executable's folder when it can be written, the per-user folder otherwise.
QString choose(const QString& exeFolder, bool exeFolderWritable, const QString& xdgDataHome,
               const QString& home);

// Whether a new file can be created in the folder. It tries one rather than reading permission
// bits, so a read-only mount counts as not writable also for root.
bool isWritable(const QString& folder);

// The application folder for an executable in exeFolder. When the per-user folder stands in, it
// is created with its home folder "logfiles" and configuration folder "cnffiles".
QString locate(const QString& exeFolder, const QString& xdgDataHome, const QString& home);

} // namespace appfolder

// The real machine. Settings live in the per-user INI store of application "Trendax2".
class SystemEnvironment : public Environment {
public:
    // appFolder empty: the executable's folder, or the per-user folder when that is not writable
    // (appfolder::locate). Otherwise the given folder (used by tools and benchmarks).
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
