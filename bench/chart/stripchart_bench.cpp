// Strip chart figures at the reference load: 13 variables x 2,592,000 points (a month of
// one-second rows appended per day, all variables with the same time column). Repaints of the
// full chart are compared with the same chart holding 13 x 4,000 points in the same run.
#include "app/sitereport.h"
#include "chart/chartexport.h"
#include "chart/imbalance.h"
#include "chart/navigation.h"
#include "chart/statspanel.h"
#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPdfWriter>
#include <QWheelEvent>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdint>
#include <fstream>
#include <memory>
#include <unistd.h>

namespace {

using namespace trendax;

constexpr int variables = 13;
constexpr std::size_t rowsPerDay = 86'400;
constexpr int days = 30;
constexpr double firstDay = 45'000.0;

// A motor current: a slow swing, some noise and an occasional spike.
double valueAt(int k, std::size_t row, std::uint64_t& seed) {
    seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
    const double noise = double(seed >> 40) / double(1 << 24) - 0.5;
    const double spike = (row % 50'021) == 7 ? 40.0 : 0.0;
    return 50.0 + 10.0 * k + 8.0 * std::sin(double(row) / 7'000.0) + 3.0 * noise + spike;
}

XYArray dayArray(int k, int day, std::size_t rows, std::uint64_t& seed) {
    XYArray a(2, rows);
    for (std::size_t i = 0; i < rows; ++i) {
        const std::size_t row = std::size_t(day) * rowsPerDay + i;
        a.at(0, i) = firstDay + double(day) + double(i) / double(rowsPerDay);
        a.at(1, i) = valueAt(k, row, seed);
    }
    return a;
}

void configure(StripChart& chart, int maxPoints) {
    chart.resize(1920, 1080);
    chart.setMaxBufferSize(maxPoints);
    chart.setTrackCount(5);
    for (int k = 0; k < variables; ++k) {
        chart.setCurrentVar(k);
        chart.setVarTrack(k % 5);
        chart.setVarYMin(0.0);
        chart.setVarYMax(250.0);
    }
}

// Loads `daysLoaded` days of `rows` rows the way the data log reader does: per day, every
// variable in turn.
void load(StripChart& chart, int daysLoaded, std::size_t rows) {
    std::uint64_t seed = 1;
    for (int day = 0; day < daysLoaded; ++day)
        for (int k = 0; k < variables; ++k) {
            const XYArray a = dayArray(k, day, rows, seed);
            chart.AddXYArray(k, &a);
        }
}

StripChart& bigChart() {
    static StripChart* chart = [] {
        auto* c = new StripChart;
        configure(*c, int(rowsPerDay) * days);
        load(*c, days, rowsPerDay);
        c->ShowXRange(firstDay, firstDay + days);
        return c;
    }();
    return *chart;
}

StripChart& smallChart() {
    static StripChart* chart = [] {
        auto* c = new StripChart;
        configure(*c, 20'000);
        load(*c, 1, 4'000);
        c->ShowXRange(firstDay, firstDay + 4'000.0 / double(rowsPerDay));
        return c;
    }();
    return *chart;
}

double smallRepaintSeconds = 0.0;

// Renders the whole widget after a window change, so the curve layer is rebuilt each time.
double repaint(benchmark::State& state, StripChart& chart, double start, double end) {
    QImage image(1920, 1080, QImage::Format_ARGB32_Premultiplied);
    const auto t0 = std::chrono::steady_clock::now();
    std::int64_t n = 0;
    for (auto _ : state) {
        chart.ShowXRange(start, end);
        chart.render(&image);
        benchmark::DoNotOptimize(image.constBits());
        ++n;
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - t0;
    return n ? elapsed.count() / double(n) : 0.0;
}

void BM_RepaintSmall_13x4000(benchmark::State& state) {
    StripChart& chart = smallChart();
    smallRepaintSeconds = repaint(state, chart, firstDay, firstDay + 4'000.0 / double(rowsPerDay));
    state.counters["ms_per_repaint"] = smallRepaintSeconds * 1e3;
}

void reportRatio(benchmark::State& state, double seconds) {
    state.counters["ms_per_repaint"] = seconds * 1e3;
    if (smallRepaintSeconds > 0.0)
        state.counters["x_small"] = seconds / smallRepaintSeconds;
}

void BM_RepaintMonth_ZoomAll(benchmark::State& state) {
    StripChart& chart = bigChart();
    reportRatio(state, repaint(state, chart, firstDay, firstDay + days));
}

void BM_RepaintMonth_OneHour(benchmark::State& state) {
    StripChart& chart = bigChart();
    const double start = firstDay + 14.5;
    reportRatio(state, repaint(state, chart, start, start + 1.0 / 24.0));
}

// The geometry part of the zoom-all repaint: reducing all 13 curves to pixel columns.
void BM_CurveReductionZoomAll(benchmark::State& state) {
    const StripChartModel& m = bigChart().model();
    const TimeMapping mapping{firstDay, firstDay + days, 60.0, 1840.0};
    std::vector<CurvePoint> out;
    for (auto _ : state) {
        std::size_t n = 0;
        for (int k = 0; k < variables; ++k) {
            m.curvePoints(k, mapping, out);
            n += out.size();
        }
        benchmark::DoNotOptimize(n);
    }
}

// Repaints at zoom-all after each move of a cursor, which keeps the curve layer: the repaint is
// the cached picture plus a line.
template <class Move> void cursorMoveRepaint(benchmark::State& state, Move move) {
    StripChart& chart = bigChart();
    chart.ShowXRange(firstDay, firstDay + days);
    QImage image(1920, 1080, QImage::Format_ARGB32_Premultiplied);
    chart.render(&image);
    int i = 0;
    for (auto _ : state) {
        move(chart, double(i++ % 28));
        chart.render(&image);
        benchmark::DoNotOptimize(image.constBits());
    }
}

void BM_CursorMoveRepaint(benchmark::State& state) {
    cursorMoveRepaint(state, [](StripChart& c, double day) { c.setCursorX(firstDay + 1.0 + day); });
}

// The i-th of a walk of windows (a month or an hour) and cursors, so that no statistics query
// is answered from the previous one.
void moveWindowAndCursor(StripChartModel& m, int i) {
    const double start = firstDay + double(i % 29) + 0.013 * (i % 7);
    m.showXRange(start, start + (i % 2 ? days : 1.0 / 24.0));
    m.setCursorX(start + 0.01);
}

// One statistics refresh: the 7 queries of each of the 13 rows after the window and the cursor
// moved (so nothing is answered from the previous refresh).
void BM_StatisticsRefresh91(benchmark::State& state) {
    StripChartModel& m = bigChart().model();
    int i = 0;
    for (auto _ : state) {
        moveWindowAndCursor(m, i++);
        double sink = 0.0;
        for (int k = 0; k < variables; ++k) {
            sink += m.cursorValue(k);
            sink += m.dataMax(k) + m.dataAvg(k) + m.dataMin(k);
            sink += m.viewMax(k) + m.viewAvg(k) + m.viewMin(k);
        }
        benchmark::DoNotOptimize(sink);
    }
}

// ---- Commands of the main window, each with its repaint at 1920 x 1080 ----

// A command of the main window and its repaint, from the whole month in view with the cursor in
// the middle; step gets 0 and 1 in turn so that the window stays over the data.
template <class Step> void commandWithRepaint(benchmark::State& state, Step step) {
    StripChart& chart = bigChart();
    chart.ShowXRange(firstDay, firstDay + days);
    chart.setCursorX(firstDay + days / 2);
    QImage image(1920, 1080, QImage::Format_ARGB32_Premultiplied);
    int i = 0;
    for (auto _ : state) {
        step(chart.model(), i++ % 2);
        chart.render(&image);
        benchmark::DoNotOptimize(image.constBits());
    }
}

// One step of a held scroll button: a tenth of the window left or right.
void BM_HeldScrollStep(benchmark::State& state) {
    commandWithRepaint(state, navigation::scrollTime);
}

// One zoom step about the cursor between the whole month and half of it.
void BM_ZoomStep(benchmark::State& state) {
    commandWithRepaint(state, navigation::zoomTime);
}

// One refresh of the statistics panel: the 91 queries after the window and the cursor moved,
// the 91 texts, and the panel's repaint.
void BM_StatisticsRefreshWithPanel(benchmark::State& state) {
    StripChartModel& m = bigChart().model();
    StatsPanel panel(96);
    panel.setHeightTwips(3645);
    panel.resize(1920, panel.height());
    QImage image(panel.size(), QImage::Format_ARGB32_Premultiplied);
    int i = 0;
    for (auto _ : state) {
        moveWindowAndCursor(m, i++);
        for (int k = 0; k < variables; ++k)
            panel.showStatistics(k, {m.cursorValue(k), m.viewMin(k), m.viewAvg(k), m.viewMax(k),
                                     m.dataMin(k), m.dataAvg(k), m.dataMax(k)});
        panel.render(&image);
        benchmark::DoNotOptimize(image.constBits());
    }
}

// Records the area each paint of a widget covers.
class PaintArea : public QObject {
public:
    std::int64_t pixels = 0;
    int paints = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            for (const QRect& r : static_cast<QPaintEvent*>(event)->region())
                pixels += std::int64_t(r.width()) * r.height();
            ++paints;
        }
        return false;
    }
};

// One step of a cursor drag on the shown chart: the mouse move, the CursorChange it raises and
// the repaint that follows, which covers the cursor's old and new place only.
void BM_CursorDragStep(benchmark::State& state) {
    StripChart& chart = bigChart();
    chart.ShowXRange(firstDay, firstDay + days);
    chart.show();
    QApplication::processEvents();
    const QRectF plot = chart.plotArea();
    const double y = plot.center().y();
    const auto send = [&chart, y](QEvent::Type type, double x, Qt::MouseButton button,
                                  Qt::MouseButtons held) {
        QMouseEvent e(type, QPointF(x, y), chart.mapToGlobal(QPointF(x, y)), button, held,
                      Qt::NoModifier);
        QApplication::sendEvent(&chart, &e);
    };
    send(QEvent::MouseButtonPress, plot.left() + 10, Qt::LeftButton, Qt::LeftButton);
    QApplication::processEvents();
    PaintArea area;
    chart.installEventFilter(&area);
    int i = 0;
    for (auto _ : state) {
        send(QEvent::MouseMove, plot.left() + 10 + (i++ % 1500), Qt::NoButton, Qt::LeftButton);
        QApplication::processEvents();
    }
    chart.removeEventFilter(&area);
    send(QEvent::MouseButtonRelease, plot.left() + 10, Qt::LeftButton, Qt::NoButton);
    chart.hide();
    state.counters["paints_per_step"] = double(area.paints) / double(state.iterations());
    state.counters["painted_share_of_chart"] =
        double(area.pixels) / double(std::max(area.paints, 1)) / (1920.0 * 1080.0);
}

std::size_t residentBytes() {
    std::ifstream statm("/proc/self/statm");
    std::size_t size = 0, resident = 0;
    statm >> size >> resident;
    return resident * std::size_t(sysconf(_SC_PAGESIZE));
}

// Appending the reference load (array building is not timed), and what it occupies.
void BM_AppendReferenceLoad(benchmark::State& state) {
    double modelBytesPerPoint = 0.0;
    double rssBytesPerPoint = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        const std::size_t rssBefore = residentBytes();
        auto chart = std::make_unique<StripChart>();
        configure(*chart, int(rowsPerDay) * days);
        std::uint64_t seed = 1;
        for (int day = 0; day < days; ++day)
            for (int k = 0; k < variables; ++k) {
                const XYArray a = dayArray(k, day, rowsPerDay, seed);
                state.ResumeTiming();
                chart->AddXYArray(k, &a);
                state.PauseTiming();
            }
        const StripChartModel& m = chart->model();
        const double points = double(m.storedPoints());
        modelBytesPerPoint = double(m.allocatedBytes()) / points;
        rssBytesPerPoint = double(residentBytes() - rssBefore) / points;
        chart.reset();
        state.ResumeTiming();
    }
    state.counters["model_bytes_per_point"] = modelBytesPerPoint;
    state.counters["rss_bytes_per_point"] = rssBytesPerPoint;
    state.counters["points"] = double(variables) * double(rowsPerDay) * days;
}

BENCHMARK(BM_AppendReferenceLoad)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_RepaintSmall_13x4000)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_RepaintMonth_ZoomAll)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_RepaintMonth_OneHour)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_CurveReductionZoomAll)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CursorMoveRepaint)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StatisticsRefresh91)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_HeldScrollStep)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_ZoomStep)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_StatisticsRefreshWithPanel)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CursorDragStep)->Unit(benchmark::kMillisecond);

