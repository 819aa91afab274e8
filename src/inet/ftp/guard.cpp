#include "inet/ftp/guard.h"

#include <algorithm>

namespace Ftp {

void Intent::Cancel()
{
    Cancelled = true;
    const std::vector<Abortable*> waiting = Waiting;
    for (Abortable* one : waiting) one->Abort();
}

void Intent::Reset()
{
    Cancelled = false;
    TimedOut = false;
}

Failure Intent::Explain(Failure failure) const
{
    if (Cancelled) return {Failure::Cancelled, CancelledError, "The command was cancelled."};
    if (TimedOut) return {Failure::TimedOut, TimeOutError, "The server did not answer in time."};
    return failure;
}

Guard::Guard(Intent& intent, Clock& clock, Abortable& waitedFor, Milliseconds limit) : Guard(intent, clock, waitedFor)
{
    Limit = limit;
    Arm(Limit);
}

Guard::Guard(Intent& intent, Clock& clock, Abortable& waitedFor)
    : Why(intent), Time(clock), WaitedFor(waitedFor), Limit(0), LastProgress(clock.Now())
{
    if (Why.Cancelled) throw Failure{Failure::Cancelled, CancelledError, "The command was cancelled."};
    Why.Waiting.push_back(&WaitedFor);
}

Guard::~Guard()
{
    const auto mine = std::find(Why.Waiting.rbegin(), Why.Waiting.rend(), &WaitedFor);
    Why.Waiting.erase(std::next(mine).base());
}

void Guard::Forgive()
{
    if (HasExpired) Why.TimedOut = false;
}

void Guard::Arm(Milliseconds delay)
{
    Alarm = Time.After(delay, [this] { Check(); });
}

// Progress only notes the time; an alarm that comes early sleeps for what is left.
void Guard::Check()
{
    const Milliseconds left = LastProgress + Limit - Time.Now();
    if (left.count() > 0) {
        Arm(left);
        return;
    }
    HasExpired = true;
    Why.TimedOut = true;
    WaitedFor.Abort();
}

}  // namespace Ftp
