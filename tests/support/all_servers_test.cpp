#include "support/all_servers_test.h"

#include "base/byte_text.h"

#include <QDir>
#include <filesystem>

void AllServersTest::AllServers()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("address");
    for (const RealServer::Kind kind :
         {RealServer::Vsftpd, RealServer::ProFtpd, RealServer::PureFtpd, RealServer::Pyftpdlib}) {
        for (const char* address : {"127.0.0.1", "::1"}) {
            const QString name = RealServer::NameOf(kind) + (address[0] == ':' ? " IPv6" : " IPv4");
            QTest::newRow(qPrintable(name)) << static_cast<int>(kind) << QString(address);
        }
    }
}

QStringList AllServersTest::LocalFiles() const
{
    QStringList names;
    for (const auto& entry : std::filesystem::directory_iterator(FilePath(Here->path()))) {
        names.append(PathText(entry.path().filename()));
    }
    names.sort();
    return names;
}

void AllServersTest::initTestCase()
{
    Begun = QDir::currentPath();
}

void AllServersTest::init()
{
    QFETCH(int, kind);
    QFETCH(QString, address);
    std::unique_ptr<RealServer>& server = Servers[QTest::currentDataTag()];
    if (!server || !server->Complaint().isEmpty()) {
        server = std::make_unique<RealServer>(static_cast<RealServer::Kind>(kind), address);
    }
    QVERIFY2(server->Complaint().isEmpty(), qPrintable(server->Complaint()));
    const QString folder = QStringLiteral("test %1").arg(++Tests);
    Shared = server->Folder() + u'/' + folder;
    QVERIFY(QDir().mkdir(Shared));
    Here = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir::setCurrent(Here->path()));

    Component = std::make_unique<TransferComponent>();
    Component->SetURL(server->Url() + u'/' + folder);
    Component->SetUserName(server->User());
    Component->SetPassword(server->Password());
    Component->SetRequestTimeout(20);
    Guest = std::make_unique<Visitor>(*Component);
}

void AllServersTest::cleanup()
{
    Guest.reset();
    Component.reset();
    QDir::setCurrent(Begun);
    const QString row = QTest::currentTestFunction();
    if (!Rows.contains(row)) Rows.append(row);
    Table[row][QTest::currentDataTag()] = QTest::currentTestFailed() ? "FAILS" : "yes";
    // Qt's own ways to remove a folder stop at names that are not UTF-8.
    if (!Shared.isEmpty()) std::filesystem::remove_all(FilePath(Shared));
    if (Here) std::filesystem::remove_all(FilePath(Here->path()));
}

void AllServersTest::cleanupTestCase()
{
    QStringList columns;
    for (const auto& [name, server] : Servers) columns.append(name);
    QString table = "| | " + columns.join(" | ") + " |\n|---" + QString("|---").repeated(columns.size()) + "|\n";
    for (const QString& row : Rows) {
        table += "| " + row;
        for (const QString& column : columns) table += " | " + Table[row][column];
        table += " |\n";
    }
    fputs(qPrintable(table), stdout);
    Servers.clear();
}

QString Quoted(const QByteArray& name)
{
    return u'"' + BytesToText(name) + u'"';
}

QStringList LinesOf(const QString& reply)
{
    return reply.split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
}

QStringList NamesOf(const QString& reply)
{
    QStringList names = LinesOf(reply);
    names.removeAll(".");
    names.removeAll("..");
    names.sort();
    return names;
}

QString LineWith(const QString& listing, const QByteArray& name)
{
    const QStringList lines = LinesOf(listing);
    for (const QString& line : lines) {
        if (TextToBytes(line).endsWith(' ' + name)) return line;
    }
    return {};
}
