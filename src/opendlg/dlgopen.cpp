#include "opendlg/dlgopen.h"

#include "opendlg/importer.h"
#include "opendlg/shellcopy.h"
#include "opendlg/sitetree.h"
#include "storage/dialogs.h"
#include "storage/environment.h"
#include "storage/homefolder.h"
#include "storage/programtitle.h"
#include "storage/qtcolor.h"
#include "storage/twips.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QComboBox>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QStorageInfo>
#include <QTimer>
#include <QTreeView>
#include <QTreeWidget>
#include <QUrl>
#include <algorithm>
#include <utility>

namespace trendax {

namespace {

const char* const importTooltip =
    "Click here to import files from the \"Files to Import\" location to the \"Home Folder\" "
    "location.  Once files are in the Home Folder, they can be accessed from Trendax.";

const char* const instructions[] = {"To Import Files:",
                                    "Browse to the folder to import from.",
                                    "Click the \"Import to Home Folder\" button.",
                                    "All files will be imported.",
                                    "",
                                    "To view data from imported files:",
                                    "Select a site name from the Home Folder.",
                                    "Select a start and end date.",
                                    "Then click OK to open the files."};

QDate toQDate(datetime::DateTime value) {
    const datetime::Civil c = datetime::toCivil(value);
    return QDate(c.year, c.month, c.day);
}

datetime::DateTime fromQDate(QDate date) {
    return datetime::fromDate(date.year(), date.month(), date.day()).value_or(0.0);
}

// Removable media first, then the root, then every other real volume.
int driveRank(const QString& root) {
    if (root.startsWith(QLatin1String("/media/")) || root.startsWith(QLatin1String("/run/media/")))
        return 0;
    return root == QLatin1String("/") ? 1 : 2;
}

bool isSystemMount(const QString& root) {
    for (const char* prefix : {"/proc", "/sys", "/dev", "/run", "/snap", "/boot/efi"}) {
        if (root == QLatin1String(prefix) ||
            root.startsWith(QLatin1String(prefix) + QLatin1Char('/')))
            return !root.startsWith(QLatin1String("/run/media/"));
    }
    return false;
}

// The largest font, at most the widget's own size, in which every line fits the box.
void fitFont(QWidget* widget, const QStringList& lines, QSize box) {
    QFont font = widget->font();
    for (qreal size = font.pointSizeF(); size >= 6.0; size -= 0.5) {
        font.setPointSizeF(size);
        const QFontMetrics metrics(font);
        int widest = 0;
        for (const QString& line : lines)
            widest = std::max(widest, metrics.horizontalAdvance(line));
        if (widest <= box.width() && metrics.lineSpacing() * int(lines.size()) <= box.height())
            break;
    }
    widget->setFont(font);
}

} // namespace

dlgOpen::dlgOpen(Environment& environment, Dialogs& dialogs, QWidget* parent)
    : QDialog(parent), env_(environment), dialogs_(dialogs) {
    setWindowTitle(QStringLiteral("Open Site Data"));
    setModal(true);
    setAcceptDrops(true);
    createControls();
    placeControls();

    HomeFolderPath = homefolder::homeFolder(env_.appFolder());
    ConfigFolderPath = homefolder::configFolder(env_.appFolder());
    QDir().mkpath(HomeFolderPath);
    QDir().mkpath(ConfigFolderPath);
    removeStaleTemporaries();
    fillDriveList();
    setDir1Path(env_.appFolder());

    const datetime::DateTime now = env_.now();
    calStart->setSelectedDate(toQDate(now - 7));
    CalEnd->setSelectedDate(toQDate(now));
    showDates();
    BuildSiteTree();
}

dlgOpen::~dlgOpen() = default;

// ---- Controls and their places ----

void dlgOpen::createControls() {
    const char* headings[] = {"Folder to Import", "Available Sites and Dates", "Home Folder",
                              "Start Date", "End Date"};
    for (size_t i = 0; i < Label1.size(); ++i)
        Label1[i] = new QLabel(QString::fromLatin1(headings[i]), this);

    Drive1 = new QComboBox(this);
    dirModel_ = new QFileSystemModel(this);
    dirModel_->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot);
    dirModel_->setRootPath(QStringLiteral("/"));
    Dir1 = new QTreeView(this);
    Dir1->setModel(dirModel_);
    Dir1->setHeaderHidden(true);
    for (int column = 1; column < dirModel_->columnCount(); ++column)
        Dir1->hideColumn(column);
    // The model lists folders in the background: keep the chosen folder in view as they arrive.
    connect(dirModel_, &QFileSystemModel::directoryLoaded, Dir1,
            [this] { Dir1->scrollTo(Dir1->currentIndex()); });
    File1 = new QListWidget(this);
    File1->setSelectionMode(QAbstractItemView::NoSelection);

