#pragma once

#include "base/conversions.h"
#include "dialogs/text_input.h"

#include <QStringList>
#include <deque>
#include <functional>
#include <optional>

/// Answers for the user from a script and records what was asked. An answer is a typed text, which arrives without
/// the blanks around it; nothing stands for closing by the title bar; an empty one, or a script that has run out,
/// for Cancel.
class ScriptedTextInput final : public TextInput {
public:
    explicit ScriptedTextInput(QString& inputText) : InputText(inputText) {}

    std::deque<std::optional<QString>> Answers;  ///< used up from the front
    std::function<void()> Meanwhile;             ///< when set, it happens while the dialog is up
    QStringList Titles;                          ///< all that were asked
    QStringList Prefills;                        ///< the texts they started from
    bool Ended = false;

    void Ask(const QString& title, const QString& prefill) override
    {
        Titles += title;
        Prefills += prefill;
        if (Meanwhile) Meanwhile();
        if (Ended || Answers.empty()) {
            InputText.clear();
            return;
        }
        const std::optional<QString> answer = Answers.front();
        Answers.pop_front();
        if (answer) InputText = Trimmed(*answer);
    }

    void End() override { Ended = true; }

private:
    QString& InputText;
};
