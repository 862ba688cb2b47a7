// Renders the main window with a site of the sample media loaded, offscreen, into a PNG file:
// the picture in the README. Usage: trendax-screenshot MEDIA_FOLDER OUT.png [SITE [DIALOG.png]]
// With DIALOG.png the open dialog is rendered too, browsing the media with the site's first day
// chosen.
#include "app/form1.h"
#include "chart/stripchart.h"
#include "chart/stripchartmodel.h"
#include "opendlg/dlgopen.h"
#include "opendlg/importer.h"
#include "opendlg/sitetree.h"
#include "storage/dialogs.h"
#include "storage/environment.h"
#include "storage/filenames.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTreeWidgetItem>
#include <cstdio>

using namespace trendax;

int main(int argc, char** argv) {
    // Offscreen on a 1600 x 1000 screen at 96 dpi unless told otherwise, so the window opens at
    // the size it has on a common desktop.
    QTemporaryDir screenFolder;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        const QString config = screenFolder.filePath(QStringLiteral("screen.json"));
        QFile file(config);
        if (file.open(QIODevice::WriteOnly))
            file.write(R"({"screens": [{"name": "desk", "x": 0, "y": 0, "width": 1600,
                "height": 1000, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
        file.close();
        qputenv("QT_QPA_PLATFORM", ("offscreen:configfile=" + config).toLocal8Bit());
    }
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 3) {
        std::fprintf(stderr, "usage: trendax-screenshot MEDIA_FOLDER OUT.png [SITE]\n");
        return 2;
    }
    const QString site = args.size() > 3 ? args[3] : QStringLiteral("WL13");

    QTemporaryDir appFolder;
    const import::Folders folders{QDir(args[1]).absolutePath(),
                                  filenames::join(appFolder.path(), QStringLiteral("logfiles")),
                                  filenames::join(appFolder.path(), QStringLiteral("cnffiles")),
                                  {}};
    QDir().mkpath(folders.home);
    QDir().mkpath(folders.config);
    import::run(folders, false, {});

    const sitetree::Tree tree = sitetree::build(folders.home);
    QTreeWidgetItem node;
    for (const sitetree::Site& s : tree.sites) {
        if (s.code != site)
            continue;
        node.setText(0, s.code);
        node.setData(0, dlgOpen::TagRole, folders.home);
        for (const sitetree::Day& d : s.days)
            (new QTreeWidgetItem(&node))->setText(0, d.text);
    }
    if (node.childCount() == 0) {
        std::fprintf(stderr, "trendax-screenshot: no site %s in the media\n", qPrintable(site));
        return 1;
    }

    SystemEnvironment environment(appFolder.path());
    SystemDialogs dialogs;
    Form1 window(environment, dialogs); // at the size it opens with
    window.show();
    const auto first = sitetree::dayDate(node.child(0)->text(0));
    const auto last = sitetree::dayDate(node.child(node.childCount() - 1)->text(0));
    window.CopySelectedNode(&node, first.value_or(0), last.value_or(0));
    window.LoadWell();
    // The cursor, and a reference cursor before it, so the picture shows both read-outs.
    window.Strip1->setCursorX(window.XMin + (window.XMax - window.XMin) * 0.37);
    window.Strip1->model().setReferenceX(window.XMin + (window.XMax - window.XMin) * 0.21);
    window.UpdateCursorDisplay();
    QApplication::processEvents();
    window.ArrangeControls();
    QApplication::processEvents();
    if (!window.grab().save(args[2])) {
        std::fprintf(stderr, "trendax-screenshot: cannot write %s\n", qPrintable(args[2]));
        return 1;
    }
    if (args.size() > 4) {
        dlgOpen dialog(environment, dialogs, &window);
        dialog.setDir1Path(QDir(args[1]).absolutePath());
        if (QTreeWidgetItem* day =
                dialog.nodeByKey(QStringLiteral("md") + site + node.child(0)->text(0)))
            dialog.tv_NodeClick(day);
        dialog.show();
        QApplication::processEvents();
        if (!dialog.grab().save(args[4])) {
            std::fprintf(stderr, "trendax-screenshot: cannot write %s\n", qPrintable(args[4]));
            return 1;
        }
    }
    return 0;
}
