#include "inet/transfer_component.h"

#include "base/byte_text.h"
#include "base/run_time_error.h"
#include "inet/ftp/address.h"
#include "inet/ftp/failure.h"
#include "inet/ftp/local_name.h"
#include "inet/http_address.h"
#include "inet/queued_call.h"

#include <QPointer>
#include <QUrl>
#include <algorithm>
#include <map>
#include <string>
#include <utility>

/// What Execute and OpenURL go by, as it was set.
struct TransferComponent::Properties {
    int AccessType = SystemDefault;
    QString Proxy;
    QString URL;
    QString UserName;
    QString Password;
    int RemotePort = 0;
    int Protocol = DefaultProtocol;
    ::Ftp::Manner Manner;

    ::Ftp::Proxy Road() const;
    QString HttpSchemeOf(const QString& url) const;
    ::Ftp::Target TargetOf(const QString& url) const;
    HttpRequest HttpRequestOf(const QString& url, const QString& scheme) const;
};

/// How a command ended, with its texts decoded on the transfer thread already.
struct TransferComponent::Ended {
    bool Good = false;
    int Code = 0;
    QString Info;
    QString Reply;     ///< of a command that answers with text
    QByteArray Bytes;  ///< of a download
    std::optional<Confirmation> Transferred;
};

/// A certificate that the user is to judge.
struct TransferComponent::Doubt {
    unsigned Number = 0;
    DoubtfulCertificate Shown;
};

namespace {

constexpr int FtpPort = 21;
constexpr int SecureFtpPort = 990;

const std::map<std::string, ::Ftp::Protection> Protections = {{"", ::Ftp::Protection::None},
                                                              {"ftp", ::Ftp::Protection::None},
                                                              {"ftpes", ::Ftp::Protection::Upgraded},
                                                              {"ftps", ::Ftp::Protection::FromStart}};
constexpr int HttpPort = 80;

std::string BytesOf(const QString& text)
{
    return TextToBytes(text).toStdString();
}

QByteArray ArrayOf(const std::string& bytes)
{
    return {bytes.data(), static_cast<qsizetype>(bytes.size())};
}

/// Why a command cannot even begin; thrown and caught in here.
struct Impossible {
    int Code;
    QString Sentence;
};

QString TextOf(const std::string& bytes)
{
    return BytesToText(ArrayOf(bytes));
}

Inet::DoubtfulCertificate DoubtfulOf(const Ftp::Certificate& shown)
{
    return {TextOf(shown.Host),        shown.Port,
            TextOf(shown.Subject),     TextOf(shown.Issuer),
            TextOf(shown.ValidFrom),   TextOf(shown.ValidUntil),
            TextOf(shown.Fingerprint), TextOf(::Ftp::DoubtsOf(shown))};
}

Ftp::Operation OperationOf(const QString& text)
{
    if (std::optional<::Ftp::Operation> operation = ::Ftp::ParseOperation(BytesOf(text))) return std::move(*operation);
    throw Impossible{::Ftp::OperationError, "The command is not understood: " + text};
}

/// The name of a host as look-ups and certificates know it: other letters than those of ASCII in their encoded form
/// (RFC 5891), which also shows what a name that looks like another really is.
std::string HostOf(const std::string& host)
{
    const auto isAscii = [](char one) { return static_cast<unsigned char>(one) < 0x80; };
    if (std::all_of(host.begin(), host.end(), isAscii)) return host;
    const QByteArray encoded = QUrl::toAce(TextOf(host));
    if (encoded.isEmpty()) throw Impossible{::Ftp::AddressError, "The address is not understood."};
    return encoded.toStdString();
}

std::filesystem::path CurrentFolder()
{
    std::error_code error;
    std::filesystem::path folder = std::filesystem::current_path(error);
    if (error) throw Impossible{::Ftp::InternalError, "The current folder on this computer is gone."};
    return folder;
}

}  // namespace

