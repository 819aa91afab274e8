#include "inet/transfer_component.h"

#include "base/byte_text.h"
#include "base/run_time_error.h"
#include "inet/ftp/address.h"
#include "inet/ftp/failure.h"

#include <algorithm>
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

    ::Ftp::Target TargetOf(const QString& url) const;
};

/// How a command ended, with its texts decoded on the transfer thread already.
struct TransferComponent::Ended {
    bool Good = false;
    int Code = 0;
    QString Info;
    QString Reply;
    QByteArray Bytes;
    std::optional<Confirmation> Transferred;
};

namespace {

constexpr int FtpPort = 21;

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

Ftp::Operation OperationOf(const QString& text)
{
    if (std::optional<::Ftp::Operation> operation = ::Ftp::ParseOperation(BytesOf(text))) return std::move(*operation);
    throw Impossible{::Ftp::OperationError, "The command is not understood: " + text};
}

std::filesystem::path CurrentFolder()
{
    std::error_code error;
    std::filesystem::path folder = std::filesystem::current_path(error);
    if (error) throw Impossible{::Ftp::InternalError, "The current folder on this computer is gone."};
    return folder;
}

}  // namespace

// What the address holds counts where the property of the same meaning says nothing. An address may hold a password,
// so no sentence repeats it.
Ftp::Target TransferComponent::Properties::TargetOf(const QString& url) const
{
    if (AccessType == NamedProxy)
        throw Impossible{::Ftp::ConnectError, "Connections through a proxy are not possible yet."};
    const std::optional<::Ftp::Address> address = ::Ftp::ParseAddress(BytesOf(url.trimmed()));
    if (!address) throw Impossible{::Ftp::AddressError, "The address is not understood."};
    const bool isFtp = address->Scheme == "ftp" || address->Scheme.empty();
    if (!isFtp || Protocol == Http || Protocol == SecureHttp)
        throw Impossible{::Ftp::SchemeError, "Only FTP addresses can be used."};
    ::Ftp::Target target;
    target.Host = address->Host;
    const bool addressDecides = RemotePort == 0 || RemotePort == FtpPort;
    const int port = addressDecides && address->Port != 0 ? address->Port : RemotePort;
    target.Port = static_cast<std::uint16_t>(port == 0 ? FtpPort : port);
    target.User = BytesOf(UserName);
    target.Password = BytesOf(Password);
    if (UserName.isEmpty() && address->HasUser && !address->User.empty()) {
        target.User = address->User;
        if (!address->Password.empty()) target.Password = address->Password;
    }
    target.Path = address->Path;
    return target;
}

TransferComponent::TransferComponent(QObject* parent) : Inet(parent), Chosen(std::make_unique<Properties>()) {}

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

void TransferComponent::SetListingLineHelp(bool on)
{
    Chosen->Manner.ListingLineHelp = on;
}

void TransferComponent::SetMoreToCome(bool more)
{
    Chosen->Manner.MoreToCome = more;
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
        ::Ftp::Operation parsed = OperationOf(operation);
        Thread->Perform(Chosen->TargetOf(url), Chosen->Manner, std::move(parsed), CurrentFolder(), ListenerOf(command));
    } catch (const Impossible& impossible) {
        FailSoon(impossible.Code, impossible.Sentence);
    }
}

void TransferComponent::OpenURL(const QString& address, DataType, WhenArrived whenArrived)
{
    if (Executing) throw RuntimeError("Still executing last request");
    const quint64 command = Begin();
    Arrived = std::move(whenArrived);
    try {
        Thread->Fetch(Chosen->TargetOf(address), Chosen->Manner, ListenerOf(command));
    } catch (const Impossible& impossible) {
        FailSoon(impossible.Code, impossible.Sentence);
    }
}

quint64 TransferComponent::Begin()
{
    if (!Thread) Thread = std::make_unique<Worker>();
    Executing = true;
    Reply.clear();
    ReplyTaken = 0;
    return ++Number;
}

/// Turns what the engine tells into the component's own terms, on the transfer thread.
struct TransferComponent::Decoder {
    Told operator()(int state) const { return state; }

    Told operator()(const std::string& line) const { return BytesToText(ArrayOf(line)); }

    Told operator()(const ::Ftp::Progress& progress) const
    {
        const auto expected = progress.Expected ? static_cast<qint64>(*progress.Expected) : qint64{-1};
        return Progress{static_cast<qint64>(progress.Done), expected, static_cast<qint64>(progress.Rate)};
    }

    Told operator()(const ::Ftp::Outcome& outcome) const
    {
        Ended ended{outcome.Good, outcome.Code, BytesToText(ArrayOf(outcome.Text)), {}, ArrayOf(outcome.Reply), {}};
        ended.Reply = BytesToText(ended.Bytes);
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

    void operator()(const Ended& ended) const { Component.Finish(Command, ended); }

private:
    TransferComponent& Component;
    quint64 Command;
};

// The transfer thread only hands over: everything is told on this object's thread, in order.
Worker::Listener TransferComponent::ListenerOf(quint64 command)
{
    return [this, command](std::vector<Worker::News> news) {
        std::vector<Told> told;
        told.reserve(news.size());
        for (Worker::News& one : news) told.push_back(std::visit(Decoder{}, std::move(one)));
        const auto tell = [this, command, told = std::move(told)] {
            for (const Told& one : told) std::visit(Teller(*this, command), one);
        };
        QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
    };
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

void TransferComponent::Finish(quint64 command, const Ended& ended)
{
    if (!Executing || command != Number) return;
    Code = ended.Code;
    Info = ended.Info;
    Reply = ended.Reply;
    const WhenArrived arrived = std::exchange(Arrived, {});
    const Download download{ended.Good, ended.Good ? ended.Bytes : QByteArray(), Code, Info};
    Executing = false;
    if (ended.Transferred) emit Transferred(*ended.Transferred);
    if (command != Number || Executing) return;
    emit StateChanged(ended.Good ? ResponseCompleted : Error);
    if (arrived) arrived(download);
}

QString TransferComponent::GetChunk(int size, DataType)
{
    const QString chunk = Reply.mid(ReplyTaken, size);
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
    const bool wasOpen = Thread->Cancel();
    const quint64 command = Number;
    Code = ::Ftp::CancelledError;
    Info = "The command was cancelled.";
    const WhenArrived arrived = std::exchange(Arrived, {});
    if (wasOpen) Report(command, Disconnected);
    if (command != Number || !Executing) return;
    Executing = false;
    emit StateChanged(None);
    if (arrived) arrived({false, {}, ::Ftp::CancelledError, "The command was cancelled."});
}

int TransferComponent::ResponseCode() const
{
    return Code;
}

QString TransferComponent::ResponseInfo() const
{
    return Info;
}
