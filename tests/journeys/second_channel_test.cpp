#include "support/real_program.h"
#include "support/real_servers.h"
#include "support/test_files.h"

#include <QDir>
#include <memory>

/// The second and third channel against real servers: a further file beside a batch, and the maker's messages.
class SecondChannelTest : public QObject {
    Q_OBJECT

private slots:
    void AFurtherFileComesWhileABatchGoesOn_data();
    void AFurtherFileComesWhileABatchGoesOn();
    void AMissingFileIsReportedAndWritesNothing();
    void ADyingServerLeavesTheOldFile();
    void MessagesComeFromAServer();

private:
    static QString FullAddress(const RealServer& server, const QString& path);
    static void Download(const RealProgram& program, const QString& address);

    static QString Said(const RealProgram& program) { return program.Control<QLabel>("sbFTP2").text(); }

    static QStringList Names(const RealProgram& program);
};

QString SecondChannelTest::FullAddress(const RealServer& server, const QString& path)
{
    const QString login = "ftp://" + server.User() + ':' + server.Password() + '@';
    return server.Url().replace("ftp://", login) + '/' + path;
}

void SecondChannelTest::Download(const RealProgram& program, const QString& address)
{
    RealProgram::Type(*program.Control<QComboBox>("txtCom").lineEdit(), address);
    QTest::keyClick(program.Control<QComboBox>("txtCom").lineEdit(), Qt::Key_Return);
}

/// Everything in the local folder, hidden files included.
QStringList SecondChannelTest::Names(const RealProgram& program)
{
    return QDir(program.Local.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

void SecondChannelTest::AFurtherFileComesWhileABatchGoesOn_data()
{
    QTest::addColumn<int>("kind");
    for (const auto kind : {RealServer::Pyftpdlib, RealServer::Vsftpd, RealServer::ProFtpd, RealServer::PureFtpd})
        QTest::newRow(RealServer::NameOf(kind).toUtf8().constData()) << static_cast<int>(kind);
}

void SecondChannelTest::AFurtherFileComesWhileABatchGoesOn()
{
    QFETCH(const int, kind);
    const RealServer server(static_cast<RealServer::Kind>(kind));
    QVERIFY2(server.Complaint().isEmpty(), qPrintable(server.Complaint()));
    QStringList batch;
    for (int number = 1; number <= 5; ++number) {
        batch += QString("file%1.bin").arg(number);
        Write(server.Folder() + '/' + batch.last(), Pattern(700'000, static_cast<quint32>(number)));
    }
    Write(server.Folder() + "/further.bin", Pattern(3'000'000, 99));

    RealProgram program;
    program.Open();
    program.Control<QAction>("mnuCommand").trigger();
    program.Control<QAction>("mnuUNIX").trigger();
    program.Connect(server);
    QTRY_VERIFY_WITH_TIMEOUT(RealProgram::RowOf(program.Remote(), "file5.bin") >= 0, 30'000);
    ListMouse::Select(program.Remote(), RealProgram::RowsOf(program.Remote(), batch));
    // The download begins in the middle of the batch, and its end comes during the batch or after it.
    bool begun = false;
    connect(&program.Inet1(), &Inet::StateChanged, &program.Inet1(), [&](int state) {
        if (state == Inet::ReceivingResponse && !std::exchange(begun, true))
            Download(program, FullAddress(server, "further.bin"));
    });
    program.Click("Image2");
    QVERIFY(begun);
    QTRY_COMPARE_WITH_TIMEOUT(Said(program), QString("Waiting..."), 60'000);
    QTRY_VERIFY_WITH_TIMEOUT(program.IsIdle(), 60'000);
    for (int number = 1; number <= 5; ++number)
        QVERIFY(Read(program.Local.filePath(batch[number - 1])) == Pattern(700'000, static_cast<quint32>(number)));
    QVERIFY(Read(program.Local.filePath("further.bin")) == Pattern(3'000'000, 99));
    QCOMPARE(Names(program).size(), 6);
    program.Close();
}

void SecondChannelTest::AMissingFileIsReportedAndWritesNothing()
{
    const RealServer server(RealServer::Pyftpdlib);
    QVERIFY2(server.Complaint().isEmpty(), qPrintable(server.Complaint()));
    RealProgram program;
    program.Open();
    program.Control<QAction>("mnuCommand").trigger();
    Write(program.Local.filePath("gone.bin"), "old");
    Download(program, FullAddress(server, "gone.bin"));
    QTRY_VERIFY_WITH_TIMEOUT(Said(program).startsWith("Error! "), 30'000);
    QTRY_VERIFY(program.Log().last().contains("gone.bin was not received: "));
    QVERIFY2(!program.Log().join('\n').contains(server.Password()), "the password is in the log");
    QCOMPARE(Read(program.Local.filePath("gone.bin")), QByteArray("old"));
    QCOMPARE(Names(program), QStringList{"gone.bin"});
    program.Close();
}

void SecondChannelTest::ADyingServerLeavesTheOldFile()
{
    RealServer server(RealServer::Pyftpdlib);
    QVERIFY2(server.Complaint().isEmpty(), qPrintable(server.Complaint()));
    MakeSparse(server.Folder() + "/huge.bin", qint64{200} << 30);  // no disk of a test's is that large
    RealProgram program;
    program.Open();
    program.Control<QAction>("mnuCommand").trigger();
    Write(program.Local.filePath("huge.bin"), "old");
    Download(program, FullAddress(server, "huge.bin"));
    QTRY_COMPARE_WITH_TIMEOUT(Said(program), QString("Receiving Response..."), 30'000);
    QTRY_VERIFY_WITH_TIMEOUT(Names(program).size() > 1, 30'000);
    server.Kill();
    QTRY_VERIFY_WITH_TIMEOUT(Said(program).startsWith("Error! "), 60'000);
    QCOMPARE(Read(program.Local.filePath("huge.bin")), QByteArray("old"));
    QTRY_COMPARE(Names(program), QStringList{"huge.bin"});
    program.Close();
}

void SecondChannelTest::MessagesComeFromAServer()
{
    const RealServer server(RealServer::Pyftpdlib);
    QVERIFY2(server.Complaint().isEmpty(), qPrintable(server.Complaint()));
    Write(server.Folder() + "/msg.txt", "!Tolvane 3.3 is here\r\nGr\xC3\xBC\xC3\x9F Gott\r\n");
    RealProgram program;
    program.MessageAddress = FullAddress(server, "msg.txt");
    program.Open();
    program.Control<QAction>("mnuMesgUpdate").trigger();
    auto& label = program.Control<QLabel>("lblAds");
    QTRY_COMPARE_WITH_TIMEOUT(label.text(), QString("Tolvane 3.3 is here"), 60'000);
    QTRY_COMPARE_WITH_TIMEOUT(label.text(), QString("Grüß Gott"), 60'000);
    program.Close();
}

QTEST_MAIN(SecondChannelTest)
#include "second_channel_test.moc"
