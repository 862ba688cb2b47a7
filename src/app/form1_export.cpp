// The main window's ways out: export of the view, the site report, the chart on the clipboard,
// files dropped from the file manager, and the current imbalance in the status bar.
#include "app/form1.h"
#include "app/sitereport.h"
#include "chart/chartexport.h"
#include "chart/imbalance.h"
#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
#include "loading/dlgprogress.h"
#include "opendlg/dlgopen.h"
#include "storage/atomicfile.h"
#include "storage/datetime.h"
#include "storage/dialogs.h"
#include "storage/environment.h"
#include "storage/programtitle.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLabel>
#include <QMenu>
#include <QPdfWriter>
#include <QPrinter>
#include <QStatusBar>

namespace trendax {

namespace {

const QStringList exportFilters = {
    QStringLiteral("PNG image (*.png)"), QStringLiteral("PDF document (*.pdf)"),
    QStringLiteral("SVG drawing (*.svg)"), QStringLiteral("CSV values (*.csv)")};

} // namespace

void Form1::buildExportMenu() {
    popup2->addSeparator();
    mnuExportView = popup2->addAction(QStringLiteral("Export View..."));
    mnuExportView->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_E));
    mnuSiteReport = popup2->addAction(QStringLiteral("Site Report..."));
    mnuSiteReport->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    mnuCopyChart = popup2->addAction(QStringLiteral("Copy Chart"));
    mnuCopyChart->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_C));
    // The shortcuts work wherever the focus is in the main window, not only with the menu open.
    for (QAction* action : {mnuExportView, mnuSiteReport, mnuCopyChart}) {
        action->setShortcutContext(Qt::WindowShortcut);
        addAction(action);
    }
    connect(mnuExportView, &QAction::triggered, this, [this] { ExportView(); });
    connect(mnuSiteReport, &QAction::triggered, this, [this] { PrintSiteReport(); });
    connect(mnuCopyChart, &QAction::triggered, this, [this] { CopyChart(); });
    // The chart's own settings (grid, line width, event markers, recording gaps) are reached
    // from the context menu as well: the menu that carries them never shows.
    popup2->addSeparator();
    popup2->addAction(mnuStripChartSettings);

    imbalancePanel = new QLabel(this);
    imbalancePanel->setVisible(false);
    StatusBar1->addWidget(imbalancePanel, 0);
    setAcceptDrops(true);
}

// ---- Export ----

void Form1::ExportView() {
    const QString suggested =
        QDir(QDir::homePath())
            .filePath((SiteCode.isEmpty() ? QStringLiteral("chart") : SiteCode) +
                      QStringLiteral(".png"));
    const QString path =
        dialogs_.chooseSaveFile(this, QStringLiteral("Export View"), suggested, exportFilters);
    if (path.isEmpty())
        return;
    const QString failure = exportViewTo(path);
    if (!failure.isEmpty()) {
        dialogs_.message(this, failure, programTitle(), QMessageBox::Ok, QMessageBox::Warning);
        return;
    }
    showStatusMessage(QStringLiteral("Exported to ") + path);
}

QString Form1::exportViewTo(const QString& path) {
    const auto format = chartexport::formatOf(path);
    if (!format)
        return QStringLiteral("Cannot write %1: the name does not end in .png, .pdf, .svg or .csv")
            .arg(path);
    const chartexport::Caption caption{
        QStringLiteral("Site: ") + SiteCode,
        chartexport::rangeText(Strip1->XViewStart(), Strip1->XViewEnd()), channelNames()};
    switch (*format) {
    case chartexport::Format::Png: {
        const QString screen = QStringLiteral("%1x%2").arg(Strip1->width()).arg(Strip1->height());
        const QString answer =
            dialogs_.input(this, QStringLiteral("Picture size in pixels (width x height):"),
                           QStringLiteral("Export View"), screen);
        if (answer.isEmpty())
            return {}; // cancelled: nothing written, nothing to say
        const auto size = chartexport::parsePictureSize(answer);
        if (!size)
            return QStringLiteral("Cannot write %1: \"%2\" is not a size such as %3")
                .arg(path, answer, screen);
        return chartexport::writePng(*Strip1, caption, path, *size, devicePixelRatioF());
    }
    case chartexport::Format::Pdf:
        return chartexport::writePdf(*Strip1, caption, path);
    case chartexport::Format::Svg:
        return chartexport::writeSvg(*Strip1, caption, path);
    case chartexport::Format::Csv:
        return chartexport::writeCsv(*Strip1, exportColumns(), path);
    }
    return {};
}

