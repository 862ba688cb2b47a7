#include "history/usercomments.h"

#include "storage/filenames.h"
#include "storage/textfile.h"

#include <QFileInfo>
#include <algorithm>
#include <cmath>
#include <cstring>

namespace trendax::history {

std::optional<QString> SplitCommentLine(QStringView line) {
    if (line.size() < 20)
        return std::nullopt;
    QString row;
    row.reserve(line.size());
    row += line.first(19);
    row += QLatin1Char('\t');
    row += line.sliced(20);
    return row;
}

QStringView commentRowTime(QStringView row) {
    const qsizetype tab = row.indexOf(QLatin1Char('\t'));
    return tab < 0 ? row : row.first(tab);
}

void sortCommentRows(QStringList& rows) {
    // QStringView's comparison is by UTF-16 code units, that is by character codes.
    std::stable_sort(rows.begin(), rows.end(), [](const QString& a, const QString& b) {
        return QStringView(commentRowTime(a)).compare(commentRowTime(b), Qt::CaseSensitive) < 0;
    });
}

QStringList commentRows(QByteArrayView bytes) {
    QStringList rows;
    QString previous;
    textfile::forEachNonBlankLine(bytes, [&](QByteArrayView line) {
        if (line.size() >= 20) {
            // The row is the line with a TAB for the blank after its time, built in place so
            // that a long comment is copied once.
            previous = textfile::decode(line);
            previous[19] = QLatin1Char('\t');
        }
        rows.append(previous);
    });
    sortCommentRows(rows);
    return rows;
}

QStringList readCommentRows(const QString& path) {
    const auto bytes = textfile::readBytes(path);
    if (!bytes)
        return {};
    return commentRows(*bytes);
}

QStringList CommentRowsCache::rows(const QString& path) {
    const QString actual = filenames::resolve(path);
    const QFileInfo info(actual);
    if (!info.isFile()) {
        entries_.remove(actual);
        return {};
    }
    Entry& entry = entries_[actual];
    const qint64 modified = info.lastModified().toMSecsSinceEpoch();
    if (entry.size != info.size() || entry.modified != modified) {
        entry.size = info.size();
        entry.modified = modified;
        entry.rows = readCommentRows(actual);
    }
    return entry.rows;
}

QString formatCommentTime(datetime::DateTime time) {
    const datetime::Civil c = datetime::toCivil(time);
    const auto two = [](int v) { return QStringLiteral("%1").arg(v, 2, 10, QLatin1Char('0')); };
    return two(c.month) + QLatin1Char('/') + two(c.day) + QLatin1Char('/') +
           QString::number(c.year) + QLatin1Char(' ') + two(c.hour) + QLatin1Char(':') +
           two(c.minute) + QLatin1Char(':') + two(c.second);
}

std::optional<datetime::DateTime> commentCellTime(QStringView cell) {
    return datetime::parse(cell.toString());
}

// ---- Appending ----

AppendResult AppendUserComment(datetime::DateTime time, const QString& comment,
                               const QString& path) {
    // Beyond these days the calendar arithmetic has no four-digit year to write.
    if (!std::isfinite(time) || time < -657434.0 || time >= 2958466.0)
        return {QStringLiteral("the comment's time is not a date")};
    if (const int error =
            textfile::appendLineOrError(path, formatCommentTime(time) + QLatin1Char(' ') + comment))
        return {QString::fromLocal8Bit(std::strerror(error))};
    return {};
}

} // namespace trendax::history
