// History files and comments of a busy site: one day of 2,000 events, a comments file of 5,000
// lines, and a month of both as a load reads them (30 history files, the comments once per day).
#include "history/eventcodes.h"
#include "history/historyfile.h"
#include "history/usercomments.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

using namespace trendax::history;

QByteArray historyDay(int events) {
    const auto table = eventCodeTable();
    QByteArray bytes;
    for (int i = 0; i < events; ++i) {
        const int s = i * 43;
        bytes += QByteArray(table[size_t(i) % table.size()].code).leftJustified(8, ' ', true);
        bytes += QStringLiteral("03/15 %1:%2:%3 000000000000000000000000\r\n")
                     .arg(s / 3600 % 24, 2, 10, QLatin1Char('0'))
                     .arg(s / 60 % 60, 2, 10, QLatin1Char('0'))
                     .arg(s % 60, 2, 10, QLatin1Char('0'))
                     .toLatin1();
    }
    return bytes;
}

QByteArray comments(int lines) {
    QByteArray bytes;
    for (int i = 0; i < lines; ++i) {
        // Scattered over several years and out of order, as appends at different cursors are.
        const int k = (i * 7919) % lines;
        bytes += QStringLiteral("%1/%2/%3 %4:%5:%6 comment number %7, checked the pump\r\n")
                     .arg(k % 12 + 1, 2, 10, QLatin1Char('0'))
                     .arg(k % 28 + 1, 2, 10, QLatin1Char('0'))
                     .arg(2010 + k % 5)
                     .arg(k % 24, 2, 10, QLatin1Char('0'))
                     .arg(k % 60, 2, 10, QLatin1Char('0'))
                     .arg(k / 60 % 60, 2, 10, QLatin1Char('0'))
                     .arg(i)
                     .toLatin1();
    }
    return bytes;
}

void decodeHistoryDay(benchmark::State& state) {
    const QByteArray bytes = historyDay(2000);
    for (auto _ : state) {
        QStringList entries = historyEntries(bytes, u"12");
        benchmark::DoNotOptimize(entries.data());
    }
    state.SetItemsProcessed(state.iterations() * 2000);
}
BENCHMARK(decodeHistoryDay)->Unit(benchmark::kMillisecond);

void loadAndSortComments(benchmark::State& state) {
    const QByteArray bytes = comments(5000);
    for (auto _ : state) {
        QStringList rows = commentRows(bytes);
        benchmark::DoNotOptimize(rows.data());
    }
    state.SetItemsProcessed(state.iterations() * 5000);
}
BENCHMARK(loadAndSortComments)->Unit(benchmark::kMillisecond);

// What a load of a busy month costs here: every day's history file read and decoded, and the
// comments asked for once per day through one cache.
void busyMonth(benchmark::State& state) {
    QTemporaryDir home;
    const QByteArray day = historyDay(2000);
    for (int d = 1; d <= 30; ++d) {
        QFile f(home.filePath(
            QStringLiteral("AB1203%1%2.TXT").arg(d, 2, 10, QLatin1Char('0')).arg(12)));
        f.open(QIODevice::WriteOnly);
        f.write(day);
    }
    {
        QFile f(home.filePath("AB12USEREVENTS.TXT"));
        f.open(QIODevice::WriteOnly);
        f.write(comments(5000));
    }
    for (auto _ : state) {
        CommentRowsCache cache;
        qsizetype total = 0;
        for (int d = 1; d <= 30; ++d) {
            total +=
                readHistoryFile(
                    home.filePath(
                        QStringLiteral("ab1203%1%2.txt").arg(d, 2, 10, QLatin1Char('0')).arg(12)))
                    .size();
            total += cache.rows(home.filePath("AB12USEREVENTS.TXT")).size();
        }
        benchmark::DoNotOptimize(total);
    }
}
BENCHMARK(busyMonth)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
