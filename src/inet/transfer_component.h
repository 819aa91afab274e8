#pragma once

#include "inet/inet.h"
#include "inet/reply_file.h"
#include "inet/worker.h"

#include <deque>
#include <functional>
#include <memory>
#include <variant>

/// The transfer component that talks to servers. A thread of its own, begun with the first command, carries the
/// conversations by FTP and the downloads by HTTP; everything here happens on the user-interface thread.
/// Going away ends a running command and returns within a fraction of a second, whatever the server does.
class TransferComponent final : public Inet {
    Q_OBJECT

public:
    /// `ways` remembers how the servers' data is reached, for as many components as are given it; none: each
    /// remembers for itself.
    explicit TransferComponent(std::shared_ptr<::Ftp::DataWayBook> ways = {}, QObject* parent = nullptr);
    ~TransferComponent() override;

    void SetAccessType(int access) override;
    void SetProxy(const QString& proxy) override;
    void SetURL(const QString& url) override;
    QString URL() const override;
    void SetUserName(const QString& user) override;
    void SetPassword(const QString& password) override;
    void SetRemotePort(int port) override;
    void SetProtocol(int protocol) override;
    void SetRequestTimeout(int seconds) override;

    void Execute(const QString& url, const QString& operation, const QString& inputData = {}) override;
    void OpenURL(const QString& address, DataType type, WhenArrived whenArrived) override;
    void SetReplyFile(const QString& path) override;
    QString GetChunk(int size, DataType type = Text) override;
    bool StillExecuting() const override;
    void Cancel() override;

    int ResponseCode() const override;
    QString ResponseInfo() const override;
    void SetCertificateJudge(CertificateJudge judge) override;
    void SetListingLineHelp(bool on) override;
    void SetMoreToCome(bool more) override;
    void GetReady() override;

    bool event(QEvent* event) override;

private:
    struct Properties;
    struct Ended;
    struct Doubt;
    struct Decoder;
    class Teller;
    using Told = std::variant<int, QString, Progress, Doubt, Ended>;

    quint64 Begin();
    void StartFetch(HttpRequest request, quint64 command);
    void StartOperation(const QString& url, const QString& operation, quint64 command);
    void StartHttpOperation(HttpRequest request, const QString& operation, quint64 command);
    void CloseHttp(quint64 command);
    Worker& TransferThread();
    Worker::Listener ListenerOf(quint64 command);
    void Report(quint64 command, int state);
    void Show(quint64 command, const Progress& progress);
    void Judge(quint64 command, unsigned question, const DoubtfulCertificate& certificate);
    void Finish(quint64 command, const Ended& ended);
    void TellNext();
    void FailSoon(int code, const QString& sentence);
    void ForgetReply();

    std::unique_ptr<Properties> Chosen;
    std::shared_ptr<::Ftp::DataWayBook> Ways;
    std::unique_ptr<Worker> Thread;  ///< begun with the first command
    bool OverHttp = false;           ///< the command begun last
    quint64 Number = 0;              ///< of the command begun last; nothing of an older one is reported any more
    bool Executing = false;
    std::deque<std::function<void()>> Untold;  ///< what the transfer thread has noted
    CertificateJudge Trusts;
    WhenArrived Arrived;  ///< of the OpenURL that runs
    int Code = 0;
    QString Info;
    QString Reply;     ///< of the last command, where it is text
    QByteArray Bytes;  ///< the same, where it is bytes
    qsizetype ReplyTaken = 0;
    std::filesystem::path NextReplyFile;  ///< of the next OpenURL
    std::unique_ptr<ReplyFile> Stored;    ///< of the last one, where it went into a file
};
