#include "support/proxy_server.h"

#include <QUrl>

namespace {

constexpr qint64 MostAhead = qint64{1024} * 1024;

/// Passes on what has come, no faster than it is taken.
void Move(QTcpSocket* from, QTcpSocket* to)
{
    while (from->bytesAvailable() > 0 && to->bytesToWrite() < MostAhead) to->write(from->read(MostAhead));
    if (from->state() == QAbstractSocket::UnconnectedState && from->bytesAvailable() == 0) to->disconnectFromHost();
}

int ByteAt(const QByteArray& text, qsizetype at)
{
    return static_cast<unsigned char>(text[at]);
}

}  // namespace

ProxyServer::ProxyServer()
{
    connect(&Listener, &QTcpServer::newConnection, this, &ProxyServer::Greet);
    if (!Listener.listen(QHostAddress::LocalHost)) qFatal("no port to listen on");
}

ProxyServer::~ProxyServer()
{
    const QList<QTcpSocket*> sockets = Clients.keys();
    for (QTcpSocket* socket : sockets) Forget(socket);
}

QString ProxyServer::Url(const QString& scheme) const
{
    const QString who = User.isEmpty() ? QString() : QString::fromLatin1(User + ':' + Password + '@');
    return scheme + "://" + who + "127.0.0.1:" + QString::number(Port());
}

void ProxyServer::Greet()
{
    while (QTcpSocket* socket = Listener.nextPendingConnection()) {
        socket->setReadBufferSize(MostAhead);
        Clients.insert(socket, {});
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { Read(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            if (Clients[socket].Step != Through) Forget(socket);
        });
    }
}

void ProxyServer::Forget(QTcpSocket* socket)
{
    const Client client = Clients.take(socket);
    socket->disconnect(this);
    socket->deleteLater();
    if (client.Server) client.Server->deleteLater();
}

void ProxyServer::Read(QTcpSocket* socket)
{
    Client& client = Clients[socket];
    if (client.Step == Through) return;
    client.Buffer += socket->readAll();
    const bool isSocks = client.Step != AtStart || client.Buffer.startsWith('\5');
    while (client.Step != Through && (isSocks ? TakeSocks(socket, client) : TakeHttp(socket, client))) {}
}

bool ProxyServer::TakeHttp(QTcpSocket* socket, Client& client)
{
    const qsizetype end = client.Buffer.indexOf("\r\n\r\n");
    if (end < 0) return false;
    QByteArray head = client.Buffer.first(end + 4);
    client.Buffer.remove(0, end + 4);
    const QByteArray known = "Proxy-Authorization: Basic " + (User + ':' + Password).toBase64() + "\r\n";
    if (!User.isEmpty() && !head.contains(known)) {
        ++Refusals;
        socket->write("HTTP/1.1 407 Who is it\r\nProxy-Authenticate: Basic realm=\"proxy\"\r\n"
                      "Content-Length: 0\r\n\r\n");
        return true;
    }
    head.replace(known, "");
    const QByteArray target = head.split(' ').value(1);
    if (head.startsWith("CONNECT ")) {
        Lead(socket, target, "HTTP/1.1 200 go on\r\n\r\n", {});
        return false;
    }
    const QUrl url(QString::fromLatin1(target));
    const QByteArray path = url.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority);
    Lead(socket, url.host().toLatin1() + ':' + QByteArray::number(url.port(80)), {}, head.replace(target, path));
    return false;
}

bool ProxyServer::TakeSocks(QTcpSocket* socket, Client& client)
{
    const QByteArray text = client.Buffer;
    if (client.Step == AtStart) {
        if (text.size() < 2 || text.size() < 2 + ByteAt(text, 1)) return false;
        client.Buffer.remove(0, 2 + ByteAt(text, 1));
        client.Step = User.isEmpty() ? AtRequest : AtWords;
        socket->write(User.isEmpty() ? QByteArray("\5\0", 2) : QByteArray("\5\2", 2));
        return true;
    }
    if (client.Step == AtWords) {
        const QByteArray known =
            '\1' + QByteArray(1, char(User.size())) + User + QByteArray(1, char(Password.size())) + Password;
        if (text.size() < known.size()) return false;
        client.Buffer.remove(0, known.size());
        client.Step = AtRequest;
        const bool isKnown = text.startsWith(known);
        socket->write(isKnown ? QByteArray("\1\0", 2) : QByteArray("\1\1", 2));
        if (isKnown) return true;
        ++Refusals;
        socket->disconnectFromHost();
        return false;
    }
    if (text.size() < 5) return false;
    const bool isName = text[3] == 3;
    const qsizetype size = isName ? 7 + ByteAt(text, 4) : 10;
    if (text.size() < size) return false;
    client.Buffer.remove(0, size);
    const QByteArray host = isName ? text.mid(5, ByteAt(text, 4)) : QByteArray("127.0.0.1");
    const int port = ByteAt(text, size - 2) << 8 | ByteAt(text, size - 1);
    Lead(socket, host + ':' + QByteArray::number(port), QByteArray("\5\0\0\1\0\0\0\0\0\0", 10), {});
    return false;
}

void ProxyServer::Lead(QTcpSocket* socket, const QByteArray& target, const QByteArray& consent, const QByteArray& head)
{
    Targets << target;
    auto* server = new QTcpSocket(this);
    server->setReadBufferSize(MostAhead);
    Client& client = Clients[socket];
    client.Server = server;
    client.Step = Through;
    const QByteArray rest = std::exchange(client.Buffer, {});
    connect(server, &QTcpSocket::connected, this, [socket, server, consent, first = head + rest] {
        socket->write(consent);
        server->write(first);
        Move(socket, server);
    });
    for (const auto& [from, to] : {std::pair(socket, server), std::pair(server, socket)}) {
        const auto move = [source = from, target = to] { Move(source, target); };
        connect(from, &QTcpSocket::readyRead, this, move);
        connect(to, &QTcpSocket::bytesWritten, this, move);
        connect(from, &QTcpSocket::disconnected, this, move);
    }
    connect(server, &QTcpSocket::errorOccurred, this, [socket, server] {
        if (server->state() != QAbstractSocket::ConnectedState) socket->disconnectFromHost();
    });
    server->connectToHost(QHostAddress::LocalHost,
                          static_cast<quint16>(target.mid(target.lastIndexOf(':') + 1).toInt()));
}
