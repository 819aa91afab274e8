#include "support/downloads.h"
#include "support/http_server.h"

#include <QTest>

/// Where HTTP leads from one address to another, and who learns the user and the password on the way.
class HttpRedirectsTest final : public QObject {
    Q_OBJECT

private slots:
    void EveryKindIsFollowed_data();
    void EveryKindIsFollowed();
    void ALocationMayBeShort_data();
    void ALocationMayBeShort();
    void OneServerMayLeadToAnother();
    void ALoopEnds();
    void TenAreFollowedAndNoMore();
    void AnEndlessPageOfARedirectIsNotReadToItsEnd();
    void WhatIsNoHttpIsNotFollowed_data();
    void WhatIsNoHttpIsNotFollowed();
    void SecureNeverLeadsToPlain();
    void PlainMayLeadToSecure();
    void CancelWorksBehindARedirect();

    void UserAndPasswordGoOutWhenAskedFor();
    void TheBoxesComeBeforeTheAddress();
    void WrongOnesAreTriedOnce();
    void AnotherServerLearnsNothing();
    void AnotherPortIsAnotherServer();
    void TheSameServerIsToldAgain();
    void AUserInALocationIsIgnored();
    void NoTextHoldsThePassword();
};

namespace {

/// The user and password of a request, as Basic (RFC 7617) has them; empty when there are none.
QByteArray CredentialsIn(const HttpServer::Request& request)
{
    const QByteArray value = request.Headers.value("authorization");
    return value.startsWith("Basic ") ? QByteArray::fromBase64(value.mid(6)) : value;
}

HttpServer::Answer WhoIsIt()
{
    return {HttpServer::Whole("401 Who is it", "", "WWW-Authenticate: Basic realm=\"here\"\r\n")};
}

/// Asks everybody who it is, and then answers everybody.
std::function<HttpServer::Answer(const HttpServer::Request&)> AskingFirst(const HttpServer::Answer& answer)
{
    return
        [answer](const HttpServer::Request& request) { return CredentialsIn(request).isEmpty() ? WhoIsIt() : answer; };
}

const HttpServer::Answer Fine{HttpServer::Whole("200 OK", "text")};

QString WithUser(QString address, const QString& user)
{
    return address.replace("://", "://" + user + '@');
}

}  // namespace

void HttpRedirectsTest::EveryKindIsFollowed_data()
{
    QTest::addColumn<QByteArray>("status");
    for (const char* status : {"301 Moved", "302 Found", "303 See", "307 For now", "308 For good"})
        QTest::newRow(status) << QByteArray(status);
}

void HttpRedirectsTest::EveryKindIsFollowed()
{
    QFETCH(QByteArray, status);
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = {HttpServer::Whole(status, "page", "Location: " + server.Url("/y").toLatin1() + "\r\n")};
    server.Answers["/y"] = Fine;
    const Inet::Download got = downloads.Fetch(server.Url("/x"));
    QVERIFY2(got.Arrived, qPrintable(got.Info));
    QCOMPARE(got.Bytes, QByteArray("text"));
    QCOMPARE(downloads.States(), (QList<int>{1, 2, 3, 4, 5, 6, 7, 8, 12}));
}

void HttpRedirectsTest::ALocationMayBeShort_data()
{
    QTest::addColumn<QByteArray>("location");
    QTest::addColumn<QByteArray>("path");
    QTest::newRow("from the root") << QByteArray("/c/d") << QByteArray("/c/d");
    QTest::newRow("beside it") << QByteArray("d") << QByteArray("/a/d");
    QTest::newRow("one up") << QByteArray("../d") << QByteArray("/d");
    QTest::newRow("with blanks") << QByteArray("c d") << QByteArray("/a/c%20d");
    QTest::newRow("with bytes") << QByteArray("\xc3\xa4") << QByteArray("/a/%C3%A4");
    QTest::newRow("with a question") << QByteArray("?q=1") << QByteArray("/a/b?q=1");
    QTest::newRow("with a fragment") << QByteArray("d#part") << QByteArray("/a/d");
}

void HttpRedirectsTest::ALocationMayBeShort()
{
    QFETCH(QByteArray, location);
    QFETCH(QByteArray, path);
    HttpServer server;
    Downloads downloads;
    server.Answers["/a/b"] = HttpServer::Redirect(location);
    server.Answers[path] = Fine;
    const Inet::Download got = downloads.Fetch(server.Url("/a/b"));
    QVERIFY2(got.Arrived, qPrintable(got.Info));
    QCOMPARE(server.Requests.last().Path, path);
}

void HttpRedirectsTest::OneServerMayLeadToAnother()
{
    HttpServer server;
    HttpServer other;
    Downloads downloads;
    server.Answers["/x"] = HttpServer::Redirect(other.Url("/y").toLatin1());
    other.Answers["/y"] = Fine;
    downloads.Component->SetReplyFile(downloads.Folder.filePath(".part"));
    QVERIFY(downloads.Fetch(server.Url("/x")).Arrived);
    QCOMPARE(downloads.File(".part"), QByteArray("text"));
}

