#include "app/form1.h"

#include "app/frmsplash.h"
#include "app/toolbaricons.h"
#include "calibration/frmcalibrate2.h"
#include "chart/channellayouts.h"
#include "chart/chartview.h"
#include "chart/navigation.h"
#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
#include "history/historypanel.h"
#include "loading/readahead.h"
#include "storage/datetime.h"
#include "storage/debuglog.h"
#include "storage/dialogs.h"
#include "storage/environment.h"
#include "storage/numbers.h"
#include "storage/packedcolor.h"
#include "storage/programtitle.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QFrame>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPainter>
#include <QPrinter>
#include <QProgressBar>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>
#include <QTableWidget>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>

namespace trendax {

namespace {

struct ButtonSpec {
    const char* caption;
    const char* key;
    const char* tip;
    const char* image;
};

// Left to right, as field engineers know the toolbar.
constexpr ButtonSpec buttonSpecs[] = {
    {"Open", "open", "Open file(s) for a well.", "open"},
    {"Print", "print", "Print the chart area.", "print"},
    {"Zoom All", "zoomall", "Zoom to view the entire chart data.", "zoomall"},
    {"Zoom Out", "minus", "Zoom out the chart.", "3dminus"},
    {"Zoom In", "plus", "Zoom in the chart.", "3dplus"},
    {"Left", "left", "Scroll left on the chart.", "left"},
    {"Right", "right", "Scroll right on the chart.", "right"},
    {"Points", "points", "Show or hide the data points on the chart.", "graph"},
    {"X Scale", "xscale", "Select a X scale/span.", "scale"},
    {"Calibrate", "yscale", "Change calibration factor for Y scale.", "scale"},
    {"Tracks", "tracks", "Change number of tracks on chart.", "points"},
    {"Stats", "stats", "Show or hide the statistics window.", "stats"},
    {"History", "history", "Show or hide the history list.", "history"},
    {"About", "help", "About Trendax", "help"},
};

struct MenuItemSpec {
    const char* caption;
    const char* key;
};

constexpr MenuItemSpec xscaleItems[] = {
    {"1 Hour", "1hour"}, {"1 Day", "1day"}, {"1 Week", "1week"}, {"30 Days", "30days"}};
constexpr MenuItemSpec tracksItems[] = {{"Separate", "tracksseparate"},
                                        {"Current and Voltage", "trackscandv"}};

} // namespace

// ---- Construction ----

Form1::Form1(Environment& env, Dialogs& dialogs, const QString& argumentText, QWidget* parent)
    : QMainWindow(parent), env_(env), dialogs_(dialogs),
      debugLog_(std::make_unique<DebugLog>(env)) {
    setObjectName(QStringLiteral("Form1"));
    buildToolbar();
    buildMenus();
    buildBands();

    StatusBar1 = statusBar();
    statusPanels[0] = new QLabel(this);
    statusPanels[1] = new QLabel(QStringLiteral("Cursor:"), this);
    statusPanels[1]->setMinimumWidth(twipsToPixels(4000));
    StatusBar1->addWidget(statusPanels[0], 1);
    StatusBar1->addWidget(statusPanels[1], 0);
    ProgressBar1 = new QProgressBar(this);
    ProgressBar1->setMaximumWidth(twipsToPixels(3000));
    ProgressBar1->setTextVisible(false);
    StatusBar1->addPermanentWidget(ProgressBar1);
    buildExportMenu();
    buildReferencePanel();

    // Initial colours and tracks, until saved colours are loaded.
    for (int v = 0; v < 13; ++v) {
        const auto init = layouts::initialVariable(v);
        Strip1->setCurrentVar(v);
        Strip1->setVarColor(init.color);
        Strip1->setVarTrack(init.track);
    }

    tmrUI = new QTimer(this);
    tmrUI->setInterval(200);
    connect(tmrUI, &QTimer::timeout, this, &Form1::tmrUI_Timer);

    connect(Strip1, &StripChart::CursorChange, this, &Form1::Strip1_CursorChange);
    connect(Strip1, &StripChart::ChartMouseDown, this, &Form1::Strip1_ChartMouseDown);
    connect(Strip1, &StripChart::MarkerClick, this, &Form1::Strip1_MarkerClick);
    connect(Strip1, &StripChart::ZoomAllRequest, this, &Form1::Strip1_ZoomAllRequest);
    connect(frameHist, &HistoryPanel::eventClicked, this, &Form1::lstHST_Click);
    connect(frameHist, &HistoryPanel::commentClicked, this, &Form1::gridHistoryEvents_Click);
    connect(frameHist, &HistoryPanel::addCommentClicked, this, &Form1::cmdAddComment_Click);
    connect(picStats, &StatsPanel::nameClicked, this, &Form1::lblVar_Click);
    connect(picStats, &StatsPanel::visibilityChanged, this,
            [this](int row, bool) { chkChannelVisible_Click(row); });
    for (int k = 1; k <= int(mnuChannel.size()); ++k) {
        QAction* item = mnuChannel[size_t(k - 1)];
        connect(item, &QAction::triggered, this, [this, item, k] {
            // The menu has already moved the check mark; the handler moves it itself, as it
            // does when called directly.
            item->setChecked(!item->isChecked());
            mnuChannel_Click(k);
        });
    }
    connect(mnuGraphSettings, &QAction::triggered, this, &Form1::mnuGraphSettings_Click);
    // The comment under the pointer becomes the grid's tooltip.
    gridHistoryEvents->viewport()->setMouseTracking(true);
    gridHistoryEvents->viewport()->installEventFilter(this);
    gridHistoryEvents->horizontalHeader()->setMouseTracking(true);
    gridHistoryEvents->horizontalHeader()->installEventFilter(this);

    // Large enough for the whole toolbar and the statistics panel; the window still opens at
    // the top-left corner (Form_Load).
    const QScreen* where = screen() ? screen() : QGuiApplication::primaryScreen();
    const QSize available = where ? where->availableGeometry().size() : QSize();
    resize(chartview::initialWindowSize(available, {twipsToPixels(12000), twipsToPixels(9000)}));
    Form_Load(argumentText);
    tmrUI->start();
}

Form1::~Form1() = default;

void Form1::buildToolbar() {
    Toolbar1 = addToolBar(QStringLiteral("Toolbar1"));
    Toolbar1->setObjectName(QStringLiteral("Toolbar1"));
    Toolbar1->setMovable(false);
    Toolbar1->setFloatable(false);
    Toolbar1->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    Toolbar1->setIconSize(QSize(24, 24));
    Toolbar1->toggleViewAction()->setEnabled(false);
    Toolbar1->installEventFilter(this);

    for (const ButtonSpec& face : buttonSpecs) {
        const QString key = QString::fromLatin1(face.key);
        auto* button = new QToolButton(Toolbar1);
        button->setObjectName(key);
        button->setText(QString::fromLatin1(face.caption));
        button->setToolTip(QString::fromLatin1(face.tip));
        button->setIcon(toolbarIcon(QString::fromLatin1(face.image)));
        button->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
        button->setAutoRaise(true);
        button->installEventFilter(this);

        const MenuItemSpec* items = nullptr;
        size_t count = 0;
        if (key == QLatin1String("xscale")) {
            items = xscaleItems;
            count = std::size(xscaleItems);
        } else if (key == QLatin1String("tracks")) {
            items = tracksItems;
            count = std::size(tracksItems);
        }
        if (items) {
            // The face of a drop-down button does nothing; only its menu items act.
            auto* menu = new QMenu(button);
            for (size_t i = 0; i < count; ++i) {
                const QString itemKey = QString::fromLatin1(items[i].key);
                QAction* a = menu->addAction(QString::fromLatin1(items[i].caption));
                a->setObjectName(itemKey);
                connect(a, &QAction::triggered, this,
                        [this, itemKey] { Toolbar1_ButtonMenuClick(itemKey); });
            }
            button->setMenu(menu);
            button->setPopupMode(QToolButton::MenuButtonPopup);
        } else {
            connect(button, &QToolButton::clicked, this,
                    [this, key] { Toolbar1_ButtonClick(key); });
        }
        Toolbar1->addWidget(button);
        if (key == QLatin1String("print") || key == QLatin1String("right") ||
            key == QLatin1String("tracks") || key == QLatin1String("history"))
            Toolbar1->addSeparator();
    }
    // Only a loaded one-channel log can be calibrated; the data log reader enables it.
    toolButton(QStringLiteral("yscale"))->setEnabled(false);
}

void Form1::buildMenus() {
    // No menu bar shows; the menus exist for the chart's context menu and for the commands
    // that only they carry.
    QMenuBar* bar = menuBar();
    mnuFile = bar->addMenu(QStringLiteral("&File"));
    mnuOpen = mnuFile->addAction(QStringLiteral("&Open"));
    mnuOpen->setEnabled(false);
    mnuPrint = mnuFile->addAction(QStringLiteral("&Print"));
    mnuExit = mnuFile->addAction(QStringLiteral("E&xit"));
    connect(mnuExit, &QAction::triggered, this, &QWidget::close);

    mnuAutoScale = bar->addAction(QStringLiteral("AutoScale"));
    connect(mnuAutoScale, &QAction::triggered, this, &Form1::AutoScaleY);
    mnuAutoScaleX = bar->addAction(QStringLiteral("AutoScale X"));
    connect(mnuAutoScaleX, &QAction::triggered, this, &Form1::ZoomAll);

    popup1 = bar->addMenu(QStringLiteral("popup1"));
    mnuStripChartSettings = popup1->addAction(QStringLiteral("Strip Chart Settings"));
    connect(mnuStripChartSettings, &QAction::triggered, this,
            [this] { Strip1->ShowSettingsDialog(dialogs()); });

    popup2 = bar->addMenu(QStringLiteral("popup2"));
    mnuQuillChannelsMenu = popup2->addMenu(QStringLiteral("Quill Channels"));
    mnuQuillChannels = mnuQuillChannelsMenu->menuAction();
    // The submenu itself is disabled, not only its action: re-enabling the window after a load
    // would otherwise enable the menu again.
    mnuQuillChannelsMenu->setEnabled(false);
    for (int k = 0; k < 8; ++k) {
        QAction* item = mnuQuillChannelsMenu->addAction(QString::number(k + 1));
        item->setCheckable(true);
        item->setChecked(k < 3);
        mnuChannel[size_t(k)] = item;
    }
    mnuGraphSettings = popup2->addAction(QStringLiteral("Graph Settings"));
    mnuGraphSettings->setVisible(false);
    mnuGraphSettings->setEnabled(false);
    bar->setVisible(false);
}

void Form1::buildBands() {
    auto* central = new QWidget(this);
    setCentralWidget(central);
    CoolBar1 = new QSplitter(Qt::Horizontal, central);
    CoolBar1->setObjectName(QStringLiteral("CoolBar1"));
    CoolBar1->setChildrenCollapsible(false);
    CoolBar1->setHandleWidth(5);

    frameHist = new HistoryPanel(CoolBar1);
    lstHST = frameHist->lstHST;
    cmdAddComment = frameHist->cmdAddComment;
    gridHistoryEvents = frameHist->gridHistoryEvents;

    frameGraph = new QFrame(CoolBar1);
    frameGraph->setObjectName(QStringLiteral("frameGraph"));
    frameGraph->setAutoFillBackground(true);
    frameGraph->setPalette(QPalette(QColor(215, 215, 255)));
    frameGraph->setMinimumWidth(twipsToPixels(1995));
    Strip1 = new StripChart(frameGraph);
    Strip1->setObjectName(QStringLiteral("Strip1"));
    picStats = new StatsPanel(logicalDpi(), frameGraph);
    lblCursor = picStats->lblCursor;
    stats = picStats->rows;

    CoolBar1->addWidget(frameHist);
    CoolBar1->addWidget(frameGraph);
    CoolBar1->setStretchFactor(0, 0);
    CoolBar1->setStretchFactor(1, 1);
    CoolBar1->setSizes({twipsToPixels(2955), twipsToPixels(4035)});
    CoolBar1->handle(1)->installEventFilter(this);
}

// ---- Start-up and shutdown ----

void Form1::Form_Load(const QString& argumentText) {
    move(0, 0);
    setWindowTitle(mainWindowCaption());
    Strip1->setBackColor(packedColor(255, 255, 210));
    LoadChannelColors();
    InitCommentGrid();
    Strip1->setMaxBufferSize(20000);
    LayoutSeparate();
    // Exactly the one word, letter case included; anything else leaves the log off.
    bbDebugOut = argumentText == QLatin1String("debug");
    DebugOutBegin();
}

void Form1::Form_Unload() {
    SaveChannelColors();
}

void Form1::closeEvent(QCloseEvent* event) {
    Form_Unload();
    event->accept();
}

void Form1::keyPressEvent(QKeyEvent*) {}

void Form1::showAbout() {
    frmSplash splash(this);
    dialogs().runModal(splash);
}

// ---- Toolbar and menus ----

QToolButton* Form1::toolButton(const QString& key) const {
    return Toolbar1->findChild<QToolButton*>(key, Qt::FindDirectChildrenOnly);
}

void Form1::Toolbar1_ButtonClick(const QString& key) {
    if (key == QLatin1String("open")) {
        OpenSite();
    } else if (key == QLatin1String("print")) {
        PrintChartPage();
    } else if (key == QLatin1String("zoomall")) {
        ZoomAll();
    } else if (key == QLatin1String("plus")) {
        ZoomTime(0);
    } else if (key == QLatin1String("minus")) {
        ZoomTime(1);
    } else if (key == QLatin1String("left")) {
        ScrollTime(0);
    } else if (key == QLatin1String("right")) {
        ScrollTime(1);
    } else if (key == QLatin1String("points")) {
        TogglePoints();
    } else if (key == QLatin1String("yscale")) {
        OpenCalibrationDialog();
    } else if (key == QLatin1String("stats")) {
        picStats->setVisible(!picStats->isVisible());
        ArrangeControls();
    } else if (key == QLatin1String("history")) {
        setBandWidthTwips(bandWidthTwips() > 2000 ? 100 : 3000);
    } else if (key == QLatin1String("help")) {
        showAbout();
    }
}

void Form1::Toolbar1_ButtonMenuClick(const QString& key) {
    if (navigation::fixedSpan(key)) {
        FixedSpan(key);
    } else if (key == QLatin1String("tracksseparate")) {
        LayoutSeparate();
    } else if (key == QLatin1String("trackscandv")) {
        LayoutCurrentAndVoltage();
    }
}

void Form1::Strip1_ChartMouseDown(int button, int, double x, double y) {
    if (button == 2)
        popup2->popup(Strip1->mapToGlobal(QPoint(int(x), int(y))));
}

bool Form1::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseMove && (watched == gridHistoryEvents->viewport() ||
                                               watched == gridHistoryEvents->horizontalHeader())) {
        const auto* move = static_cast<QMouseEvent*>(event);
        gridHistoryEvents_MouseMove(
            static_cast<QWidget*>(watched)->mapTo(gridHistoryEvents, move->position().toPoint()));
    }
    const bool press = event->type() == QEvent::MouseButtonPress;
    const bool release = event->type() == QEvent::MouseButtonRelease;
    auto* widget = qobject_cast<QWidget*>(watched);
    if ((press || release) && widget &&
        (widget == Toolbar1 || widget->parentWidget() == Toolbar1)) {
        // The toolbar's mouse, wherever on it: a button reports in its own coordinates.
        const auto* mouse = static_cast<QMouseEvent*>(event);
        const QPointF at = widget->mapTo(Toolbar1, mouse->position().toPoint());
        const int button = mouse->button() == Qt::RightButton    ? 2
                           : mouse->button() == Qt::MiddleButton ? 4
                                                                 : 1;
        const Qt::KeyboardModifiers m = mouse->modifiers();
        const int shift = (m & Qt::ShiftModifier ? 1 : 0) | (m & Qt::ControlModifier ? 2 : 0) |
                          (m & Qt::AltModifier ? 4 : 0);
        if (press)
            Toolbar1_MouseDown(button, shift, at.x(), at.y());
        else
            Toolbar1_MouseUp(button, shift, at.x(), at.y());
    }
    if (release && watched == CoolBar1->handle(1))
        ArrangeBands();
    return QMainWindow::eventFilter(watched, event);
}

