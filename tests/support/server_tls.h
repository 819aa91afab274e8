#pragma once

#include "support/http_certificate.h"

#include <QByteArray>
#include <memory>

/// The server's side of one TLS connection, apart from any socket: bytes of the client go in, bytes for the client come
/// out. It is the same on every system, whatever the program itself speaks TLS with.
class ServerTls {
public:
    explicit ServerTls(const HttpCertificate& certificate);
    ~ServerTls();
    ServerTls(const ServerTls&) = delete;
    ServerTls& operator=(const ServerTls&) = delete;

    /// Takes what has come from the client and returns the text in it.
    QByteArray Take(const QByteArray& bytes);

    /// Text for the client; only after some of the client's has come.
    void Put(const QByteArray& text);

    /// The text is at its end.
    void End();

    /// What is to be sent to the client by now.
    QByteArray Outgoing();

    /// The two do not understand each other, or the client does not trust the certificate.
    bool HasFailed() const;

private:
    struct State;
    std::unique_ptr<State> It;
};
