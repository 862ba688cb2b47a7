#include "app/form1.h"

#include "app/channellayouts.h"
#include "app/dialogs.h"
#include "app/frmsplash.h"
#include "app/readouts.h"
#include "app/toolbaricons.h"
#include "chart/stripchart.h"
#include "storage/datetime.h"
#include "storage/debuglog.h"
#include "storage/environment.h"
#include "version.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QFrame>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPainter>
#include <QPrinter>
#include <QProgressBar>
#include <QPushButton>
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

// Column headings of the statistics panel and their left edges in twips.
constexpr std::pair<const char*, int> statsColumns[] = {
    {"Cursor Value", 2160}, {"Min Disp", 3240}, {"Avg Disp", 4320}, {"Max Disp", 5160},
    {"Min", 6120},          {"Average", 7200},  {"Max", 8040}};

int rowTopTwips(int row) {
    return row < 5 ? 540 + 210 * row : 1680 + 240 * (row - 5);
}

QColor toQColor(quint32 packed) {
    return QColor(int(packed & 0xFF), int((packed >> 8) & 0xFF), int((packed >> 16) & 0xFF));
}

quint32 toPacked(const QColor& c) {
    return quint32(c.red()) + 256u * quint32(c.green()) + 65536u * quint32(c.blue());
}

} // namespace

// ---- Construction ----

Form1::Form1(Environment& env, Dialogs& dialogs, const QString& argumentText, QWidget* parent)
    : QMainWindow(parent), env_(env), dialogs_(dialogs),
      debugLog_(std::make_unique<DebugLog>(env)) {
    setObjectName(QStringLiteral("Form1"));
    buildToolbar();
    buildMenus();
    buildBands();
    buildStatsPanel();

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

    resize(twipsToPixels(12000), twipsToPixels(9000));
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
            [this] { Strip1->ShowSettingsDialog(); });

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

    frameHist = new QFrame(CoolBar1);
    frameHist->setObjectName(QStringLiteral("frameHist"));
    frameHist->setAutoFillBackground(true);
    frameHist->setPalette(QPalette(Qt::white));
    frameHist->setMinimumWidth(1);

    lstHST = new QListWidget(frameHist);
    lstHST->setObjectName(QStringLiteral("lstHST"));
    lstHST->setToolTip(QStringLiteral("Click an event to locate on the graph."));
    cmdAddComment = new QPushButton(QStringLiteral("Add Comment"), frameHist);
    cmdAddComment->setObjectName(QStringLiteral("cmdAddComment"));
    gridHistoryEvents = new QTableWidget(0, 2, frameHist);
    gridHistoryEvents->setObjectName(QStringLiteral("gridHistoryEvents"));
    gridHistoryEvents->verticalHeader()->setVisible(false);
    gridHistoryEvents->setEditTriggers(QAbstractItemView::NoEditTriggers);

    frameGraph = new QFrame(CoolBar1);
    frameGraph->setObjectName(QStringLiteral("frameGraph"));
    frameGraph->setAutoFillBackground(true);
    frameGraph->setPalette(QPalette(QColor(215, 215, 255)));
    frameGraph->setMinimumWidth(twipsToPixels(1995));
    Strip1 = new StripChart(frameGraph);
    Strip1->setObjectName(QStringLiteral("Strip1"));
    picStats = new QFrame(frameGraph);
    picStats->setObjectName(QStringLiteral("picStats"));
    picStats->setAutoFillBackground(true);
    picStats->setFrameShape(QFrame::StyledPanel);

    CoolBar1->addWidget(frameHist);
    CoolBar1->addWidget(frameGraph);
    CoolBar1->setStretchFactor(0, 0);
    CoolBar1->setStretchFactor(1, 1);
    CoolBar1->setSizes({twipsToPixels(2955), twipsToPixels(4035)});
    CoolBar1->handle(1)->installEventFilter(this);
}

