#include "inet/ftp/control_connection.h"

#include <algorithm>
#include <array>
#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>

namespace Ftp {

namespace {

constexpr int ServiceClosing = 421;  // RFC 959, 4.2.2: may come as the answer to anything

bool IsControlCharacter(char byte)
{
    return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F;
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
    std::function<void(const Reply&)> Listener;
    std::optional<Failure> Ended;  ///< why nothing more will come
    bool SaidGoodbye = false;      ///< 421
};

ControlConnection::ControlConnection(std::shared_ptr<Wire> wire, Network& network, Intent& intent, Clock& clock,
                                     Milliseconds limit)
    : Line(std::make_shared<Shared>(std::move(wire), network.Executor())), Why(intent), Time(clock), Limit(limit)
{
    asio::co_spawn(network.Executor(), ReadOn(Line), asio::detached);
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
}

Task<> ControlConnection::Send(std::string line)
{
    RequireSendable(line);
    if (!IsAlive()) ThrowWhyEnded();
    Line->Replies.clear();
    Nudged = false;
    line += "\r\n";
    const Guard guard(Why, Time, *Line->Stream, Limit);
    co_await Line->Stream->Write(std::move(line));
    if (Sent) Sent();
}

Task<Reply> ControlConnection::Hear()
{
    const Guard guard(Why, Time, *Line->Stream, Limit);
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
    co_await Send(std::move(line));
    co_return co_await HearFinal();
}

Task<Reply> ControlConnection::Expect(std::string line)
{
    Reply reply = co_await Say(std::move(line));
    if (reply.KindOf() >= Reply::TryLater) throw RefusalOf(reply);
    co_return reply;
}

bool ControlConnection::HasReply() const
{
    return !Line->Replies.empty();
}

bool ControlConnection::HasUnasked() const
{
    return !Line->Replies.empty() || !Line->Parser.Untouched();
}

Task<> ControlConnection::WaitForReplyOrNudge()
{
    const Guard guard(Why, Time, *Line->Stream, Limit);
    while (Line->Replies.empty() && !Nudged) {
        if (Line->Ended) ThrowWhyEnded();
        co_await Line->Changed.Wait();
    }
    Nudged = false;
}

void ControlConnection::Nudge()
{
    Nudged = true;
    Line->Changed.Wake();
}

void ControlConnection::SetReplyListener(std::function<void(const Reply&)> listener)
{
    Line->Listener = std::move(listener);
}

bool ControlConnection::IsAlive() const
{
    return !Line->Ended && !Line->SaidGoodbye;
}

Endpoint ControlConnection::Peer() const
{
    return Line->Stream->Peer();
}

const Reply& ControlConnection::Last() const
{
    return Line->Last;
}

void ControlConnection::Close()
{
    Line->Listener = {};
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
    return {Failure::Refused, reply.Code, reply.Text()};
}

}  // namespace Ftp
