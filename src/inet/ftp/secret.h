#pragma once

#include <string>

namespace Ftp {

/// The text with the secret made unreadable. One of a few letters counts only where it stands as a word of its own:
/// anything else would spoil every text that happens to hold them.
std::string Without(const std::string& secret, std::string text);

}  // namespace Ftp
