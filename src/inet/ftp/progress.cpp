#include "inet/ftp/progress.h"

namespace Ftp {

ProgressMeter::ProgressMeter(Clock& clock, const Listener& listener, std::optional<std::uint64_t> expected)
    : Time(clock), Tell(listener), Expected(expected), Samples{{clock.Now(), 0}}
{
}

void ProgressMeter::Add(std::uint64_t bytes)
{
    constexpr Milliseconds Pause{100};
    constexpr Milliseconds Span{3000};
    Sum += bytes;
    const Milliseconds now = Time.Now();
    if (now - Samples.back().At < Pause) return;
    while (Samples.size() > 1 && now - Samples[1].At >= Span) Samples.pop_front();
    const auto passed = static_cast<std::uint64_t>((now - Samples.front().At).count());
    const std::uint64_t moved = Sum - Samples.front().Sum;
    Samples.push_back({now, Sum});
    if (Tell) Tell({Sum, Expected, moved * 1000 / passed});
}

}  // namespace Ftp
