#include "inet/ftp/transfer.h"

#include "inet/ftp/failure.h"
#include "platform/error_text.h"
#include "platform/pump.h"

#include <algorithm>
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
// Of a slow reader each piece counts as progress, so none may take longer than the time-out on any line.
constexpr std::size_t PieceSize = std::size_t{32} * 1024;

/// Lets the other tasks of the thread have their turn.
Task<> Breathe(asio::any_io_executor executor)
{
    co_await asio::post(executor, asio::use_awaitable);
}

/// Lets the replies that come count as progress of a wait for data.
class Watching {
public:
    Watching(Guard*& place, Guard& guard) : Place(place) { Place = &guard; }

    ~Watching() { Place = nullptr; }

    Watching(const Watching&) = delete;
    Watching& operator=(const Watching&) = delete;

private:
    Guard*& Place;
};

[[noreturn]] void ThrowLost(const PumpResult& moved)
{
    throw Failure{Failure::Connection, ResetError,
                  "The data connection was lost (" + SystemErrorText(moved.Error) + ")."};
}

}  // namespace

Transfer::Transfer(TransferMeans means, ControlConnection& control, std::shared_ptr<Wire> data,
                   std::optional<std::uint64_t> expected)
    : Use(means), Control(control), Data(means.Safe->WrapData(std::move(data))), Meter(means.Time, means.Tell, expected)
{
    Control.SetListeners([this](const Reply& reply) { Note(reply); }, [this] { NoteEnd(); });
}

Transfer::~Transfer()
{
    Control.RemoveListeners();
    Data->Abort();
}

// Called as replies come, so that a refusal in the middle ends the wait for data.
void Transfer::Note(const Reply& reply)
{
    if (Watch != nullptr) Watch->Progress();
    if (reply.KindOf() == Reply::Preliminary) {
        if (First.Code == 0) First = reply;
        return;
    }
    if (Final.Code != 0) return;
    Final = reply;
    Refused = reply.KindOf() != Reply::Done;
    if (Refused) Data->Abort();
    if (Lingering || Arriving) EndLingerSoon();
}

// Without a word from the server and without a byte of data there is nothing to wait for any more.
void Transfer::NoteEnd()
{
    if (Arriving || (!Begun && First.Code == 0 && Final.Code == 0)) Data->Abort();
}

// The server agrees with a preliminary reply, or by an early final one.
Task<> Transfer::WaitForConsent()
{
    while (First.Code == 0 && Final.Code == 0) co_await HearOne();
}

// It agrees as well by sending, so there is no need to wait for its word before the data.
Task<Reply> Transfer::Receive(Sink& sink)
{
    if (Refused) co_return co_await HearEnd();
    Task<> moving = Drain(sink);
    co_return co_await Finish(std::move(moving));
}

Task<Reply> Transfer::Send(SourceFile& file, const std::filesystem::path& path, bool eager)
{
    // By connecting it agrees as well.
    if (!eager && !Use.Inbound) co_await WaitForConsent();
    if (Refused) co_return co_await HearEnd();
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
    if (!After) Data->Abort();
    Reply end = co_await HearEnd();
    if (After) After->Over = true;
    Data->Abort();
    if (lost && end.KindOf() == Reply::Done) throw Failure(*lost);
    co_return end;
}

Task<Reply> Transfer::HearEnd()
{
    while (!Heard) co_await HearOne();
    co_return Final;
}

// What is owed is taken off the control connection, so that only what was never asked for is left there.
Task<> Transfer::HearOne()
{
    const Reply reply = co_await Control.Hear();
    if (reply.KindOf() != Reply::Preliminary) Heard = true;
}

Task<> Transfer::WaitForArrival()
{
    if (!Use.Inbound || Refused) co_return;
    const Guard guard(Use.Why, Use.Time, *Data, Use.InboundLimit);
    Arriving = true;
    if (Final.Code != 0) EndLingerSoon();
    if (!Control.IsAlive()) Data->Abort();
    co_await Use.Inbound->Arrive();
    Arriving = false;
    LingerEnds.reset();
}

Task<> Transfer::Drain(Sink& sink)
{
    co_await WaitForArrival();
    {
        Guard guard(Use.Why, Use.Time, *Data, Use.Limit);
        const Watching watching(Watch, guard);
        co_await Data->WaitReadable();
    }
    if (Refused) co_return;
    Begun = true;
    sink.Open();
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
        Meter.Add(moved.Bytes);
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
        Meter.Add(count);
        sink.Write(buffer.data(), count);
    }
}

Task<> Transfer::Pour(SourceFile& file, const std::filesystem::path& path)
{
    co_await WaitForArrival();
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
    After = std::make_shared<Aftermath>();
    asio::co_spawn(Use.Net.Executor(), WatchAftermath(Data, After), asio::detached);
}

// A reset tells that the server has not read everything, though some servers confirm even so.
Task<> Transfer::WatchAftermath(std::shared_ptr<Wire> data, std::shared_ptr<Aftermath> after)
{
    std::array<char, 256> ignored;
    try {
        for (std::size_t count = 1; count > 0;) count = co_await data->Read(ignored.data(), ignored.size());
        data->Abort();
    } catch (const Failure& failure) {
        if (!after->Over && failure.Code == ResetError) after->Lost = true;
    }
}

void Transfer::EndLingerSoon()
{
    LingerEnds = Use.Time.After(LingerLimit, [this] { Data->Abort(); });
}

Task<> Transfer::PourByPump(SourceFile& file, const std::filesystem::path& path)
{
    Guard guard(Use.Why, Use.Time, *Data, Use.Limit);
    FileToSocket pump(file.Descriptor(), Data->NativeSocket());
    for (;;) {
        const PumpResult moved = pump.Move();
        Meter.Add(moved.Bytes);
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

Task<> Transfer::PourByBuffer(SourceFile& file, const std::filesystem::path& path)
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
        for (std::size_t at = 0; at < count; at += PieceSize) {
            const std::size_t piece = std::min(PieceSize, count - at);
            co_await Data->WriteFrom(buffer.data() + at, piece);
            guard.Progress();
            Meter.Add(piece);
        }
    }
}

}  // namespace Ftp