    cmdImport = new QPushButton(QStringLiteral("Import to Home Folder >>"), this);
    cmdImport->setToolTip(QString::fromLatin1(importTooltip));
    pb1 = new QProgressBar(this);
    pb1->setTextVisible(false);
    pb1->hide();

    tv = new QTreeWidget(this);
    tv->setColumnCount(1);
    tv->setHeaderHidden(true);
    tv->setSortingEnabled(false);
    cmdShowHomeFolder =
        new QPushButton(QStringLiteral("Show the Home Folder in Windows Explorer"), this);
    // The button is two lines high and its text is meant to wrap, which a push button cannot
    // do: it keeps its text (for keyboard and screen readers) but shows it through a
    // word-wrapping label.
    showHomeFolderCaption_ = new QLabel(cmdShowHomeFolder->text(), cmdShowHomeFolder);
    showHomeFolderCaption_->setWordWrap(true);
    showHomeFolderCaption_->setAlignment(Qt::AlignCenter);
    showHomeFolderCaption_->setAttribute(Qt::WA_TransparentForMouseEvents);
    showHomeFolderCaption_->setForegroundRole(QPalette::WindowText);
    QPalette hidden = cmdShowHomeFolder->palette();
    hidden.setColor(QPalette::ButtonText, Qt::transparent);
    cmdShowHomeFolder->setPalette(hidden);

    calStart = new QCalendarWidget(this);
    CalEnd = new QCalendarWidget(this);
    for (QCalendarWidget* calendar : {calStart, CalEnd}) {
        calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
        calendar->setGridVisible(false);
    }
    lblStartDate = new QLabel(QStringLiteral("Start date..."), this);
    lblEndDate = new QLabel(QStringLiteral("End date..."), this);

    Text1 = new QPlainTextEdit(this);
    QFont tahoma(QStringLiteral("Tahoma"));
    tahoma.setPointSizeF(font().pointSizeF());
    Text1->setFont(tahoma);
    QString text;
    for (const char* line : instructions)
        text += QString::fromLatin1(line) + QLatin1Char('\n');
    Text1->setPlainText(text);
    Text1->setReadOnly(true);
    Text1->setLineWrapMode(QPlainTextEdit::NoWrap);

    OKButton = new QPushButton(QStringLiteral("OK"), this);
    OKButton->setDefault(true);
    CancelButton = new QPushButton(QStringLiteral("Cancel"), this);

    tmrGUI = new QTimer(this);
    tmrGUI->setInterval(1000);
    tmrGUI->start();

    connect(Drive1, &QComboBox::currentIndexChanged, this, [this] { Drive1_Change(); });
    connect(Dir1->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) {
                if (!current.isValid())
                    return;
                dir1Path_ = dirModel_->filePath(current);
                Dir1_Change();
            });
    connect(tv, &QTreeWidget::itemClicked, this,
            [this](QTreeWidgetItem* node) { tv_NodeClick(node); });
    connect(tv, &QTreeWidget::itemActivated, this,
            [this](QTreeWidgetItem* node) { tv_NodeClick(node); });
    connect(cmdImport, &QPushButton::clicked, this, [this] { cmdImport_Click(); });
    connect(cmdShowHomeFolder, &QPushButton::clicked, this, [this] { cmdShowHomeFolder_Click(); });
    connect(calStart, &QCalendarWidget::selectionChanged, this, [this] { calStart_SelChange(); });
    connect(CalEnd, &QCalendarWidget::selectionChanged, this, [this] { CalEnd_SelChange(); });
    connect(OKButton, &QPushButton::clicked, this, [this] { OKButton_Click(); });
    connect(CancelButton, &QPushButton::clicked, this, [this] { CancelButton_Click(); });
    connect(tmrGUI, &QTimer::timeout, this, [this] { tmrGUI_Timer(); });
}

