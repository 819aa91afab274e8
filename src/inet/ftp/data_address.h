#pragma once

#include "inet/ftp/reply.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Ftp {

/// What the texts of single replies tell. Each reads the form alone and leaves the code to the caller.

/// The port of a 227 (RFC 959 4.1.2, RFC 1123 4.1.2.6): six numbers 0..255 joined by commas in the last line, blanks
/// allowed, any text around. The address in it is the server's invention and not handed out. Never 0.
[[nodiscard]] std::optional<int> PassivePort(const Reply& reply);

/// The port of a 229 (RFC 2428 3), in the last line: parentheses around three delimiters, the port and a delimiter.
/// Whatever stands in the address fields is ignored. Never 0.
[[nodiscard]] std::optional<int> ExtendedPort(const Reply& reply);

/// The folder in a 257 (RFC 959 Appendix II): the first quoted string, doubled quotes undone; where a quote was clearly
/// not doubled, everything up to the last one in front of a blank or the end. Nothing when there is none, when it is
/// not closed, or when it is empty.
[[nodiscard]] std::optional<std::string> QuotedPath(const Reply& reply);

/// The first "(n bytes)" of a 150. A hint from the server, never more.
[[nodiscard]] std::optional<std::uint64_t> AnnouncedSize(const Reply& reply);

/// The figure of a 213 to SIZE (RFC 3659 4): the first digits of the last line. Nothing when it is negative or does
/// not fit.
[[nodiscard]] std::optional<std::uint64_t> SizeFigure(const Reply& reply);

}  // namespace Ftp
