#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Ftp {

/// One reply of the server (RFC 959 4.2), whole: all lines of a multi-line reply together. Bytes as they came.
struct Reply {
    /// What the first digit says; the rest of the code is detail (RFC 1123 4.1.2.11).
    enum Kind { Preliminary = 1, Done = 2, NeedMore = 3, TryLater = 4, Refused = 5 };

    /// 100..599; 0 in a reply that was never read.
    int Code = 0;
    /// The text only: no line ends, and no code where the line had one of this reply. Never empty in a reply read.
    std::vector<std::string> Lines;

    /// Only for a reply read.
    [[nodiscard]] Kind KindOf() const { return static_cast<Kind>(Code / 100); }

    /// The lines joined by LF.
    [[nodiscard]] std::string Text() const
    {
        std::string text;
        for (std::size_t i = 0; i < Lines.size(); ++i) {
            if (i > 0) text += '\n';
            text += Lines[i];
        }
        return text;
    }
};

}  // namespace Ftp
