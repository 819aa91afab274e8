#pragma once

#include <QObject>
#include <QString>
#include <functional>

class QWidget;
class SoleInput;

/// Asks the user for one line of text. The answer travels in InputText, a value of the whole program, where the
/// caller first puts what shall stand there when nobody answers. Empty means that the user gave up.
/// User-interface thread.
class TextInput {
public:
    virtual ~TextInput() = default;

    /// Asks under a title, with a text to start from, and returns when the dialog is gone; events are handled
    /// meanwhile. InputText is then the text without the blanks around it; empty after Cancel; what the caller put
    /// there when the dialog was closed by its title bar.
    virtual void Ask(const QString& title, const QString& prefill = {}) = 0;

    /// Cancels an open dialog, and every later one at once: the program ends.
    virtual void End() = 0;
};

/// Asks with the dialog frmText over a window. While it is open the program takes no other input, but its main window
/// can still be closed from outside.
class TextInputDialog final : public QObject, public TextInput {
    Q_OBJECT

public:
    /// `beep` sounds when Ok is pressed over an empty box.
    TextInputDialog(QWidget& window, SoleInput& input, QString& inputText, std::function<void()> beep);
    void Ask(const QString& title, const QString& prefill) override;
    void End() override;

signals:
    void EndRequested();

private:
    QWidget& Window;
    SoleInput& Input;
    QString& InputText;
    std::function<void()> Beep;
    bool Ended = false;
};
