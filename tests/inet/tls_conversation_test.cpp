#include "support/conversation.h"
#include "support/outcome_checks.h"
#include "support/tls_script.h"

#include <QtTest>
#include <optional>

/// Secure FTP with servers that do everything wrong that can be done wrong, in memory.
class TlsConversationTest : public QObject {
    Q_OBJECT

private slots:

    void initTestCase() { Certificates.emplace(); }

    void cleanupTestCase() { Certificates.reset(); }

    void EverythingWorksSecurely_data();
    void EverythingWorksSecurely();
    void NothingOlderThanTls12IsSpoken();
    void TheServerIsToldItsName();
    void ANumberIsNoName();
    void TheDotAtTheEndIsNoPartOfTheName();

    void ARefusedUpgradeIsAnErrorBeforeUser_data();
    void ARefusedUpgradeIsAnErrorBeforeUser();
    void PlainTextInsteadOfAHandshakeIsAnError();
    void WhatCameBeforeTheHandshakeIsAnError_data();
    void WhatCameBeforeTheHandshakeIsAnError();
    void AHandshakeThatFailsIsAnError_data();
    void AHandshakeThatFailsIsAnError();

    void ADoubtfulCertificateIsRefused_data();
    void ADoubtfulCertificateIsRefused();
    void ADoubtfulCertificateCanBeAccepted();
    void TimeStandsStillWhileTheQuestionIsUp();
    void AServerThatHangsUpMeanwhileIsCalledAgain();
    void AQuestionCanBeCancelled();
    void AnAnswerToAnotherQuestionDoesNothing();
    void AnotherCertificateOnTheDataConnectionIsAnError();
    void TheSameCertificateOnTheDataConnectionWillDo();

    void SessionsAreResumed_data();
    void SessionsAreResumed();
    void ADemandForResumptionIsTold();
    void ARefusedBufferSizeMeansNothing();
    void RefusedProtectionIsAnErrorBeforeData();
    void PlainDataIsAnError();
    void ADataHandshakeThatStallsTimesOut();
    void ACutListingIsAnError();
    void ACutFileIsWholeOnlyBySize_data();
    void ACutFileIsWholeOnlyBySize();
    void ATornFileIsAnErrorWhereverItIsTorn();
    void AnUploadEndsInOrder();
    void AServerThatNeverEndsAnUploadIsLeft();
    void PlainTextInTheMidstIsAnError();
    void HalfAReplyIsAnError();
    void ASecureServerIsHinted_data();
    void ASecureServerIsHinted();
    void EveryStepMayBeTheLast_data();
    void EveryStepMayBeTheLast();

private:
    std::optional<TestCertificates> Certificates;
};

namespace {

const std::string Upgrade = R"(
    S: 220 ready
    C: AUTH TLS
    S: 234 go ahead
    -- hello
    -- secure
)";

const std::string SecureUser = R"(
    C: USER ann
    S: 331 password please
    C: PASS secret
    S: 230 welcome
    C: PBSZ 0
    S: 200 fine
    C: PROT P
    S: 200 fine
)";

const std::string Secured = Upgrade + SecureUser;
const std::string Passive = "C: EPSV\nS: 229 here (|||4001|)\n-- listen 4001\n";
const std::string Binary = "C: TYPE I\nS: 200 fine\n";
const std::string Get = Passive + "C: RETR kept\n-- accept\nS: 150 here it comes\n-- secure data\n";
const std::string Put = Passive + "C: STOR sent\n-- accept\nS: 150 let it come\n-- secure data\n";
const std::string List = Passive + "C: NLST\n-- accept\nS: 150 here it comes\n-- secure data\n";
const std::string StillThere = "C: PWD\nS: 257 \"/\"\n";

/// A conversation with a server that speaks TLS.
struct SecureTalk : Conversation {
    explicit SecureTalk(const TestCertificates& certificates, Ftp::Protection how = Ftp::Protection::Upgraded)
        : Tls(*this, certificates)
    {
        Where.Safety = how;
    }

    ~SecureTalk()
    {
        Session->Drop();
        Settle();
    }

    TlsScript Tls;
};

std::string Fetched(const char* column)
{
    return (*static_cast<QString*>(QTest::qData(column, QMetaType::QString))).toStdString();
}

void Add(const char* name, const char* script)
{
    QTest::newRow(name) << QString(script);
}

