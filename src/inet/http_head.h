#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What stands before the bytes in an answer by HTTP/1 (RFC 9112).
struct HttpHead {
    int Status = 0;
    std::string Reason;                                       ///< the words behind the status
    std::vector<std::pair<std::string, std::string>> Fields;  ///< names and values, in order

    /// The values of a name, in whatever letters it is written.
    std::vector<std::string> All(std::string_view name) const;

    /// Of several fields of a name the first; empty when there is none.
    std::string First(std::string_view name) const;
};