void Form1::buildStatsPanel() {
    QFont small = font();
    small.setPointSizeF(std::max(7.0, small.pointSizeF() - 1.5));
    picStats->setFont(small);

    auto* cursorHeading = new QLabel(QStringLiteral("Cursor:"), picStats);
    QFont bold = small;
    bold.setBold(true);
    cursorHeading->setFont(bold);
    cursorHeading->setGeometry(twipsToPixels(60), twipsToPixels(30), twipsToPixels(2000),
                               twipsToPixels(240));
    lblCursor = new QLabel(QStringLiteral("mm/dd/yyyy hh:mm:ss am"), picStats);
    lblCursor->setGeometry(twipsToPixels(60), twipsToPixels(270), twipsToPixels(2100),
                           twipsToPixels(240));

    for (const auto& [caption, left] : statsColumns) {
        auto* heading = new QLabel(QString::fromLatin1(caption), picStats);
        heading->setGeometry(twipsToPixels(left), twipsToPixels(270), twipsToPixels(1100),
                             twipsToPixels(240));
    }

    for (int i = 0; i < 13; ++i) {
        StatsRow& row = stats[size_t(i)];
        const int top = rowTopTwips(i);
        row.chkChannelVisible = new QCheckBox(picStats);
        row.chkChannelVisible->setGeometry(0, twipsToPixels(top), twipsToPixels(255),
                                           twipsToPixels(255));
        row.chkChannelVisible->setChecked(i < 8);
        row.Line1 = new QFrame(picStats);
        row.Line1->setFrameShape(QFrame::NoFrame);
        row.Line1->setAutoFillBackground(true);
        row.Line1->setGeometry(twipsToPixels(240), twipsToPixels(top + 120), twipsToPixels(480),
                               std::max(2, twipsToPixels(30)));
        row.lblVar = new QLabel(QStringLiteral("Var%1").arg(i + 1), picStats);
        row.lblVar->setToolTip(QStringLiteral("Click to change color."));
        row.lblVar->setGeometry(twipsToPixels(840), twipsToPixels(top), twipsToPixels(1755),
                                twipsToPixels(255));
        QLabel** readouts[] = {&row.lblCursorValue, &row.lblMinDisp, &row.lblAvgDisp,
                               &row.lblMaxDisp,     &row.lblMin,     &row.lblAvg,
                               &row.lblMax};
        for (size_t c = 0; c < std::size(readouts); ++c) {
            auto* label = new QLabel(QStringLiteral("0"), picStats);
            label->setGeometry(twipsToPixels(statsColumns[c].second), twipsToPixels(top),
                               twipsToPixels(1000), twipsToPixels(255));
            *readouts[c] = label;
        }
    }
}

// ---- Start-up and shutdown ----

QString Form1::programTitle() {
    return QStringLiteral("Trendax 2 - V%1.%2.%3")
        .arg(version::major)
        .arg(version::minor)
        .arg(version::revision);
}

