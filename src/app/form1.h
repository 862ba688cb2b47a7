#pragma once

#include "app/sitereport.h"
#include "chart/channellayouts.h"
#include "chart/csvexport.h"
#include "chart/eventmarkers.h"
#include "chart/imbalance.h"
#include "chart/statspanel.h"
#include "chart/xyarray.h"
#include "history/historypanel.h"
#include "history/usercomments.h"
#include "loading/wellload.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QMainWindow>
#include <QPointer>
#include <QStringList>
#include <array>
#include <memory>

class QDragEnterEvent;
class QDropEvent;
class QFrame;
class QLabel;
class QMenu;
class QAction;
class QProgressBar;
class QPushButton;
class QSplitter;
class QStatusBar;
class QTableWidget;
class QTimer;
class QToolBar;
class QToolButton;
class QTreeWidgetItem;

namespace trendax {

class Dialogs;
class Environment;
class StripChart;
class DebugLog;
class DataLogReadAhead;
class dlgOpen;
class dlgProgress;
class frmCalibrate2;

// The program's main window: toolbar, history column, chart column with the statistics panel,
// status bar. It owns every piece of state that outlives one command.
class Form1 : public QMainWindow {
    Q_OBJECT

public:
    // argumentText: everything on the command line after the program's name.
    Form1(Environment& env, Dialogs& dialogs, const QString& argumentText = {},
          QWidget* parent = nullptr);
    ~Form1() override;

    // ---- State that outlives a command ----
    bool bbDebugOut = false;
    // A load parses the next day's data log on the machine's other core while this thread hands
    // the current day to the chart; off, every day is read here, one after the other.
    bool readAhead = true;
    qint16 numChannels = 0;
    double XMin = 0;
    double XMax = 0;
    QString SiteCode;
    double mScale = 0;
    double mOffset = 0;
    QString ScaleFilePath;
    QString OffsetFilePath;
    trendax::NodeCopy NodeCopy;
    std::array<std::shared_ptr<const XYArray>, 13> HandoverArray;
    qint32 LoadedRowTotal = 0;
    bool showPoints = false;
    bool scrollLeft = false;
    bool scrollRight = false;

    // ---- Controls ----
    // The history column (frameHist) and the statistics panel (picStats) own their controls;
    // lstHST, cmdAddComment, gridHistoryEvents, lblCursor and stats point into them.
    QToolBar* Toolbar1 = nullptr;
    QSplitter* CoolBar1 = nullptr;
    HistoryPanel* frameHist = nullptr;
    QFrame* frameGraph = nullptr;
    HistoryList* lstHST = nullptr;
    QPushButton* cmdAddComment = nullptr;
    QTableWidget* gridHistoryEvents = nullptr;
    StripChart* Strip1 = nullptr;
    StatsPanel* picStats = nullptr;
    QLabel* lblCursor = nullptr;
    std::array<StatsRow, 13> stats;
    QStatusBar* StatusBar1 = nullptr;
    std::array<QLabel*, 2> statusPanels{};
    QProgressBar* ProgressBar1 = nullptr;
    QTimer* tmrUI = nullptr;
    QMenu* mnuFile = nullptr;
    QMenu* popup1 = nullptr;
    QMenu* popup2 = nullptr;
    QAction* mnuOpen = nullptr;
    QAction* mnuPrint = nullptr;
    QAction* mnuExit = nullptr;
    QAction* mnuAutoScale = nullptr;
    QAction* mnuAutoScaleX = nullptr;
    QAction* mnuStripChartSettings = nullptr;
    QMenu* mnuQuillChannelsMenu = nullptr;
    QAction* mnuQuillChannels = nullptr;
    std::array<QAction*, 8> mnuChannel{};
    QAction* mnuGraphSettings = nullptr;
    // After the specified items of popup2: "Export View...", "Site Report...", "Copy Chart".
    QAction* mnuExportView = nullptr;
    QAction* mnuSiteReport = nullptr;
    QAction* mnuCopyChart = nullptr;
    // The status bar's current imbalance, shown only for loads with three phase currents.
    QLabel* imbalancePanel = nullptr;
    // The status bar's reference cursor time and the cursor's distance from it, shown while the
    // reference cursor is set.
    QLabel* referencePanel = nullptr;
    // The site folder of the last selection, where the open dialog's folder list starts.
    QString lastSiteFolder;

