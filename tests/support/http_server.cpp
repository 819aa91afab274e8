#include "support/http_server.h"

#include <QTimer>
#include <algorithm>
#ifdef _WIN32
#include <winsock2.h>
#else
#include <sys/socket.h>
#endif

HttpServer::HttpServer(const std::optional<HttpCertificate>& certificate) : Shown(certificate)
{
    connect(&Listener, &QTcpServer::newConnection, this, &HttpServer::Greet);
    if (!Listener.listen(QHostAddress::LocalHost)) qFatal("no port to listen on");
}

HttpServer::~HttpServer()
{
    const QList<QTcpSocket*> sockets = Clients.keys();
    for (QTcpSocket* socket : sockets) Forget(socket);
}

QString HttpServer::Url(const QString& path) const
{
    return QStringLiteral("%1://127.0.0.1:%2%3").arg(Shown ? "https" : "http").arg(Port()).arg(path);
}

QByteArray HttpServer::Whole(const QByteArray& status, const QByteArray& body, const QByteArray& header)
{
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" + header + "\r\n" +
           body;
}

HttpServer::Answer HttpServer::Redirect(const QByteArray& location)
{
    return {Whole("302 Found", "gone elsewhere", "Location: " + location + "\r\n")};
}

void HttpServer::Greet()
{
    while (QTcpSocket* socket = Listener.nextPendingConnection()) {
        Clients.insert(socket, {});
        if (Shown) Clients[socket].Tls = std::make_shared<ServerTls>(*Shown);
        ++Connections;
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { Read(socket); });
        connect(socket, &QTcpSocket::bytesWritten, this, [this, socket] { Fill(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] { Forget(socket); });
        KeepTrying(socket);
        Read(socket);
    }
}

// The toolkit turns a socket's messages off while it handles one. Wine never tells of a reset that comes just then
// (Windows does, once they are on again); whoever writes finds out.
void HttpServer::KeepTrying(QTcpSocket* socket)
{
    constexpr int Pause = 100;
    auto* beat = new QTimer(socket);
    connect(beat, &QTimer::timeout, socket, &QTcpSocket::flush);
    beat->start(Pause);
}

void HttpServer::HangUp()
{
    const QList<QTcpSocket*> sockets = Clients.keys();
    for (QTcpSocket* socket : sockets) socket->abort();
}

void HttpServer::Forget(QTcpSocket* socket)
{
    if (Clients.remove(socket) == 0) return;
    socket->disconnect(this);
    socket->deleteLater();
}

void HttpServer::Read(QTcpSocket* socket)
{
    Client& client = Clients[socket];
    QByteArray& buffer = client.Buffer;
    if (client.Tls) {
        buffer += client.Tls->Take(socket->readAll());
        socket->write(client.Tls->Outgoing());
        if (client.Tls->HasFailed()) {
            socket->disconnectFromHost();
            return;
        }
    } else {
        buffer += socket->readAll();
    }
    const qsizetype end = buffer.indexOf("\r\n\r\n");
    if (end < 0) return;
    const QByteArrayList lines = buffer.first(end).split('\n');
    buffer.remove(0, end + 4);
    Request request;
    request.Line = lines.first().trimmed();
    request.Path = request.Line.split(' ').value(1);
    for (const QByteArray& line : lines.mid(1)) {
        const qsizetype colon = line.indexOf(':');
        request.Headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
    }
    Requests << request;
    const Answer missing{Whole("404 Not Found", "no such file")};
    Obey(socket, Respond ? Respond(request) : Answers.value(request.Path, missing));
}

void HttpServer::Send(QTcpSocket* socket, const QByteArray& bytes)
{
    const std::shared_ptr<ServerTls>& tls = Clients[socket].Tls;
    if (tls) tls->Put(bytes);
    socket->write(tls ? tls->Outgoing() : bytes);
}

void HttpServer::Obey(QTcpSocket* socket, const Answer& answer)
{
    Client& client = Clients[socket];
    client.Then = answer.Then;
    client.Filling = answer.Filling;
    client.Drips = answer.InDrops;
    if (answer.InDrops) {
        Drip(socket, answer.Bytes);
        return;
    }
    Send(socket, answer.Bytes);
    Fill(socket);
}

void HttpServer::Drip(QTcpSocket* socket, const QByteArray& bytes)
{
    if (!Clients.contains(socket)) return;
    Send(socket, bytes.first(1));
    if (bytes.size() > 1)
        QTimer::singleShot(0, socket, [this, socket, rest = bytes.mid(1)] { Drip(socket, rest); });
    else
        Finish(socket);
}

// No more than a piece ahead of what the system takes.
void HttpServer::Fill(QTcpSocket* socket)
{
    constexpr qint64 Piece = qint64{256} * 1024;
    Client& client = Clients[socket];
    if (client.Drips) return;
    while (client.Filling > 0 && socket->bytesToWrite() < Piece) {
        const qint64 size = std::min(client.Filling, Piece);
        client.Filling -= size;
        Sent += size;
        Send(socket, QByteArray(size, 'x'));
    }
    if (client.Filling == 0) Finish(socket);
}

void HttpServer::Finish(QTcpSocket* socket)
{
    switch (Clients[socket].Then) {
    case Answer::Stay:
        return;
    case Answer::Close:
        if (const std::shared_ptr<ServerTls>& tls = Clients[socket].Tls) {
            tls->End();
            socket->write(tls->Outgoing());
        }
        socket->disconnectFromHost();
        return;
    case Answer::Reset:
        if (socket->bytesToWrite() > 0) return;
        // Not from within the socket's own doings.
        QTimer::singleShot(0, socket, [socket] {
            const linger hard{1, 0};
#ifdef _WIN32
            ::setsockopt(static_cast<SOCKET>(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER,
                         reinterpret_cast<const char*>(&hard), sizeof hard);
#else
            ::setsockopt(static_cast<int>(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
#endif
            socket->abort();
        });
        return;
    }
}
