#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QHash>
#include <QObject>
#include <QTcpServer>
#include <QTcpSocket>
#include <functional>
#include <memory>

/// A small FTP server on a free loopback port, with its files in memory, that runs on the event loop of the test.
/// It logs everybody in and does what a test tells it beyond that.
class LoopbackServer final : public QObject {
public:
    LoopbackServer();
    ~LoopbackServer() override;

    int Port() const { return Control.serverPort(); }

    QByteArray Listing = "first\r\nsecond\r\n";
    QHash<QByteArray, QByteArray> Files;
    /// Verbs that get this reply and nothing else; an empty one: no reply at all.
    QHash<QByteArray, QByteArray> Answers;
    /// Data is sent up to here, and then the rest is held back.
    qsizetype DataLimit = -1;
    bool Greets = true;

    /// Everything that was said, in order, over all connections.
    QByteArrayList Commands;
    int Connections = 0;

    /// Connections that the client has not closed yet.
    qsizetype OpenConnections() const { return Clients.size(); }

    /// Ends all control connections on this side; they count as open until the clients have closed theirs.
    void HangUp();

private:
    struct Client {
        QTcpSocket* Socket = nullptr;
        std::unique_ptr<QTcpServer> Data;
        QByteArray Buffer;
    };

    void Greet();
    void Forget(QTcpSocket* socket);
    void Read(const std::shared_ptr<Client>& client);
    void Obey(const std::shared_ptr<Client>& client, const QByteArray& verb, const QByteArray& name);
    void OpenPort(const std::shared_ptr<Client>& client);
    void WithData(const std::shared_ptr<Client>& client, const std::function<void(QTcpSocket*)>& call);
    void SendData(const std::shared_ptr<Client>& client, const QByteArray& bytes);
    void TakeData(const std::shared_ptr<Client>& client, const QByteArray& name);
    static void Tell(const std::shared_ptr<Client>& client, const QByteArray& line);

    QTcpServer Control;
    QHash<QTcpSocket*, std::shared_ptr<Client>> Clients;
};
