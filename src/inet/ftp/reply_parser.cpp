#include "inet/ftp/reply_parser.h"

#include <utility>

namespace Ftp {
namespace {

constexpr std::size_t CodeLength = 3;

/// The code a line begins with, when what follows it is one of the given marks or the line's end; else 0.
int CodeAt(std::string_view line, std::string_view marks)
{
    if (line.size() < CodeLength || line[0] < '1' || line[0] > '5') return 0;
    int code = 0;
    for (const char c : line.substr(0, CodeLength)) {
        if (c < '0' || c > '9') return 0;
        code = code * 10 + (c - '0');
    }
    if (line.size() > CodeLength && marks.find(line[CodeLength]) == std::string_view::npos) return 0;
    return code;
}

std::string TextBehindCode(std::string_view line)
{
    return std::string(line.substr(line.size() > CodeLength ? CodeLength + 1 : CodeLength));
}

}  // namespace

void ReplyParser::Feed(std::string_view bytes)
{
    while (!HasFailed && !bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        const std::string_view piece = bytes.substr(0, end);
        if (Line.size() + piece.size() > MaxLineBytes) {
            HasFailed = true;
            return;
        }
        if (end == std::string_view::npos) {
            Line.append(piece);
            return;
        }
        bytes.remove_prefix(end + 1);
        if (Line.empty()) {
            TakeLine(piece);
        } else {
            Line.append(piece);
            TakeLine(Line);
            Line.clear();
        }
    }
}

std::optional<Reply> ReplyParser::Next()
{
    if (Ready.empty()) return std::nullopt;
    Reply reply = std::move(Ready.front());
    Ready.pop_front();
    return reply;
}

void ReplyParser::TakeLine(std::string_view line)
{
    BytesSoFar += line.size() + 1;
    LinesSoFar += 1;
    if (BytesSoFar > MaxReplyBytes || LinesSoFar > MaxReplyLines) {
        HasFailed = true;
        return;
    }
    while (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (!IsOpen) {
        Begin(line);
        return;
    }
    if (CodeAt(line, " ") == Current.Code) {
        Current.Lines.push_back(TextBehindCode(line));
        Finish();
    } else if (CodeAt(line, "-") == Current.Code) {
        Current.Lines.push_back(TextBehindCode(line));
    } else {
        Current.Lines.emplace_back(line);
    }
}

void ReplyParser::Begin(std::string_view line)
{
    const int code = CodeAt(line, " -");
    if (code == 0) return;
    Current.Code = code;
    Current.Lines.push_back(TextBehindCode(line));
    if (line.size() > CodeLength && line[CodeLength] == '-') {
        IsOpen = true;
    } else {
        Finish();
    }
}

void ReplyParser::Finish()
{
    Ready.push_back(std::exchange(Current, Reply()));
    IsOpen = false;
    BytesSoFar = 0;
    LinesSoFar = 0;
}

}  // namespace Ftp
