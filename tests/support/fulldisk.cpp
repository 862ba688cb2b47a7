#include "support/fulldisk.h"

#include <QDir>
#include <QFile>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <stdexcept>
#include <sys/mount.h>
#include <unistd.h>

namespace trendax::test {

FullDisk::FullDisk(const QString& folder) : folder_(folder) {
    if (!QDir().mkpath(folder))
        throw std::runtime_error("cannot create the folder for the full disk");
    const QByteArray target = QFile::encodeName(folder);
    mounted_ = ::geteuid() == 0 && ::mount("tmpfs", target.constData(), "tmpfs",
                                           MS_NOSUID | MS_NODEV, "size=64k,mode=0755") == 0;
}

FullDisk::~FullDisk() {
    if (limited_)
        ::setrlimit(RLIMIT_FSIZE, &saved_);
    if (mounted_)
        ::umount2(QFile::encodeName(folder_).constData(), MNT_DETACH);
}

void FullDisk::fill() {
    if (mounted_) {
        const QByteArray filler = QFile::encodeName(folder_ + QStringLiteral("/filler"));
        const int fd = ::open(filler.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd < 0)
            throw std::runtime_error("cannot create the filler file");
        const QByteArray block(4096, 'f');
        while (::write(fd, block.constData(), size_t(block.size())) > 0) {
        }
        // The last partial page: single bytes until nothing fits.
        while (::write(fd, "f", 1) > 0) {
        }
        const int error = errno;
        ::close(fd);
        if (error != ENOSPC)
            throw std::runtime_error("the tmpfs did not run full");
        return;
    }
    std::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &saved_);
    rlimit none = saved_;
    none.rlim_cur = 0;
    if (::setrlimit(RLIMIT_FSIZE, &none) != 0)
        throw std::runtime_error("cannot lower the file size limit");
    limited_ = true;
}

} // namespace trendax::test
