#include "support/all_servers_test.h"

#include <QDir>

/// What each operation does on four FTP servers as they are in the world, by IPv4 and IPv6.
class ServerOperationsTest : public AllServersTest {
    Q_OBJECT

private slots:

    void DirListsFullLines_data() { AllServers(); }

    void DirListsFullLines();

    void DirOfAnEmptyFolderIsEmpty_data() { AllServers(); }

    void DirOfAnEmptyFolderIsEmpty();

    void LsListsNames_data() { AllServers(); }

    void LsListsNames();

    void CdAndCdupMoveAndPwdTellsWhere_data() { AllServers(); }

    void CdAndCdupMoveAndPwdTellsWhere();

    void ThePathOfTheAddressIsEntered_data() { AllServers(); }

    void ThePathOfTheAddressIsEntered();

    void GetReceivesEverySize_data() { AllServers(); }

    void GetReceivesEverySize();

    void PutSendsEverySize_data() { AllServers(); }

    void PutSendsEverySize();

    void GettingReadyForAFileChangesNothing_data() { AllServers(); }

    void GettingReadyForAFileChangesNothing();

    void DeleteErases_data() { AllServers(); }

    void DeleteErases();

    void RenameRenames_data() { AllServers(); }

    void RenameRenames();

    void MkdirAndRmdirMakeAndRemove_data() { AllServers(); }

    void MkdirAndRmdirMakeAndRemove();

    void SizeTellsBytes_data() { AllServers(); }

    void SizeTellsBytes();

    void CloseEndsTheSessionAndTheNextCommandConnectsAnew_data() { AllServers(); }

    void CloseEndsTheSessionAndTheNextCommandConnectsAnew();

    void QuitIsClose_data() { AllServers(); }

    void QuitIsClose();

    void SilentCloseReportsNothing_data() { AllServers(); }

    void SilentCloseReportsNothing();

    void AnonymousReads_data() { AllServers(); }

    void AnonymousReads();

    void AWrongPasswordIs530AndTheRightOneWorksNext_data() { AllServers(); }

    void AWrongPasswordIs530AndTheRightOneWorksNext();

    void ARefusalIsAnErrorAndTheSessionGoesOn_data() { AllServers(); }

    void ARefusalIsAnErrorAndTheSessionGoesOn();
};

namespace {

/// Sizes at which something may break: nothing, one byte, below and above a block, more than any buffer.
const QList<qint64> Sizes = {0, 1, 1023, (1 << 20) + 1, 30'000'007};

}  // namespace

void ServerOperationsTest::DirListsFullLines()
{
    Write(Remote("a file.txt"), "12345");
    QVERIFY(QDir(Shared).mkdir("folder"));
    const Visit first = Do("DIR");
    QVERIFY2(first.States == FirstCommand, qPrintable(first.Account()));
    QVERIFY(LineWith(first.Reply, "a file.txt").startsWith("-rw"));
    QVERIFY(LineWith(first.Reply, "a file.txt").contains(" 5 "));
    QVERIFY(LineWith(first.Reply, "folder").startsWith("drwx"));
    const Visit second = Do("DIR");
    QVERIFY2(second.States == LaterCommand, qPrintable(second.Account()));
    QCOMPARE(second.Reply, first.Reply);
}

void ServerOperationsTest::DirOfAnEmptyFolderIsEmpty()
{
    const Visit visit = Do("DIR");
    QVERIFY2(visit.Good(), qPrintable(visit.Account()));
    QCOMPARE(visit.Reply, QString());
}

void ServerOperationsTest::LsListsNames()
{
    Write(Remote("a file.txt"), "12345");
    Write(Remote("another"), "");
    const Visit visit = Do("LS");
    QVERIFY2(visit.States == FirstCommand, qPrintable(visit.Account()));
    QCOMPARE(NamesOf(visit.Reply), QStringList({"a file.txt", "another"}));
}

