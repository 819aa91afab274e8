#include "inet/ftp/guard.h"

#include <utility>

namespace Ftp {

void Intent::Cancel()
{
    Cancelled = true;
    const std::vector<Guard*> waiting = Waiting;
    for (Guard* one : waiting) one->WaitedFor.Abort();
}

void Intent::Reset()
{
    Cancelled = false;
    TimedOut = false;
}

void Intent::Rest()
{
    if (Waiting.empty()) Alarm.reset();
}

Failure Intent::Explain(Failure failure) const
{
    if (Cancelled) return {Failure::Cancelled, CancelledError, "The command was cancelled."};
    if (TimedOut) return {Failure::TimedOut, TimeOutError, "The server did not answer in time."};
    return failure;
}

void Intent::WakeBy(Clock& clock, Milliseconds deadline)
{
    if (Alarm && Due <= deadline) return;
    Due = deadline;
    Alarm = clock.After(deadline - clock.Now(), [this, &clock] { LookAround(clock); });
}

// Progress only notes the time, so an alarm may come too early for every guard; the next one is set for what is left.
void Intent::LookAround(Clock& clock)
{
    const std::unique_ptr<Clock::Alarm> rung = std::move(Alarm);
    const std::vector<Guard*> waiting = Waiting;
    for (Guard* one : waiting) {
        if (one->HasExpired || one->Limit == Guard::Unlimited) continue;
        if (one->Deadline() <= clock.Now())
            one->Expire();
        else
            WakeBy(clock, one->Deadline());
    }
}

Guard::Guard(Intent& intent, Clock& clock, Abortable& waitedFor, Milliseconds limit)
    : Why(intent), Time(clock), WaitedFor(waitedFor), Limit(limit), LastProgress(clock.Now())
{
    if (Why.Cancelled) throw Failure{Failure::Cancelled, CancelledError, "The command was cancelled."};
    Why.Waiting.push_back(this);
    if (Limit != Unlimited) Why.WakeBy(Time, Deadline());
}

Guard::Guard(Intent& intent, Clock& clock, Abortable& waitedFor) : Guard(intent, clock, waitedFor, Unlimited) {}

Guard::~Guard()
{
    std::erase(Why.Waiting, this);
}

void Guard::Forgive()
{
    if (HasExpired) Why.TimedOut = false;
}

void Guard::Expire()
{
    HasExpired = true;
    Why.TimedOut = true;
    WaitedFor.Abort();
}

}  // namespace Ftp
