#include "app/end_at_once.h"
#include "inet/transfer_component.h"
#include "platform/short_path.h"
#include "support/http_server.h"
#include "support/loopback_server.h"
#include "support/started_program.h"
#include "support/window_fixture.h"

#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <mutex>
#include <thread>

/// How the program ends: the real one when the system tells it to, and the window with real components while a server
/// keeps it waiting.
class EndOfProgramTest : public QObject {
    Q_OBJECT

private slots:
#ifndef Q_OS_WIN
    void ARequestOfTheSystemEndsTheProgram_data();
    void ARequestOfTheSystemEndsTheProgram();
    void ARequestOfTheSystemEndsAFirstStartThatAsksForTheLanguage();
    void ARequestOfTheSystemEndsTheProgramDuringATransfer();
#endif
    void ASecureDownloadHoldsNobodyUp_data();
    void ASecureDownloadHoldsNobodyUp();
    void EndingAtOnceWaitsForNobodyAndStoresNothing();
    void AServerThatSaysNothingHoldsNobodyUp();
    void AServerThatStopsHalfWayHoldsNobodyUp();
    void AHangUpThatWaitsForASilentServerHoldsNobodyUp();

private:
    static void Connect(WindowFixture& program, quint16 port);
    static void CloseAndMeasure(WindowFixture& program);
};

namespace {

// Milliseconds. A second is meant; what hangs waits for a time-out of minutes, and a busy machine is not a fault.
constexpr int Limit = 20'000;

QStringList FilesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

}  // namespace

#ifndef Q_OS_WIN
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
    StartedProgram program;
    program.Start();
    QVERIFY(program.Process.waitForStarted());
    QTRY_VERIFY(QFile::exists(program.Home() + "/Temp"));

    QElapsedTimer sinceRequest;
    sinceRequest.start();
    QCOMPARE(kill(static_cast<pid_t>(program.Process.processId()), number), 0);
    QVERIFY(program.HasEnded());
    QVERIFY2(sinceRequest.elapsed() < Limit, qPrintable(QString::number(sinceRequest.elapsed())));
    QCOMPARE(program.Setting("SaveDrive"), program.Home());
}

void EndOfProgramTest::ARequestOfTheSystemEndsAFirstStartThatAsksForTheLanguage()
{
    StartedProgram program;
    program.Remove("FLanguage");
    program.Start();
    QVERIFY(program.Process.waitForStarted());
    QTRY_COMPARE(program.Setting("FLanguage"), QString("1"));
    QCOMPARE(kill(static_cast<pid_t>(program.Process.processId()), SIGTERM), 0);
    QVERIFY(program.HasEnded());
    // The main window, which makes this folder, has not been loaded.
    QVERIFY(!QFile::exists(program.Home() + "/Temp"));
    QCOMPARE(program.Setting("Language"), QString("(absent)"));
}

void EndOfProgramTest::ARequestOfTheSystemEndsTheProgramDuringATransfer()
{
    StartedProgram program;
    QFile old(program.Home() + "/first");
    QVERIFY(old.open(QIODevice::WriteOnly) && old.write("as it was") > 0);
    old.close();
    LoopbackServer server;
    server.Files["first"] = QByteArray(1 << 20, 'x');
    server.DataLimit = 1000;
    const QString address = QString("ftp://127.0.0.1:%1").arg(server.Port());
    program.Start("type txtURL " + address +
                  "|click cmdConnect|rows lstRemoteFiles 2|pick lstRemoteFiles 0|click Image2");
    QTRY_VERIFY_WITH_TIMEOUT(server.Commands.contains("RETR first"), Limit);
    QTRY_COMPARE_WITH_TIMEOUT(FilesIn(program.Home()).filter(".part").size(), 1, Limit);

    QCOMPARE(kill(static_cast<pid_t>(program.Process.processId()), SIGTERM), 0);
    QTRY_COMPARE_WITH_TIMEOUT(program.Process.state(), QProcess::NotRunning, Limit);
    QVERIFY(program.HasEnded());
    QTRY_COMPARE(server.OpenConnections(), 0);
    QCOMPARE(FilesIn(program.Home()), (QStringList{"Tolvane.dta", "first"}));
    QVERIFY(old.open(QIODevice::ReadOnly));
    QCOMPARE(old.readAll(), QByteArray("as it was"));
    QCOMPARE(program.Setting("SaveURL"), address);
    QCOMPARE(program.Setting("SaveDrive"), program.Home());
}

#endif

