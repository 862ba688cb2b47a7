#pragma once

#include "storage/dialogs.h"

#include <QDialog>
#include <QPrinter>
#include <QStringList>
#include <deque>
#include <functional>
#include <vector>

namespace trendax::test {

// Dialogs for tests: answers are queued in advance, every question is recorded, and a question
// with no queued answer gets the cancel-like default instead of blocking.
class ScriptedDialogs : public Dialogs {
public:
    QMessageBox::StandardButton message(QWidget*, const QString& text, const QString& title,
                                        QMessageBox::StandardButtons buttons,
                                        QMessageBox::Icon) override {
        messages.push_back({text, title, buttons});
        return take(messageAnswers,
                    buttons.testFlag(QMessageBox::Ok) ? QMessageBox::Ok : QMessageBox::No);
    }
    QString input(QWidget*, const QString& prompt, const QString& title,
                  const QString& defaultText) override {
        inputPrompts << prompt;
        inputTitles << title;
        inputDefaults << defaultText;
        return take(inputAnswers, QString());
    }
    std::optional<QColor> chooseColor(QWidget*, const QColor& initial,
                                      const QString& title) override {
        colorTitles << title;
        colorInitials.push_back(initial);
        return take(colorAnswers, std::optional<QColor>());
    }
    bool choosePrinter(QWidget*, QPrinter& printer) override {
        ++printDialogs;
        const QString pdf = take(printerAnswers, QString());
        if (!pdf.isEmpty()) {
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(pdf);
        }
        return !pdf.isEmpty();
    }
    QString chooseSaveFile(QWidget*, const QString& title, const QString&,
                           const QStringList&) override {
        saveTitles << title;
        return take(saveAnswers, QString());
    }
    bool runModal(QDialog& dialog) override {
        modalTitles << dialog.windowTitle();
        const auto answer = take(modalAnswers, std::function<bool(QDialog&)>());
        return answer && answer(dialog);
    }

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
    // Paths to answer save dialogs with; none cancels.
    std::deque<QString> saveAnswers;
    QStringList saveTitles;
    // Fill in one of the program's dialogs and say whether it is accepted; none rejects it.
    std::deque<std::function<bool(QDialog&)>> modalAnswers;
    QStringList modalTitles;

private:
    // The next queued answer, or fallback when none is left.
    template <typename T> static T take(std::deque<T>& queue, T fallback) {
        if (queue.empty())
            return fallback;
        T front = std::move(queue.front());
        queue.pop_front();
        return front;
    }
};

} // namespace trendax::test
