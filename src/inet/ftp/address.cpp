#include "inet/ftp/address.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace Ftp {
namespace {

bool IsControl(char c)
{
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

bool HoldsControl(std::string_view text)
{
    return std::any_of(text.begin(), text.end(), IsControl);
}

bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

int HexValue(char c)
{
    if (IsDigit(c)) return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

/// Nothing when a control character comes out.
std::optional<std::string> Decoded(std::string_view text)
{
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c == '%') {
            const int high = i + 2 < text.size() ? HexValue(text[i + 1]) : -1;
            const int low = i + 2 < text.size() ? HexValue(text[i + 2]) : -1;
            if (high >= 0 && low >= 0) {
                c = static_cast<char>(high * 16 + low);
                i += 2;
            }
        }
        if (IsControl(c)) return std::nullopt;
        decoded += c;
    }
    return decoded;
}

/// Takes "scheme://" off the text's front; what is no scheme stays there.
std::string TakeScheme(std::string_view& text)
{
    const std::size_t end = text.find("://");
    if (end == std::string_view::npos || end == 0 || !IsLetter(text.front())) return {};
    std::string scheme;
    for (const char c : text.substr(0, end)) {
        if (!IsLetter(c) && !IsDigit(c) && c != '+' && c != '-' && c != '.') return {};
        scheme += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    text.remove_prefix(end + 3);
    return scheme;
}

bool ReadUser(std::string_view text, Address& address)
{
    const std::size_t colon = text.find(':');
    auto user = Decoded(text.substr(0, colon));
    auto password = Decoded(colon == std::string_view::npos ? std::string_view() : text.substr(colon + 1));
    if (!user || !password) return false;
    address.User = std::move(*user);
    address.Password = std::move(*password);
    address.HasUser = true;
    return true;
}

bool ReadPort(std::string_view text, Address& address)
{
    constexpr int MaxPort = 65535;
    int port = 0;
    for (const char c : text) {
        if (!IsDigit(c)) return false;
        port = port * 10 + (c - '0');
        if (port > MaxPort) return false;
    }
    address.Port = port;
    return text.empty() || port > 0;
}

bool IsNumberSix(std::string_view text)
{
    return text.find(':') != std::string_view::npos &&
           std::all_of(text.begin(), text.end(), [](char c) { return HexValue(c) >= 0 || c == ':' || c == '.'; });
}

/// The number in brackets, perhaps with a zone behind a '%' (RFC 6874 writes it "%25").
bool ReadBracketed(std::string_view text, Address& address)
{
    const std::size_t zone = text.find('%');
    if (!IsNumberSix(text.substr(0, zone))) return false;
    address.Host = text.substr(0, zone);
    if (zone == std::string_view::npos) return true;
    std::string_view name = text.substr(zone + 1);
    if (name.starts_with("25") && name.size() > 2) name.remove_prefix(2);
    const bool good = !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return IsLetter(c) || IsDigit(c) || c == '-' || c == '.' || c == '_' || c == '~';
    });
    address.Host += '%' + std::string(name);
    return good;
}

bool ReadNamed(std::string_view text, Address& address)
{
    auto host = Decoded(text);
    if (!host || host->empty() || host->find_first_of(" /\\@:[]?#<>\"%") != std::string::npos) return false;
    address.Host = std::move(*host);
    return true;
}

bool ReadHostAndPort(std::string_view text, Address& address)
{
    if (text.starts_with('[')) {
        const std::size_t end = text.find(']');
        if (end == std::string_view::npos || !ReadBracketed(text.substr(1, end - 1), address)) return false;
        text.remove_prefix(end + 1);
        return text.empty() || (text.front() == ':' && ReadPort(text.substr(1), address));
    }
    // A bare IPv6 number has no room for a port.
    if (std::count(text.begin(), text.end(), ':') > 1) {
        address.Host = text;
        return IsNumberSix(text);
    }
    const std::size_t colon = text.find(':');
    if (colon != std::string_view::npos && !ReadPort(text.substr(colon + 1), address)) return false;
    return ReadNamed(text.substr(0, colon), address);
}

/// The path without the type code that may stand behind it (RFC 1738 3.2.2): files always go as they are.
std::string_view WithoutType(std::string_view path)
{
    constexpr std::string_view Mark = ";type=";
    if (path.size() <= Mark.size()) return path;
    const std::string_view rest = path.substr(path.size() - Mark.size() - 1);
    const bool isType =
        rest.starts_with(Mark) && std::string_view("aAiIdD").find(rest.back()) != std::string_view::npos;
    return isType ? path.substr(0, path.size() - rest.size()) : path;
}

}  // namespace

std::optional<Address> ParseAddress(std::string_view text)
{
    if (HoldsControl(text)) return std::nullopt;
    const std::size_t begin = text.find_first_not_of(' ');
    if (begin == std::string_view::npos) return std::nullopt;
    text = text.substr(begin, text.find_last_not_of(' ') - begin + 1);

    Address address;
    address.Scheme = TakeScheme(text);
    const std::size_t slash = text.find('/');
    std::string_view authority = text.substr(0, slash);
    const std::size_t at = authority.rfind('@');
    if (at != std::string_view::npos) {
        if (!ReadUser(authority.substr(0, at), address)) return std::nullopt;
        authority.remove_prefix(at + 1);
    }
    if (!ReadHostAndPort(authority, address)) return std::nullopt;
    if (slash != std::string_view::npos) {
        auto path = Decoded(WithoutType(text.substr(slash + 1)));
        if (!path) return std::nullopt;
        address.Path = std::move(*path);
    }
    return address;
}

}  // namespace Ftp
