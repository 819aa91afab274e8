#pragma once

#include "inet/ftp/failure.h"
#include "inet/ftp/task.h"
#include "inet/ftp/wire.h"
#include "inet/http_head.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

/// Reads one answer by HTTP/1 from a wire: the head, then the file behind it piece by piece. However much a server
/// sends, no more of it is in memory than one buffer. Waits throw Ftp::Failure; how long is the caller's business.
/// Transfer thread only.
class HttpReader {
public:
    explicit HttpReader(std::shared_ptr<Ftp::Wire> wire);
    ~HttpReader();

    /// The head that counts; those that only announce it (1xx) are read over.
    Ftp::Task<HttpHead> ReadHead();

    /// The length of the file, where the head has told it; after ReadHead.
    std::optional<std::uint64_t> Length() const;

    /// The next bytes of the file, which are gone with the next call; none at its end. A file that is cut off before
    /// that is a Failure.
    Ftp::Task<std::string_view> ReadPiece();

    /// Something of an answer has come.
    bool HasHeard() const { return Heard; }

private:
    class Parser;

    Ftp::Task<> ReadOneHead();
    Ftp::Task<bool> Fill();
    bool Parse();
    void CheckLine() const;
    Ftp::Failure CutShort() const;

    std::shared_ptr<Ftp::Wire> Source;
    std::unique_ptr<Parser> Message;
    std::vector<char> Buffer;
    std::size_t Begin = 0;
    std::size_t End = 0;
    std::size_t Heading = 0;  ///< bytes of the head so far
    std::uint64_t Taken = 0;  ///< of the file
    bool Heard = false;
};
