#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QHash>
#include <QObject>
#include <QTcpServer>
#include <QTcpSocket>

/// A small proxy on a free loopback port, for CONNECT, plain HTTP and SOCKS5 alike. Whatever host it is asked for, it
/// leads to this computer. It runs on the event loop of the test.
class ProxyServer final : public QObject {
public:
    ProxyServer();
    ~ProxyServer() override;

    int Port() const { return Listener.serverPort(); }

    /// "socks5://127.0.0.1:port", and with user and password where they are wanted.
    QString Url(const QString& scheme) const;

    /// Who may use it; empty: everybody.
    QByteArray User;
    QByteArray Password;

    /// "files.test:21", in order; of plain HTTP too.
    QByteArrayList Targets;
    int Refusals = 0;  ///< requests of nobody it knows

private:
    enum Steps { AtStart, AtWords, AtRequest, Through };

    struct Client {
        Steps Step = AtStart;
        QTcpSocket* Server = nullptr;
        QByteArray Buffer;
    };

    void Greet();
    void Read(QTcpSocket* socket);
    bool TakeHttp(QTcpSocket* socket, Client& client);
    bool TakeSocks(QTcpSocket* socket, Client& client);
    void Lead(QTcpSocket* socket, const QByteArray& target, const QByteArray& consent, const QByteArray& head);
    void Forget(QTcpSocket* socket);

    QTcpServer Listener;
    QHash<QTcpSocket*, Client> Clients;
};
