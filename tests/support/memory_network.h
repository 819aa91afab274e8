#pragma once

#include "inet/ftp/failure.h"
#include "inet/ftp/waker.h"
#include "inet/ftp/wire.h"

#include <deque>
#include <functional>
#include <memory>
#include <string>

/// Both ends of one connection in memory, as the server's side sees it.
struct MemoryLink {
    explicit MemoryLink(const asio::any_io_executor& executor) : Changed(executor) {}

    /// To be called by whoever changed something that the client may be waiting for.
    void Wake() { Changed.Wake(); }

    std::string ToClient;            ///< sent by the server, not yet read
    std::string ToServer;            ///< sent by the client
    std::size_t Slice = SIZE_MAX;    ///< the most one read gives the client
    std::size_t Window = SIZE_MAX;   ///< what the client may have written before its writing has to wait
    bool Pending = false;            ///< the connection is still being made
    bool ServerEnded = false;        ///< the server sends no more (FIN)
    bool ClientEnded = false;        ///< the client sends no more (FIN)
    bool Broken = false;             ///< reset by the server
    bool ClientGone = false;         ///< the client has closed
    Ftp::Endpoint Address;           ///< where the client wanted to go, or who has connected to it
    Ftp::Waker Changed;              ///< wakes the client
    std::function<void()> Notified;  ///< tells the server that the client did something
};

/// A port of the client in memory, to which the server can connect while it is open.
struct MemoryDoor {
    explicit MemoryDoor(const asio::any_io_executor& executor) : Where(executor), Changed(executor) {}

    /// Somebody at this address connects.
    std::shared_ptr<MemoryLink> Call(const Ftp::Endpoint& from);

    asio::any_io_executor Where;
    Ftp::Endpoint Address;
    bool Open = false;
    std::deque<std::shared_ptr<MemoryLink>> Callers;  ///< not accepted yet
    Ftp::Waker Changed;                               ///< wakes the client
};

/// Who answers connections in memory.
class MemoryServer {
public:
    enum class Answer { Accepted, Refused, Silent };

    virtual ~MemoryServer() = default;

    /// The client connects to link->Address. Silent: it waits until it gives up.
    virtual Answer Accept(std::shared_ptr<MemoryLink> link) = 0;

    /// The client listens.
    virtual void Listening(std::shared_ptr<MemoryDoor> door) { (void)door; }

    /// What the name of a host leads to; none: there is no such host. `silent`: no answer ever comes.
    virtual std::vector<asio::ip::address> Find(const std::string& host, bool& silent) = 0;
};

/// Wires in memory that all lead to one server. One thread.
class MemoryNetwork final : public Ftp::Network {
public:
    MemoryNetwork(asio::any_io_executor executor, MemoryServer& server) : Where(std::move(executor)), Server(server) {}

    std::shared_ptr<Ftp::Wire> NewWire() override;
    std::shared_ptr<Ftp::Lookup> NewLookup() override;
    std::shared_ptr<Ftp::Listener> NewListener() override;

    asio::any_io_executor Executor() override { return Where; }

private:
    asio::any_io_executor Where;
    MemoryServer& Server;
    std::uint16_t NextPort = 50001;  ///< of the client
};
