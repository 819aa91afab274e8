#include "support/downloads.h"
#include "support/http_server.h"
#include "support/loopback_server.h"

#include <QCryptographicHash>
#include <QTest>

/// The question about a certificate of secure HTTP that is not trusted.
class HttpCertificatesTest final : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void YesLetsTheFileCome();
    void TheServerMayLosePatienceMeanwhile();
    void NoIsARefusalAndNothingIsAskedFor();
    void TheNameAndPasswordWaitForTheAnswer();
    void TheQuestionTellsWhatIsWrong();
    void TheTimeOutStandsStillMeanwhile();
    void YesCountsForThatCertificateAlone();
    void YesCountsForThatHostAlone();
    void EveryDownloadAsks();
    void ACancelEndsTheQuestion();
    void TheEndOfTheProgramEndsTheQuestion();
    void AnAnswerThatComesLateDoesNothing();
    void GetByNameAsksTheSame();

private:
    /// Answers each question in turn, then with no.
    void Judge(const QList<bool>& answers)
    {
        Visit->Component->SetCertificateJudge([this, answers](const Inet::DoubtfulCertificate& shown) {
            Asked << shown;
            return answers.value(Asked.size() - 1, false);
        });
    }

    /// The server ends the connection about which it is asked.
    bool HangUp()
    {
        const bool isThere =
            QTest::qWaitFor([this] { return Server->Connections == Asked.size(); }, Downloads::Patience);
        Server->HangUp();
        return isThere;
    }

    HttpCertificate Own = HttpCertificate::For("127.0.0.1");
    std::unique_ptr<HttpServer> Server;
    std::unique_ptr<Downloads> Visit;
    QList<Inet::DoubtfulCertificate> Asked;
};

namespace {

const HttpServer::Answer Fine{HttpServer::Whole("200 OK", "text")};
const QString Refusal = "The server's certificate is not trusted: it is signed by nobody but itself.";

}  // namespace

void HttpCertificatesTest::init()
{
    Asked.clear();
    Server = std::make_unique<HttpServer>(Own);
    Server->Answers["/x"] = Fine;
    Visit = std::make_unique<Downloads>();
}

void HttpCertificatesTest::cleanup()
{
    Visit.reset();
    Server.reset();
}

void HttpCertificatesTest::YesLetsTheFileCome()
{
    Judge({true});
    const Inet::Download got = Visit->Fetch(Server->Url("/x"));
    QVERIFY2(got.Arrived, qPrintable(got.Info));
    QCOMPARE(got.Bytes, "text");
    QCOMPARE(Visit->States(), (QList<int>{1, 2, 3, 4, 5, 6, 7, 8, 12}));
    QCOMPARE(Server->Requests.size(), 1);
    QCOMPARE(Asked.size(), 1);
    QCOMPARE(Asked.first().Host, "127.0.0.1");
    QCOMPARE(Asked.first().Port, Server->Port());
    QCOMPARE(Asked.first().Subject, "CN=127.0.0.1");
    QCOMPARE(Asked.first().Issuer, "CN=127.0.0.1");
    QCOMPARE(Asked.first().Doubts, "it is signed by nobody but itself");
    const QByteArray digest = Own.Certificate.digest(QCryptographicHash::Sha256);
    QCOMPARE(Asked.first().Fingerprint, QString::fromLatin1(digest.toHex(':').toUpper()));
}

void HttpCertificatesTest::TheServerMayLosePatienceMeanwhile()
{
    Visit->Component->SetCertificateJudge([this](const Inet::DoubtfulCertificate& shown) {
        Asked << shown;
        return HangUp();
    });
    const Inet::Download got = Visit->Fetch(Server->Url("/x"));
    QVERIFY2(got.Arrived, qPrintable(got.Info));
    QCOMPARE(Asked.size(), 1);
    QCOMPARE(Server->Connections, 2);
    QCOMPARE(Server->Requests.size(), 1);
}

void HttpCertificatesTest::NoIsARefusalAndNothingIsAskedFor()
{
    Judge({false});
    const Inet::Download got = Visit->Fetch(Server->Url("/x"));
    QVERIFY(!got.Arrived);
    QCOMPARE(got.Info, Refusal);
    QCOMPARE(got.Code, 12045);
    QCOMPARE(Visit->States(), (QList<int>{1, 2, 3, 11}));
    QCOMPARE(Server->Requests.size(), 0);
    // Refused once is not refused for good.
    Judge({false, true});
    QVERIFY(Visit->Fetch(Server->Url("/x")).Arrived);
}

void HttpCertificatesTest::TheNameAndPasswordWaitForTheAnswer()
{
    Server->Respond = [this](const HttpServer::Request& request) {
        if (Asked.isEmpty()) return HttpServer::Answer{HttpServer::Whole("500 Too early", "")};
        if (request.Headers.contains("authorization")) return Fine;
        return HttpServer::Answer{HttpServer::Whole("401 Who", "", "WWW-Authenticate: Basic realm=\"x\"\r\n")};
    };
    Judge({true});
    const QString address = Server->Url("/x").replace("https://", "https://ann:secret@");
    QCOMPARE(Visit->Fetch(address).Bytes, "text");
    QCOMPARE(Asked.size(), 1);
}

void HttpCertificatesTest::TheQuestionTellsWhatIsWrong()
{
    Server->Show(HttpCertificate::For("example.org", -30, -1));
    Judge({true});
    QVERIFY(Visit->Fetch(Server->Url("/x")).Arrived);
    QVERIFY(Asked.first().Doubts.contains("it has expired"));
    QVERIFY(Asked.first().Doubts.contains("it was made for another host"));
    QVERIFY(Asked.first().Doubts.contains("it is signed by nobody but itself"));
    QCOMPARE(Asked.first().Subject, "CN=example.org");
}

