// Import name classification and DataLogYear on arbitrary bytes. The input is a file name (up to
// the first newline, as UTF-8) followed by the start of a data log.
#include "opendlg/importer.h"

#include <QString>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace trendax;

namespace {

void check(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArrayView input(reinterpret_cast<const char*>(data), qsizetype(size));
    const qsizetype newline = input.indexOf('\n');
    const QString name = QString::fromUtf8(newline < 0 ? input : input.first(newline));
    const QByteArrayView head = newline < 0 ? QByteArrayView() : input.sliced(newline + 1);

    const auto year = import::dataLogYearOf(head);
    check(year.has_value() == !head.isEmpty());
    if (year)
        check(year->size() == std::min<qsizetype>(2, std::min<qsizetype>(13, head.size())));

    for (const QString& modified : {QStringLiteral("13"), QString(), name.left(2)}) {
        const import::Kind kind = import::classify(name, modified);
        switch (kind) {
        case import::Kind::DataLog:
            check(name.size() == 12 && name.endsWith(QLatin1String(".csv"), Qt::CaseInsensitive));
            if (year && import::yearFitsFileName(*year)) {
                const QString renamed = import::dataLogName(name, *year);
                check(renamed.size() == 14 - 2 + year->size());
                check(renamed.mid(8, year->size()) == *year && !year->contains(QLatin1Char('/')));
                // A renamed data log is never taken for a data log again.
                check(import::classify(renamed, modified) != import::Kind::DataLog);
            }
            break;
        case import::Kind::History:
            check(import::endsLikeHistory(name) && import::readsAsNumber(modified));
            check(import::historyName(name, modified).startsWith(name.left(8)));
            break;
        case import::Kind::Calibration:
        case import::Kind::Other:
            break;
        }
    }
    return 0;
}