QString TextOf(const Ftp::Outcome& outcome)
{
    return QString::fromStdString(outcome.Text);
}

}  // namespace

void TlsConversationTest::EverythingWorksSecurely_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<bool>("fromStart");
    QTest::addColumn<int>("slice");
    for (const char* version : {"1.2", "1.3"}) {
        for (const bool fromStart : {false, true}) {
            for (const int slice : {1, 7, 1 << 20}) {
                const QString name = QString("%1 %2 %3").arg(version, fromStart ? "ftps" : "ftpes").arg(slice);
                QTest::newRow(qPrintable(name)) << QString(version) << fromStart << slice;
            }
        }
    }
}

void TlsConversationTest::EverythingWorksSecurely()
{
    QFETCH(bool, fromStart);
    QFETCH(int, slice);
    SecureTalk talk(*Certificates, fromStart ? Ftp::Protection::FromStart : Ftp::Protection::Upgraded);
    talk.Server.SetSlice(static_cast<std::size_t>(slice));
    talk.MakeLocalFile("sent", QByteArray(300'000, 'x'));
    const std::string begin = fromStart ? "S+\n-- secure\nS: 220 ready\n" : Upgrade;
    talk.Server.Play("-- version " + Fetched("version") + '\n' + begin + SecureUser + List +
                     "D: one\\r\\ntwo\\r\\n\n-- end\nS: 226 done\n" + Binary + Get +
                     "D: \\0bytes\\xFF\n-- end\nS: 226 done\n" + Put + "U: " + std::string(300'000, 'x') +
                     "\n-- end\nS: 226 done\n");
    const Ftp::Outcome listing = talk.Do("LS");
    QVERIFY2(listing.Good, qPrintable(TextOf(listing)));
    QCOMPARE(listing.Reply, std::string("one\r\ntwo\r\n"));
    QVERIFY_GOOD(talk.Do("GET \"kept\""));
    QCOMPARE(talk.LocalFile("kept"), QByteArray("\0bytes\xFF", 7));
    QVERIFY_GOOD(talk.Do("PUT \"sent\""));
    QVERIFY_FOLLOWED(talk);
    QVERIFY(talk.Asked.empty());
}

void TlsConversationTest::NothingOlderThanTls12IsSpoken()
{
    SecureTalk talk(*Certificates);
    talk.Server.Play("-- version 1.1\n" + Upgrade);
    QCOMPARE_FAILED(talk.Do("PWD"), Ftp::SecureChannelError);
    QCOMPARE(talk.Server.OpenLinks(), 0U);
}

void TlsConversationTest::TheServerIsToldItsName()
{
    SecureTalk talk(*Certificates);
    talk.Server.Play(Secured + List + "-- end\nS: 226 done\n");
    QVERIFY_GOOD(talk.Do("LS"));
    QCOMPARE(talk.Tls.ServerName, std::string("server.test"));
    QCOMPARE(talk.Tls.Protocols, std::string("\3ftp"));
}

void TlsConversationTest::ANumberIsNoName()
{
    SecureTalk talk(*Certificates);
    talk.Where.Host = "127.0.0.1";
    talk.Server.Play("-- certificate numbered\n" + Secured + StillThere);
    QVERIFY_GOOD(talk.Do("PWD"));
    QCOMPARE(talk.Tls.ServerName, std::string());
}

void TlsConversationTest::TheDotAtTheEndIsNoPartOfTheName()
{
    SecureTalk talk(*Certificates);
    talk.Where.Host = "server.test.";
    talk.Server.Play(Secured + StillThere);
    QVERIFY_GOOD(talk.Do("PWD"));
    QCOMPARE(talk.Tls.ServerName, std::string("server.test"));
}

void TlsConversationTest::ARefusedUpgradeIsAnErrorBeforeUser_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<int>("code");
    for (const int code : {334, 421, 431, 500, 502, 504, 530, 534}) {
        const QString script = QString("S: 220 ready\nC: AUTH TLS\nS: %1 no\n-- gone").arg(code);
        QTest::newRow(qPrintable(QString::number(code))) << script << code;
    }
}

void TlsConversationTest::ARefusedUpgradeIsAnErrorBeforeUser()
{
    QFETCH(int, code);
    SecureTalk talk(*Certificates);
    talk.Server.Play(Fetched("script"));
    const Ftp::Outcome outcome = talk.Do("PWD");
    QCOMPARE_FAILED(outcome, code);
    QVERIFY(TextOf(outcome).contains("no secure connection"));
    QVERIFY_FOLLOWED(talk);
    talk.Server.Play(Secured + StillThere);
    QVERIFY_GOOD(talk.Do("PWD"));
}

void TlsConversationTest::PlainTextInsteadOfAHandshakeIsAnError()
{
    SecureTalk talk(*Certificates);
    talk.Server.Play("S: 220 ready\nC: AUTH TLS\nS: 234 go ahead\n-- hello\nS: 331 password please\n-- gone");
    QCOMPARE_FAILED(talk.Do("PWD"), Ftp::SecureChannelError);
    QVERIFY_FOLLOWED(talk);
}

void TlsConversationTest::WhatCameBeforeTheHandshakeIsAnError_data()
{
    QTest::addColumn<QString>("more");
    Add("a reply", "S+ 230 welcome\\r\\n");
    Add("half a reply", "S+ 23");
    Add("one byte", "S+ \\n");
    Add("no reply", "S+ rubbish\\r\\n");
    Add("two replies", "S+ 331 yes\\r\\n230 welcome\\r\\n");
}

void TlsConversationTest::WhatCameBeforeTheHandshakeIsAnError()
{
    for (const std::size_t slice : {std::size_t{1}, std::size_t{5}, std::size_t{14}, std::size_t{1024}}) {
        SecureTalk talk(*Certificates);
        talk.Server.SetSlice(slice);
        talk.Server.Play("S: 220 ready\nC: AUTH TLS\nS: 234 go ahead\n" + Fetched("more") + "\n-- gone");
        QCOMPARE_FAILED(talk.Do("PWD"), Ftp::SecureChannelError);
        QVERIFY_FOLLOWED(talk);
    }
}

void TlsConversationTest::AHandshakeThatFailsIsAnError_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<int>("code");
    QTest::newRow("it stalls") << "-- hello\n-- gone" << static_cast<int>(Ftp::TimeOutError);
    QTest::newRow("rubbish") << "-- hello\nS+ \\0\\x01\\x02rubbish\n-- gone"
                             << static_cast<int>(Ftp::SecureChannelError);
    QTest::newRow("the end") << "-- hello\n-- close" << static_cast<int>(Ftp::SecureChannelError);
    QTest::newRow("a reset") << "-- hello\n-- break" << static_cast<int>(Ftp::ResetError);
    QTest::newRow("an alert") << "-- hello\nS+ \\x15\\x03\\x03\\0\\x02\\x02\\x28\n-- gone"
                              << static_cast<int>(Ftp::SecureChannelError);
}

void TlsConversationTest::AHandshakeThatFailsIsAnError()
{
    QFETCH(int, code);
    for (const Ftp::Protection how : {Ftp::Protection::Upgraded, Ftp::Protection::FromStart}) {
        SecureTalk talk(*Certificates, how);
        const bool fromStart = how == Ftp::Protection::FromStart;
        // The script takes a connection with its first word; one that is secure from the start has none before TLS.
        talk.Server.Play((fromStart ? "S+\n" : "S: 220 ready\nC: AUTH TLS\nS: 234 go\n") + Fetched("script"));
        QCOMPARE_FAILED(talk.Do("PWD"), code);
        QVERIFY_FOLLOWED(talk);
        QVERIFY(talk.LastDuration <= Conversation::Limit);
        talk.Server.Play((fromStart ? "S+\n-- secure\nS: 220 ready\n" : Upgrade) + SecureUser + StillThere);
        QVERIFY_GOOD(talk.Do("PWD"));
    }
}

void TlsConversationTest::ADoubtfulCertificateIsRefused_data()
{
    QTest::addColumn<QString>("certificate");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("why");
    const auto add = [](const char* name, int code, const char* why) { QTest::newRow(name) << name << code << why; };
    add("expired", Ftp::CertificateDateError, "it has expired");
    add("not yet", Ftp::CertificateDateError, "it is not valid yet");
    add("wrong host", Ftp::CertificateNameError, "it was made for another host");
    add("numbered", Ftp::CertificateNameError, "it was made for another host");
    add("self-signed", Ftp::CertificateAuthorityError, "it is signed by nobody but itself");
}

void TlsConversationTest::ADoubtfulCertificateIsRefused()
{
    QFETCH(int, code);
    QFETCH(QString, why);
    SecureTalk talk(*Certificates);
    talk.Server.Play("-- certificate " + Fetched("certificate") + '\n' + Upgrade + "-- gone");
    const Ftp::Outcome outcome = talk.Do("PWD");
    QCOMPARE_FAILED(outcome, code);
    QCOMPARE(TextOf(outcome), "The server's certificate is not trusted: " + why + '.');
    QVERIFY_FOLLOWED(talk);
    QCOMPARE(talk.Asked.size(), 1U);
    const Ftp::Certificate& shown = talk.Asked.front();
    QCOMPARE(shown.Host, std::string("server.test"));
    QCOMPARE(shown.Port, 21);
    QCOMPARE(shown.Subject, "CN=" + Fetched("certificate"));
    QCOMPARE(shown.Fingerprint.size(), 95U);
    QVERIFY(QString::fromStdString(shown.ValidUntil).endsWith(" UTC"));
}

void TlsConversationTest::ADoubtfulCertificateCanBeAccepted()
{
    SecureTalk talk(*Certificates);
    talk.WhenAsked = [&](unsigned number, const Ftp::Certificate&) { talk.Session->Answer(number, true); };
    talk.Server.Play("-- certificate self-signed\n" + Secured + List + "-- end\nS: 226 done\n-- close\n" + Secured +
                     StillThere);
    QVERIFY_GOOD(talk.Do("LS"));
    talk.Settle();
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
    // The second connection showed the same.
    QCOMPARE(talk.Asked.size(), 1U);
}

void TlsConversationTest::TimeStandsStillWhileTheQuestionIsUp()
{
    SecureTalk talk(*Certificates);
    std::unique_ptr<Ftp::Clock::Alarm> thought;
    talk.WhenAsked = [&](unsigned number, const Ftp::Certificate&) {
        thought = talk.Clock.After(std::chrono::hours(1), [&talk, number] { talk.Session->Answer(number, true); });
    };
    talk.Server.Play("-- certificate expired\n" + Secured + StillThere);
    QVERIFY_GOOD(talk.Do("PWD"));
    QCOMPARE(talk.LastDuration, Ftp::Milliseconds(std::chrono::hours(1)));
}

void TlsConversationTest::AServerThatHangsUpMeanwhileIsCalledAgain()
{
    SecureTalk talk(*Certificates);
    std::unique_ptr<Ftp::Clock::Alarm> thought;
    talk.WhenAsked = [&](unsigned number, const Ftp::Certificate&) {
        thought = talk.Clock.After(std::chrono::minutes(5), [&talk, number] { talk.Session->Answer(number, true); });
    };
    talk.Server.Play("-- certificate expired\n" + Upgrade + "-- pause 60000\nS: 421 too slow\n-- close\n" + Secured +
                     StillThere);
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
    QCOMPARE(talk.Asked.size(), 1U);
}

void TlsConversationTest::AQuestionCanBeCancelled()
{
    SecureTalk talk(*Certificates);
    talk.WhenAsked = [&](unsigned, const Ftp::Certificate&) { talk.Session->Cancel(); };
    talk.Server.Play("-- certificate expired\n" + Upgrade + "-- gone");
    QCOMPARE_FAILED(talk.Do("PWD"), Ftp::CancelledError);
    QVERIFY_FOLLOWED(talk);
    talk.Session->Answer(1, true);
    talk.WhenAsked = {};
    talk.Server.Play("-- certificate good\n" + Secured + StillThere);
    QVERIFY_GOOD(talk.Do("PWD"));
}

void TlsConversationTest::AnAnswerToAnotherQuestionDoesNothing()
{
    SecureTalk talk(*Certificates);
    std::unique_ptr<Ftp::Clock::Alarm> thought;
    talk.WhenAsked = [&](unsigned number, const Ftp::Certificate&) {
        talk.Session->Answer(number + 1, true);
        thought = talk.Clock.After(std::chrono::minutes(5), [&talk, number] { talk.Session->Answer(number, false); });
    };
    talk.Server.Play("-- certificate expired\n" + Upgrade + "-- gone");
    QCOMPARE_FAILED(talk.Do("PWD"), Ftp::CertificateDateError);
    QVERIFY_FOLLOWED(talk);
}

void TlsConversationTest::AnotherCertificateOnTheDataConnectionIsAnError()
{
    // Without tickets and session numbers nothing can be resumed, so the certificate is shown again.
    SecureTalk talk(*Certificates);
    talk.Tls.ForbidResumption();
    talk.Server.Play(Secured + Passive + "C: NLST\n-- accept\nS: 150 here it comes\n-- certificate other\n" +
                     "-- secure data\n-- data gone\n-- gone");
    const Ftp::Outcome outcome = talk.Do("LS");
    QCOMPARE_FAILED(outcome, Ftp::SecureChannelError);
    QVERIFY(TextOf(outcome).contains("another certificate"));
    QVERIFY_FOLLOWED(talk);
}

void TlsConversationTest::TheSameCertificateOnTheDataConnectionWillDo()
{
    SecureTalk talk(*Certificates);
    talk.Tls.ForbidResumption();
    talk.Server.Play(Secured + List + "-- secured\nD: a\\r\\n\n-- end\nS: 226 done\n");
    QVERIFY_GOOD(talk.Do("LS"));
    QCOMPARE(talk.Tls.Resumptions, std::vector<bool>{false});
}

void TlsConversationTest::SessionsAreResumed_data()
{
    QTest::addColumn<QString>("version");
    Add("1.2", "1.2");
    Add("1.3", "1.3");
}

void TlsConversationTest::SessionsAreResumed()
{
    SecureTalk talk(*Certificates);
    talk.MakeLocalFile("sent", "x");
    std::string script = "-- version " + Fetched("version") + '\n' + Secured + Binary;
    for (int round = 0; round < 10; ++round) {
        script += Get + "-- resumed\nD: y\n-- end\nS: 226 done\n";
        script += Put + "-- resumed\nU: x\n-- end\nS: 226 done\n";
    }
    talk.Server.Play(script);
    for (int round = 0; round < 10; ++round) {
        QVERIFY_GOOD(talk.Do("GET \"kept\""));
        QVERIFY_GOOD(talk.Do("PUT \"sent\""));
    }
    QVERIFY_FOLLOWED(talk);
    QCOMPARE(talk.Tls.Resumptions.size(), 20U);
}

void TlsConversationTest::ADemandForResumptionIsTold()
{
    for (const int code : {425, 450, 522}) {
        SecureTalk talk(*Certificates);
        talk.Tls.ForbidResumption();
        talk.Server.Play(Secured + Binary + Get + "-- secured\n-- end\nS: " + std::to_string(code) +
                         " the session must be resumed\n");
        QCOMPARE_FAILED(talk.Do("GET \"kept\""), code);
        QVERIFY_FOLLOWED(talk);
    }
}

void TlsConversationTest::ARefusedBufferSizeMeansNothing()
{
    SecureTalk talk(*Certificates);
    talk.Server.Play(Upgrade + "C: USER ann\nS: 230 welcome\nC: PBSZ 0\nS: 500 what?\nC: PROT P\nS: 200 fine\n" +
                     StillThere);
    QVERIFY_GOOD(talk.Do("PWD"));
}

void TlsConversationTest::RefusedProtectionIsAnErrorBeforeData()
{
    for (const int code : {421, 431, 500, 504, 521, 534, 536}) {
        SecureTalk talk(*Certificates);
        talk.Server.Play(Upgrade + "C: USER ann\nS: 230 welcome\nC: PBSZ 0\nS: 200 fine\nC: PROT P\nS: " +
                         std::to_string(code) + " no\n-- gone");
        const Ftp::Outcome outcome = talk.Do("LS");
        QCOMPARE_FAILED(outcome, code);
        QVERIFY(TextOf(outcome).contains("does not protect"));
        QVERIFY_FOLLOWED(talk);
    }
}

void TlsConversationTest::PlainDataIsAnError()
{
    SecureTalk talk(*Certificates);
    talk.Server.Play(
        Secured + Binary + Passive +
        "C: RETR kept\n-- accept\nS: 150 (5 bytes)\n-- clear data plain text for all\n-- end\nS: 226 done\n");
    QCOMPARE_FAILED(talk.Do("GET \"kept\""), Ftp::SecureChannelError);
    QCOMPARE(talk.LocalFiles(), QStringList());
}

void TlsConversationTest::ADataHandshakeThatStallsTimesOut()
{
    for (const bool receive : {true, false}) {
        SecureTalk talk(*Certificates);
        talk.MakeLocalFile("sent", "x");
        talk.Server.Play(Secured + Binary + Passive + (receive ? "C: RETR kept" : "C: STOR sent") +
                         "\n-- accept\nS: 150 well\n-- data gone\n-- gone");
        QCOMPARE_FAILED(talk.Do(receive ? "GET \"kept\"" : "PUT \"sent\""), Ftp::TimeOutError);
        QVERIFY(talk.LastDuration <= 2 * Conversation::Limit);
        QCOMPARE(talk.LocalFiles(), QStringList("sent"));
        QVERIFY_FOLLOWED(talk);
    }
}

void TlsConversationTest::ACutListingIsAnError()
{
    SecureTalk talk(*Certificates);
    talk.Server.Play(Secured + List + "D: one\\r\\n\n-- cut data\nS: 226 done\n");
    QCOMPARE_FAILED(talk.Do("LS"), Ftp::SecureChannelError);
}

void TlsConversationTest::ACutFileIsWholeOnlyBySize_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("good");
    QTest::newRow("whole") << "213 5" << true;
    QTest::newRow("shorter") << "213 6" << false;
    QTest::newRow("longer") << "213 4" << false;
    QTest::newRow("no size") << "213 what?" << false;
    QTest::newRow("refused") << "550 no" << false;
    QTest::newRow("unknown") << "500 no" << false;
}

