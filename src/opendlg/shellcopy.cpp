#include "opendlg/shellcopy.h"

#include "opendlg/filecopy.h"
#include "storage/dialogs.h"
#include "storage/programtitle.h"

#include <QApplication>
#include <QFile>
#include <QProgressDialog>

namespace trendax {

int CopyWithShell(const QString& source, const QString& destination, QWidget* owner,
                  Dialogs& dialogs) {
    return CopyWithShell(QFile::encodeName(source), source, destination, owner, dialogs);
}

int CopyWithShell(const QByteArray& source, const QString& shownSource, const QString& destination,
                  QWidget* owner, Dialogs& dialogs) {
    const QString title =
        QStringLiteral("Copying ") + shownSource + QStringLiteral(" to ") + destination;
    QProgressDialog window(title, QString(), 0, 1000, owner);
    window.setWindowTitle(title);
    window.setCancelButton(nullptr);
    window.setMinimumDuration(0);
    window.setAutoClose(false);
    window.setAutoReset(false);
    window.show();
    QApplication::processEvents();

    const filecopy::Result result =
        filecopy::copy(source, destination, [&window](qint64 done, qint64 total) {
            window.setValue(total > 0 ? int(done * 1000 / total) : 1000);
            QApplication::processEvents();
        });
    window.hide();
    if (!result.ok()) {
        dialogs.message(owner, QString::number(result.error), programTitle(), QMessageBox::Ok,
                        QMessageBox::Critical);
    }
    return result.error;
}

} // namespace trendax
