#include "inet/ftp/proxy_address.h"

#include "inet/ftp/address.h"

#include <utility>

namespace Ftp {

namespace {

constexpr std::uint16_t UsualHttpPort = 8080;
constexpr std::uint16_t UsualSocksPort = 1080;
constexpr std::size_t LongestSocksWord = 255;  // RFC 1929, 2

}  // namespace

std::optional<Proxy> ParseProxy(std::string_view text)
{
    std::optional<Address> address = ParseAddress(text);
    if (!address || !address->Path.empty()) return std::nullopt;
    Proxy proxy;
    if (address->Scheme.empty() || address->Scheme == "http")
        proxy.Kind = Proxy::Connect;
    else if (address->Scheme == "socks5" || address->Scheme == "socks5h" || address->Scheme == "socks")
        proxy.Kind = Proxy::Socks5;
    else
        return std::nullopt;
    const bool socks = proxy.Kind == Proxy::Socks5;
    if (socks && (address->User.size() > LongestSocksWord || address->Password.size() > LongestSocksWord))
        return std::nullopt;
    proxy.Host = std::move(address->Host);
    proxy.Port =
        address->Port != 0 ? static_cast<std::uint16_t>(address->Port) : (socks ? UsualSocksPort : UsualHttpPort);
    proxy.User = std::move(address->User);
    proxy.Password = std::move(address->Password);
    return proxy;
}

}  // namespace Ftp
