#pragma once

#include "inet/ftp/failure.h"
#include "inet/ftp/tls_certificate.h"
#include "inet/ftp/tls_context.h"
#include "inet/ftp/waker.h"
#include "inet/ftp/wire.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

struct bio_st;
struct ssl_st;

namespace Ftp {

/// A wire that carries TLS (RFC 8446, RFC 5246) over another wire, whatever that is. Until BeginTls it passes bytes
/// through as they are; what it reads after BeginTls is taken for TLS, a read that was under way included. So nothing
/// that came in the clear is ever given out as if it had come protected.
class TlsWire final : public Wire, public std::enable_shared_from_this<TlsWire> {
public:
    TlsWire(std::shared_ptr<Wire> inner, const asio::any_io_executor& executor, std::shared_ptr<TlsContext> context);
    ~TlsWire() override;

    /// What comes from now on is TLS, with the host of this name or number. Once. Throws Failure.
    void BeginTls(const std::string& host);

    /// The same for a data connection: it resumes the newest session, and the server must show this certificate when
    /// it does not. Begins the handshake by itself.
    void BeginTlsForData(const std::string& host, const std::string& fingerprint);

    /// Returns once the handshake is done; every other wait begins with this one by itself.
    Task<> Handshake();

    /// What the server has shown, with what the check found; after the handshake only.
    Certificate Peer(const std::string& host) const;

    /// TLS 1.2 or 1.3 session of before was resumed; after the handshake only.
    bool IsResumed() const;

    Task<> Connect(Endpoint endpoint) override;
    Task<std::size_t> Read(char* buffer, std::size_t size) override;
    Task<> Write(std::string bytes) override;
    Task<> WriteFrom(const char* bytes, std::size_t size) override;
    Task<> SendEnd() override;
    Task<> AwaitEnd() override;
    Task<> WaitReadable() override;
    Task<> WaitWritable() override;
    void Abort() override;

    Endpoint Peer() const override { return Inner->Peer(); }

    asio::ip::address Local() const override { return Inner->Local(); }

    int NativeSocket() const override { return -1; }

    bool EndedProperly() const override { return !IsCut; }

private:
    struct Pipe;

    Task<> Fill();
    Task<> Flush(bool wait);
    Task<std::size_t> ReadPlain(char* buffer, std::size_t size);
    Task<> SayGoodbye();
    void Prepare(const std::string& host);
    void CheckDataPeer();
    void Break(Failure failure);
    void BreakByLibrary();
    void ThrowIfBroken() const;

    std::shared_ptr<Wire> Inner;
    asio::any_io_executor Where;
    std::shared_ptr<TlsContext> Context;
    Waker Changed;
    ssl_st* Tls = nullptr;
    std::unique_ptr<Pipe> Bytes;  ///< between the library and the inner wire
    std::optional<Failure> Broken;
    std::string WantedFingerprint;  ///< of a data connection's peer
    std::vector<int> Errors;        ///< of the certificate
    bool IsDone = false;            ///< the handshake
    bool Filling = false;           ///< somebody reads from the inner wire
    bool Flushing = false;          ///< somebody writes to it
    bool InnerEnded = false;
    bool IsCut = false;
};

}  // namespace Ftp