void Form1::Form_Load(const QString& argumentText) {
    move(0, 0);
    setWindowTitle(programTitle());
    Strip1->setBackColor(layouts::rgb(255, 255, 210));
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
    splash.exec();
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
    if (key == QLatin1String("1hour") || key == QLatin1String("1day") ||
        key == QLatin1String("1week") || key == QLatin1String("30days")) {
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
    if (event->type() == QEvent::MouseButtonPress) {
        // Holding Left or Right scrolls on every timer tick until the button is released.
        if (watched == toolButton(QStringLiteral("left")))
            scrollLeft = true;
        else if (watched == toolButton(QStringLiteral("right")))
            scrollRight = true;
    } else if (event->type() == QEvent::MouseButtonRelease) {
        if (watched == Toolbar1 || qobject_cast<QToolButton*>(watched)) {
            scrollLeft = false;
            scrollRight = false;
        }
        if (watched == CoolBar1->handle(1))
            ArrangeBands();
    }
    return QMainWindow::eventFilter(watched, event);
}

// ---- Arrangement ----

int Form1::twipsToPixels(double twips) const {
    const QScreen* s = screen() ? screen() : QGuiApplication::primaryScreen();
    const double dpi = s ? s->logicalDotsPerInchX() : 96.0;
    return int(std::lround(twips * dpi / 1440.0));
}

double Form1::pixelsToTwips(int pixels) const {
    const QScreen* s = screen() ? screen() : QGuiApplication::primaryScreen();
    const double dpi = s ? s->logicalDotsPerInchX() : 96.0;
    return pixels * 1440.0 / dpi;
}

int Form1::bandWidthTwips() const {
    return int(std::lround(pixelsToTwips(CoolBar1->sizes().value(0))));
}

void Form1::setBandWidthTwips(int twips) {
    QList<int> sizes = CoolBar1->sizes();
    const int total = sizes.value(0) + sizes.value(1);
    const int first = twipsToPixels(twips);
    CoolBar1->setSizes({first, std::max(0, total - first)});
}

void Form1::ArrangeBands() {
    const QRect outer = frameGeometry();
    const int toolbarHeight = Toolbar1->isVisible() ? Toolbar1->height() : 0;
    CoolBar1->setGeometry(0, 0, std::max(0, outer.width() - twipsToPixels(100)),
                          std::max(0, outer.height() - toolbarHeight - twipsToPixels(500)));
    const int width = frameHist->width();
    lstHST->resize(width, lstHST->height());
    gridHistoryEvents->resize(width, gridHistoryEvents->height());
    cmdAddComment->resize(width, cmdAddComment->height());
    Strip1->move(0, 0);
}

void Form1::ArrangeControls() {
    if (isMinimized())
        return;
    ArrangeBands();
    if (!isMaximized() && !isFullScreen()) {
        const QRect outer = frameGeometry();
        const QSize frame = outer.size() - size();
        const int minWidth = twipsToPixels(12000);
        const int minHeight = twipsToPixels(9000);
        if (outer.width() < minWidth || outer.height() < minHeight) {
            resize(std::max(outer.width(), minWidth) - frame.width(),
                   std::max(outer.height(), minHeight) - frame.height());
            ArrangeBands();
        }
    }
    const int T = Toolbar1->isVisible() ? Toolbar1->height() : 0;
    const int S = StatusBar1->isVisible() ? StatusBar1->height() : 0;
    const int H = height();
    const int listHeight = std::max(0, (H - T - S) / 2);
    const int buttonHeight = cmdAddComment->sizeHint().height();

    lstHST->setGeometry(0, 0, frameHist->width(), listHeight);
    cmdAddComment->resize(frameHist->width(), buttonHeight);
    if (numChannels != 1) {
        cmdAddComment->move(0, lstHST->y() + lstHST->height());
        gridHistoryEvents->setGeometry(0, cmdAddComment->y() + buttonHeight, frameHist->width(),
                                       listHeight);
    } else {
        // A one-channel log has no history events: the comments take the whole column.
        lstHST->setVisible(false);
        cmdAddComment->move(0, lstHST->y());
        gridHistoryEvents->setGeometry(0, cmdAddComment->y() + buttonHeight, frameHist->width(),
                                       2 * listHeight);
    }

    if (!gridHistoryEvents->isHidden()) {
        Strip1->resize(frameGraph->width(), Strip1->height());
    } else {
        Strip1->move(0, Strip1->y());
        Strip1->resize(width(), Strip1->height());
    }
    picStats->setGeometry(Strip1->x(), picStats->y(), Strip1->width(), picStats->height());
    if (numChannels != 1)
        lstHST->setVisible(!gridHistoryEvents->isHidden());
    cmdAddComment->setVisible(!gridHistoryEvents->isHidden());

    const int chartArea = std::max(0, H - T - S);
    if (!picStats->isHidden()) {
        const int statsHeight = twipsToPixels(statsPanelTwips_);
        Strip1->resize(Strip1->width(), std::max(0, chartArea - statsHeight));
        picStats->setGeometry(picStats->x(), Strip1->height(), picStats->width(), statsHeight);
    } else {
        Strip1->resize(Strip1->width(), chartArea);
    }
}

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
    Strip1->PrintChart(painter, printer.resolution(), 1.5, 1.5, 8.0, 4.5);
    if (!painter.end())
        return;
    Strip1->setCaption(QString());
}

