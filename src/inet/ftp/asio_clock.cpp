#include "inet/ftp/asio_clock.h"

#include <asio/steady_timer.hpp>

namespace Ftp {

namespace {

class TimerAlarm final : public Clock::Alarm {
public:
    TimerAlarm(const asio::any_io_executor& executor, Milliseconds delay, std::function<void()> call)
        : Timer(executor, delay), Call(std::make_shared<std::function<void()>>(std::move(call)))
    {
        Timer.async_wait([call = std::weak_ptr(Call)](const asio::error_code& error) {
            if (const auto due = call.lock(); due && !error) (*due)();
        });
    }

private:
    asio::steady_timer Timer;
    std::shared_ptr<std::function<void()>> Call;
};

}  // namespace

Milliseconds AsioClock::Now() const
{
    return std::chrono::duration_cast<Milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

std::unique_ptr<Clock::Alarm> AsioClock::After(Milliseconds delay, std::function<void()> call)
{
    return std::make_unique<TimerAlarm>(Executor, delay, std::move(call));
}

}  // namespace Ftp
