#include "storage/dialogs.h"

#include <QColorDialog>
#include <QFileDialog>
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

bool SystemDialogs::runModal(QDialog& dialog) {
    return dialog.exec() == QDialog::Accepted;
}

bool SystemDialogs::choosePrinter(QWidget* parent, QPrinter& printer) {
    QPrintDialog dialog(&printer, parent);
    return dialog.exec() == QDialog::Accepted;
}

QString SystemDialogs::chooseSaveFile(QWidget* parent, const QString& title,
                                      const QString& suggested, const QStringList& filters) {
    QFileDialog dialog(parent, title, suggested);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters(filters);
    // A name typed without a suffix gets the chosen filter's ("PNG image (*.png)" gives "png"),
    // before the dialog asks whether to replace a file of that name.
    const auto suffixOf = [](const QString& filter) {
        const qsizetype star = filter.indexOf(QLatin1String("*."));
        return star < 0 ? QString()
                        : filter.mid(star + 2).section(QLatin1Char(')'), 0, 0).section(' ', 0, 0);
    };
    dialog.setDefaultSuffix(suffixOf(dialog.selectedNameFilter()));
    QObject::connect(
        &dialog, &QFileDialog::filterSelected, &dialog,
        [&dialog, &suffixOf](const QString& f) { dialog.setDefaultSuffix(suffixOf(f)); });
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().constFirst();
}

} // namespace trendax
