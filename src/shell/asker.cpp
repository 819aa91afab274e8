#include "shell/asker.h"

#include "base/byte_text.h"
#include "shell/sole_input.h"

#include <QEventLoop>
#include <QMessageBox>
#include <algorithm>

namespace {

QMessageBox::StandardButtons ButtonsOf(Question::Buttons choice)
{
    switch (choice) {
    case Question::YesNo:
        return QMessageBox::Yes | QMessageBox::No;
    case Question::RetryCancel:
        return QMessageBox::Retry | QMessageBox::Cancel;
    case Question::Ok:
        break;
    }
    return QMessageBox::Ok;
}

QMessageBox::Icon IconOf(Question::Icon sign)
{
    switch (sign) {
    case Question::Information:
        return QMessageBox::Information;
    case Question::QuestionMark:
        return QMessageBox::Question;
    case Question::Critical:
        return QMessageBox::Critical;
    case Question::NoIcon:
        break;
    }
    return QMessageBox::NoIcon;
}

Answer SafeAnswer(Question::Buttons choice)
{
    switch (choice) {
    case Question::YesNo:
        return Answer::No;
    case Question::RetryCancel:
        return Answer::Cancel;
    case Question::Ok:
        break;
    }
    return Answer::Ok;
}

Answer AnswerOf(int button, Question::Buttons choice)
{
    switch (button) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::Retry:
        return Answer::Retry;
    default:
        return SafeAnswer(choice);
    }
}

constexpr int LongestWord = 20;  // characters that find room in one line of a box

/// Long names without a blank may be broken anywhere, or the box would cut them and what follows them off.
QString Breakable(const QString& text)
{
    constexpr QChar MayBreakHere(0x200B);
    QString broken;
    int run = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const QChar unit = text[at];
        run = unit.isSpace() ? 0 : run + 1;
        if (run > LongestWord && !unit.isLowSurrogate() && !unit.isMark()) {
            broken += MayBreakHere;
            run = 1;
        }
        broken += unit;
    }
    return broken;
}

}  // namespace

MessageBoxAsker::MessageBoxAsker(QWidget& window, SoleInput& input) : Window(window), Input(input) {}

Answer MessageBoxAsker::Ask(const Question& question)
{
    if (Ended) return SafeAnswer(question.Choice);

    QMessageBox box(IconOf(question.Sign), question.Title, Breakable(ShownLines(question.Text, '\n')),
                    ButtonsOf(question.Choice), &Window);
    box.setTextFormat(Qt::PlainText);
    box.setWindowModality(Qt::NonModal);
    if (question.Careful) box.setDefaultButton(QMessageBox::No);

    QEventLoop loop;
    connect(&box, &QDialog::finished, &loop, &QEventLoop::quit);
    const SoleInput::Turn turn(Input, box);
    Open.push_back(&box);
    box.show();
    if (question.Foreground) box.raise();
    box.activateWindow();
    loop.exec();
    Open.erase(std::find(Open.begin(), Open.end(), &box));

    return Ended ? SafeAnswer(question.Choice) : AnswerOf(box.result(), question.Choice);
}

void MessageBoxAsker::End()
{
    Ended = true;
    for (QMessageBox* box : Open) box->reject();
}
