#include "support/outcome_checks.h"
#include "support/sample_conversations.h"

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

void DisturbedConversationTest::Conversations()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("script");
    for (const SampleConversation& row : SampleConversations())
        QTest::newRow(row.Name) << QString(row.Operation) << QString::fromStdString(row.Script);
}

void DisturbedConversationTest::DisturbAt(Disturbance disturbance,
                                          const std::function<void(const Ftp::Outcome&, Conversation&)>& check)
{
    QFETCH(QString, operation);
    QFETCH(QString, script);
    Conversation talk;
    if (disturbance.Kind == Disturbance::Call) disturbance.What = [&talk] { talk.Session->Cancel(); };
    talk.MakeLocalFile("kept", SampleKept);
    talk.MakeLocalFile("sent", SampleSent);
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
    QCOMPARE(talk.LocalFile("kept"), SampleKept);
    QCOMPARE(talk.LocalFiles(), (QStringList{"kept", "sent"}));

    // The script is that of a first visit.
    talk.Book->Note("server.test", ScriptedServer::Port, Ftp::DataWay::Extended);
    talk.Server.Play(script.toStdString());
    QVERIFY_GOOD(talk.Do(operation.toStdString()));
    QVERIFY_FOLLOWED(talk);
    if (operation.startsWith("GET")) QCOMPARE(talk.LocalFile("kept"), SampleReceived);
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
        QCOMPARE(talk.LastDuration.count(), Conversation::Limit.count());
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
