#include "opendlg/importer.h"

#include "opendlg/filecopy.h"
#include "storage/filenames.h"
#include "storage/textfile.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace trendax::import {

namespace {

bool endsWith(QStringView name, const char* suffix) {
    return name.endsWith(QLatin1String(suffix), Qt::CaseInsensitive);
}

} // namespace

bool endsLikeHistory(QStringView name) {
    return endsWith(name, ".HST") || endsWith(name, ".TXT");
}

bool readsAsNumber(QStringView text) {
    text = text.trimmed();
    if (!text.isEmpty() && (text.front() == QLatin1Char('+') || text.front() == QLatin1Char('-')))
        text = text.mid(1);
    int digits = 0;
    int points = 0;
    for (const QChar c : text) {
        if (c >= QLatin1Char('0') && c <= QLatin1Char('9'))
            ++digits;
        else if (c == QLatin1Char('.') && points == 0)
            ++points;
        else
            return false;
    }
    return digits > 0;
}

Kind classify(QStringView name, QStringView modifiedYear) {
    if (name.size() == 12 && endsWith(name, ".CSV"))
        return Kind::DataLog;
    if (endsWith(name, "SCAL.TXT") || endsWith(name, "OFFS.TXT"))
        return Kind::Calibration;
    if (endsLikeHistory(name) && readsAsNumber(name.mid(4, 2)) && readsAsNumber(name.mid(6, 2)) &&
        readsAsNumber(modifiedYear))
        return Kind::History;
    return Kind::Other;
}

std::optional<QString> dataLogYearOf(QByteArrayView head) {
    if (head.isEmpty())
        return std::nullopt;
    return textfile::decode(head.first(std::min<qsizetype>(head.size(), 13))).right(2);
}

std::optional<QString> DataLogYear(const QString& path) {
    return DataLogYear(QFile::encodeName(path));
}