// ---- Channel sets and layouts ----

void Form1::setStatsPanelHeightTwips(double twips) {
    statsPanelTwips_ = twips;
    picStats->resize(picStats->width(), twipsToPixels(twips));
}

void Form1::setRowName(int row, const QString& name) {
    stats[size_t(row)].lblVar->setText(name);
}

void Form1::SetTrackColor(int track, quint32 color) {
    Strip1->setCurrentTrack(track);
    Strip1->setTrackColor(color);
}

namespace {

void applyPlan(Form1& w, const layouts::Plan& plan) {
    if (plan.panelHeightTwips)
        w.setStatsPanelHeightTwips(*plan.panelHeightTwips);
    for (const auto& [row, name] : plan.names)
        w.setRowName(row, name);
    if (plan.reloadColors)
        w.LoadChannelColors();
    if (plan.quillCaptions) {
        for (int k = 0; k < 8; ++k)
            w.mnuChannel[size_t(k)]->setText(QStringLiteral("Channel %1").arg(k + 1));
    }
    if (plan.arrange)
        w.ArrangeControls();
    w.Strip1->setTrackCount(plan.trackCount);
    for (const auto& [var, track] : plan.varTracks) {
        w.Strip1->setCurrentVar(var);
        w.Strip1->setVarTrack(track);
    }
    for (const auto& [track, color] : plan.trackColors)
        w.SetTrackColor(track, color);
    w.AutoScaleY();
    w.AutoScaleY();
}

} // namespace

void Form1::ApplyLayout(layouts::Layout layout) {
    applyPlan(*this, layouts::plan(layout));
}
void Form1::LayoutSingleChannel() {
    ApplyLayout(layouts::Layout::SingleChannel);
}
void Form1::LayoutSeparate() {
    ApplyLayout(layouts::Layout::Separate);
}
void Form1::LayoutCurrentAndVoltage() {
    ApplyLayout(layouts::Layout::CurrentAndVoltage);
}
void Form1::LayoutGaugeChannels() {
    ApplyLayout(layouts::Layout::GaugeChannels);
}
void Form1::LayoutAllChannels() {
    ApplyLayout(layouts::Layout::AllChannels);
}

void Form1::LoadChannelColors() {
    for (int i = 0; i < 13; ++i) {
        Strip1->setCurrentVar(i);
        const QString text = env_.readSetting(QStringLiteral("Channel%1").arg(i),
                                              QStringLiteral("Color"), QStringLiteral("?"));
        if (text != QLatin1String("?")) {
            bool ok = false;
            const qlonglong value = text.trimmed().toLongLong(&ok);
            if (ok && value >= 0 && value <= 0xFFFFFF)
                Strip1->setVarColor(quint32(value));
        }
        const QColor color = toQColor(Strip1->VarColor());
        StatsRow& row = stats[size_t(i)];
        QPalette textPalette = row.lblVar->palette();
        textPalette.setColor(QPalette::WindowText, color);
        row.lblVar->setPalette(textPalette);
        QPalette linePalette = row.Line1->palette();
        linePalette.setColor(QPalette::Window, color);
        row.Line1->setPalette(linePalette);
    }
}

void Form1::SaveChannelColors() {
    for (int i = 0; i < 13; ++i) {
        const QColor color = stats[size_t(i)].lblVar->palette().color(QPalette::WindowText);
        env_.writeSetting(QStringLiteral("Channel%1").arg(i), QStringLiteral("Color"),
                          QString::number(toPacked(color)));
    }
}

// ---- Navigation, cursor and statistics ----

