#include "inet/ftp/tls_context.h"

#include "inet/ftp/failure.h"
#include "platform/trust_store.h"

#include <openssl/ssl.h>
#include <utility>

namespace Ftp {

namespace {

constexpr std::size_t MaxTickets = 8;

// The library hands over each session that can be resumed: of TLS 1.2 after the handshake, of TLS 1.3 whenever the
// server sends one.
int KeepNew(SSL* connection, SSL_SESSION* session)
{
    auto* context = static_cast<TlsContext*>(SSL_CTX_get_app_data(SSL_get_SSL_CTX(connection)));
    context->Keep(TlsTicket(session));
    return 1;
}

}  // namespace

void FreeTlsSession::operator()(ssl_session_st* session) const
{
    SSL_SESSION_free(session);
}

TlsContext::TlsContext(const std::string& protocol) : Settings(SSL_CTX_new(TLS_client_method()))
{
    const bool good = Settings != nullptr && SSL_CTX_set_min_proto_version(Settings, TLS1_2_VERSION) == 1;
    if (!good) {
        SSL_CTX_free(Settings);
        throw Failure{Failure::Protocol, SecureChannelError, "Secure connections are not possible on this computer."};
    }
    SSL_CTX_set_app_data(Settings, this);
    SSL_CTX_set_options(Settings, SSL_OP_NO_RENEGOTIATION);
    SSL_CTX_set_session_cache_mode(Settings, SSL_SESS_CACHE_CLIENT | SSL_SESS_CACHE_NO_INTERNAL);
    SSL_CTX_sess_set_new_cb(Settings, &KeepNew);
    const std::string offered = static_cast<char>(protocol.size()) + protocol;
    SSL_CTX_set_alpn_protos(Settings, reinterpret_cast<const unsigned char*>(offered.data()),
                            static_cast<unsigned>(offered.size()));
    AddSystemTrust(SSL_CTX_get_cert_store(Settings));
}

TlsContext::~TlsContext()
{
    Forget();
    SSL_CTX_free(Settings);
}

// The library makes a session that has been resumed unfit for a second time, so it gets a copy.
TlsTicket TlsContext::Take()
{
    if (!Fresh.empty()) {
        Last = std::move(Fresh.back());
        Fresh.pop_back();
    }
    return TlsTicket(Last ? SSL_SESSION_dup(Last.get()) : nullptr);
}

void TlsContext::Keep(TlsTicket ticket)
{
    if (SSL_SESSION_is_resumable(ticket.get()) != 1) return;
    if (Fresh.size() == MaxTickets) Fresh.erase(Fresh.begin());
    Fresh.push_back(std::move(ticket));
}

void TlsContext::Forget()
{
    Fresh.clear();
    Last.reset();
}

}  // namespace Ftp