// ---- Export of the view ----

const QString exportFolder = QDir::tempPath();

// Writes the view with write, reporting the file's size in MB and how far the resident memory
// grew past what it was before.
template <class Write> void exportFile(benchmark::State& state, const QString& name, Write write) {
    StripChart& chart = bigChart();
    chart.ShowXRange(firstDay, firstDay + days);
    const QString path = QDir(exportFolder).filePath(name);
    const std::size_t before = residentBytes();
    std::size_t peak = before;
    for (auto _ : state) {
        const QString failure = write(chart, path);
        if (!failure.isEmpty())
            state.SkipWithError(failure.toStdString().c_str());
        peak = std::max(peak, residentBytes());
    }
    state.counters["file_MB"] = double(QFileInfo(path).size()) / 1e6;
    state.counters["rss_growth_MB"] = double(peak - before) / 1e6;
    QFile::remove(path);
}

const chartexport::Caption caption{"Site: RF13", "a month", {}};

void BM_ExportCsvZoomAll(benchmark::State& state) {
    std::vector<csvexport::Column> columns;
    for (int k = 0; k < variables; ++k)
        columns.push_back({k, QStringLiteral("Channel %1").arg(k + 1)});
    exportFile(state, "trendax-bench.csv", [&columns](StripChart& chart, const QString& path) {
        return chartexport::writeCsv(chart, columns, path);
    });
}

