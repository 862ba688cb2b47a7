#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace trendax::test {

// A folder nobody may write into, the superuser included where the test may mount: a tmpfs
// remounted read-only; elsewhere its permissions, which bind all but the superuser.
class ReadOnlyFolder {
public:
    explicit ReadOnlyFolder(const QString& folder) : path_(QFile::encodeName(folder)) {
        QDir().mkpath(folder);
        mounted_ = ::geteuid() == 0 && ::mount("tmpfs", path(), "tmpfs", 0, "size=1m") == 0;
    }
    ~ReadOnlyFolder() { mounted_ ? ::umount2(path(), MNT_DETACH) : ::chmod(path(), 0755); }
    ReadOnlyFolder(const ReadOnlyFolder&) = delete;
    ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;

    // Files put there before are kept; false when the folder cannot be sealed for this process.
    bool seal() {
        return mounted_ ? ::mount(nullptr, path(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0
                        : ::chmod(path(), 0555) == 0 && ::geteuid() != 0;
    }

private:
    const char* path() const { return path_.constData(); }
    QByteArray path_;
    bool mounted_ = false;
};

} // namespace trendax::test
