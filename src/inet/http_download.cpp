#include "inet/http_download.h"

#include "inet/ftp/failure.h"
#include "inet/ftp/secret.h"
#include "inet/http_address.h"
#include "inet/http_trust.h"

#include <QAuthenticator>
#include <QNetworkProxy>
#include <QSslConfiguration>
#include <QSslError>
#include <algorithm>
#include <chrono>
#include <utility>

namespace {

constexpr int MostRedirects = 10;
constexpr int MostAttempts = 4;  // to connect, for one request
constexpr qint64 BufferSize = qint64{1024} * 1024;
constexpr std::size_t MostInMemory = std::size_t{2} * 1024 * 1024 * 1024;
constexpr int ProxyAuthenticationRequired = 407;

// The states that are reported, as the component numbers them.
enum States {
    ResolvingHost = 1,
    HostResolved = 2,
    Connecting = 3,
    Connected = 4,
    Requesting = 5,
    RequestSent = 6,
    ReceivingResponse = 7,
    ResponseReceived = 8,
};

bool IsGood(int status)
{
    return status >= 200 && status < 300;
}

bool IsRedirect(int status)
{
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

/// The time of the real world, for a thread of the toolkit.
class LoopClock final : public Ftp::Clock {
public:
    Ftp::Milliseconds Now() const override
    {
        return std::chrono::duration_cast<Ftp::Milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
    }

    std::unique_ptr<Alarm> After(Ftp::Milliseconds delay, std::function<void()> call) override
    {
        auto alarm = std::make_unique<Ringing>();
        QObject::connect(&alarm->Timer, &QTimer::timeout, &alarm->Timer, std::move(call));
        alarm->Timer.setSingleShot(true);
        alarm->Timer.start(delay);
        return alarm;
    }

private:
    struct Ringing final : Alarm {
        QTimer Timer;
    };
};

QNetworkProxy ProxyOf(const Ftp::Proxy& via)
{
    if (via.Kind == Ftp::Proxy::None) return QNetworkProxy(QNetworkProxy::NoProxy);
    return QNetworkProxy(via.Kind == Ftp::Proxy::Socks5 ? QNetworkProxy::Socks5Proxy : QNetworkProxy::HttpProxy,
                         QString::fromStdString(via.Host), via.Port, QString::fromStdString(via.User),
                         QString::fromStdString(via.Password));
}

/// Whether the library drives the proxy behind a socket of its own making. Such a one stalls when its buffer is
/// bounded (Qt 6.4), so there the reading alone keeps the memory small.
bool IsEmulated(const Ftp::Proxy& via, const QUrl& url)
{
    return via.Kind == Ftp::Proxy::Socks5 || (via.Kind == Ftp::Proxy::Connect && url.scheme() == u"https");
}

/// What ended a request that no status of the server explains.
Ftp::Outcome FailureOf(QNetworkReply::NetworkError error)
{
    switch (error) {
    case QNetworkReply::ConnectionRefusedError:
        return {false, Ftp::ConnectError, "The server could not be reached (Connection refused).", {}};
    case QNetworkReply::HostNotFoundError:
        return {false, Ftp::NameError, "The name of the server could not be found.", {}};
    case QNetworkReply::TimeoutError:
        return {false, Ftp::TimeOutError, "The server did not answer in time.", {}};
    case QNetworkReply::SslHandshakeFailedError:
        return {false, Ftp::SecureChannelError, "A secure connection with the server could not be made.", {}};
    case QNetworkReply::ProtocolFailure:
    case QNetworkReply::ProtocolUnknownError:
        return {false, Ftp::ResponseError, "The server's answer was not understood.", {}};
    default:
        return {false, Ftp::AbortedError, "The connection with the server was lost.", {}};
    }
}

/// The same for one that has not got beyond the proxy.
Ftp::Outcome ProxyFailureOf(QNetworkReply::NetworkError error)
{
    switch (error) {
    case QNetworkReply::ProxyNotFoundError:
        return {false, Ftp::NameError, "The name of the proxy could not be found.", {}};
    case QNetworkReply::ProxyAuthenticationRequiredError:
        return {false, ProxyAuthenticationRequired, "The proxy does not accept the user and password.", {}};
    case QNetworkReply::ProxyConnectionClosedError:
    case QNetworkReply::RemoteHostClosedError:
        return {false, Ftp::ConnectError, "The proxy closed the connection.", {}};
    case QNetworkReply::SslHandshakeFailedError:
        return FailureOf(error);
    default:
        return {false, Ftp::ConnectError, "No connection could be made through the proxy.", {}};
    }
}

}  // namespace

HttpDownload::HttpDownload(HttpRequest request, HttpObserver observer)
    : Wanted(std::move(request)), Listener(std::move(observer)), Time(std::make_unique<LoopClock>()), Url(Wanted.Url)
{
    if (Wanted.File.empty()) {
        auto memory = std::make_unique<Ftp::MemorySink>(MostInMemory);
        Memory = memory.get();
        Target = std::move(memory);
    } else {
        Target = std::make_unique<Ftp::FileSink>(Wanted.File);
    }
    Clock.setSingleShot(true);
    Clock.setInterval(Wanted.Limit);
    connect(&Clock, &QTimer::timeout, this, [this] { Fail(Ftp::TimeOutError, "The server did not answer in time."); });
    connect(&Manager, &QNetworkAccessManager::authenticationRequired, this,
            [this](QNetworkReply*, QAuthenticator* authenticator) { Authenticate(authenticator); });
}

HttpDownload::~HttpDownload()
{
    Silence();
}

void HttpDownload::Begin()
{
    Tell(ResolvingHost);
    Inquire();
}

void HttpDownload::Cancel()
{
    Fail(Ftp::CancelledError, "The command was cancelled.");
}

void HttpDownload::Inquire()
{
    Clock.start();
    Inquiry = std::make_unique<HttpInquiry>(Url, Wanted.Via, [this](const HttpInquiry::Answer& answer) {
        if (HasEnded) return;
        Road = answer.Via;
        if (answer.Failed.empty())
            Send();
        else if (answer.Via.Kind == Ftp::Proxy::None)
            Fail(Ftp::NameError, "The name of the server could not be found (" + answer.Failed + ").");
        else
            Fail(Ftp::NameError, "The name of the proxy could not be found (" + answer.Failed + ").");
    });
}

void HttpDownload::Send()
{
    Tell(Connecting);
    Clock.start();
    Doubtful.reset();
    Attempts = 0;
    Manager.setProxy(ProxyOf(Road));
    QNetworkRequest request(Url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    // Certificates know no dot at the end of a name.
    const QString host = Url.host(QUrl::FullyEncoded);
    if (host.endsWith(u'.')) request.setPeerVerifyName(host.chopped(1));
    request.setRawHeader("User-Agent", "Tolvane");
    // The bytes are wanted as they are, not as something to be unpacked.
    request.setRawHeader("Accept-Encoding", "identity");
    Reply = Manager.get(request);
    if (!IsEmulated(Road, Url)) Reply->setReadBufferSize(BufferSize);
    connect(Reply, &QNetworkReply::socketStartedConnecting, this, &HttpDownload::NoteAttempt);
    connect(Reply, &QNetworkReply::encrypted, this, [this] {
        Tell(Connected);
        Clock.start();
    });
    connect(Reply, &QNetworkReply::requestSent, this, [this] {
        Tell(ReceivingResponse);
        Clock.start();
    });
    connect(Reply, &QNetworkReply::sslErrors, this, &HttpDownload::CheckCertificate);
    connect(Reply, &QNetworkReply::metaDataChanged, this, [this] { Try([this] { TakeHead(); }); });
    connect(Reply, &QNetworkReply::readyRead, this, [this] { Try([this] { TakeData(); }); });
    connect(Reply, &QNetworkReply::finished, this, [this] { Try([this] { TakeEnd(); }); });
}

// A proxy that hangs up would be called by the library again and again.
void HttpDownload::NoteAttempt()
{
    if (HasEnded || ++Attempts <= MostAttempts || Road.Kind == Ftp::Proxy::None) return;
    Fail(Ftp::ConnectError, "The proxy closed the connection.");
}

// What goes wrong in a step is told like everything else.
template <typename Step>
void HttpDownload::Try(Step step)
{
    if (HasEnded || !Reply) return;
    try {
        step();
    } catch (const Ftp::Failure& failure) {
        Fail(failure.Code, failure.Text);
    }
}

int HttpDownload::Status() const
{
    return Reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

void HttpDownload::TakeHead()
{
    const int status = Status();
    if (status < 200 || Opened) return;
    Tell(ReceivingResponse);
    Clock.start();
    const QByteArray location = Reply->rawHeader("Location");
    if (IsRedirect(status) && !location.isEmpty())
        FollowRedirect(location);
    else if (!IsGood(status))
        FailByStatus();
    else {
        Target->Open();
        Opened = true;
        Meter.emplace(*Time, Listener.Progress, Announced());
    }
}

void HttpDownload::FollowRedirect(const QByteArray& location)
{
    const std::optional<QUrl> next = RedirectTarget(Url, location);
    if (!next) {
        Fail(Ftp::SchemeError, Url.scheme() == u"https"
                                   ? "The server sends on to an address that is not secure, which is not followed."
                                   : "The server sends on to an address that cannot be followed.");
        return;
    }
    if (++Redirects > MostRedirects) {
        Fail(Ftp::ResponseError, "The server sends on from one address to the other without end.");
        return;
    }
    DropReply();
    if (!IsSameOrigin(Url, *next)) Accepted.clear();
    Url = *next;
    Inquire();
}

// Piece by piece: what stays in the reply's buffer keeps the server waiting.
void HttpDownload::TakeData()
{
    if (!Opened) return;
    while (Reply->bytesAvailable() > 0) {
        const QByteArray bytes = Reply->read(BufferSize);
        if (bytes.isEmpty()) return;
        Clock.start();
        Meter->Add(static_cast<std::uint64_t>(bytes.size()));
        Target->Write(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    }
}

void HttpDownload::TakeEnd()
{
    if (Status() >= 200) TakeHead();
    if (HasEnded || !Reply) return;
    if (Reply->error() != QNetworkReply::NoError) {
        FailByError();
        return;
    }
    if (!Opened) {
        Fail(Ftp::ResponseError, "The server's answer was not understood.");
        return;
    }
    TakeData();
    const bool confirmed = CheckWhole();
    Target->Keep();
    Tell(ResponseReceived);
    End({true, Status(), Reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString().toStdString(),
         Memory ? std::move(Memory->Bytes) : std::string(), Ftp::Confirmation{Meter->Done(), confirmed}});
}

/// The bytes of the file, where the server has said it and it counts.
std::optional<std::uint64_t> HttpDownload::Announced() const
{
    bool given = false;
    const qulonglong announced = Reply->rawHeader("Content-Length").trimmed().toULongLong(&given);
    if (!given || Reply->hasRawHeader("Transfer-Encoding")) return std::nullopt;
    return announced;
}

/// Whether the server has said how long the file is, and it is.
bool HttpDownload::CheckWhole() const
{
    const std::optional<std::uint64_t> announced = Announced();
    if (!announced || Meter->Done() == *announced) return announced.has_value();
    throw Ftp::Failure{Ftp::Failure::Protocol, Ftp::ResponseError,
                       "The file arrived incomplete: " + std::to_string(Meter->Done()) + " of " +
                           std::to_string(*announced) + " bytes."};
}

// Asked for again, they were wrong; where a redirect has led they are none of anybody's business.
void HttpDownload::Authenticate(QAuthenticator* authenticator)
{
    if (Wanted.User.isEmpty() || Identified || !IsSameOrigin(Url, Wanted.Url)) return;
    Identified = true;
    authenticator->setUser(Wanted.User);
    authenticator->setPassword(Wanted.Password);
}

// Called while the handshake stands still. Nothing is asked here, for the server would lose patience: the connection is
// given up, and after a yes there is a new one, for this certificate alone.
void HttpDownload::CheckCertificate(const QList<QSslError>& errors)
{
    if (!Reply) return;
    Ftp::Certificate shown = ShownCertificate(Url, Reply->sslConfiguration().peerCertificate(), errors);
    if (!shown.Fingerprint.empty() && shown.Fingerprint == Accepted)
        Reply->ignoreSslErrors(errors);
    else
        Doubtful = std::move(shown);
}

// The time-out stands still until the answer.
void HttpDownload::AskAboutCertificate()
{
    DropReply();
    if (!Listener.Ask || Doubtful->Fingerprint.empty()) {
        Answered(false);
        return;
    }
    Clock.stop();
    Asking = true;
    Listener.Ask(*Doubtful);
}

void HttpDownload::Answer(bool accepted)
{
    if (Asking && !HasEnded) Answered(accepted);
}

void HttpDownload::Answered(bool accepted)
{
    Asking = false;
    if (!accepted) {
        const Ftp::Failure failure = Ftp::DistrustOf(*Doubtful);
        Fail(failure.Code, failure.Text);
        return;
    }
    Accepted = Doubtful->Fingerprint;
    Send();
}

void HttpDownload::Tell(int state)
{
    while (Told < state && !HasEnded) Listener.State(++Told);
}

void HttpDownload::Fail(int code, const std::string& sentence)
{
    End({false, code, sentence, {}});
}

void HttpDownload::FailByStatus()
{
    const int status = Status();
    std::string text = Reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString().toStdString();
    if (text.empty()) text = "The server answered " + std::to_string(status) + " and sent no file.";
    Fail(status, text);
}

void HttpDownload::FailByError()
{
    const int status = Status();
    if (status >= 300) {
        FailByStatus();
    } else if (Doubtful) {
        AskAboutCertificate();
    } else if (Road.Kind != Ftp::Proxy::None && Told < RequestSent) {
        End(ProxyFailureOf(Reply->error()));
    } else {
        End(FailureOf(Reply->error()));
    }
}

void HttpDownload::End(Ftp::Outcome outcome)
{
    if (HasEnded) return;
    Silence();
    outcome.Text = Ftp::Without(Wanted.Password.toStdString(), outcome.Text);
    outcome.Text = Ftp::Without(Wanted.Via.Password, outcome.Text);
    Listener.Ended(std::move(outcome));
}

void HttpDownload::Silence()
{
    HasEnded = true;
    Clock.stop();
    Inquiry.reset();
    DropReply();
    Target.reset();
    Memory = nullptr;
}

void HttpDownload::DropReply()
{
    QNetworkReply* reply = std::exchange(Reply, nullptr);
    if (!reply) return;
    reply->disconnect(this);
    reply->abort();
    reply->deleteLater();
}
