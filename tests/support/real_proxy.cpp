#include "support/real_proxy.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <csignal>
#include <sys/prctl.h>

namespace {

constexpr int FetchLimit = 300'000;  // milliseconds
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
    const QString program =
        Program(kind == Tinyproxy ? "tinyproxy/usr/bin/tinyproxy" : "microsocks/usr/bin/microsocks");
    if (!Trouble.isEmpty()) return;
    QStringList arguments{"-i", "127.0.0.1", "-p", QString::number(Port), "-u", "user", "-P", "word"};
    if (kind == Tinyproxy) {
        QFile configuration(Place.filePath("tinyproxy.conf"));
        if (!configuration.open(QIODevice::WriteOnly)) Trouble = "The proxy's configuration cannot be written.";
        configuration.write("Listen 127.0.0.1\nTimeout 600\nMaxClients 50\nBasicAuth user word\nPort " +
                            QByteArray::number(Port) + "\n");
        arguments = {"-d", "-c", configuration.fileName()};
    }
    Process.setStandardOutputFile(QProcess::nullDevice());
    Process.setStandardErrorFile(QProcess::nullDevice());
    Process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    Process.start(program, arguments);
    const QDeadlineTimer limit(StartLimit);
    while (!Accepts(Port)) {
        if (Process.state() != QProcess::NotRunning && !limit.hasExpired()) continue;
        Trouble = program + " does not start.";
        return;
    }
}

RealProxy::~RealProxy()
{
    Process.kill();
    Process.waitForFinished(StartLimit);
}

QString RealProxy::Url() const
{
    return QStringLiteral("%1://user:word@127.0.0.1:%2").arg(Which == Tinyproxy ? "http" : "socks5").arg(Port);
}

QString RealProxy::Program(const QString& name)
{
    const QString fetch = QStringLiteral(TOLVANE_SOURCE_FOLDER "/tools/fetch-servers");
    QProcess process;
    process.start(fetch, QStringList());
    if (!process.waitForFinished(FetchLimit) || process.exitCode() != 0)
        Trouble = QString::fromLocal8Bit(process.readAllStandardError());
    process.start(fetch, {"--where"});
    if (!process.waitForFinished(FetchLimit)) Trouble = "tools/fetch-servers does not end.";
    return QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed() + '/' + name;
}