::Ftp::Proxy TransferComponent::Properties::Road() const
{
    if (AccessType != NamedProxy)
        return {AccessType == Direct ? ::Ftp::Proxy::None : ::Ftp::Proxy::System, {}, 0, {}, {}};
    std::optional<::Ftp::Proxy> proxy = ::Ftp::ParseProxy(BytesOf(Proxy.trimmed()));
    if (!proxy)
        throw Impossible{::Ftp::ConnectError, "The proxy's address is not understood; it is written as host:port."};
    return std::move(*proxy);
}

// The protocol that was chosen decides, and the address's scheme where it leaves the choice. Empty: not HTTP.
QString TransferComponent::Properties::HttpSchemeOf(const QString& url) const
{
    const QString scheme = SchemeOf(url);
    const bool isHttp = scheme == u"http" || scheme == u"https";
    if (Protocol == DefaultProtocol) return isHttp ? scheme : QString();
    if (Protocol == Inet::Ftp) return {};
    if (!isHttp && !scheme.isEmpty())
        throw Impossible{::Ftp::SchemeError, "The address is not one of HTTP, which is the protocol chosen."};
    return Protocol == SecureHttp || scheme == u"https" ? QString("https") : QString("http");
}

// What the address holds counts where the property of the same meaning says nothing. An address may hold a password,
// so no sentence repeats it.
Ftp::Target TransferComponent::Properties::TargetOf(const QString& url) const
{
    const std::optional<::Ftp::Address> address = ::Ftp::ParseAddress(BytesOf(url.trimmed()));
    if (!address) throw Impossible{::Ftp::AddressError, "The address is not understood."};
    const auto protection = Protections.find(address->Scheme);
    if (protection == Protections.end())
        throw Impossible{::Ftp::SchemeError, "Addresses of this kind cannot be used here; ftp:// ones can."};
    ::Ftp::Target target;
    target.Safety = protection->second;
    target.Host = HostOf(address->Host);
    const bool addressDecides = RemotePort == 0 || RemotePort == FtpPort;
    const int usual = target.Safety == ::Ftp::Protection::FromStart ? SecureFtpPort : FtpPort;
    const int chosen = address->Port != 0 ? address->Port : usual;
    target.Port = static_cast<std::uint16_t>(addressDecides ? chosen : RemotePort);
    target.User = BytesOf(UserName);
    target.Password = BytesOf(Password);
    if (UserName.isEmpty() && address->HasUser && !address->User.empty()) {
        target.User = address->User;
        if (!address->Password.empty()) target.Password = address->Password;
    }
    target.Path = address->Path;
    target.Via = Road();
    return target;
}

// The same rules; 80 in the port box, left over from plain HTTP, leaves the choice to a secure address.
HttpRequest TransferComponent::Properties::HttpRequestOf(const QString& url, const QString& scheme) const
{
    std::optional<QUrl> address = HttpUrl(url, scheme);
    if (!address) throw Impossible{::Ftp::AddressError, "The address is not understood."};
    const bool addressDecides =
        RemotePort == 0 || RemotePort == FtpPort || (scheme == u"https" && RemotePort == HttpPort);
    if (!addressDecides) address->setPort(RemotePort);
    HttpRequest request;
    const bool userIsInAddress = UserName.isEmpty() && !address->userName().isEmpty();
    request.User = BytesOf(userIsInAddress ? address->userName(QUrl::FullyDecoded) : UserName);
    request.Password = BytesOf(userIsInAddress ? address->password(QUrl::FullyDecoded) : Password);
    address->setUserInfo(QString());
    request.Url = *address;
    request.Limit = Manner.Limit;
    request.Via = Road();
    return request;
}

TransferComponent::TransferComponent(std::shared_ptr<::Ftp::DataWayBook> ways, QObject* parent)
    : Inet(parent), Chosen(std::make_unique<Properties>()), Ways(std::move(ways))
{
}

TransferComponent::~TransferComponent() = default;

void TransferComponent::SetAccessType(int access)
{
    if (access < SystemDefault || access > NamedProxy) throw RuntimeError("Invalid property value");
    Chosen->AccessType = access;
}

void TransferComponent::SetProxy(const QString& proxy)
{
    Chosen->Proxy = proxy;
}

void TransferComponent::SetURL(const QString& url)
{
    Chosen->URL = url;
}