void EndOfProgramTest::ASecureDownloadHoldsNobodyUp_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("moment");
    QTest::addColumn<QString>("end");
    QTest::addColumn<QStringList>("files");
    const QByteArray whole = HttpServer::Whole("200 OK", QByteArray(100'000, 'x'));
    const QStringList none{"Tolvane.dta"};
    const QStringList accepted{"TolvCert.dta", "Tolvane.dta"};
    const QStringList received{"TolvCert.dta", "Tolvane.dta", "file"};
    for (const QString end : {"choose mnuExit", "close Tolvane"}) {
        const QByteArray way = end.section(u' ', 0, 0).toLatin1();
        QTest::newRow("while it asks, " + way) << whole << "asks Yes" << end << none;
        QTest::newRow("before the answer, " + way)
            << QByteArray() << "answer Yes|shows sbFTP2 Receiving Response..." << end << accepted;
        QTest::newRow("in the file, " + way)
            << whole.first(50'000) << "answer Yes|shows sbFTP2 Receiving Response..." << end << accepted;
        QTest::newRow("after the file, " + way) << whole << "answer Yes|shows sbFTP2 Waiting..." << end << received;
    }
}

/// The executable ends as a whole, whatever its threads are about when its window closes.
void EndOfProgramTest::ASecureDownloadHoldsNobodyUp()
{
    QFETCH(QByteArray, answer);
    QFETCH(QString, moment);
    QFETCH(QString, end);
    QFETCH(QStringList, files);
    HttpServer server(HttpCertificate::For("127.0.0.1"));
    server.Answers["/file"] = {answer};
    StartedProgram program;
    program.Start("choose mnuCommand|type txtCom " + server.Url("/file") + "|click Command14|" + moment + u'|' + end);
    QTRY_COMPARE_WITH_TIMEOUT(server.Connections, 1, 2 * Limit);
    // Well before the download itself would have lost patience.
    QTRY_COMPARE_WITH_TIMEOUT(program.Process.state(), QProcess::NotRunning, Limit);
    QVERIFY(program.HasEnded());
    QTRY_COMPARE(server.OpenConnections(), 0);
    QCOMPARE(server.Connections, 1);
    QCOMPARE(FilesIn(program.Home()), files);
    QVERIFY(program.Setting("SaveDrive") != u"(absent)");
}

namespace {

/// Where a program that is going to end at once leaves the path of its settings: it may have no console to print on.
QString NoteIn(const QString& home)
{
    return home + "/note";
}

/// The program while a command hangs that cannot be cancelled and a thread of it never returns. Its user presses the
/// exit button and chooses Retry. Ends with 3 when it does not end at once.
int HangAndEnd(const QString& home)
{
    static std::condition_variable never;
    static std::mutex lock;
    std::thread hanging([] {
        std::unique_lock held(lock);
        never.wait(held, [] { return false; });
    });
    std::atexit([] { std::_Exit(3); });
    WindowFixture program(home);
    program.End = &EndAtOnce;
    program.Store("SaveURL", "as it was");
    program.Open();
    program.Questions.Reply = [](const Question&) { return Answer::Retry; };
    program.Inet1().Hold();
    program.Inet1().DeafToCancels = 1'000'000;
    program.Control<QComboBox>("txtURL").setEditText("ftp://host");
    program.Click("cmdConnect");
    QFile note(NoteIn(home));
    if (!note.open(QIODevice::WriteOnly) || note.write(program.SettingsFile().toUtf8()) < 0) return 4;
    note.close();
    program.Click("Command2");
    hanging.join();
    return 3;
}

}  // namespace

void EndOfProgramTest::EndingAtOnceWaitsForNobodyAndStoresNothing()
{
    const QTemporaryDir home;
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // What the ended program leaves goes with the folder.
    for (const char* variable : {"TMPDIR", "TMP", "TEMP"})
        environment.insert(variable, QDir::toNativeSeparators(home.path()));
    program.setProcessEnvironment(environment);
    program.start(QCoreApplication::applicationFilePath(), {"--hang", home.path()});
    QVERIFY(program.waitForFinished(Limit));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
    QFile note(NoteIn(home.path()));
    QVERIFY(note.open(QIODevice::ReadOnly));
    const QString file = QString::fromUtf8(note.readAll());
    QVERIFY2(file.startsWith(home.path()) && QFile::exists(file), qPrintable(file));
    const SettingsStore settings(file);
    QCOMPARE(settings.Read("SaveURL", "(absent)"), QString("as it was"));
    QCOMPARE(settings.Read("SaveDrive", "(absent)"), QString("(absent)"));
}

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
    QCOMPARE(program.Setting("SaveDrive"), ShortPath(QDir::toNativeSeparators(program.LocalFolder())));
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

int main(int count, char** words)
{
    QApplication program(count, words);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "--hang") return HangAndEnd(arguments.value(2));
    EndOfProgramTest test;
    return QTest::qExec(&test, count, words);
}

#include "end_of_program_test.moc"
