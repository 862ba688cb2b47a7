// Loads a site of an application folder through the real main window and LoadWell, headless, and
// reports how long it took, the peak memory and the rows per second; with --json also the loaded
// state, so that a run can be checked for correctness as well as timed.
//
// Before the load the same data logs are parsed once without keeping anything (every field of
// every row read into numbers and time stamps), and the load is reported as a ratio to that pass:
// what the load costs beyond parsing is what the viewer itself adds. With --interact the loaded
// chart is then driven at 1920 x 1080: repaints after scroll and zoom steps and statistics
// refreshes, each timed on its own.
//
// Usage: trendax-load-bench APPFOLDER SITE START END [--json] [--interact]   (dates MM/DD/YY)
#include "app/form1.h"
#include "chart/blockpool.h"
#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
#include "loading/datalog.h"
#include "loading/heap.h"
#include "loading/wellload.h"
#include "opendlg/dlgopen.h"
#include "opendlg/sitetree.h"
#include "storage/datetime.h"
#include "storage/dialogs.h"
#include "storage/environment.h"
#include "storage/filenames.h"
#include "storage/textfile.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QListWidget>
#include <QTableWidget>
#include <QToolButton>
#include <QTreeWidgetItem>
#include <algorithm>
#include <cstdio>
#include <ctime>
#if defined(__GLIBC__)
#include <malloc.h>
#endif
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

using namespace trendax;

namespace {

// Settings stay in memory: a benchmark must not change the user's channel colours.
class BenchEnvironment : public SystemEnvironment {
public:
    using SystemEnvironment::SystemEnvironment;
    QString readSetting(const QString&, const QString&, const QString& fallback) const override {
        return fallback;
    }
    bool writeSetting(const QString&, const QString&, const QString&) override { return true; }
};

double residentMegabytes() {
    long pages = 0, resident = 0;
    if (FILE* f = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(f, "%ld %ld", &pages, &resident) != 2)
            resident = 0;
        std::fclose(f);
    }
    return resident * (sysconf(_SC_PAGESIZE) / 1048576.0);
}

// Wall, user and system seconds of one phase, of the whole process and of the window's thread
// alone (which leaves out what the helper thread does on the other core).
struct Cost {
    double wall = 0, user = 0, system = 0;
    double threadUser = 0, threadSystem = 0;
};

class CostMeter {
public:
    CostMeter() {
        getrusage(RUSAGE_SELF, &process_);
        getrusage(RUSAGE_THREAD, &thread_);
        timer_.start();
    }
    Cost cost() const {
        rusage process{}, thread{};
        getrusage(RUSAGE_SELF, &process);
        getrusage(RUSAGE_THREAD, &thread);
        auto seconds = [](const timeval& a, const timeval& b) {
            return double(b.tv_sec - a.tv_sec) + double(b.tv_usec - a.tv_usec) / 1e6;
        };
        return {timer_.nsecsElapsed() / 1e9, seconds(process_.ru_utime, process.ru_utime),
                seconds(process_.ru_stime, process.ru_stime),
                seconds(thread_.ru_utime, thread.ru_utime),
                seconds(thread_.ru_stime, thread.ru_stime)};
    }

private:
    rusage process_{}, thread_{};
    QElapsedTimer timer_;
};

// Every in-range data log of the node parsed as the reader parses it, nothing kept.
Cost parseOnlyPass(const NodeCopy& node, const QString& appFolder, double& checksum) {
    CostMeter meter;
    LoadState state;
    QByteArray buffer;
    DataLogOptions options;
    options.storeValues = false;
    options.readBuffer = &buffer; // read as the load reads
    for (const QString& code : node.dates) {
        const auto day = dateOfCode(code);
        if (!day || !dayInRange(*day, node.startdate, node.enddate))
            continue;
        try {
            checksum += readDataLog(dataLogPath(node, code), appFolder, state, options).valueSum;
        } catch (const LoadFailure&) {
        }
    }
    return meter.cost();
}

void printCost(const char* what, const Cost& c) {
    std::printf("%s: %.3f s wall, %.3f s user, %.3f s system; window thread %.3f s user, %.3f s "
                "system\n",
                what, c.wall, c.user, c.system, c.threadUser, c.threadSystem);
}

// One timed step: milliseconds of processor time and the width of the window it showed.
struct Step {
    double ms = 0;
    double span = 0;
};

// Median, 95th percentile and worst of a set of steps, with the window of the worst and how many
// took 16 ms or more.
void printTimings(const char* what, std::vector<Step> steps) {
    std::sort(steps.begin(), steps.end(), [](const Step& a, const Step& b) { return a.ms < b.ms; });
    const Step& worst = steps.back();
    const auto slow =
        std::count_if(steps.begin(), steps.end(), [](const Step& s) { return s.ms >= 16.0; });
    std::printf("%s: median %.2f ms, 95th percentile %.2f ms, worst %.2f ms (a window of %.4g h), "
                "%td of %zu at 16 ms or more\n",
                what, steps[steps.size() / 2].ms, steps[steps.size() * 95 / 100].ms, worst.ms,
                worst.span * 24, slow, steps.size());
}