void dlgOpen::placeControls() {
    struct Place {
        QWidget* widget;
        int left, top, width, height; // twips
    };
    const Place places[] = {
        {Label1[0], 60, 420, 2412, 252},
        {Drive1, 60, 720, 2412, 288},
        {Dir1, 60, 1020, 2412, 2016},
        {File1, 60, 3000, 2412, 1845},
        {cmdImport, 60, 5100, 2412, 372},
        {Label1[2], 2580, 180, 2412, 252},
        {Label1[1], 2520, 420, 2352, 252},
        {tv, 2520, 720, 2355, 4755},
        {cmdShowHomeFolder, 2520, 5640, 2415, 495},
        {Label1[3], 5040, 420, 1215, 255},
        {lblStartDate, 5040, 720, 2655, 375},
        {calStart, 5040, 1080, 2700, 2370},
        {Label1[4], 5040, 3600, 1215, 255},
        {lblEndDate, 5040, 3840, 2655, 375},
        {CalEnd, 5040, 4200, 2700, 2370},
        {Text1, 60, 6420, 4812, 1872},
        {OKButton, 5100, 7800, 1215, 375},
        {CancelButton, 6420, 7800, 1215, 375},
        {pb1, 0, 8340, 7815, 255},
    };
    // Twips to pixels by the screen's logical resolution. The whole layout is enlarged evenly
    // when this toolkit's calendars need more room than the twips give them, so the three
    // columns keep their proportions.
    const double dpiX = logicalDpiX();
    const double dpiY = logicalDpiY();
    const QSize calendar = calStart->minimumSizeHint();
    const double scale = std::max({1.0, calendar.width() / (2700 * dpiX / twips::perInch),
                                   calendar.height() / (2370 * dpiY / twips::perInch)});
    const auto x = [&](int length) { return twips::toPixels(length, dpiX * scale); };
    const auto y = [&](int length) { return twips::toPixels(length, dpiY * scale); };
    for (const Place& p : places)
        p.widget->setGeometry(x(p.left), y(p.top), x(p.width), y(p.height));
    setFixedSize(x(7860), y(8610));

    const auto inner = [](QWidget* w, int margin) { return w->size() - QSize(margin, margin / 2); };
    for (QLabel* label : Label1)
        fitFont(label, {label->text()}, label->size());
    fitFont(lblStartDate, {QStringLiteral("12/31/2000")}, lblStartDate->size());
    lblEndDate->setFont(lblStartDate->font());
    for (QPushButton* button : {cmdImport, OKButton, CancelButton})
        fitFont(button, {button->text()}, inner(button, 16));
    showHomeFolderCaption_->setGeometry(cmdShowHomeFolder->rect().adjusted(4, 2, -4, -2));
    const QString caption = cmdShowHomeFolder->text();
    const qsizetype middle = caption.indexOf(QLatin1Char(' '), caption.size() / 2 - 4);
    fitFont(showHomeFolderCaption_, {caption.left(middle), caption.mid(middle + 1)},
            showHomeFolderCaption_->size());
    QStringList lines;
    for (const char* line : instructions)
        lines << QString::fromLatin1(line);
    fitFont(Text1, lines, inner(Text1, 16));
}

void dlgOpen::fillDriveList() {
    QStringList roots;
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        const QString root = volume.rootPath();
        if (!isSystemMount(root) && !roots.contains(root))
            roots << root;
    }
    if (!roots.contains(QStringLiteral("/")))
        roots << QStringLiteral("/");
    std::sort(roots.begin(), roots.end(), [](const QString& a, const QString& b) {
        const int ra = driveRank(a);
        const int rb = driveRank(b);
        return ra != rb ? ra < rb : a < b;
    });
    const QSignalBlocker blocker(Drive1);
    Drive1->clear();
    for (const QString& root : roots)
        Drive1->addItem(root, root);
}

// ---- Tree ----

