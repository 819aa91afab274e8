#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace Ftp {

/// LS: names only (NLST).
struct ListNames {};

/// DIR: full lines (LIST).
struct ListFull {};

struct ChangeFolder {
    std::string Name;
};

struct FolderUp {};

/// GET. Without a local name of its own Local is Remote; LocalGiven: there was one, and it differs from Remote.
struct Receive {
    std::string Remote;
    std::string Local;
    bool LocalGiven = false;
};

/// PUT. Without a remote name of its own Remote is Local.
struct Send {
    std::string Local;
    std::string Remote;
};

struct Delete {
    std::string Name;
};

struct Rename {
    std::string From;
    std::string To;
};

struct MakeFolder {
    std::string Name;
};

struct RemoveFolder {
    std::string Name;
};

struct Size {
    std::string Name;
};

struct WorkingFolder {};

/// CLOSE and QUIT.
struct Close {};

using Operation = std::variant<ListNames, ListFull, ChangeFolder, FolderUp, Receive, Send, Delete, Rename, MakeFolder,
                               RemoveFolder, Size, WorkingFolder, Close>;

/// The command that an operation text means; nothing when it is not understood or could mean two things.
///
/// Verbs DIR, LS, CD, CDUP, GET, PUT, DELETE, RENAME, MKDIR, RMDIR, SIZE, PWD, QUIT and CLOSE, in upper or lower case.
/// After "CD " everything is the name. Elsewhere a name may stand in double quotes, which are not escaped inside:
/// two equal halves (`GET "x" "x"`) are one name even when it holds quotes, otherwise there must be exactly one way
/// to read the text. Names are bytes, never empty, and may still hold bytes that must not go on the wire.
[[nodiscard]] std::optional<Operation> ParseOperation(std::string_view text);

/// The names that an operation sends to the server, in one text; empty when there is none.
[[nodiscard]] std::string NamesSent(const Operation& operation);

}  // namespace Ftp
