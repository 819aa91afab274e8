#include "inet/http_download.h"

#include "inet/ftp/data_ends.h"
#include "inet/ftp/failure.h"
#include "inet/ftp/progress.h"
#include "inet/ftp/race.h"
#include "inet/ftp/secret.h"
#include "inet/http_address.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace {

constexpr int MostRedirects = 10;
constexpr std::size_t MostInMemory = std::size_t{2} * 1024 * 1024 * 1024;
constexpr int LogInWanted = 401;
constexpr int ProxyLogInWanted = 407;

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

bool IsSecure(const QUrl& url)
{
    return url.scheme() == u"https";
}

std::string HostOf(const QUrl& url)
{
    return url.host(QUrl::FullyEncoded).toStdString();
}

/// The host with its port, as a request names it.
std::string AuthorityOf(const QUrl& url)
{
    std::string host = HostOf(url);
    if (host.find(':') != std::string::npos) host = '[' + host.substr(0, host.find('%')) + ']';
    return url.port() < 0 ? host : host + ':' + std::to_string(url.port());
}

}  // namespace

HttpDownload::HttpDownload(Ftp::Network& network, Ftp::Clock& clock, SystemProxy ask, Ftp::Observer observer)
    : Net(network), Time(clock), AskSystem(std::move(ask)), Listener(std::move(observer))
{
}

HttpDownload::~HttpDownload() = default;

bool HttpDownload::IsConnected() const
{
    return Told >= Connected;
}

void HttpDownload::Answer(unsigned number, bool accepted)
{
    if (Safe) Safe->Answer(number, accepted);
}

/// The one place where what went wrong becomes a value.
Ftp::Task<Ftp::Outcome> HttpDownload::Fetch(HttpRequest request)
{
    Wanted = std::move(request);
    Redirects = 0;
    Told = 0;
    ForProxy = {};
    BeginRequest(Wanted.Url);
    Ftp::Outcome outcome;
    std::optional<Ftp::Failure> failure;
    try {
        outcome = co_await Run();
    } catch (const Ftp::Failure& thrown) {
        failure = Why.Explain(thrown);
    } catch (const std::exception& error) {
        failure = Ftp::Failure{Ftp::Failure::Protocol, Ftp::InternalError,
                               std::string("The command failed: ") + error.what() + '.'};
    }
    if (!failure && Why.IsCancelled()) failure = Why.Explain({});
    if (failure) outcome = {false, failure->Code, failure->Text, {}};
    outcome.Text = Ftp::Without(Wanted.Password, outcome.Text);
    if (Road) outcome.Text = Ftp::Without(Road->Via().Password, outcome.Text);
    Rest();
    co_return outcome;
}

void HttpDownload::Rest()
{
    Reader.reset();
    Connection.reset();
    Safe.reset();
    Road.reset();
    Wanted = {};
    ForServer = {};
    ForProxy = {};
    Told = 0;
    Why.Reset();
    Why.Rest();
}

Ftp::Task<Ftp::Outcome> HttpDownload::Run()
{
    for (;;) {
        HttpHead head = co_await Ask();
        if (FollowsRedirect(head) || LogsIn(head)) continue;
        if (!IsGood(head.Status)) throw RefusalOf(head);
        co_return co_await Receive(std::move(head));
    }
}

// What was found out about one server holds for no other.
void HttpDownload::BeginRequest(const QUrl& url)
{
    const bool isSame = IsSameOrigin(Url, url);
    Url = url;
    ForServer = {};
    if (Safe && isSame) return;
    Safe.reset();
    if (IsSecure(Url)) Safe = std::make_unique<Ftp::TlsSession>(Net, Why, Time, Listener.Ask, "http/1.1");
}

// A server may lose patience while the user looks at its certificate; then it is called once more.
Ftp::Task<HttpHead> HttpDownload::Ask()
{
    const std::vector<Ftp::Endpoint> endpoints = co_await LookUp();
    for (;;) {
        try {
            co_await Connect(endpoints);
            co_return co_await Exchange();
        } catch (const Ftp::Failure& failure) {
            const bool hasAsked = Safe && Safe->HasAsked();
            if (!hasAsked || failure.Kind != Ftp::Failure::Connection || Why.IsInterrupted()) throw;
        }
    }
}

