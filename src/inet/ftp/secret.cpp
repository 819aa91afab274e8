#include "inet/ftp/secret.h"

#include <cstddef>
#include <string_view>

namespace Ftp {

namespace {

bool IsWordByte(char byte)
{
    const auto value = static_cast<unsigned char>(byte);
    return value >= 0x80 || (value >= '0' && value <= '9') || (value >= 'A' && value <= 'Z') ||
           (value >= 'a' && value <= 'z');
}

int HexValue(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

bool IsEscapeOf(std::string_view text, char byte)
{
    if (text.size() < 3 || text[0] != '%' || HexValue(text[1]) < 0 || HexValue(text[2]) < 0) return false;
    return HexValue(text[1]) * 16 + HexValue(text[2]) == static_cast<unsigned char>(byte);
}

/// How many bytes of the text's front are the secret, as it is or with bytes escaped as in an address; 0: none.
std::size_t LengthOf(const std::string& secret, std::string_view text)
{
    if (text.starts_with(secret)) return secret.size();
    std::size_t length = 0;
    for (const char byte : secret) {
        const std::string_view rest = text.substr(length);
        if (IsEscapeOf(rest, byte))
            length += 3;
        else if (!rest.empty() && rest.front() == byte)
            length += 1;
        else
            return 0;
    }
    return length;
}

}  // namespace

std::string Without(const std::string& secret, const std::string& text)
{
    constexpr std::size_t AnywhereFrom = 4;
    if (secret.empty()) return text;
    std::string told;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t length = LengthOf(secret, std::string_view(text).substr(at));
        const std::size_t end = at + length;
        const bool inside = (at > 0 && IsWordByte(text[at - 1])) || (end < text.size() && IsWordByte(text[end]));
        if (length > 0 && (!inside || secret.size() >= AnywhereFrom)) {
            told += "****";
            at = end;
        } else {
            told += text[at++];
        }
    }
    return told;
}

}  // namespace Ftp
