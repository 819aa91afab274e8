#include "support/outcome_checks.h"
#include "support/sample_conversations.h"

#include <QtTest>

/// Data connections that the server makes, where it refuses to be called or cannot be reached: how they come about, who
/// is let in, how long they are waited for, and how the way that worked is remembered.
class ActiveModeTest : public QObject {
    Q_OBJECT

private slots:
    void ItIsTheLastResort_data();
    void ItIsTheLastResort();
    void PortsThatAreSilentHaveTheirShares();
    void OneSilentPortHasHalfOfWhatIsLeftToTwo();
    void OverIpv6ThePortIsTheExtendedOne();
    void ReceivesInEveryOrder_data();
    void ReceivesInEveryOrder();
    void SendsInEveryOrder_data();
    void SendsInEveryOrder();
    void OnlyTheServerIsLetIn();
    void ThePortIsClosedOnceTheServerIsThere();
    void D14AServerThatConnectsLateIsWaitedFor();
    void D14AServerThatNeverConnectsTimesOut();
    void D14ARefusalIsToldAndKeepsTheSession_data();
    void D14ARefusalIsToldAndKeepsTheSession();
    void TheOnlyWayThatIsLeftTellsItsRefusal();
    void AConfirmationWithoutDataIsNoSuccess();
    void CancelWorksWhileTheServerIsWaitedFor();
    void ATornConnectionIsOneCleanFailure_data();
    void ATornConnectionIsOneCleanFailure();

    void WhatWorkedIsTriedFirst_data();
    void WhatWorkedIsTriedFirst();
    void EachServerHasItsOwnWay();
    void ARememberedWayThatIsRefusedIsForgotten();
    void ARememberedPortThatCannotBeReachedIsForgotten();
    void AServerThatDoesNotConnectAnyMoreIsAskedForAPort_data();
    void AServerThatDoesNotConnectAnyMoreIsAskedForAPort();
    void AServerThatDoesNothingAnyMoreCostsOneTimeOut();
    void ASingleFileFindsItsWay();
};

namespace {

const std::string Binary = "C: TYPE I\nS: 200 fine\n";
const std::string Offer = "C: PORT *\nS: 200 fine\n";
const std::string Passive = "C: EPSV\nS: 229 here (|||4001|)\n-- listen 4001\n";
const std::string Get = LogIn + Binary + SampleActive + "C: RETR kept\n";
const std::string Put = LogIn + Binary + SampleActive + "C: STOR sent\n";
const std::string Called = "-- call\nS: 150\nD: data\n-- end\nS: 226\n";
const std::string Fetched = "-- accept\nS: 150\nD: data\n-- end\nS: 226\n";
const std::string StillThere = "C: PWD\nS: 257 \"/\"\n";

void Add(const char* name, const std::string& script)
{
    QTest::newRow(name) << QString::fromStdString(script);
}

std::string Script()
{
    return (*static_cast<QString*>(QTest::qData("script", QMetaType::QString))).toStdString();
}

Ftp::DataWay Known(Conversation& talk)
{
    return talk.Book->Find("server.test", ScriptedServer::Port);
}

}  // namespace

void ActiveModeTest::ItIsTheLastResort_data()
{
    QTest::addColumn<QString>("script");
    Add("both refused", "C: EPSV\nS: 502\nC: PASV\nS: 502\n");
    Add("one cannot be reached", "C: EPSV\nS: 229 (|||4999|)\nC: PASV\nS: 502\n");
    Add("both cannot be reached", "C: EPSV\nS: 229 (|||4999|)\nC: PASV\nS: 227 (127,0,0,1,15,161)\n");
    Add("nonsense", "C: EPSV\nS: 229 here\nC: PASV\nS: 227 there\n");
}

void ActiveModeTest::ItIsTheLastResort()
{
    // The port is a new one each time; what was refused once is not asked for again.
    Conversation talk(LogIn + Script() + "C: PORT 127,0,0,1,195,81\nS: 200\nC: LIST\n" + Called +
                      "C: PORT 127,0,0,1,195,82\nS: 200\nC: LIST\n" + Called);
    for (int i = 0; i < 2; ++i) {
        const Ftp::Outcome got = talk.Do("DIR");
        QVERIFY_GOOD(got);
        QCOMPARE(got.Reply, std::string("data"));
        QCOMPARE(talk.LastDuration.count(), 0);
    }
    QVERIFY_FOLLOWED(talk);
}