Ftp::Task<std::vector<Ftp::Endpoint>> HttpDownload::LookUp()
{
    Tell(ResolvingHost);
    auto ask = [find = AskSystem, scheme = Url.scheme().toStdString()](std::string host, std::uint16_t port) {
        return find(scheme, std::move(host), port);
    };
    Road = std::make_unique<Ftp::TunnelNetwork>(Net, std::move(ask));
    Road->Use(Wanted.Via, !IsSecure(Url));
    const std::shared_ptr<Ftp::Lookup> lookup = Road->NewLookup();
    const Ftp::Guard guard(Why, Time, *lookup, Wanted.Limit);
    std::string host = HostOf(Url);
    co_return co_await lookup->Find(std::move(host), static_cast<std::uint16_t>(PortOf(Url)));
}

Ftp::Task<> HttpDownload::Connect(std::vector<Ftp::Endpoint> endpoints)
{
    Tell(Connecting);
    Connection = co_await Ftp::ConnectToFirst(*Road, Why, Time, Wanted.Limit, std::move(endpoints));
    if (Safe) {
        Connection = Safe->WrapControl(std::move(Connection), HostOf(Url), Ftp::Protection::FromStart);
        co_await Safe->BeforeGreeting(Wanted.Limit);
    }
    Tell(Connected);
}

/// The proxy takes the requests themselves, in place of a tunnel.
bool HttpDownload::IsRelayed() const
{
    return !IsSecure(Url) && Road->Via().Kind == Ftp::Proxy::Connect;
}

// One limit for all of the header, however slowly it drips.
Ftp::Task<HttpHead> HttpDownload::Exchange()
{
    Reader = std::make_unique<HttpReader>(Connection);
    Tell(Requesting);
    try {
        const Ftp::Guard guard(Why, Time, *Connection, Wanted.Limit);
        std::string text = RequestText();
        co_await Connection->Write(std::move(text));
        Tell(ReceivingResponse);
        co_return co_await Reader->ReadHead();
    } catch (const Ftp::Failure& failure) {
        if (!IsRelayed() || Reader->HasHeard() || failure.Kind != Ftp::Failure::Connection) throw;
        const bool isReset = failure.Code == Ftp::ResetError;
        throw Ftp::Failure{Ftp::Failure::Connection, failure.Code,
                           isReset ? "The connection with the proxy was reset." : "The proxy closed the connection."};
    }
}

// The bytes are wanted as they are, not as something to be unpacked.
std::string HttpDownload::RequestText() const
{
    std::string text = "GET " + Target() + " HTTP/1.1\r\nHost: " + AuthorityOf(Url) +
                       "\r\nUser-Agent: Tolvane\r\nAccept: */*\r\nAccept-Encoding: identity\r\n";
    if (!ForServer.Value.empty()) text += "Authorization: " + ForServer.Value + "\r\n";
    if (IsRelayed()) {
        const Ftp::Proxy& via = Road->Via();
        std::string value = ForProxy.Value;
        if (value.empty() && !via.User.empty()) value = Ftp::BasicLogin(via.User, via.Password);
        if (!value.empty()) text += "Proxy-Authorization: " + value + "\r\n";
    }
    return text + "\r\n";
}

// A proxy gets the whole address.
std::string HttpDownload::Target() const
{
    const QString path = Url.path(QUrl::FullyEncoded);
    std::string target = path.isEmpty() ? "/" : path.toStdString();
    if (Url.hasQuery()) target += '?' + Url.query(QUrl::FullyEncoded).toStdString();
    return IsRelayed() ? "http://" + AuthorityOf(Url) + target : target;
}

