#pragma once

#include "inet/inet.h"

#include <QHash>
#include <QList>
#include <QStringList>
#include <functional>

/// A transfer component that records what the program does to it and answers from a script, without any network.
///
/// By default every command runs through the event loop to its end: states 5 6 7 8 12 with an empty reply, "CLOSE"
/// 9 10 12, and "CLOSE" without an address silently. User-interface thread.
class RecordingInet final : public Inet {
    Q_OBJECT

public:
    /// How one command ends. With a code it fails: state 11 in place of 12.
    struct Outcome {
        QString Reply;
        int Code = 0;
        QString Info;
    };

    explicit RecordingInet(QObject* parent = nullptr);

    /// Everything done to the component, in order: "URL = ftp://x", "RemotePort = 21", "Execute ftp://x | DIR",
    /// "Execute ftp://x | LS  | line" (with input data), "Cancel", "OpenURL http://x/msg.txt".
    QStringList Lines;
    /// The operation texts of all Execute calls alone.
    QStringList Operations() const;

    /// Starts the record anew; the session goes on.
    void Forget() { Lines.clear(); }

    /// Decides how a command ends; asked when its last state is due. Without it `Replies` decides.
    std::function<Outcome(const QString& operation)> Respond;
    /// Replies by whole operation text.
    QHash<QString, QString> Replies;
    /// The next command fails with this code and text.
    void FailNext(int code, const QString& info);
    /// The property of this name ("Protocol") throws this description when it is set, "Execute" when it is called.
    void Refuse(const QString& member, const QString& description);

    /// From now on a command stays running after it has begun, until Release, Complete, Fail or Cancel.
    void Hold() { Held = true; }

    /// Cancel is recorded and otherwise without effect, this many times.
    int DeafToCancels = 0;

    /// Lets the held command, and those to come, run through the event loop.
    void Release();
    /// Ends the running command now: state 12 with this reply, or state 11.
    void Complete(const QString& reply = {});
    void Fail(int code, const QString& info);

    /// Reports a state by hand; the running command, if any, goes on.
    void Report(int state) { emit StateChanged(state); }

    void Remark(const QString& line) { emit Remarked(line); }

    /// What ResponseCode and ResponseInfo return.
    void SetResponse(int code, const QString& info);
    /// What OpenURL hands over.
    QByteArray DownloadBytes;

    int ChunksTaken = 0;
    bool ListingLineHelp = true;
    bool MoreToCome = false;
    int TimesReady = 0;  ///< how often GetReady was called
    CertificateJudge Judge;

    /// With a reply file ("ReplyFile = path") DownloadBytes are written to it, and GetChunk hands them out.
    void SetReplyFile(const QString& path) override;
    void SetAccessType(int access) override;
    void SetProxy(const QString& proxy) override;
    void SetURL(const QString& url) override;

    QString URL() const override { return Address; }

    void SetUserName(const QString& user) override;
    void SetPassword(const QString& password) override;
    void SetRemotePort(int port) override;
    void SetProtocol(int protocol) override;
    void SetRequestTimeout(int seconds) override;
    void Execute(const QString& url, const QString& operation, const QString& inputData = {}) override;
    void OpenURL(const QString& address, DataType type, WhenArrived whenArrived) override;
    QString GetChunk(int size, DataType type = Text) override;

    bool StillExecuting() const override { return Busy; }

    void Cancel() override;

    int ResponseCode() const override { return Code; }

    QString ResponseInfo() const override { return Info; }

    void SetCertificateJudge(CertificateJudge judge) override { Judge = std::move(judge); }

    void SetListingLineHelp(bool on) override { ListingLineHelp = on; }

    void SetMoreToCome(bool more) override { MoreToCome = more; }

    void GetReady() override { ++TimesReady; }

private:
    void Put(const QString& member, const QString& value);
    void ThrowWhenRefused(const QString& member) const;
    void Begin(const QString& operation);
    Outcome OutcomeOf(const QString& operation);
    void StoreReply() const;
    void Schedule();
    void Advance();
    void End(int state);

    QHash<QString, QString> Refused;
    QList<Outcome> NextFailures;
    QString Address;
    QString Operation;  ///< of the running command
    QList<int> Ahead;   ///< its states still to come, the final one excluded
    int CommandNumber = 0;
    WhenArrived Arrival;
    QString Reply;
    qsizetype Taken = 0;  ///< of the reply's characters
    int Code = 0;
    QString Info;
    bool Busy = false;
    bool Held = false;
    bool IntoFile = false;  ///< the next download
    QString ReplyPath;      ///< of that file
    bool SessionOpen = false;
};