void BM_ExportPdfZoomAll(benchmark::State& state) {
    exportFile(state, "trendax-bench.pdf", [](StripChart& chart, const QString& path) {
        return chartexport::writePdf(chart, caption, path);
    });
}

void BM_ExportSvgZoomAll(benchmark::State& state) {
    exportFile(state, "trendax-bench.svg", [](StripChart& chart, const QString& path) {
        return chartexport::writeSvg(chart, caption, path);
    });
}

// The site report of a one-day window with 2,000 history events in it, as a PDF in memory.
void BM_SiteReportOneDay(benchmark::State& state) {
    StripChart& chart = bigChart();
    chart.ShowXRange(firstDay + 3.0, firstDay + 4.0);
    SiteReport report;
    report.site = "RF13";
    for (int k = 0; k < variables; ++k)
        report.stats.push_back({QStringLiteral("Channel %1").arg(k + 1),
                                {"1.00", "2.00", "3.00", "4.00", "5.00", "6.00", "7.00"}});
    for (int i = 0; i < 2000; ++i)
        report.events.emplace_back(QStringLiteral("10/04/26 %1:%2:00").arg(i / 60 % 24).arg(i % 60),
                                   QStringLiteral("Underload  ") + QString::number(i));
    int pages = 0;
    for (auto _ : state) {
        QBuffer out;
        out.open(QIODevice::WriteOnly);
        QPdfWriter pdf(&out);
        pdf.setResolution(150);
        printSiteReport(
            pdf, report,
            [&chart](QPainter& p, double dpi, const QRectF& rect) {
                chartexport::paintChart(chart, caption, p, dpi, rect);
            },
            &pages);
    }
    state.counters["pages"] = pages;
}

