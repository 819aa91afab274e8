#pragma once

#include "inet/ftp/clock.h"
#include "inet/ftp/failure.h"
#include "inet/ftp/wire.h"

#include <memory>
#include <vector>

namespace Ftp {

class Guard;

/// What was meant to happen to the running command. Why a wait ended is read from here, never guessed from the error
/// that the wire reported. Transfer thread only.
class Intent {
public:
    /// The user wants the command to end: whatever is waited for is given up.
    void Cancel();

    /// The wait that took too long was not the command's own: it goes on.
    void ForgiveTimeOut() { TimedOut = false; }

    /// The command has ended. A wish that comes before a command's first step counts for that command.
    void Reset();

    bool IsCancelled() const { return Cancelled; }

    /// The user or the time limit has ended the command.
    bool IsInterrupted() const { return Cancelled || TimedOut; }

    /// The failure as it is reported: the user's wish comes first, then the time limit, then what the wire said.
    Failure Explain(Failure failure) const;

    /// Nothing is waited for: no alarm is left behind.
    void Rest();

private:
    friend class Guard;

    void WakeBy(Clock& clock, Milliseconds deadline);
    void LookAround(Clock& clock);

    std::vector<Guard*> Waiting;
    bool Cancelled = false;
    bool TimedOut = false;

    // One alarm serves all guards, at the earliest deadline there was when it was set: most waits end long before
    // theirs, and setting an alarm for each of them costs more than all else about them.
    std::unique_ptr<Clock::Alarm> Alarm;
    Milliseconds Due{0};
};

/// Bounds a wait while it lives: when the limit passes without progress, or the user cancels, the thing waited for is
/// aborted and the intent knows why. Throws the Failure at once when the user has cancelled already.
class Guard {
public:
    Guard(Intent& intent, Clock& clock, Abortable& waitedFor, Milliseconds limit);

    /// Without a limit: for what only the user can bring to an end.
    Guard(Intent& intent, Clock& clock, Abortable& waitedFor);
    ~Guard();
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

    /// Something moved: the limit begins anew. Cheap enough to be called for every piece of data.
    void Progress() { LastProgress = Time.Now(); }

    bool Expired() const { return HasExpired; }

    /// The limit was only that of one attempt among several: the command as a whole goes on.
    void Forgive();

private:
    friend class Intent;

    static constexpr Milliseconds Unlimited = Milliseconds::max();

    Milliseconds Deadline() const { return LastProgress + Limit; }

    void Expire();

    Intent& Why;
    Clock& Time;
    Abortable& WaitedFor;
    Milliseconds Limit;
    Milliseconds LastProgress;
    bool HasExpired = false;
};

}  // namespace Ftp
