#pragma once

#include <QColor>
#include <QMessageBox>
#include <QString>
#include <QStringList>
#include <optional>

class QDialog;
class QPrinter;
class QWidget;

namespace trendax {

// The modal dialogs the program opens, behind one seam: tests script the answers and never
// block on a dialog.
class Dialogs {
public:
    virtual ~Dialogs() = default;

    // A message box; returns the button pressed.
    virtual QMessageBox::StandardButton message(QWidget* parent, const QString& text,
                                                const QString& title,
                                                QMessageBox::StandardButtons buttons,
                                                QMessageBox::Icon icon) = 0;
    // A one-line input box; the empty text on cancel.
    virtual QString input(QWidget* parent, const QString& prompt, const QString& title,
                          const QString& defaultText) = 0;
    // A colour chooser; nullopt on cancel.
    virtual std::optional<QColor> chooseColor(QWidget* parent, const QColor& initial,
                                              const QString& title) = 0;
    // The print dialog on the given printer; false on cancel.
    virtual bool choosePrinter(QWidget* parent, QPrinter& printer) = 0;
    // A save dialog starting at suggested, offering the filters ("PNG image (*.png)", ...);
    // the chosen path, with the suffix of the chosen filter added when it has none; the empty
    // text on cancel. Asks before replacing an existing file.
    virtual QString chooseSaveFile(QWidget* parent, const QString& title, const QString& suggested,
                                   const QStringList& filters) = 0;
    // One of the program's own dialogs, shown modally; true when it was accepted.
    virtual bool runModal(QDialog& dialog) = 0;
};

// The real dialogs of the desktop.
class SystemDialogs : public Dialogs {
public:
    QMessageBox::StandardButton message(QWidget* parent, const QString& text, const QString& title,
                                        QMessageBox::StandardButtons buttons,
                                        QMessageBox::Icon icon) override;
    QString input(QWidget* parent, const QString& prompt, const QString& title,
                  const QString& defaultText) override;
    std::optional<QColor> chooseColor(QWidget* parent, const QColor& initial,
                                      const QString& title) override;
    bool choosePrinter(QWidget* parent, QPrinter& printer) override;
    QString chooseSaveFile(QWidget* parent, const QString& title, const QString& suggested,
                           const QStringList& filters) override;
    bool runModal(QDialog& dialog) override;
};

} // namespace trendax
