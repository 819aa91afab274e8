#include "inet/transfer_component.h"
#include "support/real_servers.h"
#include "support/test_files.h"
#include "support/visitor.h"

#include <QDir>
#include <QtTest>
#include <map>
#include <memory>

/// Secure FTP with real servers, by both ways and in both versions of TLS. Those that can demand that data connections
/// resume the session do.
class TlsServersTest : public QObject {
    Q_OBJECT

private slots:

    void initTestCase() { Begun = QDir::currentPath(); }

    void cleanupTestCase() { Servers.clear(); }

    void init();
    void cleanup();

    void FilesOfEverySizeComeAndGo_data() { AllServers(); }

    void FilesOfEverySizeComeAndGo();

    void AnUnknownAuthorityIsAskedAbout_data() { AllServers(); }

    void AnUnknownAuthorityIsAskedAbout();

    void WithoutAnybodyToAskItIsRefused_data() { AllServers(); }

    void WithoutAnybodyToAskItIsRefused();

    void InTheClearTheyRefuse_data() { AllServers(); }

    void InTheClearTheyRefuse();

private:
    static void AllServers();

    RealServer& Server() { return *Servers.at(QTest::currentDataTag()); }

    Visit Do(const QString& operation) { return Guest->Do(operation); }

    std::map<QString, std::unique_ptr<RealServer>> Servers;
    std::unique_ptr<QTemporaryDir> Here;
    std::unique_ptr<TransferComponent> Component;
    std::unique_ptr<Visitor> Guest;
    QString Begun;
};

namespace {

constexpr qsizetype Sizes[] = {0, 1, 10, 1000, 16'383, 16'384, 16'385, 100'000, 3'000'000};

QByteArray Noise(qsizetype size, int seed)
{
    QByteArray bytes(size, '\0');
    QRandomGenerator noise(static_cast<quint32>(seed));
    for (char& byte : bytes) byte = static_cast<char>(noise.bounded(256));
    return bytes;
}

void WriteFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

QByteArray FileAt(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no such file)");
}

}  // namespace

#define QVERIFY_GOOD(visit)                                                                                            \
    do {                                                                                                               \
        const Visit got_ = (visit);                                                                                    \
        QVERIFY2(got_.Good(), qPrintable(got_.Account()));                                                             \
    } while (false)

void TlsServersTest::AllServers()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("security");
    QTest::addColumn<QString>("version");
    for (const RealServer::Kind kind :
         {RealServer::Vsftpd, RealServer::ProFtpd, RealServer::PureFtpd, RealServer::Pyftpdlib}) {
        for (const RealServer::Security security : {RealServer::ExplicitTls, RealServer::ImplicitTls}) {
            if (kind == RealServer::PureFtpd && security == RealServer::ImplicitTls) continue;
            for (const char* version : {"1.2", "1.3"}) {
                const QString name =
                    RealServer::NameOf(kind) + (security == RealServer::ImplicitTls ? " ftps " : " ftpes ") + version;
                QTest::newRow(qPrintable(name))
                    << static_cast<int>(kind) << static_cast<int>(security) << QString(version);
            }
        }
    }
}

void TlsServersTest::init()
{
    QFETCH(int, kind);
    QFETCH(int, security);
    QFETCH(QString, version);
    std::unique_ptr<RealServer>& server = Servers[QTest::currentDataTag()];
    if (!server)
        server = std::make_unique<RealServer>(static_cast<RealServer::Kind>(kind), "127.0.0.1",
                                              static_cast<RealServer::Security>(security), version);
    QVERIFY2(server->Complaint().isEmpty(), qPrintable(server->Complaint()));
    Here = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir::setCurrent(Here->path()));
    qputenv("SSL_CERT_FILE", server->Authority().toLocal8Bit());
    Component = std::make_unique<TransferComponent>();
    Component->SetURL(server->Url());
    Component->SetUserName(server->User());
    Component->SetPassword(server->Password());
    Component->SetRequestTimeout(60);
    Guest = std::make_unique<Visitor>(*Component);
}

