#include "support/outcome_checks.h"
#include "support/sample_conversations.h"

#include <QtTest>

/// Answers as servers in the world give them: odd replies, log-ins and information.
class QuirksRepliesTest : public QObject {
    Q_OBJECT

private slots:
    void AReplyClosedByAnotherCodeTimesOut();
    void LongLinesAreRead();
    void ACarriageReturnAloneEndsNoLine();
    void LineEndsOfAllKindsAreRead();
    void ARefusalWithoutATextSaysSo_data();
    void ARefusalWithoutATextSaysSo();
    void EveryReplyMayComeTwice();
    void NothingIsSentDuringATransfer();
    void NothingButA2xxIsSuccess_data();
    void NothingButA2xxIsSuccess();

    void ASilentServerTimesOutAtEachStep_data();
    void ASilentServerTimesOutAtEachStep();
    void AWelcomeLineByLineHasOneDeadline();
    void AnAccountWantedLaterIsAnErrorThatSaysSo();
    void AnonymousMayBeRefused();
    void DataGoesToTheAddressThatWasReached();
    void NothingIsAskedBeforeTheLogIn();

    void ASizeThatMakesNoSenseIsAnErrorOfItsOwn_data();
    void ASizeThatMakesNoSenseIsAnErrorOfItsOwn();
    void AFolderWithoutANameIsAnErrorOfItsOwn_data();
    void AFolderWithoutANameIsAnErrorOfItsOwn();
    void AFolderMayHaveAMessage();
};

namespace {

std::string StringIn(const char* column)
{
    return (*static_cast<QString*>(QTest::qData(column, QMetaType::QString))).toStdString();
}

}  // namespace

void QuirksRepliesTest::AReplyClosedByAnotherCodeTimesOut()
{
    Conversation talk(LogIn + "C: DELE x\nS: 553-not that one\nS: 150 really\n-- silence");
    QCOMPARE_FAILED(talk.Do("DELETE x"), Ftp::TimeOutError);
    QCOMPARE(talk.LastDuration.count(), Conversation::Limit.count());
    QVERIFY(!talk.Session->IsConnected());
}

