#include "support/downloads.h"
#include "support/http_server.h"

#include <QTest>

/// Which host and port a session goes to: a proxy that leads nowhere is told.
class UsualPortsTest final : public QObject {
    Q_OBJECT

private slots:
    void TheAddressDecidesWhereTheBoxDoesNot_data();
    void TheAddressDecidesWhereTheBoxDoesNot();
    void OtherLettersAreEncoded_data();
    void OtherLettersAreEncoded();
    void ANameThatCannotBeEncodedIsAnError();
};

void UsualPortsTest::TheAddressDecidesWhereTheBoxDoesNot_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("box");
    QTest::addColumn<int>("port");
    QTest::newRow("secure from the start") << "ftps://files.test" << 21 << 990;
    QTest::newRow("secure from the start, a folder") << "ftps://ann@files.test/pub" << 21 << 990;
    QTest::newRow("secure from the start, empty box") << "ftps://files.test" << 0 << 990;
    QTest::newRow("secure from the start, other box") << "ftps://files.test" << 2121 << 2121;
    QTest::newRow("secure from the start, own port") << "ftps://files.test:2990" << 21 << 2990;
    QTest::newRow("secure from the start, port 21 in the address") << "ftps://files.test:21" << 21 << 21;
    QTest::newRow("capital letters") << "FTPS://files.test" << 21 << 990;
    QTest::newRow("upgraded") << "ftpes://files.test" << 21 << 21;
    QTest::newRow("upgraded, empty box") << "ftpes://files.test" << 0 << 21;
    QTest::newRow("upgraded, own port") << "ftpes://files.test:990" << 21 << 990;
    QTest::newRow("upgraded, other box") << "ftpes://files.test" << 990 << 990;
    QTest::newRow("plain") << "ftp://files.test" << 21 << 21;
    QTest::newRow("no scheme") << "files.test" << 21 << 21;
}

void UsualPortsTest::TheAddressDecidesWhereTheBoxDoesNot()
{
    QFETCH(QString, address);
    QFETCH(int, box);
    QFETCH(int, port);
    HttpServer proxy;
    proxy.Respond = [](const auto&) { return HttpServer::Answer{HttpServer::Whole("403 No", "")}; };
    Downloads downloads;
    downloads.Component->SetAccessType(Inet::NamedProxy);
    downloads.Component->SetProxy(QStringLiteral("127.0.0.1:%1").arg(proxy.Port()));
    downloads.Component->SetURL(address);
    downloads.Component->SetRemotePort(box);
    QCOMPARE(downloads.Do("DIR").last(), int(Inet::Error));
    QCOMPARE(proxy.Requests.size(), 1);
    QCOMPARE(proxy.Requests.first().Line, QString("CONNECT files.test:%1 HTTP/1.1").arg(port).toLatin1());
}

void UsualPortsTest::OtherLettersAreEncoded_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QByteArray>("place");
    QTest::newRow("plain") << QString::fromUtf8("ftp://grüße.test") << QByteArray("xn--gre-6ka8l.test:21");
    QTest::newRow("secure") << QString::fromUtf8("ftps://GRÜSSE.test/pub") << QByteArray("xn--grsse-lva.test:990");
    QTest::newRow("upgraded") << QString::fromUtf8("ftpes://例え.テスト:2121")
                              << QByteArray("xn--r8jz45g.xn--zckzah:2121");
    QTest::newRow("a dot at the end") << QString::fromUtf8("ftpes://grüße.test.")
                                      << QByteArray("xn--gre-6ka8l.test.:21");
}

void UsualPortsTest::OtherLettersAreEncoded()
{
    QFETCH(QString, address);
    QFETCH(QByteArray, place);
    HttpServer proxy;
    proxy.Respond = [](const auto&) { return HttpServer::Answer{HttpServer::Whole("403 No", "")}; };
    Downloads downloads;
    downloads.Component->SetAccessType(Inet::NamedProxy);
    downloads.Component->SetProxy(QStringLiteral("127.0.0.1:%1").arg(proxy.Port()));
    downloads.Component->SetURL(address);
    QCOMPARE(downloads.Do("DIR").last(), int(Inet::Error));
    QCOMPARE(proxy.Requests.size(), 1);
    QCOMPARE(proxy.Requests.first().Path, place);
}

void UsualPortsTest::ANameThatCannotBeEncodedIsAnError()
{
    Downloads downloads;
    downloads.Component->SetURL("ftp://" + QString(QChar(0xDCFF)) + ".test");
    QCOMPARE(downloads.Do("DIR"), QList<int>{11});
    QCOMPARE(downloads.Component->ResponseInfo(), QString("The address is not understood."));
}

QTEST_GUILESS_MAIN(UsualPortsTest)
#include "usual_ports_test.moc"
