#include "inet/http_head.h"

#include "inet/ftp/failure.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace {

constexpr std::string_view Version = "HTTP/1.";
constexpr int NoContent = 204;

Ftp::Failure NotUnderstood()
{
    return {Ftp::Failure::Protocol, Ftp::ResponseError, "The server's answer was not understood."};
}

bool IsDigit(char byte)
{
    return byte >= '0' && byte <= '9';
}

std::string Lower(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char byte) { return std::tolower(byte); });
    return lower;
}

std::string_view Trimmed(std::string_view text)
{
    constexpr std::string_view Blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(Blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

/// Takes the first of the words between commas off the list.
std::string_view TakeWord(std::string_view& list)
{
    const std::size_t comma = std::min(list.find(','), list.size());
    const std::string_view word = Trimmed(list.substr(0, comma));
    list.remove_prefix(std::min(comma + 1, list.size()));
    return word;
}

/// All of the text as a number to this base.
std::uint64_t NumberIn(std::string_view text, int base)
{
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc() || end != text.data() + text.size()) throw NotUnderstood();
    return number;
}

// "HTTP/1.1 200 OK"; the words may be missing, and the blank before them, too.
void ReadStatusLine(std::string_view line, HttpHead& head)
{
    constexpr std::size_t At = Version.size() + 2;
    constexpr std::size_t Digits = 3;
    const bool good = line.size() >= At + Digits && line.starts_with(Version) && IsDigit(line[At - 2]) &&
                      line[At - 1] == ' ' && (line.size() == At + Digits || line[At + Digits] == ' ');
    if (!good || !std::all_of(line.begin() + At, line.begin() + At + Digits, IsDigit)) throw NotUnderstood();
    head.Status = static_cast<int>(NumberIn(line.substr(At, Digits), 10));
    head.Reason = Trimmed(line.substr(At + Digits));
}

// A line that begins with a blank goes on with the one before it (RFC 9112, 5.2). One without a colon says nothing.
void ReadField(std::string_view line, HttpHead& head)
{
    if ((line.starts_with(' ') || line.starts_with('\t')) && !head.Fields.empty()) {
        std::string& value = head.Fields.back().second;
        value += ' ';
        value += Trimmed(line);
        return;
    }
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) return;
    head.Fields.emplace_back(Lower(Trimmed(line.substr(0, colon))), Trimmed(line.substr(colon + 1)));
}

/// Whether the bytes come in chunks; every other way to wrap them was not asked for.
bool IsChunked(const HttpHead& head)
{
    bool chunked = false;
    const std::vector<std::string> values = head.All("transfer-encoding");
    for (const std::string& value : values) {
        for (std::string_view left = value; !left.empty();) {
            const std::string word = Lower(TakeWord(left));
            if (word == "chunked" && !chunked)
                chunked = true;
            else if (!word.empty() && word != "identity")
                throw Ftp::Failure{Ftp::Failure::Protocol, Ftp::ResponseError,
                                   "The server sends the file in a form that is not understood."};
        }
    }
    return chunked;
}

}  // namespace

std::vector<std::string> HttpHead::All(std::string_view name) const
{
    std::vector<std::string> values;
    for (const auto& [one, value] : Fields)
        if (one == name) values.push_back(value);
    return values;
}

std::string HttpHead::First(std::string_view name) const
{
    const auto found = std::find_if(Fields.begin(), Fields.end(), [&](const auto& one) { return one.first == name; });
    return found == Fields.end() ? std::string() : found->second;
}

HttpHead ParseHttpHead(std::string_view text)
{
    HttpHead head;
    bool first = true;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (first)
            ReadStatusLine(line, head);
        else if (!line.empty())
            ReadField(line, head);
        first = false;
    }
    if (first) throw NotUnderstood();
    return head;
}

// RFC 9112, 6.3. A server that gives two lengths cannot be right with both.
HttpExtent ExtentOf(const HttpHead& head)
{
    if (head.Status == NoContent) return {HttpExtent::Counted, 0, false};
    if (IsChunked(head)) return {HttpExtent::Chunked, 0, false};
    HttpExtent extent;
    const std::vector<std::string> values = head.All("content-length");
    for (const std::string& value : values) {
        for (std::string_view left = value; !left.empty();) {
            const std::uint64_t length = NumberIn(TakeWord(left), 10);
            if (extent.IsAnnounced && length != extent.Length) throw NotUnderstood();
            extent = {HttpExtent::Counted, length, true};
        }
    }
    return extent;
}

std::uint64_t ChunkSizeIn(std::string_view line)
{
    return NumberIn(Trimmed(line.substr(0, line.find(';'))), 16);
}

bool MayBeHttp(std::string_view begin)
{
    return Version.starts_with(begin.substr(0, Version.size()));
}
