#pragma once

#include "inet/ftp/guard.h"
#include "inet/ftp/reply.h"
#include "inet/ftp/reply_parser.h"
#include "inet/ftp/waker.h"
#include "inet/ftp/wire.h"

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Ftp {

/// The control connection of one session (RFC 959, 2.3): commands go out, replies come in.
///
/// A task of its own reads all the time, so a server that closes an idle connection, or refuses in the middle of a
/// transfer, is noticed at once. Each wait for a reply is bounded by the limit, counted from the command or from the
/// reply before. Transfer thread only.
class ControlConnection final {
public:
    /// `wire` is connected. The objects referred to outlive the connection; call Close before they go.
    ControlConnection(std::shared_ptr<Wire> wire, Network& network, Intent& intent, Clock& clock, Milliseconds limit);
    ~ControlConnection();

    /// Sends one command line. Replies that came unasked before it are dropped. Throws Failure of the kind Request,
    /// before anything is sent, when the line holds a control character.
    Task<> Send(std::string line);

    /// The next reply, preliminary ones (1xx) included.
    Task<Reply> Hear();

    /// The next reply that is not preliminary.
    Task<Reply> HearFinal();

    /// Sends a command and returns its final reply, good or bad.
    Task<Reply> Say(std::string line);

    /// The same, but a bad reply (4xx or 5xx) is thrown as Failure of the kind Refused.
    Task<Reply> Expect(std::string line);

    /// A reply of the command now running has come, whether somebody waits for it or not.
    bool HasReply() const;

    /// Something has come that nobody asked for, be it part of a line.
    bool HasUnasked() const;

    /// Waits until HasReply, or until Nudge is called. Throws like Hear.
    Task<> WaitForReplyOrNudge();
    void Nudge();

    /// Called for each reply as it comes; nothing when empty.
    void SetReplyListener(std::function<void(const Reply&)> listener);

    /// Called when a command line has been handed to the system; nothing when empty.
    void SetSendListener(std::function<void()> listener) { Sent = std::move(listener); }

    void SetLimit(Milliseconds limit) { Limit = limit; }

    /// False once the server has closed the connection, or has said 421.
    bool IsAlive() const;

    Endpoint Peer() const;

    /// The reply that came last; Code 0 when none has.
    const Reply& Last() const;

    /// Closes the connection at once.
    void Close();

private:
    struct Shared;
    static Task<> ReadOn(std::shared_ptr<Shared> shared);
    [[noreturn]] void ThrowWhyEnded() const;

    std::shared_ptr<Shared> Line;
    Intent& Why;
    Clock& Time;
    Milliseconds Limit;
    std::function<void()> Sent;
    bool Nudged = false;
};

/// Whether a text can be part of a command: one with a byte below 0x20 or with 0x7F would become another command.
bool IsSendable(const std::string& text);

/// Throws Failure of the kind Request when it cannot. Send looks at every line; this is for those who would otherwise
/// find out in the middle of something.
void RequireSendable(const std::string& text);

/// The failure that a refusing reply stands for.
Failure RefusalOf(const Reply& reply);

}  // namespace Ftp