void TlsConversationTest::ACutFileIsWholeOnlyBySize()
{
    QFETCH(bool, good);
    SecureTalk talk(*Certificates);
    talk.MakeLocalFile("kept", "old");
    talk.Server.Play(Secured + Binary + Get +
                     "D: bytes\n-- cut data\nS: 226 done\nC: SIZE kept\nS: " + Fetched("answer") + '\n');
    const Ftp::Outcome outcome = talk.Do("GET \"kept\"");
    QCOMPARE(outcome.Good, good);
    if (!good) QCOMPARE(outcome.Code, static_cast<int>(Ftp::SecureChannelError));
    QCOMPARE(talk.LocalFile("kept"), QByteArray(good ? "bytes" : "old"));
    QCOMPARE(talk.LocalFiles(), QStringList("kept"));
    QVERIFY_FOLLOWED(talk);
}

void TlsConversationTest::ATornFileIsAnErrorWhereverItIsTorn()
{
    for (const int bytes : {0, 1, 4, 5, 6, 50, 127, 128, 200, 250, 600, 1000, 16'000, 20'000, 40'000}) {
        SecureTalk talk(*Certificates);
        talk.Server.Play(Secured + Binary + Get + "-- tear " + std::to_string(bytes) +
                         "\nD: " + std::string(40'000, 'x') + "\n-- end\nS: 226 done\nC: *\nS: 213 40000\n");
        const Ftp::Outcome outcome = talk.Do("GET \"kept\"");
        QVERIFY2(!outcome.Good && outcome.Code == Ftp::SecureChannelError,
                 qPrintable(QString("%1: %2").arg(bytes).arg(TextOf(outcome))));
        QCOMPARE(talk.LocalFiles(), QStringList());
        QCOMPARE(talk.Server.OpenLinks(), 0U);
    }
}

void TlsConversationTest::AnUploadEndsInOrder()
{
    SecureTalk talk(*Certificates);
    talk.MakeLocalFile("sent", "bytes");
    talk.Server.Play(Secured + Binary + Put + "U: bytes\n-- closed\n-- pause 100\n-- open\n-- end\n-- data gone\n" +
                     "S: 226 done\n" + StillThere);
    QVERIFY_GOOD(talk.Do("PUT \"sent\""));
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void TlsConversationTest::AServerThatNeverEndsAnUploadIsLeft()
{
    SecureTalk talk(*Certificates);
    talk.MakeLocalFile("sent", "bytes");
    talk.Server.Play(Secured + Binary + Put + "U: bytes\nS: 226 done\n-- data gone\n" + StillThere);
    QVERIFY_GOOD(talk.Do("PUT \"sent\""));
    QVERIFY(talk.LastDuration < Conversation::Limit);
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void TlsConversationTest::PlainTextInTheMidstIsAnError()
{
    SecureTalk talk(*Certificates);
    talk.Server.Play(Secured + "C: PWD\n-- clear 257 \"/elsewhere\"\n-- gone");
    QCOMPARE_FAILED(talk.Do("PWD"), Ftp::SecureChannelError);
    QVERIFY_FOLLOWED(talk);
}

void TlsConversationTest::HalfAReplyIsAnError()
{
    for (const char* end :
         {"S+ 257 \"/\"\n-- close", "S+ 257 \"/\"\n-- cut", "-- cut", "S+ 257-\"/\"\\r\\n\n-- close"}) {
        SecureTalk talk(*Certificates);
        talk.Server.Play(Secured + "C: PWD\n" + end);
        QCOMPARE_FAILED(talk.Do("PWD"), Ftp::AbortedError);
        QVERIFY_FOLLOWED(talk);
    }
}

void TlsConversationTest::ASecureServerIsHinted_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<int>("code");
    QTest::newRow("to USER") << "S: 220\nC: USER ann\nS: 530 Non-anonymous sessions must use encryption." << 530;
    QTest::newRow("goodbye") << "S: 220\nC: USER ann\nS: 421 Sorry, cleartext sessions are not accepted." << 421;
    QTest::newRow("policy") << "S: 220\nC: USER ann\nS: 534 Policy requires SSL." << 534;
    QTest::newRow("to data") << QString::fromStdString(LogIn + Passive + "C: NLST\nS: 522 TLS required on data channel")
                             << 522;
    QTest::newRow("to PASV") << QString::fromStdString(
                                    LogIn + "C: EPSV\nS: 550 SSL/TLS required\nC: PASV\nS: 550 SSL/TLS required")
                             << 550;
}

void TlsConversationTest::ASecureServerIsHinted()
{
    QFETCH(int, code);
    Conversation talk(Fetched("script"));
    QCOMPARE_FAILED(talk.Do("LS"), code);
    QVERIFY(!talk.Remarks.empty());
    QVERIFY(QString::fromStdString(talk.Remarks.back()).contains("ftpes://"));
}

void TlsConversationTest::EveryStepMayBeTheLast_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("operation");
    QTest::newRow("listing") << QString::fromStdString(Secured + List + "D: a\\r\\n\n-- end\nS: 226 done\n") << "LS";
    QTest::newRow("receive") << QString::fromStdString(Secured + Binary + Get + "D: new\n-- end\nS: 226 done\n")
                             << "GET \"kept\"";
    QTest::newRow("send") << QString::fromStdString(Secured + Binary + Put + "U: bytes\n-- end\nS: 226 done\n")
                          << "PUT \"sent\"";
}

void TlsConversationTest::EveryStepMayBeTheLast()
{
    QFETCH(QString, operation);
    for (const Disturbance::Kinds kind : {Disturbance::HangUp, Disturbance::Reset, Disturbance::FallSilent}) {
        bool ended = false;
        for (std::size_t steps = 0; !ended; ++steps) {
            SecureTalk talk(*Certificates);
            talk.MakeLocalFile("sent", "bytes");
            talk.MakeLocalFile("kept", "old");
            talk.Server.Play(Fetched("script"), {kind, steps});
            ended = steps == talk.Server.StepCount();
            if (ended) talk.Server.Play(Fetched("script"));
            const Ftp::Outcome outcome = talk.Do(operation.toStdString());
            const QString where = QString("after step %1: %2").arg(steps).arg(TextOf(outcome));
            QVERIFY2(outcome.Good == ended && outcome.Code > 0, qPrintable(where));
            QVERIFY2(!outcome.Text.empty(), qPrintable(where));
            QVERIFY2(talk.LastDuration <= 2 * Conversation::Limit, qPrintable(where));
            if (!outcome.Good) QCOMPARE(talk.LocalFile("kept"), QByteArray("old"));
            QCOMPARE(talk.LocalFiles(), QStringList({"kept", "sent"}));
            if (ended) talk.Session->Drop();
            talk.Settle();
            talk.Server.Play(Secured + StillThere);
            const Ftp::Outcome next = talk.Do("PWD");
            QVERIFY2(next.Good, qPrintable(where + " / " + TextOf(next)));
        }
    }
}

QTEST_GUILESS_MAIN(TlsConversationTest)
#include "tls_conversation_test.moc"