QString TransferComponent::URL() const
{
    return Chosen->URL;
}

void TransferComponent::SetUserName(const QString& user)
{
    Chosen->UserName = user;
}

void TransferComponent::SetPassword(const QString& password)
{
    Chosen->Password = password;
}

void TransferComponent::SetRemotePort(int port)
{
    if (port < 0 || port > 65535) throw RuntimeError("Overflow");
    Chosen->RemotePort = port;
}

void TransferComponent::SetProtocol(int protocol)
{
    if (protocol != DefaultProtocol && protocol != Inet::Ftp && protocol != Http && protocol != SecureHttp)
        throw RuntimeError("Invalid property value");
    Chosen->Protocol = protocol;
}

void TransferComponent::SetRequestTimeout(int seconds)
{
    Chosen->Manner.Limit = std::chrono::seconds(std::max(seconds, 1));
}

void TransferComponent::SetCertificateJudge(CertificateJudge judge)
{
    Trusts = std::move(judge);
}

void TransferComponent::SetListingLineHelp(bool on)
{
    Chosen->Manner.ListingLineHelp = on;
}

void TransferComponent::SetMoreToCome(bool more)
{
    Chosen->Manner.MoreToCome = more;
}

void TransferComponent::GetReady()
{
    if (!Executing && Thread && !OverHttp) Thread->GetReady();
}

void TransferComponent::SetReplyFile(const QString& path)
{
    NextReplyFile = path.isEmpty() ? std::filesystem::path() : std::filesystem::absolute(FilePath(path));
}

void TransferComponent::Execute(const QString& url, const QString& operation, const QString&)
{
    if (Executing) throw RuntimeError("Still executing last request");
    if (url.isEmpty() && operation == u"CLOSE") {
        if (Thread) Thread->Drop();
        return;
    }
    const quint64 command = Begin();
    try {
        StartOperation(url, operation, command);
    } catch (const Impossible& impossible) {
        FailSoon(impossible.Code, impossible.Sentence);
    } catch (const ::Ftp::Failure& failure) {
        FailSoon(failure.Code, BytesToText(ArrayOf(failure.Text)));
    }
}

void TransferComponent::StartOperation(const QString& url, const QString& operation, quint64 command)
{
    const QString http = Chosen->HttpSchemeOf(url);
    if (!http.isEmpty()) {
        StartHttpOperation(Chosen->HttpRequestOf(url, http), operation, command);
        return;
    }
    ::Ftp::Operation parsed = OperationOf(operation);
    ::Ftp::Target target = Chosen->TargetOf(url);
    TransferThread().Perform(std::move(target), Chosen->Manner, std::move(parsed), CurrentFolder(),
                             ListenerOf(command));
}

// HTTP knows files and no session: GET alone fetches what the address names, GET with a name a file beside it.
void TransferComponent::StartHttpOperation(HttpRequest request, const QString& operation, quint64 command)
{
    if (operation.trimmed().compare(u"GET", Qt::CaseInsensitive) == 0) {
        StartFetch(std::move(request), command);
        return;
    }
    const ::Ftp::Operation parsed = OperationOf(operation);
    if (std::holds_alternative<::Ftp::Close>(parsed)) {
        CloseHttp(command);
        return;
    }
    const auto* receive = std::get_if<::Ftp::Receive>(&parsed);
    if (!receive)
        throw Impossible{::Ftp::OperationError, "By HTTP files can only be received; for everything else use FTP."};
    if (!receive->LocalGiven) ::Ftp::CheckLocalName(receive->Remote);
    request.Url = HttpUrlOfName(request.Url, BytesToText(ArrayOf(receive->Remote)));
    request.File = CurrentFolder() / receive->Local;
    StartFetch(std::move(request), command);
}

void TransferComponent::StartFetch(HttpRequest request, quint64 command)
{
    OverHttp = true;
    TransferThread().Download(std::move(request), ListenerOf(command));
}

void TransferComponent::CloseHttp(quint64 command)
{
    if (Thread) Thread->Drop();
    const auto close = [this, command] {
        Report(command, Disconnecting);
        Report(command, Disconnected);
        Finish(command, Ended{true, 0, {}, {}, {}, {}});
    };
    QMetaObject::invokeMethod(this, close, Qt::QueuedConnection);
}

