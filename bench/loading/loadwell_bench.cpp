// Loads a site of an application folder through the real main window and LoadWell, headless, and
// reports how long it took, the peak memory and the rows per second; with --json also the loaded
// state, so that a run can be checked for correctness as well as timed.
//
// Usage: trendax-load-bench APPFOLDER SITE START END [--json]   (dates as MM/DD/YY)
#include "app/form1.h"
#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
#include "loading/heap.h"
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
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QListWidget>
#include <QTableWidget>
#include <QToolButton>
#include <QTreeWidgetItem>
#include <cstdio>
#include <sys/resource.h>
#include <unistd.h>

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
    if (args.size() != 5) {
        std::fprintf(stderr, "usage: trendax-load-bench APPFOLDER SITE START END [--json]\n");
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

    const double residentBefore = residentMegabytes();
    QElapsedTimer timer;
    timer.start();
    window.CopySelectedNode(&node, *start, *end);
    window.LoadWell();
    const double seconds = timer.nsecsElapsed() / 1e9;

    const double rows = window.LoadedRowTotal;
    std::printf("LoadWell: %.3f s, %.0f rows, %.0f rows/s, peak RSS %.1f MiB (%.1f MiB before the "
                "load, chart %.1f MiB)\n",
                seconds, rows, seconds > 0 ? rows / seconds : 0.0, peakResidentMegabytes(),
                residentBefore, window.Strip1->model().allocatedBytes() / 1048576.0);
    if (json) {
        QJsonObject o = report(window, appFolder);
        o["seconds"] = seconds;
        o["rows"] = rows;
        o["peakRssMiB"] = peakResidentMegabytes();
        std::printf("%s\n", QJsonDocument(o).toJson(QJsonDocument::Indented).constData());
    }
    return 0;
}
