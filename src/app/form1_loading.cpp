// The main window's routines of opening and loading a site: the open command, the data log
// reader's window side and the well loader.
#include "app/form1.h"
#include "calibration/factorfiles.h"
#include "chart/blockpool.h"
#include "chart/channellayouts.h"
#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
#include "loading/datalog.h"
#include "loading/dlgprogress.h"
#include "loading/readahead.h"
#include "loading/wellload.h"
#include "opendlg/dlgopen.h"
#include "storage/dialogs.h"
#include "storage/environment.h"
#include "storage/programtitle.h"

#include <QApplication>
#include <QMenu>
#include <QProgressBar>
#include <QToolButton>

namespace trendax {

void Form1::LoadQXL(const QString& path) {
    LoadState state;
    state.numChannels = numChannels;
    state.XMin = XMin;
    state.XMax = XMax;
    state.mScale = mScale;
    state.mOffset = mOffset;

    DataLogOptions options;
    options.debugOut = [this](const QString& message) { DebugOut(message); };
    options.dumpTable = bbDebugOut; // the dump is costly and nobody sees it with the log off
    options.readBuffer = &readBuffer_;
    dlgProgress* progress = progress_;
    options.progress = [this, progress](qsizetype row, qsizetype rowCount) {
        // Every 1000 rows, but shown only when events are due to run: a progress bar repaints
        // itself at once on every new value, and thousands of repaints would cost more than the
        // reading. Each file's first line always shows, so that the line count and the bar's
        // length are never those of the file before.
        const bool due = eventsDue();
        if (row != 0 && !due)
            return;
        if (progress) {
            progress->showLine(row, rowCount);
            progress->bringToFront();
        }
        if (due)
            LetEventsRun();
    };

    // Long stretches without rows (a huge file, a gigabyte-long line) still let events run.
    options.keepAlive = [this] { LetEventsRun(true); };

    options.opened = [this] {
        // Slots this file is sure to replace are let go before it is read, so that a day's arrays
        // are not held twice: channel 1 always, and every slot below the load's channel count,
        // which never falls during a load.
        for (int k = 1; k <= int(HandoverArray.size()); ++k) {
            if (k == 1 || numChannels > k - 1)
                HandoverArray[size_t(k - 1)].reset();
        }
    };

    // A file that cannot be opened throws and ends the whole load.
    announceDataLog(path, environment().appFolder(), options);
    DataLogResult result;
    std::optional<DataLogReadAhead::Day> day;
    if (readAhead_) {
        // While the worker finishes the day, its progress shows and the window's events run as
        // they would if this thread were reading.
        qsizetype shownRow = -1;
        day = readAhead_->take(path, state, [&](qsizetype row, qsizetype rowCount) {
            if (row > shownRow && rowCount >= 0) {
                options.progress(row, rowCount);
                shownRow = row;
            }
            LetEventsRun(true);
        });
        if (day) {
            options.opened();
            for (const QString& line : day->lines)
                DebugOut(line);
            for (qsizetype row = shownRow < 0 ? 0 : shownRow + 1000; row < day->result.rowCount;
                 row += 1000)
                options.progress(row, day->result.rowCount);
            state = day->state;
            result = std::move(day->result);
            ++daysReadAhead_;
        }
    }
    if (!day)
        result = openDataLog(path, state, options);

    // The last day's bytes go before its points join the chart, where the load's memory peaks;
    // until then they stay for the next day to be read into.
    if (progress && progress->fileNumber() == progress->fileCount())
        readBuffer_ = QByteArray();

    numChannels = state.numChannels;
    XMin = state.XMin;
    XMax = state.XMax;

    // Every row counts towards the buffer, bad ones too, so the appended days always fit.
    const bool firstFile = progress && progress->fileNumber() == 1;
    LoadedRowTotal = nextLoadedRowTotal(LoadedRowTotal, result.rowCount, firstFile);
    if (LoadedRowTotal > Strip1->MaxBufferSize())
        Strip1->setMaxBufferSize(LoadedRowTotal);

    if (result.yscaleEnabled)
        toolButton(QStringLiteral("yscale"))->setEnabled(*result.yscaleEnabled);
    if (result.tracksEnabled)
        toolButton(QStringLiteral("tracks"))->setEnabled(*result.tracksEnabled);

    for (size_t k = 0; k < result.channels.size(); ++k) {
        if (result.channels[k])
            HandoverArray[k] = result.channels[k];
    }
    DebugOut(QStringLiteral("LoadQXL: vararrys loaded"));
    LetEventsRun();

    const HandoverPlan plan = planHandover(numChannels);
    for (const HandoverStep& step : plan.steps) {
        const int var = step.channel - 1;
        try {
            Strip1->AddXYArray(var, HandoverArray[size_t(var)].get());
        } catch (const ChartError& e) {
            // A slot that holds nothing is skipped; only channel 1's refusal is traced.
            if (step.channel == 1)
                DebugOut(QStringLiteral("LoadQXL: Strip1.AddXYArray 0; Err = ") +
                         QString::fromUtf8(e.what()));
        }
        Strip1->setCurrentVar(var);
        Strip1->setVarName(QStringLiteral("Var%1").arg(step.channel));
        if (step.visible)
            Strip1->setVarVisible(*step.visible);
        if (step.checkMenuItem > 0)
            mnuChannel[size_t(step.checkMenuItem - 1)]->setChecked(true);
        LetEventsRun(true);
    }
    if (plan.tracksEnabled)
        toolButton(QStringLiteral("tracks"))->setEnabled(*plan.tracksEnabled);
    if (plan.quillChannelsEnabled)
        mnuQuillChannelsMenu->setEnabled(*plan.quillChannelsEnabled);

    AutoScaleY();
    UpdateStatistics();
}

dlgProgress* Form1::progressDialog() const {
    return progress_;
}

bool Form1::eventsDue() const {
    return !eventPump_.isValid() || eventPump_.elapsed() >= 40;
}

void Form1::LetEventsRun(bool throttled) {
    if (throttled && !eventsDue())
        return;
    QCoreApplication::processEvents();
    eventPump_.start();
}

void Form1::OpenSite(const QStringList& dropped) {
    auto* dialog = new dlgOpen(environment(), dialogs(), this);
    if (!lastSiteFolder.isEmpty())
        dialog->setDir1Path(lastSiteFolder);
    dialog->importWhenShown(dropped);
    dialogs().runModal(*dialog);
    if (QTreeWidgetItem* site = dialog->SelectedSite) {
        lastSiteFolder = site->data(0, dlgOpen::TagRole).toString();
        CopySelectedNode(site, dialog->startDate(), dialog->endDate());
        LoadWell();
        delete dialog;
        return;
    }
    // Without a site the dialog stays loaded and hidden until the next one replaces it.
    delete keptOpenDialog_;
    keptOpenDialog_ = dialog;
}

void Form1::CopySelectedNode(const QTreeWidgetItem* node, double startdate, double enddate) {
    QStringList children;
    for (int i = 0; node && i < node->childCount(); ++i)
        children << node->child(i)->text(0);
    NodeCopy =
        trendax::CopySelectedNode(node ? node->text(0) : QString(),
                                  node ? node->data(0, dlgOpen::TagRole).toString() : QString(),
                                  children, startdate, enddate);
}

void Form1::LoadWell() {
    DebugOut(QStringLiteral("LoadWell()"));
    bool busyPointer = false;
    const auto restoreWindow = [&] {
        // A load starts a new zoom history: the window it ends on is the first view, and the
        // windows of the days on the way are forgotten.
        Strip1->model().restartViewHistory();
        lstHST->holdLayout(false);
        Strip1->setCurveRepaintInterval(0);
        // Once for the whole load: rebuilding tens of thousands of markers per day would cost.
        UpdateEventMarkers();
        readBuffer_ = QByteArray(); // only a load needs it
        readAhead_.reset();
        if (progress_)
            progress_->close();
        delete progress_;
        UpdateImbalance(); // skipped while the days were loading
        ShowFactorsInCalibrationDialog();
        setEnabled(true);
        raise();
        activateWindow();
        if (busyPointer)
            QApplication::restoreOverrideCursor();
    };
    try {
        const QString appFolder = environment().appFolder();
        mOffset = ReadOffset(appFolder, NodeCopy.text, OffsetFilePath);
        mScale = ReadScale(appFolder, NodeCopy.text, ScaleFilePath);

        Strip1->setChartMode(1);
        Strip1->setXSpan(2);
        lstHST->clear();
        Strip1->setEventMarkers({});
        // A reference time belongs to the data it was set on.
        Strip1->model().setReferenceX(std::nullopt);
        lstHST->holdLayout(true);
        // The chart still grows day by day on screen, a few times a second.
        Strip1->setCurveRepaintInterval(200);
        Strip1->ClearData();

        SiteCode = NodeCopy.text;
        setWindowTitle(mainWindowCaption() + QStringLiteral(" - Site: ") + SiteCode);
        XMin = 1e11;
        XMax = 0;
        numChannels = 0;
        QApplication::setOverrideCursor(Qt::WaitCursor);
        busyPointer = true;

        WellLoadHooks hooks;
        hooks.debugOut = [this](const QString& message) { DebugOut(message); };
        hooks.beginLoading = [this](int count) {
            progress_ = new dlgProgress(this);
            progress_->show();
            progress_->bringToFront();
            progress_->beginFiles(count);
            setEnabled(false);
            // A window of its own: disabled together with the main window it would be greyed
            // out for the whole load.
            progress_->setEnabled(true);
            daysReadAhead_ = 0;
            if (readAhead) {
                LoadState start;
                start.mScale = mScale;
                start.mOffset = mOffset;
                readAhead_ = std::make_unique<DataLogReadAhead>(
                    DataLogReadAhead::Settings{dataLogsInRange(NodeCopy), start, bbDebugOut});
            }
        };
        hooks.loadDay = [this](int fileNumber, int count, const QString& dataLog,
                               const QString& historyFile) {
            progress_->showFile(fileNumber, count);
            const std::size_t chartBytes = Strip1->model().allocatedBytes();
            LoadQXL(dataLog);
            // The next day will most likely need what this one took: have the chart's memory
            // for it faulted in on the other core while its log is read.
            const std::size_t dayBytes = Strip1->model().allocatedBytes();
            if (fileNumber < count && dayBytes > chartBytes)
                BlockPool::shared().prepare(dayBytes - chartBytes);
            LoadHistoryFile(historyFile);
        };
        const QString commentsFile = commentsFilePath(appFolder, SiteCode);
        hooks.afterDateCode = [this, &commentsFile] {
            LoadUserComments(commentsFile);
            Strip1->ShowXRange(XMin, XMax);
        };
        runWellLoadPasses(NodeCopy, hooks);

        progress_->finishFiles();
        ProgressBar1->setVisible(false);
        Strip1->setCursorX(XMin + (XMax - XMin) / 2);
        UpdateCursorDisplay();
        // Two to four channels keep the layout they had.
        if (const auto layout = layouts::forChannelCount(numChannels))
            ApplyLayout(*layout);
        restoreWindow();
    } catch (const std::exception& e) {
        // What was loaded stays; the cursor, the layout and the progress bar are left alone.
        DebugOut(QStringLiteral("LoadWell().ERR1: ") + QString::fromUtf8(e.what()));
        restoreWindow();
    }
}

} // namespace trendax
