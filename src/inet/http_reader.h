#pragma once

#include "inet/ftp/failure.h"
#include "inet/ftp/task.h"
#include "inet/ftp/wire.h"
#include "inet/http_head.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

/// Reads one answer by HTTP/1 from a wire: the head, then the file behind it piece by piece. However much a server
/// sends, no more of it is in memory than one buffer. Waits throw Ftp::Failure; how long is the caller's business.
/// Transfer thread only.
class HttpReader {
public:
    explicit HttpReader(std::shared_ptr<Ftp::Wire> wire);

    /// The head that counts; those that only announce it (1xx) are read over.
    Ftp::Task<HttpHead> ReadHead();

    /// What the head has said of the bytes; after ReadHead.
    const HttpExtent& Extent() const { return Bounds; }

    /// The next bytes of the file, which are gone with the next call; none at its end. A file that is cut off before
    /// that is a Failure.
    Ftp::Task<std::string_view> ReadPiece();

    /// Something of an answer has come.
    bool HasHeard() const { return Heard; }

private:
    Ftp::Task<HttpHead> ReadOneHead();
    Ftp::Task<bool> Fill();
    Ftp::Task<std::string> ReadLine();
    Ftp::Task<> BeginChunk();
    Ftp::Task<> ReadTrailers();
    std::string_view Take(std::uint64_t most);
    Ftp::Failure CutShort() const;

    std::string_view Buffered() const { return {Buffer.get() + Begin, End - Begin}; }

    std::shared_ptr<Ftp::Wire> Source;
    std::unique_ptr<char[]> Buffer;
    std::size_t Begin = 0;
    std::size_t End = 0;
    HttpExtent Bounds;
    std::uint64_t Left = 0;   ///< of the file, or of the chunk that is being read
    std::uint64_t Taken = 0;  ///< of the file
    bool Heard = false;
    bool InChunks = false;  ///< the first chunk has begun
    bool LastChunk = false;
};
