// Replies on the control connection: the same bytes give the same replies however they are sliced, and each reply is
// one that may be acted on.

#include "inet/ftp/reply_parser.h"
#include "input.h"
#include "require.h"

#include <algorithm>
#include <vector>

namespace {

struct Parsed {
    std::vector<Ftp::Reply> Replies;
    bool Failed = false;
    bool Empty = false;
};

void TakeAll(Ftp::ReplyParser& parser, Parsed& parsed)
{
    while (auto reply = parser.Next()) parsed.Replies.push_back(std::move(*reply));
}

/// In slices of 1 to `longest` bytes, chosen by a simple row of numbers.
Parsed Parse(std::string_view bytes, std::size_t longest, unsigned seed)
{
    Ftp::ReplyParser parser;
    Parsed parsed;
    while (!bytes.empty()) {
        seed = seed * 1103515245U + 12345U;
        const std::size_t count = std::min(bytes.size(), 1 + (seed >> 16U) % longest);
        parser.Feed(bytes.substr(0, count));
        bytes.remove_prefix(count);
        if (seed % 2 == 0) TakeAll(parser, parsed);
    }
    TakeAll(parser, parsed);
    parsed.Failed = parser.Failed();
    parsed.Empty = parser.Empty();
    return parsed;
}

void Check(const Ftp::Reply& reply)
{
    REQUIRE(reply.Code >= 100 && reply.Code <= 599);
    REQUIRE(reply.KindOf() >= Ftp::Reply::Preliminary && reply.KindOf() <= Ftp::Reply::Refused);
    REQUIRE(!reply.Lines.empty());
    std::size_t bytes = 0;
    for (const std::string& line : reply.Lines) {
        REQUIRE(line.find('\n') == std::string::npos);
        REQUIRE(line.empty() || line.back() != '\r');
        REQUIRE(line.size() <= Ftp::ReplyParser::MaxLineBytes);
        bytes += line.size() + 1;
    }
    REQUIRE(reply.Lines.size() <= Ftp::ReplyParser::MaxReplyLines);
    REQUIRE(bytes <= Ftp::ReplyParser::MaxReplyBytes);
    REQUIRE(reply.Text().size() + 1 == bytes);
}

bool Same(const Parsed& one, const Parsed& other)
{
    const auto same = [](const Ftp::Reply& a, const Ftp::Reply& b) { return a.Code == b.Code && a.Lines == b.Lines; };
    return one.Failed == other.Failed && (one.Failed || one.Empty == other.Empty) &&
           std::equal(one.Replies.begin(), one.Replies.end(), other.Replies.begin(), other.Replies.end(), same);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input input(data, size);
    const unsigned seed = input.Byte();
    const std::string_view bytes = input.All();
    const Parsed whole = Parse(bytes, bytes.size() + 1, 0);
    std::for_each(whole.Replies.begin(), whole.Replies.end(), Check);
    REQUIRE(Same(whole, Parse(bytes, 1, 1)));
    REQUIRE(Same(whole, Parse(bytes, 1 + seed % 16, seed)));
    return 0;
}
