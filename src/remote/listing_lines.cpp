#include "remote/listing_lines.h"

#include <utility>

ListingLines::ListingLines(QString reply) : Reply(std::move(reply)) {}

std::optional<QString> ListingLines::Next()
{
    const qsizetype end = Reply.indexOf(u"\r\n", At);
    if (end < 0) return std::nullopt;
    const QString line = Reply.sliced(At, end - At);
    At = end + 2;
    return line;
}
