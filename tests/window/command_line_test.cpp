#include "support/window_fixture.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>

/// The command line: a further file by its full address, over the second channel.
class CommandLineTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void TheMenuUncoversAndCoversIt();
    void TheFileArrivesUnderTheNameBehindTheLastSlash();
    void BlanksAroundTheAddressAreLeftOut();
    void EnterInTheBoxIsAPressOfTheButton();
    void AnAddressThatEndsWithASlashBeepsAndDownloadsNothing_data();
    void AnAddressThatEndsWithASlashBeepsAndDownloadsNothing();
    void AnAddressWithoutASlashNamesNoFile();
    void ANameThatIsNoFilesIsRefused_data();
    void ANameThatIsNoFilesIsRefused();
    void TheFolderIsTheOneAtThePress();
    void ALongerOldFileKeepsItsTail();
    void AShorterOldFileIsGone();
    void AnEmptyDownloadLeavesTheOldFileAsItWas();
    void WhenTheDownloadFailsNothingIsWritten();
    void TheErrorLineShowsTheMainSessionsAnswer();
    void EveryStateHasItsTextAndItsLine_data();
    void EveryStateHasItsTextAndItsLine();
    void ReceivingIsReportedAtItsEnd();
    void TheBeepsOfTheStates();
    void ASecondPressBeepsAndDoesNothing();
    void TheMainSessionGoesOn();
    void AFileThatCannotBeWrittenIsTold();
    void AFolderThatIsGoneIsTold();
    void AComponentThatRefusesIsTold();
    void ThePointersComeBack();
    void TheWindowMayCloseInTheMidst();

private:
    void Open();
    void Download(const QString& address) const;
    QByteArray Content(const QString& name) const;
    void Put(const QString& name, const QByteArray& bytes) const;
    QStringList Names() const;

    QString Said() const { return Program->Control<QLabel>("sbFTP2").text(); }

    QStringList Asked() const { return Program->Inet2().Lines.filter("OpenURL"); }

    Qt::CursorShape Pointer(const char* control) const { return Program->Control<QWidget>(control).cursor().shape(); }

    std::unique_ptr<WindowFixture> Program;
};

void CommandLineTest::init()
{
    Program = std::make_unique<WindowFixture>();
}

void CommandLineTest::cleanup()
{
    Program.reset();
}

void CommandLineTest::Open()
{
    Program->Open();
    Program->Choose("mnuCommand");
}

void CommandLineTest::Download(const QString& address) const
{
    Program->Control<QComboBox>("txtCom").setEditText(address);
    Program->Click("Command14");
}

