#pragma once

#include "support/memory_network.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// A proxy in memory at proxy.test, in front of another server: HTTP's CONNECT or SOCKS5. It agrees to everything
/// unless it is told otherwise for one of its connections.
class ScriptedProxy final : public MemoryServer {
public:
    enum Kinds { Http, Socks5 };

    /// What one connection meets. Without answers of its own: the usual ones.
    struct Reaction {
        enum Ends { Tunnel, Close, Reset, Silence };

        std::optional<std::string> Answer{};  ///< to the request
        Ends Then = Tunnel;                   ///< behind the answer of its own
        std::optional<std::string> Hello{};   ///< SOCKS: to the ways to log in that the client offers
        std::optional<std::string> Words{};   ///< SOCKS: to user and password
    };

    static constexpr int Port = 3128;

    ScriptedProxy(Kinds kind, MemoryServer& behind) : Kind(kind), Behind(behind) {}

    std::map<std::size_t, Reaction> On;  ///< by the number of the connection, from 1
    bool WantsPassword = false;          ///< SOCKS: the usual way in is the one with user and password
    std::size_t Slice = SIZE_MAX;        ///< the most that one read of an answer gives the client
    std::vector<asio::ip::address> Addresses{asio::ip::make_address("192.0.2.9")};

    std::vector<std::string> Targets;        ///< what was asked for, "server.test:21"
    std::vector<std::string> Heard;          ///< everything said to the proxy itself, by connection
    std::vector<Ftp::Endpoint> Endpoints;    ///< where the client's connections went
    std::vector<std::string> NamesLookedUp;  ///< by the client

    Answer Accept(std::shared_ptr<MemoryLink> link) override;
    std::vector<asio::ip::address> Find(const std::string& host, bool& silent) override;

private:
    enum Steps { AtHello, AtWords, AtRequest };

    struct Caller {
        std::weak_ptr<MemoryLink> Link;
        Reaction React;
        Steps Step = AtRequest;
        std::size_t Number = 0;
    };

    void Listen(const std::shared_ptr<Caller>& caller);
    void TakeHttp(Caller& caller, MemoryLink& link);
    bool TakeSocks(Caller& caller, MemoryLink& link);
    void Grant(const Caller& caller, const std::shared_ptr<MemoryLink>& link, const std::string& usual);
    static bool Say(const Caller& caller, MemoryLink& link, const std::optional<std::string>& own,
                    const std::string& usual);
    std::string Take(Caller& caller, MemoryLink& link, std::size_t size);

    Kinds Kind;
    MemoryServer& Behind;
};
