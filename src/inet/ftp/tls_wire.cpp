#include "inet/ftp/tls_wire.h"

#include <algorithm>
#include <array>
#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <cstring>
#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

namespace Ftp {

namespace {

constexpr std::size_t ControlBuffer = std::size_t{17} * 1024;
constexpr std::size_t DataBuffer = std::size_t{64} * 1024;  // stays in the processor's cache

using HeldCertificate = std::unique_ptr<X509, decltype(&X509_free)>;

Failure Lost(std::string text)
{
    return {Failure::Connection, SecureChannelError, std::move(text)};
}

bool IsNumber(const std::string& host)
{
    asio::error_code error;
    asio::ip::make_address(host, error);
    return !error;
}

/// The name as certificates and servers know it: without a dot at its end, a number without its zone.
std::string PlainHost(std::string host)
{
    if (const std::size_t zone = host.find('%'); zone != std::string::npos) host.resize(zone);
    if (host.size() > 1 && host.back() == '.') host.pop_back();
    return host;
}

}  // namespace

/// What the library has read and written through its one "source and sink". Reading past the end of what is there
/// means "later": the end of the stream is our own business.
struct TlsWire::Pipe {
    explicit Pipe(std::size_t capacity) : In(capacity) {}

    static BIO_METHOD* Method();

    static int Read(BIO* bio, char* buffer, std::size_t size, std::size_t* count)
    {
        auto& own = *static_cast<Pipe*>(BIO_get_data(bio));
        BIO_clear_retry_flags(bio);
        *count = std::min(size, own.InEnd - own.InBegin);
        if (*count == 0) {
            BIO_set_retry_read(bio);
            return 0;
        }
        std::memcpy(buffer, own.In.data() + own.InBegin, *count);
        own.InBegin += *count;
        return 1;
    }

    static int Write(BIO* bio, const char* bytes, std::size_t size, std::size_t* count)
    {
        static_cast<Pipe*>(BIO_get_data(bio))->Out.append(bytes, size);
        *count = size;
        return 1;
    }

    static long Control(BIO*, int what, long, void*) { return what == BIO_CTRL_FLUSH ? 1 : 0; }

    bool HasInput() const { return InBegin < InEnd; }

