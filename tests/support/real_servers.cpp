#include "support/real_servers.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#ifdef Q_OS_WIN
#include <QTcpSocket>
#else
#include <QProcess>
#endif

namespace {

constexpr int StartLimit = 60'000;  // milliseconds; the keeper gives up sooner

#ifndef Q_OS_WIN
constexpr int FetchLimit = 300'000;

const QString Checkout = QStringLiteral(TOLVANE_SOURCE_FOLDER);

/// Empty when the servers are there, else why not.
QString FetchServers()
{
    QProcess fetch;
    fetch.start(Checkout + QStringLiteral("/tools/fetch-servers"), QStringList());
    if (!fetch.waitForFinished(FetchLimit)) return QStringLiteral("tools/fetch-servers does not end.");
    return fetch.exitCode() == 0 ? QString() : QString::fromLocal8Bit(fetch.readAllStandardError());
}
#endif

}  // namespace

QString RealServer::NameOf(Kind kind)
{
    switch (kind) {
    case Vsftpd:
        return QStringLiteral("vsftpd");
    case ProFtpd:
        return QStringLiteral("proftpd");
    case PureFtpd:
        return QStringLiteral("pure-ftpd");
    case Pyftpdlib:
        return QStringLiteral("pyftpdlib");
    }
    return {};
}

RealServer::RealServer(Kind kind, const QString& address, Security security, const QString& version, Ports ports)
    : Address(address), Safety(security)
{
    QStringList options;
    if (security != Plain) options << QStringLiteral("--tls") << (security == ImplicitTls ? "implicit" : "explicit");
    if (security == SelfSignedTls) options << QStringLiteral("--self-signed");
    if (!version.isEmpty()) options << QStringLiteral("--tls-version") << version;
    if (ports == OpensNoPorts) options << QStringLiteral("--refuse-passive");
    StartKeeper(NameOf(kind), options);
    if (!Trouble.isEmpty()) return;
    const QJsonObject told = QJsonDocument::fromJson(ReadLine()).object();
    PortNumber = told.value(QStringLiteral("port")).toInt();
    UserName = told.value(QStringLiteral("user")).toString();
    Word = told.value(QStringLiteral("password")).toString();
    AuthorityFile = told.value(QStringLiteral("authority")).toString();
#ifdef Q_OS_WIN
    if (!AuthorityFile.isEmpty()) AuthorityFile.prepend("Z:");  // where Wine shows the files of the servers' system
#endif
    LogFile = told.value(QStringLiteral("log")).toString();
    if (PortNumber == 0) Trouble = NameOf(kind) + QStringLiteral(" does not start on ") + address;
}

QStringList RealServer::Commands() const
{
    QFile file(LogFile);
    if (!file.open(QIODevice::ReadOnly)) return {"(no log)"};
    // Each server has its own way to write them down, but all of them write the line as it came.
    static const QRegularExpression line(R"rx((?:, "|\] "|<- )([A-Z]{3,4}(?: [^"]*)?)(?:"|$))rx");
    QStringList commands;
    const QStringList lines = QString::fromLatin1(file.readAll()).split(u'\n');
    for (const QString& text : lines) {
        const QRegularExpressionMatch match = line.match(text);
        if (match.hasMatch()) commands.append(match.captured(1));
    }
    return commands;
}

#ifdef Q_OS_WIN

void RealServer::StartKeeper(const QString& kind, const QStringList& options)
{
    auto desk = std::make_unique<QTcpSocket>();
    desk->connectToHost(QStringLiteral("127.0.0.1"), qEnvironmentVariable("TOLVANE_SERVER_DESK").toUShort());
    if (!desk->waitForConnected(StartLimit)) Trouble = QStringLiteral("Nobody starts servers: ") + desk->errorString();
    const QStringList words = QStringList{kind, Address, Files.path()} + options;
    desk->write((words.join(u' ') + u'\n').toUtf8());
    Keeper = std::move(desk);
}

RealServer::~RealServer() = default;

#else

void RealServer::StartKeeper(const QString& kind, const QStringList& options)
{
    Trouble = FetchServers();
    if (!Trouble.isEmpty()) return;
    auto process = std::make_unique<QProcess>();
    process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process->start(Checkout + QStringLiteral("/tests/support/real_server.py"),
                   QStringList{kind, QStringLiteral("--address"), Address, QStringLiteral("--folder"), Files.path()} +
                       options);
    Keeper = std::move(process);
}

RealServer::~RealServer()
{
    auto* process = static_cast<QProcess*>(Keeper.get());
    if (process == nullptr || process->state() == QProcess::NotRunning) return;
    process->closeWriteChannel();
    process->waitForFinished(StartLimit);
}

#endif

QString RealServer::Url() const
{
    const QString host = Address.contains(u':') ? u'[' + Address + u']' : Address;
    const QString scheme = Safety == Plain ? "ftp" : Safety == ImplicitTls ? "ftps" : "ftpes";
    return QStringLiteral("%1://%2:%3").arg(scheme, host).arg(PortNumber);
}

void RealServer::RenewCertificate()
{
    Keeper->write("renew\n");
    if (ReadLine() != "renewed\n") Trouble = QStringLiteral("The certificate could not be renewed.");
}

void RealServer::Kill()
{
    Keeper->write("kill\n");
    if (ReadLine() != "killed\n") Trouble = QStringLiteral("The server could not be killed.");
}

QByteArray RealServer::ReadLine()
{
    const QDeadlineTimer limit(StartLimit);
    while (!Keeper->canReadLine() && !limit.hasExpired()) {
        if (!Keeper->waitForReadyRead(static_cast<int>(limit.remainingTime()))) break;
    }
    return Keeper->readLine();
}