std::optional<QString> DataLogYear(const QByteArray& nativePath) {
    // Non-blocking, so that a pipe put in the file's place cannot hang the import.
    const int fd = ::open(nativePath.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return std::nullopt;
    char head[13];
    ssize_t got = 0;
    while (got < ssize_t(sizeof head)) {
        const ssize_t n = ::read(fd, head + got, sizeof head - size_t(got));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        got += n;
    }
    ::close(fd);
    return dataLogYearOf(QByteArrayView(head, got));
}

std::optional<QString> FileModifiedYear(const QString& path) {
    return FileModifiedYear(QFile::encodeName(path));
}

std::optional<QString> FileModifiedYear(const QByteArray& nativePath) {
    struct stat st {};
    if (::stat(nativePath.constData(), &st) != 0)
        return std::nullopt;
    const QDateTime modified = QDateTime::fromSecsSinceEpoch(qint64(st.st_mtime));
    return QString::number(modified.date().year()).right(2);
}

bool yearFitsFileName(QStringView year) {
    for (const QChar c : year) {
        if (c.unicode() < 0x20 || c == QLatin1Char('/') || c == QLatin1Char('\\') ||
            c.unicode() == 0x7F)
            return false;
    }
    return !year.isEmpty();
}

QString dataLogName(QStringView name, QStringView year) {
    return name.left(8).toString() + year.toString() + QStringLiteral(".CSV");
}

QString historyName(QStringView name, QStringView year) {
    return name.left(8).toString() + year.toString() + QStringLiteral(".TXT");
}

// ---- The walk ----

namespace {

// The real path of a file, symbolic links resolved; empty when it cannot be resolved.
QByteArray realPath(const QByteArray& path) {
    char* real = ::realpath(path.constData(), nullptr);
    if (!real)
        return {};
    QByteArray result(real);
    std::free(real);
    return result;
}

// A name from the file system as text: UTF-8 when it is, otherwise Windows-1252, which reads
// every byte.
QString nameAsText(const QByteArray& name) {
    const QString utf8 = QFile::decodeName(name);
    return QFile::encodeName(utf8) == name ? utf8 : textfile::decode(name);
}

} // namespace

std::vector<SourceFile> listSource(const QString& folder) {
    std::vector<SourceFile> files;
    if (folder.isEmpty())
        return files;
    const QByteArray native = QFile::encodeName(folder);
    const QByteArray inside = realPath(native) + '/';
    DIR* dir = ::opendir(native.constData());
    if (!dir)
        return files;
    while (const dirent* entry = ::readdir(dir)) {
        const QByteArray name(entry->d_name);
        if (name.startsWith('.'))
            continue;
        const QByteArray path = native + '/' + name;
        struct stat st {};
        if (::lstat(path.constData(), &st) != 0)
            continue;
        bool copyable = S_ISREG(st.st_mode);
        if (S_ISLNK(st.st_mode)) {
            struct stat target {};
            const bool resolves = ::stat(path.constData(), &target) == 0;
            if (resolves && S_ISDIR(target.st_mode))
                continue;
            copyable = resolves && S_ISREG(target.st_mode) && realPath(path).startsWith(inside);
        } else if (!copyable) {
            continue; // a folder, a device, a pipe
        }
        const QString decoded = nameAsText(name);
        files.push_back({decoded, filenames::join(folder, decoded), path, copyable});
    }
    ::closedir(dir);
    std::sort(files.begin(), files.end(), [](const SourceFile& a, const SourceFile& b) {
        return filenames::lessByName(a.name, b.name);
    });
    return files;
}

namespace {

class Walk {
public:
    Walk(const Folders& folders, bool deleteSources, const Callbacks& callbacks)
        : folders_(folders), deleteSources_(deleteSources), callbacks_(callbacks) {}

    Outcome run() {
        std::vector<SourceFile> files = listSource(folders_.source);
        if (!folders_.only.isEmpty())
            std::erase_if(
                files, [this](const SourceFile& f) { return !folders_.only.contains(f.native); });
        outcome_.listed = int(files.size());
        if (callbacks_.begin)
            callbacks_.begin(outcome_.listed);
        int i = 0;
        for (const SourceFile& file : files) {
            if (callbacks_.progress)
                callbacks_.progress(i);
            ++i;
            if (file.copyable && !importOne(file))
                break;
        }
        return outcome_;
    }

private:
    // False when the import must stop at this file.
    bool importOne(const SourceFile& file) {
        const QString& name = file.name;
        QString modifiedYear;
        if (endsLikeHistory(name)) {
            const auto year = FileModifiedYear(file.native);
            if (!year)
                return stop(file, QStringLiteral("the file is no longer there"));
            modifiedYear = *year;
        }
        switch (classify(name, modifiedYear)) {
        case Kind::DataLog:
            return importDataLog(file);
        case Kind::Calibration:
            return plainCopy(file, filenames::join(folders_.config, name));
        case Kind::History:
            return plainCopy(file, filenames::join(folders_.home, historyName(name, modifiedYear)));
        case Kind::Other:
            break;
        }
        return true;
    }

    bool importDataLog(const SourceFile& file) {
        struct stat st {};
        if (::stat(file.native.constData(), &st) != 0)
            return stop(file, QStringLiteral("the file is no longer there"));
        const auto year = DataLogYear(file.native);
        if (!year)
            return stop(file, QStringLiteral("the file is empty or cannot be read, so its "
                                             "year is unknown"));
        if (!yearFitsFileName(*year))
            return stop(file, QStringLiteral("its first line is too short to carry a year"));
        const QString destination =
            placeFor(filenames::join(folders_.home, dataLogName(file.name, *year)));
        if (filecopy::sameFile(file.native, destination))
            return stop(file, QStringLiteral("it is already in the home folder"));

        if (callbacks_.dataLogCopying)
            callbacks_.dataLogCopying(true);
        int error = 0;
        if (callbacks_.copyDataLog) {
            error = callbacks_.copyDataLog(file, destination);
        } else {
            error = filecopy::copy(file.native, destination).error;
        }
        if (error == 0)
            outcome_.copied << destination;
        else
            outcome_.failedCopies << file.path;
        // The source goes whatever the copy reported: the user was told the copy's error
        // number and had agreed to the deletion before the import began.
        const bool removed = !deleteSources_ || removeSource(file);
        if (callbacks_.dataLogCopying)
            callbacks_.dataLogCopying(false);
        return removed;
    }

    bool plainCopy(const SourceFile& file, const QString& wanted) {
        const QString destination = placeFor(wanted);
        if (filecopy::sameFile(file.native, destination))
            return stop(file, QStringLiteral("it is already in place"));
        const filecopy::Result result = filecopy::copy(file.native, destination);
        if (!result.ok())
            return stop(file, result.reason);
        outcome_.copied << destination;
        return !deleteSources_ || removeSource(file);
    }

    bool removeSource(const SourceFile& file) {
        const QString why =
            callbacks_.remove ? callbacks_.remove(file) : filecopy::remove(file.native).reason;
        if (!why.isEmpty())
            return stop(file, why);
        outcome_.deleted << file.path;
        return true;
    }

    // An existing file whose name differs only in letter case is the one replaced, so that
    // the home folder never holds the same day twice.
    static QString placeFor(const QString& path) { return filenames::resolve(path); }

    bool stop(const SourceFile& file, const QString& reason) {
        const QString text = QStringLiteral("The import stopped at %1: %2.").arg(file.path, reason);
        outcome_.stopped = text;
        if (callbacks_.message)
            callbacks_.message(text);
        return false;
    }

    const Folders& folders_;
    bool deleteSources_;
    const Callbacks& callbacks_;
    Outcome outcome_;
};

} // namespace

std::vector<DropGroup> groupDropped(const QStringList& paths) {
    std::vector<DropGroup> groups;
    const auto find = [&groups](const QString& folder) -> DropGroup* {
        for (DropGroup& g : groups)
            if (g.folder == folder)
                return &g;
        return nullptr;
    };
    for (const QString& path : paths) {
        const QFileInfo info(path);
        if (info.isDir() && !find(info.canonicalFilePath()))
            groups.push_back({info.canonicalFilePath(), {}});
    }
    for (const QString& path : paths) {
        const QFileInfo info(path);
        if (!info.isFile())
            continue;
        const QString folder = info.absoluteDir().canonicalPath();
        const QByteArray native = QFile::encodeName(filenames::join(folder, info.fileName()));
        DropGroup* g = find(folder);
        if (!g)
            groups.push_back({folder, {native}});
        else if (!g->only.isEmpty() && !g->only.contains(native))
            g->only.append(native); // a group without names is a folder dropped whole
    }
    return groups;
}

Outcome run(const Folders& folders, bool deleteSources, const Callbacks& callbacks) {
    return Walk(folders, deleteSources, callbacks).run();
}

} // namespace trendax::import
