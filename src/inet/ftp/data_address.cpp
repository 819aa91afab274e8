#include "inet/ftp/data_address.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <string_view>

namespace Ftp {
namespace {

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

std::string_view LastLine(const Reply& reply)
{
    return reply.Lines.empty() ? std::string_view() : std::string_view(reply.Lines.back());
}

/// The digits at a place of the text, which moves behind them; nothing when there are none or they do not fit.
template <typename Number>
std::optional<Number> TakeNumber(std::string_view& text)
{
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || text.empty() || !IsDigit(text.front())) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

void SkipBlanks(std::string_view& text)
{
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
}

/// The port in a row of exactly six bytes that begins the text.
std::optional<int> PortOfRow(std::string_view text)
{
    std::array<int, 6> numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (i > 0) {
            SkipBlanks(text);
            if (!text.starts_with(',')) return std::nullopt;
            text.remove_prefix(1);
            SkipBlanks(text);
        }
        const auto number = TakeNumber<int>(text);
        if (!number || *number > 255) return std::nullopt;
        numbers[i] = *number;
    }
    SkipBlanks(text);
    if (text.starts_with(',')) return std::nullopt;
    return numbers[4] * 256 + numbers[5];
}

/// The text behind a row of numbers and commas that was not the one looked for.
std::string_view BehindRow(std::string_view text)
{
    while (!text.empty() && IsDigit(text.front())) text.remove_prefix(1);
    for (;;) {
        std::string_view next = text;
        SkipBlanks(next);
        if (!next.starts_with(',')) return text;
        next.remove_prefix(1);
        SkipBlanks(next);
        if (next.empty() || !IsDigit(next.front())) return next;
        while (!next.empty() && IsDigit(next.front())) next.remove_prefix(1);
        text = next;
    }
}

/// The port in "<d>fields<d>fields<d>port<d>)", which begins the text behind the parenthesis.
std::optional<int> PortOfFields(std::string_view text)
{
    constexpr int MaxPort = 65535;
    if (text.empty() || text.front() < 33 || text.front() > 126 || IsDigit(text.front())) return std::nullopt;
    const char delimiter = text.front();
    for (int i = 0; i < 3; ++i) {
        const std::size_t at = text.find(delimiter);
        if (at == std::string_view::npos || text.substr(0, at).find(')') != std::string_view::npos) return std::nullopt;
        text.remove_prefix(at + 1);
    }
    const auto port = TakeNumber<int>(text);
    if (!port || *port < 1 || *port > MaxPort || text.size() < 2) return std::nullopt;
    return text[0] == delimiter && text[1] == ')' ? port : std::nullopt;
}

/// The figure of "(n bytes)" when that begins the text behind the parenthesis.
std::optional<std::uint64_t> BytesIn(std::string_view text)
{
    constexpr std::string_view Word = "byte";
    const auto figure = TakeNumber<std::uint64_t>(text);
    if (!figure || !text.starts_with(' ')) return std::nullopt;
    SkipBlanks(text);
    if (text.size() < Word.size()) return std::nullopt;
    const bool same = std::equal(Word.begin(), Word.end(), text.begin(),
                                 [](char lower, char given) { return lower == given || lower - 'a' + 'A' == given; });
    return same ? figure : std::nullopt;
}

bool IsWordByte(char c)
{
    return IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80;
}

/// What stands in front of the last quote that ends a word; for servers that do not double the quotes inside.
std::optional<std::string> ToLastQuote(std::string_view text)
{
    for (std::size_t at = text.rfind('"'); at != std::string_view::npos && at > 0; at = text.rfind('"', at - 1)) {
        if (at + 1 == text.size() || text[at + 1] == ' ') return std::string(text.substr(0, at));
    }
    return std::nullopt;
}

/// What stands in front of the closing quote, doubled quotes undone; nothing when that is nothing.
std::optional<std::string> Unquoted(std::string_view text)
{
    std::string path;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '"') {
            const bool isDoubled = at + 1 < text.size() && text[at + 1] == '"';
            if (!isDoubled) {
                // A word that goes on behind the quote says that it was one of the name's own.
                const bool goesOn = at + 1 < text.size() && IsWordByte(text[at + 1]);
                if (auto whole = goesOn ? ToLastQuote(text) : std::nullopt) return whole;
                return path.empty() ? std::nullopt : std::optional(path);
            }
            ++at;
        }
        path += text[at];
    }
    return std::nullopt;
}

}  // namespace

std::optional<int> PassivePort(const Reply& reply)
{
    std::string_view text = LastLine(reply);
    while (!text.empty()) {
        if (!IsDigit(text.front())) {
            text.remove_prefix(1);
            continue;
        }
        if (const auto port = PortOfRow(text)) return *port > 0 ? port : std::nullopt;
        text = BehindRow(text);
    }
    return std::nullopt;
}

std::optional<int> ExtendedPort(const Reply& reply)
{
    std::string_view text = LastLine(reply);
    for (std::size_t at = text.find('('); at != std::string_view::npos; at = text.find('(', at + 1)) {
        if (const auto port = PortOfFields(text.substr(at + 1))) return port;
    }
    return std::nullopt;
}

std::optional<std::string> QuotedPath(const Reply& reply)
{
    for (const std::string& line : reply.Lines) {
        const std::size_t at = line.find('"');
        if (at != std::string::npos) return Unquoted(std::string_view(line).substr(at + 1));
    }
    return std::nullopt;
}

std::optional<std::uint64_t> AnnouncedSize(const Reply& reply)
{
    for (const std::string& line : reply.Lines) {
        const std::string_view text = line;
        for (std::size_t at = text.find('('); at != std::string_view::npos; at = text.find('(', at + 1)) {
            if (const auto figure = BytesIn(text.substr(at + 1))) return figure;
        }
    }
    return std::nullopt;
}

std::optional<std::uint64_t> SizeFigure(const Reply& reply)
{
    std::string_view text = LastLine(reply);
    const std::size_t at = text.find_first_of("0123456789");
    if (at == std::string_view::npos || (at > 0 && text[at - 1] == '-')) return std::nullopt;
    text.remove_prefix(at);
    return TakeNumber<std::uint64_t>(text);
}

}  // namespace Ftp
