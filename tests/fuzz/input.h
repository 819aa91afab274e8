#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// The bytes that a fuzzer hands over, taken from the front.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : Rest(reinterpret_cast<const char*>(data), size) {}

    bool Empty() const { return Rest.empty(); }

    std::string_view All() const { return Rest; }

    /// 0 when there is none left.
    unsigned Byte()
    {
        if (Rest.empty()) return 0;
        const auto byte = static_cast<unsigned char>(Rest.front());
        Rest.remove_prefix(1);
        return byte;
    }

    /// What stands in front of the next LF, which is taken too.
    std::string_view Line()
    {
        const std::size_t end = Rest.find('\n');
        const std::string_view line = Rest.substr(0, end);
        Rest.remove_prefix(end == std::string_view::npos ? Rest.size() : end + 1);
        return line;
    }

private:
    std::string_view Rest;
};

inline bool IsControlCharacter(char byte)
{
    return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F;
}

inline bool HoldsControlCharacter(std::string_view text)
{
    for (const char byte : text) {
        if (IsControlCharacter(byte)) return true;
    }
    return false;
}
