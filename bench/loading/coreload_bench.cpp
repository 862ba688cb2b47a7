// trendax-core-load-bench APPFOLDER SITE START END: the core of a site load, as the well loader
// drives it (both passes, Schema.ini, every data log read and parsed), without the window and
// the chart. Prints the time, the rows per second and the peak resident memory.
#include "loading/datalog.h"
#include "loading/wellload.h"
#include "storage/datetime.h"
#include "storage/homefolder.h"

#include <QCoreApplication>
#include <QDir>
#include <chrono>
#include <cstdio>
#include <sys/resource.h>

using namespace trendax;

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc != 5) {
        std::fprintf(stderr, "usage: %s APPFOLDER SITE START END (dates MM/DD/YY)\n", argv[0]);
        return 2;
    }
    const QString appFolder = QString::fromLocal8Bit(argv[1]);
    const QString site = QString::fromLocal8Bit(argv[2]);
    const auto start = datetime::parse(std::string_view(argv[3]));
    const auto end = datetime::parse(std::string_view(argv[4]));
    if (!start || !end) {
        std::fprintf(stderr, "dates must be MM/DD/YY\n");
        return 2;
    }
    // The site's date codes as the site tree lists them.
    QStringList codes;
    const QStringList names =
        QDir(homefolder::homeFolder(appFolder))
            .entryList({site + QStringLiteral("??????.csv")}, QDir::Files, QDir::Name);
    for (const QString& name : names)
        codes << name.mid(4, 6);

    const NodeCopy node =
        CopySelectedNode(site, homefolder::homeFolder(appFolder), codes, *start, *end);
    LoadState state;
    qint64 rows = 0, points = 0;
    WellLoadHooks hooks;
    hooks.loadDay = [&](int, int, const QString& csv, const QString&) {
        const DataLogResult r = readDataLog(csv, appFolder, state);
        rows += r.rowCount;
        for (const auto& channel : r.channels)
            points += channel ? qint64(channel->count()) : 0;
    };
    const auto t0 = std::chrono::steady_clock::now();
    const int days = runWellLoadPasses(node, hooks);
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();

    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("days %d rows %lld points %lld numChannels %d\n", days, rows, points,
                int(state.numChannels));
    std::printf("XMin %s XMax %s\n", qPrintable(datetime::formatNumber(state.XMin)),
                qPrintable(datetime::formatNumber(state.XMax)));
    std::printf("time %.3f s, %.1f M rows/s, peak RSS %.0f MB\n", seconds, rows / seconds / 1e6,
                usage.ru_maxrss / 1024.0);
    return 0;
}
