// The history file decoder under a fuzzer: any bytes give one entry per line (none for a single
// line), every entry being a decoded line, the entry before it, or empty at the start.
#include "history/historyfile.h"
#include "storage/textfile.h"

#include <cstdint>
#include <cstdlib>

using namespace trendax::history;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArrayView bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const QStringList lines = trendax::textfile::nonBlankLines(bytes);
    const QStringList entries = historyEntries(bytes, u"12");
    if (entries.size() != (lines.size() < 2 ? 0 : lines.size()))
        std::abort();
    QString previous;
    for (qsizetype i = 0; i < entries.size(); ++i) {
        const auto decoded = HistoryEventText(lines[i], u"12");
        const QString& expected = decoded ? *decoded : previous;
        if (entries[i] != expected)
            std::abort();
        previous = expected;
        if (decoded) {
            // The month's two characters and the "/" of a decoded line always lead the entry.
            if (decoded->size() < 3 || decoded->at(2) != QLatin1Char('/') ||
                !decoded->contains(QLatin1String(" - ")))
                std::abort();
            (void)historyEntryTime(*decoded);
        }
    }
    return 0;
}
