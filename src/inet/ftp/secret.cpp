#include "inet/ftp/secret.h"

namespace Ftp {

namespace {

bool IsWordByte(char byte)
{
    const auto value = static_cast<unsigned char>(byte);
    return value >= 0x80 || (value >= '0' && value <= '9') || (value >= 'A' && value <= 'Z') ||
           (value >= 'a' && value <= 'z');
}

}  // namespace

std::string Without(const std::string& secret, std::string text)
{
    constexpr std::size_t AnywhereFrom = 4;
    if (secret.empty()) return text;
    const std::string mask = "****";
    for (std::size_t at = text.find(secret); at != std::string::npos; at = text.find(secret, at)) {
        const std::size_t end = at + secret.size();
        const bool inside = (at > 0 && IsWordByte(text[at - 1])) || (end < text.size() && IsWordByte(text[end]));
        if (inside && secret.size() < AnywhereFrom) {
            ++at;
            continue;
        }
        text.replace(at, secret.size(), mask);
        at += mask.size();
    }
    return text;
}

}  // namespace Ftp
