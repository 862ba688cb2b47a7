#include "storage/textfile.h"

#include "storage/atomicfile.h"
#include "storage/filenames.h"

#include <QFile>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace trendax::textfile {

namespace {

// Code points of bytes 0x80 to 0x9F; the five undefined positions map to themselves.
constexpr std::array<char16_t, 32> high = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char encodeChar(char16_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF))
        return char(c);
    for (size_t i = 0; i < high.size(); ++i) {
        if (high[i] == c)
            return char(0x80 + i);
    }
    return '?';
}

// Makes a newly created file's name durable as well as its content.
void syncFolder(const QByteArray& file) {
    const qsizetype slash = file.lastIndexOf('/');
    const QByteArray folder = slash < 0 ? QByteArray(".") : slash == 0 ? "/" : file.left(slash);
    const int fd = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

// Reads a whole file from its start; false with errno set on failure.
bool readAll(int fd, QByteArray& bytes) {
    std::array<char, 65536> buffer;
    for (;;) {
        const ssize_t n = ::read(fd, buffer.data(), buffer.size());
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return false;
        if (n == 0)
            return true;
        bytes.append(buffer.data(), n);
    }
}

// The all-or-nothing append to a regular file that the caller could open for writing: its bytes
// and the line go to a temporary file with its permissions, synced, then renamed over it.
// Returns 0 or the error number; on failure the file is left as it was.
int replaceWithLineAdded(const QByteArray& name, const struct stat& before, QByteArrayView line) {
    QByteArray bytes;
    const int in = ::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (in < 0)
        return errno;
    bytes.reserve(qsizetype(before.st_size) + line.size());
    const bool read = readAll(in, bytes);
    const int readError = errno;
    ::close(in);
    if (!read)
        return readError;
    bytes.append(line);

    // The file keeps its permissions; the old one stays until the new one is whole on disk.
    AtomicFile file(QFile::decodeName(name));
    if (!file.open(QIODevice::WriteOnly))
        return file.error();
    if (file.write(bytes) != bytes.size() || !file.commit())
        return file.error() != 0 ? file.error() : EIO;
    syncFolder(name);
    return 0;
}

} // namespace

QString decode(QByteArrayView bytes) {
    // Windows-1252 is Latin-1 but for 0x80-0x9F: Qt's vectorised Latin-1 conversion does the
    // bulk, and the few characters of that range are put right afterwards.
    QString out = QString::fromLatin1(bytes.data(), bytes.size());
    QChar* dst = nullptr;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        if (b - 0x80u < 0x20u) {
            if (!dst)
                dst = out.data();
            dst[i] = QChar(high[b - 0x80]);
        }
    }
    return out;
}

QByteArray encode(QStringView text) {
    QByteArray out(text.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i)
        out[i] = encodeChar(text[i].unicode());
    return out;
}

QStringList splitLines(const QString& text) {
    QStringList lines = text.split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    for (QString& line : lines) {
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
    }
    return lines;
}

QStringList nonBlankLines(QByteArrayView bytes) {
    QStringList lines;
    forEachNonBlankLine(bytes, [&](QByteArrayView line) { lines.append(decode(line)); });
    return lines;
}

std::optional<QByteArray> readBytes(const QString& path) {
    QFile file(filenames::resolve(path));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

std::optional<QStringList> readLines(const QString& path) {
    const auto bytes = readBytes(path);
    if (!bytes)
        return std::nullopt;
    return splitLines(decode(*bytes));
}

std::optional<QString> readFirstLine(const QString& path) {
    QFile file(filenames::resolve(path));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QByteArray line = file.readLine(1 << 20);
    if (line.isEmpty())
        return std::nullopt;
    while (line.endsWith('\n') || line.endsWith('\r'))
        line.chop(1);
    return decode(line);
}

bool writeLines(const QString& path, const QStringList& lines) {
    QByteArray bytes;
    for (const QString& line : lines) {
        bytes += encode(line);
        bytes += "\r\n";
    }
    // A full disk leaves the old file as it was.
    AtomicFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

bool appendLine(const QString& path, const QString& line) {
    return appendLineOrError(path, line) == 0;
}

int appendLineOrError(const QString& path, const QString& line) {
    const QByteArray name = QFile::encodeName(filenames::resolve(path));
    const QByteArray bytes = encode(line) + "\r\n";

    bool created = false;
    // A symbolic link in the file's place is never written through: it may lead anywhere, out of
    // the program's folders too. The append fails instead, and the link's target is left alone.
    int fd = ::open(name.constData(), O_WRONLY | O_APPEND | O_CLOEXEC | O_NOFOLLOW);
    if (fd < 0 && errno == ENOENT) {
        fd = ::open(name.constData(), O_WRONLY | O_APPEND | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        created = fd >= 0;
    }
    if (fd < 0)
        return errno;

    struct stat before {};
    if (::fstat(fd, &before) != 0) {
        const int error = errno;
        ::close(fd);
        return error;
    }
    // A regular file gets its old bytes and the new line in a temporary file beside it, renamed
    // over it: the kernel may stop a process that is killed in the middle of a write of more than
    // a page, and a torn line would then stay in the file for good.
    if (S_ISREG(before.st_mode)) {
        const int error = replaceWithLineAdded(name, before, bytes);
        ::close(fd);
        if (error != 0 && created)
            ::unlink(name.constData());
        return error;
    }
    if (writeAllBytes(fd, bytes) && ::fsync(fd) == 0) {
        ::close(fd); // the line is on disk already; a late close error loses nothing
        if (created)
            syncFolder(name);
        return 0;
    }
    const int error = errno;
    if (created) {
        ::close(fd);
        ::unlink(name.constData());
    } else {
        // Cut a partly written line off so that the file holds exactly what it held before.
        if (S_ISREG(before.st_mode)) {
            while (::ftruncate(fd, before.st_size) != 0 && errno == EINTR) {
            }
            ::fsync(fd);
        }
        ::close(fd);
    }
    return error;
}

} // namespace trendax::textfile
