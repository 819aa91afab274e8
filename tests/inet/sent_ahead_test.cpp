#include "support/conversation.h"
#include "support/outcome_checks.h"

#include <QtTest>

/// Lines are sent before the ones ahead of them are answered, where the server keeps up, and one at a time where it
/// does not. How long that takes is counted in round trips, on a clock that only the latency of the wire moves.
class SentAheadTest : public QObject {
    Q_OBJECT

private slots:
    void AnAnonymousListingTakesSixRoundTrips();
    void AFurtherFileTakesThreeRoundTrips();
    void AFileWhosePortIsThereTakesTwoRoundTrips();
    void ALoneFileThatWasExpectedTakesTwoRoundTrips_data();
    void ALoneFileThatWasExpectedTakesTwoRoundTrips();
    void AnExpectedFileGoesOutInTwoRoundTrips();
    void GettingReadyAsksOnce();
    void GettingReadyNeedsASession();
    void GettingReadyIsForServersThatKeepUp();
    void ALineSaidUnaskedEndsGettingReady();
    void WhatWasExpectedNeedNotCome_data();
    void WhatWasExpectedNeedNotCome();
    void APortThatWaitedTooLongIsAskedForAnew();
    void APortThatIsClosedAgainIsAskedForAnew();
    void ARefusalToGetReadyIsRecovered();
    void ASessionThatEndedWhileReadyBeginsAnew_data();
    void ASessionThatEndedWhileReadyBeginsAnew();
    void SilenceAfterGettingReadyCostsOneTimeOut_data();
    void SilenceAfterGettingReadyCostsOneTimeOut();
    void AFileThatTheServerBringsTakesTwoRoundTrips();
    void ARefusedPortOfOursInMidSessionIsRecovered();
    void OneAtATimeTheSameTakesLonger();
    void TheWayIntoTheFolderCostsNothingMore();
    void ARefusedPortIsAskedForTheOldWay();
    void ARefusedPortInMidSessionIsRecovered();
    void ARefusedFileKeepsTheSessionInStep();
    void ADuplicatedReplyEndsSendingAhead();
    void AServerThatThrowsLinesAwayGetsThemOneAtATime();
    void AServerThatLeavesOverThemGetsThemOneAtATime();
    void ThePortAskedForInAdvanceIsUsed();
    void APortNobodyNeedsDoesNoHarm();
    void ASessionThatEndedWithThePortAskedForBeginsAnew();
    void NothingIsSentAheadToAServerThatRefusesTheLogIn();
};

namespace {

constexpr Ftp::Milliseconds Latency{50};
constexpr Ftp::Milliseconds RoundTrip = 2 * Latency;

std::string Passive(int port)
{
    const std::string number = std::to_string(port);
    return "C: EPSV\nS: 229 (|||" + number + "|)\n-- listen " + number + "\n";
}

std::string Data(const std::string& command)
{
    return "C: " + command + "\n-- accept\nS: 150 coming\nD: bytes\n-- end\nS: 226 done\n";
}

const std::string Sized = "C: SIZE kept\nS: 213 5\n";
const std::string Brought = "C: RETR kept\n-- call\nS: 150 coming\nD: bytes\n-- end\nS: 226 done\n";
const std::string Get = Sized + Data("RETR kept");
const std::string First = LogIn + "C: TYPE I\nS: 200\n" + Passive(4001) + Get;

const std::string Listed = LogIn + Passive(4001) + Data("NLST");

std::string ReadyFor(int port)
{
    return "C: TYPE I\nS: 200\n" + Passive(port);
}

struct StrictConversation : Conversation {
    explicit StrictConversation(const std::string& script) : Conversation(script) { Server.SetStrict(true); }
};

// The user takes a moment to choose.
void GetReady(Conversation& talk)
{
    talk.Session->GetReady();
    talk.Let(RoundTrip);
}

}  // namespace

