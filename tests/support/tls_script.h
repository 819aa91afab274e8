#pragma once

#include "support/conversation.h"

#include <QTemporaryDir>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct ssl_ctx_st;
struct ssl_st;

/// Certificates for tests, made anew for each process, and the authority that signs some of them. While one of these
/// lives, the authority is all that this process trusts.
class TestCertificates {
public:
    TestCertificates();
    ~TestCertificates();
    TestCertificates(const TestCertificates&) = delete;
    TestCertificates& operator=(const TestCertificates&) = delete;

    /// good, expired, not yet, wrong host, numbered (for 127.0.0.1), self-signed, other (as good as good).
    void Use(ssl_ctx_st* server, const std::string& name) const;

private:
    struct Made;

    QTemporaryDir Folder;
    std::map<std::string, std::shared_ptr<Made>> All;
};

/// The server's end of one TLS connection, between what the client sees and what the script sees.
struct TlsEnd;

/// Teaches the server of a conversation TLS, by further directives:
///
///     -- certificate NAME   this one is shown from now on, see TestCertificates
///     -- version 1.2        of the connections from now on; 1.1 and 1.3, too
///     -- hello              it waits until the client has begun to speak TLS, and says nothing to it
///     -- secure             the control connection speaks TLS from now on
///     -- secure data        the data connection does, too; resuming or not
///     -- secured            it waits until the handshake on the data connection is done
///     -- resumed            the same; the client must have resumed the session of the control connection
///     -- closed             it waits until the client has closed TLS and then its side of the data connection
///     -- open               the client must not have left the data connection
///     -- cut data           it ends the data connection without the close of TLS
///     -- cut                the same with the control connection
///     -- clear TEXT         it sends a line in the clear on the control connection, past TLS
///     -- clear data TEXT    the same on the data connection
///     -- tear N             the data connection ends after N more bytes of TLS
class TlsScript {
public:
    TlsScript(Conversation& talk, const TestCertificates& certificates);
    ~TlsScript();
    TlsScript(const TlsScript&) = delete;
    TlsScript& operator=(const TlsScript&) = delete;

    /// From now on every connection begins from scratch.
    void ForbidResumption();

    std::string ServerName;         ///< what the client called the server on the last connection
    std::string Protocols;          ///< what it offered to speak above TLS
    std::vector<bool> Resumptions;  ///< of each data connection

private:
    using Link = std::shared_ptr<MemoryLink>;

    bool Obey(const std::string& text, Link& control, Link& data);
    bool ObeyEnd(const std::string& text, Link& control, Link& data);
    Link Secure(const Link& link, bool isData);
    void LimitVersion(const std::string& version) const;

    Conversation& Talk;
    const TestCertificates& Certificates;
    ssl_ctx_st* Settings;
    std::shared_ptr<TlsEnd> Control;
    std::shared_ptr<TlsEnd> Data;
};
