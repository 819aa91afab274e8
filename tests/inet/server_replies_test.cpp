#include "support/conversation.h"
#include "support/outcome_checks.h"

#include <QtTest>

/// Servers that answer in ways of their own, or not at all: on the control connection and while logging in.
class ServerRepliesTest : public QObject {
    Q_OBJECT

private slots:
    void LongGreetingsAreReadToTheirEnd();
    void AFakePortInsideAReplyIsNotTaken();
    void RepliesMayComeByteByByte();
    void SeveralRepliesMayComeAtOnce();
    void PreliminaryRepliesAreNotTheAnswer();
    void AReplySentUnaskedIsNotTheNextAnswer();
    void LinesThatAreNoRepliesAreSkipped();
    void SlowRepliesAreWaitedFor();
    void AGreetingThatDripsHasOneDeadline();
    void AReplyThatNeverEndsHasOneDeadline();
    void AnEndlessReplyIsAnError();
    void HalfALineAtTheEndIsNoReply();
    void AServerOfAnotherKindIsAnError();
    void BytesInTextsStayAsTheyAre();

    void ARefusedGreetingIsReported_data();
    void ARefusedGreetingIsReported();
    void AGreetingMayAlreadySayLoggedIn();
    void APasswordMayBeSuperfluous();
    void TheSamePasswordIsNotTriedTwice();
    void AnAccountIsAnErrorThatSaysSo();
    void APasswordInAReplyIsNotShown();
    void TheNextAddressIsTried();
    void AllAddressesTogetherHaveOneTimeOut();
    void ASilentAddressCostsAQuarterOfASecond();
    void BothKindsOfAddressesAreTriedInTurn();
    void AnUnknownHostIsAnError();
    void ALookUpWithoutAnAnswerTimesOut();

    void AnIdleConnectionThatEndsIsMadeAnew_data();
    void AnIdleConnectionThatEndsIsMadeAnew();
    void AGoodbyeInPlaceOfAnAnswerIsReported();
    void ASessionThatForgotTheLogInIsMadeAnew();
    void QuitIsNotWaitedForLong();
    void TypesThatAreRefusedAreAnError();
};

void ServerRepliesTest::LongGreetingsAreReadToTheirEnd()
{
    Conversation talk(R"(
        S: 220-
        S:
        S: no code here
        S:   220 indented
        S: 220-
        S: 421 not the end
        S: 220
        C: USER ann
        S: 331
        C: PASS secret
        S: 230-Mail
        S: 230 in
        C: CDUP
        S: 250
    )");
    QVERIFY_GOOD(talk.Do("CDUP"));
    QVERIFY_FOLLOWED(talk);
}

void ServerRepliesTest::AFakePortInsideAReplyIsNotTaken()
{
    Conversation talk(LogIn + R"(
        C: EPSV
        S: 500 no
        C: PASV
        S: 227-look
        S: 227-here (127,0,0,1,7,7)
        S: 150 fake (127,0,0,1,9,9)
        S: 227 there (127,0,0,1,15,161)
        -- listen 4001
        C: NLST
        -- accept
        S: 150 coming
        -- end
        S: 226 done
    )");
    QVERIFY_GOOD(talk.Do("LS"));
    QVERIFY_FOLLOWED(talk);
}

void ServerRepliesTest::RepliesMayComeByteByByte()
{
    Conversation talk(LogIn + R"(
        C: EPSV
        S: 229 here (|||4001|)
        -- listen 4001
        C: LIST
        -- accept
        S+ 150 coming\r\r
        S+ \n
        D: a\r\n
        -- end
        S: 226 done
    )");
    talk.Server.SetSlice(1);
    QVERIFY_GOOD(talk.Do("DIR"));
    QVERIFY_FOLLOWED(talk);
}

void ServerRepliesTest::SeveralRepliesMayComeAtOnce()
{
    Conversation talk(LogIn + R"(
        C: EPSV
        S: 229 here (|||4001|)
        -- listen 4001
        C: LIST
        -- accept
        D: a\r\n
        -- end
        S+ 150 coming\n226 done\n
    )");
    const Ftp::Outcome got = talk.Do("DIR");
    QVERIFY_GOOD(got);
    QCOMPARE(got.Reply, std::string("a\r\n"));
    QVERIFY_FOLLOWED(talk);
}

