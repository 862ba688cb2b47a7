// Imports a folder of controller files into an application folder's home and configuration
// folders through the program's own import, answering "No" to the deletion of the originals.
// A home folder that already holds a data log is left alone, so that running the viewer again
// never mixes sample data into someone's own.
#include "opendlg/importer.h"
#include "opendlg/sitetree.h"
#include "storage/filenames.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <cstdio>

using namespace trendax;

namespace {

void print(FILE* stream, const QString& text) {
    std::fprintf(stream, "%s\n", text.toLocal8Bit().constData());
}

bool holdsDataLog(const QString& home) {
    for (const QString& name : sitetree::listFiles(home)) {
        if (name.endsWith(QLatin1String(".CSV"), Qt::CaseInsensitive))
            return true;
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 3) {
        print(stderr, QStringLiteral("usage: trendax-import SOURCE_FOLDER APP_FOLDER"));
        return 2;
    }
    const QString source = args[1];
    const QString appFolder = QDir(args[2]).absolutePath();
    if (!QFileInfo(source).isDir()) {
        print(stderr, QStringLiteral("trendax-import: no folder %1").arg(source));
        return 2;
    }

    const import::Folders folders{QDir(source).absolutePath(),
                                  filenames::join(appFolder, QStringLiteral("logfiles")),
                                  filenames::join(appFolder, QStringLiteral("cnffiles")),
                                  {}};
    if (holdsDataLog(folders.home)) {
        print(stdout,
              QStringLiteral("trendax-import: %1 already holds data logs; nothing imported.")
                  .arg(folders.home));
        return 0;
    }
    QDir().mkpath(folders.home);
    QDir().mkpath(folders.config);

    import::Callbacks callbacks;
    callbacks.message = [](const QString& text) { print(stderr, text); };
    const import::Outcome outcome = import::run(folders, false, callbacks);
    print(stdout, QStringLiteral("trendax-import: %1 of %2 files imported into %3.")
                      .arg(outcome.copied.size())
                      .arg(outcome.listed)
                      .arg(appFolder));
    return outcome.stopped || !outcome.failedCopies.isEmpty() ? 1 : 0;
}