void QuirksRepliesTest::LongLinesAreRead()
{
    for (const std::size_t length : {std::size_t{4096}, std::size_t{65'000}}) {
        Conversation talk(LogIn + "C: DELE x\nS: 550 " + std::string(length, 'x') + "\nC: PWD\nS: 257 \"/\"");
        QCOMPARE(talk.Do("DELETE x").Text.size(), length);
        QVERIFY_GOOD(talk.Do("PWD"));
    }
    Conversation tooLong(LogIn + "C: DELE x\nS: 550 " + std::string(100'000, 'x'));
    QCOMPARE_FAILED(tooLong.Do("DELETE x"), Ftp::ResponseError);
    QCOMPARE(tooLong.Server.OpenLinks(), 0U);
}

void QuirksRepliesTest::ACarriageReturnAloneEndsNoLine()
{
    Conversation talk("S+ 220 ready\\r\n-- silence");
    QCOMPARE_FAILED(talk.Do("DIR"), Ftp::TimeOutError);
}

void QuirksRepliesTest::LineEndsOfAllKindsAreRead()
{
    Conversation talk("S+ 220-hello\\n\\n220 ready\\r\\r\\n\nC: USER ann\nS+ 331 go on\\n\\r\\n\nC: PASS secret\n"
                      "S+ 230 in\\r\\n\\r\\n\\r\\n\nC: CDUP\nS+ 250 up\\n");
    QVERIFY_GOOD(talk.Do("CDUP"));
    QVERIFY(talk.Remarks.empty());
    QVERIFY_FOLLOWED(talk);
}

void QuirksRepliesTest::ARefusalWithoutATextSaysSo_data()
{
    QTest::addColumn<QString>("reply");
    QTest::newRow("code") << "550";
    QTest::newRow("code and blank") << "550 ";
    QTest::newRow("code and blanks") << "550    ";
    QTest::newRow("empty lines") << "550-\\r\\n\\r\\n550";
}

void QuirksRepliesTest::ARefusalWithoutATextSaysSo()
{
    Conversation talk(LogIn + "C: DELE x\nS+ " + StringIn("reply") + "\\r\\n\nC: PWD\nS: 257 \"/\"");
    const Ftp::Outcome got = talk.Do("DELETE x");
    QCOMPARE_FAILED(got, 550);
    QCOMPARE(got.Text, std::string("The server gives no reason."));
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

// The second one is dropped before the next command, however late it comes.
void QuirksRepliesTest::EveryReplyMayComeTwice()
{
    const std::string list =
        SamplePassive + "C: LIST\n-- accept\nS: 150\nD: x\\r\\n\n-- end\nS: 226 done\nS: 226 done\n";
    Conversation talk(LogIn + "S: 230 welcome again\n-- pause 1\nC: CWD x\nS: 250 there\nS: 250 there\n-- pause 1\n" +
                      list + "-- pause 1\nC: PWD\nS: 257 \"/x\"\nS: 257 \"/y\"\n-- pause 1\nC: DELE x\nS: 550 no");
    QVERIFY_GOOD(talk.Do("CD x"));
    QVERIFY(talk.Clock.JumpToNextAlarm());
    talk.Settle();
    QCOMPARE(talk.Do("DIR").Reply, std::string("x\r\n"));
    QVERIFY(talk.Clock.JumpToNextAlarm());
    talk.Settle();
    QCOMPARE(talk.Do("PWD").Reply, std::string("/x"));
    QVERIFY(talk.Clock.JumpToNextAlarm());
    talk.Settle();
    QCOMPARE_FAILED(talk.Do("DELETE x"), 550);
    QVERIFY_FOLLOWED(talk);
}

// A command sent meanwhile would be found in place of the next one.
void QuirksRepliesTest::NothingIsSentDuringATransfer()
{
    std::string drips;
    for (int i = 0; i < 60; ++i) drips += "D: x\n-- pause 15000\n";
    Conversation talk(LogIn + SamplePassive + "C: LIST\n-- accept\nS: 150\n" + drips +
                      "-- end\nS: 226\nC: PWD\nS: 257 \"/\"");
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void QuirksRepliesTest::NothingButA2xxIsSuccess_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("script");
    const std::string data = "-- accept\nS: 150\nD: x\n-- end\nS: 350 what else?";
    const auto row = [](const char* name, const char* operation, const std::string& script) {
        QTest::newRow(name) << QString(operation) << QString::fromStdString(script);
    };
    row("folder", "CD x", "C: CWD x\nS: 350 go on");
    row("above", "CDUP", "C: CDUP\nS: 300 hm");
    row("delete", "DELETE x", "C: DELE x\nS: 350 sure?");
    row("make", "MKDIR x", "C: MKD x\nS: 350 sure?");
    row("remove", "RMDIR x", "C: RMD x\nS: 350 sure?");
    row("rename", "RENAME x y", "C: RNFR x\nS: 350 go on\nC: RNTO y\nS: 350 go on");
    row("size", "SIZE x", "C: TYPE I\nS: 200\nC: SIZE x\nS: 350 5");
    row("where", "PWD", "C: PWD\nS: 350 \"/x\"");
    row("receive", "GET kept", "C: TYPE I\nS: 200\n" + SamplePassive + "C: RETR kept\n" + data);
    row("listing", "DIR", SamplePassive + "C: LIST\n" + data);
}

void QuirksRepliesTest::NothingButA2xxIsSuccess()
{
    Conversation talk(LogIn + StringIn("script"));
    talk.MakeLocalFile("kept", SampleKept);
    const Ftp::Outcome got = talk.Do(StringIn("operation"));
    QVERIFY(!got.Good);
    QVERIFY2(got.Code >= 300 && got.Code < 400, qPrintable(QString::number(got.Code)));
    QCOMPARE(talk.LocalFile("kept"), SampleKept);
    QVERIFY_FOLLOWED(talk);
}

void QuirksRepliesTest::ASilentServerTimesOutAtEachStep_data()
{
    QTest::addColumn<int>("step");
    for (const int step : {0, 2, 4}) QTest::addRow("%d", step) << step;
}

void QuirksRepliesTest::ASilentServerTimesOutAtEachStep()
{
    QFETCH(int, step);
    Conversation talk;
    talk.Server.Play(LogIn, {Disturbance::FallSilent, std::size_t(step)});
    const Ftp::Outcome got = talk.Do("DIR");
    QCOMPARE_FAILED(got, Ftp::TimeOutError);
    QCOMPARE(got.Text, std::string("The server did not answer in time."));
    QCOMPARE(talk.LastDuration.count(), Conversation::Limit.count());
}

void QuirksRepliesTest::AWelcomeLineByLineHasOneDeadline()
{
    std::string script;
    for (int i = 0; i < 100; ++i) script += "S: 220-please wait\n-- pause 500\n";
    Conversation talk(script);
    QCOMPARE_FAILED(talk.Do("DIR"), Ftp::TimeOutError);
    QCOMPARE(talk.LastDuration.count(), Conversation::Limit.count());
}

void QuirksRepliesTest::AnAccountWantedLaterIsAnErrorThatSaysSo()
{
    const std::string put = "C: TYPE I\nS: 200\n" + SamplePassive + "C: STOR sent\n";
    for (const auto& [operation, script] : {std::pair<std::string, std::string>{"CD x", "C: CWD x\n"},
                                            {"DELETE x", "C: DELE x\n"},
                                            {"PUT sent", put},
                                            {"MKDIR x", "C: MKD x\n"}}) {
        Conversation talk(LogIn + script + "S: 332 account, please\nC: PWD\nS: 257 \"/\"");
        talk.MakeLocalFile("sent", SampleSent);
        const Ftp::Outcome got = talk.Do(operation);
        QCOMPARE_FAILED(got, 332);
        QVERIFY2(got.Text.find("account name") != std::string::npos, got.Text.c_str());
        QVERIFY_GOOD(talk.Do("PWD"));
        QVERIFY_FOLLOWED(talk);
    }
}

void QuirksRepliesTest::AnonymousMayBeRefused()
{
    Conversation talk("S: 220 hi\nC: USER anonymous\nS: 530 no guests");
    talk.Where.User.clear();
    talk.Where.Password.clear();
    const Ftp::Outcome got = talk.Do("DIR");
    QCOMPARE_FAILED(got, 530);
    QCOMPARE(got.Text, std::string("no guests"));
    QVERIFY_FOLLOWED(talk);
}

void QuirksRepliesTest::DataGoesToTheAddressThatWasReached()
{
    const auto dead = asio::ip::make_address("127.0.0.9");
    const auto alive = asio::ip::make_address("127.0.0.3");
    for (const std::string& passive : {SamplePassive, SampleOldPassive}) {
        Conversation talk(LogIn + passive + "C: NLST\n-- accept\nS: 150\n-- end\nS: 226");
        talk.Server.SetHost({dead, alive});
        talk.Server.SetDead(dead, MemoryServer::Answer::Refused);
        QVERIFY_GOOD(talk.Do("LS"));
        QCOMPARE(talk.Server.DataPeers(), std::vector<Ftp::Endpoint>{Ftp::Endpoint(alive, 4001)});
        QVERIFY_FOLLOWED(talk);
    }
}

void QuirksRepliesTest::NothingIsAskedBeforeTheLogIn()
{
    Conversation talk(LogIn + "C: FEAT\nS: 500\nC: CWD \xc3\xbc\nS: 250 there");
    talk.Where.Path = "\xc3\xbc";
    talk.Server.Play(LogIn + "C: FEAT\nS: 500\nC: CWD \xc3\xbc\nS: 250 there\nC: CDUP\nS: 250 up");
    QVERIFY_GOOD(talk.Do("CDUP"));
    QVERIFY_FOLLOWED(talk);
}

void QuirksRepliesTest::ASizeThatMakesNoSenseIsAnErrorOfItsOwn_data()
{
    QTest::addColumn<QString>("reply");
    for (const char* reply : {"213 -5", "213 99999999999999999999999", "213 lots", "213", "550 no", "502 what?"})
        QTest::newRow(reply) << QString(reply);
}

void QuirksRepliesTest::ASizeThatMakesNoSenseIsAnErrorOfItsOwn()
{
    Conversation talk(LogIn + "C: TYPE I\nS: 200\nC: SIZE x\nS: " + StringIn("reply") + "\nC: PWD\nS: 257 \"/\"");
    const Ftp::Outcome got = talk.Do("SIZE x");
    QVERIFY(!got.Good);
    QVERIFY(!got.Text.empty());
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void QuirksRepliesTest::AFolderWithoutANameIsAnErrorOfItsOwn_data()
{
    QTest::addColumn<QString>("reply");
    for (const char* reply : {"257 /x", "257 \"\"", "257 \"/x", "257", "550 no", "502 what?"})
        QTest::newRow(reply) << QString(reply);
}

void QuirksRepliesTest::AFolderWithoutANameIsAnErrorOfItsOwn()
{
    Conversation talk(LogIn + "C: PWD\nS: " + StringIn("reply") + "\nC: CDUP\nS: 250 up\n" + SamplePassive +
                      "C: LIST\n-- accept\nS: 150\nD: x\\r\\n\n-- end\nS: 226");
    const Ftp::Outcome got = talk.Do("PWD");
    QVERIFY(!got.Good);
    QVERIFY(!got.Text.empty());
    QVERIFY_GOOD(talk.Do("CDUP"));
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_FOLLOWED(talk);
}

void QuirksRepliesTest::AFolderMayHaveAMessage()
{
    std::string script = LogIn + "C: CWD x\nS: 250-Read this:\n";
    for (int i = 0; i < 500; ++i) script += "S: 550 a line that looks like a refusal\nS: 250-\nS: \n";
    Conversation talk(script + "S: 250 there\nC: CDUP\nS: 200 up");
    QVERIFY_GOOD(talk.Do("CD x"));
    QVERIFY_GOOD(talk.Do("CDUP"));
    QVERIFY_FOLLOWED(talk);
}

QTEST_GUILESS_MAIN(QuirksRepliesTest)
#include "quirks_replies_test.moc"
