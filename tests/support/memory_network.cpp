#include "support/memory_network.h"

#include <algorithm>
#include <utility>

namespace {

Ftp::Failure Lost(int code, const char* text)
{
    return {Ftp::Failure::Connection, code, text};
}

class MemoryWire final : public Ftp::Wire {
public:
    MemoryWire(const asio::any_io_executor& executor, MemoryServer& server)
        : Link(std::make_shared<MemoryLink>(executor)), Server(server)
    {
    }

    /// Of a connection that the server has made.
    MemoryWire(std::shared_ptr<MemoryLink> link, MemoryServer& server) : Link(std::move(link)), Server(server) {}

    ~MemoryWire() override { Leave(); }

    Ftp::Task<> Connect(Ftp::Endpoint endpoint) override
    {
        Link->Address = endpoint;
        const MemoryServer::Answer answer = Server.Accept(Link);
        const bool silent = answer == MemoryServer::Answer::Silent;
        while ((silent || Link->Pending) && !Link->ClientGone) co_await Link->Changed.Wait();
        ThrowIfGone();
        if (answer == MemoryServer::Answer::Refused)
            throw Lost(Ftp::ConnectError, "The server could not be reached (refused).");
    }

    Ftp::Task<std::size_t> Read(char* buffer, std::size_t size) override
    {
        co_await WaitReadable();
        if (Link->ToClient.empty()) co_return 0;
        const std::size_t count = std::min({size, Link->Slice, Link->ToClient.size()});
        std::copy_n(Link->ToClient.data(), count, buffer);
        Link->ToClient.erase(0, count);
        Notify();
        co_return count;
    }

    Ftp::Task<> Write(std::string bytes) override
    {
        std::size_t sent = 0;
        while (sent < bytes.size()) {
            co_await WaitWritable();
            const std::size_t count = std::min(bytes.size() - sent, Link->Window - Link->ToServer.size());
            Link->ToServer.append(bytes, sent, count);
            sent += count;
            Notify();
        }
    }

    Ftp::Task<> SendEnd() override
    {
        ThrowIfGone();
        Link->ClientEnded = true;
        Notify();
        co_return;
    }

    Ftp::Task<> WaitReadable() override
    {
        for (;;) {
            ThrowIfGone();
            if (!Link->ToClient.empty()) co_return;
            if (Link->Broken) throw Lost(Ftp::ResetError, "The connection with the server was reset.");
            if (Link->ServerEnded) co_return;
            co_await Link->Changed.Wait();
        }
    }

    Ftp::Task<> WaitWritable() override
    {
        for (;;) {
            ThrowIfGone();
            if (Link->Broken) throw Lost(Ftp::ResetError, "The connection with the server was reset.");
            if (Link->ToServer.size() < Link->Window) co_return;
            co_await Link->Changed.Wait();
        }
    }

    void Abort() override { Leave(); }

    Ftp::Endpoint Peer() const override { return Link->Address; }

    asio::ip::address Local() const override
    {
        return asio::ip::make_address(Link->Address.address().is_v4() ? "127.0.0.1" : "::1");
    }

    int NativeSocket() const override { return -1; }

private:
    void ThrowIfGone() const
    {
        if (Link->ClientGone) throw Lost(Ftp::AbortedError, "The connection was given up.");
    }

    void Notify() const
    {
        if (Link->Notified) Link->Notified();
    }

    void Leave()
    {
        if (Link->ClientGone) return;
        Link->ClientGone = true;
        Link->Wake();
        Notify();
    }

    std::shared_ptr<MemoryLink> Link;
    MemoryServer& Server;
};

class MemoryListener final : public Ftp::Listener {
public:
    MemoryListener(const asio::any_io_executor& executor, MemoryServer& server, std::uint16_t& nextPort)
        : Door(std::make_shared<MemoryDoor>(executor)), Server(server), NextPort(nextPort)
    {
    }

    ~MemoryListener() override { Abort(); }

    std::uint16_t Listen(const asio::ip::address& address) override
    {
        Door->Address = Ftp::Endpoint(address, NextPort++);
        Door->Open = true;
        Server.Listening(Door);
        return Door->Address.port();
    }

    Ftp::Task<std::shared_ptr<Ftp::Wire>> Accept() override
    {
        const std::shared_ptr<MemoryDoor> door = Door;
        while (door->Open && door->Callers.empty()) co_await door->Changed.Wait();
        if (!door->Open) throw Lost(Ftp::AbortedError, "The port was closed.");
        const std::shared_ptr<MemoryLink> link = door->Callers.front();
        door->Callers.pop_front();
        co_return std::make_shared<MemoryWire>(link, Server);
    }

    // Who has called and was not let in is turned away.
    void Abort() override
    {
        Door->Open = false;
        for (const std::shared_ptr<MemoryLink>& link : std::exchange(Door->Callers, {})) {
            link->ClientGone = true;
            if (link->Notified) link->Notified();
        }
        Door->Changed.Wake();
    }

private:
    std::shared_ptr<MemoryDoor> Door;
    MemoryServer& Server;
    std::uint16_t& NextPort;
};

class MemoryLookup final : public Ftp::Lookup {
public:
    MemoryLookup(const asio::any_io_executor& executor, MemoryServer& server) : Changed(executor), Server(server) {}

    Ftp::Task<std::vector<Ftp::Endpoint>> Find(std::string host, std::uint16_t port) override
    {
        bool silent = false;
        const std::vector<asio::ip::address> found = Server.Find(host, silent);
        while (silent && !GivenUp) co_await Changed.Wait();
        if (GivenUp) throw Lost(Ftp::AbortedError, "The look-up was given up.");
        if (found.empty()) throw Lost(Ftp::NameError, "The name of the server could not be found.");
        std::vector<Ftp::Endpoint> endpoints;
        endpoints.reserve(found.size());
        for (const asio::ip::address& address : found) endpoints.emplace_back(address, port);
        co_return endpoints;
    }

    void Abort() override
    {
        GivenUp = true;
        Changed.Wake();
    }

private:
    Ftp::Waker Changed;
    MemoryServer& Server;
    bool GivenUp = false;
};

}  // namespace

std::shared_ptr<MemoryLink> MemoryDoor::Call(const Ftp::Endpoint& from)
{
    auto link = std::make_shared<MemoryLink>(Where);
    link->Address = from;
    Callers.push_back(link);
    Changed.Wake();
    return link;
}

std::shared_ptr<Ftp::Listener> MemoryNetwork::NewListener()
{
    return std::make_shared<MemoryListener>(Where, Server, NextPort);
}

std::shared_ptr<Ftp::Wire> MemoryNetwork::NewWire()
{
    return std::make_shared<MemoryWire>(Where, Server);
}

std::shared_ptr<Ftp::Lookup> MemoryNetwork::NewLookup()
{
    return std::make_shared<MemoryLookup>(Where, Server);
}
