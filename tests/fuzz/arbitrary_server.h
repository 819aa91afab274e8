#pragma once

#include "input.h"
#include "support/memory_network.h"

#include <memory>
#include <string>
#include <vector>

/// A server that does whatever the input says, one step each time the client has nothing left to do. Each step is a
/// letter, for some followed by a text up to the next LF:
///
///     s text   a line on the control connection      p   the answer in the book to the last command
///     S text   the text as it is                     l   the control connection comes byte by byte, or no more so
///     D text   a line on the data connection         e   the data connection ends        b   it is reset
///     d text   the text as it is                     c   the control connection ends     r   it is reset
///     w        it reads only 10 bytes of the data    u   it reads what the client has sent
///     f        the next connection is refused        q   the next connection is never answered
///
/// Other letters are left to the caller.
class ArbitraryServer final : public MemoryServer {
public:
    Answer Accept(std::shared_ptr<MemoryLink> link) override;
    std::vector<asio::ip::address> Find(const std::string& host, bool& silent) override;

    /// False when the letter is none of the above; nothing of the input is taken then.
    bool Step(char letter, Input& input);

    /// Looks at what the client has sent since the last time, and stops the fuzzer where it may not be sent.
    void CheckCommands();

    bool EverythingIsClosed() const;

private:
    using Link = std::shared_ptr<MemoryLink>;

    static void Send(const Link& link, std::string_view bytes);
    static void End(const Link& link);
    static void Reset(const Link& link);
    std::string AnswerInTheBook() const;

    std::vector<Link> Links;
    Link Control;
    Link Data;
    Answer Next = Answer::Accepted;
    std::string LastCommand;
    std::string Unfinished;  ///< the beginning of a command
    std::size_t Seen = 0;    ///< of what came on the control connection
};
