#pragma once

#include "storage/dialogs.h"

#include <QStringList>
#include <deque>
#include <vector>

namespace trendax::test {

// Dialogs for tests: answers are queued in advance, every question is recorded, and a question
// with no queued answer gets the cancel-like default instead of blocking.
class ScriptedDialogs : public Dialogs {
public:
    QMessageBox::StandardButton message(QWidget* parent, const QString& text, const QString& title,
                                        QMessageBox::StandardButtons buttons,
                                        QMessageBox::Icon icon) override;
    QString input(QWidget* parent, const QString& prompt, const QString& title,
                  const QString& defaultText) override;
    std::optional<QColor> chooseColor(QWidget* parent, const QColor& initial,
                                      const QString& title) override;
    bool choosePrinter(QWidget* parent, QPrinter& printer) override;

    struct Message {
        QString text;
        QString title;
        QMessageBox::StandardButtons buttons;
    };

    std::deque<QMessageBox::StandardButton> messageAnswers;
    std::deque<QString> inputAnswers;
    std::deque<std::optional<QColor>> colorAnswers;
    // A PDF file to print into, or empty to cancel the print dialog.
    std::deque<QString> printerAnswers;

    std::vector<Message> messages;
    QStringList inputPrompts;
    QStringList inputTitles;
    QStringList inputDefaults;
    QStringList colorTitles;
    std::vector<QColor> colorInitials;
    int printDialogs = 0;
};

} // namespace trendax::test