// Another download, begun while the question is up and with the same time-out, runs out of time first.
void HttpCertificatesTest::TheTimeOutStandsStillMeanwhile()
{
    HttpServer silent;
    silent.Respond = [](const auto&) { return HttpServer::Answer{}; };
    TransferComponent other;
    Visit->Component->SetRequestTimeout(1);
    other.SetRequestTimeout(1);
    Inet::Download later;
    Visit->Component->SetCertificateJudge([&](const Inet::DoubtfulCertificate&) {
        other.OpenURL(silent.Url("/x"), Inet::ByteArray, [&](const Inet::Download& download) { later = download; });
        return QTest::qWaitFor([&] { return later.Code != 0; }, Downloads::Patience);
    });
    const Inet::Download got = Visit->Fetch(Server->Url("/x"));
    QCOMPARE(later.Code, 12002);
    QVERIFY2(got.Arrived, qPrintable(got.Info));
}

void HttpCertificatesTest::YesCountsForThatCertificateAlone()
{
    Visit->Component->SetCertificateJudge([this](const Inet::DoubtfulCertificate& shown) {
        Asked << shown;
        if (Asked.size() == 2) return false;
        Server->Show(HttpCertificate::For("127.0.0.1"));
        return HangUp();
    });
    const Inet::Download got = Visit->Fetch(Server->Url("/x"));
    QVERIFY(!got.Arrived);
    QCOMPARE(got.Info, Refusal);
    QCOMPARE(Asked.size(), 2);
    QVERIFY(Asked[0].Fingerprint != Asked[1].Fingerprint);
    QCOMPARE(Server->Requests.size(), 0);
}

void HttpCertificatesTest::YesCountsForThatHostAlone()
{
    HttpServer other(Own);
    other.Answers["/y"] = Fine;
    Server->Answers["/x"] = HttpServer::Redirect(other.Url("/y").toUtf8());
    Judge({true, false});
    QVERIFY(!Visit->Fetch(Server->Url("/x")).Arrived);
    QCOMPARE(Asked.size(), 2);
    QCOMPARE(Asked[0].Port, Server->Port());
    QCOMPARE(Asked[1].Port, other.Port());
    QCOMPARE(other.Requests.size(), 0);
    Asked.clear();
    Judge({true, true});
    QVERIFY(Visit->Fetch(Server->Url("/x")).Arrived);
}

// What is remembered, and for how long, is for the one who answers.
void HttpCertificatesTest::EveryDownloadAsks()
{
    Judge({true, true});
    QVERIFY(Visit->Fetch(Server->Url("/x")).Arrived);
    QVERIFY(Visit->Fetch(Server->Url("/x")).Arrived);
    QCOMPARE(Asked.size(), 2);
}

void HttpCertificatesTest::ACancelEndsTheQuestion()
{
    Visit->Component->SetCertificateJudge([this](const Inet::DoubtfulCertificate&) {
        Visit->Component->Cancel();
        return true;
    });
    const Inet::Download got = Visit->Fetch(Server->Url("/x"));
    QVERIFY(!got.Arrived);
    QCOMPARE(got.Code, 12017);
    QCOMPARE(Visit->States(), (QList<int>{1, 2, 3, 0}));
    Judge({true});
    QVERIFY(Visit->Fetch(Server->Url("/x")).Arrived);
}

void HttpCertificatesTest::TheEndOfTheProgramEndsTheQuestion()
{
    bool asked = false;
    Visit->Component->SetCertificateJudge([&](const Inet::DoubtfulCertificate&) {
        Visit->Leave();
        return asked = true;
    });
    Visit->Begin(Server->Url("/x"));
    QTRY_VERIFY_WITH_TIMEOUT(asked, Downloads::Patience);
    QTRY_COMPARE(Server->OpenConnections(), 0);
    QCOMPARE(Server->Requests.size(), 0);
}

void HttpCertificatesTest::AnAnswerThatComesLateDoesNothing()
{
    HttpServer silent;
    silent.Respond = [](const auto&) { return HttpServer::Answer{}; };
    Visit->Component->SetCertificateJudge([&](const Inet::DoubtfulCertificate&) {
        Visit->Component->Cancel();
        Visit->Begin(silent.Url("/x"));
        return true;
    });
    Visit->Begin(Server->Url("/x"));
    QTRY_COMPARE_WITH_TIMEOUT(silent.Requests.size(), 1, Downloads::Patience);
    QCOMPARE(Server->Requests.size(), 0);
    Visit->Component->Cancel();
    QCOMPARE(Visit->Got.Code, 12017);
}

void HttpCertificatesTest::GetByNameAsksTheSame()
{
    Judge({true, false});
    Visit->Component->SetProtocol(Inet::SecureHttp);
    Visit->Component->SetURL(Server->Url("/"));
    QCOMPARE(Visit->Do("GET \"x\" \"x\"").last(), int(Inet::ResponseCompleted));
    QCOMPARE(Visit->File("x"), "text");
    QCOMPARE(Visit->Do("GET \"x\" \"y\"").last(), int(Inet::Error));
    QCOMPARE(Visit->Component->ResponseInfo(), Refusal);
    QCOMPARE(Visit->Files(), QStringList{"x"});
}

QTEST_GUILESS_MAIN(HttpCertificatesTest)
#include "http_certificates_test.moc"