// ---- Window events ----

void Form1::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    if (resizing_)
        return;
    resizing_ = true;
    if (!isMinimized())
        ArrangeControls();
    resizing_ = false;
}

void Form1::tmrUI_Timer() {
    const int width = bandWidthTwips();
    if (width != lastBandWidth_) {
        lastBandWidth_ = width;
        ArrangeControls();
    }
    QCoreApplication::processEvents();
    if (scrollLeft)
        ScrollTime(0);
    if (scrollRight)
        ScrollTime(1);
    // A zoom or scroll changes the window's peak imbalance without refreshing the read-outs.
    UpdateImbalance();
}

// ---- Printing ----

void Form1::PrintChartPage() {
    QPrinter printer(QPrinter::HighResolution);
    if (!dialogs_.choosePrinter(this, printer))
        return; // cancel prints nothing and says nothing
    QCoreApplication::processEvents();
    printer.setPageOrientation(QPageLayout::Landscape);
    QPainter painter;
    if (!painter.begin(&printer)) {
        printer.abort();
        return;
    }
    Strip1->setCaption(QStringLiteral("Site: ") + SiteCode);
    Strip1->setLegendNames(channelNames());
    Strip1->PrintChart(painter, printer.resolution(), 1.5, 1.5, 8.0, 4.5);
    if (!painter.end())
        return;
    Strip1->setCaption(QString());
}