// The status bar's peak imbalance over the zoom-all window of three phases.
void BM_ImbalanceWindowZoomAll(benchmark::State& state) {
    StripChartModel& m = bigChart().model();
    m.showXRange(firstDay, firstDay + days);
    for (auto _ : state)
        benchmark::DoNotOptimize(imbalance::windowPeak(m, 0, 1, 2));
}

BENCHMARK(BM_ExportCsvZoomAll)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_ExportPdfZoomAll)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_ExportSvgZoomAll)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_SiteReportOneDay)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_ImbalanceWindowZoomAll)->Unit(benchmark::kMillisecond);

// ---- Reference cursor ----

// The zoom-all repaint with the reference cursor set: curve layer, cursor and dashed line.
void BM_RepaintMonth_ZoomAll_WithReference(benchmark::State& state) {
    StripChart& chart = bigChart();
    chart.model().setReferenceX(firstDay + 7.25);
    reportRatio(state, repaint(state, chart, firstDay, firstDay + days));
    chart.model().setReferenceX(std::nullopt);
}

// Moving the reference cursor keeps the curve layer, as a cursor move does.
void BM_ReferenceMoveRepaint(benchmark::State& state) {
    cursorMoveRepaint(
        state, [](StripChart& c, double day) { c.model().setReferenceX(firstDay + 0.5 + day); });
    bigChart().model().setReferenceX(std::nullopt);
}

