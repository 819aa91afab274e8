#include "base/byte_text.h"
#include "support/names_here.h"
#include "support/outcome_checks.h"
#include "support/sample_conversations.h"

#include <QtTest>
#include <algorithm>

/// Sessions that servers end, forget or disturb between commands, and the letters that names are written in.
class QuirksSessionTest : public QObject {
    Q_OBJECT

private slots:
    void AConnectionForgottenInSilenceIsMadeAnew_data();
    void AConnectionForgottenInSilenceIsMadeAnew();
    void ALongIdleServerThatAnswersIsKept_data();
    void ALongIdleServerThatAnswersIsKept();
    void AShortRestAsksNothing();
    void AQuestionAfterALongRestCanBeCancelled();
    void AGoodbyeThatCrossesACommandIsNotItsAnswer_data();
    void AGoodbyeThatCrossesACommandIsNotItsAnswer();
    void AnEndThatCrossesACommandIsNoFailure_data();
    void AnEndThatCrossesACommandIsNoFailure();
    void WhatMayHaveBeenDoneIsNotDoneTwice();
    void AConnectionIsMadeAnewOnlyOnce();
    void AnAnswerInTheMiddleIsTheCommandsOwn();
    void ATornIdleTransferSessionReturnsToItsFolder();
    void AConnectionThatBreaksOnTheWayBackKeepsTheWay_data();
    void AConnectionThatBreaksOnTheWayBackKeepsTheWay();
    void AWayThatIsRefusedIsForgotten();
    void UnaskedRepliesAreToldAndDropped();
    void AnUnaskedReplyIsToldWithoutThePassword();

    void AServerThatOffersUtf8IsAskedForIt_data();
    void AServerThatOffersUtf8IsAskedForIt();
    void TheOfferMayBeWrittenInManyWays_data();
    void TheOfferMayBeWrittenInManyWays();
    void AListingInOtherLettersIsAskedForAgain();
    void AListingThatStaysInOtherLettersIsTakenAsItCame();
    void NamesInOtherLettersGoBackAsTheyCame();
    void PlainNamesAskNothing();
    void TheWayBackIsSpelledTheSame();
};

namespace {

const std::string AtX = LogIn + "C: CWD x\nS: 250 there\n";
const std::string AskUtf8 = "C: FEAT\nS: 211-can\nS:  UTF8\nS: 211 end\nC: OPTS UTF8 ON\nS: 200 on\n";

std::string StringIn(const char* column)
{
    return (*static_cast<QString*>(QTest::qData(column, QMetaType::QString))).toStdString();
}

/// Lets time pass while nothing runs.
void Rest(Conversation& talk, Ftp::Milliseconds time)
{
    bool over = false;
    const auto alarm = talk.Clock.After(time, [&] { over = true; });
    while (!over && talk.Clock.JumpToNextAlarm()) talk.Settle();
}

constexpr Ftp::Milliseconds LongRest = std::chrono::minutes(10);

bool HasRemark(const Conversation& talk, const std::string& text)
{
    return std::any_of(talk.Remarks.begin(), talk.Remarks.end(),
                       [&](const std::string& line) { return line.find(text) != std::string::npos; });
}

}  // namespace

void QuirksSessionTest::AConnectionForgottenInSilenceIsMadeAnew_data()
{
    QTest::addColumn<QString>("answer");
    QTest::newRow("silence") << "-- silence";
    QTest::newRow("reset") << "-- break";
    QTest::newRow("end") << "-- close";
    QTest::newRow("goodbye") << "S: 421 you were idle\n-- gone";
    QTest::newRow("forgotten log-in") << "S: 530 who are you?\n-- gone";
}

