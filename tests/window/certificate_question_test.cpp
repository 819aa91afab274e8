#include "support/window_fixture.h"

#include <QAbstractButton>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

/// What the user is asked when a server's certificate cannot be verified.
class CertificateQuestionTest : public QObject {
    Q_OBJECT

private slots:

    void init()
    {
        Program = std::make_unique<WindowFixture>();
        Program->Open();
    }

    void cleanup() { Program.reset(); }

    void EverythingThereIsToSeeIsShown();
    void NoIsNotRemembered();
    void YesIsRememberedForThisHostAndPort();
    void AnotherCertificateIsAskedAboutAnew();
    void EveryChannelAsks();
    void TheEndOfALineInANameEndsNoLine();
    void ReturnMeansNo();
    void ClosingTheWindowMeansNo();

private:
    std::unique_ptr<WindowFixture> Program;
};

namespace {

const Inet::DoubtfulCertificate Shown{"ftp.example",
                                      990,
                                      "CN=files",
                                      "CN=somebody",
                                      "2024-03-09 17:05:08 UTC",
                                      "2025-03-09 17:05:08 UTC",
                                      QString("AB:").repeated(31) + "01",
                                      "it has expired"};

}  // namespace

void CertificateQuestionTest::EverythingThereIsToSeeIsShown()
{
    QVERIFY(!Program->Inet1().Judge(Shown));
    QCOMPARE(Program->Questions.Questions.size(), 1U);
    const Question& question = Program->Questions.Questions.front();
    QCOMPARE(question.Title, "Tolvane");
    QCOMPARE(question.Choice, Question::YesNo);
    QCOMPARE(question.Text.split("\r\n"),
             (QStringList{"The certificate of ftp.example (port 990) is not trusted: it has expired.", "",
                          "Subject: CN=files", "Issuer: CN=somebody",
                          "Valid from 2024-03-09 17:05:08 UTC until 2025-03-09 17:05:08 UTC",
                          "SHA-256: " + Shown.Fingerprint, "",
                          "Do you want to trust this certificate for this server from now on?"}));
}

void CertificateQuestionTest::NoIsNotRemembered()
{
    QVERIFY(!Program->Inet1().Judge(Shown));
    Program->Questions.Answers = {Answer::Yes};
    QVERIFY(Program->Inet1().Judge(Shown));
    QCOMPARE(Program->Questions.Questions.size(), 2U);
}

void CertificateQuestionTest::YesIsRememberedForThisHostAndPort()
{
    Program->Questions.Answers = {Answer::Yes};
    QVERIFY(Program->Inet1().Judge(Shown));
    QVERIFY(Program->Inet1().Judge(Shown));
    Program->Restart();
    QVERIFY(Program->Inet1().Judge(Shown));
    QCOMPARE(Program->Questions.Questions.size(), 0U);
    Inet::DoubtfulCertificate other = Shown;
    other.Port = 21;
    QVERIFY(!Program->Inet1().Judge(other));
    QCOMPARE(Program->Questions.Questions.size(), 1U);
}

void CertificateQuestionTest::AnotherCertificateIsAskedAboutAnew()
{
    Program->Questions.Answers = {Answer::Yes};
    QVERIFY(Program->Inet1().Judge(Shown));
    Inet::DoubtfulCertificate other = Shown;
    other.Fingerprint.replace("01", "02");
    QVERIFY(!Program->Inet1().Judge(other));
    QVERIFY(Program->Questions.Questions.back().Text.contains("Earlier you have accepted another certificate"));
    QVERIFY(Program->Inet1().Judge(Shown));
}

void CertificateQuestionTest::EveryChannelAsks()
{
    QVERIFY(!Program->Inet2().Judge(Shown));
    QVERIFY(!Program->Inet3().Judge(Shown));
    QCOMPARE(Program->Questions.Questions.size(), 2U);
}

void CertificateQuestionTest::TheEndOfALineInANameEndsNoLine()
{
    Program->UseMessageBoxes = true;
    Program->Restart();
    Inet::DoubtfulCertificate other = Shown;
    other.Subject = "CN=x\nIssuer: CN=a good one\u202E";
    QString text;
    QTimer::singleShot(0, [&] {
        auto* box = Program->Window->findChild<QMessageBox*>();
        QVERIFY(box);
        text = box->text();
        box->close();
    });
    QVERIFY(!Program->Inet1().Judge(other));
    QVERIFY(text.contains(u"CN=x\uFFFDIssuer: CN=a good one\uFFFD\n"));
}

void CertificateQuestionTest::ReturnMeansNo()
{
    Program->UseMessageBoxes = true;
    Program->Restart();
    QTimer::singleShot(0, [&] {
        auto* box = Program->Window->findChild<QMessageBox*>();
        QVERIFY(box);
        QTest::keyClick(box, Qt::Key_Return);
    });
    QVERIFY(!Program->Inet1().Judge(Shown));
}

void CertificateQuestionTest::ClosingTheWindowMeansNo()
{
    Program->UseMessageBoxes = true;
    Program->Restart();
    QTimer::singleShot(0, [&] { Program->Window->close(); });
    QVERIFY(!Program->Inet1().Judge(Shown));
    QCOMPARE(Program->Quits, 1);
    QVERIFY(!Program->Inet1().Judge(Shown));
}

QTEST_MAIN(CertificateQuestionTest)
#include "certificate_question_test.moc"
