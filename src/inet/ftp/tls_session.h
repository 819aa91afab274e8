#pragma once

#include "inet/ftp/clock.h"
#include "inet/ftp/guard.h"
#include "inet/ftp/task.h"
#include "inet/ftp/tls_certificate.h"
#include "inet/ftp/waker.h"
#include "inet/ftp/wire.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Ftp {

class ControlConnection;
class TlsContext;
class TlsWire;

/// How the connections of a session are protected.
enum class Protection {
    None,      ///< ftp://
    Upgraded,  ///< ftpes://, by AUTH TLS before anything secret is sent (RFC 4217)
    FromStart  ///< ftps://, TLS from the first byte
};

/// The secure side of one FTP session (RFC 4217): the control connection is secured, its certificate judged, and data
/// connections are protected and resume its TLS session. Transfer thread only.
class TlsSession {
public:
    /// Asks whether a certificate that cannot be verified may be used all the same. The answer comes by Answer, with
    /// this number.
    using Asking = std::function<void(unsigned number, Certificate certificate)>;

    /// `ask` may be empty: such certificates are then refused. `protocol`: see TlsContext.
    TlsSession(Network& network, Intent& intent, Clock& clock, Asking ask, std::string protocol = "ftp");
    ~TlsSession();

    /// A control connection to a host is to be made of this wire, which is connected. With Protection::None it is
    /// left as it is.
    std::shared_ptr<Wire> WrapControl(std::shared_ptr<Wire> wire, std::string host, Protection protection);

    /// To be called once before the greeting is waited for: secures a connection that is secure from the start.
    Task<> BeforeGreeting(Milliseconds limit);

    /// To be called once between greeting and USER: upgrades a connection that begins in the clear.
    Task<> AfterGreeting(ControlConnection& control, Milliseconds limit);

    /// To be called once after log-in: asks for protected data connections (RFC 4217, 9).
    Task<> AfterLogIn(ControlConnection& control);

    /// The data connection to use in place of this one, which is connected.
    std::shared_ptr<Wire> WrapData(std::shared_ptr<Wire> wire);

    /// A question has come between connect and log-in: the server may have lost patience meanwhile.
    bool HasAsked() const { return Asked; }

    /// The user has answered. An answer to any other question than the one that waits does nothing.
    void Answer(unsigned number, bool accepted);

private:
    class Question;

    Task<> Secure(Milliseconds limit);
    Task<> Judge();

    Network& Net;
    Intent& Why;
    Clock& Time;
    Asking Ask;
    std::string Spoken;
    std::shared_ptr<TlsContext> Context;  ///< made for the first secure connection
    std::shared_ptr<TlsWire> Control;     ///< nothing while the session is not a secure one
    Protection Kind = Protection::None;
    std::string Host;
    std::string Fingerprint;  ///< of the certificate that the control connection has shown
    std::string Accepted;     ///< the fingerprint that the user has accepted last
    Question* Open = nullptr;
    unsigned Questions = 0;
    bool Asked = false;
};

}  // namespace Ftp
