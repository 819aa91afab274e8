#pragma once

#include <QAbstractButton>
#include <QLabel>
#include <QObject>
#include <QTimer>
#include <cstdint>

/// The stopwatch of the main window: hidden, running or paused. It goes on from the kept time whenever it is shown
/// again; nothing sets it back. User-interface thread.
class Stopwatch final : public QObject {
    Q_OBJECT

public:
    struct Controls {
        QLabel& LblTimer;
        QAbstractButton& cmdPause;
        QAbstractButton& Command13;
    };

    /// `timer3` ticks once a second while the stopwatch runs.
    Stopwatch(Controls controls, QTimer& timer3);

    void Command11_Click();  ///< shows and starts it, or stops and hides it
    void cmdPause_Click();
    void Command13_Click();  ///< the reset button, which has no effect
    void Timer3_Timer();

    std::int32_t StopwatchSeconds = 0;
    std::int32_t StopwatchMinutes = 0;
    std::int32_t StopwatchHours = 0;

private:
    void ShowControls(bool shown);

    Controls Form;
    QTimer& Timer3;
};