// Repaints, scroll and zoom steps and statistics refreshes of the loaded chart at 1920 x 1080.
void interact(Form1& w) {
    StripChart& chart = *w.Strip1;
    chart.resize(1920, 1080);
    QImage image(1920, 1080, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white); // a window's own pixels are there before the chart paints into them
    const double first = w.XMin, last = w.XMax;
    // The window thread's processor time of a step: on a machine shared with other work the
    // wall time says more about the others than about the step.
    auto timed = [](auto&& step) {
        timespec a{}, b{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &a);
        step();
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &b);
        return double(b.tv_sec - a.tv_sec) * 1e3 + double(b.tv_nsec - a.tv_nsec) / 1e6;
    };
    auto show = [&](double a, double b) {
        return Step{timed([&] {
                        chart.ShowXRange(a, b);
                        chart.render(&image);
                    }),
                    b - a};
    };
    // The first repaint at a new size makes the chart's layer and the glyphs of its labels; it
    // is reported on its own.
    const Step resized = show(first, last);
    std::vector<Step> all, scroll, zoom, stats;
    for (int i = 0; i < 20; ++i)
        all.push_back(show(first, last));
    // Scroll a two-day window across the whole span, a tenth of the window per step.
    const double span = 2.0;
    for (double a = first; a + span <= last && scroll.size() < 400; a += span / 10)
        scroll.push_back(show(a, a + span));
    // Zoom in on the middle by halves down to a minute, and back out.
    const double middle = first + (last - first) / 2;
    std::vector<double> widths;
    for (double width = last - first; width > 1.0 / 1440; width /= 2)
        widths.push_back(width);
    for (int pass = 0; pass < 3; ++pass) {
        for (double width : widths)
            zoom.push_back(show(middle - width / 2, middle + width / 2));
        for (auto it = widths.rbegin(); it != widths.rend(); ++it)
            zoom.push_back(show(middle - *it / 2, middle + *it / 2));
    }
    // A statistics refresh after the window and the cursor moved.
    for (int i = 0; i < 100; ++i) {
        const double a = first + (last - first - 1) * (i % 37) / 37.0;
        chart.ShowXRange(a, a + (i % 2 ? 1.0 / 24 : 7.0));
        chart.setCursorX(a + 0.01);
        stats.push_back({timed([&] {
                             w.UpdateStatistics();
                             w.UpdateCursorDisplay();
                         }),
                         chart.model().xViewEnd() - chart.model().xViewStart()});
    }
    std::printf("first repaint at 1920 x 1080: %.2f ms\n", resized.ms);
    printTimings("repaint at zoom all", all);
    printTimings("scroll step and repaint", scroll);
    printTimings("zoom step and repaint", zoom);
    printTimings("statistics and cursor refresh", stats);
}

// What this machine charges for the chart's memory alone: as many fresh pool blocks as the load
// holds, taken and written to on the window's thread, without parsing anything. Where the kernel
// or a hypervisor charges much for every new page, this is the part of a load that no reader can
// make faster.
Cost freshMemory(std::size_t bytes) {
    BlockPool pool;
    pool.setHelperEnabled(false);
    std::vector<void*> blocks;
    const CostMeter meter;
    for (std::size_t taken = 0; taken < bytes; taken += BlockPool::blockBytes) {
        auto* block = static_cast<char*>(pool.allocate());
        for (std::size_t page = 0; page < BlockPool::blockBytes; page += 4096)
            block[page] = 1;
        blocks.push_back(block);
    }
    const Cost cost = meter.cost();
    for (void* block : blocks)
        pool.release(block);
    return cost;
}

double peakResidentMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024.0;
}