std::optional<QString> dlgOpen::BuildSiteTree() {
    SelectedSite = nullptr;
    tv->clear();
    auto* root = new QTreeWidgetItem(tv, {QStringLiteral("Sites")});
    root->setData(0, KeyRole, QStringLiteral("Sites"));
    QFont bold = tv->font();
    bold.setBold(true);
    root->setFont(0, bold);
    root->setForeground(0, toQColor(0xFF0000));

    const sitetree::Tree tree = sitetree::build(HomeFolderPath);
    for (const sitetree::Site& site : tree.sites) {
        auto* siteNode = new QTreeWidgetItem(root, {site.code});
        siteNode->setData(0, KeyRole, site.key);
        siteNode->setFont(0, bold);
        for (const sitetree::Day& day : site.days) {
            auto* dayNode = new QTreeWidgetItem(siteNode, {day.text});
            dayNode->setData(0, KeyRole, day.key);
        }
    }
    root->setExpanded(true);
    return tree.failure;
}

QTreeWidgetItem* dlgOpen::nodeByKey(const QString& key) const {
    QTreeWidgetItemIterator it(tv);
    for (; *it; ++it) {
        if ((*it)->data(0, KeyRole).toString() == key)
            return *it;
    }
    return nullptr;
}

void dlgOpen::tv_NodeClick(QTreeWidgetItem* node) {
    if (!node)
        return;
    const QString key = node->data(0, KeyRole).toString();
    sitetree::KeyKind kind = sitetree::kindOfKey(key);
    // A site whose code begins with "d" has a key that begins with "md" too; only a node under
    // a site is a day.
    if (kind == sitetree::KeyKind::Day && !(node->parent() && node->parent()->parent()))
        kind = sitetree::KeyKind::Site;

    QTreeWidgetItem* chosen = nullptr;
    if (kind == sitetree::KeyKind::Day) {
        chosen = node->parent();
        // A day text that is no date (a malformed name in the home folder) still chooses its
        // site; the start calendar then keeps its date.
        if (const auto date = sitetree::dateOfDayKey(key))
            calStart->setSelectedDate(toQDate(*date));
        showDates();
    } else if (kind == sitetree::KeyKind::Site) {
        chosen = node;
    } else {
        return;
    }
    tv->setCurrentItem(chosen);
    chosen->setData(0, TagRole, HomeFolderPath);
    SelectedSite = chosen;
}

// ---- Import ----

void dlgOpen::cmdImport_Click() {
    importFrom(dir1Path_, {});
}

void dlgOpen::importDropped(const QStringList& paths) {
    for (const import::DropGroup& group : import::groupDropped(paths)) {
        setDir1Path(group.folder);
        importFrom(group.folder, group.only);
    }
}

void dlgOpen::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (pendingDrop_.isEmpty())
        return;
    // After the dialog has painted, so that the question appears over it.
    QTimer::singleShot(0, this, [this] {
        const QStringList paths = std::exchange(pendingDrop_, {});
        importDropped(paths);
    });
}

