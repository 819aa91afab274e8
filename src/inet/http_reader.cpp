#include "inet/http_reader.h"

#include <boost/beast/core/string.hpp>
#include <boost/beast/http/basic_parser.hpp>
#include <boost/beast/http/error.hpp>
#include <cstring>
#include <limits>
#include <string>
#include <utility>

namespace {

namespace http = boost::beast::http;
using Error = boost::beast::error_code;
using Text = boost::beast::string_view;

constexpr std::size_t BufferSize = std::size_t{256} * 1024;  // and the longest head
constexpr std::size_t LongestLine = std::size_t{16} * 1024;  // between the chunks
constexpr int MostAnnouncements = 20;
constexpr int SwitchingProtocols = 101;

Ftp::Failure NotUnderstood()
{
    return {Ftp::Failure::Protocol, Ftp::ResponseError, "The server's answer was not understood."};
}

Ftp::Failure TooLarge()
{
    return {Ftp::Failure::Protocol, Ftp::ResponseError, "The header of the server's answer is too large."};
}

/// Chunks are what the parser takes apart; every other way to wrap the bytes was not asked for.
void RequireKnownForm(const HttpHead& head)
{
    const std::vector<std::string> codings = head.All("Transfer-Encoding");
    for (const std::string& coding : codings)
        if (!boost::beast::iequals(coding, "chunked") && !boost::beast::iequals(coding, "identity"))
            throw Ftp::Failure{Ftp::Failure::Protocol, Ftp::ResponseError,
                               "The server sends the file in a form that is not understood."};
}

}  // namespace

/// Collects the head, and the piece of the file that was parsed last.
class HttpReader::Parser final : public http::basic_parser<false> {
public:
    Parser()
    {
        header_limit(BufferSize);
        body_limit(std::numeric_limits<std::uint64_t>::max());
    }

    HttpHead Head;
    std::string_view Piece;  ///< in the buffer that was parsed

private:
    std::size_t Note(Text bytes)
    {
        Piece = {bytes.data(), bytes.size()};
        return bytes.size();
    }

    void on_request_impl(http::verb, Text, Text, int, Error&) override {}

    void on_response_impl(int status, Text reason, int, Error&) override
    {
        Head.Status = status;
        Head.Reason.assign(reason.data(), reason.size());
    }

    void on_field_impl(http::field, Text name, Text value, Error&) override
    {
        Head.Fields.emplace_back(std::string(name.data(), name.size()), std::string(value.data(), value.size()));
    }

    void on_header_impl(Error&) override {}

    void on_body_init_impl(const boost::optional<std::uint64_t>&, Error&) override {}

    std::size_t on_body_impl(Text bytes, Error&) override { return Note(bytes); }

    void on_chunk_header_impl(std::uint64_t, Text, Error&) override {}

    std::size_t on_chunk_body_impl(std::uint64_t, Text bytes, Error&) override { return Note(bytes); }

    void on_finish_impl(Error&) override {}
};

HttpReader::HttpReader(std::shared_ptr<Ftp::Wire> wire) : Source(std::move(wire)), Buffer(BufferSize) {}

HttpReader::~HttpReader() = default;

Ftp::Task<HttpHead> HttpReader::ReadHead()
{
    co_await ReadOneHead();
    for (int announced = 0; Message->Head.Status < 200; ++announced) {
        if (Message->Head.Status == SwitchingProtocols || announced == MostAnnouncements) throw NotUnderstood();
        co_await ReadOneHead();
    }
    RequireKnownForm(Message->Head);
    co_return Message->Head;
}

Ftp::Task<> HttpReader::ReadOneHead()
{
    Message = std::make_unique<Parser>();
    Heading = 0;
    while (!Message->is_header_done()) {
        if (Parse()) continue;
        const bool more = co_await Fill();
        if (!more)
            throw Ftp::Failure{Ftp::Failure::Connection, Ftp::AbortedError,
                               Heard ? "The connection with the server was lost."
                                     : "The server closed the connection without an answer."};
    }
}

std::optional<std::uint64_t> HttpReader::Length() const
{
    const boost::optional<std::uint64_t> length = Message->content_length();
    return length ? std::optional<std::uint64_t>(*length) : std::nullopt;
}

/// Takes apart what has come; false when that is not enough to go on with.
bool HttpReader::Parse()
{
    Error error;
    Message->Piece = {};
    if (Begin == End) return false;
    const bool inHead = !Message->is_header_done();
    const std::size_t used = Message->put({Buffer.data() + Begin, End - Begin}, error);
    Begin += used;
    if (error == http::error::header_limit) throw TooLarge();
    if (error && error != http::error::need_more) throw NotUnderstood();
    if (inHead) Heading += used;
    if (error && inHead && Heading + End - Begin >= BufferSize) throw TooLarge();
    if (error && !inHead) CheckLine();
    return !error || used > 0;
}

/// What has come of the line behind a chunk, or of the lines behind the last one, is not too long.
void HttpReader::CheckLine() const
{
    const std::string_view line(Buffer.data() + Begin, End - Begin);
    if (line.size() == Buffer.size()) throw TooLarge();
    if (line.size() > LongestLine && line.find('\n', 2) == std::string_view::npos) throw NotUnderstood();
}

/// More bytes behind those that are there, of which there must be less than a buffer; false at the end of the stream.
Ftp::Task<bool> HttpReader::Fill()
{
    if (Begin > 0) std::memmove(Buffer.data(), Buffer.data() + Begin, End - Begin);
    End -= std::exchange(Begin, 0);
    const std::size_t count = co_await Source->Read(Buffer.data() + End, Buffer.size() - End);
    End += count;
    Heard = Heard || count > 0;
    co_return count > 0;
}

Ftp::Task<std::string_view> HttpReader::ReadPiece()
{
    while (!Message->is_done()) {
        const bool parsed = Parse();
        if (!Message->Piece.empty()) {
            Taken += Message->Piece.size();
            co_return Message->Piece;
        }
        if (parsed) continue;
        const bool more = co_await Fill();
        if (more) continue;
        if (!Message->need_eof() || !Source->EndedProperly()) throw CutShort();
        break;
    }
    co_return std::string_view();
}

Ftp::Failure HttpReader::CutShort() const
{
    const std::optional<std::uint64_t> length = Length();
    const std::string all = length ? " of " + std::to_string(*length) : std::string();
    return {Ftp::Failure::Connection, Ftp::AbortedError,
            "The file arrived incomplete: " + std::to_string(Taken) + all + " bytes."};
}