void TransferComponent::OpenURL(const QString& address, DataType, WhenArrived whenArrived)
{
    if (Executing) throw RuntimeError("Still executing last request");
    const quint64 command = Begin();
    Arrived = std::move(whenArrived);
    std::filesystem::path file = std::exchange(NextReplyFile, {});
    if (!file.empty()) Stored = std::make_unique<ReplyFile>(file);
    try {
        Properties chosen = *Chosen;
        if (!SchemeOf(address).isEmpty()) chosen.Protocol = DefaultProtocol;
        const QString http = chosen.HttpSchemeOf(address);
        if (http.isEmpty()) {
            ::Ftp::Target target = chosen.TargetOf(address);
            TransferThread().Fetch(std::move(target), chosen.Manner, std::move(file), ListenerOf(command));
        } else {
            HttpRequest request = chosen.HttpRequestOf(address, http);
            request.File = std::move(file);
            StartFetch(std::move(request), command);
        }
    } catch (const Impossible& impossible) {
        FailSoon(impossible.Code, impossible.Sentence);
    }
}

quint64 TransferComponent::Begin()
{
    Executing = true;
    OverHttp = false;
    ForgetReply();
    return ++Number;
}

Worker& TransferComponent::TransferThread()
{
    if (!Thread) Thread = std::make_unique<Worker>(Ways);
    return *Thread;
}

void TransferComponent::ForgetReply()
{
    Reply.clear();
    ReplyTaken = 0;
    Bytes.clear();
    Stored.reset();
}

/// Turns what the engine tells into the component's own terms, on the transfer thread.
struct TransferComponent::Decoder {
    bool IsText;  ///< the reply is asked for as text, not as bytes

    Told operator()(int state) const { return state; }

    Told operator()(const std::string& line) const { return BytesToText(ArrayOf(line)); }

    Told operator()(const ::Ftp::Progress& progress) const
    {
        const auto expected = progress.Expected ? static_cast<qint64>(*progress.Expected) : qint64{-1};
        return Progress{static_cast<qint64>(progress.Done), expected, static_cast<qint64>(progress.Rate)};
    }

    Told operator()(const Worker::Question& question) const
    {
        return Doubt{question.Number, DoubtfulOf(question.Shown)};
    }

    Told operator()(const ::Ftp::Outcome& outcome) const
    {
        Ended ended{outcome.Good, outcome.Code, BytesToText(ArrayOf(outcome.Text)), {}, {}, {}};
        if (IsText)
            ended.Reply = BytesToText(ArrayOf(outcome.Reply));
        else
            ended.Bytes = ArrayOf(outcome.Reply);
        if (outcome.Transferred)
            ended.Transferred =
                Confirmation{static_cast<qint64>(outcome.Transferred->Bytes), outcome.Transferred->BySize};
        return ended;
    }
};

/// Tells what the transfer thread has noted.
class TransferComponent::Teller {
public:
    Teller(TransferComponent& component, quint64 command) : Component(component), Command(command) {}

    void operator()(int state) const { Component.Report(Command, state); }

    void operator()(const QString& line) const { emit Component.Remarked(line); }

    void operator()(const Progress& progress) const { Component.Show(Command, progress); }

    void operator()(const Doubt& doubt) const { Component.Judge(Command, doubt.Number, doubt.Shown); }

    void operator()(const Ended& ended) const { Component.Finish(Command, ended); }

private:
    TransferComponent& Component;
    quint64 Command;
};

// The transfer thread only hands over: everything is told on this object's thread, in order.
Worker::Listener TransferComponent::ListenerOf(quint64 command)
{
    return [this, command, isText = !OverHttp && !Arrived](std::vector<Worker::News> news) {
        std::vector<Told> told;
        told.reserve(news.size());
        for (Worker::News& one : news) told.push_back(std::visit(Decoder{isText}, std::move(one)));
        auto take = [this, command, told = std::move(told)] {
            for (const Told& one : told)
                Untold.push_back([this, command, one] { std::visit(Teller(*this, command), one); });
            TellNext();
        };
        QueuedCall::Post(*this, std::move(take));
    };
}

