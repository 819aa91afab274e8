#include "inet/ftp/encoding.h"
#include "inet/ftp/session.h"

#include <algorithm>
#include <string_view>

namespace Ftp {

namespace {

constexpr int ServiceClosing = 421;  // RFC 959, 4.2.2

/// Whether one line of an answer to FEAT (RFC 2389, 3.2) begins with the word; some servers repeat the code there.
bool Offers(const Reply& features, std::string_view word)
{
    const auto begins = [word](std::string_view line) {
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        const auto same = [](char upper, char given) {
            return upper == (given >= 'a' && given <= 'z' ? static_cast<char>(given - 'a' + 'A') : given);
        };
        return line.size() >= word.size() && std::equal(word.begin(), word.end(), line.begin(), same) &&
               (line.size() == word.size() || line[word.size()] == ' ');
    };
    return features.KindOf() == Reply::Done && std::any_of(features.Lines.begin(), features.Lines.end(), begins);
}

}  // namespace

// Some servers translate names until they are asked for UTF-8 (RFC 2640 leaves it to them to begin with it). It is only
// a matter once a name is not plain, so nobody else pays for the question; it is asked once in a connection. Returns
// whether the server has agreed just now.
Task<bool> Session::SpeakUtf8()
{
    if (Can.Utf8Asked) co_return false;
    Can.Utf8Asked = true;
    const Reply features = co_await Control->Say("FEAT");
    if (features.Code == ServiceClosing) throw RefusalOf(features);
    if (!Offers(features, "UTF8")) co_return false;
    const Reply answer = co_await Control->Say("OPTS UTF8 ON");
    if (answer.Code == ServiceClosing) throw RefusalOf(answer);
    co_return answer.KindOf() == Reply::Done;
}

// A name with other bytes came from this server, which speaks something else.
Task<> Session::SpeakUtf8For(std::string name)
{
    const bool matters = !IsAscii(name) && IsUtf8(name);
    if (matters) (void)co_await SpeakUtf8();
}

// A listing in another encoding is asked for again once the server has agreed: its names are those that go back.
Task<std::string> Session::ListInUtf8(std::string command)
{
    std::string listing = co_await List(command);
    if (IsUtf8(listing)) co_return listing;
    Reply end = Control->Last();
    const bool agreed = co_await SpeakUtf8();
    if (agreed) co_return co_await List(std::move(command));
    Decided = std::move(end);
    co_return listing;
}

}  // namespace Ftp
