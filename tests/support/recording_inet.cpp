#include "support/recording_inet.h"

#include "base/run_time_error.h"

#include <QFile>
#include <QTimer>
#include <utility>

RecordingInet::RecordingInet(QObject* parent) : Inet(parent) {}

QStringList RecordingInet::Operations() const
{
    QStringList operations;
    for (const QString& line : Lines)
        if (line.startsWith("Execute ")) operations += line.section(" | ", 1, 1);
    return operations;
}

void RecordingInet::FailNext(int code, const QString& info)
{
    NextFailures += Outcome{{}, code, info};
}

void RecordingInet::Refuse(const QString& member, const QString& description)
{
    Refused[member] = description;
}

void RecordingInet::ThrowWhenRefused(const QString& member) const
{
    if (Refused.contains(member)) throw RuntimeError(Refused[member]);
}

void RecordingInet::Put(const QString& member, const QString& value)
{
    ThrowWhenRefused(member);
    Lines += member + " = " + value;
}

void RecordingInet::SetAccessType(int access)
{
    Put("AccessType", QString::number(access));
}

void RecordingInet::SetProxy(const QString& proxy)
{
    Put("Proxy", proxy);
}

void RecordingInet::SetURL(const QString& url)
{
    Put("URL", url);
    Address = url;
}

void RecordingInet::SetUserName(const QString& user)
{
    Put("UserName", user);
}

void RecordingInet::SetPassword(const QString& password)
{
    Put("Password", password);
}

void RecordingInet::SetRemotePort(int port)
{
    Put("RemotePort", QString::number(port));
}

void RecordingInet::SetProtocol(int protocol)
{
    Put("Protocol", QString::number(protocol));
}

void RecordingInet::SetRequestTimeout(int seconds)
{
    Put("RequestTimeout", QString::number(seconds));
}

void RecordingInet::Execute(const QString& url, const QString& operation, const QString& inputData)
{
    ThrowWhenRefused("Execute");
    if (Busy) throw RuntimeError("Still executing last request");
    Lines += "Execute " + url + " | " + operation + (inputData.isEmpty() ? QString() : " | " + inputData);
    if (url.isEmpty() && operation == u"CLOSE") {
        SessionOpen = false;
        return;
    }
    Begin(operation);
    Schedule();
}

void RecordingInet::SetReplyFile(const QString& path)
{
    Put("ReplyFile", path);
    IntoFile = !path.isEmpty();
    ReplyPath = path;
}

void RecordingInet::OpenURL(const QString& address, DataType, WhenArrived whenArrived)
{
    ThrowWhenRefused("OpenURL");
    if (Busy) throw RuntimeError("Still executing last request");
    Lines += "OpenURL " + address;
    Arrival = std::move(whenArrived);
    Begin("OpenURL");
    Schedule();
}

void RecordingInet::Begin(const QString& operation)
{
    Busy = true;
    Operation = operation;
    ++CommandNumber;
    Ahead = operation == u"CLOSE" || operation == u"QUIT"
                ? QList<int>{Disconnecting, Disconnected}
                : QList<int>{Requesting, RequestSent, ReceivingResponse, ResponseReceived};
}

void RecordingInet::Schedule()
{
    if (Held) return;
    QTimer::singleShot(0, this, [this, number = CommandNumber] {
        if (Busy && !Held && number == CommandNumber) Advance();
    });
}

void RecordingInet::Advance()
{
    if (!Ahead.isEmpty()) {
        const int number = CommandNumber;
        const int state = Ahead.takeFirst();
        SessionOpen = state != Disconnected;
        emit StateChanged(state);
        if (Busy && number == CommandNumber) Schedule();
        return;
    }
    const Outcome outcome = OutcomeOf(Operation);
    if (outcome.Code != 0)
        Fail(outcome.Code, outcome.Info);
    else
        Complete(outcome.Reply);
}

RecordingInet::Outcome RecordingInet::OutcomeOf(const QString& operation)
{
    if (!NextFailures.isEmpty()) return NextFailures.takeFirst();
    if (Respond) return Respond(operation);
    return {Replies.value(operation), 0, {}};
}

void RecordingInet::Release()
{
    Held = false;
    if (Busy) Schedule();
}

void RecordingInet::Complete(const QString& reply)
{
    Reply = reply;
    Taken = 0;
    End(ResponseCompleted);
}

void RecordingInet::Fail(int code, const QString& info)
{
    SetResponse(code, info);
    Reply.clear();
    End(Error);
}

// As in the component itself: idle first, then the report, so that a listener may issue the next command.
void RecordingInet::End(int state)
{
    Busy = false;
    Ahead.clear();
    const WhenArrived arrival = std::exchange(Arrival, nullptr);
    Download download{state == ResponseCompleted, {}, 0, Code, Info};
    if (arrival && download.Arrived) {
        download.Size = DownloadBytes.size();
        if (std::exchange(IntoFile, false)) {
            Reply = QString::fromLatin1(DownloadBytes);
            StoreReply();
        } else {
            download.Bytes = DownloadBytes;
        }
    }
    emit StateChanged(state);
    if (arrival) arrival(download);
}

void RecordingInet::StoreReply() const
{
    QFile file(ReplyPath);
    if (file.open(QIODevice::WriteOnly)) file.write(DownloadBytes);
}

void RecordingInet::SetResponse(int code, const QString& info)
{
    Code = code;
    Info = info;
}

QString RecordingInet::GetChunk(int size, DataType)
{
    ++ChunksTaken;
    const QString chunk = Reply.mid(Taken, size);
    Taken += chunk.size();
    return chunk;
}

void RecordingInet::Cancel()
{
    Lines += "Cancel";
    if (!Busy || (DeafToCancels > 0 && DeafToCancels-- > 0)) return;
    ++CommandNumber;
    if (std::exchange(SessionOpen, false)) emit StateChanged(Disconnected);
    if (Busy) End(None);
}
