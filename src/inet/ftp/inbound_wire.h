#pragma once

#include "inet/ftp/waker.h"
#include "inet/ftp/wire.h"

#include <functional>
#include <memory>
#include <string>

namespace Ftp {

/// A data connection that the server makes (RFC 959, 3.2). Every wait begins with the wait for it. Only the host of the
/// control connection is let in: others are closed, and the wait goes on.
class InboundWire final : public Wire {
public:
    /// Opens a port at the address at which the control connection reaches this computer; `from` is its other side.
    /// `arrived` is called once the server has connected. Throws Failure.
    InboundWire(Network& network, const asio::ip::address& local, const asio::ip::address& from,
                std::function<void()> arrived);

    /// The command that tells the server where to connect to: PORT (RFC 959, 4.1.2), which knows numbers of the old
    /// kind only, else EPRT (RFC 2428, 2).
    std::string Line() const;

    /// Returns when the server has connected.
    Task<> Arrive();

    bool HasArrived() const { return Inner != nullptr; }

    Task<> Connect(Endpoint) override { return Arrive(); }

    Task<std::size_t> Read(char* buffer, std::size_t size) override;
    Task<> Write(std::string bytes) override;
    Task<> WriteFrom(const char* bytes, std::size_t size) override;
    Task<> SendEnd() override;
    Task<> WaitReadable() override;
    Task<> WaitWritable() override;
    void Abort() override;
    Endpoint Peer() const override;

    asio::ip::address Local() const override { return Here; }

    int NativeSocket() const override;

private:
    asio::ip::address Here;
    asio::ip::address From;
    std::uint16_t Port;
    std::shared_ptr<Listener> Door;
    std::shared_ptr<Wire> Inner;
    Waker Changed;
    std::function<void()> Arrived;
    bool Waiting = false;  ///< somebody waits at the door for all
    bool IsOver = false;
};

}  // namespace Ftp
