#pragma once

#include <memory>
#include <string>
#include <vector>

struct ssl_ctx_st;
struct ssl_session_st;

namespace Ftp {

struct FreeTlsSession {
    void operator()(ssl_session_st* session) const;
};

using TlsTicket = std::unique_ptr<ssl_session_st, FreeTlsSession>;

/// What the secure connections of one session with a server share: the settings (TLS 1.2 and 1.3, the system's
/// trusted authorities) and what is needed to resume. Transfer thread only.
class TlsContext {
public:
    /// `protocol` is what will be spoken on the connections, as RFC 7301 names it. Throws Failure when the library
    /// cannot be used.
    explicit TlsContext(const std::string& protocol);
    ~TlsContext();
    TlsContext(const TlsContext&) = delete;
    TlsContext& operator=(const TlsContext&) = delete;

    ssl_ctx_st* Get() const { return Settings; }

    /// The newest session that can be resumed; nothing when there is none. One of TLS 1.3 serves once (RFC 8446 C.4)
    /// and is given out twice only when the server has sent no other: some send none while they receive a file.
    TlsTicket Take();

    /// Takes a session that a server has just made resumable.
    void Keep(TlsTicket ticket);

    /// A new control connection begins: nothing of an older one may be resumed.
    void Forget();

private:
    ssl_ctx_st* Settings;
    std::vector<TlsTicket> Fresh;  ///< newest last
    TlsTicket Last;                ///< given out last
};

}  // namespace Ftp
