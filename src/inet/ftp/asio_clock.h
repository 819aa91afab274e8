#pragma once

#include "inet/ftp/clock.h"

#include <asio/any_io_executor.hpp>

namespace Ftp {

/// The clock of the real world; its alarms ring on the executor.
class AsioClock final : public Clock {
public:
    explicit AsioClock(asio::any_io_executor executor) : Executor(std::move(executor)) {}

    Milliseconds Now() const override;
    std::unique_ptr<Alarm> After(Milliseconds delay, std::function<void()> call) override;

private:
    asio::any_io_executor Executor;
};

}  // namespace Ftp
