#pragma once

#include <string>

namespace Ftp {

/// The text with the secret made unreadable, also where it stands as an address would escape it ("%40"). One of a few
/// letters counts only where it stands as a word of its own: anything else would spoil every text that happens to hold
/// them.
[[nodiscard]] std::string Without(const std::string& secret, const std::string& text);

}  // namespace Ftp