// ---- Navigation, cursor and statistics ----

void Form1::AutoScaleY() {
    navigation::autoScaleY(Strip1->model());
}

void Form1::ZoomAll() {
    Strip1->ShowXRange(XMin, XMax);
}

void Form1::ZoomTime(int mode) {
    navigation::zoomTime(Strip1->model(), mode);
}

void Form1::ScrollTime(int mode) {
    navigation::scrollTime(Strip1->model(), mode);
}

void Form1::TogglePoints() {
    showPoints = !showPoints;
    for (int v = 0; v < Strip1->VarCount(); ++v) {
        Strip1->setCurrentVar(v);
        Strip1->setVarSymbol(showPoints ? v + 1 : 0);
    }
}

void Form1::FixedSpan(const QString& key) {
    if (const auto span = navigation::fixedSpan(key))
        Strip1->setXSpan(*span);
}

void Form1::UpdateStatistics() {
    for (int i = 0; i < 13; ++i) {
        picStats->showStatistics(i, {Strip1->CursorValue(i), Strip1->ViewMin(i), Strip1->ViewAvg(i),
                                     Strip1->ViewMax(i), Strip1->DataMin(i), Strip1->DataAvg(i),
                                     Strip1->DataMax(i)});
    }
    UpdateImbalance();
    UpdateReferenceDisplay();
}

