#include "base/byte_text.h"
#include "support/conversation.h"
#include "support/names_here.h"
#include "support/outcome_checks.h"

#include <QtTest>

/// Which names go to the server and come to the disk: all bytes as they are, or not at all.
class NamesOnTheWireTest : public QObject {
    Q_OBJECT

private slots:
    void ControlCharactersAreNeverSent_data();
    void ControlCharactersAreNeverSent();
    void NamesOfTheLogInAreCheckedToo_data();
    void NamesOfTheLogInAreCheckedToo();
    void NamesAreSentExactly_data();
    void NamesAreSentExactly();
    void NothingLandsOutsideTheLocalFolder_data();
    void NothingLandsOutsideTheLocalFolder();
    void NothingIsSentFromOutsideTheLocalFolder();
    void ALocalPathOfItsOwnIsTaken();
    void TheLongestNamesFit();
    void ANameTooLongForTheDiskIsAnError();
    void AFolderInTheWayIsAnError();
};

void NamesOnTheWireTest::ControlCharactersAreNeverSent_data()
{
    QTest::addColumn<QByteArray>("operation");
    for (const char* verb : {"CD ", "DELETE ", "MKDIR ", "RMDIR ", "SIZE ", "GET ", "PUT "}) {
        for (const QByteArray& name : {QByteArray("x\nDELE y"), QByteArray("x\rDELE y"), QByteArray("x\0y", 3),
                                       QByteArray("x\x7fy"), QByteArray("x\ty"), QByteArray("x\x1fy")})
            QTest::newRow((verb + name.toPercentEncoding()).constData()) << verb + name;
    }
    QTest::newRow("old name") << QByteArray("RENAME \"a\r\nDELE b\" \"c\"");
    QTest::newRow("new name") << QByteArray("RENAME \"a\" \"c\r\nDELE b\"");
    QTest::newRow("remote half") << QByteArray("PUT \"near\" \"c\r\nDELE b\"");
}

void NamesOnTheWireTest::ControlCharactersAreNeverSent()
{
    QFETCH(QByteArray, operation);
    const bool inBinary = operation.startsWith("SIZE");
    Conversation talk(LogIn + "C: CDUP\nS: 250 up\n" + (inBinary ? "C: TYPE I\nS: 200 fine\n" : "") +
                      "C: CDUP\nS: 250 up");
    talk.MakeLocalFile("near", "x");
    QVERIFY_GOOD(talk.Do("CDUP"));
    const Ftp::Outcome got = talk.Do(operation.toStdString());
    QVERIFY(!got.Good);
    // A local file that is sent under another name may be called whatever this computer allows; here it is missing.
    const bool namesTwo = operation.startsWith("PUT x") && operation.endsWith(" y");
    QCOMPARE(got.Code, namesTwo ? static_cast<int>(Ftp::InternalError) : static_cast<int>(Ftp::OperationError));
    QVERIFY_GOOD(talk.Do("CDUP"));
    QVERIFY_FOLLOWED(talk);
}

void NamesOnTheWireTest::NamesOfTheLogInAreCheckedToo_data()
{
    QTest::addColumn<int>("which");
    QTest::newRow("user") << 0;
    QTest::newRow("password") << 1;
    QTest::newRow("path") << 2;
}

void NamesOnTheWireTest::NamesOfTheLogInAreCheckedToo()
{
    QFETCH(int, which);
    Conversation talk("S: 220\nC: USER ann\nS: 331\nC: PASS secret\nS: 230\nC: CWD x");
    (which == 0 ? talk.Where.User : which == 1 ? talk.Where.Password : talk.Where.Path) = "a\r\nDELE b";
    const Ftp::Outcome got = talk.Do("DIR");
    QVERIFY(!got.Good);
    QVERIFY(got.Code >= 12000);
    QCOMPARE(talk.Server.StepsDone(), std::vector<std::size_t>({1, 3, 5})[static_cast<std::size_t>(which)]);
    QCOMPARE(talk.Server.OpenLinks(), 0U);
}

void NamesOnTheWireTest::NamesAreSentExactly_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char* name : {"-rf", " x", "x ", "a  b", "100%41", "\xff\xfe", "a\"b", "\"", "it's", "*?[a]", "~",
                             "\xe2\x80\xae x", "C:", "NUL.txt", "|cmd", "a|b", "x;y"})
        QTest::newRow(QByteArray(name).toPercentEncoding().constData()) << QByteArray(name);
}

