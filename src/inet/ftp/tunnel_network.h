#pragma once

#include "inet/ftp/proxy_address.h"
#include "inet/ftp/wire.h"

#include <functional>
#include <memory>
#include <string>

namespace Ftp {

/// Another network, seen through a proxy where there is one to go through. Control and data connections of a session
/// take the same road: the proxy that the look-up of its host has settled on, which is given that host's name and the
/// port and finds the way from there.
///
/// Behind a proxy a host has no address of its own: the endpoints that a look-up finds are those of the proxy with the
/// host's port, and the peer of a wire has no address, which is also what leads back to the same proxy; nor has this
/// side one that the host could connect to. Transfer thread only.
class TunnelNetwork final : public Network {
public:
    /// Asks how the system is set up to reach a host; may take long, and is called on threads of its own.
    using SystemProxy = std::function<Proxy(std::string host, std::uint16_t port)>;

    TunnelNetwork(Network& behind, SystemProxy ask);
    ~TunnelNetwork() override;

    /// How hosts are reached that are looked up from now on; what is connected stays as it is. `asRelay`: an HTTP proxy
    /// is not asked for tunnels, since what will be sent over the wires is meant for itself (RFC 9112, 3.2.2).
    void Use(Proxy via, bool asRelay = false);

    /// The road that the last look-up has settled on; never System.
    const Proxy& Via() const;

    std::shared_ptr<Wire> NewWire() override;
    std::shared_ptr<Lookup> NewLookup() override;

    std::shared_ptr<Listener> NewListener() override { return Behind.NewListener(); }

    asio::any_io_executor Executor() override { return Behind.Executor(); }

    /// What the last look-up has settled on, and the host that it was for.
    struct Road;

private:
    Network& Behind;
    SystemProxy Ask;
    Proxy Wanted;
    bool AsRelay = false;
    std::shared_ptr<Road> Taken;
};

}  // namespace Ftp
