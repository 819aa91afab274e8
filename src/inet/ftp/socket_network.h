#pragma once

#include "inet/ftp/wire.h"

namespace Ftp {

/// Wires and listeners over TCP sockets, and the system's own look-up of names.
class SocketNetwork final : public Network {
public:
    explicit SocketNetwork(asio::any_io_executor executor) : Where(std::move(executor)) {}

    std::shared_ptr<Wire> NewWire() override;
    std::shared_ptr<Lookup> NewLookup() override;
    std::shared_ptr<Listener> NewListener() override;

    asio::any_io_executor Executor() override { return Where; }

private:
    asio::any_io_executor Where;
};

}  // namespace Ftp
