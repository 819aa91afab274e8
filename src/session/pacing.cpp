#include "session/pacing.h"

#include "base/conversions.h"
#include "inet/inet.h"
#include "session/timers.h"
#include "session/transfer_state.h"
#include "session/waits.h"
#include "shell/asker.h"
#include "shell/busy_pointer.h"
#include "shell/settings_store.h"
#include "shell/status_line.h"

#include <utility>

namespace {

constexpr int Delay = 1100;  // milliseconds

/// What is shown when a command has ended, one way or the other, and nobody has said more since.
bool IsLeftOver(const QString& text)
{
    return text.isEmpty() || text.startsWith(u"File Re") || text.startsWith(u"Error") ||
           text == u"Response Received!" || text == u"Closing Connection.";
}

}  // namespace

Pacing::Pacing(Controls controls, Tools tools) : Form(controls), Use(std::move(tools))
{
    connect(&Use.Clocks.Timer2, &QTimer::timeout, this, &Pacing::Timer2_Timer);
    connect(&Use.Clocks.MultiTimer, &QTimer::timeout, this, &Pacing::MultiTimer_Timer);
    Use.Clocks.Timer2.start();
}

void Pacing::ShortDelay()
{
    Use.Errors.Attempt([this] {
        Use.Clocks.MultiTimer.start(Delay);
        Use.Pause.UntilRunOut(Use.Clocks.MultiTimer);
        Use.Clocks.MultiTimer.stop();
    });
}

void Pacing::MultiTimer_Timer()
{
    Use.Clocks.MultiTimer.stop();
    Use.Clocks.MultiTimer.setInterval(0);
}

void Pacing::Timer2_Timer()
{
    if (!IsLeftOver(Trimmed(Use.Status.Text()))) return;
    Use.Status.Show("Waiting ...");
    Use.State.ReceiveInProgress = false;
    Use.State.SendInProgress = false;
    Use.Pointer.SetNormalPointer();
}

void Pacing::Command2_Click()
{
    RunHandler(Use.Errors, [this] { Exit(); });
}

void Pacing::Exit()
{
    while (!CancelCommand()) {
        if (!AskToTryAgain()) {
            Use.EndAtOnce();
            return;
        }
        // The box goes away by itself when the program ends meanwhile.
        Use.Pause.ThrowWhenEnding();
    }
    Use.CloseWindow();
}

// Returns whether nothing runs any more.
bool Pacing::CancelCommand()
{
    if (Use.Inet1.StillExecuting()) Use.Errors.Attempt([this] { Use.Inet1.Cancel(); });
    return !Use.Inet1.StillExecuting();
}

// The buttons do the reverse of what they say: Cancel cancels the command once more, Retry ends the program.
bool Pacing::AskToTryAgain()
{
    const Answer answer = Use.Questions.Ask({"Cannot cancel last command. Still executing.", "Cancel error",
                                             Question::Critical, Question::RetryCancel, true});
    return answer != Answer::Retry;
}

void Pacing::Slider1_Change()
{
    const QString value = QString::number(Form.Slider1.value());
    Form.SlideVal.setText(value);
    Use.Settings.Write("Timeout", value);
}
