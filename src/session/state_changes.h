#pragma once

#include "base/run_time_error.h"

#include <QObject>
#include <QString>
#include <cstdint>
#include <functional>

class ActivityLog;
class BusyPointer;
class FollowUps;
class Inet;
class QCheckBox;
class StatusLine;
class Waits;
struct TransferState;

/// Reports the states of the main session and decides what a completed command means. User-interface thread.
class StateChanges final : public QObject {
    Q_OBJECT

public:
    struct Tools {
        const Inet& Inet1;
        TransferState& State;
        StatusLine& Status;
        ActivityLog& Log;
        BusyPointer& Pointer;
        Waits& Pause;
        ErrorRecord& Errors;
        FollowUps& Above;
        std::function<void()> Beep;
    };

    /// `check1` is the box "Disconnect when done.".
    StateChanges(QCheckBox& check1, Tools tools);

    /// Shows and logs one state of the component and does what belongs to it. A failing step is left out.
    void Inet1_StateChanged(int state);

    /// Logs one line about what the component did beside its states.
    void Inet1_Remarked(const QString& line);

    /// Does what follows the completion of a command of this kind and shows its message. Always returns 0.
    std::int32_t ReactToResponse(std::int32_t lastCommand);

private:
    void React(int state);
    void Report(int state);
    void ReportError();
    void ClearTransferFlags();
    void KeepTransferCaption();
    void ListingCompleted();
    void ReceiveCompleted();
    void SendCompleted();

    QCheckBox& Check1;
    Tools Use;
};
