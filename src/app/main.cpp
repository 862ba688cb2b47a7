#include "app/form1.h"
#include "loading/heap.h"
#include "storage/dialogs.h"
#include "storage/environment.h"
#include "storage/programtitle.h"

#include <QApplication>
#include <QStringList>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    trendax::keepLargeBlocksForReuse();
    QApplication::setApplicationName(trendax::programTitle());
    // The argument text is everything after the program's name, as typed.
    QStringList words = QApplication::arguments();
    words.removeFirst();

    trendax::SystemEnvironment environment;
    trendax::SystemDialogs dialogs;
    trendax::Form1 window(environment, dialogs, words.join(QLatin1Char(' ')));
    window.show();
    return QApplication::exec();
}