void ServerRepliesTest::PreliminaryRepliesAreNotTheAnswer()
{
    Conversation talk(R"(
        S: 120 in five minutes
        S: 220 ready
        C: USER ann
        S: 331 go on
        C: PASS secret
        S: 110 thinking
        S: 230 in
        C: CWD x
        S: 150 hm
        S: 150 hm
        S: 250 there
    )");
    QVERIFY_GOOD(talk.Do("CD x"));
    QVERIFY_FOLLOWED(talk);
}

void ServerRepliesTest::AReplySentUnaskedIsNotTheNextAnswer()
{
    Conversation talk(LogIn + R"(
        C: CWD x
        S: 200 there
        S: 250 there again
        -- pause 1
        C: DELE y
        S: 550 no
        C: PWD
        S: 257 "/x"
    )");
    QVERIFY_GOOD(talk.Do("CD x"));
    QVERIFY(talk.Clock.JumpToNextAlarm());
    QCOMPARE_FAILED(talk.Do("DELETE y"), 550);
    QCOMPARE(talk.Do("PWD").Reply, std::string("/x"));
    QVERIFY_FOLLOWED(talk);
}

void ServerRepliesTest::LinesThatAreNoRepliesAreSkipped()
{
    Conversation talk(R"(
        S: Welcome
        S: 20 too short
        S: 2200 too long
        S: 631 too high
        S: 000 too low
        S: 2x0 no number
        S:
        S: 220 ready
        C: USER ann
        S: 230 in
        C: CDUP
        S: 250 up
    )");
    QVERIFY_GOOD(talk.Do("CDUP"));
    QVERIFY_FOLLOWED(talk);
}

void ServerRepliesTest::SlowRepliesAreWaitedFor()
{
    Conversation talk(R"(
        -- pause 19000
        S: 220 ready
        C: USER ann
        -- pause 19000
        S: 230 in
        C: CDUP
        -- pause 19000
        S: 250 up
    )");
    QVERIFY_GOOD(talk.Do("CDUP"));
    QCOMPARE(talk.LastDuration.count(), 57000);
}

void ServerRepliesTest::AGreetingThatDripsHasOneDeadline()
{
    std::string script;
    for (int i = 0; i < 100; ++i) script += "S+ 2\n-- pause 500\n";
    Conversation talk(script);
    QCOMPARE_FAILED(talk.Do("DIR"), Ftp::TimeOutError);
    QCOMPARE(talk.LastDuration.count(), Conversation::Limit.count());
}

void ServerRepliesTest::AReplyThatNeverEndsHasOneDeadline()
{
    std::string script = LogIn + "C: CWD x\nS: 250-it begins\n";
    for (int i = 0; i < 100; ++i) script += "S: 250-and goes on\n-- pause 1000\n";
    Conversation talk(script);
    QCOMPARE_FAILED(talk.Do("CD x"), Ftp::TimeOutError);
    QCOMPARE(talk.LastDuration.count(), Conversation::Limit.count());
}