QByteArray CommandLineTest::Content(const QString& name) const
{
    QFile file(QDir(Program->LocalFolder()).filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(absent)");
}

void CommandLineTest::Put(const QString& name, const QByteArray& bytes) const
{
    QFile file(QDir(Program->LocalFolder()).filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

/// Everything in the local folder, hidden files included.
QStringList CommandLineTest::Names() const
{
    return QDir(Program->LocalFolder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

void CommandLineTest::TheMenuUncoversAndCoversIt()
{
    Program->Open();
    const QAction& entry = Program->Entry("mnuCommand");
    const int lower = Program->Window->height();
    QCOMPARE(Program->Values->Start.NormalFormHeight, lower * 15);
    QVERIFY(!entry.isChecked());
    Program->Choose("mnuCommand");
    QVERIFY(entry.isChecked());
    QTRY_COMPARE(Program->Window->height(), 8565 / 15);
    for (const char* control : {"LblCommandLine", "Label15", "cmdPaste2"})
        QVERIFY2(Program->Control<QWidget>(control).isVisible(), control);
    Program->Choose("mnuCommand");
    QVERIFY(!entry.isChecked());
    QTRY_COMPARE(Program->Window->height(), lower);
    for (const char* control : {"LblCommandLine", "Label15", "cmdPaste2"})
        QVERIFY2(Program->Control<QWidget>(control).isHidden(), control);
}

void CommandLineTest::TheFileArrivesUnderTheNameBehindTheLastSlash()
{
    Open();
    Program->Inet2().DownloadBytes = "the whole file";
    Download("ftp://ftp.example.org/pub/docs/read me.txt");
    QCOMPARE(Said(), QString("Connecting..."));
    QTRY_COMPARE(Said(), QString("Waiting..."));
    QCOMPARE(Asked(), QStringList{"OpenURL ftp://ftp.example.org/pub/docs/read me.txt"});
    QCOMPARE(Content("read me.txt"), QByteArray("the whole file"));
    QCOMPARE(Names(), QStringList{"read me.txt"});
    // The local list shows it at once.
    const auto* files = Program->Control<QAbstractItemView>("List1").model();
    QCOMPARE(files->index(0, 0).data().toString(), QString("read me.txt"));
}

void CommandLineTest::BlanksAroundTheAddressAreLeftOut()
{
    Open();
    Program->Inet2().DownloadBytes = "x";
    Download("  http://www.example.org/a.zip  ");
    QTRY_COMPARE(Said(), QString("Waiting..."));
    QCOMPARE(Asked(), QStringList{"OpenURL http://www.example.org/a.zip"});
    QCOMPARE(Names(), QStringList{"a.zip"});
}

void CommandLineTest::EnterInTheBoxIsAPressOfTheButton()
{
    Open();
    QComboBox& box = Program->Control<QComboBox>("txtCom");
    QCOMPARE(box.currentText(), QString("ftp://"));
    box.setEditText("ftp://a/b");
    QTest::keyClick(box.lineEdit(), Qt::Key_Return);
    QTRY_COMPARE(Said(), QString("Waiting..."));
    QCOMPARE(Asked(), QStringList{"OpenURL ftp://a/b"});
}

void CommandLineTest::AnAddressThatEndsWithASlashBeepsAndDownloadsNothing_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("a folder") << "ftp://ftp.example.org/pub/";
    QTest::newRow("the text to begin with") << "ftp://";
    QTest::newRow("nothing") << "";
    QTest::newRow("blanks") << "   ";
}

void CommandLineTest::AnAddressThatEndsWithASlashBeepsAndDownloadsNothing()
{
    QFETCH(const QString, address);
    Open();
    Download(address);
    QCOMPARE(Program->Beeps, 1);
    QCOMPARE(Asked(), QStringList());
    QCOMPARE(Said(), QString());
    // The hourglass stays, and does no harm: the next address is taken.
    QCOMPARE(Pointer("Command14"), Qt::WaitCursor);
    QCOMPARE(Pointer("txtCom"), Qt::WaitCursor);
    Download("ftp://a/b");
    QTRY_COMPARE(Said(), QString("Waiting..."));
    QCOMPARE(Pointer("Command14"), Qt::ArrowCursor);
}

void CommandLineTest::AnAddressWithoutASlashNamesNoFile()
{
    Open();
    Download("ftp.example.org");
    QCOMPARE(Said(), QString("The address names no file."));
    QCOMPARE(Asked(), QStringList());
    QCOMPARE(Names(), QStringList());
    QVERIFY(Program->Log().last().startsWith("The address names no file.        "));
}

void CommandLineTest::ANameThatIsNoFilesIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("the folder above") << "..";
    QTest::newRow("the folder itself") << ".";
    QTest::newRow("a control character") << "a\tb";
}

void CommandLineTest::ANameThatIsNoFilesIsRefused()
{
    QFETCH(const QString, name);
    Open();
    Download("ftp://a/" + name);
    QVERIFY2(Said().startsWith("A file cannot have the name "), qPrintable(Said()));
    QCOMPARE(Asked(), QStringList());
    QCOMPARE(Names(), QStringList());
}

void CommandLineTest::TheFolderIsTheOneAtThePress()
{
    Open();
    QVERIFY(QDir(Program->LocalFolder()).mkdir("below"));
    Program->Inet2().Hold();
    Program->Inet2().DownloadBytes = "x";
    Download("ftp://a/file");
    ChangeCurrentFolder(Program->LocalFolder() + "/below");
    Program->Inet2().Release();
    QTRY_COMPARE(Said(), QString("Waiting..."));
    QCOMPARE(Content("file"), QByteArray("x"));
    QCOMPARE(Content("below/file"), QByteArray("(absent)"));
    ChangeCurrentFolder(Program->LocalFolder());
}

void CommandLineTest::ALongerOldFileKeepsItsTail()
{
    Open();
    Put("file", "0123456789");
    Program->Inet2().DownloadBytes = "abcd";
    Download("ftp://a/file");
    QTRY_COMPARE(Said(), QString("Waiting..."));
    QCOMPARE(Content("file"), QByteArray("abcd456789"));
}

void CommandLineTest::AShorterOldFileIsGone()
{
    Open();
    Put("file", "0123");
    Program->Inet2().DownloadBytes = "abcdefgh";
    Download("ftp://a/file");
    QTRY_COMPARE(Said(), QString("Waiting..."));
    QCOMPARE(Content("file"), QByteArray("abcdefgh"));
}

void CommandLineTest::AnEmptyDownloadLeavesTheOldFileAsItWas()
{
    Open();
    Put("file", "0123");
    Download("ftp://a/file");
    QTRY_COMPARE(Said(), QString("Waiting..."));
    QCOMPARE(Content("file"), QByteArray("0123"));
}

void CommandLineTest::WhenTheDownloadFailsNothingIsWritten()
{
    Open();
    Put("file", "0123");
    Program->Inet2().DownloadBytes = "abcdefgh";
    Program->Inet2().FailNext(550, "No such file");
    Download("ftp://a/file");
    QTRY_COMPARE(Said(), QString("Error! 0: "));
    QCOMPARE(Content("file"), QByteArray("0123"));
    QCOMPARE(Names(), QStringList{"file"});
    // Why it failed is in the log.
    QVERIFY(Program->Log().last().startsWith(QDir::toNativeSeparators(Program->LocalFolder() + "/file") +
                                             " was not received: No such file      "));
    QCOMPARE(Pointer("Command14"), Qt::ArrowCursor);
}

void CommandLineTest::TheErrorLineShowsTheMainSessionsAnswer()
{
    Open();
    Program->Inet1().SetResponse(226, "Transfer complete");
    Program->Inet2().FailNext(550, "No such file");
    Download("ftp://a/file");
    QTRY_COMPARE(Said(), QString("Error! 226: Transfer complete"));
    QCOMPARE(Program->Beeps, 2);
    QVERIFY(Program->Log().filter("Error! 226: Transfer complete        ").size() == 1);
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
}

void CommandLineTest::EveryStateHasItsTextAndItsLine_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("text");
    const QStringList texts{"Waiting...",         "Resolving Host",   "Host Resolved", "Connecting...",
                            "Connected!",         "Requesting...",    "Request Sent",  "Receiving Response...",
                            "Response Received!", "Disconnecting...", "Disconnected"};
    for (int state = 0; state < texts.size(); ++state) QTest::newRow(qPrintable(texts[state])) << state << texts[state];
    QTest::newRow("File Received!") << 12 << "File Received!";
}

void CommandLineTest::EveryStateHasItsTextAndItsLine()
{
    QFETCH(const int, state);
    QFETCH(const QString, text);
    Open();
    const QString main = Program->Status();
    Program->Inet2().Report(state);
    QCOMPARE(Said(), text);
    QVERIFY2(Program->Log().last().startsWith(text + "        "), qPrintable(Program->Log().last()));
    QCOMPARE(Program->Status(), main);
}

void CommandLineTest::ReceivingIsReportedAtItsEnd()
{
    Open();
    Program->Inet2().DownloadBytes = "x";
    Download("ftp://a/file");
    QTRY_COMPARE(Said(), QString("Waiting..."));
    QStringList texts;
    for (const QString& line : Program->Log().mid(1)) texts += line.section("        ", 0, 0);
    QCOMPARE(texts, (QStringList{"Requesting...", "Request Sent", "Receiving Response...", "Response Received!",
                                 "File Received!"}));
}

void CommandLineTest::TheBeepsOfTheStates()
{
    Open();
    for (int state = 0; state <= 12; ++state) {
        Program->Beeps = 0;
        Program->Inet2().Report(state);
        QCOMPARE(Program->Beeps, state == 4 ? 1 : state == 11 ? 2 : 0);
    }
}

void CommandLineTest::ASecondPressBeepsAndDoesNothing()
{
    Open();
    Program->Inet2().Hold();
    Program->Inet2().DownloadBytes = "first";
    Download("ftp://a/first");
    Download("ftp://a/second");
    QCOMPARE(Program->Beeps, 1);
    QCOMPARE(Asked(), QStringList{"OpenURL ftp://a/first"});
    Program->Inet2().Release();
    QTRY_COMPARE(Said(), QString("Waiting..."));
    QCOMPARE(Names(), QStringList{"first"});
    Program->Inet2().DownloadBytes = "second";
    Download("ftp://a/second");
    QTRY_COMPARE(Content("second"), QByteArray("second"));
}

void CommandLineTest::TheMainSessionGoesOn()
{
    Open();
    Program->Inet2().Hold();
    Download("ftp://a/file");
    Program->Inet1().Replies["DIR"] = "one\r\ntwo\r\n";
    Program->Click("cmdConnect");
    const auto* lines = Program->Control<QAbstractItemView>("lstRemoteFiles").model();
    QTRY_VERIFY(lines->rowCount() >= 2);
    QCOMPARE(Asked().size(), 1);
    QVERIFY(Program->Inet2().StillExecuting());
}

void CommandLineTest::AFileThatCannotBeWrittenIsTold()
{
    Open();
    QVERIFY(QDir(Program->LocalFolder()).mkdir("file"));
    Program->Inet2().DownloadBytes = "x";
    Download("ftp://a/file");
    QTRY_COMPARE(Said(), QString("The file %1 cannot be written: something else has this name.")
                             .arg(QDir::toNativeSeparators(Program->LocalFolder() + "/file")));
    QCOMPARE(Names(), QStringList{"file"});
    QCOMPARE(Pointer("Command14"), Qt::ArrowCursor);
}

void CommandLineTest::AFolderThatIsGoneIsTold()
{
    Open();
    Program->Inet2().Hold();
    Program->Inet2().DownloadBytes = "x";
    QVERIFY(QDir(Program->LocalFolder()).mkdir("below"));
    ChangeCurrentFolder(Program->LocalFolder() + "/below");
    Download("ftp://a/file");
    ChangeCurrentFolder(Program->LocalFolder());
    QVERIFY(QDir(Program->LocalFolder()).rmdir("below"));
    Program->Inet2().Release();
    QTRY_VERIFY2(Said().contains("cannot be written: the folder has gone"), qPrintable(Said()));
    QCOMPARE(Names(), QStringList());
}

void CommandLineTest::AComponentThatRefusesIsTold()
{
    Open();
    Program->Inet2().Refuse("OpenURL", "The system is out of handles");
    Download("ftp://a/file");
    QCOMPARE(Said(), QString("The system is out of handles"));
    QCOMPARE(Pointer("Command14"), Qt::ArrowCursor);
    QCOMPARE(Names(), QStringList());
}

void CommandLineTest::ThePointersComeBack()
{
    Open();
    Program->Inet2().Hold();
    Download("ftp://a/file");
    for (const char* control : {"txtCom", "Command14"}) QCOMPARE(Pointer(control), Qt::WaitCursor);
    QCOMPARE(Program->Control<QComboBox>("txtCom").lineEdit()->cursor().shape(), Qt::WaitCursor);
    Program->Inet2().Release();
    QTRY_COMPARE(Said(), QString("Waiting..."));
    for (const char* control : {"txtCom", "Command14"}) QCOMPARE(Pointer(control), Qt::ArrowCursor);
    QCOMPARE(Program->Control<QComboBox>("txtCom").lineEdit()->cursor().shape(), Qt::IBeamCursor);
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
}

void CommandLineTest::TheWindowMayCloseInTheMidst()
{
    Open();
    Put("file", "0123");
    Program->Inet2().Hold();
    Program->Inet2().DownloadBytes = "abcd";
    Download("ftp://a/file");
    Program->Close();
    QCOMPARE(Names(), QStringList{"file"});
    QCOMPARE(Content("file"), QByteArray("0123"));
}

QTEST_MAIN(CommandLineTest)
#include "command_line_test.moc"
