#include "inet/http_reader.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

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

/// The bytes up to and with the empty line; 0 when it has not come. `from`: what is before it has been looked at.
std::size_t HeadSizeIn(std::string_view text, std::size_t from)
{
    for (std::size_t at = text.find('\n', from); at != std::string_view::npos; at = text.find('\n', at + 1)) {
        const std::string_view next = text.substr(at + 1, 2);
        if (next.starts_with('\n')) return at + 2;
        if (next == "\r\n") return at + 3;
    }
    return 0;
}

}  // namespace

HttpReader::HttpReader(std::shared_ptr<Ftp::Wire> wire)
    : Source(std::move(wire)), Buffer(std::make_unique_for_overwrite<char[]>(BufferSize))
{
}

Ftp::Task<HttpHead> HttpReader::ReadHead()
{
    HttpHead head = co_await ReadOneHead();
    for (int announced = 0; head.Status < 200; ++announced) {
        if (head.Status == SwitchingProtocols || announced == MostAnnouncements) throw NotUnderstood();
        head = co_await ReadOneHead();
    }
    Bounds = ExtentOf(head);
    Left = Bounds.Length;
    co_return head;
}

Ftp::Task<HttpHead> HttpReader::ReadOneHead()
{
    constexpr std::size_t LongestEnd = 3;
    std::size_t size = HeadSizeIn(Buffered(), 0);
    while (size == 0) {
        const std::size_t before = End - Begin;
        if (!MayBeHttp(Buffered())) throw NotUnderstood();
        if (before == BufferSize) throw TooLarge();
        const bool more = co_await Fill();
        if (!more)
            throw Ftp::Failure{Ftp::Failure::Connection, Ftp::AbortedError,
                               Heard ? "The connection with the server was lost."
                                     : "The server closed the connection without an answer."};
        size = HeadSizeIn(Buffered(), before > LongestEnd ? before - LongestEnd : 0);
    }
    HttpHead head = ParseHttpHead(Buffered().substr(0, size));
    Begin += size;
    co_return head;
}

/// More bytes behind those that are there, of which there must be less than a buffer; false at the end of the stream.
Ftp::Task<bool> HttpReader::Fill()
{
    if (Begin > 0) std::memmove(Buffer.get(), Buffer.get() + Begin, End - Begin);
    End -= std::exchange(Begin, 0);
    const std::size_t count = co_await Source->Read(Buffer.get() + End, BufferSize - End);
    End += count;
    Heard = Heard || count > 0;
    co_return count > 0;
}

Ftp::Task<std::string_view> HttpReader::ReadPiece()
{
    if (Bounds.Kind == HttpExtent::Chunked && Left == 0 && !LastChunk) co_await BeginChunk();
    const bool isOpen = Bounds.Kind == HttpExtent::Open;
    if (!isOpen && Left == 0) co_return std::string_view();
    if (Begin == End) {
        const bool more = co_await Fill();
        if (!more && (!isOpen || !Source->EndedProperly())) throw CutShort();
        if (!more) co_return std::string_view();
    }
    const std::string_view piece = Take(isOpen ? UINT64_MAX : Left);
    if (!isOpen) Left -= piece.size();
    Taken += piece.size();
    co_return piece;
}

std::string_view HttpReader::Take(std::uint64_t most)
{
    const std::string_view piece = Buffered().substr(0, static_cast<std::size_t>(std::min<std::uint64_t>(most, End)));
    Begin += piece.size();
    return piece;
}

// RFC 9112, 7.1: behind each chunk there is a line end, and before the next one its size.
Ftp::Task<> HttpReader::BeginChunk()
{
    if (std::exchange(InChunks, true)) {
        const std::string behind = co_await ReadLine();
        if (!behind.empty()) throw NotUnderstood();
    }
    const std::string line = co_await ReadLine();
    Left = ChunkSizeIn(line);
    if (Left > 0) co_return;
    LastChunk = true;
    co_await ReadTrailers();
}

// What they say is not needed, but the file is not whole without their end.
Ftp::Task<> HttpReader::ReadTrailers()
{
    std::size_t size = 0;
    std::string line = co_await ReadLine();
    while (!line.empty()) {
        size += line.size();
        if (size > BufferSize) throw TooLarge();
        line = co_await ReadLine();
    }
}

Ftp::Task<std::string> HttpReader::ReadLine()
{
    std::size_t end = Buffered().find('\n');
    while (end == std::string_view::npos) {
        if (End - Begin > LongestLine) throw NotUnderstood();
        const bool more = co_await Fill();
        if (!more) throw CutShort();
        end = Buffered().find('\n');
    }
    std::string line(Buffered().substr(0, end));
    Begin += end + 1;
    if (line.ends_with('\r')) line.pop_back();
    co_return line;
}

Ftp::Failure HttpReader::CutShort() const
{
    const std::string all = Bounds.IsAnnounced ? " of " + std::to_string(Bounds.Length) : std::string();
    return {Ftp::Failure::Connection, Ftp::AbortedError,
            "The file arrived incomplete: " + std::to_string(Taken) + all + " bytes."};
}
