#include "support/http_server.h"
#include "support/real_program.h"
#include "support/real_servers.h"
#include "support/test_files.h"

#include <QDir>

/// The whole program and servers whose certificate nobody vouches for: asked about once, remembered, asked about again
/// when it has changed.
class CertificatesTest : public QObject {
    Q_OBJECT

private slots:
    void FilesGoBothWaysOnceTheCertificateIsAccepted_data();
    void FilesGoBothWaysOnceTheCertificateIsAccepted();
    void AnotherCertificateIsAskedAboutAgain();
    void NoMeansNoConnection();
    void ASecondChannelAsksOnceAndRemembers();
    void ASecondChannelRefusedWritesNothing();

private:
    static QString Question(const QString& doubts, int port);
    static void Listed(const RealProgram& program, const QString& name);
    static void Download(const RealProgram& program, const QString& address);

    static QString SaidBeside(const RealProgram& program) { return program.Control<QLabel>("sbFTP2").text(); }

    static QStringList Names(const RealProgram& program);
};

namespace {

const QString Refusal = "The server's certificate is not trusted: it is signed by nobody but itself.";

}  // namespace

/// How a question about a certificate begins.
QString CertificatesTest::Question(const QString& doubts, int port)
{
    return QString("The certificate of 127.0.0.1 (port %1) is not trusted: %2.").arg(port).arg(doubts);
}

