#include "support/all_servers_test.h"

#include <QDir>

/// Transfers that end before their time, with four FTP servers as they are in the world.
class ServerInterruptionsTest : public AllServersTest {
    Q_OBJECT

private slots:

    void AServerThatDiesLeavesTheOldFile_data() { AllServers(); }

    void AServerThatDiesLeavesTheOldFile();

    void CancelEndsAReceive_data() { AllServers(); }

    void CancelEndsAReceive();

    void CancelEndsASend_data() { AllServers(); }

    void CancelEndsASend();
};

namespace {

constexpr qint64 Endless = qint64{64} << 30;  // a sparse file that no test waits for

}  // namespace

void ServerInterruptionsTest::AServerThatDiesLeavesTheOldFile()
{
    QFETCH(int, kind);
    QFETCH(QString, address);
    RealServer doomed(static_cast<RealServer::Kind>(kind), address);
    QVERIFY2(doomed.Complaint().isEmpty(), qPrintable(doomed.Complaint()));
    MakeSparse(doomed.Folder() + "/endless", Endless);
    Write(Local("endless"), "as it was");
    Component->SetURL(doomed.Url());
    QVERIFY_GOOD(Do("DIR"));

    Guest->Begin("GET \"endless\" \"endless\"");
    QVERIFY(Guest->Until([this] { return LocalFiles().size() == 2; }));
    doomed.Kill();
    const Visit visit = Guest->Finish();
    QVERIFY2(visit.States.last() == Inet::Error, qPrintable(visit.Account()));
    QVERIFY2(visit.Code > 12000 && !visit.Info.isEmpty(), qPrintable(visit.Account()));
    QCOMPARE(LocalFiles(), QStringList("endless"));
    QCOMPARE(Read(Local("endless")), QByteArray("as it was"));
}

void ServerInterruptionsTest::CancelEndsAReceive()
{
    MakeSparse(Remote("endless"), Endless);
    Write(Local("endless"), "as it was");
    Guest->Begin("GET \"endless\" \"endless\"");
    QVERIFY(Guest->Until([this] { return LocalFiles().size() == 2; }));
    Component->Cancel();
    QVERIFY(!Component->StillExecuting());
    const Visit visit = Guest->Finish();
    QVERIFY2(visit.States.mid(visit.States.size() - 2) == States({10, 0}), qPrintable(visit.Account()));
    QVERIFY2(!visit.States.contains(Inet::Error), qPrintable(visit.Account()));
    QCOMPARE(LocalFiles(), QStringList("endless"));
    QCOMPARE(Read(Local("endless")), QByteArray("as it was"));
    QVERIFY(Exists(Remote("endless")));
    const Visit next = Do("DIR");
    QVERIFY2(next.States == FirstCommand, qPrintable(next.Account()));
    QVERIFY(!LineWith(next.Reply, "endless").isEmpty());
}

void ServerInterruptionsTest::CancelEndsASend()
{
    MakeSparse(Local("endless"), Endless);
    Guest->Begin("PUT \"endless\" \"endless\"");
    const auto someArrived = [this] { return QFileInfo(Remote("endless")).size() > 0; };
    const auto anythingArrived = [this] { return !QDir(Shared).entryList(QDir::Files | QDir::Hidden).isEmpty(); };
    QVERIFY(Guest->Until([&] { return someArrived() || anythingArrived(); }));
    Component->Cancel();
    QVERIFY(!Component->StillExecuting());
    const Visit visit = Guest->Finish();
    QVERIFY2(visit.States.mid(visit.States.size() - 2) == States({10, 0}), qPrintable(visit.Account()));
    QCOMPARE(LocalFiles(), QStringList("endless"));
    QCOMPARE(QFileInfo(Local("endless")).size(), Endless);
    const Visit next = Do("DIR");
    QVERIFY2(next.States == FirstCommand, qPrintable(next.Account()));
}

QTEST_GUILESS_MAIN(ServerInterruptionsTest)
#include "server_interruptions_test.moc"
