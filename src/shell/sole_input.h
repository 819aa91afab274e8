#pragma once

#include <QObject>
#include <vector>

class QWidget;

/// Lets one window take all input: a box or dialog that must be answered before the program goes on. There is one for
/// the whole program, because such windows can be stacked; the last one takes the input then.
///
/// A window that is modal to the toolkit would make the main window refuse its close event, so that neither the window
/// manager nor the end of the desktop session could end the program. Windows that must be answered are therefore
/// modeless, and the input is kept from everything else. User-interface thread.
class SoleInput final : public QObject {
    Q_OBJECT

public:
    /// A window's turn, as long as this lives. The window with its own menus and lists takes the input.
    class Turn {
    public:
        Turn(SoleInput& input, QWidget& window) : Input(input), Window(window) { Input.Enter(Window); }

        ~Turn() { Input.Leave(Window); }

        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

    private:
        SoleInput& Input;
        QWidget& Window;
    };

private:
    void Enter(QWidget& window);
    void Leave(QWidget& window);
    bool eventFilter(QObject* receiver, QEvent* event) override;

    std::vector<QWidget*> Windows;  ///< the last one takes the input
};