void ServerRepliesTest::AnEndlessReplyIsAnError()
{
    Conversation line(LogIn + "C: CWD x\nS+ 250 " + std::string(70'000, 'x'));
    QCOMPARE_FAILED(line.Do("CD x"), Ftp::ResponseError);
    QCOMPARE(line.LastDuration.count(), 0);
    QCOMPARE(line.Server.OpenLinks(), 0U);

    std::string many = LogIn + "C: CWD x\nS: 250-begin\n";
    for (int i = 0; i < 10'001; ++i) many += "S: more\n";
    Conversation lines(many);
    QCOMPARE_FAILED(lines.Do("CD x"), Ftp::ResponseError);
    QCOMPARE(lines.Server.OpenLinks(), 0U);
}

void ServerRepliesTest::HalfALineAtTheEndIsNoReply()
{
    Conversation talk("S+ 220 rea\n-- close");
    QCOMPARE_FAILED(talk.Do("DIR"), Ftp::AbortedError);
    Conversation command(LogIn + "C: DELE x\nS+ 250 gon\n-- close");
    QCOMPARE_FAILED(command.Do("DELETE x"), Ftp::AbortedError);
}

void ServerRepliesTest::AServerOfAnotherKindIsAnError()
{
    Conversation web("S: HTTP/1.1 400 Bad Request\nS: Connection: close\nS:\nS: <html>\n-- close");
    QCOMPARE_FAILED(web.Do("DIR"), Ftp::AbortedError);
    Conversation shell("S: SSH-2.0-x\n-- silence");
    QCOMPARE_FAILED(shell.Do("DIR"), Ftp::TimeOutError);
    Conversation binary("S+ \\x15\\x03\\x01\\0\\x02\\x02\\x0a\n-- close");
    QCOMPARE_FAILED(binary.Do("DIR"), Ftp::AbortedError);
}

void ServerRepliesTest::BytesInTextsStayAsTheyAre()
{
    Conversation talk(LogIn + "C: DELE x\nS: 550 no \\x1b[31m%s %1 \\0\\xff\\xe2\\x80\\xae end");
    const Ftp::Outcome got = talk.Do("DELETE x");
    QCOMPARE(got.Text, std::string("no \x1b[31m%s %1 \0\xff\xe2\x80\xae end", 23));
}

void ServerRepliesTest::ARefusedGreetingIsReported_data()
{
    QTest::addColumn<int>("code");
    for (const int code : {421, 530, 554}) QTest::addRow("%d", code) << code;
}

void ServerRepliesTest::ARefusedGreetingIsReported()
{
    QFETCH(int, code);
    Conversation talk("S: " + std::to_string(code) + " come back later");
    const Ftp::Outcome got = talk.Do("DIR");
    QCOMPARE_FAILED(got, code);
    QCOMPARE(got.Text, std::string("come back later"));
    QCOMPARE(talk.Server.OpenLinks(), 0U);
    QVERIFY_FOLLOWED(talk);
}

void ServerRepliesTest::AGreetingMayAlreadySayLoggedIn()
{
    Conversation talk("S: 230 in already\nC: USER ann\nS: 230 yes\nC: CDUP\nS: 250 up");
    QVERIFY_GOOD(talk.Do("CDUP"));
    QVERIFY_FOLLOWED(talk);
}

void ServerRepliesTest::APasswordMayBeSuperfluous()
{
    Conversation talk("S: 220 hi\nC: USER ann\nS: 331 word\nC: PASS secret\nS: 202 not needed\nC: CDUP\nS: 250 up");
    QVERIFY_GOOD(talk.Do("CDUP"));
    QVERIFY_FOLLOWED(talk);
}

void ServerRepliesTest::TheSamePasswordIsNotTriedTwice()
{
    for (const char* answer : {"331 again", "530 wrong", "421 too often"}) {
        Conversation talk(std::string("S: 220 hi\nC: USER ann\nS: 331 word\nC: PASS secret\nS: ") + answer);
        const Ftp::Outcome got = talk.Do("DIR");
        QCOMPARE_FAILED(got, std::stoi(answer));
        QCOMPARE(talk.LastDuration.count(), 0);
        QCOMPARE(talk.Server.OpenLinks(), 0U);
        QVERIFY_FOLLOWED(talk);
    }
}

void ServerRepliesTest::AnAccountIsAnErrorThatSaysSo()
{
    for (const char* script : {"S: 220 hi\nC: USER ann\nS: 332 account", "S: 220 hi\nC: USER ann\nS: 331 word\n"
                                                                         "C: PASS secret\nS: 332 account"}) {
        Conversation talk(script);
        const Ftp::Outcome got = talk.Do("DIR");
        QCOMPARE_FAILED(got, 332);
        QVERIFY2(got.Text.find("account name") != std::string::npos, got.Text.c_str());
        QVERIFY_FOLLOWED(talk);
    }
}

void ServerRepliesTest::APasswordInAReplyIsNotShown()
{
    Conversation talk("S: 220 hi\nC: USER ann\nS: 331 word\nC: PASS secret\nS: 530 \"secret\" is wrong for ann");
    const Ftp::Outcome got = talk.Do("DIR");
    QCOMPARE_FAILED(got, 530);
    QCOMPARE(got.Text, std::string("\"****\" is wrong for ann"));

    Conversation shortOne("S: 220 hi\nC: USER ann\nS: 331 word\nC: PASS no\nS: 530 not: no");
    shortOne.Where.Password = "no";
    QCOMPARE(shortOne.Do("DIR").Text, std::string("not: ****"));
}

void ServerRepliesTest::TheNextAddressIsTried()
{
    const auto dead = asio::ip::make_address("127.0.0.9");
    for (const auto answer : {MemoryServer::Answer::Refused, MemoryServer::Answer::Silent}) {
        Conversation talk(LogIn + "C: CDUP\nS: 250 up");
        talk.Server.SetHost({dead, asio::ip::make_address("127.0.0.1")});
        talk.Server.SetDead(dead, answer);
        QVERIFY_GOOD(talk.Do("CDUP"));
        QVERIFY(talk.LastDuration < Conversation::Limit);
        QVERIFY_FOLLOWED(talk);
    }
}

void ServerRepliesTest::AllAddressesTogetherHaveOneTimeOut()
{
    Conversation talk;
    std::vector<asio::ip::address> dead;
    for (const char* one : {"127.0.0.7", "127.0.0.8", "127.0.0.9"}) {
        dead.push_back(asio::ip::make_address(one));
        talk.Server.SetDead(dead.back(), MemoryServer::Answer::Silent);
    }
    talk.Server.SetHost(dead);
    QCOMPARE_FAILED(talk.Do("DIR"), Ftp::TimeOutError);
    QVERIFY(talk.LastDuration <= Conversation::Limit);
    QCOMPARE(talk.States, (std::vector<int>{1, 2, 3}));
}

void ServerRepliesTest::ASilentAddressCostsAQuarterOfASecond()
{
    Conversation talk(LogIn + "C: CDUP\nS: 250 up");
    const auto dead = asio::ip::make_address("2001:db8::1");
    talk.Server.SetHost({dead, asio::ip::make_address("127.0.0.1")});
    talk.Server.SetDead(dead, MemoryServer::Answer::Silent);
    QVERIFY_GOOD(talk.Do("CDUP"));
    QCOMPARE(talk.LastDuration.count(), 250);
    QCOMPARE(talk.Server.OpenLinks(), 1U);
    QVERIFY_FOLLOWED(talk);
}

void ServerRepliesTest::BothKindsOfAddressesAreTriedInTurn()
{
    // Four dead addresses of one kind come before the good one of the other kind, which is tried second.
    Conversation talk(LogIn + "C: CDUP\nS: 250 up");
    std::vector<asio::ip::address> host;
    for (const char* one : {"2001:db8::1", "2001:db8::2", "2001:db8::3", "2001:db8::4"}) {
        host.push_back(asio::ip::make_address(one));
        talk.Server.SetDead(host.back(), MemoryServer::Answer::Silent);
    }
    host.push_back(asio::ip::make_address("127.0.0.1"));
    talk.Server.SetHost(host);
    QVERIFY_GOOD(talk.Do("CDUP"));
    QCOMPARE(talk.LastDuration.count(), 250);
    QVERIFY_FOLLOWED(talk);
}

void ServerRepliesTest::AnUnknownHostIsAnError()
{
    Conversation talk;
    talk.Where.Host = "nowhere.test";
    QCOMPARE_FAILED(talk.Do("DIR"), Ftp::NameError);
    QCOMPARE(talk.States, std::vector<int>{1});
}

void ServerRepliesTest::ALookUpWithoutAnAnswerTimesOut()
{
    Conversation talk;
    talk.Server.SetLookupSilent(true);
    QCOMPARE_FAILED(talk.Do("DIR"), Ftp::TimeOutError);
    QCOMPARE(talk.LastDuration.count(), Conversation::Limit.count());
}

void ServerRepliesTest::AnIdleConnectionThatEndsIsMadeAnew_data()
{
    QTest::addColumn<QString>("end");
    QTest::newRow("said") << "S: 421 you were idle";
    QTest::newRow("said and closed") << "S: 421 you were idle\n-- close";
    QTest::newRow("closed") << "-- close";
    QTest::newRow("reset") << "-- break";
}

void ServerRepliesTest::AnIdleConnectionThatEndsIsMadeAnew()
{
    QFETCH(QString, end);
    Conversation talk(LogIn + "C: CWD x\nS: 250 there\nC: CDUP\nS: 250 up\nC: CWD y\nS: 250 there\n" +
                      end.toStdString());
    QVERIFY_GOOD(talk.Do("CD x"));
    QVERIFY_GOOD(talk.Do("CDUP"));
    QVERIFY_GOOD(talk.Do("CD y"));
    talk.Settle();
    QVERIFY_FOLLOWED(talk);
    talk.States.clear();
    const bool stillOpen = end == "S: 421 you were idle";
    talk.Server.Play((stillOpen ? "-- gone\n" : "") + LogIn +
                     "C: CWD x\nS: 250 there\nC: CDUP\nS: 250 up\nC: CWD y\nS: 250 there\nC: PWD\nS: 257 \"/y\"");
    QVERIFY_GOOD(talk.Do("PWD"));
    QCOMPARE(talk.States, (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8}));
    QVERIFY_FOLLOWED(talk);
}

void ServerRepliesTest::AGoodbyeInPlaceOfAnAnswerIsReported()
{
    Conversation talk(LogIn + "C: CWD x\nS: 421 going down");
    QCOMPARE_FAILED(talk.Do("CD x"), 421);
    QCOMPARE(talk.Server.OpenLinks(), 0U);
    talk.Server.Play(LogIn + "C: CWD x\nS: 250 there");
    QVERIFY_GOOD(talk.Do("CD x"));
}

void ServerRepliesTest::ASessionThatForgotTheLogInIsMadeAnew()
{
    Conversation talk(LogIn + "C: CWD x\nS: 530 please log in\n-- gone\n" + LogIn + "C: CWD x\nS: 250 there");
    QCOMPARE_FAILED(talk.Do("CD x"), 530);
    QVERIFY_GOOD(talk.Do("CD x"));
    QVERIFY_FOLLOWED(talk);
}

void ServerRepliesTest::QuitIsNotWaitedForLong()
{
    Conversation talk(LogIn + "C: CDUP\nS: 250 up\nC: QUIT\n-- silence");
    QVERIFY_GOOD(talk.Do("CDUP"));
    QVERIFY_GOOD(talk.Do("CLOSE"));
    QCOMPARE(talk.LastDuration.count(), 2000);
    QCOMPARE(talk.Server.OpenLinks(), 0U);

    for (const char* end : {"-- close", "-- break", "S: 500 never", "S: 421 bye\n-- close"}) {
        Conversation other(LogIn + "C: CDUP\nS: 250 up\nC: QUIT\n" + end);
        QVERIFY_GOOD(other.Do("CDUP"));
        QVERIFY_GOOD(other.Do("QUIT"));
        QCOMPARE(other.LastDuration.count(), 0);
        QCOMPARE(other.Server.OpenLinks(), 0U);
    }
}

void ServerRepliesTest::TypesThatAreRefusedAreAnError()
{
    Conversation talk(LogIn + "C: TYPE I\nS: 504 letters only\nC: EPSV\nS: 229 (|||4001|)\nC: PWD\nS: 257 \"/\"");
    QCOMPARE_FAILED(talk.Do("GET x"), 504);
    QVERIFY(talk.LocalFiles().isEmpty());
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

QTEST_GUILESS_MAIN(ServerRepliesTest)
#include "server_replies_test.moc"
