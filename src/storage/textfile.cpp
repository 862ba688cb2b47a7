#include "storage/textfile.h"

#include "storage/filenames.h"

#include <QFile>
#include <array>
#include <cerrno>
#include <cstdlib>
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

} // namespace

QString decode(QByteArrayView bytes) {
    QString out(bytes.size(), Qt::Uninitialized);
    QChar* dst = out.data();
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        dst[i] = (b >= 0x80 && b <= 0x9F) ? QChar(high[b - 0x80]) : QChar(b);
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
    const QByteArray target = QFile::encodeName(filenames::resolve(path));
    // An existing file keeps its permissions. A symbolic link in its place is replaced by a
    // regular file, never written through: a link in the configuration folder may point at
    // anything, and the program's files are its own.
    unsigned mode = filenames::newFilePermissions();
    struct stat st {};
    if (::lstat(target.constData(), &st) == 0 && S_ISREG(st.st_mode))
        mode = st.st_mode & 07777;

    // The bytes go to a temporary file beside the target, which is renamed over it only when
    // every write and the sync succeeded; a full disk leaves the old file as it was.
    QByteArray temporary = target + ".XXXXXX";
    const int fd = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0)
        return false;
    bool written = ::fchmod(fd, mode_t(mode)) == 0;
    for (qsizetype put = 0; written && put < bytes.size();) {
        const ssize_t n = ::write(fd, bytes.constData() + put, size_t(bytes.size() - put));
        if (n < 0 && errno == EINTR)
            continue;
        written = n > 0;
        put += n;
    }
    written = written && (::fsync(fd) == 0 || errno == EINVAL);
    written = ::close(fd) == 0 && written;
    if (!written || ::rename(temporary.constData(), target.constData()) != 0) {
        ::unlink(temporary.constData());
        return false;
    }
    return true;
}

bool appendLine(const QString& path, const QString& line) {
    QFile file(filenames::resolve(path));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
        return false;
    const QByteArray bytes = encode(line) + "\r\n";
    return file.write(bytes) == bytes.size() && file.flush();
}

} // namespace trendax::textfile
