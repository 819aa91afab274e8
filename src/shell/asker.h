#pragma once

#include <QObject>
#include <QString>
#include <vector>

class QMessageBox;
class QWidget;
class SoleInput;

/// A question or a message to the user.
struct Question {
    enum Icon { NoIcon, Information, QuestionMark, Critical };

    enum Buttons { Ok, YesNo, RetryCancel };

    QString Text;
    QString Title;
    Icon Sign = NoIcon;
    Buttons Choice = YesNo;
    bool Foreground = false;  ///< brought before the windows of other programs
    bool Careful = false;     ///< Return alone means No
};

/// How a question was answered. Closing the box, Escape, or the end of the program give the safe answer: No or Cancel.
enum class Answer { Ok, Yes, No, Retry, Cancel };

/// Whoever puts questions to the user: message boxes in the program, a script in tests. User-interface thread.
class Asker {
public:
    virtual ~Asker() = default;

    /// Asks and returns the answer; events are handled meanwhile.
    virtual Answer Ask(const Question& question) = 0;

    /// Answers every open question safely, and every later one at once: the program ends.
    virtual void End() = 0;
};

/// Asks with message boxes over a window. While one is open the program takes no other input, but its main window
/// can still be closed from outside.
class MessageBoxAsker final : public QObject, public Asker {
    Q_OBJECT

public:
    MessageBoxAsker(QWidget& window, SoleInput& input);
    Answer Ask(const Question& question) override;
    void End() override;

private:
    QWidget& Window;
    SoleInput& Input;
    std::vector<QMessageBox*> Open;
    bool Ended = false;
};
