#include "app/frmsplash.h"

#include "app/toolbaricons.h"
#include "version.h"

#include <QEvent>
#include <QKeyEvent>
#include <QLabel>

namespace trendax {

frmSplash::frmSplash(QWidget* parent) : QDialog(parent) {
    setWindowTitle(QStringLiteral("About Trendax"));
    setModal(true);
    const QSize size(480, 300);
    setFixedSize(size);

    Picture1 = new QLabel(this);
    Picture1->setGeometry(0, 0, size.width(), size.height());
    Picture1->setPixmap(productArtwork(size.width(), size.height()));
    Picture1->installEventFilter(this);

    QFont arial(QStringLiteral("Arial"));
    arial.setPointSize(11);
    lblProductName = new QLabel(productName(), this);
    lblProductName->setFont(arial);
    lblProductName->setStyleSheet(QStringLiteral("color: rgb(255,255,230);"));
    lblProductName->setGeometry(20, size.height() - 50, size.width() - 40, 20);

    lblVersion = new QLabel(QStringLiteral("Version %1.%2.%3")
                                .arg(version::major)
                                .arg(version::minor)
                                .arg(version::revision),
                            this);
    lblVersion->setFont(arial);
    lblVersion->setStyleSheet(QStringLiteral("color: rgb(255,255,230);"));
    lblVersion->setGeometry(20, size.height() - 28, size.width() - 40, 20);
}

QString frmSplash::productName() {
    return QStringLiteral("Trendax 2 pump controller data viewer");
}

void frmSplash::keyPressEvent(QKeyEvent*) {
    accept();
}

bool frmSplash::eventFilter(QObject* watched, QEvent* event) {
    if (watched == Picture1 && event->type() == QEvent::MouseButtonPress) {
        accept();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace trendax
