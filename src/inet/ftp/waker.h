#pragma once

#include "inet/ftp/task.h"

#include <asio/redirect_error.hpp>
#include <asio/steady_timer.hpp>

namespace Ftp {

/// Lets one task wait until another says that something has changed. The waiting one looks at what it waits for,
/// waits, and looks again. Transfer thread only.
class Waker {
public:
    explicit Waker(const asio::any_io_executor& executor) : Sleep(executor, asio::steady_timer::time_point::max()) {}

    Task<> Wait()
    {
        asio::error_code woken;
        co_await Sleep.async_wait(asio::redirect_error(asio::use_awaitable, woken));
    }

    void Wake() { Sleep.cancel(); }

private:
    asio::steady_timer Sleep;
};

}  // namespace Ftp