bool TransferComponent::event(QEvent* event)
{
    return QueuedCall::Make(*event) || Inet::event(event);
}

// One at a time: a listener may wait for the end of the command, in an event loop of its own, or end this object.
void TransferComponent::TellNext()
{
    if (Untold.empty()) return;
    const std::function<void()> tell = std::move(Untold.front());
    Untold.pop_front();
    if (!Untold.empty()) QMetaObject::invokeMethod(this, &TransferComponent::TellNext, Qt::QueuedConnection);
    tell();
}

void TransferComponent::FailSoon(int code, const QString& sentence)
{
    const auto fail = [this, command = Number, ended = Ended{false, code, sentence, {}, {}, {}}] {
        Finish(command, ended);
    };
    QMetaObject::invokeMethod(this, fail, Qt::QueuedConnection);
}

void TransferComponent::Report(quint64 command, int state)
{
    if (Executing && command == Number) emit StateChanged(state);
}

void TransferComponent::Show(quint64 command, const Progress& progress)
{
    if (Executing && command == Number) emit Progressed(progress);
}

// While the judge thinks, the command may be cancelled, or this object go away.
void TransferComponent::Judge(quint64 command, unsigned question, const DoubtfulCertificate& certificate)
{
    if (!Executing || command != Number) return;
    const QPointer<TransferComponent> self(this);
    const CertificateJudge trusts = Trusts;
    const bool accepted = trusts && trusts(certificate);
    if (self) Thread->Answer(question, accepted);
}

void TransferComponent::Finish(quint64 command, const Ended& ended)
{
    if (!Executing || command != Number) return;
    Code = ended.Code;
    Info = ended.Info;
    Reply = ended.Reply;
    Bytes = ended.Bytes;
    const WhenArrived arrived = std::exchange(Arrived, {});
    if (!ended.Good) Stored.reset();
    const qint64 size = Stored ? Stored->Size() : ended.Bytes.size();
    const Download download{ended.Good, ended.Good ? ended.Bytes : QByteArray(), ended.Good ? size : 0, Code, Info};
    Executing = false;
    if (ended.Transferred) emit Transferred(*ended.Transferred);
    if (command != Number || Executing) return;
    emit StateChanged(ended.Good ? ResponseCompleted : Error);
    if (arrived) arrived(download);
}

QString TransferComponent::GetChunk(int size, DataType type)
{
    if (Stored) return QString::fromLatin1(Stored->Next(size));
    if (type == ByteArray) {
        // Text that is asked for as bytes goes on as bytes, and the other way round.
        if (!Reply.isEmpty()) Bytes = TextToBytes(Reply.mid(std::exchange(ReplyTaken, 0)));
        Reply.clear();
        const QByteArray piece = Bytes.mid(ReplyTaken, size);
        ReplyTaken += piece.size();
        return QString::fromLatin1(piece);
    }
    if (!Bytes.isEmpty()) Reply = BytesToText(Bytes.mid(std::exchange(ReplyTaken, 0)));
    Bytes.clear();
    QString chunk = Reply.mid(ReplyTaken, size);
    ReplyTaken += chunk.size();
    return chunk;
}

bool TransferComponent::StillExecuting() const
{
    return Executing;
}

void TransferComponent::Cancel()
{
    if (!Executing) return;
    const bool wasOpen = Thread && Thread->Cancel();
    const quint64 command = Number;
    Code = ::Ftp::CancelledError;
    Info = "The command was cancelled.";
    const WhenArrived arrived = std::exchange(Arrived, {});
    Stored.reset();
    if (wasOpen) Report(command, Disconnected);
    if (command != Number || !Executing) return;
    Executing = false;
    emit StateChanged(None);
    if (arrived) arrived({false, {}, 0, ::Ftp::CancelledError, "The command was cancelled."});
}

int TransferComponent::ResponseCode() const
{
    return Code;
}

QString TransferComponent::ResponseInfo() const
{
    return Info;
}
