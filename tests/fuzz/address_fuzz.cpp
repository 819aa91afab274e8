// Addresses: nothing that is understood holds a control character, and its parts, written out again, are the same.

#include "inet/ftp/address.h"
#include "input.h"
#include "require.h"

#include <array>
#include <string>

namespace {

std::string Encoded(const std::string& text)
{
    std::string encoded;
    for (const char byte : text) {
        std::array<char, 4> escape{};
        (void)std::snprintf(escape.data(), escape.size(), "%%%02X",
                            static_cast<unsigned>(static_cast<unsigned char>(byte)));
        encoded += escape.data();
    }
    return encoded;
}

/// A number in brackets, with the mark in front of its zone escaped (RFC 6874).
std::string Bracketed(std::string host)
{
    const std::size_t zone = host.find('%');
    if (zone != std::string::npos) host.insert(zone + 1, "25");
    return '[' + host + ']';
}

std::string Written(const Ftp::Address& address)
{
    std::string text = address.Scheme.empty() ? "" : address.Scheme + "://";
    if (address.HasUser) text += Encoded(address.User) + ':' + Encoded(address.Password) + '@';
    const bool isNumberSix = address.Host.find(':') != std::string::npos;
    text += isNumberSix ? Bracketed(address.Host) : address.Host;
    if (address.Port != 0) text += ':' + std::to_string(address.Port);
    return text + '/' + Encoded(address.Path);
}

bool Same(const Ftp::Address& one, const Ftp::Address& other)
{
    return one.Scheme == other.Scheme && one.HasUser == other.HasUser && one.User == other.User &&
           one.Password == other.Password && one.Host == other.Host && one.Port == other.Port && one.Path == other.Path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto address = Ftp::ParseAddress(Input(data, size).All());
    if (!address) return 0;
    for (const std::string& part : {address->Scheme, address->User, address->Password, address->Host, address->Path})
        REQUIRE(!HoldsControlCharacter(part));
    REQUIRE(!address->Host.empty() && address->Host.find_first_of(" /@") == std::string::npos);
    REQUIRE(address->Port >= 0 && address->Port <= 65535);
    REQUIRE(address->HasUser || (address->User.empty() && address->Password.empty()));
    const auto again = Ftp::ParseAddress(Written(*address));
    REQUIRE(again && Same(*address, *again));
    return 0;
}
