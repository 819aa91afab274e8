#include "inet/ftp/tunnel_handshake.h"

#include "inet/ftp/failure.h"
#include "inet/ftp/http_login.h"
#include "inet/ftp/secret.h"

#include <algorithm>
#include <array>
#include <asio/ip/address.hpp>
#include <string_view>

namespace Ftp {

namespace {

constexpr std::size_t LongestHead = std::size_t{64} * 1024;
constexpr std::size_t LongestName = 255;  // RFC 1928, 5: its length is one byte

Failure HungUp()
{
    return {Failure::Refused, AbortedError, "The proxy closed the connection."};
}

Failure NotUnderstood()
{
    return {Failure::Protocol, ResponseError, "The answer of the proxy is not understood."};
}

Failure WrongPassword()
{
    return {Failure::Refused, ConnectError, "The proxy does not accept the user and password."};
}

Task<std::string> ReadExactly(std::shared_ptr<Wire> wire, std::size_t size)
{
    std::string bytes(size, '\0');
    for (std::size_t have = 0; have < size;) {
        const std::size_t count = co_await wire->Read(bytes.data() + have, size - have);
        if (count == 0) throw HungUp();
        have += count;
    }
    co_return bytes;
}

std::string Authority(const std::string& host, std::uint16_t port)
{
    const bool isNumberSix = host.find(':') != std::string::npos;
    return (isNumberSix ? '[' + host + ']' : host) + ':' + std::to_string(port);
}

/// The status line and the header, up to the empty line. Byte by byte: what follows belongs to the server.
Task<std::string> ReadHead(std::shared_ptr<Wire> wire)
{
    constexpr std::string_view Begin = "HTTP/1.";
    std::string head;
    while (!head.ends_with("\n\r\n") && !head.ends_with("\n\n")) {
        const std::string byte = co_await ReadExactly(wire, 1);
        head += byte;
        const std::size_t known = std::min(head.size(), Begin.size());
        if (head.size() > LongestHead || head.compare(0, known, Begin, 0, known) != 0) throw NotUnderstood();
    }
    co_return head;
}

/// The status and what stands behind it in the first line of a head; 0 when there is none.
int StatusIn(const std::string& head, std::string& words)
{
    constexpr std::size_t At = std::string_view("HTTP/1.1 ").size();
    const std::string line = head.substr(0, head.find_first_of("\r\n"));
    const bool isDigits = line.size() >= At + 3 && std::all_of(line.begin() + At, line.begin() + At + 3,
                                                               [](char digit) { return digit >= '0' && digit <= '9'; });
    if (!isDigits || line[At - 1] != ' ') return 0;
    words = line.substr(At);
    std::replace_if(
        words.begin(), words.end(), [](unsigned char byte) { return byte < 0x20 || byte == 0x7F; }, ' ');
    return std::stoi(words.substr(0, 3));
}

Task<> AskHttp(std::shared_ptr<Wire> wire, Proxy via, std::string host, std::uint16_t port)
{
    const std::string to = Authority(host, port);
    std::string request = "CONNECT " + to + " HTTP/1.1\r\nHost: " + to + "\r\n";
    if (!via.User.empty()) request += "Proxy-Authorization: " + BasicLogin(via.User, via.Password) + "\r\n";
    request += "\r\n";
    co_await wire->Write(std::move(request));
    const std::string head = co_await ReadHead(wire);
    std::string words;
    const int status = StatusIn(head, words);
    if (status < 200) throw NotUnderstood();
    if (status >= 300)
        throw Failure{Failure::Refused, status, "The proxy refused the connection: " + Without(via.Password, words)};
}

// RFC 1928, 3, and RFC 1929.
Task<> LogInSocks(std::shared_ptr<Wire> wire, Proxy via)
{
    constexpr char Nobody = 0;
    constexpr char UserAndPassword = 2;
    std::string hello = via.User.empty() ? std::string{5, 1, Nobody} : std::string{5, 2, Nobody, UserAndPassword};
    co_await wire->Write(std::move(hello));
    const std::string choice = co_await ReadExactly(wire, 2);
    if (choice[0] != 5) throw NotUnderstood();
    if (choice[1] == Nobody) co_return;
    if (choice[1] != UserAndPassword || via.User.empty())
        throw Failure{Failure::Refused, ConnectError, "The proxy wants a user and a password, or another way in."};
    std::string words(1, '\1');
    words += static_cast<char>(via.User.size()) + via.User;
    words += static_cast<char>(via.Password.size()) + via.Password;
    co_await wire->Write(std::move(words));
    const std::string verdict = co_await ReadExactly(wire, 2);
    if (verdict[1] != 0) throw WrongPassword();
}

std::string SocksAddress(const std::string& host)
{
    asio::error_code error;
    const asio::ip::address number = asio::ip::make_address(host, error);
    if (!error && number.is_v4()) {
        const auto bytes = number.to_v4().to_bytes();
        return '\1' + std::string(bytes.begin(), bytes.end());
    }
    if (!error) {
        const auto bytes = number.to_v6().to_bytes();
        return '\4' + std::string(bytes.begin(), bytes.end());
    }
    if (host.size() > LongestName) throw Failure{Failure::Request, AddressError, "The name of the server is too long."};
    return std::string{3, static_cast<char>(host.size())} + host;
}

// RFC 1928, 6.
std::string SocksTrouble(int code)
{
    constexpr std::array<const char*, 9> Words = {
        "",
        "it has failed",
        "its rules do not allow it",
        "the network cannot be reached",
        "the server cannot be reached",
        "the server refused it",
        "the server did not answer in time",
        "it cannot make connections",
        "it does not know this kind of address",
    };
    const auto number = static_cast<std::size_t>(code);
    return number < Words.size() ? Words[number] : "reason " + std::to_string(code);
}

// RFC 1928, 4 to 6.
Task<> AskSocks(std::shared_ptr<Wire> wire, Proxy via, std::string host, std::uint16_t port)
{
    std::string request = std::string{5, 1, 0} + SocksAddress(host);
    request += static_cast<char>(port >> 8);
    request += static_cast<char>(port & 0xFF);
    co_await LogInSocks(wire, std::move(via));
    co_await wire->Write(std::move(request));
    const std::string answer = co_await ReadExactly(wire, 4);
    if (answer[0] != 5) throw NotUnderstood();
    const int code = static_cast<unsigned char>(answer[1]);
    if (code != 0)
        throw Failure{Failure::Refused, ConnectError, "The proxy made no connection: " + SocksTrouble(code) + "."};
    // The address that the proxy connects from, which is of no interest but must be read.
    constexpr std::size_t PortSize = 2;
    std::size_t rest = 4;
    if (answer[3] == 4) {
        rest = 16;
    } else if (answer[3] == 3) {
        const std::string size = co_await ReadExactly(wire, 1);
        rest = static_cast<unsigned char>(size[0]);
    } else if (answer[3] != 1) {
        throw NotUnderstood();
    }
    (void)co_await ReadExactly(wire, rest + PortSize);
}

}  // namespace

Task<> OpenTunnel(std::shared_ptr<Wire> wire, Proxy via, std::string host, std::uint16_t port)
{
    if (via.Kind == Proxy::Socks5)
        co_await AskSocks(std::move(wire), std::move(via), std::move(host), port);
    else
        co_await AskHttp(std::move(wire), std::move(via), std::move(host), port);
}

}  // namespace Ftp
