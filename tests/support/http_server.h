#pragma once

#include "support/http_certificate.h"
#include "support/server_tls.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QHash>
#include <QList>
#include <QObject>
#include <QTcpServer>
#include <QTcpSocket>
#include <functional>
#include <memory>
#include <optional>

/// A small HTTP server on a free loopback port that says, byte for byte, what a test tells it. It runs on the event
/// loop of the test.
class HttpServer final : public QObject {
public:
    struct Request {
        QByteArray Line;                        ///< "GET /x HTTP/1.1"
        QByteArray Path;                        ///< as it came, or host:port of a CONNECT
        QHash<QByteArray, QByteArray> Headers;  ///< names in lower case
    };

    struct Answer {
        enum Ends { Stay, Close, Reset };

        QByteArray Bytes;      ///< what is sent
        Ends Then = Stay;      ///< what happens to the connection after that
        qint64 Filling = 0;    ///< so many further bytes 'x', made as they are sent
        bool InDrops = false;  ///< a byte at a time
    };

    /// With a certificate it speaks secure HTTP.
    explicit HttpServer(const std::optional<HttpCertificate>& certificate = {});
    ~HttpServer() override;

    /// Shows this certificate from the next connection on.
    void Show(const HttpCertificate& certificate) { Shown = certificate; }

    int Port() const { return Listener.serverPort(); }

    /// http://127.0.0.1:port, or https, and what is behind it.
    QString Url(const QString& path) const;

    /// Answers by path; what is not there gets a 404.
    QHash<QByteArray, Answer> Answers;
    /// In place of them, for what depends on the request.
    std::function<Answer(const Request&)> Respond;

    QList<Request> Requests;
    int Connections = 0;
    qint64 Sent = 0;  ///< bytes of fillings that the system has taken

    /// Ends all connections, whatever they are about.
    void HangUp();

    /// Connections that the client has not closed yet.
    qsizetype OpenConnections() const { return Clients.size(); }

    /// A whole answer of a status with a body.
    static QByteArray Whole(const QByteArray& status, const QByteArray& body, const QByteArray& header = {});
    /// 302 to an address.
    static Answer Redirect(const QByteArray& location);

private:
    struct Client {
        std::shared_ptr<ServerTls> Tls;  ///< of secure HTTP
        QByteArray Buffer;
        qint64 Filling = 0;
        Answer::Ends Then = Answer::Stay;
        bool Drips = false;
    };

    void Greet();
    static void KeepTrying(QTcpSocket* socket);
    void Read(QTcpSocket* socket);
    void Send(QTcpSocket* socket, const QByteArray& bytes);
    void Obey(QTcpSocket* socket, const Answer& answer);
    void Drip(QTcpSocket* socket, const QByteArray& bytes);
    void Fill(QTcpSocket* socket);
    void Finish(QTcpSocket* socket);
    void Forget(QTcpSocket* socket);

    QTcpServer Listener;
    std::optional<HttpCertificate> Shown;
    QHash<QTcpSocket*, Client> Clients;
};