    // The toolbar button with the given key ("open", "print", ... "help").
    QToolButton* toolButton(const QString& key) const;
    // The progress window of the load under way, or null.
    dlgProgress* progressDialog() const;

    // ---- Start-up and shutdown ----
    void Form_Load(const QString& argumentText);
    void Form_Unload();

    // ---- Arrangement, toolbar, printing ----
    void ArrangeBands();
    void ArrangeControls();
    void PrintChartPage();
    void Toolbar1_ButtonClick(const QString& key);
    void Toolbar1_ButtonMenuClick(const QString& key);
    void Strip1_ChartMouseDown(int button, int shift, double x, double y);
    // Home on the focused chart.
    void Strip1_ZoomAllRequest();
    void tmrUI_Timer();
    // Width of band 1 (the history column) in twips.
    int bandWidthTwips() const;
    void setBandWidthTwips(int twips);
    // Twips to pixels and back with the screen's logical resolution.
    int twipsToPixels(double twips) const;
    double pixelsToTwips(int pixels) const;

    // ---- Loading a site ----
    void CopySelectedNode(const QTreeWidgetItem* node, double startdate, double enddate);
    void LoadWell();
    void LoadQXL(const QString& path);
    // Days of the last load that the read-ahead parsed.
    int daysReadAhead() const { return daysReadAhead_; }
    // Lets pending window events run. Throttled calls (every 1000 rows, after every channel of a
    // load) run them at most every 40 ms: the window stays responsive and repaints as often as
    // anyone can see, and a fast load is not slowed down by repainting thousands of times.
    void LetEventsRun(bool throttled = false);
    // Whether a throttled LetEventsRun would run events now.
    bool eventsDue() const;
    void DebugOutBegin();
    void DebugOut(const QString& message);
    // Opens the open dialog; dropped files and folders are imported in it first.
    void OpenSite(const QStringList& dropped = {});

    // ---- Channel sets and layouts ----
    void ApplyLayout(layouts::Layout layout);
    void LayoutSingleChannel();
    void LayoutSeparate();
    void LayoutCurrentAndVoltage();
    void LayoutGaugeChannels();
    void LayoutAllChannels();
    void SetTrackColor(int track, quint32 color);
    void LoadChannelColors();
    void SaveChannelColors();

    // ---- Navigation, cursor and statistics ----
    void AutoScaleY();
    void ZoomAll();
    void ZoomTime(int mode);
    void ScrollTime(int mode);
    void TogglePoints();
    void FixedSpan(const QString& key);
    void UpdateStatistics();
    void UpdateCursorDisplay();
    void Strip1_CursorChange(double x);
    // The chart's reference cursor was set, moved or removed.
    void Strip1_ReferenceChange();
    // Refreshes the reference read-outs (status bar, "Ref Value" and "Delta") from the chart's
    // cursor and reference cursor, or takes them away when there is no reference cursor.
    void UpdateReferenceDisplay();
    // A click on the name of row i: the colour chooser for the channel.
    void lblVar_Click(int i);
    // Row i's visibility box changed (by the user or by the program).
    void chkChannelVisible_Click(int i);
    // Item k (1 to 8) of the "Quill Channels" menu was chosen.
    void mnuChannel_Click(int k);
    // "Graph Settings": asks for the chart's buffer size.
    void mnuGraphSettings_Click();
    // A mouse button went down or up on the toolbar, at x, y in its coordinates.
    void Toolbar1_MouseDown(int button, int shift, double x, double y);
    void Toolbar1_MouseUp(int button, int shift, double x, double y);

