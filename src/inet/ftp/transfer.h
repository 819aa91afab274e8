#pragma once

#include "inet/ftp/control_connection.h"
#include "inet/ftp/data_ends.h"
#include "inet/ftp/inbound_wire.h"
#include "inet/ftp/progress.h"
#include "inet/ftp/tls_session.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

namespace Ftp {

/// What the transfers of one session share.
struct TransferMeans {
    Network& Net;
    Intent& Why;
    Clock& Time;
    Milliseconds Limit;
    const ProgressMeter::Listener& Tell;
    TlsSession* Safe;                      ///< protects the data connection
    std::shared_ptr<InboundWire> Inbound;  ///< where the server is to make the data connection: that one
    Milliseconds InboundLimit;             ///< for making it
};

/// One transfer: the data connection and the replies that go with it (RFC 959, 3.2 and 5.4). It succeeds only when
/// the data has ended and the server has confirmed, in whichever order; a refusal ends it at once.
/// The command must have been sent already. Transfer thread only.
class Transfer {
public:
    /// `expected`: the bytes to come or to go, where that is known.
    Transfer(TransferMeans means, ControlConnection& control, std::shared_ptr<Wire> data,
             std::optional<std::uint64_t> expected = {});
    ~Transfer();
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    /// Receives into the sink, opened when the server has agreed; it is left to the caller to keep what arrived.
    /// Returns the final reply, good or bad; a bad one that came instead of a transfer means that nothing arrived.
    Task<Reply> Receive(Sink& sink);

    /// Sends the file. The same for the final reply. `eager`: the data need not wait for the server's agreement.
    Task<Reply> Send(SourceFile& file, const std::filesystem::path& path, bool eager);

    std::uint64_t Bytes() const { return Meter.Done(); }

    /// What was received ended in a way that anybody could have brought about: it is whole only where its size is
    /// known and right.
    bool WasCut() const { return !Data->EndedProperly(); }

    /// What was sent may not have been read: its connection was lost before the server confirmed. It is stored only
    /// where its size is known and right.
    bool WasSentInVain() const { return After && After->Lost; }

    /// The first preliminary reply, which may announce the size; Code 0 when there was none.
    const Reply& Opening() const { return First; }

private:
    /// What becomes of a connection on which everything is sent; lives as long as the one who watches it.
    struct Aftermath {
        bool Over = false;  ///< nobody wants to know any more
        bool Lost = false;
    };

    static Task<> WatchAftermath(std::shared_ptr<Wire> data, std::shared_ptr<Aftermath> after);
    Task<> WaitForConsent();
    Task<> WaitForArrival();
    Task<> Linger();
    void EndLingerSoon();
    Task<> Drain(Sink& sink);
    Task<> DrainByPump(Sink& sink);
    Task<> DrainByBuffer(Sink& sink);
    Task<> Pour(SourceFile& file, const std::filesystem::path& path);
    Task<> PourByPump(SourceFile& file, const std::filesystem::path& path);
    Task<> PourByBuffer(SourceFile& file, const std::filesystem::path& path);
    Task<Reply> Finish(Task<> moving);
    Task<Reply> HearEnd();
    Task<> HearOne();
    void Note(const Reply& reply);
    void NoteEnd();

    TransferMeans Use;
    ControlConnection& Control;
    std::shared_ptr<Wire> Data;
    Reply First;
    Reply Final;                               ///< Code 0 until it has come
    bool Heard = false;                        ///< the final one has been taken off the control connection
    bool Refused = false;                      ///< the server has ended the transfer otherwise than well
    bool Begun = false;                        ///< data has begun to come
    bool Arriving = false;                     ///< the server has yet to make the data connection
    bool Lingering = false;                    ///< everything is sent, the server's end is still to come
    std::unique_ptr<Clock::Alarm> LingerEnds;  ///< for a server that never ends what it has confirmed
    std::shared_ptr<Aftermath> After;          ///< of what was sent
    Guard* Watch = nullptr;                    ///< of the data that is waited for now
    ProgressMeter Meter;
};

}  // namespace Ftp