bool HttpDownload::FollowsRedirect(const HttpHead& head)
{
    const std::string location = head.First("location");
    if (!IsRedirect(head.Status) || location.empty()) return false;
    const std::optional<QUrl> next = RedirectTarget(Url, QByteArray::fromStdString(location));
    if (!next)
        throw Ftp::Failure{Ftp::Failure::Refused, Ftp::SchemeError,
                           IsSecure(Url)
                               ? "The server sends on to an address that is not secure, which is not followed."
                               : "The server sends on to an address that cannot be followed."};
    if (++Redirects > MostRedirects)
        throw Ftp::Failure{Ftp::Failure::Refused, Ftp::ResponseError,
                           "The server sends on from one address to the other without end."};
    BeginRequest(*next);
    return true;
}

// Where a redirect has led, user and password are none of anybody's business.
bool HttpDownload::LogsIn(const HttpHead& head)
{
    if (head.Status == LogInWanted) {
        const bool isMine = IsSameOrigin(Url, Wanted.Url);
        Ftp::LoginWish wish{isMine ? Wanted.User : std::string(), Wanted.Password, Target()};
        return AnswerTo(head.All("www-authenticate"), std::move(wish), ForServer);
    }
    if (head.Status == ProxyLogInWanted && IsRelayed()) {
        const Ftp::Proxy& via = Road->Via();
        return AnswerTo(head.All("proxy-authenticate"), {via.User, via.Password, Target()}, ForProxy);
    }
    return false;
}

// Asked for again, they were wrong, unless the server only wants them with a newer stamp.
bool HttpDownload::AnswerTo(const std::vector<std::string>& asked, Ftp::LoginWish wish, Credentials& credentials) const
{
    const std::vector<Ftp::Challenge> offered = Ftp::ChallengesIn(asked);
    if (offered.empty()) return false;
    const std::optional<std::string> value = Ftp::LoginFor(offered, wish);
    if (!value) {
        const bool byProxy = &credentials == &ForProxy;
        throw Ftp::Failure{Ftp::Failure::Refused, byProxy ? ProxyLogInWanted : LogInWanted,
                           std::string(byProxy ? "The proxy" : "The server") +
                               " wants a kind of log-in that is not offered here: " + Ftp::KindsOf(offered) + '.'};
    }
    const bool renews = credentials.Answered && !credentials.Renewed && Ftp::IsStale(offered);
    if (wish.User.empty() || (credentials.Answered && !renews) || *value == credentials.Value) return false;
    credentials = {*value, true, renews};
    return true;
}

Ftp::Failure HttpDownload::RefusalOf(const HttpHead& head) const
{
    std::string text = head.Reason;
    if (text.empty()) text = "The server answered " + std::to_string(head.Status) + " and sent no file.";
    if (head.Status == ProxyLogInWanted && IsRelayed()) text = "The proxy refused the connection: " + text;
    return {Ftp::Failure::Refused, head.Status, text};
}

Ftp::Task<Ftp::Outcome> HttpDownload::Receive(HttpHead head)
{
    Ftp::MemorySink memory(MostInMemory);
    Ftp::FileSink stored(Wanted.File);
    Ftp::Sink& sink = Wanted.File.empty() ? static_cast<Ftp::Sink&>(memory) : stored;
    const std::optional<std::uint64_t> expected = Reader->Length();
    sink.Open();
    Ftp::ProgressMeter meter(Time, Listener.Progress, expected);
    {
        Ftp::Guard guard(Why, Time, *Connection, Wanted.Limit);
        std::string_view piece = co_await Reader->ReadPiece();
        while (!piece.empty()) {
            meter.Add(piece.size());
            sink.Write(piece.data(), piece.size());
            guard.Progress();
            piece = co_await Reader->ReadPiece();
        }
    }
    sink.Keep();
    Tell(ResponseReceived);
    Ftp::Outcome outcome{true, head.Status, head.Reason, std::move(memory.Bytes)};
    outcome.Transferred = Ftp::Confirmation{meter.Done(), expected.has_value()};
    co_return outcome;
}

void HttpDownload::Tell(int state)
{
    while (Told < state) Listener.State(++Told);
}
