#include "support/scripted_proxy.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr auto Agreed = "HTTP/1.1 200 Connection established\r\n\r\n";

std::string Bytes(std::initializer_list<int> values)
{
    std::string bytes;
    for (const int value : values) bytes += static_cast<char>(value);
    return bytes;
}

unsigned ByteAt(const std::string& text, std::size_t at)
{
    return static_cast<unsigned char>(text[at]);
}

/// The host and port of a SOCKS request, whole.
std::string SocksTarget(const std::string& request)
{
    const std::size_t end = request.size() - 2;
    const std::string port = std::to_string(ByteAt(request, end) << 8 | ByteAt(request, end + 1));
    if (ByteAt(request, 3) == 3) return request.substr(5, end - 5) + ':' + port;
    if (ByteAt(request, 3) == 1) {
        asio::ip::address_v4::bytes_type four{};
        std::copy_n(request.begin() + 4, four.size(), four.begin());
        return asio::ip::address_v4(four).to_string() + ':' + port;
    }
    asio::ip::address_v6::bytes_type six{};
    std::copy_n(request.begin() + 4, six.size(), six.begin());
    return '[' + asio::ip::address_v6(six).to_string() + "]:" + port;
}

/// How many bytes of it make a whole SOCKS request; 0 when they are not there yet.
std::size_t SocksRequestSize(const std::string& text)
{
    if (text.size() < 5) return 0;
    const unsigned kind = ByteAt(text, 3);
    const std::size_t size = kind == 1 ? 10 : kind == 4 ? 22 : 7 + ByteAt(text, 4);
    return text.size() < size ? 0 : size;
}

}  // namespace

MemoryServer::Answer ScriptedProxy::Accept(std::shared_ptr<MemoryLink> link)
{
    Endpoints.push_back(link->Address);
    if (link->Address.port() != Port) return Answer::Refused;
    const auto caller = std::make_shared<Caller>();
    caller->Link = link;
    caller->Number = Endpoints.size();
    caller->Step = Kind == Socks5 ? AtHello : AtRequest;
    if (const auto own = On.find(caller->Number); own != On.end()) caller->React = own->second;
    Heard.resize(caller->Number);
    link->Slice = Slice;
    link->Notified = [this, caller] { Listen(caller); };
    return Answer::Accepted;
}

std::vector<asio::ip::address> ScriptedProxy::Find(const std::string& host, bool&)
{
    NamesLookedUp.push_back(host);
    if (host == "proxy.test") return Addresses;
    return {};
}

void ScriptedProxy::Listen(const std::shared_ptr<Caller>& caller)
{
    const std::shared_ptr<MemoryLink> link = caller->Link.lock();
    if (!link || link->ClientGone || link->ServerEnded || link->Broken) return;
    if (Kind == Http) {
        TakeHttp(*caller, *link);
        return;
    }
    while (TakeSocks(*caller, *link)) {}
}

std::string ScriptedProxy::Take(Caller& caller, MemoryLink& link, std::size_t size)
{
    const std::string taken = link.ToServer.substr(0, size);
    link.ToServer.erase(0, size);
    Heard[caller.Number - 1] += taken;
    return taken;
}

void ScriptedProxy::TakeHttp(Caller& caller, MemoryLink& link)
{
    const std::size_t end = link.ToServer.find("\r\n\r\n");
    if (end == std::string::npos) return;
    const std::string head = Take(caller, link, end + 4);
    const std::size_t blank = head.find(' ');
    Targets.push_back(head.substr(blank + 1, head.find(' ', blank + 1) - blank - 1));
    Grant(caller, caller.Link.lock(), Agreed);
}

bool ScriptedProxy::TakeSocks(Caller& caller, MemoryLink& link)
{
    const std::string& text = link.ToServer;
    if (caller.Step == AtHello) {
        if (text.size() < 2 || text.size() < 2 + ByteAt(text, 1)) return false;
        Take(caller, link, 2 + ByteAt(text, 1));
        caller.Step = WantsPassword ? AtWords : AtRequest;
        return Say(caller, link, caller.React.Hello, Bytes({5, WantsPassword ? 2 : 0}));
    }
    if (caller.Step == AtWords) {
        if (text.size() < 2 || text.size() < 3 + ByteAt(text, 1)) return false;
        const std::size_t size = 3 + ByteAt(text, 1) + ByteAt(text, 2 + ByteAt(text, 1));
        if (text.size() < size) return false;
        Take(caller, link, size);
        caller.Step = AtRequest;
        return Say(caller, link, caller.React.Words, Bytes({1, 0}));
    }
    const std::size_t size = SocksRequestSize(text);
    if (size == 0) return false;
    Targets.push_back(SocksTarget(Take(caller, link, size)));
    Grant(caller, caller.Link.lock(), Bytes({5, 0, 0, 1, 127, 0, 0, 1, 4, 5}));
    return false;
}

// From here on the link belongs to the server behind.
void ScriptedProxy::Grant(const Caller& caller, const std::shared_ptr<MemoryLink>& link, const std::string& usual)
{
    const std::string target = Targets.back();
    if (!Say(caller, *link, caller.React.Answer, usual)) return;
    const int port = std::stoi(target.substr(target.rfind(':') + 1));
    link->Address = Ftp::Endpoint(asio::ip::make_address("127.0.0.1"), static_cast<std::uint16_t>(port));
    link->Notified = nullptr;
    if (Behind.Accept(link) != Answer::Accepted) {
        link->ServerEnded = true;
        link->Wake();
    }
}

/// Whether the connection goes on.
bool ScriptedProxy::Say(const Caller& caller, MemoryLink& link, const std::optional<std::string>& own,
                        const std::string& usual)
{
    const Reaction::Ends then = own ? caller.React.Then : Reaction::Tunnel;
    link.ToClient += own.value_or(usual);
    link.ServerEnded = then == Reaction::Close;
    link.Broken = then == Reaction::Reset;
    link.Wake();
    return then == Reaction::Tunnel;
}
