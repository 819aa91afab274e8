#pragma once

#include "inet/ftp/clock.h"

#include <map>
#include <utility>

/// A clock that stands still until it is told to jump to the next alarm. One thread.
class ManualClock final : public Ftp::Clock {
public:
    Ftp::Milliseconds Now() const override { return Time; }

    std::unique_ptr<Alarm> After(Ftp::Milliseconds delay, std::function<void()> call) override
    {
        auto alarm = std::make_unique<Pending>(*this);
        alarm->Place = Alarms.emplace(Time + delay, std::make_pair(alarm.get(), std::move(call)));
        return alarm;
    }

    /// Rings the alarm that is due next, at its moment. False when there is none.
    bool JumpToNextAlarm()
    {
        if (Alarms.empty()) return false;
        const auto next = Alarms.begin();
        if (next->first > Time) Time = next->first;
        const auto call = std::move(next->second.second);
        next->second.first->Place = Alarms.end();
        Alarms.erase(next);
        call();
        return true;
    }

private:
    struct Pending;
    using Calls = std::multimap<Ftp::Milliseconds, std::pair<Pending*, std::function<void()>>>;

    struct Pending final : Alarm {
        explicit Pending(ManualClock& clock) : Owner(clock) {}

        ~Pending() override
        {
            if (Place != Owner.Alarms.end()) Owner.Alarms.erase(Place);
        }

        ManualClock& Owner;
        Calls::iterator Place;
    };

    Ftp::Milliseconds Time{0};
    Calls Alarms;
};
