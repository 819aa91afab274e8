#pragma once

#include "inet/inet.h"
#include "inet/reply_file.h"
#include "inet/worker.h"

#include <memory>

/// The transfer component that talks to servers. A thread of its own, begun with the first command, carries the
/// conversation; everything here happens on the user-interface thread. Going away ends a running command and returns
/// within a fraction of a second, whatever the server does.
class TransferComponent final : public Inet {
    Q_OBJECT

public:
    explicit TransferComponent(QObject* parent = nullptr);
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
    void SetListingLineHelp(bool on) override;

private:
    struct Properties;
    struct Ended;

    quint64 Begin();
    Worker::Listener ListenerOf(quint64 command);
    void Report(quint64 command, int state);
    void Finish(quint64 command, const Ended& ended);
    void FailSoon(int code, const QString& sentence);
    void ForgetReply();

    std::unique_ptr<Properties> Chosen;
    std::unique_ptr<Worker> Thread;  ///< begun with the first command
    quint64 Number = 0;              ///< of the command begun last; nothing of an older one is reported any more
    bool Executing = false;
    WhenArrived Arrived;  ///< of the OpenURL that runs
    int Code = 0;
    QString Info;
    QString Reply;  ///< of the last command, unless it went into a file
    qsizetype ReplyTaken = 0;
    bool InBytes = false;                 ///< what is left of it has been asked for as bytes
    std::filesystem::path NextReplyFile;  ///< of the next OpenURL
    std::unique_ptr<ReplyFile> Stored;    ///< of the last one, where it went into a file
};
