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
#include <vector>

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

    /// Sends one command line. Replies that came unasked before it are told and dropped. Throws Failure of the kind
    /// Request, before anything is sent, when the line holds a control character.
    Task<> Send(std::string line);

    /// Sends command lines in one go that Say, Expect and Send are about to be called with, in this order. They then
    /// find their line on its way already, so the lines cost one round trip between them. A line that was not foretold
    /// waits until the replies to the lines foretold in its place have come, and they are dropped. Lines that are
    /// ahead already stay ahead of these.
    Task<> SendAhead(std::vector<std::string> lines);

    /// The same without waiting; whether the lines go out is learned from their replies. Nothing else is under way.
    void SendAheadInPassing(const std::vector<std::string>& lines);

    /// The lines that were sent ahead and not asked for yet are the first of these, or these.
    bool AreFirstAhead(const std::vector<std::string>& lines) const;

    /// How many lines were sent ahead and not asked for yet.
    std::size_t CountAhead() const { return Ahead.size(); }

    /// Lines were sent ahead, and are not all answered or given up.
    bool IsAhead() const { return Owed > 0; }

    /// The same, and the first of them was answered: that the others were not may be the fault of sending ahead.
    bool MayBlameAhead() const { return Owed > 0 && Answered > 0; }

    /// As many of them were answered.
    std::size_t AnsweredAhead() const { return Answered; }

    /// The reply just heard was one that nobody asked for: the one that was asked for is the next.
    Task<Reply> HearInstead();

    /// Waits for what is owed to lines sent ahead that nobody will ask for.
    Task<> GiveUpAhead();

    /// The server has once answered otherwise than one reply to each command: nothing should be sent ahead to it.
    bool IsOdd() const { return Odd; }

    /// The next reply, preliminary ones (1xx) included.
    Task<Reply> Hear();

    /// The next reply that is not preliminary.
    Task<Reply> HearFinal();

    /// Sends a command and returns its final reply, good or bad.
    Task<Reply> Say(std::string line);

    /// The same, but any other than a good one (2xx) is thrown as Failure of the kind Refused.
    Task<Reply> Expect(std::string line);

    /// Something has come that nobody asked for, be it part of a line.
    bool HasUnasked() const;

    /// `reply` is called for each reply as it comes, those that have come already and were not heard included; `end`
    /// when no more can come.
    void SetListeners(std::function<void(const Reply&)> reply, std::function<void()> end);
    void RemoveListeners();

    /// Called when a command line has been handed to the system; nothing when empty.
    void SetSendListener(std::function<void()> listener) { Sent = std::move(listener); }

    /// Called for each reply that came unasked and is dropped; nothing when empty.
    void SetUnaskedListener(std::function<void(const Reply&)> listener) { Unasked = std::move(listener); }

    void SetLimit(Milliseconds limit) { Limit = limit; }

    /// How long the next reply is waited for.
    Milliseconds Patience() const;

    /// False once the server has closed the connection, or has said 421.
    bool IsAlive() const;

    Endpoint Peer() const;

    /// This side's address, as Wire::Local.
    asio::ip::address Local() const;

    /// The reply that came last; Code 0 when none has.
    const Reply& Last() const;

    /// How many replies have come so far.
    std::size_t Heard() const;

    /// Closes the connection at once.
    void Close();

private:
    struct Shared;
    static Task<> ReadOn(std::shared_ptr<Shared> shared);
    static Task<> WriteInPassing(std::shared_ptr<Shared> shared, std::string bytes);
    bool MakeReadyForAhead(const std::vector<std::string>& lines);
    void NoteAhead(std::vector<std::string> lines);
    Task<> Begin(std::string line);
    void DropUnasked();
    Task<> Write(std::string bytes);
    [[noreturn]] void ThrowWhyEnded() const;

    std::shared_ptr<Shared> Line;
    asio::any_io_executor Executor;
    Intent& Why;
    Clock& Time;
    Milliseconds Limit;
    std::function<void()> Sent;
    std::function<void(const Reply&)> Unasked;

    std::deque<std::string> Ahead;  ///< lines sent ahead that were not asked for yet
    std::size_t Owed = 0;           ///< those of them whose replies were not heard yet
    std::size_t Answered = 0;       ///< those whose replies were
    bool Odd = false;
};

/// Whether a text can be part of a command: one with a byte below 0x20 or with 0x7F would become another command.
bool IsSendable(const std::string& text);

/// Throws Failure of the kind Request when it cannot. Send looks at every line; this is for those who would otherwise
/// find out in the middle of something.
void RequireSendable(const std::string& text);

/// The failure that a refusing reply stands for.
Failure RefusalOf(const Reply& reply);

}  // namespace Ftp