void NamesOnTheWireTest::NamesAreSentExactly()
{
    QFETCH(QByteArray, name);
    const std::string bytes = name.toStdString();
    const QByteArray local = CanBeFileHere(name) ? name : "here";
    const bool asksForUtf8 = name.contains("\xe2");
    Conversation talk(LogIn + (asksForUtf8 ? "C: FEAT\nS: 500 what?\n" : "") + "C: CWD " + bytes +
                      "\nS: 250 there\nC: TYPE I\nS: 200\nC: EPSV\nS: 229 (|||4001|)\n" + "-- listen 4001\nC: RETR " +
                      bytes + "\n-- accept\nS: 150\nD: data\n-- end\nS: 226");
    QVERIFY_GOOD(talk.Do("CD " + bytes));
    QVERIFY_GOOD(talk.Do("GET \"" + bytes + "\" \"" + local.toStdString() + "\""));
    QCOMPARE(talk.LocalFile(BytesToText(local)), QByteArray("data"));
    QVERIFY_FOLLOWED(talk);
}

void NamesOnTheWireTest::NothingLandsOutsideTheLocalFolder_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"../evil", "/tmp/evil", "a/b", "..", ".", "./x", "x\" \"../evil", "/"})
        QTest::newRow(name) << QString(name);
}

void NamesOnTheWireTest::NothingLandsOutsideTheLocalFolder()
{
    QFETCH(QString, name);
    Conversation talk(LogIn + "C: *\nS: 200\nC: EPSV\nS: 229 (|||4001|)\n-- listen 4001\nC: *\n-- accept\nS: 150\n"
                              "D: evil\n-- end\nS: 226");
    const Ftp::Outcome got = talk.Do("GET \"" + name.toStdString() + "\" \"" + name.toStdString() + "\"");
    QVERIFY(!got.Good);
    QVERIFY(got.Code >= 12000);
    QVERIFY(!got.Text.empty());
    QVERIFY(talk.LocalFiles().isEmpty());
}

void NamesOnTheWireTest::NothingIsSentFromOutsideTheLocalFolder()
{
    for (const char* name : {"/etc/passwd", "../x", ".."}) {
        Conversation talk(LogIn + "C: PWD\nS: 257 \"/\"");
        const Ftp::Outcome got = talk.Do(std::string("PUT \"") + name + "\" \"" + name + "\"");
        QVERIFY(!got.Good);
        QVERIFY(got.Code >= 12000);
        QVERIFY_GOOD(talk.Do("PWD"));
        QVERIFY_FOLLOWED(talk);
    }
}

void NamesOnTheWireTest::ALocalPathOfItsOwnIsTaken()
{
    const QTemporaryDir elsewhere;
    const std::string path = elsewhere.filePath("text file").toStdString();
    Conversation talk(LogIn + "C: TYPE I\nS: 200\nC: EPSV\nS: 229 (|||4001|)\n-- listen 4001\nC: RETR read me\n"
                              "-- accept\nS: 150\nD: text\n-- end\nS: 226");
    QVERIFY_GOOD(talk.Do("GET \"read me\" " + path));
    QFile file(elsewhere.filePath("text file"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("text"));
    QVERIFY(talk.LocalFiles().isEmpty());
}

void NamesOnTheWireTest::TheLongestNamesFit()
{
    const std::string name(255, 'n');
    Conversation talk(LogIn + "C: TYPE I\nS: 200\nC: EPSV\nS: 229 (|||4001|)\n-- listen 4001\nC: RETR " + name +
                      "\n-- accept\nS: 150\nD: text\n-- end\nS: 226");
    QVERIFY_GOOD(talk.Do("GET " + name));
    QCOMPARE(talk.LocalFiles(), QStringList{QString::fromStdString(name)});
}

void NamesOnTheWireTest::ANameTooLongForTheDiskIsAnError()
{
    const std::string name(256, 'n');
    Conversation talk(LogIn + "C: TYPE I\nS: 200\nC: EPSV\nS: 229 (|||4001|)\n-- listen 4001\nC: RETR " + name +
                      "\n-- accept\nS: 150\nD: text\n-- end\nS: 226");
    const Ftp::Outcome got = talk.Do("GET " + name);
    QVERIFY(!got.Good);
    QVERIFY(got.Code >= 12000);
    QVERIFY(talk.LocalFiles().isEmpty());
    talk.Server.Play(LogIn + "C: CDUP\nS: 250");
    QVERIFY_GOOD(talk.Do("CDUP"));
}

void NamesOnTheWireTest::AFolderInTheWayIsAnError()
{
    const QTemporaryDir elsewhere;
    Conversation talk(LogIn + "C: TYPE I\nS: 200\nC: EPSV\nS: 229 (|||4001|)\n-- listen 4001\nC: RETR x\n"
                              "-- accept\nS: 150\nD: text\n-- end\nS: 226");
    const Ftp::Outcome got = talk.Do("GET x " + elsewhere.path().toStdString());
    QVERIFY(!got.Good);
    QVERIFY(got.Code >= 12000);
    QVERIFY(QDir(elsewhere.path()).isEmpty());
}

QTEST_GUILESS_MAIN(NamesOnTheWireTest)
#include "names_on_the_wire_test.moc"