void ActiveModeTest::PortsThatAreSilentHaveTheirShares()
{
    Conversation talk(LogIn + "-- silent 4999\nC: EPSV\nS: 229 (|||4999|)\nC: PASV\nS: 227 (127,0,0,1,19,135)\n" +
                      Offer + "C: LIST\n" + Called);
    QVERIFY_GOOD(talk.Do("DIR"));
    QCOMPARE(talk.LastDuration.count(), (Conversation::Limit * 2 / 3).count());
    QVERIFY_FOLLOWED(talk);

    Conversation never(LogIn + "-- silent 4999\nC: EPSV\nS: 229 (|||4999|)\nC: PASV\nS: 227 (127,0,0,1,19,135)\n" +
                       Offer + "C: LIST\n-- door closed\n" + LogIn + StillThere);
    QCOMPARE_FAILED(never.Do("DIR"), Ftp::TimeOutError);
    QCOMPARE(never.LastDuration.count(), Conversation::Limit.count());
    QVERIFY_GOOD(never.Do("PWD"));
    QVERIFY_FOLLOWED(never);
}

void ActiveModeTest::OneSilentPortHasHalfOfWhatIsLeftToTwo()
{
    Conversation talk(LogIn + "-- silent 4999\nC: EPSV\nS: 502\nC: PASV\nS: 227 (127,0,0,1,19,135)\n" + Offer +
                      "C: LIST\n" + Called);
    QVERIFY_GOOD(talk.Do("DIR"));
    QCOMPARE(talk.LastDuration.count(), (Conversation::Limit / 2).count());
    QVERIFY_FOLLOWED(talk);
}

void ActiveModeTest::OverIpv6ThePortIsTheExtendedOne()
{
    Conversation talk(LogIn + "C: EPSV\nS: 522 no\nC: EPRT |2|::1|50001|\nS: 200\nC: LIST\n" + Called);
    talk.Server.SetHost({asio::ip::make_address("::1")});
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_FOLLOWED(talk);
    QVERIFY(Known(talk) == Ftp::DataWay::Active);
}

void ActiveModeTest::ReceivesInEveryOrder_data()
{
    QTest::addColumn<QString>("script");
    Add("connects, then says so", "-- call\nS: 150\nD: data\n-- end\nS: 226");
    Add("says so, then connects", "S: 150\n-- pause 9000\n-- call\nD: data\n-- end\nS: 226");
    Add("connects late and says nothing before", "-- pause 9000\n-- call\nD: data\n-- end\nS: 250");
    Add("confirms before the data", "-- call\nS: 226\nD: da\n-- pause 5\nD: ta\n-- end");
    Add("confirms before it connects", "S: 226\n-- pause 1000\n-- call\nD: data\n-- end");
    Add("another 1xx later", "-- call\nS: 125\nD: data\nS: 150\n-- end\n-- pause 9000\nS: 226");
}

void ActiveModeTest::ReceivesInEveryOrder()
{
    Conversation talk(Get + Script() + "\n" + StillThere);
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.LocalFile("kept"), QByteArray("data"));
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void ActiveModeTest::SendsInEveryOrder_data()
{
    QTest::addColumn<QString>("script");
    Add("connects, then says so", "-- call\nS: 150\nU: data\nS: 226");
    Add("says so, then connects", "S: 150\n-- pause 9000\n-- call\nU: data\nS: 226");
    Add("says nothing before", "-- call\nU: data\nS: 250");
    Add("late", "S: 150\n-- pause 5000\n-- call\nU: data\n-- pause 15000\nS: 226");
}

void ActiveModeTest::SendsInEveryOrder()
{
    Conversation talk(Put + Script() + "\n" + StillThere);
    talk.MakeLocalFile("sent", "data");
    QVERIFY_GOOD(talk.Do("PUT sent"));
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void ActiveModeTest::OnlyTheServerIsLetIn()
{
    Conversation talk(Get + "-- call 10.9.9.9\n-- call ::1\n-- pause 5\n-- call 127.0.0.2\n" + Called);
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.LocalFile("kept"), QByteArray("data"));
    QCOMPARE(talk.Server.StrangersLeft(), 3U);
    QVERIFY_FOLLOWED(talk);

    // Strangers do not make the wait longer.
    Conversation never(Get + "-- call 10.9.9.9\n-- pause 15000\n-- call 10.9.9.9\n-- pause 15000");
    QCOMPARE_FAILED(never.Do("GET kept"), Ftp::TimeOutError);
    QCOMPARE(never.LastDuration.count(), Conversation::Limit.count());
    QCOMPARE(never.Server.StrangersLeft(), 2U);
    QCOMPARE(never.Server.OpenLinks(), 0U);
    QVERIFY(never.LocalFiles().isEmpty());
}

