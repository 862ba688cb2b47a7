#include "history/historyfile.h"

#include "history/eventcodes.h"
#include "storage/textfile.h"

#include <QFileInfo>

namespace trendax::history {

namespace {

QStringView trimBlanks(QStringView s) {
    while (!s.isEmpty() && s.front() == QLatin1Char(' '))
        s = s.sliced(1);
    while (!s.isEmpty() && s.back() == QLatin1Char(' '))
        s.chop(1);
    return s;
}

// Characters [from, from + count) of s, cut at its end the way a substring of a short line is.
QStringView part(QStringView s, qsizetype from, qsizetype count) {
    if (from >= s.size())
        return {};
    return s.sliced(from, std::min(count, s.size() - from));
}

} // namespace

std::optional<QString> HistoryEventText(QStringView line, QStringView year) {
    const qsizetype slash = line.indexOf(QLatin1Char('/'));
    // Counted from 1 the "/" must stand at position 3 or later: the month needs two characters.
    if (slash < 2)
        return std::nullopt;
    const QStringView code = trimBlanks(line.first(slash - 2));
    QString entry;
    entry.reserve(40);
    entry += part(line, slash - 2, 5);
    entry += QLatin1Char('/');
    entry += year;
    entry += part(line, slash + 3, 9);
    entry += QLatin1String(" - ");
    entry += eventText(code);
    return entry;
}

QString historyYear(const QString& path) {
    return QFileInfo(path).fileName().mid(8, 2);
}

QStringList historyEntries(QByteArrayView bytes, QStringView year) {
    QStringList entries;
    QString previous;
    qsizetype lines = 0;
    textfile::forEachNonBlankLine(bytes, [&](QByteArrayView line) {
        ++lines;
        // A Windows-1252 byte is one character, so the "/" found among the bytes stands at the
        // same place in the text. Nothing after the time that follows it enters the entry: only
        // that much of the line is decoded.
        const qsizetype slash = line.indexOf('/');
        if (slash >= 0) {
            const QString head = textfile::decode(line.first(std::min(line.size(), slash + 12)));
            if (auto entry = HistoryEventText(head, year))
                previous = std::move(*entry);
        }
        entries.append(previous);
    });
    // A file of a single line holds no events.
    if (lines < 2)
        entries.clear();
    return entries;
}

QStringList readHistoryFile(const QString& path) {
    const auto bytes = textfile::readBytes(path);
    if (!bytes)
        return {};
    return historyEntries(*bytes, historyYear(path));
}

std::optional<datetime::DateTime> historyEntryTime(QStringView entry) {
    if (entry.size() < 17)
        return std::nullopt;
    return datetime::parse(entry.first(17).toString());
}

} // namespace trendax::history