BENCHMARK(BM_RepaintMonth_ZoomAll_WithReference)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_ReferenceMoveRepaint)->Unit(benchmark::kMillisecond);

} // namespace

// ---- Event markers and recording gaps ----

namespace {

using namespace trendax;

// 60,000 markers of every kind spread evenly over [start, end].
std::vector<EventMarker> manyMarkers(double start, double end) {
    constexpr int count = 60'000;
    std::vector<EventMarker> markers;
    markers.reserve(count);
    for (int i = 0; i < count; ++i)
        markers.push_back({start + (end - start) * (double(i) + 0.5) / count, MarkerKind(i % 4),
                           MarkerSource::HistoryEvent, i,
                           QStringLiteral("03/15/12 10:22:33 - Overload")});
    return markers;
}

// Repaints of the month with 60,000 markers in view: at zoom-all spread over the month, and in a
// one-hour window all inside that hour.
void BM_RepaintMonth_60000Markers(benchmark::State& state) {
    StripChart& chart = bigChart();
    const double start = state.range(0) ? firstDay + 15.0 : firstDay;
    const double end = state.range(0) ? start + 1.0 / 24.0 : firstDay + days;
    chart.setEventMarkers(manyMarkers(start, end));
    const double seconds = repaint(state, chart, start, end);
    chart.setEventMarkers({});
    state.counters["under_16ms"] = seconds < 0.016 ? 1.0 : 0.0;
}

// The gap detection of a load: the reference month's one time column (all 13 variables share
// it) appended day by day, as the chart does for every data log. Compare with a whole load of
// the same month (trendax-load-bench) for its share of the load.
void BM_GapDetectionReferenceMonth(benchmark::State& state) {
    std::vector<double> day(rowsPerDay);
    for (auto _ : state) {
        gaps::GapIndex index;
        for (int d = 0; d < days; ++d) {
            state.PauseTiming();
            for (std::size_t i = 0; i < rowsPerDay; ++i)
                day[i] = firstDay + double(d) + double(i) / double(rowsPerDay);
            state.ResumeTiming();
            index.append(day.data(), day.size());
        }
        std::vector<gaps::Gap> found;
        index.gapsIn(firstDay, firstDay + days, found);
        benchmark::DoNotOptimize(found.data());
    }
}

BENCHMARK(BM_RepaintMonth_60000Markers)
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2.0);
BENCHMARK(BM_GapDetectionReferenceMonth)->Unit(benchmark::kMillisecond);

