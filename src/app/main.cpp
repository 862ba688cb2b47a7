#include "app/form1.h"
#include "loading/heap.h"
#include "storage/dialogs.h"
#include "storage/environment.h"
#include "storage/programtitle.h"

#include <QApplication>
#include <QIcon>
#include <QByteArrayList>

int main(int argc, char** argv) {
    // The argument text is everything after the program's name, as typed: taken before Qt
    // removes the options it knows (-style, -platform), so that "debug -style fusion" is not
    // the word "debug".
    QByteArrayList typed;
    for (int i = 1; i < argc; ++i)
        typed << QByteArray(argv[i]);
    QApplication app(argc, argv);
    trendax::keepLargeBlocksForReuse();
    QApplication::setApplicationName(trendax::programTitle());
    // The desktop entry's name lets the task bar match the window to its entry and icon.
    QGuiApplication::setDesktopFileName(QStringLiteral(TRENDAX_APP_ID));
    QIcon icon;
    for (const int size : {48, 128, 256})
        icon.addFile(QStringLiteral(":/icons/trendax2-%1.png").arg(size));
    QGuiApplication::setWindowIcon(icon);
    const QString argumentText = QString::fromLocal8Bit(typed.join(' '));

    trendax::SystemEnvironment environment;
    trendax::SystemDialogs dialogs;
    trendax::Form1 window(environment, dialogs, argumentText);
    window.show();
    return QApplication::exec();
}
