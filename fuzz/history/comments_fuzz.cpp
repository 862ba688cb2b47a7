// The comments file loader under a fuzzer: any bytes give one row per line, each row empty or a
// 19-character time, a TAB and the rest of a line, sorted by the time column.
#include "history/usercomments.h"
#include "storage/textfile.h"

#include <cstdint>
#include <cstdlib>

using namespace trendax::history;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArrayView bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const QStringList lines = trendax::textfile::nonBlankLines(bytes);
    const QStringList rows = commentRows(bytes);
    if (rows.size() != lines.size())
        std::abort();
    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (!rows[i].isEmpty() && (rows[i].size() < 20 || rows[i][19] != QLatin1Char('\t')))
            std::abort();
        if (i > 0 && commentRowTime(rows[i - 1]).compare(commentRowTime(rows[i])) > 0)
            std::abort();
        if (const auto row = SplitCommentLine(lines[i])) {
            if (!rows.contains(*row))
                std::abort();
        }
        (void)commentCellTime(commentRowTime(rows[i]));
    }
    return 0;
}
