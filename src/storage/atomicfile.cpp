#include "storage/atomicfile.h"

#include "storage/filenames.h"

#include <QFile>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace trendax {

bool writeAllBytes(int fd, QByteArrayView bytes) {
    const char* p = bytes.data();
    qsizetype left = bytes.size();
    while (left > 0) {
        const ssize_t n = ::write(fd, p, size_t(left));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            if (n == 0)
                errno = EIO;
            return false;
        }
        p += n;
        left -= n;
    }
    return true;
}

AtomicFile::AtomicFile(const QString& path)
    : path_(path), target_(QFile::encodeName(filenames::resolve(path))) {}

AtomicFile::~AtomicFile() {
    cancel();
}

bool AtomicFile::open(OpenMode mode) {
    if (fd_ >= 0 || !(mode & WriteOnly) || (mode & ReadOnly)) {
        fail(EINVAL);
        return false;
    }
    // An existing file keeps its permissions. A symbolic link in its place is replaced by a
    // regular file, never written through.
    unsigned permissions = filenames::newFilePermissions();
    struct stat st {};
    if (::lstat(target_.constData(), &st) == 0) {
        if (S_ISDIR(st.st_mode)) {
            fail(EISDIR);
            return false;
        }
        if (S_ISREG(st.st_mode))
            permissions = st.st_mode & 07777;
    }
    temporary_ = target_ + ".XXXXXX";
    fd_ = ::mkostemp(temporary_.data(), O_CLOEXEC);
    if (fd_ < 0) {
        fail(errno);
        temporary_.clear();
        return false;
    }
    if (::fchmod(fd_, mode_t(permissions)) != 0) {
        fail(errno);
        removeTemporary();
        return false;
    }
    error_ = 0;
    return QIODevice::open(mode | Unbuffered);
}

qint64 AtomicFile::readData(char*, qint64) {
    return -1;
}

qint64 AtomicFile::writeData(const char* data, qint64 size) {
    if (fd_ < 0 || error_ != 0)
        return -1;
    if (!writeAllBytes(fd_, QByteArrayView(data, size))) {
        fail(errno);
        return -1;
    }
    return size;
}

bool AtomicFile::commit() {
    if (fd_ < 0) {
        if (error_ == 0)
            fail(EBADF);
        return false;
    }
    QIODevice::close();
    bool ok = error_ == 0;
    if (ok && ::fsync(fd_) != 0 && errno != EINVAL) {
        fail(errno);
        ok = false;
    }
    if (::close(fd_) != 0 && ok) {
        fail(errno);
        ok = false;
    }
    fd_ = -1;
    if (ok && ::rename(temporary_.constData(), target_.constData()) != 0) {
        fail(errno);
        ok = false;
    }
    if (!ok) {
        ::unlink(temporary_.constData());
        temporary_.clear();
        return false;
    }
    temporary_.clear();
    return true;
}

void AtomicFile::cancel() {
    if (isOpen())
        QIODevice::close();
    removeTemporary();
}

void AtomicFile::removeTemporary() {
    if (fd_ >= 0) {
        ::close(fd_);
        fd_ = -1;
    }
    if (!temporary_.isEmpty()) {
        ::unlink(temporary_.constData());
        temporary_.clear();
    }
}

void AtomicFile::fail(int error) {
    if (error_ == 0)
        error_ = error != 0 ? error : EIO;
    setErrorString(errorText());
}

namespace {

QString cannotWrite(const QString& path, const QString& reason) {
    return QStringLiteral("Cannot write %1: %2").arg(path, reason);
}

} // namespace

QString writeWhole(const QString& path, const std::function<bool(QIODevice& out)>& write) {
    AtomicFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return cannotWrite(path, file.errorText());
    if (!write(file)) {
        const QString reason =
            file.error() != 0 ? file.errorText() : QStringLiteral("the file could not be made");
        file.cancel();
        return cannotWrite(path, reason);
    }
    if (!file.commit())
        return cannotWrite(path, file.errorText());
    return {};
}

QString AtomicFile::errorText() const {
    return error_ == 0 ? QString() : QString::fromLocal8Bit(std::strerror(error_));
}

} // namespace trendax