// ---- Navigation by mouse and keyboard, each step with its repaint at 1920 x 1080 ----

// A step of the mouse on the big chart over the given window, then the repaint; step gets the
// iteration's number so that it can alternate and keep the window over the data.
template <class Step>
void mouseStepWithRepaint(benchmark::State& state, double start, double end, Step step) {
    StripChart& chart = bigChart();
    chart.ShowXRange(start, end);
    QImage image(1920, 1080, QImage::Format_ARGB32_Premultiplied);
    const QRectF plot = chart.plotArea();
    int i = 0;
    for (auto _ : state) {
        step(chart, plot, i++);
        chart.render(&image);
        benchmark::DoNotOptimize(image.constBits());
    }
}

// One notch of the wheel about the plot's middle, in and out in turn.
void wheelStep(StripChart& chart, const QRectF& plot, int i) {
    const QPointF at = plot.center();
    QWheelEvent e(at, chart.mapToGlobal(at), QPoint(), QPoint(0, i % 2 ? -120 : 120), Qt::NoButton,
                  Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&chart, &e);
}

// One move of a middle-button drag, 40 pixels right and back in turn.
void dragStep(StripChart& chart, const QRectF& plot, int i) {
    const double y = plot.center().y();
    const auto send = [&chart, y](QEvent::Type type, double x, Qt::MouseButton button,
                                  Qt::MouseButtons held) {
        QMouseEvent e(type, QPointF(x, y), chart.mapToGlobal(QPointF(x, y)), button, held,
                      Qt::NoModifier);
        QApplication::sendEvent(&chart, &e);
    };
    const double x = plot.center().x();
    if (i == 0)
        send(QEvent::MouseButtonPress, x, Qt::MiddleButton, Qt::MiddleButton);
    send(QEvent::MouseMove, x + (i % 2 ? 0.0 : 40.0), Qt::NoButton, Qt::MiddleButton);
}

void releaseDrag(StripChart& chart) {
    const QPointF at = chart.plotArea().center();
    QMouseEvent e(QEvent::MouseButtonRelease, at, chart.mapToGlobal(at), Qt::MiddleButton,
                  Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&chart, &e);
}

constexpr double hourStart = firstDay + 14.5;

void BM_WheelZoomStep_ZoomAll(benchmark::State& state) {
    mouseStepWithRepaint(state, firstDay, firstDay + days, wheelStep);
}

void BM_WheelZoomStep_OneHour(benchmark::State& state) {
    mouseStepWithRepaint(state, hourStart, hourStart + 1.0 / 24.0, wheelStep);
}

void BM_DragPanStep_ZoomAll(benchmark::State& state) {
    mouseStepWithRepaint(state, firstDay, firstDay + days, dragStep);
    releaseDrag(bigChart());
}

void BM_DragPanStep_OneHour(benchmark::State& state) {
    mouseStepWithRepaint(state, hourStart, hourStart + 1.0 / 24.0, dragStep);
    releaseDrag(bigChart());
}

// Back and Forward in turn between the whole month and one hour of it.
void BM_BackForwardStep(benchmark::State& state) {
    StripChart& chart = bigChart();
    chart.ShowXRange(firstDay, firstDay + days);
    chart.ShowXRange(hourStart, hourStart + 1.0 / 24.0);
    QImage image(1920, 1080, QImage::Format_ARGB32_Premultiplied);
    int i = 0;
    for (auto _ : state) {
        if (i++ % 2)
            chart.model().forwardView();
        else
            chart.model().backView();
        chart.render(&image);
        benchmark::DoNotOptimize(image.constBits());
    }
}

BENCHMARK(BM_WheelZoomStep_ZoomAll)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_WheelZoomStep_OneHour)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_DragPanStep_ZoomAll)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_DragPanStep_OneHour)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_BackForwardStep)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
