#include "support/scripteddialogs.h"

#include <QPrinter>

namespace trendax::test {

namespace {

template <typename T> std::optional<T> take(std::deque<T>& queue) {
    if (queue.empty())
        return std::nullopt;
    T front = std::move(queue.front());
    queue.pop_front();
    return front;
}

} // namespace

QMessageBox::StandardButton ScriptedDialogs::message(QWidget*, const QString& text,
                                                     const QString& title,
                                                     QMessageBox::StandardButtons buttons,
                                                     QMessageBox::Icon) {
    messages.push_back({text, title, buttons});
    if (auto answer = take(messageAnswers))
        return *answer;
    return buttons.testFlag(QMessageBox::Ok) ? QMessageBox::Ok : QMessageBox::No;
}

QString ScriptedDialogs::input(QWidget*, const QString& prompt, const QString& title,
                               const QString& defaultText) {
    inputPrompts << prompt;
    inputTitles << title;
    inputDefaults << defaultText;
    return take(inputAnswers).value_or(QString());
}

std::optional<QColor> ScriptedDialogs::chooseColor(QWidget*, const QColor& initial,
                                                   const QString& title) {
    colorTitles << title;
    colorInitials.push_back(initial);
    return take(colorAnswers).value_or(std::nullopt);
}

bool ScriptedDialogs::choosePrinter(QWidget*, QPrinter& printer) {
    ++printDialogs;
    const QString pdf = take(printerAnswers).value_or(QString());
    if (pdf.isEmpty())
        return false;
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(pdf);
    return true;
}

} // namespace trendax::test