void CertificatesTest::Listed(const RealProgram& program, const QString& name)
{
    QTRY_VERIFY2_WITH_TIMEOUT(RealProgram::RowOf(program.Remote(), name) >= 0, qPrintable(program.Status()), 30'000);
    QTRY_VERIFY_WITH_TIMEOUT(program.IsIdle(), 30'000);
}

void CertificatesTest::Download(const RealProgram& program, const QString& address)
{
    RealProgram::Type(*program.Control<QComboBox>("txtCom").lineEdit(), address);
    QTest::keyClick(program.Control<QComboBox>("txtCom").lineEdit(), Qt::Key_Return);
}

/// Everything in the local folder, hidden files included.
QStringList CertificatesTest::Names(const RealProgram& program)
{
    return QDir(program.Local.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

void CertificatesTest::FilesGoBothWaysOnceTheCertificateIsAccepted_data()
{
    QTest::addColumn<QString>("version");
    QTest::newRow("TLS 1.2") << "1.2";
    QTest::newRow("TLS 1.3") << "1.3";
}

void CertificatesTest::FilesGoBothWaysOnceTheCertificateIsAccepted()
{
    QFETCH(const QString, version);
    const RealServer server(RealServer::Vsftpd, "127.0.0.1", RealServer::SelfSignedTls, version);
    QVERIFY2(server.Complaint().isEmpty(), qPrintable(server.Complaint()));
    Write(server.Folder() + "/theirs.bin", Pattern(3'000'000, 1));
    RealProgram program;
    Write(program.Local.filePath("mine.bin"), Pattern(2'000'000, 2));
    program.Open();
    program.Control<QAction>("mnuUNIX").trigger();
    program.Questions.Answers = {Answer::Yes};
    program.Connect(server);
    Listed(program, "theirs.bin");
    QCOMPARE(program.Questions.Questions.size(), 1U);
    QVERIFY2(program.Questions.Texts().first().startsWith(Question("it is signed by nobody but itself", server.Port())),
             qPrintable(program.Questions.Texts().first()));

    ListMouse::Select(program.Remote(), {RealProgram::RowOf(program.Remote(), "theirs.bin")});
    ListMouse::RightDrag(program.Remote(), program.Files());
    QVERIFY(Read(program.Local.filePath("theirs.bin")) == Pattern(3'000'000, 1));
    ListMouse::Select(program.Files(), {RealProgram::RowOf(program.Files(), "mine.bin")});
    ListMouse::RightDrag(program.Files(), program.Remote());
    Listed(program, "mine.bin");
    QVERIFY(Read(server.Folder() + "/mine.bin") == Pattern(2'000'000, 2));

    program.Close();
    program.Open();
    program.Click("cmdConnect");
    Listed(program, "mine.bin");
    QCOMPARE(program.Questions.Questions.size(), 1U);
}

void CertificatesTest::AnotherCertificateIsAskedAboutAgain()
{
    RealServer server(RealServer::Vsftpd, "127.0.0.1", RealServer::SelfSignedTls);
    QVERIFY2(server.Complaint().isEmpty(), qPrintable(server.Complaint()));
    Write(server.Folder() + "/theirs.bin", "theirs");
    RealProgram program;
    program.Open();
    program.Control<QAction>("mnuUNIX").trigger();
    program.Questions.Answers = {Answer::Yes};
    program.Connect(server);
    Listed(program, "theirs.bin");
    program.Close();

    server.RenewCertificate();
    QVERIFY2(server.Complaint().isEmpty(), qPrintable(server.Complaint()));
    program.Open();
    program.Click("cmdConnect");
    QTRY_VERIFY2_WITH_TIMEOUT(program.Log().join('\n').contains(Refusal), qPrintable(program.Log().join('\n')), 30'000);
    QCOMPARE(program.Questions.Questions.size(), 2U);
    QVERIFY(program.Questions.Texts().last().contains("Earlier you have accepted another certificate of this server."));
    QCOMPARE(program.Remote().Count(), 0);

    program.Questions.Answers = {Answer::Yes};
    program.Click("cmdConnect");
    Listed(program, "theirs.bin");
    QCOMPARE(program.Questions.Questions.size(), 3U);
    program.Close();
    program.Open();
    program.Click("cmdConnect");
    Listed(program, "theirs.bin");
    QCOMPARE(program.Questions.Questions.size(), 3U);
}

void CertificatesTest::NoMeansNoConnection()
{
    const RealServer server(RealServer::Vsftpd, "127.0.0.1", RealServer::SelfSignedTls);
    QVERIFY2(server.Complaint().isEmpty(), qPrintable(server.Complaint()));
    RealProgram program;
    program.Open();
    program.Questions.Answers = {Answer::No};
    program.Connect(server);
    QTRY_VERIFY_WITH_TIMEOUT(program.Log().join('\n').contains(Refusal), 30'000);
    QCOMPARE(program.Remote().Count(), 0);
    QVERIFY(!program.Log().join('\n').contains(server.Password()));
}

void CertificatesTest::ASecondChannelAsksOnceAndRemembers()
{
    HttpServer server(HttpCertificate::For("127.0.0.1"));
    server.Answers["/pub/further.bin"] = {HttpServer::Whole("200 OK", Pattern(300'000, 7))};
    RealProgram program;
    program.Open();
    program.Control<QAction>("mnuCommand").trigger();
    program.Questions.Answers = {Answer::Yes};
    Download(program, server.Url("/pub/further.bin"));
    QTRY_COMPARE_WITH_TIMEOUT(Names(program), QStringList{"further.bin"}, 30'000);
    QTRY_COMPARE(SaidBeside(program), QString("Waiting..."));
    QVERIFY(Read(program.Local.filePath("further.bin")) == Pattern(300'000, 7));
    QCOMPARE(program.Questions.Questions.size(), 1U);
    QVERIFY(program.Questions.Texts().first().startsWith(Question("it is signed by nobody but itself", server.Port())));

    program.Close();
    QVERIFY(QFile::remove(program.Local.filePath("further.bin")));
    program.Open();
    program.Control<QAction>("mnuCommand").trigger();
    Download(program, server.Url("/pub/further.bin"));
    QTRY_COMPARE_WITH_TIMEOUT(Names(program), QStringList{"further.bin"}, 30'000);
    QTRY_COMPARE(SaidBeside(program), QString("Waiting..."));
    QCOMPARE(program.Questions.Questions.size(), 1U);
}

void CertificatesTest::ASecondChannelRefusedWritesNothing()
{
    HttpServer server(HttpCertificate::For("127.0.0.1"));
    server.Answers["/further.bin"] = {HttpServer::Whole("200 OK", "text")};
    RealProgram program;
    program.Open();
    program.Control<QAction>("mnuCommand").trigger();
    Write(program.Local.filePath("further.bin"), "old");
    program.Questions.Answers = {Answer::No};
    Download(program, server.Url("/further.bin"));
    QTRY_VERIFY_WITH_TIMEOUT(program.Log().join('\n').contains(Refusal), 30'000);
    QCOMPARE(program.Questions.Questions.size(), 1U);
    QCOMPARE(Read(program.Local.filePath("further.bin")), QByteArray("old"));
    QCOMPARE(Names(program), QStringList{"further.bin"});
    QCOMPARE(server.Requests.size(), 0);
}

QTEST_MAIN(CertificatesTest)
#include "certificates_test.moc"
