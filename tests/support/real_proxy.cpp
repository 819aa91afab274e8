#include "support/real_proxy.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#ifndef Q_OS_WIN
#include <csignal>
#include <sys/prctl.h>
#endif

namespace {

#ifndef Q_OS_WIN
constexpr int FetchLimit = 300'000;  // milliseconds
#endif
constexpr int StartLimit = 60'000;

int FreePort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

bool Accepts(int port)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(port));
    return socket.waitForConnected(1000);
}

}  // namespace

RealProxy::RealProxy(Kind kind) : Which(kind), Port(FreePort())
{
    QStringList arguments{"-i", "127.0.0.1", "-p", QString::number(Port), "-u", "user", "-P", "word"};
    if (kind == Tinyproxy) {
        QFile configuration(Place.filePath("tinyproxy.conf"));
        if (!configuration.open(QIODevice::WriteOnly)) Trouble = "The proxy's configuration cannot be written.";
        configuration.write("Listen 127.0.0.1\nTimeout 600\nMaxClients 50\nBasicAuth user word\nPort " +
                            QByteArray::number(Port) + "\n");
        arguments = {"-d", "-c", configuration.fileName()};
    }
    const QString program = kind == Tinyproxy ? "tinyproxy/usr/bin/tinyproxy" : "microsocks/usr/bin/microsocks";
    Start(program, arguments);
    const QDeadlineTimer limit(StartLimit);
    while (Trouble.isEmpty() && !Accepts(Port)) {
        if (!Runs() || limit.hasExpired()) Trouble = program + " does not start.";
    }
}

#ifdef Q_OS_WIN

void RealProxy::Start(const QString& program, const QStringList& arguments)
{
    Desk.connectToHost(QStringLiteral("127.0.0.1"), qEnvironmentVariable("TOLVANE_SERVER_DESK").toUShort());
    if (!Desk.waitForConnected(StartLimit)) Trouble = QStringLiteral("Nobody starts servers: ") + Desk.errorString();
    Desk.write((QStringList{"run", program} + arguments).join(u' ').toUtf8() + '\n');
    Desk.flush();
}

bool RealProxy::Runs() const
{
    return Desk.state() == QAbstractSocket::ConnectedState;
}

RealProxy::~RealProxy() = default;

#else

void RealProxy::Start(const QString& program, const QStringList& arguments)
{
    const QString fetch = QStringLiteral(TOLVANE_SOURCE_FOLDER "/tools/fetch-servers");
    QProcess process;
    process.start(fetch, QStringList());
    if (!process.waitForFinished(FetchLimit) || process.exitCode() != 0)
        Trouble = QString::fromLocal8Bit(process.readAllStandardError());
    process.start(fetch, {"--where"});
    if (!process.waitForFinished(FetchLimit)) Trouble = "tools/fetch-servers does not end.";
    if (!Trouble.isEmpty()) return;
    Process.setStandardOutputFile(QProcess::nullDevice());
    Process.setStandardErrorFile(QProcess::nullDevice());
    Process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    Process.start(QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed() + '/' + program, arguments);
}

bool RealProxy::Runs() const
{
    return Process.state() != QProcess::NotRunning;
}

RealProxy::~RealProxy()
{
    Process.kill();
    Process.waitForFinished(StartLimit);
}

#endif

QString RealProxy::Url() const
{
    return QStringLiteral("%1://user:word@127.0.0.1:%2").arg(Which == Tinyproxy ? "http" : "socks5").arg(Port);
}