void ActiveModeTest::ThePortIsClosedOnceTheServerIsThere()
{
    Conversation talk(Get + "-- call\n-- call 10.9.9.9\n-- door closed\nS: 150\nD: data\n-- end\nS: 226");
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.Server.StrangersLeft(), 1U);
    QVERIFY_FOLLOWED(talk);
}

void ActiveModeTest::D14AServerThatConnectsLateIsWaitedFor()
{
    Conversation talk(Get + "-- pause 19999\n" + Called);
    QVERIFY_GOOD(talk.Do("GET kept"));
    QVERIFY_FOLLOWED(talk);
}

void ActiveModeTest::D14AServerThatNeverConnectsTimesOut()
{
    for (const char* opening : {"", "S: 150 coming\n"}) {
        Conversation talk(Get + opening + "-- door closed\n-- gone\n" + LogIn + StillThere);
        talk.MakeLocalFile("kept", SampleKept);
        QCOMPARE_FAILED(talk.Do("GET kept"), Ftp::TimeOutError);
        QCOMPARE(talk.LastDuration.count(), Conversation::Limit.count());
        QCOMPARE(talk.LocalFile("kept"), SampleKept);
        QCOMPARE(talk.LocalFiles(), QStringList{"kept"});
        QVERIFY(Known(talk) == Ftp::DataWay::Extended);
        QVERIFY_GOOD(talk.Do("PWD"));
        QVERIFY_FOLLOWED(talk);
    }
}

void ActiveModeTest::D14ARefusalIsToldAndKeepsTheSession_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<int>("code");
    const std::string refused = "C: EPSV\nS: 502\nC: PASV\nS: 503 no ports\n";
    // Why nobody can be called tells more than that nobody is called.
    QTest::newRow("of the port") << QString::fromStdString(refused + "C: PORT *\nS: 500 never\n") << 503;
    QTest::newRow("of the data") << QString::fromStdString(refused + Offer + "C: RETR kept\nS: 425 cannot\n") << 425;
    QTest::newRow("behind 150") << QString::fromStdString(refused + Offer + "C: RETR kept\nS: 150\nS: 425 no\n") << 425;
    QTest::newRow("of the file") << QString::fromStdString(refused + Offer + "C: RETR kept\nS: 550 none\n") << 550;
}

