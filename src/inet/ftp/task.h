#pragma once

#include <asio/awaitable.hpp>
#include <asio/use_awaitable.hpp>

namespace Ftp {

/// A piece of a conversation that can wait. It runs on the transfer thread only.
template <typename Value = void>
using Task = asio::awaitable<Value>;

}  // namespace Ftp
