#include "inet/transfer_component.h"
#include "support/window_fixture.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QTcpServer>
#include <QTcpSocket>
#ifndef Q_OS_WIN
#include <QProcess>
#include <csignal>
#endif

/// How the program ends: the real one when the system tells it to, and the window with real components while a server
/// keeps it waiting.
class EndOfProgramTest : public QObject {
    Q_OBJECT

private slots:
#ifndef Q_OS_WIN
    void ARequestOfTheSystemEndsTheProgram_data();
    void ARequestOfTheSystemEndsTheProgram();
    void ARequestOfTheSystemEndsAFirstStartThatAsksForTheLanguage();
#endif
    void AServerThatSaysNothingHoldsNobodyUp();
    void AServerThatStopsHalfWayHoldsNobodyUp();
    void AHangUpThatWaitsForASilentServerHoldsNobodyUp();

private:
#ifndef Q_OS_WIN
    static void Start(QProcess& program, const QString& home);
#endif
    static void Connect(WindowFixture& program, quint16 port);
    static void CloseAndMeasure(WindowFixture& program);
};

namespace {

// Milliseconds. A second is meant; what hangs waits for a time-out of minutes, and a busy machine is not a fault.
constexpr int Limit = 20'000;

}  // namespace

#ifndef Q_OS_WIN
void EndOfProgramTest::Start(QProcess& program, const QString& home)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TOLVANE_HOME", home);
    environment.insert("XDG_CONFIG_HOME", home);
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    program.setProcessEnvironment(environment);
    program.setWorkingDirectory(home);
    // Whoever runs the tests in the background may have these ignored.
    program.setChildProcessModifier([] {
        for (const int request : {SIGTERM, SIGINT, SIGHUP}) signal(request, SIG_DFL);
    });
    program.start(TOLVANE_PROGRAM, QStringList());
}

void EndOfProgramTest::ARequestOfTheSystemEndsTheProgram_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("terminate") << SIGTERM;
    QTest::newRow("interrupt") << SIGINT;
    QTest::newRow("hang up") << SIGHUP;
}

void EndOfProgramTest::ARequestOfTheSystemEndsTheProgram()
{
    QFETCH(int, number);
    const QTemporaryDir home;
    {
        SettingsStore settings(home.path() + "/Tolvane/Tolvane.conf");
        settings.Write("FLanguage", "1");
    }
    QProcess program;
    Start(program, home.path());
    QVERIFY(program.waitForStarted());
    QTRY_VERIFY(QFile::exists(home.path() + "/Temp"));

    QElapsedTimer sinceRequest;
    sinceRequest.start();
    QCOMPARE(kill(static_cast<pid_t>(program.processId()), number), 0);
    QVERIFY(program.waitForFinished());
    QVERIFY2(sinceRequest.elapsed() < Limit, qPrintable(QString::number(sinceRequest.elapsed())));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
    const SettingsStore settings(home.path() + "/Tolvane/Tolvane.conf");
    QCOMPARE(settings.Read("SaveDrive", "(absent)"), home.path());
}

void EndOfProgramTest::ARequestOfTheSystemEndsAFirstStartThatAsksForTheLanguage()
{
    const QTemporaryDir home;
    const QString file = home.path() + "/Tolvane/Tolvane.conf";
    QProcess program;
    Start(program, home.path());
    QVERIFY(program.waitForStarted());
    QTRY_COMPARE(SettingsStore(file).Read("FLanguage", "0"), QString("1"));
    QCOMPARE(kill(static_cast<pid_t>(program.processId()), SIGTERM), 0);
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
    // The main window, which makes this folder, has not been loaded.
    QVERIFY(!QFile::exists(home.path() + "/Temp"));
    QCOMPARE(SettingsStore(file).Read("Language", "(absent)"), QString("(absent)"));
}
#endif

void EndOfProgramTest::Connect(WindowFixture& program, quint16 port)
{
    program.MakeInet = [] { return std::make_unique<TransferComponent>(); };
    program.Open();
    program.Control<QComboBox>("txtURL").setEditText("ftp://127.0.0.1");
    program.Control<QLineEdit>("txtPort").setText(QString::number(port));
    program.Click("cmdConnect");
}

void EndOfProgramTest::CloseAndMeasure(WindowFixture& program)
{
    QElapsedTimer sinceClose;
    sinceClose.start();
    QVERIFY(program.Window->close());
    program.Window.reset();
    QVERIFY2(sinceClose.elapsed() < Limit, qPrintable(QString::number(sinceClose.elapsed())));
    QCOMPARE(program.Setting("SaveURL"), QString("ftp://127.0.0.1"));
    QCOMPARE(program.Setting("SaveDrive"), program.LocalFolder());
}

void EndOfProgramTest::AServerThatSaysNothingHoldsNobodyUp()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    WindowFixture program;
    Connect(program, server.serverPort());
    QTRY_VERIFY(server.hasPendingConnections());
    CloseAndMeasure(program);
}

void EndOfProgramTest::AServerThatStopsHalfWayHoldsNobodyUp()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    WindowFixture program;
    Connect(program, server.serverPort());
    QTRY_VERIFY(server.hasPendingConnections());
    QTcpSocket* peer = server.nextPendingConnection();
    peer->write("220 ready\r\n");
    QTRY_VERIFY(peer->canReadLine());
    QCOMPARE(peer->readLine(), QByteArray("USER anonymous\r\n"));
    CloseAndMeasure(program);
}

void EndOfProgramTest::AHangUpThatWaitsForASilentServerHoldsNobodyUp()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    WindowFixture program;
    Connect(program, server.serverPort());
    QTRY_VERIFY(server.hasPendingConnections());
    QElapsedTimer sinceClose;
    QTimer::singleShot(0, program.Window.get(), [&] {
        QVERIFY(program.Values->Transfer.Closing);
        sinceClose.start();
        program.Window->close();
    });
    program.Click("Command1");
    program.Window.reset();
    QVERIFY(sinceClose.isValid());
    QVERIFY2(sinceClose.elapsed() < Limit, qPrintable(QString::number(sinceClose.elapsed())));
}

QTEST_MAIN(EndOfProgramTest)
#include "end_of_program_test.moc"
