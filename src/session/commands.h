#pragma once

#include "inet/inet.h"
#include "session/transfer_state.h"
#include "session/waits.h"
#include "shell/options.h"

#include <QString>

/// How commands are issued on the main session, one at a time: wait, say what the command is, execute.
/// User-interface thread.
class Commands {
public:
    Commands(Inet& inet, TransferState& state, const Options& options, Waits& waits);

    /// Waits until the component is idle. Throws ProgramEnding.
    void WaitUntilIdle();

    /// Sets OperationKind and executes the operation on the component's own address, at once: the caller has waited.
    /// Throws RuntimeError when the component refuses.
    void Execute(int operationKind, const QString& operation, const QString& inputData = {});

    /// Executes on an address given by the caller (empty for the silent close).
    void ExecuteOn(const QString& url, int operationKind, const QString& operation, const QString& inputData = {});

    /// Executes the operation as Execute does, waits until the component is idle and returns whether the operation was
    /// carried out; false when it failed or was cancelled. Throws RuntimeError and ProgramEnding.
    bool CarryOut(int operationKind, const QString& operation);

    /// "LS" with the UNIX option on, else "DIR".
    QString ListingOperation() const;

    /// Executes the listing request, kind 0.
    void RequestListing();

    /// Waits until the component is idle and takes the whole reply of its last command. Throws ProgramEnding.
    QString GatherReply();

private:
    Inet& Component;
    TransferState& State;
    const Options& Chosen;
    Waits& Pause;
};
