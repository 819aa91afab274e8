#include "inet/ftp/tunnel_network.h"

#include "inet/ftp/failure.h"
#include "inet/ftp/tunnel_handshake.h"
#include "inet/ftp/waker.h"
#include "platform/detached_thread.h"

#include <asio/post.hpp>
#include <mutex>
#include <optional>
#include <utility>

namespace Ftp {

struct TunnelNetwork::Road {
    Proxy Via;  ///< never System
    std::string Host;
    bool AsRelay = false;            ///< the proxy is not asked for a tunnel
    Endpoint Reached;                ///< the proxy's address that has answered
    std::optional<Failure> Refusal;  ///< the proxy's no to the host, which its other addresses would only repeat
};

namespace {

/// What was said about the server holds for the proxy in front of it.
Failure AboutProxy(Failure failure)
{
    const std::string server = "server";
    const std::size_t at = failure.Text.find(server);
    if (at != std::string::npos) failure.Text.replace(at, server.size(), "proxy");
    return failure;
}

class TunnelWire final : public Wire {
public:
    TunnelWire(std::shared_ptr<Wire> inner, std::shared_ptr<TunnelNetwork::Road> road)
        : Inner(std::move(inner)), Road(std::move(road))
    {
    }

    Task<> Connect(Endpoint endpoint) override
    {
        if (Road->Via.Kind == Proxy::None) {
            co_await Inner->Connect(endpoint);
            Other = endpoint;
            co_return;
        }
        const bool isFirst = !endpoint.address().is_unspecified();
        if (isFirst && Road->Refusal) throw Failure(*Road->Refusal);
        const Endpoint proxy = isFirst ? Endpoint(endpoint.address(), Road->Via.Port) : Road->Reached;
        try {
            co_await Inner->Connect(proxy);
        } catch (const Failure& failure) {
            throw AboutProxy(failure);
        }
        try {
            if (!Road->AsRelay) co_await OpenTunnel(Inner, Road->Via, Road->Host, endpoint.port());
        } catch (const Failure& failure) {
            if (failure.Kind == Failure::Connection) throw AboutProxy(failure);
            if (isFirst) Road->Refusal = failure;
            throw;
        }
        Road->Reached = proxy;
        Other = Endpoint(asio::ip::address_v4::any(), endpoint.port());
    }

    Task<std::size_t> Read(char* buffer, std::size_t size) override { return Inner->Read(buffer, size); }

    Task<> Write(std::string bytes) override { return Inner->Write(std::move(bytes)); }

    Task<> SendEnd() override { return Inner->SendEnd(); }

    Task<> WaitReadable() override { return Inner->WaitReadable(); }

    Task<> WaitWritable() override { return Inner->WaitWritable(); }

    void Abort() override { Inner->Abort(); }

    Endpoint Peer() const override { return Other; }

    asio::ip::address Local() const override
    {
        return Road->Via.Kind == Proxy::None ? Inner->Local() : asio::ip::address();
    }

    // Once the proxy has agreed the bytes pass as they are.
    int NativeSocket() const override { return Inner->NativeSocket(); }

private:
    std::shared_ptr<Wire> Inner;
    std::shared_ptr<TunnelNetwork::Road> Road;
    Endpoint Other;
};

/// What the thread that asks for the system's proxy and the one that waits for it share; the former is left behind
/// when nobody waits any more, and must then touch nothing but this.
struct Question {
    std::mutex Lock;
    bool Abandoned = false;
    std::optional<Proxy> Answer;
};

class TunnelLookup final : public Lookup {
public:
    TunnelLookup(std::shared_ptr<Lookup> inner, std::shared_ptr<TunnelNetwork::Road> road, Proxy wanted, bool asRelay,
                 TunnelNetwork::SystemProxy ask, asio::any_io_executor executor)
        : Inner(std::move(inner)), Road(std::move(road)), Wanted(std::move(wanted)), AsRelay(asRelay),
          Ask(std::move(ask)), Where(std::move(executor)), Answered(Where)
    {
    }

    ~TunnelLookup() override { Abandon(); }

    Task<std::vector<Endpoint>> Find(std::string host, std::uint16_t port) override
    {
        if (Wanted.Kind == Proxy::System) Wanted = co_await AskSystem(host, port);
        *Road = {Wanted, host, AsRelay && Wanted.Kind == Proxy::Connect, {}, {}};
        if (Wanted.Kind == Proxy::None) co_return co_await Inner->Find(std::move(host), port);
        std::vector<Endpoint> endpoints;
        try {
            endpoints = co_await Inner->Find(Wanted.Host, Wanted.Port);
        } catch (const Failure& failure) {
            throw AboutProxy(failure);
        }
        for (Endpoint& endpoint : endpoints) endpoint.port(port);
        co_return endpoints;
    }

    void Abort() override
    {
        Abandon();
        GivenUp = true;
        Answered.Wake();
        Inner->Abort();
    }

private:
    Task<Proxy> AskSystem(std::string host, std::uint16_t port)
    {
        auto ask = [asked = Asked, find = Ask, host = std::move(host), port, where = Where,
                    wake = [this] { Answered.Wake(); }] {
            Proxy answer = find(host, port);
            const std::lock_guard guard(asked->Lock);
            if (asked->Abandoned) return;
            asio::post(where, [asked, wake, answer = std::move(answer)] {
                const std::lock_guard inner(asked->Lock);
                if (asked->Abandoned) return;
                asked->Answer = answer;
                wake();
            });
        };
        if (!GivenUp) RunDetached(std::move(ask));
        while (!GivenUp && !Asked->Answer) co_await Answered.Wait();
        if (GivenUp) throw Failure{Failure::Connection, AbortedError, "The look-up of the proxy was given up."};
        co_return *Asked->Answer;
    }

    void Abandon()
    {
        const std::lock_guard guard(Asked->Lock);
        Asked->Abandoned = true;
    }

    std::shared_ptr<Lookup> Inner;
    std::shared_ptr<TunnelNetwork::Road> Road;
    Proxy Wanted;
    bool AsRelay;
    TunnelNetwork::SystemProxy Ask;
    asio::any_io_executor Where;
    Waker Answered;
    std::shared_ptr<Question> Asked = std::make_shared<Question>();
    bool GivenUp = false;
};

}  // namespace

TunnelNetwork::TunnelNetwork(Network& behind, SystemProxy ask)
    : Behind(behind), Ask(std::move(ask)), Taken(std::make_shared<Road>())
{
}

TunnelNetwork::~TunnelNetwork() = default;

void TunnelNetwork::Use(Proxy via, bool asRelay)
{
    Wanted = std::move(via);
    AsRelay = asRelay;
}

const Proxy& TunnelNetwork::Via() const
{
    return Taken->Via;
}

std::shared_ptr<Wire> TunnelNetwork::NewWire()
{
    return std::make_shared<TunnelWire>(Behind.NewWire(), Taken);
}

// Each look-up begins a road of its own; wires of the one before keep theirs.
std::shared_ptr<Lookup> TunnelNetwork::NewLookup()
{
    Taken = std::make_shared<Road>();
    return std::make_shared<TunnelLookup>(Behind.NewLookup(), Taken, Wanted, AsRelay, Ask, Executor());
}

}  // namespace Ftp
