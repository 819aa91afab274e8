#include "support/real_servers.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr int StartLimit = 60'000;  // milliseconds; the keeper gives up sooner
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

RealServer::RealServer(Kind kind, const QString& address, Security security, const QString& version)
    : Address(address), Safety(security)
{
    Trouble = FetchServers();
    if (!Trouble.isEmpty()) return;
    Keeper.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QStringList options{NameOf(kind), QStringLiteral("--address"), address, QStringLiteral("--folder"), Files.path()};
    if (security != Plain) options << QStringLiteral("--tls") << (security == ExplicitTls ? "explicit" : "implicit");
    if (!version.isEmpty()) options << QStringLiteral("--tls-version") << version;
    Keeper.start(Checkout + QStringLiteral("/tests/support/real_server.py"), options);
    const QJsonObject told = QJsonDocument::fromJson(ReadLine()).object();
    PortNumber = told.value(QStringLiteral("port")).toInt();
    UserName = told.value(QStringLiteral("user")).toString();
    Word = told.value(QStringLiteral("password")).toString();
    AuthorityFile = told.value(QStringLiteral("authority")).toString();
    if (PortNumber == 0) Trouble = NameOf(kind) + QStringLiteral(" does not start on ") + address;
}

RealServer::~RealServer()
{
    if (Keeper.state() == QProcess::NotRunning) return;
    Keeper.closeWriteChannel();
    Keeper.waitForFinished(StartLimit);
}

QString RealServer::Url() const
{
    const QString host = Address.contains(u':') ? u'[' + Address + u']' : Address;
    const QString scheme = Safety == Plain ? "ftp" : Safety == ExplicitTls ? "ftpes" : "ftps";
    return QStringLiteral("%1://%2:%3").arg(scheme, host).arg(PortNumber);
}

void RealServer::Kill()
{
    Keeper.write("kill\n");
    if (ReadLine() != "killed\n") Trouble = QStringLiteral("The server could not be killed.");
}

QByteArray RealServer::ReadLine()
{
    const QDeadlineTimer limit(StartLimit);
    while (!Keeper.canReadLine() && !limit.hasExpired() && Keeper.state() != QProcess::NotRunning) {
        Keeper.waitForReadyRead(static_cast<int>(limit.remainingTime()));
    }
    return Keeper.readLine();
}
