#include "opendlg/filecopy.h"

#include "storage/filenames.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace trendax::filecopy {

namespace {

Result failure(int error, const QString& step) {
    return {error == 0 ? EIO : error,
            step + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(error))};
}

// Creates a folder and its missing parents; 0 or the errno of the first mkdir that failed.
int makeFolder(const QByteArray& folder) {
    struct stat st {};
    if (::stat(folder.constData(), &st) == 0)
        return S_ISDIR(st.st_mode) ? 0 : ENOTDIR;
    const qsizetype slash = folder.lastIndexOf('/');
    if (slash > 0) {
        if (const int error = makeFolder(folder.left(slash)))
            return error;
    }
    if (::mkdir(folder.constData(), 0777) != 0 && errno != EEXIST)
        return errno;
    return 0;
}

// Closes a descriptor when it goes out of scope.
struct Descriptor {
    int fd = -1;
    ~Descriptor() {
        if (fd >= 0)
            ::close(fd);
    }
    int release() {
        const int result = ::close(fd);
        fd = -1;
        return result;
    }
};

} // namespace

Result copy(const QString& source, const QString& destination, const Progress& progress) {
    return copy(QFile::encodeName(source), destination, progress);
}

Result copy(const QByteArray& src, const QString& destination, const Progress& progress) {
    const QByteArray dst = QFile::encodeName(destination);
    const QByteArray folder = QFile::encodeName(QFileInfo(destination).absolutePath());

    Descriptor in;
    // Non-blocking, so that opening a pipe does not wait for a writer; it is refused below.
    in.fd = ::open(src.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (in.fd < 0)
        return failure(errno, QStringLiteral("cannot open the file"));
    struct stat st {};
    if (::fstat(in.fd, &st) != 0)
        return failure(errno, QStringLiteral("cannot read the file"));
    if (S_ISDIR(st.st_mode))
        return failure(EISDIR, QStringLiteral("cannot open the file"));
    // A device or a pipe could feed the copy for ever.
    if (!S_ISREG(st.st_mode))
        return failure(EINVAL, QStringLiteral("not a regular file"));

    if (const int error = makeFolder(folder))
        return failure(error, QStringLiteral("cannot create the destination folder"));

    QByteArray temporary = folder + "/.trendax-copy-XXXXXX";
    Descriptor out;
    out.fd = ::mkstemp(temporary.data());
    if (out.fd < 0)
        return failure(errno, QStringLiteral("cannot write in the destination folder"));
    // What a new file of the user's gets, and never more than the source allows.
    if (::fchmod(out.fd, mode_t(filenames::newFilePermissions() & st.st_mode & 0777)) != 0) {
        const int error = errno;
        ::unlink(temporary.constData());
        return failure(error, QStringLiteral("cannot write in the destination folder"));
    }

    const auto abandon = [&](int error, const QString& step) {
        const Result result = failure(error, step);
        ::unlink(temporary.constData());
        return result;
    };

    const qint64 total = st.st_size;
    qint64 done = 0;
    QByteArray buffer(256 * 1024, Qt::Uninitialized);
    for (;;) {
        const ssize_t got = ::read(in.fd, buffer.data(), size_t(buffer.size()));
        if (got < 0) {
            if (errno == EINTR)
                continue;
            return abandon(errno, QStringLiteral("cannot read the file"));
        }
        if (got == 0)
            break;
        for (ssize_t put = 0; put < got;) {
            const ssize_t n = ::write(out.fd, buffer.constData() + put, size_t(got - put));
            if (n < 0) {
                if (errno == EINTR)
                    continue;
                return abandon(errno, QStringLiteral("cannot write the copy"));
            }
            put += n;
        }
        done += got;
        if (progress)
            progress(done, total);
    }
    if (::fsync(out.fd) != 0 && errno != EINVAL)
        return abandon(errno, QStringLiteral("cannot write the copy"));
    if (out.release() != 0)
        return abandon(errno, QStringLiteral("cannot write the copy"));
    if (::rename(temporary.constData(), dst.constData()) != 0)
        return abandon(errno, QStringLiteral("cannot put the copy in place"));
    if (progress && total == 0)
        progress(0, 0);
    return {};
}

Result remove(const QByteArray& path) {
    if (::unlink(path.constData()) != 0)
        return failure(errno, QStringLiteral("cannot delete the file"));
    return {};
}

bool sameFile(const QByteArray& a, const QString& b) {
    struct stat sa {};
    struct stat sb {};
    if (::stat(a.constData(), &sa) != 0 || ::stat(QFile::encodeName(b).constData(), &sb) != 0)
        return false;
    return sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino;
}

} // namespace trendax::filecopy