void QuirksSessionTest::AConnectionForgottenInSilenceIsMadeAnew()
{
    const std::string answer = StringIn("answer");
    const bool silent = answer == "-- silence";
    const std::string anew = AtX + "C: DELE y\nS: 250 gone\n";
    Conversation talk(AtX + "C: NOOP\n" + answer + '\n' + (silent ? "" : anew));
    QVERIFY_GOOD(talk.Do("CD x"));
    Rest(talk, LongRest);
    talk.States.clear();
    if (silent) {
        // The server hears the question and never answers; the next connection finds it well again.
        bool asked = false;
        const auto alarm = talk.Clock.After(std::chrono::seconds(1), [&] {
            asked = true;
            talk.Server.Play("-- gone\n" + anew);
        });
        QVERIFY_GOOD(talk.Do("DELETE y"));
        QVERIFY(asked);
        QVERIFY(talk.LastDuration < Conversation::Limit);
    } else {
        QVERIFY_GOOD(talk.Do("DELETE y"));
    }
    QCOMPARE(talk.States, (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8}));
    QVERIFY_FOLLOWED(talk);
}

void QuirksSessionTest::ALongIdleServerThatAnswersIsKept_data()
{
    QTest::addColumn<QString>("answer");
    QTest::newRow("fine") << "200 still here";
    QTest::newRow("unknown") << "502 what?";
}

void QuirksSessionTest::ALongIdleServerThatAnswersIsKept()
{
    Conversation talk(AtX + "C: NOOP\nS: " + StringIn("answer") + "\nC: PWD\nS: 257 \"/x\"\n");
    QVERIFY_GOOD(talk.Do("CD x"));
    Rest(talk, LongRest);
    talk.States.clear();
    QCOMPARE(talk.Do("PWD").Reply, std::string("/x"));
    QCOMPARE(talk.States, (std::vector<int>{5, 6, 7, 8}));
    QVERIFY_FOLLOWED(talk);
}

void QuirksSessionTest::AShortRestAsksNothing()
{
    Conversation talk(AtX + "C: PWD\nS: 257 \"/x\"\n");
    QVERIFY_GOOD(talk.Do("CD x"));
    Rest(talk, std::chrono::seconds(50));
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void QuirksSessionTest::AQuestionAfterALongRestCanBeCancelled()
{
    Conversation talk(AtX + "C: NOOP\n-- silence");
    QVERIFY_GOOD(talk.Do("CD x"));
    Rest(talk, LongRest);
    const auto alarm = talk.Clock.After(std::chrono::seconds(1), [&] { talk.Session->Cancel(); });
    QCOMPARE_FAILED(talk.Do("PWD"), Ftp::CancelledError);
    QCOMPARE(talk.LastDuration.count(), 1000);
    talk.Server.Play(AtX + "C: PWD\nS: 257 \"/x\"");
    QVERIFY_GOOD(talk.Do("PWD"));
}

void QuirksSessionTest::AGoodbyeThatCrossesACommandIsNotItsAnswer_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("rest");
    QTest::newRow("folder") << "CD y"
                            << "C: CWD y\n"
                            << "S: 250 there\n";
    QTest::newRow("delete") << "DELETE y"
                            << "C: DELE y\n"
                            << "S: 250 gone\n";
    QTest::newRow("listing") << "LS"
                             << "C: EPSV\n"
                             << "S: 229 (|||4001|)\n-- listen 4001\nC: NLST\n-- accept\nS: 150\n-- end\nS: 226\n";
    QTest::newRow("size") << "SIZE y"
                          << "C: TYPE I\n"
                          << "S: 200\nC: SIZE y\nS: 213 1\n";
}

void QuirksSessionTest::AGoodbyeThatCrossesACommandIsNotItsAnswer()
{
    const std::string command = StringIn("command");
    Conversation talk(AtX + command + "S: 421 you were idle\n-- gone\n" + AtX + command + StringIn("rest"));
    QVERIFY_GOOD(talk.Do("CD x"));
    QVERIFY_GOOD(talk.Do(StringIn("operation")));
    QVERIFY_FOLLOWED(talk);
}

void QuirksSessionTest::AnEndThatCrossesACommandIsNoFailure_data()
{
    QTest::addColumn<QString>("end");
    QTest::newRow("end") << "-- close\n";
    QTest::newRow("reset") << "-- break\n";
}

