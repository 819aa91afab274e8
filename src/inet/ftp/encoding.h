#pragma once

#include <string_view>

namespace Ftp {

/// No byte above 0x7F: the text is the same in every encoding that matters here.
[[nodiscard]] bool IsAscii(std::string_view text);

/// Well-formed UTF-8 (RFC 3629): no overlong form, no surrogate, nothing beyond U+10FFFF.
[[nodiscard]] bool IsUtf8(std::string_view text);

}  // namespace Ftp
