// The time texts of both lists under a fuzzer: a text in the exact form that reads as a time
// formats back to the same text, and a time written to the comments file reads back as itself.
#include "history/historyfile.h"
#include "history/usercomments.h"

#include <QRegularExpression>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

using namespace trendax;
using namespace trendax::history;

namespace {

QString historyForm(datetime::DateTime t) {
    const datetime::Civil c = datetime::toCivil(t);
    return QStringLiteral("%1/%2/%3 %4:%5:%6")
        .arg(c.month, 2, 10, QLatin1Char('0'))
        .arg(c.day, 2, 10, QLatin1Char('0'))
        .arg(c.year % 100, 2, 10, QLatin1Char('0'))
        .arg(c.hour, 2, 10, QLatin1Char('0'))
        .arg(c.minute, 2, 10, QLatin1Char('0'))
        .arg(c.second, 2, 10, QLatin1Char('0'));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString text = QString::fromLatin1(reinterpret_cast<const char*>(data), qsizetype(size));
    static const QRegularExpression historyExact(
        QStringLiteral("^\\d\\d/\\d\\d/\\d\\d \\d\\d:\\d\\d:\\d\\d"));
    static const QRegularExpression commentExact(
        QStringLiteral("^\\d\\d/\\d\\d/\\d\\d\\d\\d \\d\\d:\\d\\d:\\d\\d$"));

    if (const auto t = historyEntryTime(text)) {
        if (historyExact.match(text).hasMatch() && historyForm(*t) != text.first(17))
            std::abort();
    }
    if (const auto t = commentCellTime(text)) {
        // Years before 1000 have fewer than four digits in the file and do not read back.
        if (datetime::toCivil(*t).year >= 1000) {
            const QString stored = formatCommentTime(*t);
            if (commentExact.match(text).hasMatch() && stored != text)
                std::abort();
            if (commentCellTime(stored) != *t)
                std::abort();
        }
    }

    // Eight bytes as a date-time within the calendar: the stored text reads back to the second.
    if (size >= 8) {
        double raw = 0;
        std::memcpy(&raw, data, sizeof raw);
        if (std::isfinite(raw)) {
            const double t = std::fmod(std::abs(raw), 2958465.0);
            const auto back = commentCellTime(formatCommentTime(t));
            const int year = datetime::toCivil(t).year;
            if (year >= 1000 && year <= 9999 && (!back || std::abs(*back - t) > 1.0 / 86400))
                std::abort();
        }
    }
    return 0;
}