void TlsServersTest::cleanup()
{
    Guest.reset();
    Component.reset();
    QDir::setCurrent(Begun);
    qunsetenv("SSL_CERT_FILE");
}

void TlsServersTest::FilesOfEverySizeComeAndGo()
{
    for (const qsizetype size : Sizes) {
        const QString name = QString::number(size);
        WriteFile(Server().Folder() + "/there " + name, Noise(size, 1));
        WriteFile("here " + name, Noise(size, 2));
    }
    QVERIFY_GOOD(Do("LS"));
    for (const qsizetype size : Sizes) {
        const QString name = QString::number(size);
        QVERIFY_GOOD(Do("GET \"there " + name + "\" \"there " + name + "\""));
        QCOMPARE(FileAt("there " + name), Noise(size, 1));
        QVERIFY_GOOD(Do("PUT \"here " + name + "\" \"here " + name + "\""));
        QCOMPARE(FileAt(Server().Folder() + "/here " + name), Noise(size, 2));
    }
    const Visit listing = Do("DIR");
    QVERIFY2(listing.Good(), qPrintable(listing.Account()));
    for (const qsizetype size : Sizes) {
        QVERIFY(listing.Reply.contains(QString("there %1\r\n").arg(size)));
        QVERIFY(listing.Reply.contains(QString("here %1\r\n").arg(size)));
    }
    QVERIFY_GOOD(Do("CLOSE"));
    QVERIFY_GOOD(Do("PWD"));
}

void TlsServersTest::AnUnknownAuthorityIsAskedAbout()
{
    qputenv("SSL_CERT_FILE", "/dev/null");
    QList<Inet::DoubtfulCertificate> asked;
    bool accepted = false;
    Component->SetCertificateJudge([&](const Inet::DoubtfulCertificate& shown) {
        asked.append(shown);
        return accepted;
    });
    const Visit refused = Do("PWD");
    QCOMPARE(refused.States.last(), static_cast<int>(Inet::Error));
    QCOMPARE(refused.Info,
             "The server's certificate is not trusted: it is signed by nobody whom this computer trusts.");
    accepted = true;
    QVERIFY_GOOD(Do("PWD"));
    QVERIFY_GOOD(Do("LS"));
    QCOMPARE(asked.size(), 2);
    QCOMPARE(asked.first().Host, "127.0.0.1");
    QCOMPARE(asked.first().Port, Server().Port());
    QCOMPARE(asked.first().Subject, "CN=localhost");
    QCOMPARE(asked.first().Issuer, "CN=Loopback authority");
    QFile file(QFileInfo(Server().Authority()).dir().filePath("server.pem"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray digest =
        QCryptographicHash::hash(QByteArray::fromBase64(file.readAll().split('\n').mid(1).join().split('-').first()),
                                 QCryptographicHash::Sha256);
    QCOMPARE(asked.first().Fingerprint, QString::fromLatin1(digest.toHex(':').toUpper()));
}

void TlsServersTest::WithoutAnybodyToAskItIsRefused()
{
    qputenv("SSL_CERT_FILE", "/dev/null");
    const Visit refused = Do("PWD");
    QCOMPARE(refused.States, (QList<int>{1, 2, 3, 4, 11}));
    QVERIFY2(refused.Info.contains("not trusted"), qPrintable(refused.Info));
}

void TlsServersTest::InTheClearTheyRefuse()
{
    Component->SetURL(Server().Url().replace(QRegularExpression("^ftpe?s:"), "ftp:"));
    Component->SetRequestTimeout(1);
    const Visit refused = Do("PWD");
    QCOMPARE(refused.States.last(), static_cast<int>(Inet::Error));
    QVERIFY(!refused.Info.contains(Server().Password()));
}

QTEST_GUILESS_MAIN(TlsServersTest)
#include "tls_servers_test.moc"
