#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The name in one line of a full folder listing, byte for byte; nothing when there is any doubt.
///
/// Understands the long form of Unix systems (with or without a group, access marks behind the permissions, devices,
/// month or ISO dates), the form of DOS and of its followers, and easily parsed LIST format ("+facts,\tname").
/// A symbolic link is cut at its " -> ", and in doubt when it holds several. Blanks in front of a name belong to it,
/// beyond the one that parts the columns. "." and ".." are names too. A CR at the end is dropped. Any thread.
[[nodiscard]] std::optional<std::string> NameInListingLine(std::string_view line);
