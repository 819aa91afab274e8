#pragma once

#include <QString>
#include <filesystem>
#include <string>
#include <string_view>

/// Names that came from a server, as files of this computer. Any thread.

/// Whether a file can have the name on Windows and is that file and no other: no name of a device (NUL, COM1.txt), no
/// dot or blank at the end, which would be dropped, no stream of another file, and no character that is refused there.
/// Needs no Windows: the rule is text.
[[nodiscard]] bool IsWindowsFileName(std::string_view name);

/// The rule of the system that the program runs on, beyond what no system allows.
[[nodiscard]] bool IsFileNameHere(std::string_view name);

/// What Windows takes at any length for a path: one that is too long for the usual form gets the prefix "\\?\", and
/// backslashes. Relative ones stay as they are.
[[nodiscard]] QString LongForm(const QString& path);

/// The usual form of a path.
[[nodiscard]] QString ShortForm(const QString& path);

/// A file in a folder, named by bytes; an absolute name is the path itself.
[[nodiscard]] std::filesystem::path LocalPath(const std::filesystem::path& folder, std::string_view name);

/// The bytes by which a path would be named.
[[nodiscard]] std::string PathBytes(const std::filesystem::path& path);