QStringList Form1::channelNames() const {
    QStringList names;
    for (const StatsRow& row : picStats->rows)
        names << row.lblVar->text();
    return names;
}

std::vector<csvexport::Column> Form1::exportColumns() const {
    std::vector<csvexport::Column> columns;
    const QStringList names = channelNames();
    for (int k = 0; k < StripChartModel::variableCount; ++k) {
        if (Strip1->model().pointCount(k) > 0)
            columns.push_back({k, names[k]});
    }
    return columns;
}

void Form1::CopyChart() {
    QApplication::clipboard()->setPixmap(Strip1->grab());
}

// ---- Site report ----

SiteReport Form1::siteReport() const {
    const StripChartModel& model = Strip1->model();
    SiteReport report;
    report.site = SiteCode;
    report.loadedRange = numChannels > 0 ? chartexport::rangeText(XMin, XMax) : QString();
    report.viewRange = chartexport::rangeText(model.xViewStart(), model.xViewEnd());
    report.made = datetime::formatGeneral(env_.now());
    for (int k = 0; k < StripChartModel::variableCount; ++k) {
        if (!model.variable(k).visible || model.pointCount(k) == 0)
            continue;
        const StatsRow& row = picStats->rows[std::size_t(k)];
        report.stats.push_back(
            {row.lblVar->text(),
             {row.lblCursorValue->text(), row.lblMinDisp->text(), row.lblAvgDisp->text(),
              row.lblMaxDisp->text(), row.lblMin->text(), row.lblAvg->text(), row.lblMax->text()}});
    }
    report.events = eventsInWindow(lstHST->entries(), model.xViewStart(), model.xViewEnd());
    report.comments = commentsInWindow(commentGridRows(), model.xViewStart(), model.xViewEnd());
    return report;
}

void Form1::PrintSiteReport() {
    QPrinter printer(QPrinter::HighResolution);
    if (!dialogs_.choosePrinter(this, printer))
        return;
    const SiteReport report = siteReport();
    const chartexport::Caption caption{QStringLiteral("Site: ") + SiteCode, report.viewRange,
                                       channelNames()};
    const ChartPainter drawChart = [this, &caption](QPainter& p, double dpi, const QRectF& rect) {
        chartexport::paintChart(*Strip1, caption, p, dpi, rect);
    };
    QString failure;
    const QString file = printer.outputFileName();
    if (printer.outputFormat() == QPrinter::PdfFormat && !file.isEmpty()) {
        // A PDF file appears whole or not at all.
        failure = writeWhole(file, [&](QIODevice& out) {
            QPdfWriter pdf(&out);
            pdf.setTitle(QStringLiteral("Site: ") + SiteCode);
            pdf.setResolution(150);
            pdf.setPageLayout(QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Landscape,
                                          QMarginsF(0.5, 0.5, 0.5, 0.5), QPageLayout::Inch));
            return printSiteReport(pdf, report, drawChart);
        });
    } else {
        printer.setPageOrientation(QPageLayout::Landscape);
        if (!printSiteReport(printer, report, drawChart))
            failure = QStringLiteral("The site report could not be printed on %1.")
                          .arg(printer.printerName());
    }
    if (!failure.isEmpty())
        dialogs_.message(this, failure, programTitle(), QMessageBox::Ok, QMessageBox::Warning);
}

// ---- Imbalance ----

void Form1::UpdateImbalance() {
    // A load refreshes the statistics after every day; the window's peak would be scanned again
    // for each of them. It is read once the load has ended.
    if (progress_)
        return;
    const auto reading = imbalance_.read(Strip1->model(), channelNames());
    const QString text = reading ? imbalance::statusText(*reading) : QString();
    imbalancePanel->setText(text);
    imbalancePanel->setVisible(!text.isEmpty());
}

// ---- Drag and drop ----

void Form1::dragEnterEvent(QDragEnterEvent* event) {
    if (!droppedPaths(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void Form1::dropEvent(QDropEvent* event) {
    const QStringList paths = droppedPaths(event->mimeData());
    if (paths.isEmpty())
        return;
    event->acceptProposedAction();
    OpenSite(paths);
}

} // namespace trendax
