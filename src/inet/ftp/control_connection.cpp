#include "inet/ftp/control_connection.h"

#include <algorithm>
#include <array>
#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <iterator>
#include <utility>

namespace Ftp {

namespace {

constexpr int AccountWanted = 332;   // RFC 959, 4.2.2
constexpr int ServiceClosing = 421;  // the same: may come as the answer to anything

bool IsControlCharacter(char byte)
{
    return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F;
}

std::string Joined(const std::vector<std::string>& lines)
{
    std::string bytes;
    for (const std::string& line : lines) bytes += line + "\r\n";
    return bytes;
}

}  // namespace

/// What the reading task works on; it lives until that task has ended.
struct ControlConnection::Shared {
    explicit Shared(std::shared_ptr<Wire> wire, const asio::any_io_executor& executor)
        : Stream(std::move(wire)), Changed(executor)
    {
    }

    std::shared_ptr<Wire> Stream;
    Waker Changed;
    ReplyParser Parser;
    std::deque<Reply> Replies;
    Reply Last;
    std::size_t Heard = 0;
    std::function<void(const Reply&)> Listener;
    std::function<void()> EndListener;
    std::optional<Failure> Ended;  ///< why nothing more will come
    bool SaidGoodbye = false;      ///< 421
};

ControlConnection::ControlConnection(std::shared_ptr<Wire> wire, Network& network, Intent& intent, Clock& clock,
                                     Milliseconds limit)
    : Line(std::make_shared<Shared>(std::move(wire), network.Executor())), Executor(network.Executor()), Why(intent),
      Time(clock), Limit(limit)
{
    asio::co_spawn(Executor, ReadOn(Line), asio::detached);
}

ControlConnection::~ControlConnection()
{
    Close();
}

Task<> ControlConnection::ReadOn(std::shared_ptr<Shared> shared)
{
    std::array<char, 16384> buffer;
    try {
        while (!shared->Ended) {
            const std::size_t count = co_await shared->Stream->Read(buffer.data(), buffer.size());
            if (count == 0) throw Failure{Failure::Connection, AbortedError, "The server closed the connection."};
            shared->Parser.Feed({buffer.data(), count});
            while (auto reply = shared->Parser.Next()) {
                shared->SaidGoodbye = shared->SaidGoodbye || reply->Code == ServiceClosing;
                ++shared->Heard;
                if (shared->Listener) shared->Listener(*reply);
                shared->Last = *reply;
                shared->Replies.push_back(std::move(*reply));
            }
            if (shared->Parser.Failed())
                throw Failure{Failure::Protocol, ResponseError, "The server's answer is too long to be one."};
            shared->Changed.Wake();
        }
    } catch (const Failure& failure) {
        if (!shared->Ended) shared->Ended = failure;
    }
    shared->Stream->Abort();
    shared->Changed.Wake();
    if (shared->EndListener) shared->EndListener();
}

Task<> ControlConnection::Send(std::string line)
{
    co_await Begin(std::move(line));
    Owed = Ahead.size();
}

Task<> ControlConnection::Begin(std::string line)
{
    RequireSendable(line);
    if (!Ahead.empty() && Ahead.front() != line) co_await GiveUpAhead();
    if (!Ahead.empty()) {
        Ahead.pop_front();
        if (Sent) Sent();
        co_return;
    }
    if (!IsAlive()) ThrowWhyEnded();
    DropUnasked();
    Answered = 0;
    line += "\r\n";
    co_await Write(std::move(line));
    if (Sent) Sent();
}

Task<> ControlConnection::SendAhead(std::vector<std::string> lines)
{
    const bool isReady = MakeReadyForAhead(lines);
    if (!isReady) co_return;
    std::string bytes = Joined(lines);
    co_await Write(std::move(bytes));
    NoteAhead(std::move(lines));
}

void ControlConnection::SendAheadInPassing(const std::vector<std::string>& lines)
{
    if (!IsAlive() || !MakeReadyForAhead(lines)) return;
    asio::co_spawn(Executor, WriteInPassing(Line, Joined(lines)), asio::detached);
    NoteAhead(lines);
}

// What goes wrong here the reading task learns as well.
Task<> ControlConnection::WriteInPassing(std::shared_ptr<Shared> shared, std::string bytes)
{
    try {
        co_await shared->Stream->Write(std::move(bytes));
    } catch (const Failure&) {
    }
}

bool ControlConnection::MakeReadyForAhead(const std::vector<std::string>& lines)
{
    if (!std::all_of(lines.begin(), lines.end(), IsSendable)) return false;
    if (!IsAlive()) ThrowWhyEnded();
    if (Ahead.empty()) DropUnasked();
    return !Odd;
}

void ControlConnection::NoteAhead(std::vector<std::string> lines)
{
    std::move(lines.begin(), lines.end(), std::back_inserter(Ahead));
    Owed = Ahead.size();
    Answered = 0;
}

bool ControlConnection::AreFirstAhead(const std::vector<std::string>& lines) const
{
    return Ahead.size() <= lines.size() && std::equal(Ahead.begin(), Ahead.end(), lines.begin());
}

Task<Reply> ControlConnection::HearInstead()
{
    Odd = true;
    co_return co_await HearFinal();
}

void ControlConnection::DropUnasked()
{
    for (const Reply& reply : std::exchange(Line->Replies, {})) {
        Odd = true;
        if (Unasked) Unasked(reply);
    }
}

Task<> ControlConnection::GiveUpAhead()
{
    Odd = Odd || Answered > 0;
    while (!Ahead.empty()) {
        (void)co_await HearFinal();
        Ahead.pop_front();
    }
    Owed = 0;
}

Task<> ControlConnection::Write(std::string bytes)
{
    const Guard guard(Why, Time, *Line->Stream, Limit);
    co_await Line->Stream->Write(std::move(bytes));
}

// A server that has answered one of the lines sent together, and has the others, answers them as well before long; one
// that has thrown them away must not cost the whole limit.
Milliseconds ControlConnection::Patience() const
{
    return MayBlameAhead() ? Limit / 4 : Limit;
}

Task<Reply> ControlConnection::Hear()
{
    const Guard guard(Why, Time, *Line->Stream, Patience());
    while (Line->Replies.empty()) {
        if (Line->Ended) ThrowWhyEnded();
        co_await Line->Changed.Wait();
    }
    Reply reply = std::move(Line->Replies.front());
    Line->Replies.pop_front();
    co_return reply;
}

Task<Reply> ControlConnection::HearFinal()
{
    for (;;) {
        Reply reply = co_await Hear();
        if (reply.KindOf() != Reply::Preliminary) co_return reply;
    }
}

Task<Reply> ControlConnection::Say(std::string line)
{
    const bool ahead = !Ahead.empty();
    co_await Begin(std::move(line));
    Reply reply = co_await HearFinal();
    if (ahead && Owed > 0) {
        --Owed;
        ++Answered;
    }
    co_return reply;
}

Task<Reply> ControlConnection::Expect(std::string line)
{
    Reply reply = co_await Say(std::move(line));
    if (reply.KindOf() != Reply::Done) throw RefusalOf(reply);
    co_return reply;
}

void ControlConnection::SetListeners(std::function<void(const Reply&)> reply, std::function<void()> end)
{
    for (const Reply& one : Line->Replies) reply(one);
    Line->Listener = std::move(reply);
    Line->EndListener = std::move(end);
    if (Line->Ended) Line->EndListener();
}

bool ControlConnection::HasUnasked() const
{
    return !Line->Replies.empty() || !Line->Parser.Untouched();
}

void ControlConnection::RemoveListeners()
{
    Line->Listener = {};
    Line->EndListener = {};
}

bool ControlConnection::IsAlive() const
{
    return !Line->Ended && !Line->SaidGoodbye;
}

Endpoint ControlConnection::Peer() const
{
    return Line->Stream->Peer();
}

asio::ip::address ControlConnection::Local() const
{
    return Line->Stream->Local();
}

const Reply& ControlConnection::Last() const
{
    return Line->Last;
}

std::size_t ControlConnection::Heard() const
{
    return Line->Heard;
}

void ControlConnection::Close()
{
    RemoveListeners();
    if (!Line->Ended) Line->Ended = Failure{Failure::Connection, AbortedError, "The connection was closed."};
    Line->Stream->Abort();
    Line->Changed.Wake();
}

void ControlConnection::ThrowWhyEnded() const
{
    if (Line->Ended) throw Failure(*Line->Ended);
    throw Failure{Failure::Connection, AbortedError, "The server closed the connection."};
}

bool IsSendable(const std::string& text)
{
    return std::none_of(text.begin(), text.end(), IsControlCharacter);
}

void RequireSendable(const std::string& text)
{
    if (IsSendable(text)) return;
    throw Failure{Failure::Request, OperationError, "A name with control characters cannot be sent."};
}

Failure RefusalOf(const Reply& reply)
{
    std::string text = reply.Text();
    if (reply.Code == AccountWanted) text = "The server wants an account name, which Tolvane cannot give: " + text;
    if (text.find_first_not_of(" \n") == std::string::npos) text = "The server gives no reason.";
    return {Failure::Refused, reply.Code, std::move(text)};
}

}  // namespace Ftp