    std::vector<char> In;
    std::size_t InBegin = 0;
    std::size_t InEnd = 0;
    std::string Out;
    std::string OnItsWay;  ///< what is being written; the two take turns and keep their memory
};

BIO_METHOD* TlsWire::Pipe::Method()
{
    static BIO_METHOD* const method = [] {
        BIO_METHOD* made = BIO_meth_new(BIO_get_new_index() | BIO_TYPE_SOURCE_SINK, "wire");
        BIO_meth_set_read_ex(made, &Read);
        BIO_meth_set_write_ex(made, &Write);
        BIO_meth_set_ctrl(made, &Control);
        return made;
    }();
    return method;
}

TlsWire::TlsWire(std::shared_ptr<Wire> inner, const asio::any_io_executor& executor,
                 std::shared_ptr<TlsContext> context)
    : Inner(std::move(inner)), Where(executor), Context(std::move(context)), Changed(executor)
{
}

TlsWire::~TlsWire()
{
    SSL_free(Tls);
}

void TlsWire::BeginTls(const std::string& host)
{
    Bytes = std::make_unique<Pipe>(ControlBuffer);
    Prepare(PlainHost(host));
}

void TlsWire::BeginTlsForData(const std::string& host, const std::string& fingerprint)
{
    Bytes = std::make_unique<Pipe>(DataBuffer);
    WantedFingerprint = fingerprint;
    Prepare(PlainHost(host));
    const TlsTicket ticket = Context->Take();
    if (ticket) SSL_set_session(Tls, ticket.get());
    const auto shake = [](std::shared_ptr<TlsWire> self) -> Task<> {
        try {
            co_await self->Handshake();
        } catch (const Failure&) {
            // Whoever uses the connection meets the same failure.
        }
    };
    asio::co_spawn(Where, shake(shared_from_this()), asio::detached);
}

void TlsWire::Prepare(const std::string& host)
{
    ERR_clear_error();
    Tls = SSL_new(Context->Get());
    BIO* pipe = Tls == nullptr ? nullptr : BIO_new(Pipe::Method());
    if (pipe == nullptr) throw Lost("The secure connection could not be prepared.");
    BIO_set_data(pipe, Bytes.get());
    BIO_set_init(pipe, 1);
    SSL_set_bio(Tls, pipe, pipe);
    SSL_set_connect_state(Tls);
    SSL_set_app_data(Tls, this);

    // The check only gathers its objections; what to make of them is decided after the handshake.
    SSL_set_verify(Tls, SSL_VERIFY_PEER, [](int good, X509_STORE_CTX* check) {
        const void* connection = X509_STORE_CTX_get_ex_data(check, SSL_get_ex_data_X509_STORE_CTX_idx());
        auto* self = static_cast<TlsWire*>(SSL_get_app_data(static_cast<const SSL*>(connection)));
        if (good != 1) self->Errors.push_back(X509_STORE_CTX_get_error(check));
        return 1;
    });
    if (IsNumber(host)) {
        X509_VERIFY_PARAM_set1_ip_asc(SSL_get0_param(Tls), host.c_str());
    } else {
        SSL_set_hostflags(Tls, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
        SSL_set1_host(Tls, host.c_str());
        SSL_set_tlsext_host_name(Tls, host.c_str());
    }
}

Task<> TlsWire::Connect(Endpoint endpoint)
{
    co_await Inner->Connect(endpoint);
}

Task<> TlsWire::Handshake()
{
    while (!IsDone) {
        ThrowIfBroken();
        ERR_clear_error();
        const int result = SSL_do_handshake(Tls);
        if (result == 1) {
            IsDone = true;
            CheckDataPeer();
        } else if (SSL_get_error(Tls, result) != SSL_ERROR_WANT_READ) {
            BreakByLibrary();
        }
        co_await Flush(false);
        if (IsDone || Broken) {
            Changed.Wake();
            break;
        }
        if (InnerEnded) Break(Lost("The server closed the connection before it was secure."));
        ThrowIfBroken();
        co_await Fill();
    }
    ThrowIfBroken();
}

// A resumed session was checked when it began; without one the server must be the same as on the control connection.
void TlsWire::CheckDataPeer()
{
    if (WantedFingerprint.empty() || IsResumed()) return;
    if (Peer({}).Fingerprint == WantedFingerprint) return;
    Break({Failure::Protocol, SecureChannelError,
           "The data connection shows another certificate than the server itself."});
}

Certificate TlsWire::Peer(const std::string& host) const
{
    const HeldCertificate shown(SSL_get1_peer_certificate(Tls), &X509_free);
    if (!shown) {
        Certificate none;
        none.Errors.push_back(X509_V_ERR_UNSPECIFIED);
        return none;
    }
    Certificate facts = FactsOf(shown.get());
    facts.Host = host;
    facts.Port = Inner->Peer().port();
    facts.Errors = Errors;
    return facts;
}

bool TlsWire::IsResumed() const
{
    return SSL_session_reused(Tls) == 1;
}

// One reads for all: the others look again when something has come.
Task<> TlsWire::Fill()
{
    if (Filling) {
        co_await Changed.Wait();
        ThrowIfBroken();
        co_return;
    }
    Filling = true;
    std::optional<Failure> lost;
    try {
        Bytes->InBegin = 0;
        Bytes->InEnd = 0;
        Bytes->InEnd = co_await Inner->Read(Bytes->In.data(), Bytes->In.size());
        InnerEnded = Bytes->InEnd == 0;
    } catch (const Failure& failure) {
        lost = failure;
    }
    Filling = false;
    if (lost) Break(*lost);
    Changed.Wake();
    ThrowIfBroken();
}

// Writes what the library wants to have written. One writes for all; who must know that it is written waits.
Task<> TlsWire::Flush(bool wait)
{
    while (wait && Flushing && !Broken) co_await Changed.Wait();
    if (Flushing || Broken || Bytes->Out.empty()) co_return;
    Flushing = true;
    std::optional<Failure> lost;
    try {
        while (!Bytes->Out.empty()) {
            Bytes->OnItsWay.clear();
            std::swap(Bytes->Out, Bytes->OnItsWay);
            co_await Inner->WriteFrom(Bytes->OnItsWay.data(), Bytes->OnItsWay.size());
        }
    } catch (const Failure& failure) {
        lost = failure;
    }
    Flushing = false;
    if (lost) Break(*lost);
    Changed.Wake();
}

Task<std::size_t> TlsWire::ReadPlain(char* buffer, std::size_t size)
{
    Filling = true;
    std::size_t count = 0;
    std::optional<Failure> lost;
    try {
        count = co_await Inner->Read(buffer, size);
    } catch (const Failure& failure) {
        lost = failure;
    }
    Filling = false;
    if (lost) Break(*lost);
    ThrowIfBroken();
    if (Tls == nullptr) co_return count;
    // TLS has begun meanwhile, and this belongs to it.
    Bytes->In.assign(buffer, buffer + count);
    Bytes->In.resize(std::max(count, ControlBuffer));
    Bytes->InEnd = count;
    InnerEnded = count == 0;
    Changed.Wake();
    co_return 0;
}

Task<std::size_t> TlsWire::Read(char* buffer, std::size_t size)
{
    if (Tls == nullptr) {
        const std::size_t count = co_await ReadPlain(buffer, size);
        if (Tls == nullptr) co_return count;
    }
    co_await Handshake();
    for (;;) {
        ThrowIfBroken();
        ERR_clear_error();
        std::size_t total = 0;
        std::size_t count = 0;
        int result = 1;
        while (total < size && (result = SSL_read_ex(Tls, buffer + total, size - total, &count)) == 1) total += count;
        if (total > 0) co_return total;
        const int why = SSL_get_error(Tls, result);
        if (why == SSL_ERROR_ZERO_RETURN) {
            co_await SayGoodbye();
            co_return 0;
        }
        if (why != SSL_ERROR_WANT_READ) BreakByLibrary();
        co_await Flush(false);
        ThrowIfBroken();
        if (InnerEnded && !Bytes->HasInput()) {
            IsCut = true;
            co_return 0;
        }
        co_await Fill();
    }
}

// A server that waits for our close of the secure connection gets it; nobody cares when it does not arrive.
Task<> TlsWire::SayGoodbye()
{
    if ((SSL_get_shutdown(Tls) & SSL_SENT_SHUTDOWN) != 0) co_return;
    (void)SSL_shutdown(Tls);
    co_await Flush(false);
}

Task<> TlsWire::Write(std::string bytes)
{
    co_await WriteFrom(bytes.data(), bytes.size());
}

Task<> TlsWire::WriteFrom(const char* bytes, std::size_t size)
{
    if (Tls == nullptr) {
        co_await Inner->WriteFrom(bytes, size);
        co_return;
    }
    co_await Handshake();
    for (std::size_t at = 0; at < size;) {
        ERR_clear_error();
        std::size_t count = 0;
        const std::size_t piece = std::min(size - at, DataBuffer);
        if (SSL_write_ex(Tls, bytes + at, piece, &count) != 1) BreakByLibrary();
        co_await Flush(true);
        ThrowIfBroken();
        at += count;
    }
}

// First the close of the secure connection, then that of the stream below, in this direction alone: what the server
// still has under way (session tickets above all) must not meet a closed socket, whose answer would take back what
// was sent.
Task<> TlsWire::SendEnd()
{
    if (Tls != nullptr) {
        co_await Handshake();
        (void)SSL_shutdown(Tls);
        co_await Flush(true);
        ThrowIfBroken();
    }
    co_await Inner->SendEnd();
}

Task<> TlsWire::AwaitEnd()
{
    if (Tls == nullptr) co_return;
    std::array<char, 4096> ignored;
    for (std::size_t count = 1; count > 0;) count = co_await Read(ignored.data(), ignored.size());
    while (!InnerEnded) co_await Fill();
}

Task<> TlsWire::WaitReadable()
{
    if (Tls == nullptr) {
        co_await Inner->WaitReadable();
        co_return;
    }
    co_await Handshake();
    for (;;) {
        ThrowIfBroken();
        ERR_clear_error();
        char first = 0;
        std::size_t count = 0;
        const int result = SSL_peek_ex(Tls, &first, 1, &count);
        const int why = SSL_get_error(Tls, result);
        if (result == 1 || why == SSL_ERROR_ZERO_RETURN) co_return;
        if (why != SSL_ERROR_WANT_READ) BreakByLibrary();
        ThrowIfBroken();
        if (InnerEnded && !Bytes->HasInput()) co_return;
        co_await Fill();
    }
}

Task<> TlsWire::WaitWritable()
{
    if (Tls != nullptr) co_await Handshake();
    co_await Inner->WaitWritable();
}

void TlsWire::Abort()
{
    Break(Lost("The connection was given up."));
    Inner->Abort();
}

void TlsWire::Break(Failure failure)
{
    if (!Broken) Broken = std::move(failure);
    Changed.Wake();
}

void TlsWire::BreakByLibrary()
{
    const char* reason = ERR_reason_error_string(ERR_peek_last_error());
    Break(
        Lost(std::string("The secure connection failed (") + (reason == nullptr ? "no reason given" : reason) + ")."));
}

void TlsWire::ThrowIfBroken() const
{
    if (Broken) throw Failure(*Broken);
}

}  // namespace Ftp