void dlgOpen::dragEnterEvent(QDragEnterEvent* event) {
    if (!droppedPaths(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void dlgOpen::dropEvent(QDropEvent* event) {
    const QStringList paths = droppedPaths(event->mimeData());
    if (paths.isEmpty())
        return;
    event->acceptProposedAction();
    importDropped(paths);
}

QStringList droppedPaths(const QMimeData* data) {
    QStringList paths;
    if (!data || !data->hasUrls())
        return paths;
    for (const QUrl& url : data->urls()) {
        if (url.isLocalFile() && QFileInfo::exists(url.toLocalFile()))
            paths << QDir::cleanPath(url.toLocalFile());
    }
    return paths;
}

void dlgOpen::importFrom(const QString& folder, const QList<QByteArray>& only) {
    const bool deleteSources =
        dialogs_.message(this,
                         QStringLiteral("Delete the original log files after they are copied?"),
                         programTitle(), QMessageBox::Yes | QMessageBox::No,
                         QMessageBox::Question) == QMessageBox::Yes;

    removeStaleTemporaries();
    import::Callbacks callbacks;
    callbacks.begin = [this](int count) {
        pb1->setMaximum(count);
        pb1->setValue(0);
        pb1->show();
        setCursor(Qt::WaitCursor);
    };
    callbacks.progress = [this](int index) {
        pb1->setValue(index);
        // Keep the dialog painted; the user's input waits for the end of the import.
        QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    };
    callbacks.copyDataLog = [this](const import::SourceFile& source, const QString& destination) {
        return CopyWithShell(source.native, source.path, destination, this, dialogs_);
    };
    callbacks.dataLogCopying = [this](bool copying) { setEnabled(!copying); };
    callbacks.message = [this](const QString& text) {
        dialogs_.message(this, text, programTitle(), QMessageBox::Ok, QMessageBox::Warning);
    };
    import::run({folder, HomeFolderPath, ConfigFolderPath, only}, deleteSources, callbacks);

    pb1->hide();
    const std::optional<QString> failure = BuildSiteTree();
    unsetCursor();
    Dir1_Change();
    if (failure) {
        dialogs_.message(this, QStringLiteral("The site list stopped at %1.").arg(*failure),
                         programTitle(), QMessageBox::Ok, QMessageBox::Warning);
    }
}

void dlgOpen::removeStaleTemporaries() {
    homefolder::removeStaleTemporaries(HomeFolderPath);
    homefolder::removeStaleTemporaries(ConfigFolderPath);
}

// ---- Folder browser ----

bool dlgOpen::setDir1Path(const QString& folder) {
    const QFileInfo info(folder);
    if (folder.isEmpty() || !info.isDir() || !info.isReadable())
        return false;
    const QString path = info.canonicalFilePath();

    // The drive that holds the folder: the longest root that is a prefix of it.
    int drive = -1;
    qsizetype longest = -1;
    for (int i = 0; i < Drive1->count(); ++i) {
        const QString root = Drive1->itemData(i).toString();
        const bool holds =
            path == root || root == QLatin1String("/") || path.startsWith(root + QLatin1Char('/'));
        if (holds && root.size() > longest) {
            drive = i;
            longest = root.size();
        }
    }
    if (drive >= 0) {
        const QSignalBlocker blocker(Drive1);
        Drive1->setCurrentIndex(drive);
        rememberedDrive_ = Drive1->itemData(drive).toString();
        Dir1->setRootIndex(dirModel_->index(rememberedDrive_));
    }
    const QModelIndex index = dirModel_->index(path);
    Dir1->setCurrentIndex(index);
    Dir1->scrollTo(index);
    dir1Path_ = path;
    Dir1_Change();
    return true;
}

void dlgOpen::Drive1_Change() {
    const QString root = Drive1->currentData().toString();
    const QFileInfo info(root);
    // An unreadable folder lists not even "." (an empty disc drive, a stale mount).
    if (!info.isDir() || !info.isReadable() || QDir(root).entryList().isEmpty()) {
        const int back = Drive1->findData(rememberedDrive_);
        const QSignalBlocker blocker(Drive1);
        Drive1->setCurrentIndex(back);
        return;
    }
    rememberedDrive_ = root;
    Dir1->setRootIndex(dirModel_->index(root));
    Dir1->setCurrentIndex(dirModel_->index(root));
    dir1Path_ = QDir(root).canonicalPath();
    Dir1_Change();
}

void dlgOpen::Dir1_Change() {
    File1->clear();
    File1->addItems(sitetree::listFiles(dir1Path_));
}

// ---- Dates and buttons ----

datetime::DateTime dlgOpen::startDate() const {
    return fromQDate(calStart->selectedDate());
}

datetime::DateTime dlgOpen::endDate() const {
    return fromQDate(CalEnd->selectedDate());
}

void dlgOpen::showDates() {
    calStart_SelChange();
    CalEnd_SelChange();
}

void dlgOpen::calStart_SelChange() {
    lblStartDate->setText(datetime::formatShortDate(startDate()));
}

void dlgOpen::CalEnd_SelChange() {
    lblEndDate->setText(datetime::formatShortDate(endDate()));
}

void dlgOpen::OKButton_Click() {
    accept();
}

void dlgOpen::CancelButton_Click() {
    reject();
}

void dlgOpen::reject() {
    SelectedSite = nullptr;
    QDialog::reject();
}

void dlgOpen::cmdShowHomeFolder_Click() {
    if (showHomeFolder_)
        showHomeFolder_();
    else
        ShowHomeFolder();
}

void dlgOpen::ShowHomeFolder() {
    const ShowHomeFolderResult shown =
        trendax::ShowHomeFolder(env_, homefolder::redirectedHomeFolder());
    dialogs_.message(this, shown.message, programTitle(), QMessageBox::Ok,
                     QMessageBox::Information);
}

} // namespace trendax
