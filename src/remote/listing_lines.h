#pragma once

#include <QString>
#include <optional>

/// Cuts the reply of a listing into its lines, front to back and one at a time, so that the caller may rest in
/// between. Each line costs its own length. Any thread.
class ListingLines {
public:
    explicit ListingLines(QString reply);

    /// The next line as it was sent, without its CR LF; nothing after the last one. Only CR LF ends a line: a lone CR
    /// or LF stays inside, and text behind the last CR LF belongs to no line.
    std::optional<QString> Next();

private:
    QString Reply;
    qsizetype At = 0;
};
