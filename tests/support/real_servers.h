#pragma once

#include <QIODevice>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>

/// One real FTP server on a free loopback port, with a folder of its own that goes away with it. It accepts
/// connections when the constructor returns; nothing of it is left running, even when the test crashes.
///
/// The servers are those of tools/fetch-servers, which is asked to fetch them when they are not there; how each is
/// set up, and what it needs as root or as an ordinary user, is told in real_server.py. A test that runs as a program
/// for Windows has them started by the server_desk.py whose port is in TOLVANE_SERVER_DESK.
class RealServer {
public:
    enum Kind { Vsftpd, ProFtpd, PureFtpd, Pyftpdlib };

    static QString NameOf(Kind kind);

    /// How the server is secured; with Tls it takes nothing else, and demands resumption where it knows how to.
    /// SelfSignedTls is explicit, with a certificate that nobody vouches for.
    enum Security { Plain, ExplicitTls, ImplicitTls, SelfSignedTls };

    /// One that opens no ports connects to its clients; pure-ftpd has no such mode.
    enum Ports { OpensPorts, OpensNoPorts };

    /// `address` is 127.0.0.1 or ::1; `version` is 1.2 or 1.3, empty: both.
    explicit RealServer(Kind kind, const QString& address = QStringLiteral("127.0.0.1"), Security security = Plain,
                        const QString& version = {}, Ports ports = OpensPorts);
    ~RealServer();
    RealServer(const RealServer&) = delete;
    RealServer& operator=(const RealServer&) = delete;

    /// Empty when the server runs, else why it does not.
    QString Complaint() const { return Trouble; }

    /// ftp://127.0.0.1:2121, ftp://[::1]:2121; or ftpes:// or ftps://
    QString Url() const;

    /// The file with the certificate that vouches for a secured server's.
    QString Authority() const { return AuthorityFile; }

    /// Every command that one that opens no ports has got so far.
    QStringList Commands() const;

    int Port() const { return PortNumber; }

    /// Who may change everything; anonymous may read.
    QString User() const { return UserName; }

    QString Password() const { return Word; }

    /// Where a log-in begins, as a path on this computer.
    QString Folder() const { return Files.path(); }

    /// Ends a self-signed server with all its sessions, and starts it anew at the same place with another certificate.
    void RenewCertificate();

    /// Ends the server and all its sessions at once, as a crash would.
    void Kill();

private:
    void StartKeeper(const QString& kind, const QStringList& options);
    QByteArray ReadLine();

    QString Address;
    Security Safety;
    QString AuthorityFile;
    QString LogFile;
    QTemporaryDir Files;
    std::unique_ptr<QIODevice> Keeper;  ///< who keeps the server alive as long as it is open
    int PortNumber = 0;
    QString UserName;
    QString Word;
    QString Trouble;
};
