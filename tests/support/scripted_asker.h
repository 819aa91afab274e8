#pragma once

#include "shell/asker.h"

#include <QStringList>
#include <deque>
#include <functional>
#include <vector>

/// Answers questions from a script and records them. Without a script left, the safe answer: No, Cancel or Ok.
class ScriptedAsker final : public Asker {
public:
    std::deque<Answer> Answers;                    ///< used up from the front
    std::function<Answer(const Question&)> Reply;  ///< when set, it answers instead
    std::vector<Question> Questions;               ///< all that were asked
    bool Ended = false;

    /// The texts of all questions, in order.
    QStringList Texts() const
    {
        QStringList texts;
        for (const Question& question : Questions) texts += question.Text;
        return texts;
    }

    Answer Ask(const Question& question) override
    {
        Questions.push_back(question);
        if (Ended) return Safe(question);
        if (Reply) return Reply(question);
        if (Answers.empty()) return Safe(question);
        const Answer answer = Answers.front();
        Answers.pop_front();
        return answer;
    }

    void End() override { Ended = true; }

private:
    static Answer Safe(const Question& question)
    {
        if (question.Choice == Question::YesNo) return Answer::No;
        return question.Choice == Question::RetryCancel ? Answer::Cancel : Answer::Ok;
    }
};