void SentAheadTest::AnAnonymousListingTakesSixRoundTrips()
{
    StrictConversation talk("S: 220 ready\nC: USER anonymous\nS: 331 who?\nC: PASS anonymous@example.com\nS: 230 in\n" +
                            Passive(4001) + Data("LIST"));
    talk.Where.User.clear();
    talk.Where.Password.clear();
    talk.Server.SetLatency(Latency);
    QVERIFY_GOOD(talk.Do("DIR"));
    QCOMPARE(talk.LastDuration.count(), (6 * RoundTrip).count());
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::AFurtherFileTakesThreeRoundTrips()
{
    StrictConversation talk(First + Passive(4002) + Get);
    talk.Server.SetLatency(Latency);
    QVERIFY_GOOD(talk.Do("GET kept"));
    QVERIFY_GOOD(talk.Do("GET kept"));
    // One for the port; a connection and what comes over it take two, whoever speaks first.
    QCOMPARE(talk.LastDuration.count(), (3 * RoundTrip).count());
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::AFileWhosePortIsThereTakesTwoRoundTrips()
{
    StrictConversation talk(First + Passive(4002) + Get);
    talk.Server.SetLatency(Latency);
    talk.How.MoreToCome = true;
    QVERIFY_GOOD(talk.Do("GET kept"));
    talk.How.MoreToCome = false;
    talk.Let(RoundTrip);
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.LastDuration.count(), (2 * RoundTrip).count());
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::ALoneFileThatWasExpectedTakesTwoRoundTrips_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("type");
    QTest::newRow("after a listing") << QByteArray("LS") << QByteArray("C: TYPE I\nS: 200\n");
    QTest::newRow("after a file") << QByteArray("GET kept") << QByteArray();
}

void SentAheadTest::ALoneFileThatWasExpectedTakesTwoRoundTrips()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, type);
    StrictConversation talk((before == "LS" ? LogIn + Passive(4001) + Data("NLST") : First) + type.toStdString() +
                            Passive(4002) + Get);
    talk.Server.SetLatency(Latency);
    QVERIFY_GOOD(talk.Do(before.toStdString()));
    GetReady(talk);
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.LastDuration.count(), (2 * RoundTrip).count());
    QCOMPARE(talk.LocalFile("kept"), QByteArray("bytes"));
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::AnExpectedFileGoesOutInTwoRoundTrips()
{
    StrictConversation talk(Listed + ReadyFor(4002) + "C: STOR sent\n-- accept\nS: 150 go\nU: bytes\nS: 226 done\n");
    talk.Server.SetLatency(Latency);
    talk.MakeLocalFile("sent", "bytes");
    QVERIFY_GOOD(talk.Do("LS"));
    GetReady(talk);
    QVERIFY_GOOD(talk.Do("PUT sent"));
    QCOMPARE(talk.LastDuration.count(), (2 * RoundTrip).count());
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::GettingReadyAsksOnce()
{
    StrictConversation talk(Listed + ReadyFor(4002) + Get);
    QVERIFY_GOOD(talk.Do("LS"));
    for (int times = 0; times < 3; ++times) GetReady(talk);
    QVERIFY_GOOD(talk.Do("GET kept"));
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::GettingReadyNeedsASession()
{
    StrictConversation talk(Listed + "C: QUIT\nS: 221 bye\n-- end\n");
    talk.Session->GetReady();
    talk.Settle();
    QCOMPARE(talk.Server.TimesHeard(), 0);
    QVERIFY_GOOD(talk.Do("LS"));
    QVERIFY_GOOD(talk.Do("CLOSE"));
    const int heard = talk.Server.TimesHeard();
    talk.Session->GetReady();
    talk.Settle();
    QCOMPARE(talk.Server.TimesHeard(), heard);
    QVERIFY(!talk.Session->IsConnected());
}

void SentAheadTest::GettingReadyIsForServersThatKeepUp()
{
    StrictConversation talk(LogIn + "S: 230 and again\n" + Passive(4001) + Data("NLST") + "C: TYPE I\nS: 200\n" +
                            Passive(4002) + Get);
    QVERIFY_GOOD(talk.Do("LS"));
    const int heard = talk.Server.TimesHeard();
    GetReady(talk);
    QCOMPARE(talk.Server.TimesHeard(), heard);
    QVERIFY_GOOD(talk.Do("GET kept"));
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::ALineSaidUnaskedEndsGettingReady()
{
    StrictConversation talk(Listed + "S: 200 by the way\nC: TYPE I\nS: 200\n" + Passive(4002) + Get);
    QVERIFY_GOOD(talk.Do("LS"));
    talk.Settle();
    const int heard = talk.Server.TimesHeard();
    GetReady(talk);
    QCOMPARE(talk.Server.TimesHeard(), heard);
    QVERIFY_GOOD(talk.Do("GET kept"));
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::WhatWasExpectedNeedNotCome_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("script");
    QTest::newRow("a listing") << QByteArray("LS")
                               << QByteArray::fromStdString("C: TYPE A\nS: 200\n" + Passive(4003) + Data("NLST") +
                                                            "C: TYPE I\nS: 200\n" + Passive(4004) + Get);
    const QByteArray file = QByteArray::fromStdString("C: TYPE I\nS: 200\n" + Passive(4004) + Get);
    QTest::newRow("a folder") << QByteArray("CD pub") << "C: CWD pub\nS: 250\n" + file;
    QTest::newRow("an erasure") << QByteArray("DELETE old") << "C: DELE old\nS: 250\n" + file;
    QTest::newRow("a name") << QByteArray("RENAME a b") << "C: RNFR a\nS: 350\nC: RNTO b\nS: 250\n" + file;
    QTest::newRow("a size") << QByteArray("SIZE kept")
                            << QByteArray::fromStdString("C: TYPE I\nS: 200\nC: SIZE kept\nS: 213 5\n" + Passive(4004) +
                                                         Get);
}

// And the next file is sent in one go again: nothing has made the server look slow.
void SentAheadTest::WhatWasExpectedNeedNotCome()
{
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, script);
    StrictConversation talk(Listed + ReadyFor(4002) + script.toStdString());
    talk.Server.SetLatency(Latency);
    QVERIFY_GOOD(talk.Do("LS"));
    GetReady(talk);
    QVERIFY_GOOD(talk.Do(command.toStdString()));
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.LastDuration.count(), (3 * RoundTrip).count());
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::APortThatWaitedTooLongIsAskedForAnew()
{
    StrictConversation talk(Listed + ReadyFor(4002) + "C: TYPE I\nS: 200\n" + Passive(4003) + Get);
    QVERIFY_GOOD(talk.Do("LS"));
    GetReady(talk);
    talk.Let(std::chrono::seconds(30));
    QVERIFY_GOOD(talk.Do("GET kept"));
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::APortThatIsClosedAgainIsAskedForAnew()
{
    // The connection is given up before the server has read what was sent with it.
    Conversation talk(Listed + "C: TYPE I\nS: 200\nC: EPSV\nS: 229 (|||4002|)\n-- gone\n" + LogIn +
                      "C: TYPE I\nS: 200\n" + Passive(4003) + Get);
    QVERIFY_GOOD(talk.Do("LS"));
    GetReady(talk);
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.LocalFile("kept"), QByteArray("bytes"));
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::ARefusalToGetReadyIsRecovered()
{
    StrictConversation talk(Listed +
                            "C: TYPE I\nS: 200\nC: EPSV\nS: 500 not now\nC: SIZE kept\nS: 213 5\n"
                            "C: RETR kept\nS: 425 no port\nC: PASV\nS: 227 (127,0,0,1,15,162)\n-- listen 4002\n" +
                            Get);
    QVERIFY_GOOD(talk.Do("LS"));
    GetReady(talk);
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.LocalFile("kept"), QByteArray("bytes"));
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::ASessionThatEndedWhileReadyBeginsAnew_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("end");
    for (const char* command : {"GET kept", "PWD", "DELETE kept"})
        for (const char* end : {"-- close", "-- break", "S: 421 waited too long\n-- close"})
            QTest::addRow("%s, %.11s", command, end) << QByteArray(command) << QByteArray(end);
}

void SentAheadTest::ASessionThatEndedWhileReadyBeginsAnew()
{
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, end);
    const std::string again = command == "GET kept" ? "C: TYPE I\nS: 200\n" + Passive(4003) + Get
                              : command == "PWD"    ? std::string("C: PWD\nS: 257 \"/\"\n")
                                                    : std::string("C: DELE kept\nS: 250 gone\n");
    for (const bool soon : {true, false}) {
        StrictConversation talk(Listed + "C: TYPE I\nS: 200\nC: EPSV\n" + end.toStdString() + "\n" + LogIn + again);
        QVERIFY_GOOD(talk.Do("LS"));
        talk.Session->GetReady();
        if (!soon) talk.Settle();
        QVERIFY_GOOD(talk.Do(command.toStdString()));
        QVERIFY_FOLLOWED(talk);
    }
}

void SentAheadTest::SilenceAfterGettingReadyCostsOneTimeOut_data()
{
    QTest::addColumn<QByteArray>("command");
    for (const char* command : {"GET kept", "PWD", "LS"}) QTest::newRow(command) << QByteArray(command);
}

void SentAheadTest::SilenceAfterGettingReadyCostsOneTimeOut()
{
    QFETCH(QByteArray, command);
    StrictConversation talk(Listed + "C: TYPE I\nC: EPSV\n-- gone\n");
    QVERIFY_GOOD(talk.Do("LS"));
    GetReady(talk);
    QCOMPARE_FAILED(talk.Do(command.toStdString()), 12002);
    QCOMPARE(talk.LastDuration.count(), Conversation::Limit.count());
}

// The server connects as soon as it has heard of the file: nobody waits to be told a port.
void SentAheadTest::AFileThatTheServerBringsTakesTwoRoundTrips()
{
    const std::string brought = "C: PORT *\nS: 200\n" + Sized + Brought;
    StrictConversation talk(LogIn + "C: TYPE I\nS: 200\n" + brought + brought);
    talk.Book->Note("server.test", ScriptedServer::Port, Ftp::DataWay::Active);
    talk.Server.SetLatency(Latency);
    QVERIFY_GOOD(talk.Do("GET kept"));
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.LastDuration.count(), (2 * RoundTrip).count());
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::ARefusedPortOfOursInMidSessionIsRecovered()
{
    StrictConversation talk(LogIn + "C: TYPE I\nS: 200\nC: PORT *\nS: 200\n" + Sized + Brought +
                            "C: PORT *\nS: 500 no\n" + Sized + "C: RETR kept\nS: 150 soon\nS: 425 no port\n" +
                            Passive(4001) + Get);
    talk.Book->Note("server.test", ScriptedServer::Port, Ftp::DataWay::Active);
    QVERIFY_GOOD(talk.Do("GET kept"));
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.LocalFile("kept"), QByteArray("bytes"));
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::OneAtATimeTheSameTakesLonger()
{
    // Two answers to the first line: from then on each line waits for the answer to the one before.
    StrictConversation talk(LogIn +
                            "C: PWD\nS+ 257 \"/\"\\r\\n257 \"/\"\\r\\n\nC: PWD\nS: 257 \"/\"\nC: TYPE I\nS: 200\n" +
                            Passive(4001) + Get);
    talk.Server.SetLatency(Latency);
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.LastDuration.count(), (5 * RoundTrip).count());
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::TheWayIntoTheFolderCostsNothingMore()
{
    StrictConversation talk(LogIn + "C: CWD pub\nS: 250 there\n" + Passive(4001) + Data("LIST"));
    talk.Where.Path = "pub";
    talk.Server.SetLatency(Latency);
    QVERIFY_GOOD(talk.Do("DIR"));
    QCOMPARE(talk.LastDuration.count(), (6 * RoundTrip).count());
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::ARefusedPortIsAskedForTheOldWay()
{
    StrictConversation talk(LogIn + "C: EPSV\nS: 502 what?\nC: PASV\nS: 227 (127,0,0,1,15,161)\n-- listen 4001\n" +
                            Data("LIST") + "C: PASV\nS: 227 (127,0,0,1,15,162)\n-- listen 4002\n" + Data("LIST"));
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::ARefusedPortInMidSessionIsRecovered()
{
    StrictConversation talk(First +
                            "C: EPSV\nS: 500 not now\nC: SIZE kept\nS: 213 5\nC: RETR kept\nS: 425 no port\n"
                            "C: PASV\nS: 227 (127,0,0,1,15,162)\n-- listen 4002\n" +
                            Get + "C: PASV\nS: 227 (127,0,0,1,15,163)\n-- listen 4003\n" + Get);
    QVERIFY_GOOD(talk.Do("GET kept"));
    QVERIFY_GOOD(talk.Do("GET kept"));
    const int heard = talk.Server.TimesHeard();
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.Server.TimesHeard() - heard, 3);
    QCOMPARE(talk.LocalFile("kept"), QByteArray("bytes"));
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::ARefusedFileKeepsTheSessionInStep()
{
    StrictConversation talk(First + Passive(4002) +
                            "C: SIZE none\nS: 550 no such file\nC: RETR none\nS: 550 nothing\n"
                            "C: PWD\nS: 257 \"/\"");
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE_FAILED(talk.Do("GET none"), 550);
    QCOMPARE(talk.LocalFiles(), QStringList{"kept"});
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::ADuplicatedReplyEndsSendingAhead()
{
    StrictConversation talk(LogIn + "S: 230 and again\n" + Passive(4001) + Data("LIST"));
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::AServerThatThrowsLinesAwayGetsThemOneAtATime()
{
    // It reads the password, and nothing that came in the same packet.
    StrictConversation talk(LogIn + "-- gone\n" + LogIn + Passive(4001) + Data("LIST"));
    QVERIFY_GOOD(talk.Do("DIR"));
    QCOMPARE(talk.LastDuration.count(), (Conversation::Limit / 4).count());
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::AServerThatLeavesOverThemGetsThemOneAtATime()
{
    for (const char* end : {"-- close", "-- break", "S: 421 one at a time, please\n-- close"}) {
        StrictConversation talk(LogIn + end + "\n" + LogIn + Passive(4001) + Data("LIST"));
        QVERIFY_GOOD(talk.Do("DIR"));
        QCOMPARE(talk.LastDuration.count(), 0);
        QVERIFY_FOLLOWED(talk);
    }
}

void SentAheadTest::ThePortAskedForInAdvanceIsUsed()
{
    StrictConversation talk(First + Passive(4002) + Get + Passive(4003) + Data("NLST"));
    talk.How.MoreToCome = true;
    QVERIFY_GOOD(talk.Do("GET kept"));
    talk.How.MoreToCome = false;
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.Server.DataPeers().size(), 2U);
    talk.Server.Play("C: TYPE A\nS: 200\n" + Passive(4003) + Data("NLST"));
    QVERIFY_GOOD(talk.Do("LS"));
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::APortNobodyNeedsDoesNoHarm()
{
    StrictConversation talk(First + Passive(4002) + "C: PWD\nS: 257 \"/\"\n" + Passive(4003) + Get);
    talk.How.MoreToCome = true;
    QVERIFY_GOOD(talk.Do("GET kept"));
    talk.How.MoreToCome = false;
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_GOOD(talk.Do("GET kept"));
    QVERIFY_FOLLOWED(talk);
}

void SentAheadTest::ASessionThatEndedWithThePortAskedForBeginsAnew()
{
    for (const char* end : {"-- close", "-- break", "S: 421 waited too long\n-- close"}) {
        StrictConversation talk(First + Passive(4002) + end + "\n" + First);
        talk.How.MoreToCome = true;
        QVERIFY_GOOD(talk.Do("GET kept"));
        talk.How.MoreToCome = false;
        talk.Settle();
        QVERIFY_GOOD(talk.Do("GET kept"));
        QVERIFY_FOLLOWED(talk);
    }
}

void SentAheadTest::NothingIsSentAheadToAServerThatRefusesTheLogIn()
{
    StrictConversation talk("S: 220\nC: USER ann\nS: 331\nC: PASS secret\nS: 530 no\n");
    QCOMPARE_FAILED(talk.Do("DIR"), 530);
    QVERIFY(!talk.Session->IsConnected());
    QVERIFY_FOLLOWED(talk);
}

QTEST_GUILESS_MAIN(SentAheadTest)
#include "sent_ahead_test.moc"