QJsonObject report(Form1& w, const QString& appFolder) {
    QJsonObject o;
    o["title"] = w.windowTitle();
    o["numChannels"] = w.numChannels;
    o["XMin"] = w.XMin;
    o["XMax"] = w.XMax;
    o["MaxBufferSize"] = w.Strip1->MaxBufferSize();
    QJsonArray vars;
    const StripChartModel& model = w.Strip1->model();
    for (int k = 0; k < 13; ++k) {
        QJsonObject v;
        const auto n = model.pointCount(k);
        v["points"] = double(n);
        v["firstX"] = n ? model.point(k, 0).time : 0.0;
        v["lastX"] = n ? model.point(k, n - 1).time : 0.0;
        v["DataMin"] = w.Strip1->DataMin(k);
        v["DataAvg"] = w.Strip1->DataAvg(k);
        v["DataMax"] = w.Strip1->DataMax(k);
        vars.append(v);
    }
    o["variables"] = vars;
    o["yscaleEnabled"] = w.toolButton("yscale")->isEnabled();
    o["tracksEnabled"] = w.toolButton("tracks")->isEnabled();
    o["quillChannelsEnabled"] = w.mnuQuillChannels->isEnabled();
    QJsonArray history;
    for (const QString& entry : w.lstHST->entries())
        history.append(entry);
    o["lstHST"] = history;
    QJsonArray comments;
    for (int r = 0; r < w.gridHistoryEvents->rowCount(); ++r) {
        QStringList cells;
        for (int c = 0; c < w.gridHistoryEvents->columnCount(); ++c) {
            const QTableWidgetItem* item = w.gridHistoryEvents->item(r, c);
            cells << (item ? item->text() : QString());
        }
        comments.append(cells.join(QLatin1Char('\t')));
    }
    o["gridHistoryEvents"] = comments;
    const auto schema = textfile::readBytes(appFolder + QStringLiteral("/logfiles/Schema.ini"));
    o["schemaIni"] = schema ? QString::fromLatin1(*schema) : QString();
    return o;
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    trendax::keepLargeBlocksForReuse();
    QStringList args = app.arguments();
    const bool json = args.removeAll(QStringLiteral("--json")) > 0;
    const bool interactive = args.removeAll(QStringLiteral("--interact")) > 0;
    if (args.size() != 5) {
        std::fprintf(stderr,
                     "usage: trendax-load-bench APPFOLDER SITE START END [--json] [--interact]\n");
        return 2;
    }
    const QString appFolder = args[1];
    const QString site = args[2];
    const auto start = datetime::parse(args[3]);
    const auto end = datetime::parse(args[4]);
    if (!start || !end) {
        std::fprintf(stderr, "trendax-load-bench: dates are MM/DD/YY\n");
        return 2;
    }

    // The site node as the open dialog's tree would hand it over.
    const QString home = filenames::join(appFolder, QStringLiteral("logfiles"));
    QTreeWidgetItem node;
    node.setText(0, site);
    node.setData(0, dlgOpen::TagRole, home);
    for (const sitetree::Site& s : sitetree::build(home).sites) {
        if (s.code.compare(site, Qt::CaseInsensitive) == 0) {
            for (const sitetree::Day& d : s.days)
                (new QTreeWidgetItem(&node))->setText(0, d.text);
        }
    }

    BenchEnvironment environment(appFolder);
    SystemDialogs dialogs;
    Form1 window(environment, dialogs);
    window.show();
    QApplication::processEvents();

    window.CopySelectedNode(&node, *start, *end);
    double checksum = 0;
    const Cost parsing = parseOnlyPass(window.NodeCopy, appFolder, checksum);

    const double residentBefore = residentMegabytes();
    const CostMeter meter;
    window.LoadWell();
    const Cost loading = meter.cost();
    const double seconds = loading.wall;

    const double rows = window.LoadedRowTotal;
    std::printf("LoadWell: %.3f s, %.0f rows, %.0f rows/s, peak RSS %.1f MiB (%.1f MiB before the "
                "load, chart %.1f MiB)\n",
                seconds, rows, seconds > 0 ? rows / seconds : 0.0, peakResidentMegabytes(),
                residentBefore, window.Strip1->model().allocatedBytes() / 1048576.0);
    const BlockPool& pool = BlockPool::shared();
    std::printf("block pool: %.1f MiB mapped, %.1f MiB in use, %.1f MiB faulted in and free\n",
                pool.mappedBytes() / 1048576.0, pool.usedBytes() / 1048576.0,
                pool.preparedBytes() / 1048576.0);
#if defined(__GLIBC__)
    const struct mallinfo2 heap = mallinfo2();
    std::printf("C heap: %.1f MiB in use, %.1f MiB free, %.1f MiB mapped on its own\n",
                heap.uordblks / 1048576.0, heap.fordblks / 1048576.0, heap.hblkhd / 1048576.0);
#endif
    printCost("parse-only pass", parsing);
    printCost("LoadWell", loading);
    auto ratio = [](double a, double b) { return b > 0 ? a / b : 0.0; };
    std::printf(
        "LoadWell / parse-only: %.2f wall, %.2f user+system, %.2f user+system of the "
        "window thread (checksum %g)\n",
        ratio(loading.wall, parsing.wall),
        ratio(loading.user + loading.system, parsing.user + parsing.system),
        ratio(loading.threadUser + loading.threadSystem, parsing.threadUser + parsing.threadSystem),
        checksum);
    const std::size_t chartBytes = window.Strip1->model().allocatedBytes();
    const Cost fresh = freshMemory(chartBytes);
    std::printf("fresh memory for the chart's %.1f MiB: %.3f s wall, %.3f s user, %.3f s system; "
                "LoadWell beyond it / parse-only: %.2f wall\n",
                chartBytes / 1048576.0, fresh.wall, fresh.user, fresh.system,
                ratio(loading.wall - fresh.wall, parsing.wall));
    if (interactive)
        interact(window);
    if (json) {
        QJsonObject o = report(window, appFolder);
        o["seconds"] = seconds;
        o["rows"] = rows;
        o["peakRssMiB"] = peakResidentMegabytes();
        std::printf("%s\n", QJsonDocument(o).toJson(QJsonDocument::Indented).constData());
    }
    return 0;
}