void ServerOperationsTest::CdAndCdupMoveAndPwdTellsWhere()
{
    QVERIFY(QDir(Shared).mkpath("one/two"));
    const Visit top = Do("PWD");
    QVERIFY2(top.States == FirstCommand, qPrintable(top.Account()));
    QVERIFY2(top.Reply.endsWith(Shared.section('/', -1)), qPrintable(top.Reply));
    const Visit down = Do("CD one");
    QVERIFY2(down.States == LaterCommand, qPrintable(down.Account()));
    QCOMPARE(Do("PWD").Reply, top.Reply + "/one");
    QVERIFY_GOOD(Do("CD two"));
    QCOMPARE(Do("PWD").Reply, top.Reply + "/one/two");
    QVERIFY_GOOD(Do("CDUP"));
    QCOMPARE(Do("PWD").Reply, top.Reply + "/one");
    QVERIFY_GOOD(Do("CDUP"));
    QCOMPARE(Do("PWD").Reply, top.Reply);
}

void ServerOperationsTest::ThePathOfTheAddressIsEntered()
{
    QVERIFY(QDir(Shared).mkpath("one/two"));
    Write(Remote("one/two/inside"), "x");
    Component->SetURL(Component->URL() + "/one/two");
    QCOMPARE(NamesOf(Do("LS").Reply), QStringList("inside"));
}

void ServerOperationsTest::GetReceivesEverySize()
{
    for (const qint64 size : Sizes) {
        const QByteArray name = QByteArray::number(size);
        const QByteArray bytes = Pattern(size, static_cast<quint32>(size));
        Write(Remote(name), bytes);
        const Visit visit = Do("GET " + Quoted(name) + ' ' + Quoted(name));
        QVERIFY2(visit.States == (size == 0 ? FirstCommand : LaterCommand), qPrintable(visit.Account()));
        QVERIFY2(Read(Local(name)) == bytes, name);
    }
    QCOMPARE(LocalFiles().size(), Sizes.size());
}

// Before each command, whether it is for a file or not.
void ServerOperationsTest::GettingReadyForAFileChangesNothing()
{
    Write(Remote("there"), "bytes");
    Write(Local("here"), "others");
    Component->GetReady();
    QVERIFY_GOOD(Do("DIR"));
    QSignalSpy remarks(Component.get(), &Inet::Remarked);
    for (const char* command : {"GET there one", "PUT here two", "LS", "GET two three", "PWD", "MKDIR folder", "DIR",
                                "CD folder", "PUT here four", "CDUP", "GET folder/four five", "DELETE there"}) {
        Component->GetReady();
        const Visit visit = Do(command);
        QVERIFY2(visit.States == LaterCommand, qPrintable(command + visit.Account()));
    }
    Component->GetReady();
    Component->Cancel();
    QVERIFY_GOOD(Do("PWD"));
    Component->GetReady();
    QVERIFY_GOOD(Do("CLOSE"));
    QCOMPARE(Read(Local("one")), QByteArray("bytes"));
    for (const char* copy : {"three", "five"}) QCOMPARE(Read(Local(copy)), QByteArray("others"));
    QCOMPARE(LocalFiles(), (QStringList{"five", "here", "one", "three"}));
    QVERIFY(!QFile::exists(Remote("there")));
    QCOMPARE(remarks.count(), 0);
}

void ServerOperationsTest::PutSendsEverySize()
{
    for (const qint64 size : Sizes) {
        const QByteArray name = QByteArray::number(size);
        const QByteArray bytes = Pattern(size, static_cast<quint32>(size));
        Write(Local(name), bytes);
        const Visit visit = Do("PUT " + Quoted(name) + ' ' + Quoted(name));
        QVERIFY2(visit.States == (size == 0 ? FirstCommand : LaterCommand), qPrintable(visit.Account()));
        QVERIFY2(Read(Remote(name)) == bytes, name);
    }
    QVERIFY_GOOD(Do("PUT \"1023\" \"another name\""));
    QCOMPARE(Read(Remote("another name")), Read(Local("1023")));
}

void ServerOperationsTest::DeleteErases()
{
    Write(Remote("old"), "x");
    QVERIFY_GOOD(Do("DELETE \"old\""));
    QVERIFY(!Exists(Remote("old")));
    QCOMPARE_REFUSED(Do("DELETE \"old\""));
}

