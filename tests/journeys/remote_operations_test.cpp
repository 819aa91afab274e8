#include "base/byte_text.h"
#include "platform/file_facts.h"
#include "platform/short_path.h"
#include "support/names_here.h"
#include "support/real_program.h"
#include "support/test_files.h"

#include <QAbstractButton>
#include <QDir>
#include <QRegularExpression>
#include <filesystem>
#include <utility>

/// The buttons beside the remote panel, and what four FTP servers really hold afterwards.
class RemoteOperationsTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void FoldersOfOddNamesAreMadeAndErased_data() { AllServers(); }

    void FoldersOfOddNamesAreMadeAndErased();

    void FilesOfOddNamesAreMeasuredReadRenamedAndErased_data() { AllServers(); }

    void FilesOfOddNamesAreMeasuredReadRenamedAndErased();

    void WholeListingLinesWorkAsNames_data() { AllServers(); }

    void WholeListingLinesWorkAsNames();

    void ALocalCopyIsReplacedByTheFileRead_data() { AllServers(); }

    void ALocalCopyIsReplacedByTheFileRead();

    void RefusedOperationsShowTheServersSentenceAndTheRealState_data() { AllServers(); }

    void RefusedOperationsShowTheServersSentenceAndTheRealState();

    void FiveHundredFilesAreErasedButTheOneAnsweredNo_data() { AllServers(); }

    void FiveHundredFilesAreErasedButTheOneAnsweredNo();

    void AServerThatDiesUnderAnOperationIsReported_data();
    void AServerThatDiesUnderAnOperationIsReported();

private:
    static void AllServers()
    {
        QTest::addColumn<int>("kind");
        for (const auto kind : {RealServer::Vsftpd, RealServer::ProFtpd, RealServer::PureFtpd, RealServer::Pyftpdlib})
            QTest::newRow(qPrintable(RealServer::NameOf(kind))) << static_cast<int>(kind);
    }

    QString Remote(const QByteArray& name) const { return Server->Folder() + '/' + BytesToText(name); }

    QString Local(const QByteArray& name) const { return Own->Local.path() + '/' + BytesToText(name); }

    /// Connects and waits for this many lines; "." and ".." of some servers do not count.
    void Open(bool namesOnly, int lines) const;

    /// Highlights the line of a name; what is said before the name on it does not matter.
    void Choose(const QByteArray& name) const;

    /// Presses a button and waits for the listing, where there is one.
    void Press(const char* button) const;

    QStringList Lines() const
    {
        QStringList lines = Own->Remote().Entries();
        lines.removeAll(".");
        lines.removeAll("..");
        return lines;
    }

    bool Has(const QByteArray& name) const { return RealProgram::RowOf(Own->Remote(), BytesToText(name)) >= 0; }

    /// How often the log tells a refusal by the server.
    qsizetype Refusals() const { return Own->Log().filter(QRegularExpression("^Error! 5\\d\\d: .")).size(); }

    std::unique_ptr<RealServer> Server;
    std::unique_ptr<RealProgram> Own;
};

namespace {

const QList<QByteArray> OddNames = NamesHere({
    "two  blanks",
    "a \"quoted\" word",
    "100% sure %41%2F %s",
    "-dash first",
    "--version",
    "Gr\xC3\xBC\xC3\x9F"
    "e.txt",
    "\xE6\x97\xA5\xE6\x9C\xAC.txt",
    "it's $(more)",
    QByteArray(250, 'n'),
});

}  // namespace

void RemoteOperationsTest::init()
{
    QFETCH(int, kind);
    Server = std::make_unique<RealServer>(static_cast<RealServer::Kind>(kind));
    QVERIFY2(Server->Complaint().isEmpty(), qPrintable(Server->Complaint()));
    Own = std::make_unique<RealProgram>();
}

void RemoteOperationsTest::cleanup()
{
    Own.reset();
    Server.reset();
}

