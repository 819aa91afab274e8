#include "inet/ftp/encoding.h"

#include <algorithm>
#include <cstddef>

namespace Ftp {
namespace {

unsigned ByteAt(std::string_view text, std::size_t at)
{
    return static_cast<unsigned char>(text[at]);
}

/// How many bytes follow the first one of a character, and within which limits the first of these must lie.
struct Sequence {
    std::size_t Followers;
    unsigned Least;
    unsigned Most;
};

constexpr Sequence NoSequence{0, 0, 0};

Sequence SequenceOf(unsigned first)
{
    if (first >= 0xC2 && first <= 0xDF) return {1, 0x80, 0xBF};
    if (first == 0xE0) return {2, 0xA0, 0xBF};
    if (first == 0xED) return {2, 0x80, 0x9F};
    if (first >= 0xE1 && first <= 0xEF) return {2, 0x80, 0xBF};
    if (first == 0xF0) return {3, 0x90, 0xBF};
    if (first >= 0xF1 && first <= 0xF3) return {3, 0x80, 0xBF};
    if (first == 0xF4) return {3, 0x80, 0x8F};
    return NoSequence;
}

}  // namespace

bool IsAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

bool IsUtf8(std::string_view text)
{
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (ByteAt(text, at) < 0x80) continue;
        const Sequence sequence = SequenceOf(ByteAt(text, at));
        if (sequence.Followers == 0 || text.size() - at <= sequence.Followers) return false;
        if (ByteAt(text, at + 1) < sequence.Least || ByteAt(text, at + 1) > sequence.Most) return false;
        for (std::size_t i = 2; i <= sequence.Followers; ++i) {
            if (ByteAt(text, at + i) < 0x80 || ByteAt(text, at + i) > 0xBF) return false;
        }
        at += sequence.Followers;
    }
    return true;
}

}  // namespace Ftp
