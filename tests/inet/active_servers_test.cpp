#include "inet/ftp/data_way.h"
#include "support/all_servers_test.h"

#include <QFile>

/// Real servers that open no ports: they connect to us, at once in every later session.
class ActiveServersTest : public QObject {
    Q_OBJECT

private slots:
    void FilesAndListingsComeAndGo_data();
    void FilesAndListingsComeAndGo();

    void ManySmallFilesComeAndGo_data() { FilesAndListingsComeAndGo_data(); }

    void ManySmallFilesComeAndGo();

private:
    struct Visitors;
};

namespace {

constexpr qsizetype Sizes[] = {0, 1, 1000, 16'385, 3'000'000};

QByteArray Noise(qsizetype size)
{
    QByteArray bytes(size, '\0');
    QRandomGenerator noise(static_cast<quint32>(size));
    for (char& byte : bytes) byte = static_cast<char>(noise.bounded(256));
    return bytes;
}

int Number(const char* column)
{
    return *static_cast<int*>(QTest::qData(column, QMetaType::Int));
}

QString Text(const char* column)
{
    return *static_cast<QString*>(QTest::qData(column, QMetaType::QString));
}

/// The first words of what the server was asked for to open a data connection.
QStringList Asked(const RealServer& server)
{
    QStringList words;
    const QStringList commands = server.Commands();
    for (const QString& one : commands) {
        const QString word = one.section(u' ', 0, 0);
        if (word == "EPSV" || word == "PASV" || word == "PORT" || word == "EPRT") words.append(word);
    }
    return words;
}

}  // namespace

/// The server of a row and one visitor after the other, who share what they remember in a file.
struct ActiveServersTest::Visitors {
    Visitors()
        : Server(static_cast<RealServer::Kind>(Number("kind")), Text("address"),
                 static_cast<RealServer::Security>(Number("security")), Text("version"), RealServer::OpensNoPorts)
    {
    }

    /// A new run of the program.
    void Enter()
    {
        Guest.reset();
        const QString file = Here.filePath("ways");
        Component = std::make_unique<TransferComponent>(std::make_shared<Ftp::DataWayBook>(file.toStdString()));
        Component->SetURL(Server.Url());
        Component->SetUserName(Server.User());
        Component->SetPassword(Server.Password());
        Component->SetRequestTimeout(60);
        Component->SetCertificateJudge([](const Inet::DoubtfulCertificate&) { return true; });
        Guest = std::make_unique<Visitor>(*Component);
    }

    Visit Do(const QString& operation) const { return Guest->Do(operation); }

    RealServer Server;
    QTemporaryDir Here;
    std::unique_ptr<TransferComponent> Component;
    std::unique_ptr<Visitor> Guest;
};

void ActiveServersTest::FilesAndListingsComeAndGo_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("security");
    QTest::addColumn<QString>("version");
    for (const RealServer::Kind kind : {RealServer::Vsftpd, RealServer::ProFtpd, RealServer::Pyftpdlib}) {
        for (const char* address : {"127.0.0.1", "::1"}) {
            const QString name = RealServer::NameOf(kind) + (address[0] == ':' ? " IPv6" : " IPv4");
            QTest::newRow(qPrintable(name)) << int(kind) << QString(address) << int(RealServer::Plain) << QString();
        }
        for (const char* version : {"1.2", "1.3"}) {
            const QString name = RealServer::NameOf(kind) + " TLS " + version;
            QTest::newRow(qPrintable(name))
                << int(kind) << QString("127.0.0.1") << int(RealServer::ExplicitTls) << QString(version);
        }
    }
}

void ActiveServersTest::FilesAndListingsComeAndGo()
{
    QFETCH(QString, address);
    Visitors place;
    QVERIFY2(place.Server.Complaint().isEmpty(), qPrintable(place.Server.Complaint()));
    const QString offer = address.contains(u':') ? "EPRT" : "PORT";
    place.Enter();
    QVERIFY_GOOD(place.Do("DIR"));
    QCOMPARE(Asked(place.Server),
             (offer == "PORT" ? QStringList{"EPSV", "PASV", "PORT"} : QStringList{"EPSV", "EPRT"}));
    for (const qsizetype size : Sizes) {
        const QByteArray bytes = Noise(size);
        const QString local = place.Here.filePath("out");
        QFile(local).remove();
        QFile file(local);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == size);
        file.close();
        QVERIFY_GOOD(place.Do("PUT \"" + local + "\" \"there\""));
        QFile stored(place.Server.Folder() + "/there");
        QVERIFY(stored.open(QIODevice::ReadOnly));
        QVERIFY(stored.readAll() == bytes);
        QVERIFY_GOOD(place.Do("GET \"there\" \"" + place.Here.filePath("in") + "\""));
        QFile arrived(place.Here.filePath("in"));
        QVERIFY(arrived.open(QIODevice::ReadOnly));
        QVERIFY(arrived.readAll() == bytes);
    }
    const Visit listing = place.Do("LS");
    QVERIFY_GOOD(listing);
    QCOMPARE(NamesOf(listing.Reply), QStringList{"there"});

    const qsizetype before = Asked(place.Server).size();
    place.Enter();
    QVERIFY_GOOD(place.Do("GET \"there\" \"" + place.Here.filePath("again") + "\""));
    QVERIFY_GOOD(place.Do("DIR"));
    QCOMPARE(Asked(place.Server).mid(before), (QStringList{offer, offer}));
    QCOMPARE(QFileInfo(place.Here.filePath("again")).size(), qint64(std::end(Sizes)[-1]));
}

void ActiveServersTest::ManySmallFilesComeAndGo()
{
    Visitors place;
    QVERIFY2(place.Server.Complaint().isEmpty(), qPrintable(place.Server.Complaint()));
    place.Enter();
    place.Component->SetMoreToCome(true);
    const QString local = place.Here.filePath("small");
    for (int i = 0; i < 40; ++i) {
        QFile file(local);
        const QByteArray bytes = "file " + QByteArray::number(i);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        file.close();
        QVERIFY_GOOD(place.Do("PUT \"" + local + "\" \"small\""));
        QVERIFY_GOOD(place.Do("GET \"small\" \"" + place.Here.filePath("back") + "\""));
        QFile back(place.Here.filePath("back"));
        QVERIFY(back.open(QIODevice::ReadOnly));
        QCOMPARE(back.readAll(), bytes);
    }
}

QTEST_GUILESS_MAIN(ActiveServersTest)
#include "active_servers_test.moc"
