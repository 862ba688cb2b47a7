#include "history/textlines.h"

#include "storage/textfile.h"

namespace trendax::history {

namespace {

bool isBlankLine(QStringView line) {
    for (const QChar c : line) {
        if (c != QLatin1Char(' ') && c != QLatin1Char('\t'))
            return false;
    }
    return true;
}

} // namespace

QStringList textLines(QByteArrayView bytes) {
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes = bytes.sliced(3);
    const QString text = textfile::decode(bytes);
    QStringList lines;
    qsizetype start = 0;
    const qsizetype n = text.size();
    const QChar* data = text.constData();
    for (qsizetype i = 0; i <= n; ++i) {
        const bool end = i == n;
        if (!end && data[i] != QLatin1Char('\r') && data[i] != QLatin1Char('\n'))
            continue;
        const QStringView line(data + start, i - start);
        if (!isBlankLine(line))
            lines.append(line.toString());
        if (!end && data[i] == QLatin1Char('\r') && i + 1 < n && data[i + 1] == QLatin1Char('\n'))
            ++i;
        start = i + 1;
    }
    return lines;
}

} // namespace trendax::history