void QuirksSessionTest::AnEndThatCrossesACommandIsNoFailure()
{
    Conversation talk(AtX + "C: CWD y\n" + StringIn("end") + AtX + "C: CWD y\nS: 250 there\nC: PWD\nS: 257 \"/x/y\"");
    QVERIFY_GOOD(talk.Do("CD x"));
    QVERIFY_GOOD(talk.Do("CD y"));
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

void QuirksSessionTest::WhatMayHaveBeenDoneIsNotDoneTwice()
{
    for (const char* operation : {"DELETE y", "MKDIR y", "RMDIR y"}) {
        Conversation talk(AtX + "C: *\n-- close");
        QVERIFY_GOOD(talk.Do("CD x"));
        QCOMPARE_FAILED(talk.Do(operation), Ftp::AbortedError);
        talk.Server.Play(AtX + "C: PWD\nS: 257 \"/x\"");
        QVERIFY_GOOD(talk.Do("PWD"));
        QVERIFY_FOLLOWED(talk);
    }
}

void QuirksSessionTest::AConnectionIsMadeAnewOnlyOnce()
{
    Conversation talk(AtX + "C: CWD y\n-- close\n" + AtX + "C: CWD y\n-- close");
    QVERIFY_GOOD(talk.Do("CD x"));
    QCOMPARE_FAILED(talk.Do("CD y"), Ftp::AbortedError);
    QVERIFY_FOLLOWED(talk);
}

void QuirksSessionTest::AnAnswerInTheMiddleIsTheCommandsOwn()
{
    Conversation talk(AtX + "C: RNFR a\nS: 350 go on\nC: RNTO b\nS: 421 going down");
    QVERIFY_GOOD(talk.Do("CD x"));
    QCOMPARE_FAILED(talk.Do("RENAME a b"), 421);
    QVERIFY_FOLLOWED(talk);
}

void QuirksSessionTest::ATornIdleTransferSessionReturnsToItsFolder()
{
    const std::string get =
        "C: TYPE I\nS: 200\n" + SamplePassive + "C: RETR kept\n-- accept\nS: 150\nD: data\n-- end\nS: 226\n";
    Conversation talk(AtX + "-- close\n" + AtX + get + "-- break\n" + AtX + get);
    QVERIFY_GOOD(talk.Do("CD x"));
    QVERIFY_GOOD(talk.Do("GET kept"));
    QVERIFY_GOOD(talk.Do("GET kept"));
    QCOMPARE(talk.LocalFile("kept"), QByteArray("data"));
    QVERIFY_FOLLOWED(talk);
}

void QuirksSessionTest::AConnectionThatBreaksOnTheWayBackKeepsTheWay_data()
{
    QTest::addColumn<QString>("end");
    for (const char* end : {"-- close", "-- break", "-- silence", "S: 421 not now", "S: 530 log in"})
        QTest::newRow(end) << QString(end);
}

// Otherwise the next command would be carried out in another folder than the one the user sees.
void QuirksSessionTest::AConnectionThatBreaksOnTheWayBackKeepsTheWay()
{
    Conversation talk(AtX + "-- close\n" + LogIn + "C: CWD x\n" + StringIn("end"));
    QVERIFY_GOOD(talk.Do("CD x"));
    QVERIFY(!talk.Do("DELETE y").Good);
    talk.Server.Play(AtX + "C: DELE y\nS: 250 gone");
    QVERIFY_GOOD(talk.Do("DELETE y"));
    QVERIFY_FOLLOWED(talk);
}

void QuirksSessionTest::AWayThatIsRefusedIsForgotten()
{
    Conversation talk(AtX + "-- close\n" + LogIn + "C: CWD x\nS: 550 gone\n-- gone\n" + LogIn + "C: PWD\nS: 257 \"/\"");
    QVERIFY_GOOD(talk.Do("CD x"));
    QCOMPARE_FAILED(talk.Do("PWD"), 550);
    QCOMPARE(talk.Do("PWD").Reply, std::string("/"));
    QVERIFY_FOLLOWED(talk);
}

void QuirksSessionTest::UnaskedRepliesAreToldAndDropped()
{
    Conversation talk(AtX + "-- pause 10\nS: 200 still here\nS: 226-twice\nS: 226 done\nC: PWD\nS: 257 \"/x\"");
    QVERIFY_GOOD(talk.Do("CD x"));
    Rest(talk, std::chrono::seconds(1));
    QVERIFY(talk.Remarks.empty());
    QCOMPARE(talk.Do("PWD").Reply, std::string("/x"));
    QCOMPARE(talk.Remarks.size(), 2U);
    QVERIFY(HasRemark(talk, "unasked: 200 still here"));
    QVERIFY(HasRemark(talk, "unasked: 226 twice"));
    QVERIFY_FOLLOWED(talk);
}

void QuirksSessionTest::AnUnaskedReplyIsToldWithoutThePassword()
{
    Conversation talk(AtX + "-- pause 10\nS: 200 ann has secret\nC: PWD\nS: 257 \"/x\"");
    QVERIFY_GOOD(talk.Do("CD x"));
    Rest(talk, std::chrono::seconds(1));
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY(HasRemark(talk, "ann has ****"));
    QVERIFY(!HasRemark(talk, "secret"));
}

void QuirksSessionTest::AServerThatOffersUtf8IsAskedForIt_data()
{
    QTest::addColumn<QString>("answer");
    for (const char* answer : {"200 on", "202 always", "501 what?", "550 no", "502 no such command"})
        QTest::newRow(answer) << QString(answer);
}

void QuirksSessionTest::AServerThatOffersUtf8IsAskedForIt()
{
    Conversation talk(LogIn + "C: FEAT\nS: 211-can\nS:  EPSV\nS:  UTF8\nS: 211 end\nC: OPTS UTF8 ON\nS: " +
                      StringIn("answer") + "\nC: CWD gr\xc3\xbcn\nS: 250 there\nC: CWD bl\xc3\xa5\nS: 250 there");
    QVERIFY_GOOD(talk.Do("CD gr\xc3\xbcn"));
    QVERIFY_GOOD(talk.Do("CD bl\xc3\xa5"));
    QVERIFY_FOLLOWED(talk);
}

void QuirksSessionTest::TheOfferMayBeWrittenInManyWays_data()
{
    QTest::addColumn<QString>("features");
    QTest::addColumn<bool>("offered");
    QTest::newRow("indented") << "S: 211-can\nS:  UTF8\nS: 211 end" << true;
    QTest::newRow("code repeated") << "S: 211-can\nS: 211-UTF8\nS: 211 end" << true;
    QTest::newRow("small letters") << "S: 211-can\nS:  utf8\nS: 211 end" << true;
    QTest::newRow("with more behind") << "S: 211-can\nS:  UTF8 ON\nS: 211 end" << true;
    QTest::newRow("one line") << "S: 211 UTF8" << true;
    QTest::newRow("another word") << "S: 211-can\nS:  UTF8X\nS:  XUTF8\nS: 211 end" << false;
    QTest::newRow("nothing") << "S: 211 no features" << false;
    QTest::newRow("refused") << "S: 500 UTF8?" << false;
    QTest::newRow("not logged in") << "S: 530 log in" << false;
    QString many = "S: 211-can\n";
    for (int i = 0; i < 9000; ++i) many += "S:  X\n";
    QTest::newRow("thousands of lines") << many + "S:  UTF8\nS: 211 end" << true;
}

void QuirksSessionTest::TheOfferMayBeWrittenInManyWays()
{
    QFETCH(bool, offered);
    Conversation talk(LogIn + "C: FEAT\n" + StringIn("features") + '\n' +
                      (offered ? "C: OPTS UTF8 ON\nS: 200 on\n" : "") + "C: CWD \xc3\xbc\nS: 250 there");
    QVERIFY_GOOD(talk.Do("CD \xc3\xbc"));
    QVERIFY_FOLLOWED(talk);
}

void QuirksSessionTest::AListingInOtherLettersIsAskedForAgain()
{
    const std::string list = SamplePassive + "C: NLST\n-- accept\nS: 150\nD: gr";
    const std::string end = "n\\r\\n\n-- end\nS: 226 done\n";
    Conversation talk(LogIn + list + "\\xfc" + end + AskUtf8 + list + "\xc3\xbc" + end + "C: CWD gr\xc3\xbcn\nS: 250");
    const Ftp::Outcome got = talk.Do("LS");
    QVERIFY_GOOD(got);
    QCOMPARE(got.Reply, std::string("gr\xc3\xbcn\r\n"));
    QVERIFY_GOOD(talk.Do("CD gr\xc3\xbcn"));
    QVERIFY_FOLLOWED(talk);
}

void QuirksSessionTest::AListingThatStaysInOtherLettersIsTakenAsItCame()
{
    const std::string list = SamplePassive + "C: NLST\n-- accept\nS: 150\nD: gr\\xfcn\\r\\n\n-- end\nS: 226 done\n";
    Conversation talk(LogIn + list + AskUtf8 + list + list + "C: CWD gr\xfcn\nS: 250");
    QCOMPARE(talk.Do("LS").Reply, std::string("gr\xfcn\r\n"));
    QCOMPARE(talk.Do("LS").Reply, std::string("gr\xfcn\r\n"));
    QVERIFY_GOOD(talk.Do("CD gr\xfcn"));
    QVERIFY_FOLLOWED(talk);

    Conversation never(LogIn + list + "C: FEAT\nS: 500 what?\n" + list);
    const Ftp::Outcome got = never.Do("LS");
    QCOMPARE(got.Reply, std::string("gr\xfcn\r\n"));
    QCOMPARE(got.Code, 226);
    QCOMPARE(got.Text, std::string("done"));
    QVERIFY_GOOD(never.Do("LS"));
    QVERIFY_FOLLOWED(never);
}

void QuirksSessionTest::NamesInOtherLettersGoBackAsTheyCame()
{
    const QByteArray raw = "\xfc\xff \x80 \xc3 \xe6\x97";
    const std::string name = raw.toStdString();
    Conversation talk(LogIn + "C: TYPE I\nS: 200\n" + SamplePassive + "C: RETR " + name +
                      "\n-- accept\nS: 150\nD: data\n-- end\nS: 226\nC: DELE " + name + "\nS: 250 gone");
    const std::string shown = TextToBytes(BytesToText(raw)).toStdString();
    // A file of Windows has a name of letters.
    const QByteArray local = CanBeFileHere(raw) ? raw : "data";
    QVERIFY_GOOD(talk.Do("GET \"" + shown + "\" \"" + local.toStdString() + '"'));
    QCOMPARE(talk.LocalFile(BytesToText(local)), QByteArray("data"));
    QVERIFY_GOOD(talk.Do("DELETE \"" + shown + '"'));
    QVERIFY_FOLLOWED(talk);
}

void QuirksSessionTest::PlainNamesAskNothing()
{
    for (const SampleConversation& sample : SampleConversations()) {
        if (std::string(sample.Name) == "other letters") continue;
        QVERIFY2(sample.Script.find("FEAT") == std::string::npos, sample.Name);
        Conversation talk(sample.Script);
        talk.MakeLocalFile("sent", SampleSent);
        QVERIFY_GOOD(talk.Do(sample.Operation));
        QVERIFY_FOLLOWED(talk);
    }
}

void QuirksSessionTest::TheWayBackIsSpelledTheSame()
{
    const std::string way = LogIn + AskUtf8 + "C: CWD gr\xc3\xbcn\nS: 250 there\n";
    Conversation talk(way + "C: CWD \xfc\nS: 250 there\n-- close\n" + way +
                      "C: CWD \xfc\nS: 250 there\nC: PWD\nS: 257 \"/\"");
    QVERIFY_GOOD(talk.Do("CD gr\xc3\xbcn"));
    QVERIFY_GOOD(talk.Do("CD \xfc"));
    talk.Settle();
    QVERIFY_GOOD(talk.Do("PWD"));
    QVERIFY_FOLLOWED(talk);
}

QTEST_GUILESS_MAIN(QuirksSessionTest)
#include "quirks_session_test.moc"
