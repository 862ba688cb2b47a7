#pragma once

#include <QDir>
#include <QFile>
#include <QString>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <stdexcept>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

namespace trendax::test {

// A folder on a file system that runs out of space on request. As root it is a small tmpfs
// mounted on the folder (unmounted again by the destructor); where mounting is not allowed, the
// process's file size limit is lowered to nothing instead, which fails every write into a
// regular file (with SIGXFSZ ignored) until the destructor restores it.
class FullDisk {
public:
    // Creates the folder and mounts the file system on it; files put there before fill() are
    // written normally.
    explicit FullDisk(const QString& folder) : folder_(folder) {
        if (!QDir().mkpath(folder))
            throw std::runtime_error("cannot create the folder for the full disk");
        mounted_ =
            ::geteuid() == 0 && ::mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs",
                                        MS_NOSUID | MS_NODEV, "size=64k,mode=0755") == 0;
    }
    ~FullDisk() {
        if (limited_)
            ::setrlimit(RLIMIT_FSIZE, &saved_);
        if (mounted_)
            ::umount2(QFile::encodeName(folder_).constData(), MNT_DETACH);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

    // From now on writes into the folder fail for lack of space.
    void fill() {
        if (mounted_) {
            // Whole pages until the last write comes back short or fails for lack of space.
            const int fd = ::open(QFile::encodeName(folder_ + "/filler").constData(),
                                  O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
            const QByteArray block(4096, 'f');
            while (fd >= 0 && ::write(fd, block.constData(), size_t(block.size())) > 0) {
            }
            const int error = errno;
            if (fd < 0 || ::close(fd) != 0 || error != ENOSPC)
                throw std::runtime_error("the tmpfs did not run full");
            return;
        }
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &saved_);
        const rlimit none{0, saved_.rlim_max};
        if (::setrlimit(RLIMIT_FSIZE, &none) != 0)
            throw std::runtime_error("cannot lower the file size limit");
        limited_ = true;
    }

    // "tmpfs" or "RLIMIT_FSIZE", for the test's trace.
    const char* how() const { return mounted_ ? "tmpfs" : "RLIMIT_FSIZE"; }

private:
    QString folder_;
    bool mounted_ = false;
    bool limited_ = false;
    rlimit saved_{};
};

} // namespace trendax::test