void ServerOperationsTest::RenameRenames()
{
    Write(Remote("old"), "x");
    QVERIFY_GOOD(Do("RENAME \"old\" \"new\""));
    QVERIFY(!Exists(Remote("old")));
    QCOMPARE(Read(Remote("new")), QByteArray("x"));
    QCOMPARE_REFUSED(Do("RENAME \"old\" \"newer\""));
}

void ServerOperationsTest::MkdirAndRmdirMakeAndRemove()
{
    QVERIFY_GOOD(Do("MKDIR \"a folder\""));
    QVERIFY(QFileInfo(Remote("a folder")).isDir());
    QCOMPARE_REFUSED(Do("MKDIR \"a folder\""));
    QVERIFY_GOOD(Do("RMDIR \"a folder\""));
    QVERIFY(!Exists(Remote("a folder")));
    QCOMPARE_REFUSED(Do("RMDIR \"a folder\""));
}

void ServerOperationsTest::SizeTellsBytes()
{
    Write(Remote("some"), Pattern(12345, 1));
    MakeSparse(Remote("huge"), qint64{5} << 30);
    const Visit some = Do("SIZE \"some\"");
    QCOMPARE(some.Reply, QString("12345"));
    QCOMPARE(Do("SIZE \"huge\"").Reply, QString("5368709120"));
    QCOMPARE_REFUSED(Do("SIZE \"none\""));
}

void ServerOperationsTest::CloseEndsTheSessionAndTheNextCommandConnectsAnew()
{
    QVERIFY_GOOD(Do("DIR"));
    const Visit close = Do("CLOSE");
    QVERIFY2(close.States == States({9, 10, 12}), qPrintable(close.Account()));
    const Visit again = Do("DIR");
    QVERIFY2(again.States == FirstCommand, qPrintable(again.Account()));
}

void ServerOperationsTest::QuitIsClose()
{
    QVERIFY_GOOD(Do("DIR"));
    const Visit close = Do("QUIT");
    QVERIFY2(close.States == States({9, 10, 12}), qPrintable(close.Account()));
}

void ServerOperationsTest::SilentCloseReportsNothing()
{
    QVERIFY_GOOD(Do("DIR"));
    QSignalSpy reports(Component.get(), &Inet::StateChanged);
    Component->Execute("", "CLOSE");
    QVERIFY(!Component->StillExecuting());
    const Visit again = Do("DIR");
    QVERIFY2(again.States == FirstCommand, qPrintable(again.Account()));
    QCOMPARE(reports.size(), FirstCommand.size());
}

void ServerOperationsTest::AnonymousReads()
{
    const QByteArray bytes = Pattern(100'000, 3);
    Write(Remote("public"), bytes);
    Component->SetUserName("");
    Component->SetPassword("");
    const Visit visit = Do("GET \"public\" \"public\"");
    QVERIFY2(visit.States == FirstCommand, qPrintable(visit.Account()));
    QVERIFY(Read(Local("public")) == bytes);
}

void ServerOperationsTest::AWrongPasswordIs530AndTheRightOneWorksNext()
{
    Component->SetPassword("wrong");
    const Visit refused = Do("DIR");
    QVERIFY2(!refused.States.isEmpty() && refused.States.last() == Inet::Error, qPrintable(refused.Account()));
    QCOMPARE(refused.Code, 530);
    QVERIFY(!refused.Info.isEmpty());
    Component->SetPassword(Server().Password());
    const Visit visit = Do("DIR");
    QVERIFY2(visit.States == FirstCommand, qPrintable(visit.Account()));
}

void ServerOperationsTest::ARefusalIsAnErrorAndTheSessionGoesOn()
{
    Write(Local("old"), "as it was");
    QVERIFY_GOOD(Do("DIR"));
    const Visit missing = Do("GET \"old\" \"old\"");
    QVERIFY2(missing.States.last() == Inet::Error, qPrintable(missing.Account()));
    QCOMPARE(missing.Code, 550);
    QCOMPARE(Read(Local("old")), QByteArray("as it was"));
    QCOMPARE(LocalFiles(), QStringList("old"));
    const Visit next = Do("PUT \"old\" \"old\"");
    QVERIFY2(next.States == LaterCommand, qPrintable(next.Account()));
}

QTEST_GUILESS_MAIN(ServerOperationsTest)
#include "server_operations_test.moc"