void HttpRedirectsTest::ALoopEnds()
{
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = HttpServer::Redirect("/y");
    server.Answers["/y"] = HttpServer::Redirect("/x");
    const Inet::Download got = downloads.Fetch(server.Url("/x"));
    QVERIFY(!got.Arrived);
    QCOMPARE(got.Info, QString("The server sends on from one address to the other without end."));
    QCOMPARE(server.Requests.size(), 11);
}

void HttpRedirectsTest::TenAreFollowedAndNoMore()
{
    HttpServer server;
    Downloads downloads;
    for (int i = 0; i < 11; ++i)
        server.Answers['/' + QByteArray::number(i)] = HttpServer::Redirect(QByteArray::number(i + 1));
    server.Answers["/11"] = Fine;
    QVERIFY(downloads.Fetch(server.Url("/1")).Arrived);
    QVERIFY(!downloads.Fetch(server.Url("/0")).Arrived);
}

void HttpRedirectsTest::AnEndlessPageOfARedirectIsNotReadToItsEnd()
{
    HttpServer server;
    Downloads downloads;
    HttpServer::Answer endless{"HTTP/1.1 302 Found\r\nLocation: /y\r\n\r\n"};
    endless.Filling = qint64{1} << 40;
    server.Answers["/x"] = endless;
    server.Answers["/y"] = Fine;
    QVERIFY(downloads.Fetch(server.Url("/x")).Arrived);
    QVERIFY(server.Sent < 64 * 1024 * 1024);
}

void HttpRedirectsTest::WhatIsNoHttpIsNotFollowed_data()
{
    QTest::addColumn<QByteArray>("location");
    for (const char* location : {"ftp://127.0.0.1/x", "file:///etc/passwd", "data:text/plain,x", "javascript:x",
                                 "http://", "http://[::1/", "qrc:/x"}) {
        QTest::newRow(location) << QByteArray(location);
    }
}

void HttpRedirectsTest::WhatIsNoHttpIsNotFollowed()
{
    QFETCH(QByteArray, location);
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = HttpServer::Redirect(location);
    const Inet::Download got = downloads.Fetch(server.Url("/x"));
    QVERIFY(!got.Arrived);
    QCOMPARE(got.Info, QString("The server sends on to an address that cannot be followed."));
    QCOMPARE(server.Requests.size(), 1);
}

void HttpRedirectsTest::SecureNeverLeadsToPlain()
{
    const HttpCertificate certificate = HttpCertificate::For("127.0.0.1");
    const TrustedCertificates trusted(certificate);
    HttpServer secure(certificate);
    HttpServer plain;
    Downloads downloads;
    secure.Answers["/x"] = HttpServer::Redirect(plain.Url("/y").toLatin1());
    plain.Answers["/y"] = Fine;
    const Inet::Download got = downloads.Fetch(secure.Url("/x"));
    QVERIFY(!got.Arrived);
    QCOMPARE(got.Info, QString("The server sends on to an address that is not secure, which is not followed."));
    QCOMPARE(plain.Connections, 0);
}

void HttpRedirectsTest::PlainMayLeadToSecure()
{
    const HttpCertificate certificate = HttpCertificate::For("127.0.0.1");
    const TrustedCertificates trusted(certificate);
    HttpServer secure(certificate);
    HttpServer plain;
    Downloads downloads;
    plain.Answers["/x"] = HttpServer::Redirect(secure.Url("/y").toLatin1());
    secure.Respond = [](const auto&) { return Fine; };
    const Inet::Download got = downloads.Fetch(WithUser(plain.Url("/x"), "ann:hidden"));
    QVERIFY2(got.Arrived, qPrintable(got.Info));
    QVERIFY(CredentialsIn(secure.Requests.first()).isEmpty());
}

void HttpRedirectsTest::CancelWorksBehindARedirect()
{
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = HttpServer::Redirect("/y");
    server.Answers["/y"] = {""};
    downloads.Begin(server.Url("/x"));
    QTRY_COMPARE(server.Requests.size(), 2);
    downloads.Component->Cancel();
    QCOMPARE(downloads.States().last(2), (QList<int>{10, 0}));
    QTRY_COMPARE(server.OpenConnections(), 0);
}