void Form1::AutoScaleY() {
    // One round beyond the last shown track: variables parked on the first unshown track are
    // scaled too, so they come back in range when a layout shows that track again.
    for (int t = 0; t <= Strip1->TrackCount(); ++t) {
        bool first = true;
        for (int v = 0; v < 13; ++v) {
            Strip1->setCurrentVar(v);
            const int k = Strip1->VarTrack();
            Strip1->setCurrentTrack(k);
            if (k != t || !Strip1->VarVisible())
                continue;
            const double hi = Strip1->DataMax(v);
            const double lo = Strip1->DataMin(v);
            if (first) {
                first = false;
                Strip1->setTrackYMax(hi);
                Strip1->setTrackYMin(lo);
                Strip1->setVarYMax(hi);
                Strip1->setVarYMin(lo);
            } else {
                if (Strip1->TrackYMax() < hi)
                    Strip1->setTrackYMax(hi);
                if (Strip1->TrackYMin() > lo)
                    Strip1->setTrackYMin(lo);
                Strip1->setVarYMax(Strip1->TrackYMax());
                Strip1->setVarYMin(Strip1->TrackYMin());
            }
        }
    }
}

void Form1::ZoomAll() {
    Strip1->ShowXRange(XMin, XMax);
}

void Form1::ZoomTime(int mode) {
    const double start = Strip1->XViewStart();
    const double end = Strip1->XViewEnd();
    if (Strip1->CursorX() < start || Strip1->CursorX() > end)
        Strip1->setCursorX(start + Strip1->XSpan() / 2);
    if (mode == 0) {
        const double span = Strip1->XSpan() - Strip1->XSpan() / 2;
        if (span >= 1.0 / 38400.0)
            Strip1->setXSpan(span);
    } else if (mode == 1) {
        Strip1->setXSpan(Strip1->XSpan() + Strip1->XSpan());
    }
    const double half = Strip1->XSpan() / 2;
    Strip1->ShowXRange(Strip1->CursorX() - half, Strip1->CursorX() + half);
}

void Form1::ScrollTime(int mode) {
    const double start = Strip1->XViewStart();
    const double end = Strip1->XViewEnd();
    const double step = (end - start) / 10;
    if (mode == 0)
        Strip1->ShowXRange(start - step, end - step);
    else if (mode == 1)
        Strip1->ShowXRange(start + step, end + step);
}

void Form1::TogglePoints() {
    showPoints = !showPoints;
    for (int v = 0; v < Strip1->VarCount(); ++v) {
        Strip1->setCurrentVar(v);
        Strip1->setVarSymbol(showPoints ? v + 1 : 0);
    }
}

void Form1::FixedSpan(const QString& key) {
    if (key == QLatin1String("1hour"))
        Strip1->setXSpan(1.0 / 24);
    else if (key == QLatin1String("1day"))
        Strip1->setXSpan(1);
    else if (key == QLatin1String("1week"))
        Strip1->setXSpan(7);
    else if (key == QLatin1String("30days"))
        Strip1->setXSpan(30);
}

void Form1::UpdateStatistics() {
    for (int i = 0; i < 13; ++i) {
        StatsRow& row = stats[size_t(i)];
        row.lblCursorValue->setText(readouts::formatValue(Strip1->CursorValue(i)));
        row.lblMax->setText(readouts::formatValue(Strip1->DataMax(i)));
        row.lblAvg->setText(readouts::formatValue(Strip1->DataAvg(i)));
        row.lblMin->setText(readouts::formatValue(Strip1->DataMin(i)));
        row.lblMaxDisp->setText(readouts::formatValue(Strip1->ViewMax(i)));
        row.lblAvgDisp->setText(readouts::formatValue(Strip1->ViewAvg(i)));
        row.lblMinDisp->setText(readouts::formatValue(Strip1->ViewMin(i)));
    }
}

void Form1::setCursorText(double x) {
    const QString text = datetime::formatGeneral(x);
    lblCursor->setText(text);
    statusPanels[1]->setText(QStringLiteral("Cursor: ") + text);
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
    gridHistoryEvents->setColumnCount(2);
    gridHistoryEvents->setHorizontalHeaderLabels(
        {QStringLiteral("Time"), QStringLiteral("Comment")});
    gridHistoryEvents->setColumnWidth(0, twipsToPixels(1400));
    gridHistoryEvents->setColumnWidth(1, twipsToPixels(1400));
}

} // namespace trendax
