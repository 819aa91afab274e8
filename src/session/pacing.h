#pragma once

#include "base/run_time_error.h"

#include <QAbstractSlider>
#include <QLabel>
#include <QObject>
#include <functional>

class Asker;
class BusyPointer;
class Inet;
class SettingsStore;
class StatusLine;
class Timers;
class Waits;
struct TransferState;

/// How the program paces itself: the short delay between commands, the watchdog that tells when it is idle again, the
/// exit button, which is also the one way to cancel a running command, and the request time-out.
/// User-interface thread.
class Pacing final : public QObject {
    Q_OBJECT

public:
    struct Controls {
        QAbstractSlider& Slider1;  ///< the request time-out in seconds
        QLabel& SlideVal;          ///< its value
    };

    struct Tools {
        Inet& Inet1;
        TransferState& State;
        Timers& Clocks;
        Waits& Pause;
        StatusLine& Status;
        BusyPointer& Pointer;
        Asker& Questions;
        SettingsStore& Settings;
        ErrorRecord& Errors;
        std::function<void()> CloseWindow;  ///< the normal end of the program
        std::function<void()> EndAtOnce;    ///< the end of the process, without any closing steps
    };

    /// Starts the watchdog.
    Pacing(Controls controls, Tools tools);

    /// Waits about 1.1 seconds; events are handled meanwhile. A delay begun during another one ends together with it.
    /// Throws ProgramEnding.
    void ShortDelay();

    void Command2_Click();  ///< cancels the running command and closes the window
    void Timer2_Timer();
    void MultiTimer_Timer();
    void Slider1_Change();

private:
    void Exit();
    bool CancelCommand();
    bool AskToTryAgain();

    Controls Form;
    Tools Use;
};
