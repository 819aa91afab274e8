#include "support/loopback_server.h"

#ifdef _WIN32
#include <winsock2.h>
#else
#include <sys/socket.h>
#endif

namespace {

#ifdef _WIN32
constexpr int SendingSide = SD_SEND;
#else
constexpr int SendingSide = SHUT_WR;
#endif

}  // namespace

LoopbackServer::LoopbackServer()
{
    connect(&Control, &QTcpServer::newConnection, this, &LoopbackServer::Greet);
    if (!Control.listen(QHostAddress::LocalHost)) qFatal("no port to listen on");
}

LoopbackServer::~LoopbackServer()
{
    const QList<QTcpSocket*> sockets = Clients.keys();
    for (QTcpSocket* socket : sockets) Forget(socket);
}

void LoopbackServer::HangUp()
{
    const QList<QTcpSocket*> sockets = Clients.keys();
    for (QTcpSocket* socket : sockets) ::shutdown(static_cast<int>(socket->socketDescriptor()), SendingSide);
}

void LoopbackServer::Greet()
{
    while (QTcpSocket* socket = Control.nextPendingConnection()) {
        const auto client = std::make_shared<Client>();
        client->Socket = socket;
        Clients.insert(socket, client);
        ++Connections;
        connect(socket, &QTcpSocket::readyRead, this, [this, client] { Read(client); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] { Forget(socket); });
        if (Greets) Tell(client, "220 ready");
    }
}

void LoopbackServer::Forget(QTcpSocket* socket)
{
    const std::shared_ptr<Client> client = Clients.take(socket);
    if (client && client->Data) client->Data.release()->deleteLater();
    socket->disconnect(this);
    socket->deleteLater();
}

void LoopbackServer::Read(const std::shared_ptr<Client>& client)
{
    client->Buffer += client->Socket->readAll();
    for (qsizetype end = client->Buffer.indexOf("\r\n"); end >= 0; end = client->Buffer.indexOf("\r\n")) {
        const QByteArray line = client->Buffer.left(end);
        client->Buffer.remove(0, end + 2);
        const qsizetype blank = line.indexOf(' ');
        Commands << line;
        const QByteArray verb = blank < 0 ? line : line.left(blank);
        if (const auto answer = Answers.constFind(verb); answer != Answers.constEnd()) {
            if (!answer->isEmpty()) Tell(client, *answer);
        } else {
            Obey(client, verb, blank < 0 ? QByteArray() : line.mid(blank + 1));
        }
    }
}

void LoopbackServer::Obey(const std::shared_ptr<Client>& client, const QByteArray& verb, const QByteArray& name)
{
    static const QHash<QByteArray, QByteArray> fixed{{"USER", "331 password please"},
                                                     {"PASS", "230 welcome"},
                                                     {"TYPE", "200 fine"},
                                                     {"CWD", "250 there"},
                                                     {"CDUP", "250 up"},
                                                     {"DELE", "250 gone"},
                                                     {"PWD", "257 \"/\" here"},
                                                     {"RNFR", "350 go on"},
                                                     {"RNTO", "250 renamed"},
                                                     {"MKD", "257 made"},
                                                     {"RMD", "250 gone"}};
    if (verb == "EPSV") {
        OpenPort(client);
    } else if (verb == "LIST" || verb == "NLST") {
        SendData(client, Listing);
    } else if (verb == "RETR" && Files.contains(name)) {
        SendData(client, Files.value(name));
    } else if (verb == "STOR") {
        TakeData(client, name);
    } else if (verb == "SIZE" && Files.contains(name)) {
        Tell(client, "213 " + QByteArray::number(Files.value(name).size()));
    } else if (verb == "QUIT") {
        Tell(client, "221 bye");
        client->Socket->disconnectFromHost();
    } else {
        Tell(client, fixed.value(verb, "550 no"));
    }
}

void LoopbackServer::OpenPort(const std::shared_ptr<Client>& client)
{
    client->Data = std::make_unique<QTcpServer>();
    client->Data->listen(QHostAddress::LocalHost);
    Tell(client, "229 here (|||" + QByteArray::number(client->Data->serverPort()) + "|)");
}

void LoopbackServer::WithData(const std::shared_ptr<Client>& client, const std::function<void(QTcpSocket*)>& call)
{
    QTcpServer* data = client->Data.get();
    const auto accept = [data, call] {
        if (QTcpSocket* socket = data->nextPendingConnection()) call(socket);
    };
    if (data->hasPendingConnections())
        accept();
    else
        connect(data, &QTcpServer::newConnection, this, accept);
}

void LoopbackServer::SendData(const std::shared_ptr<Client>& client, const QByteArray& bytes)
{
    WithData(client, [this, client, bytes](QTcpSocket* data) {
        Tell(client, "150 coming");
        data->write(DataLimit < 0 ? bytes : bytes.left(DataLimit));
        if (DataLimit >= 0 && bytes.size() > DataLimit) return;
        connect(data, &QTcpSocket::disconnected, client->Socket, [client] { Tell(client, "226 done"); });
        data->disconnectFromHost();
    });
}

void LoopbackServer::TakeData(const std::shared_ptr<Client>& client, const QByteArray& name)
{
    WithData(client, [this, client, name](QTcpSocket* data) {
        Tell(client, "150 go on");
        if (DataLimit >= 0) {
            data->setReadBufferSize(DataLimit);
            return;
        }
        connect(data, &QTcpSocket::disconnected, client->Socket, [this, client, name, data] {
            Files[name] = data->readAll();
            Tell(client, "226 stored");
        });
    });
}

void LoopbackServer::Tell(const std::shared_ptr<Client>& client, const QByteArray& line)
{
    client->Socket->write(line + "\r\n");
}
