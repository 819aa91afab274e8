#pragma once

#include "inet/ftp/data_ends.h"
#include "inet/ftp/progress.h"
#include "inet/ftp/proxy_address.h"
#include "inet/ftp/session.h"
#include "inet/ftp/tls_certificate.h"
#include "inet/http_inquiry.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QTimer>
#include <QUrl>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

/// What is to be fetched, and how.
struct HttpRequest {
    QUrl Url;          ///< without user and password
    QString User;      ///< empty: nobody in particular
    QString Password;  ///< sent, like the user, to the scheme, host and port of Url and nowhere else
    Ftp::Proxy Via;    ///< for every connection of the request
    Ftp::Milliseconds Limit = std::chrono::seconds(30);  ///< bounds every wait for progress
    std::filesystem::path File;                          ///< where the bytes go; empty: into the outcome's reply
};

/// What a download tells, on its own thread.
struct HttpObserver {
    std::function<void(int)> State;  ///< the numbers of Inet::State, 1 to 8
    Ftp::ProgressMeter::Listener Progress{};
    /// A certificate that is not trusted; the answer comes by HttpDownload::Answer. Nobody: it is refused.
    std::function<void(const Ftp::Certificate&)> Ask{};
    std::function<void(Ftp::Outcome)> Ended;
};

/// One GET by HTTP or secure HTTP (RFC 9110), with the redirects that it leads to. The bytes go to the file as they
/// come, and no faster than the disk takes them. Lives on a thread with an event loop; going away ends it in silence.
class HttpDownload final : public QObject {
    Q_OBJECT

public:
    HttpDownload(HttpRequest request, HttpObserver observer);
    ~HttpDownload() override;

    void Begin();

    /// Ends it now with CancelledError, unless it has ended.
    void Cancel();

    /// The answer to what was asked last; nothing happens when nobody waits for it.
    void Answer(bool accepted);

    /// Ends it now and tells nobody.
    void Silence();

    bool HasConnected() const { return Told >= 4; }

private:
    void Inquire();
    void Send();
    void TakeHead();
    void FollowRedirect(const QByteArray& location);
    void TakeData();
    void TakeEnd();
    bool CheckWhole() const;
    std::optional<std::uint64_t> Announced() const;
    void Authenticate(QAuthenticator* authenticator);
    void NoteAttempt();
    void CheckCertificate(const QList<QSslError>& errors);
    void AskAboutCertificate();
    void Answered(bool accepted);
    void Tell(int state);
    void Fail(int code, const std::string& sentence);
    void FailByStatus();
    void FailByError();
    void End(Ftp::Outcome outcome);
    void DropReply();
    int Status() const;

    template <typename Step>
    void Try(Step step);

    HttpRequest Wanted;
    HttpObserver Listener;

    std::unique_ptr<Ftp::Sink> Target;
    Ftp::MemorySink* Memory = nullptr;  ///< the same, when it is memory
    Ftp::Proxy Road;                    ///< of the request that runs; never System
    std::unique_ptr<Ftp::Clock> Time;   ///< of the meter
    QUrl Url;                           ///< of the request that runs: the wanted one, or what it led to
    std::unique_ptr<HttpInquiry> Inquiry;
    QNetworkAccessManager Manager;
    QNetworkReply* Reply = nullptr;
    QTimer Clock;                              ///< runs out when nothing moves
    std::optional<Ftp::Certificate> Doubtful;  ///< shown by the server of the request that runs, and not accepted
    std::string Accepted;                      ///< fingerprint that the user has accepted for the host of Url
    bool Asking = false;                       ///< the user looks at Doubtful
    std::optional<Ftp::ProgressMeter> Meter;   ///< of what has come, once it comes
    int Redirects = 0;
    int Attempts = 0;  ///< to connect, for the request that runs
    int Told = 0;      ///< the highest state reported
    bool Opened = false;
    bool Identified = false;  ///< user and password have been given
    bool HasEnded = false;
};
