// The site and date tree over a folder of hostile names under a fuzzer. The first byte says which
// working copies fail; the rest are the folder's names, separated by '/' (the one byte besides
// NUL that no name can hold). Every site and day must come from a data log name, keys must be
// unique without regard to letter case, both levels in order, and every ".HST" name copied until
// a copy fails before the first data log.
#include "opendlg/sitetree.h"
#include "storage/filenames.h"

#include <QSet>
#include <QString>
#include <algorithm>
#include <cstdint>
#include <cstdlib>

using namespace trendax;

namespace {

void check(bool ok) {
    if (!ok)
        std::abort();
}

bool isDataLog(const QString& name) {
    return name.right(4).toUpper() == QLatin1String(".CSV");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    const unsigned failures = data[0];
    const QByteArrayView rest(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1));
    QStringList names;
    for (const QByteArrayView piece : QByteArray(rest.data(), rest.size()).split('/')) {
        if (!piece.isEmpty())
            names.append(QString::fromUtf8(piece));
    }

    QStringList copied;
    const sitetree::Tree tree = sitetree::buildFromNames(names, [&](const QString& hst,
                                                                    const QString& txt) {
        check(hst.right(4).toUpper() == QLatin1String(".HST"));
        check(txt == sitetree::historyWorkingCopyName(hst) && txt.endsWith(QLatin1String("txt")));
        copied.append(hst);
        return (failures >> (copied.size() % 8)) & 1 ? QStringLiteral("no room") : QString();
    });

    // Which names the walk must have offered for copying, and where it must have stopped.
    QStringList expectedCopies;
    bool metDataLog = false;
    bool stopped = false;
    qsizetype walked = names.size();
    for (qsizetype i = 0; i < names.size(); ++i) {
        if (isDataLog(names[i])) {
            metDataLog = true;
        } else if (names[i].right(4).toUpper() == QLatin1String(".HST")) {
            expectedCopies.append(names[i]);
            if (!metDataLog && (failures >> (expectedCopies.size() % 8)) & 1) {
                walked = i + 1;
                stopped = true;
                break;
            }
        }
    }
    check(copied == expectedCopies);
    // Site code and day of every data log the walk reached, site codes case-folded: a lookup per
    // day instead of a pass over every name, which made long folders cost the square of their
    // length.
    QSet<QString> dataLogDays;
    for (qsizetype i = 0; i < walked; ++i) {
        if (isDataLog(names[i]))
            dataLogDays.insert(names[i].left(4).toCaseFolded() + QLatin1Char('/') +
                               names[i].mid(4, 6));
    }
    check(tree.failure.has_value() == stopped);
    if (tree.failure)
        check(tree.failure->startsWith(copied.last() + QLatin1String(": ")));

    QSet<QString> keys;
    int dayCount = 0;
    for (size_t s = 0; s < tree.sites.size(); ++s) {
        const sitetree::Site& site = tree.sites[s];
        check(site.key == QLatin1String("m") + site.code && site.code.size() <= 4);
        check(!keys.contains(site.key.toLower()));
        keys.insert(site.key.toLower());
        if (s > 0)
            check(!filenames::lessByName(site.code, tree.sites[s - 1].code));
        for (size_t d = 0; d < site.days.size(); ++d) {
            const sitetree::Day& day = site.days[d];
            // A day may be filed under a site whose code differs from its name in letter case.
            check(day.key.compare(QLatin1String("md") + site.code + day.text,
                                  Qt::CaseInsensitive) == 0);
            check(!keys.contains(day.key.toLower()));
            keys.insert(day.key.toLower());
            check(dataLogDays.contains(site.code.toCaseFolded() + QLatin1Char('/') + day.text));
            if (d > 0)
                check(!sitetree::dayOrder(day.text, site.days[d - 1].text));
            if (site.code.size() == 4 && day.text.size() == 6)
                check(sitetree::dateOfDayKey(day.key) == sitetree::dayDate(day.text));
            ++dayCount;
        }
    }
    check(dayCount <= std::count_if(names.begin(), names.end(), isDataLog));
    return 0;
}
