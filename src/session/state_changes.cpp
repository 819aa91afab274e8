#include "session/state_changes.h"

#include "inet/inet.h"
#include "session/follow_ups.h"
#include "session/state_texts.h"
#include "session/transfer_state.h"
#include "session/waits.h"
#include "shell/activity_log.h"
#include "shell/busy_pointer.h"
#include "shell/status_line.h"

#include <QCheckBox>
#include <utility>

StateChanges::StateChanges(QCheckBox& check1, Tools tools) : Check1(check1), Use(std::move(tools)) {}

void StateChanges::Inet1_StateChanged(int state)
{
    RunHandler(Use.Errors, [&] { React(state); });
}

void StateChanges::Inet1_Remarked(const QString& line)
{
    Use.Log.AddWithDateTime(line);
}

void StateChanges::React(int state)
{
    if (state == Inet::Error)
        ReportError();
    else
        Report(state);
    KeepTransferCaption();
}

void StateChanges::Report(int state)
{
    const char* text = StateText(state);
    if (text == nullptr) return;
    Use.Status.Show(text);
    if (state == Inet::Disconnected) {
        ClearTransferFlags();
        Use.Beep();
    }
    Use.Log.AddWithTime(Use.Status.Text());
    switch (state) {
    case Inet::None:
        ClearTransferFlags();
        Use.Pointer.SetNormalPointer();
        break;
    case Inet::Connected:
        Use.Beep();
        break;
    case Inet::ResponseCompleted:
        ReactToResponse(Use.State.OperationKind);
        break;
    default:
        break;
    }
}

void StateChanges::ReportError()
{
    Use.Status.Show("Error! " + QString::number(Use.Inet1.ResponseCode()) + ": " + Use.Inet1.ResponseInfo());
    Use.Log.AddWithTime(Use.Status.Text() + "  " + Use.Errors.Description());
    Use.Pointer.SetNormalPointer();
    ClearTransferFlags();
    Use.Beep();
    Use.Beep();
}

void StateChanges::ClearTransferFlags()
{
    Use.State.ReceiveInProgress = false;
    Use.State.SendInProgress = false;
}

// While a file is on its way every state is logged under its own text, but the status line keeps the file's name.
void StateChanges::KeepTransferCaption()
{
    if (Use.State.ReceiveInProgress) {
        Use.Status.Show("Receiving File:  " + Use.State.CurrentFileName);
        Check1.setEnabled(true);
    } else if (Use.State.SendInProgress) {
        Check1.setEnabled(true);
        Use.Status.Show("Sending File:  " + Use.State.CurrentFileName);
    } else {
        return;
    }
    Use.Pointer.SetBusyPointer();
    Use.Pause.Yield();
}

std::int32_t StateChanges::ReactToResponse(std::int32_t lastCommand)
{
    QString& message = Use.State.ResponseMessage;
    message.clear();
    switch (lastCommand) {
    case ListingKind:
        ListingCompleted();
        break;
    case SendKind:
        message = Use.State.CurrentFileName + " - File Sent!";
        SendCompleted();
        break;
    case ReceiveKind:
        message = Use.State.CurrentFileName + " - File Received!";
        ReceiveCompleted();
        break;
    case EraseKind:
        message = "File has been erased.";
        break;
    case CloseKind:
        message = "Closing Connection.";
        break;
    case TimeOutKind:
        message = "Timing Out!";
        break;
    default:
        break;
    }
    Use.Status.Show(message);
    Use.Log.AddWithTime(message);
    message.clear();
    return 0;
}

// A command without a listing reply (a change of folder) has nothing to show: the old lines stay until the listing
// that follows it.
void StateChanges::ListingCompleted()
{
    if (!Use.State.SkipListing && Use.State.ListingExpected)
        Use.Errors.Attempt([this] { Use.Above.ShowRemoteFileList(); });
    Check1.setEnabled(false);
}

void StateChanges::SendCompleted()
{
    Use.State.SendInProgress = false;
    Use.Errors.Attempt([this] { Use.Above.FinishSend(); });
}

void StateChanges::ReceiveCompleted()
{
    Use.State.ReceiveInProgress = false;
    Use.Errors.Attempt([this] { Use.Above.FinishReceive(); });
}