void HttpRedirectsTest::UserAndPasswordGoOutWhenAskedFor()
{
    HttpServer server;
    Downloads downloads;
    server.Respond = AskingFirst(Fine);
    const Inet::Download got = downloads.Fetch(WithUser(server.Url("/x"), "ann%40home:p%3A%40s%2Fs"));
    QVERIFY2(got.Arrived, qPrintable(got.Info));
    QCOMPARE(got.Bytes, QByteArray("text"));
    QCOMPARE(server.Requests.size(), 2);
    QVERIFY(CredentialsIn(server.Requests[0]).isEmpty());
    QCOMPARE(CredentialsIn(server.Requests[1]), QByteArray("ann@home:p:@s/s"));
    QCOMPARE(server.Requests[1].Path, QByteArray("/x"));
    // Nothing of it is remembered for another visit.
    QCOMPARE(downloads.Fetch(server.Url("/x")).Code, 401);
    QVERIFY(CredentialsIn(server.Requests.last()).isEmpty());
}

void HttpRedirectsTest::TheBoxesComeBeforeTheAddress()
{
    HttpServer server;
    Downloads downloads;
    server.Respond = AskingFirst(Fine);
    downloads.Component->SetUserName("bob");
    downloads.Component->SetPassword("word");
    QVERIFY(downloads.Fetch(WithUser(server.Url("/x"), "ann:hidden")).Arrived);
    QCOMPARE(CredentialsIn(server.Requests[1]), QByteArray("bob:word"));
}

void HttpRedirectsTest::WrongOnesAreTriedOnce()
{
    HttpServer server;
    Downloads downloads;
    server.Respond = [](const auto&) { return WhoIsIt(); };
    const Inet::Download got = downloads.Fetch(WithUser(server.Url("/x"), "ann:hidden"));
    QCOMPARE(got.Code, 401);
    QCOMPARE(got.Info, QString("Who is it"));
    QCOMPARE(server.Requests.size(), 2);
}

void HttpRedirectsTest::AnotherServerLearnsNothing()
{
    HttpServer server;
    HttpServer other;
    Downloads downloads;
    QString elsewhere = other.Url("/y");
    elsewhere.replace("127.0.0.1", "localhost");
    server.Respond = AskingFirst(HttpServer::Redirect(elsewhere.toLatin1()));
    other.Respond = [](const auto&) { return WhoIsIt(); };
    const Inet::Download got = downloads.Fetch(WithUser(server.Url("/x"), "ann:hidden"));
    QCOMPARE(got.Code, 401);
    QCOMPARE(CredentialsIn(server.Requests.last()), QByteArray("ann:hidden"));
    QVERIFY(!other.Requests.isEmpty());
    for (const HttpServer::Request& request : other.Requests) {
        QVERIFY(!request.Headers.contains("authorization"));
        QVERIFY(!request.Headers.contains("referer"));
    }
}

void HttpRedirectsTest::AnotherPortIsAnotherServer()
{
    HttpServer server;
    HttpServer other;
    Downloads downloads;
    server.Answers["/x"] = HttpServer::Redirect(other.Url("/y").toLatin1());
    other.Respond = [](const auto&) { return WhoIsIt(); };
    QCOMPARE(downloads.Fetch(WithUser(server.Url("/x"), "ann:hidden")).Code, 401);
    for (const HttpServer::Request& request : other.Requests) QVERIFY(!request.Headers.contains("authorization"));
}

void HttpRedirectsTest::TheSameServerIsToldAgain()
{
    HttpServer server;
    Downloads downloads;
    server.Respond = [](const HttpServer::Request& request) {
        if (request.Path == "/x") return HttpServer::Redirect("/y");
        return CredentialsIn(request) == "ann:hidden" ? Fine : WhoIsIt();
    };
    const Inet::Download got = downloads.Fetch(WithUser(server.Url("/x"), "ann:hidden"));
    QVERIFY2(got.Arrived, qPrintable(got.Info));
}

void HttpRedirectsTest::AUserInALocationIsIgnored()
{
    HttpServer server;
    Downloads downloads;
    server.Answers["/x"] = HttpServer::Redirect(WithUser(server.Url("/y"), "eve:evil").toLatin1());
    server.Answers["/y"] = WhoIsIt();
    QCOMPARE(downloads.Fetch(server.Url("/x")).Code, 401);
    for (const HttpServer::Request& request : server.Requests) QVERIFY(!request.Headers.contains("authorization"));
}

void HttpRedirectsTest::NoTextHoldsThePassword()
{
    HttpServer server;
    Downloads downloads;
    QStringList remarks;
    connect(downloads.Component.get(), &Inet::Remarked, this, [&](const QString& line) { remarks << line; });
    server.Respond = AskingFirst({HttpServer::Whole("403 hidden is no good", "")});
    QCOMPARE(downloads.Fetch(WithUser(server.Url("/x"), "ann:hidden")).Info, QString("**** is no good"));
    server.Respond = AskingFirst({HttpServer::Whole("200 hidden", "")});
    QCOMPARE(downloads.Fetch(WithUser(server.Url("/x"), "ann:hidden")).Info, QString("****"));
    QVERIFY(remarks.filter("hidden").isEmpty());
}

QTEST_GUILESS_MAIN(HttpRedirectsTest)
#include "http_redirects_test.moc"
