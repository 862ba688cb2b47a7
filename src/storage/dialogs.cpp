#include "storage/dialogs.h"

#include <QColorDialog>
#include <QInputDialog>
#include <QPrintDialog>
#include <QPrinter>

namespace trendax {

QMessageBox::StandardButton SystemDialogs::message(QWidget* parent, const QString& text,
                                                   const QString& title,
                                                   QMessageBox::StandardButtons buttons,
                                                   QMessageBox::Icon icon) {
    QMessageBox box(icon, title, text, buttons, parent);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

QString SystemDialogs::input(QWidget* parent, const QString& prompt, const QString& title,
                             const QString& defaultText) {
    bool ok = false;
    const QString text =
        QInputDialog::getText(parent, title, prompt, QLineEdit::Normal, defaultText, &ok);
    return ok ? text : QString();
}

std::optional<QColor> SystemDialogs::chooseColor(QWidget* parent, const QColor& initial,
                                                 const QString& title) {
    const QColor chosen = QColorDialog::getColor(initial, parent, title);
    if (!chosen.isValid())
        return std::nullopt;
    return chosen;
}

bool SystemDialogs::choosePrinter(QWidget* parent, QPrinter& printer) {
    QPrintDialog dialog(&printer, parent);
    return dialog.exec() == QDialog::Accepted;
}

} // namespace trendax