void Form1::setCursorText(double x) {
    const QString text = datetime::formatGeneral(x);
    picStats->setCursorText(text);
    statusPanels[1]->setText(QStringLiteral("Cursor: ") + text);
    // A message hides the panels while it shows; the cursor's new time is worth more.
    StatusBar1->clearMessage();
}

void Form1::showStatusMessage(const QString& text) {
    // For a while only: the message covers the cursor and imbalance panels.
    StatusBar1->showMessage(text, 10'000);
}

void Form1::UpdateCursorDisplay() {
    setCursorText(Strip1->CursorX());
    UpdateStatistics();
}

void Form1::Strip1_CursorChange(double x) {
    if (cursorBusy_)
        return;
    cursorBusy_ = true;
    setCursorText(x);
    UpdateStatistics();
    // The dialog gets channel 0's value as shown, rounded to two decimals, not the chart's own.
    if (calibrationDialog_ && calibrationDialog_->isVisible()) {
        if (const auto shown = numbers::parse(picStats->rows[0].lblCursorValue->text()))
            calibrationDialog_->SetCursorValue(*shown);
    }
    cursorBusy_ = false;
}

// ---- Diagnostic log ----

void Form1::DebugOutBegin() {
    debugLog_->bbDebugOut = bbDebugOut;
    debugLog_->DebugOutBegin();
}

void Form1::DebugOut(const QString& message) {
    debugLog_->bbDebugOut = bbDebugOut;
    debugLog_->DebugOut(message);
}

// ---- History and comments ----

void Form1::InitCommentGrid() {
    frameHist->initCommentGrid(twipsToPixels(1400));
}

} // namespace trendax