void ActiveModeTest::D14ARefusalIsToldAndKeepsTheSession()
{
    QFETCH(int, code);
    Conversation talk(LogIn + Binary + Script() + "-- door closed\n" + StillThere);
    QCOMPARE_FAILED(talk.Do("GET kept"), code);
    QCOMPARE(talk.LastDuration.count(), 0);
    QVERIFY(talk.LocalFiles().isEmpty());
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

// A server that had let us offer a port, but called nobody, and then wants no port at all.
void ActiveModeTest::TheOnlyWayThatIsLeftTellsItsRefusal()
{
    Conversation talk(LogIn + Binary + "C: EPSV\nS: 502\nC: PASV\nS: 503 no ports\n" + Offer +
                      "C: RETR kept\nS: 425 cannot\nC: PORT *\nS: 500 never again\n" + StillThere);
    QCOMPARE_FAILED(talk.Do("GET kept"), 425);
    const Ftp::Outcome second = talk.Do("GET kept");
    QCOMPARE_FAILED(second, 500);
    QVERIFY(!second.Text.empty());
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void ActiveModeTest::AConfirmationWithoutDataIsNoSuccess()
{
    Conversation talk(Get + "S: 150\nS: 226 done\n-- door closed\n" + StillThere);
    QVERIFY(!talk.Do("GET kept").Good);
    QVERIFY(talk.LastDuration < Conversation::Limit);
    QVERIFY(talk.LocalFiles().isEmpty());
    talk.Server.Play((talk.Session->IsConnected() ? "" : LogIn) + StillThere);
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void ActiveModeTest::CancelWorksWhileTheServerIsWaitedFor()
{
    for (const char* operation : {"GET kept", "PUT sent", "DIR"}) {
        Conversation talk;
        talk.MakeLocalFile("sent", SampleSent);
        const std::string binary = std::string(operation) == "DIR" ? "" : Binary;
        const std::string script = LogIn + binary + SampleActive + "C: *\nS: 150 soon\n-- pause 100\n-- silence";
        Conversation counting(script);
        const auto cancel = [&talk] { talk.Session->Cancel(); };
        talk.Server.Play(script, {Disturbance::Call, counting.Server.StepCount() - 1, cancel});
        QCOMPARE_FAILED(talk.Do(operation), Ftp::CancelledError);
        QCOMPARE(talk.LastDuration.count(), 100);
        QCOMPARE(talk.Server.OpenLinks(), 0U);
        QCOMPARE(talk.LocalFiles(), QStringList{"sent"});
        talk.Server.Play("-- door closed\n" + LogIn + StillThere);
        QVERIFY_GOOD(talk.Do("PWD"));
        QVERIFY_FOLLOWED(talk);
    }
}

void ActiveModeTest::ATornConnectionIsOneCleanFailure_data()
{
    QTest::addColumn<QString>("script");
    Add("before it", "-- close");
    Add("before it, reset", "-- break");
    Add("behind 150", "S: 150\n-- close");
    Add("goodbye", "S: 150\nS: 421 bye\n-- close");
    Add("behind it", "-- call\n-- close");
    Add("behind it, reset", "-- call\n-- break data\n-- break");
    Add("no data", "-- call\nS: 150\n-- break data\nS: 226");
    Add("half the data", "-- call\nS: 150 (4 bytes)\nD: da\n-- end\nS: 226");
    Add("half the data, reset", "-- call\nS: 150\nD: da\n-- break data\nS: 226");
    Add("half the data, refused", "-- call\nS: 150\nD: da\n-- end\nS: 426 broken");
    Add("all the data, unconfirmed", "-- call\nS: 150\nD: data\n-- end\n-- silence");
    Add("all the data, and silence", "-- call\nS: 150\nD: data\n-- silence");
}

void ActiveModeTest::ATornConnectionIsOneCleanFailure()
{
    Conversation talk(Get + Script());
    talk.MakeLocalFile("kept", SampleKept);
    const Ftp::Outcome got = talk.Do("GET kept");
    QVERIFY(!got.Good);
    QVERIFY(got.Text.size() > 2);
    QVERIFY(talk.LastDuration <= Conversation::Limit);
    QCOMPARE(talk.LocalFile("kept"), SampleKept);
    QCOMPARE(talk.LocalFiles(), QStringList{"kept"});
    talk.Server.Play((talk.Session->IsConnected() ? "" : LogIn) + StillThere);
    QVERIFY_GOOD(talk.Do("PWD"));
    talk.Session->Drop();
    talk.Settle();
    QCOMPARE(talk.Server.OpenLinks(), 0U);
    QVERIFY(!talk.Clock.JumpToNextAlarm());
}

void ActiveModeTest::WhatWorkedIsTriedFirst_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("again");
    const auto add = [](const char* name, const std::string& script, const std::string& again) {
        QTest::newRow(name) << QString::fromStdString(script) << QString::fromStdString(again);
    };
    const std::string port = "S: 227 (127,0,0,1,15,161)\n-- listen 4001\n";
    add("extended", Passive + "C: LIST\n" + Fetched, Passive + "C: LIST\n" + Fetched);
    add("passive", "C: EPSV\nS: 502\nC: PASV\n" + port + "C: LIST\n" + Fetched,
        "C: PASV\n" + port + "C: LIST\n" + Fetched);
    add("active", SampleActive + "C: LIST\n" + Called, Offer + "C: LIST\n" + Called);
}

void ActiveModeTest::WhatWorkedIsTriedFirst()
{
    QFETCH(QString, again);
    Conversation talk(LogIn + Script() + "C: QUIT\nS: 221\n-- gone\n" + LogIn + again.toStdString());
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_GOOD(talk.Do("CLOSE"));
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_FOLLOWED(talk);
}

void ActiveModeTest::EachServerHasItsOwnWay()
{
    Conversation talk(LogIn + SampleActive + "C: LIST\n" + Called);
    QVERIFY_GOOD(talk.Do("DIR"));
    talk.Where.Host = "127.0.0.1";
    talk.Server.Play("-- gone\n" + LogIn + Passive + "C: LIST\n" + Fetched);
    QVERIFY_GOOD(talk.Do("DIR"));
    talk.Where.Host = "server.test";
    talk.Server.Play("-- gone\n" + LogIn + Offer + "C: LIST\n" + Called);
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_FOLLOWED(talk);
}

void ActiveModeTest::ARememberedWayThatIsRefusedIsForgotten()
{
    for (const Ftp::DataWay way : {Ftp::DataWay::Active, Ftp::DataWay::Passive}) {
        const std::string line = way == Ftp::DataWay::Active ? "C: PORT *\n" : "C: PASV\n";
        Conversation talk(LogIn + line + "S: 500 not any more\n" + Passive + "C: LIST\n" + Fetched + Passive +
                          "C: LIST\n" + Fetched);
        talk.Book->Note("server.test", ScriptedServer::Port, way);
        QVERIFY_GOOD(talk.Do("DIR"));
        QVERIFY(Known(talk) == Ftp::DataWay::Extended);
        QVERIFY_GOOD(talk.Do("DIR"));
        QVERIFY_FOLLOWED(talk);
    }
}

void ActiveModeTest::ARememberedPortThatCannotBeReachedIsForgotten()
{
    Conversation talk(LogIn + "-- silent 4999\nC: PASV\nS: 227 (127,0,0,1,19,135)\n" + Passive + "C: LIST\n" + Fetched);
    talk.Book->Note("server.test", ScriptedServer::Port, Ftp::DataWay::Passive);
    QVERIFY_GOOD(talk.Do("DIR"));
    QCOMPARE(talk.LastDuration.count(), (Conversation::Limit / 3).count());
    QVERIFY(Known(talk) == Ftp::DataWay::Extended);
    QVERIFY_FOLLOWED(talk);
}

void ActiveModeTest::AServerThatDoesNotConnectAnyMoreIsAskedForAPort_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<int>("cost");
    const int share = int(Conversation::Limit.count() / 3);
    const auto add = [](const char* name, const std::string& script, int cost) {
        QTest::newRow(name) << QString::fromStdString(script) << cost;
    };
    add("425", "S: 425 cannot\n", 0);
    add("150 and 425", "S: 150 soon\nS: 425 cannot\n", 0);
    add("nothing", "-- door closed\n-- gone\n" + LogIn + Binary, share);
    add("150 and nothing", "S: 150 soon\n-- door closed\n-- gone\n" + LogIn + Binary, share);
    add("it goes away", "-- close\n" + LogIn + Binary, 0);
}

void ActiveModeTest::AServerThatDoesNotConnectAnyMoreIsAskedForAPort()
{
    QFETCH(int, cost);
    for (const char* operation : {"GET kept", "PUT sent"}) {
        const bool get = std::string(operation) == "GET kept";
        const std::string command = get ? "C: RETR kept\n" : "C: STOR sent\n";
        Conversation talk(LogIn + Binary + Offer + command + Script() + Passive + command +
                          (get ? Fetched : "-- accept\nS: 150\nU: data\nS: 226\n"));
        talk.MakeLocalFile("sent", "data");
        talk.Book->Note("server.test", ScriptedServer::Port, Ftp::DataWay::Active);
        QVERIFY_GOOD(talk.Do(operation));
        QCOMPARE(talk.LastDuration.count(), cost);
        QVERIFY(Known(talk) == Ftp::DataWay::Extended);
        QVERIFY_FOLLOWED(talk);
    }
}

void ActiveModeTest::AServerThatDoesNothingAnyMoreCostsOneTimeOut()
{
    // Each way leads nowhere, and the server that is called again falls silent.
    const std::string silent = "-- silent 4999\nC: EPSV\nS: 229 (|||4999|)\nC: PASV\nS: 227 (127,0,0,1,19,135)\n";
    for (const std::string& again : {std::string("S: 220 ready\n-- silence"), LogIn + Binary + silent}) {
        Conversation talk(LogIn + Binary + Offer + "C: RETR kept\n-- gone\n" + again);
        talk.Book->Note("server.test", ScriptedServer::Port, Ftp::DataWay::Active);
        QCOMPARE_FAILED(talk.Do("GET kept"), Ftp::TimeOutError);
        QCOMPARE(talk.LastDuration.count(), Conversation::Limit.count());
        QVERIFY(talk.LocalFiles().isEmpty());
    }
}

void ActiveModeTest::ASingleFileFindsItsWay()
{
    Conversation talk(Get + Called + "C: QUIT\nS: 221");
    const Ftp::Outcome got = talk.Fetch("kept");
    QVERIFY_GOOD(got);
    QCOMPARE(got.Reply, std::string("data"));

    Conversation other(LogIn + Binary + Offer + "C: RETR kept\n-- gone\n" + LogIn + Binary + Passive +
                       "C: RETR kept\n" + Fetched);
    other.Book->Note("server.test", ScriptedServer::Port, Ftp::DataWay::Active);
    QVERIFY_GOOD(other.Fetch("kept"));
    QCOMPARE(other.LastDuration.count(), (Conversation::Limit / 3).count());
}

QTEST_GUILESS_MAIN(ActiveModeTest)
#include "active_mode_test.moc"
