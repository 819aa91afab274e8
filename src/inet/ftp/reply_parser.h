#pragma once

#include "inet/ftp/reply.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

namespace Ftp {

/// Cuts the bytes of a control connection into replies (RFC 959 4.2), however they are sliced.
///
/// A reply begins with three digits, the first 1 to 5, followed by a blank, a hyphen or the end of the line. A hyphen
/// opens a multi-line reply, which ends only at a line of the same code followed by a blank or the end of the line.
/// LF ends a line; CRs right before it are dropped. Lines outside a reply that do not fit are skipped.
/// The cost is linear in the bytes. One thread at a time.
class ReplyParser {
public:
    static constexpr std::size_t MaxLineBytes = std::size_t{64} * 1024;
    static constexpr std::size_t MaxReplyBytes = std::size_t{1024} * 1024;
    static constexpr std::size_t MaxReplyLines = 10'000;

    /// Takes the next bytes; does nothing once it has failed.
    void Feed(std::string_view bytes);

    /// The oldest complete reply not yet taken.
    [[nodiscard]] std::optional<Reply> Next();

    /// A limit was exceeded: the connection is of no more use. Replies that were complete before can still be taken.
    /// Skipped lines count with the reply they stand before.
    [[nodiscard]] bool Failed() const { return HasFailed; }

    /// No bytes of an unfinished line or reply and no reply waiting.
    [[nodiscard]] bool Empty() const { return Ready.empty() && Line.empty() && !IsOpen; }

    /// Nothing has come since the last reply that was taken, not even a line that was skipped.
    [[nodiscard]] bool Untouched() const { return Empty() && BytesSoFar == 0; }

private:
    void TakeLine(std::string_view line);
    void Begin(std::string_view line);
    void Finish();

    std::deque<Reply> Ready;
    std::string Line;
    Reply Current;
    bool IsOpen = false;
    bool HasFailed = false;
    std::size_t BytesSoFar = 0;
    std::size_t LinesSoFar = 0;
};

}  // namespace Ftp
