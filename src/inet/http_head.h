#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What stands before the bytes in an answer by HTTP/1 (RFC 9112).
struct HttpHead {
    int Status = 0;
    std::string Reason;                                       ///< the words behind the status
    std::vector<std::pair<std::string, std::string>> Fields;  ///< in order, the names in lower case

    std::vector<std::string> All(std::string_view name) const;

    /// Of several fields of a name the first; empty when there is none.
    std::string First(std::string_view name) const;

    bool Has(std::string_view name) const { return !All(name).empty(); }
};

/// How one knows where the bytes behind a head end.
struct HttpExtent {
    enum Kinds {
        Counted,  ///< after Length bytes
        Chunked,  ///< they tell it themselves (RFC 9112, 7.1)
        Open,     ///< with the connection
    };

    Kinds Kind = Open;
    std::uint64_t Length = 0;
    bool IsAnnounced = false;  ///< the server has said the length
};

/// The head in a text that ends with the empty line behind it. Throws Ftp::Failure of the kind Protocol when it is
/// none.
[[nodiscard]] HttpHead ParseHttpHead(std::string_view text);

/// The same for what the head says of the bytes behind it.
[[nodiscard]] HttpExtent ExtentOf(const HttpHead& head);

/// The size at the front of a chunk's first line; throws the same when there is none.
[[nodiscard]] std::uint64_t ChunkSizeIn(std::string_view line);

/// Whether a text may be the beginning of such an answer, as far as it goes.
[[nodiscard]] bool MayBeHttp(std::string_view begin);