    // ---- Calibration ----
    // Opens the calibration dialog of a one-channel log, or raises it when it is open already.
    void OpenCalibrationDialog();
    // Shows an open calibration dialog the factors of the site loaded last.
    void ShowFactorsInCalibrationDialog();
    // The calibration dialog while it is open, else null.
    frmCalibrate2* calibrationDialog() const;
    // Writes the site's new factors (the scale file, then the offset file) and loads the site
    // again so that they apply; a failure stops it where it happens, silently.
    void WriteCalibrationFactors(const QString& scaleText, const QString& offsetText);

    // ---- History and comments ----
    void InitCommentGrid();
    // Appends the entries of one site-day history file to lstHST.
    void LoadHistoryFile(const QString& path);
    // Refills the comment grid from the site's comments file, sorted.
    void LoadUserComments(const QString& path);
    void cmdAddComment_Click();
    void lstHST_Click(int row);
    void gridHistoryEvents_Click(int row);
    // pos: the pointer in gridHistoryEvents' own coordinates.
    void gridHistoryEvents_MouseMove(const QPoint& pos);
    // Gives the chart a marker for every entry of lstHST and every row of gridHistoryEvents.
    void UpdateEventMarkers();
    // A click on a marker's flag does what a click on its event or comment row does.
    void Strip1_MarkerClick(MarkerSource source, int index);

    // ---- Export, report, clipboard, imbalance ----
    void ExportView();
    // Writes the view to path in the format its suffix names; the message for the user on
    // failure, otherwise the empty text (also when the picture size prompt is cancelled).
    QString exportViewTo(const QString& path);
    // The channel names the statistics panel shows, by variable.
    QStringList channelNames() const;
    // The loaded channels, headed by their names in the statistics panel.
    std::vector<csvexport::Column> exportColumns() const;
    void PrintSiteReport();
    SiteReport siteReport() const;
    void CopyChart();
    void UpdateImbalance();

    Environment& environment() { return env_; }
    Dialogs& dialogs() { return dialogs_; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    // No menu of toolbars: the chart's own is the window's only context menu.
    QMenu* createPopupMenu() override { return nullptr; }

private:
    void buildToolbar();
    void buildMenus();
    void buildBands();
    void buildExportMenu();
    void buildReferencePanel();
    void showAbout();
    void setCursorText(double x);
    void showStatusMessage(const QString& text);
    double logicalDpi() const;
    // Shows the grid rows (time TAB comment) in the given order.
    void showCommentRows(const QStringList& rows);
    void setCommentRow(int row, const QString& text);
    // The rows the grid shows, in its order, each as the text it was shown from.
    QStringList commentGridRows() const;
    // Moves the visible window, keeping its width, so that t stands in its middle, and puts the
    // cursor there.
    void centreOn(double t);

    Environment& env_;
    Dialogs& dialogs_;
    std::unique_ptr<DebugLog> debugLog_;
    QPointer<dlgProgress> progress_;
    QPointer<dlgOpen> keptOpenDialog_;
    QPointer<frmCalibrate2> calibrationDialog_;
    QElapsedTimer eventPump_;
    // The bytes of the data log being read, kept from day to day during a load.
    QByteArray readBuffer_;
    // The days of the running load read ahead, or null.
    std::unique_ptr<DataLogReadAhead> readAhead_;
    int daysReadAhead_ = 0;
    int lastBandWidth_ = 0;
    bool resizing_ = false;
    bool cursorBusy_ = false;
    // The comments file is asked for once per day of a load; it is read once.
    history::CommentRowsCache commentRows_;
    // The cached rows the grid shows as they were read, or empty.
    QStringList shownCommentRows_;
    imbalance::Monitor imbalance_;
};

} // namespace trendax