void RemoteOperationsTest::Open(bool namesOnly, int lines) const
{
    Own->Open();
    if (namesOnly) Own->Control<QAction>("mnuUNIX").trigger();
    Own->Connect(*Server);
    QTRY_VERIFY2_WITH_TIMEOUT(Own->IsIdle() && Lines().size() == lines, qPrintable(Own->Status() + Lines().join(u'\n')),
                              15'000);
}

void RemoteOperationsTest::Choose(const QByteArray& name) const
{
    const int row = RealProgram::RowOf(Own->Remote(), BytesToText(name));
    QVERIFY2(row >= 0, name);
    ListMouse::LeftClick(Own->Remote(), row);
}

void RemoteOperationsTest::Press(const char* button) const
{
    Own->Click(button);
    QTRY_VERIFY_WITH_TIMEOUT(Own->IsIdle(), 15'000);
    QCoreApplication::processEvents();
}

void RemoteOperationsTest::FoldersOfOddNamesAreMadeAndErased()
{
    Open(true, 0);
    Own->Questions.Reply = [](const Question&) { return Answer::Yes; };
    for (const QByteArray& name : OddNames) {
        Own->Prompt->Answers.emplace_back(BytesToText(name));
        Press("Command10");
        QVERIFY2(IsFolder(Remote(name)), name);
        QVERIFY2(Has(name), qPrintable(Lines().join(u'\n')));
        Choose(name);
        Press("Command9");
        QVERIFY2(!Exists(Remote(name)), name);
        QVERIFY2(!Has(name), name);
    }
    QCOMPARE(Refusals(), 0);
}

void RemoteOperationsTest::FilesOfOddNamesAreMeasuredReadRenamedAndErased()
{
    for (const QByteArray& name : OddNames) Write(Remote(name), "text of " + name);
    Open(true, static_cast<int>(OddNames.size()));
    Own->Questions.Reply = [](const Question&) { return Answer::Yes; };
    for (const QByteArray& name : OddNames) {
        Choose(name);
        Press("Command16");
        QCOMPARE(Own->Questions.Texts().last(),
                 "   " + BytesToText(name) + "  = " + QString::number(name.size() + 8) + "  Bytes ");
        Press("Command5");
        QCOMPARE(Read(Local(name)), "text of " + name);
        QCOMPARE(Own->Edited.last(), QString());
        Own->Prompt->Answers.emplace_back(" renamed ");
        Press("Command6");
        QCOMPARE(Own->Prompt->Prefills.last(), BytesToText(name));
        QVERIFY2(!Exists(Remote(name)), name);
        QCOMPARE(Read(Remote("renamed")), "text of " + name);
        Choose("renamed");
        Own->Prompt->Answers.emplace_back(BytesToText(name));
        Press("Command6");
        QCOMPARE(Read(Remote(name)), "text of " + name);
        Choose(name);
        QTest::keyClick(&Own->Remote(), Qt::Key_Delete);
        QTRY_VERIFY_WITH_TIMEOUT(Own->IsIdle() && !Has(name), 15'000);
        QVERIFY2(!Exists(Remote(name)), name);
    }
    QCOMPARE(Lines(), QStringList());
    QCOMPARE(Refusals(), 0);
}

void RemoteOperationsTest::WholeListingLinesWorkAsNames()
{
    Write(Remote("two  words.txt"), "12345");
    Write(Remote("other"), "x");
    QVERIFY(QDir(Server->Folder()).mkdir("a folder"));
    Open(false, 3);
    Own->Questions.Reply = [](const Question&) { return Answer::Yes; };
    Choose("two  words.txt");
    const QString line = Own->Remote().Entry(Own->Remote().ListIndex());
    QVERIFY(line.size() > 30);
    Press("Command16");
    QCOMPARE(Own->Questions.Texts().last(), "   " + line + "  = 5  Bytes ");
    Press("Command5");
    QCOMPARE(Read(Local("two  words.txt")), QByteArray("12345"));
    Own->Prompt->Answers.emplace_back("renamed");
    Press("Command6");
    QCOMPARE(Read(Remote("renamed")), QByteArray("12345"));
    Choose("a folder");
    Press("Command9");
    QVERIFY(!Exists(Remote("a folder")));
    QTRY_COMPARE(Lines().size(), 2);
    Own->Remote().selectAll();
    Press("Command7");
    QVERIFY(!Exists(Remote("renamed")) && !Exists(Remote("other")));
    QTRY_COMPARE(Lines(), QStringList());
}

void RemoteOperationsTest::ALocalCopyIsReplacedByTheFileRead()
{
    Write(Remote("read me.txt"), "new");
    Write(Local("read me.txt"), "an older and longer text");
    Open(true, 1);
    Choose("read me.txt");
    Press("Command5");
    QCOMPARE(Read(Local("read me.txt")), QByteArray("new"));
    QCOMPARE(Own->Edited, QStringList{ShortPath(QDir::toNativeSeparators(Local("read me.txt")))});
    QCOMPARE(Lines(), QStringList{"read me.txt"});
}

void RemoteOperationsTest::RefusedOperationsShowTheServersSentenceAndTheRealState()
{
    QVERIFY(QDir(Server->Folder()).mkpath("full/inside"));
    for (const char* name : {"a", "b", "c", "d"}) Write(Remote(name), "x");
    Open(true, 5);
    Own->Questions.Reply = [](const Question&) { return Answer::Yes; };

    Own->Prompt->Answers.emplace_back("full");
    Press("Command10");
    QCOMPARE(Refusals(), 1);
    QCOMPARE(Lines().size(), 5);

    Choose("full");
    Press("Command9");
    QCOMPARE(Refusals(), 2);
    QVERIFY(Exists(Remote("full/inside")) && Has("full"));

    std::filesystem::remove(FilePath(Remote("a")));
    Choose("a");
    Own->Prompt->Answers.emplace_back("z");
    Press("Command6");
    QCOMPARE(Refusals(), 3);
    QVERIFY(!Has("a") && !Has("z"));

    std::filesystem::remove(FilePath(Remote("b")));
    Choose("b");
    Press("Command7");
    QCOMPARE(Refusals(), 4);
    QVERIFY(!Has("b"));

    std::filesystem::remove(FilePath(Remote("c")));
    Choose("c");
    Press("Command16");
    Press("Command5");
    QCOMPARE(Refusals(), 6);
    QVERIFY(!Exists(Local("c")));
    QCOMPARE(Own->Edited, QStringList());
    QTest::keyClick(&Own->Remote(), Qt::Key_Delete);
    QTRY_VERIFY_WITH_TIMEOUT(Own->IsIdle() && !Has("c"), 15'000);
    QCOMPARE(Refusals(), 7);
    QVERIFY(Has("d"));
}

void RemoteOperationsTest::FiveHundredFilesAreErasedButTheOneAnsweredNo()
{
    for (int number = 0; number < 500; ++number) Write(Remote("file " + QByteArray::number(number)), "x");
    Open(true, 500);
    Own->Questions.Reply = [](const Question& question) {
        const bool isFile = question.Text.contains("\"file ");  // and not the folder itself, which some servers name
        return isFile && !question.Text.contains("\"file 250\"") ? Answer::Yes : Answer::No;
    };
    Own->Remote().selectAll();
    Own->Click("Command7");
    QCOMPARE(Own->Questions.Texts().filter("\"file ").size(), 500);
    QTRY_COMPARE_WITH_TIMEOUT(Lines(), QStringList{"file 250"}, 15'000);
    QCOMPARE(QDir(Server->Folder()).entryList(QDir::Files), QStringList{"file 250"});
}

void RemoteOperationsTest::AServerThatDiesUnderAnOperationIsReported_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("button");
    for (const auto kind : {RealServer::Vsftpd, RealServer::Pyftpdlib}) {
        for (const char* button : {"Command10", "Command6", "Command7", "Command9", "Command5", "Command16", ""}) {
            const QString name = RealServer::NameOf(kind) + ", " + (*button == 0 ? "Delete key" : button);
            QTest::newRow(qPrintable(name)) << static_cast<int>(kind) << QString(button);
        }
    }
}

// Whether the server has carried out the operation when it dies is a matter of luck; that the end of the connection is
// told, and that nothing hangs, is not.
void RemoteOperationsTest::AServerThatDiesUnderAnOperationIsReported()
{
    QFETCH(QString, button);
    Write(Remote("a"), "x");
    Open(true, 1);
    Choose("a");
    Own->Questions.Reply = [](const Question&) { return Answer::Yes; };
    Own->Prompt->Answers.emplace_back("new");
    bool killed = false;
    connect(&Own->Inet1(), &Inet::StateChanged, this, [&](int state) {
        if (state != Inet::Requesting || std::exchange(killed, true)) return;
        Server->Kill();
    });
    if (button.isEmpty())
        QTest::keyClick(&Own->Remote(), Qt::Key_Delete);
    else
        Own->Click(qPrintable(button));
    QTRY_VERIFY_WITH_TIMEOUT(Own->IsIdle(), 30'000);
    QVERIFY(killed);
    const bool lists = button != "Command5" && button != "Command16";
    const bool done = Own->Log().filter(QRegularExpression("^(Read File|File size)")).size() == 1;
    if (lists || !done) QVERIFY(!Own->Log().filter(QRegularExpression("^Error! 12\\d\\d\\d: .")).isEmpty());
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
    QVERIFY(Own->Control<QAbstractButton>("cmdConnect").isEnabled());
}

QTEST_MAIN(RemoteOperationsTest)
#include "remote_operations_test.moc"
