#include "support/conversation.h"
#include "support/outcome_checks.h"

#include <QtTest>
#include <algorithm>

/// Every kind of conversation, ended after each of its steps in turn: by a server that hangs up, resets or falls
/// silent, and by the user. There is one clean failure, nothing half done stays behind, and the next command works.
class DisturbedConversationTest : public QObject {
    Q_OBJECT

private slots:

    void AServerThatHangsUpIsOneCleanFailure_data() { Conversations(); }

    void AServerThatHangsUpIsOneCleanFailure();

    void AServerThatResetsIsOneCleanFailure_data() { Conversations(); }

    void AServerThatResetsIsOneCleanFailure();

    void AServerThatFallsSilentRunsIntoTheTimeOut_data() { Conversations(); }

    void AServerThatFallsSilentRunsIntoTheTimeOut();

    void TheUserCanCancelAtEveryStep_data() { Conversations(); }

    void TheUserCanCancelAtEveryStep();

private:
    static void Conversations();
    static void Disturb(Disturbance::Kinds kind, const std::function<void(const Ftp::Outcome&, Conversation&)>& check);
    static void DisturbAt(Disturbance disturbance,
                          const std::function<void(const Ftp::Outcome&, Conversation&)>& check);
};

namespace {

const std::string Passive = R"(
    C: EPSV
    S: 229 here (|||4001|)
    -- listen 4001
)";

const std::string OldPassive = R"(
    C: EPSV
    S: 502 what?
    C: PASV
    S: 227 here (127,0,0,1,15,161)
    -- listen 4001
)";

const std::string Binary = "C: TYPE I\nS: 200 fine\n";

const std::string Incoming = R"(
    -- accept
    S: 150 coming
    D: new\r\n
    D: bytes
    -- end
    S: 226 done
)";

const std::string Outgoing = R"(
    -- accept
    S: 150 go on
    U: bytes to send
    S: 226 stored
)";

struct Row {
    const char* Name;
    const char* Operation;
    std::string Script;
};

const std::vector<Row> Rows{
    {"list", "DIR", LogIn + Passive + "C: LIST\n" + Incoming},
    {"names", "LS", LogIn + OldPassive + "C: NLST\n" + Incoming},
    {"receive", R"(GET "kept" "kept")", LogIn + Binary + Passive + "C: RETR kept\n" + Incoming},
    {"receive, passive", R"(GET "kept" "kept")", LogIn + Binary + OldPassive + "C: RETR kept\n" + Incoming},
    {"send", R"(PUT "sent" "sent")", LogIn + Binary + Passive + "C: STOR sent\n" + Outgoing},
    {"rename", R"(RENAME "a" "b")", LogIn + "C: RNFR a\nS: 350 go on\nC: RNTO b\nS: 250 done"},
    {"folder", "CD x", LogIn + "C: CWD x\nS: 250-all\nS:  the rules\nS: 250 there"},
    {"size", "SIZE x", LogIn + Binary + "C: SIZE x\nS: 213 5"},
};

}  // namespace

void DisturbedConversationTest::Conversations()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("script");
    for (const Row& row : Rows) QTest::newRow(row.Name) << row.Operation << QString::fromStdString(row.Script);
}

void DisturbedConversationTest::DisturbAt(Disturbance disturbance,
                                          const std::function<void(const Ftp::Outcome&, Conversation&)>& check)
{
    QFETCH(QString, operation);
    QFETCH(QString, script);
    Conversation talk;
    if (disturbance.Kind == Disturbance::Call) disturbance.What = [&talk] { talk.Session->Cancel(); };
    talk.MakeLocalFile("kept", "old bytes");
    talk.MakeLocalFile("sent", "bytes to send");
    talk.Server.Play(script.toStdString(), disturbance);
    const Ftp::Outcome got = talk.Do(operation.toStdString());
    QVERIFY(!got.Good);
    QVERIFY(!got.Text.empty());
    QVERIFY(got.Reply.empty());
    QVERIFY2(talk.Server.StepsDone() >= disturbance.AfterSteps, "the script never came so far");
    check(got, talk);
    if (QTest::currentTestFailed()) return;
    QVERIFY(!talk.Session->IsConnected());
    QCOMPARE(talk.Server.OpenLinks(), 0U);
    QCOMPARE(talk.LocalFile("kept"), QByteArray("old bytes"));
    QCOMPARE(talk.LocalFiles(), (QStringList{"kept", "sent"}));

    talk.Server.Play(script.toStdString());
    QVERIFY_GOOD(talk.Do(operation.toStdString()));
    QVERIFY_FOLLOWED(talk);
    if (operation.startsWith("GET")) QCOMPARE(talk.LocalFile("kept"), QByteArray("new\r\nbytes"));
}

void DisturbedConversationTest::Disturb(Disturbance::Kinds kind,
                                        const std::function<void(const Ftp::Outcome&, Conversation&)>& check)
{
    QFETCH(QString, script);
    Conversation counting(script.toStdString());
    const std::size_t steps = counting.Server.StepCount();
    QVERIFY(steps > LogIn.size() / 40);
    for (std::size_t step = 0; step < steps; ++step) {
        DisturbAt({kind, step}, check);
        if (!QTest::currentTestFailed()) continue;
        qWarning("disturbed after %zu of %zu steps", step, steps);
        return;
    }
}

void DisturbedConversationTest::AServerThatHangsUpIsOneCleanFailure()
{
    Disturb(Disturbance::HangUp, [](const Ftp::Outcome& got, Conversation& talk) {
        QVERIFY2(got.Code == Ftp::AbortedError || got.Code == Ftp::ConnectError, qPrintable(QString::number(got.Code)));
        QCOMPARE(talk.LastDuration.count(), 0);
    });
}

void DisturbedConversationTest::AServerThatResetsIsOneCleanFailure()
{
    Disturb(Disturbance::Reset, [](const Ftp::Outcome& got, Conversation& talk) {
        QVERIFY2(got.Code == Ftp::ResetError || got.Code == Ftp::ConnectError, qPrintable(QString::number(got.Code)));
        QCOMPARE(talk.LastDuration.count(), 0);
    });
}

void DisturbedConversationTest::AServerThatFallsSilentRunsIntoTheTimeOut()
{
    Disturb(Disturbance::FallSilent, [](const Ftp::Outcome& got, Conversation& talk) {
        QCOMPARE(got.Code, int(Ftp::TimeOutError));
        // A port that EPSV named and nobody serves costs half the limit before PASV is tried.
        QVERIFY(talk.LastDuration >= Conversation::Limit);
        QVERIFY(talk.LastDuration <= Conversation::Limit * 3 / 2);
    });
}

void DisturbedConversationTest::TheUserCanCancelAtEveryStep()
{
    Disturb(Disturbance::Call, [](const Ftp::Outcome& got, Conversation& talk) {
        QCOMPARE(got.Code, int(Ftp::CancelledError));
        QCOMPARE(talk.LastDuration.count(), 0);
    });
}

QTEST_GUILESS_MAIN(DisturbedConversationTest)
#include "disturbed_conversation_test.moc"
