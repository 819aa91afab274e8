#include "inet/ftp/transfer.h"

#include "inet/ftp/failure.h"
#include "platform/pump.h"

#include <array>
#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/post.hpp>
#include <optional>
#include <system_error>
#include <vector>

namespace Ftp {

namespace {

constexpr std::size_t BufferSize = std::size_t{256} * 1024;
constexpr Milliseconds LingerLimit = std::chrono::seconds(2);

/// Lets the other tasks of the thread have their turn.
Task<> Breathe(asio::any_io_executor executor)
{
    co_await asio::post(executor, asio::use_awaitable);
}

struct FirstByte {
    bool Came = false;
    bool Watched = true;  ///< somebody still wants to know
};

/// Nudges the control connection when the first data is there.
Task<> WatchForData(std::shared_ptr<Wire> data, std::shared_ptr<FirstByte> first, ControlConnection* control)
{
    try {
        co_await data->WaitReadable();
    } catch (const Failure&) {
        // The one who reads the data will meet the same failure.
    }
    first->Came = true;
    if (first->Watched) control->Nudge();
}

[[noreturn]] void ThrowLost(const PumpResult& moved)
{
    throw Failure{Failure::Connection, ResetError,
                  "The data connection was lost (" + std::generic_category().message(moved.Error) + ")."};
}

}  // namespace

Transfer::Transfer(TransferMeans means, ControlConnection& control, std::shared_ptr<Wire> data)
    : Use(means), Control(control), Data(means.Safe->WrapData(std::move(data)))
{
    Control.SetReplyListener([this](const Reply& reply) { Note(reply); });
}

Transfer::~Transfer()
{
    Control.SetReplyListener({});
    Data->Abort();
}

// Called as replies come, so that a refusal in the middle ends the wait for data.
void Transfer::Note(const Reply& reply)
{
    if (reply.KindOf() == Reply::Preliminary) {
        if (First.Code == 0) First = reply;
        return;
    }
    if (Final.Code != 0) return;
    Final = reply;
    Refused = reply.KindOf() >= Reply::TryLater;
    if (Refused) Data->Abort();
    if (Lingering) EndLingerSoon();
}

// The server agrees with a preliminary reply, or by sending, or by an early final one. Returns whether it has.
Task<bool> Transfer::WaitForStart(bool receiving)
{
    const auto first = std::make_shared<FirstByte>();
    if (receiving) asio::co_spawn(Use.Net.Executor(), WatchForData(Data, first, &Control), asio::detached);

    struct Unwatch {
        FirstByte& First;

        ~Unwatch() { First.Watched = false; }
    } const unwatch{*first};

    while (First.Code == 0 && Final.Code == 0 && !first->Came) {
        co_await Control.WaitForReplyOrNudge();
        if (Control.HasReply()) (void)co_await Control.Hear();
    }
    co_return !Refused;
}

Task<Reply> Transfer::Receive(Sink& sink)
{
    const bool started = co_await WaitForStart(true);
    if (!started) co_return Final;
    sink.Open();
    Task<> moving = Drain(sink);
    co_return co_await Finish(std::move(moving));
}

Task<Reply> Transfer::Send(ReadFile& file, const std::filesystem::path& path)
{
    const bool started = co_await WaitForStart(false);
    if (!started) co_return Final;
    Task<> moving = Pour(file, path);
    co_return co_await Finish(std::move(moving));
}

// A server may close the data connection first and say why afterwards: its reply decides. A good reply to lost data
// is no success.
Task<Reply> Transfer::Finish(Task<> moving)
{
    std::optional<Failure> lost;
    try {
        co_await std::move(moving);
    } catch (const Failure& failure) {
        if (failure.Kind != Failure::Connection || Use.Why.IsInterrupted()) throw Failure(failure);
        lost = failure;
    }
    Data->Abort();
    Reply end = co_await HearEnd();
    if (lost && end.KindOf() == Reply::Done) throw Failure(*lost);
    co_return end;
}

Task<Reply> Transfer::HearEnd()
{
    while (Final.Code == 0) (void)co_await Control.Hear();
    co_return Final;
}

Task<> Transfer::Drain(Sink& sink)
{
    if (sink.Descriptor() >= 0 && Data->NativeSocket() >= 0)
        co_await DrainByPump(sink);
    else
        co_await DrainByBuffer(sink);
}

Task<> Transfer::DrainByPump(Sink& sink)
{
    Guard guard(Use.Why, Use.Time, *Data, Use.Limit);
    SocketToFile pump(Data->NativeSocket(), sink.Descriptor());
    for (;;) {
        const PumpResult moved = pump.Move();
        Count += moved.Bytes;
        if (moved.Bytes > 0) guard.Progress();
        switch (moved.End) {
        case PumpEnd::Moved:
            co_await Breathe(Use.Net.Executor());
            if (Data->NativeSocket() < 0) ThrowLost(moved);
            break;
        case PumpEnd::WouldBlock:
            co_await Data->WaitReadable();
            break;
        case PumpEnd::End:
            co_return;
        case PumpEnd::SourceError:
            ThrowLost(moved);
        case PumpEnd::TargetError:
            throw LocalFailure("", moved.Error);
        }
    }
}

Task<> Transfer::DrainByBuffer(Sink& sink)
{
    Guard guard(Use.Why, Use.Time, *Data, Use.Limit);
    std::vector<char> buffer(BufferSize);
    for (;;) {
        const std::size_t count = co_await Data->Read(buffer.data(), buffer.size());
        if (count == 0) co_return;
        guard.Progress();
        Count += count;
        sink.Write(buffer.data(), count);
    }
}

Task<> Transfer::Pour(ReadFile& file, const std::filesystem::path& path)
{
    if (Data->NativeSocket() >= 0)
        co_await PourByPump(file, path);
    else
        co_await PourByBuffer(file, path);
    co_await Linger();
}

// Everything is sent; the end must arrive, too. From then on a lost connection changes nothing: the reply decides.
Task<> Transfer::Linger()
{
    const Guard guard(Use.Why, Use.Time, *Data, Use.Limit);
    co_await Data->SendEnd();
    Lingering = true;
    if (Final.Code != 0) EndLingerSoon();
    try {
        co_await Data->AwaitEnd();
    } catch (const Failure&) {
        if (Use.Why.IsInterrupted()) throw;
    }
    Lingering = false;
}

void Transfer::EndLingerSoon()
{
    LingerEnds = Use.Time.After(LingerLimit, [this] { Data->Abort(); });
}

Task<> Transfer::PourByPump(ReadFile& file, const std::filesystem::path& path)
{
    Guard guard(Use.Why, Use.Time, *Data, Use.Limit);
    FileToSocket pump(file.Descriptor(), Data->NativeSocket());
    for (;;) {
        const PumpResult moved = pump.Move();
        Count += moved.Bytes;
        if (moved.Bytes > 0) guard.Progress();
        switch (moved.End) {
        case PumpEnd::Moved:
            co_await Breathe(Use.Net.Executor());
            if (Data->NativeSocket() < 0) ThrowLost(moved);
            break;
        case PumpEnd::WouldBlock:
            co_await Data->WaitWritable();
            break;
        case PumpEnd::End:
            co_return;
        case PumpEnd::SourceError:
            throw LocalFailure(path, moved.Error);
        case PumpEnd::TargetError:
            ThrowLost(moved);
        }
    }
}

Task<> Transfer::PourByBuffer(ReadFile& file, const std::filesystem::path& path)
{
    Guard guard(Use.Why, Use.Time, *Data, Use.Limit);
    std::vector<char> buffer(BufferSize);
    for (;;) {
        std::size_t count = 0;
        try {
            count = file.Read(buffer.data(), buffer.size());
        } catch (const std::system_error& error) {
            throw LocalFailure(path, error.code().value());
        }
        if (count == 0) co_return;
        co_await Data->WriteFrom(buffer.data(), count);
        guard.Progress();
        Count += count;
    }
}

}  // namespace Ftp
