#include "platform/short_path.h"
#include "support/window_fixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QLineEdit>

class ShutDownTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void ClosingStoresTheLastConnectionNotTheFields();
    void ClosingStoresNoConnectionWithSavingOff();
    void ClosingStoresTheFolder_data();
    void ClosingStoresTheFolder();
    void ARestartBringsConnectionAndFolderBack();
    void TheSettingsAreOnTheDiskWhenTheWindowIsClosed();
    void EveryOtherWindowIsClosed();
    void NothingIsAsked();
    void TheExitEntryClosesTheWindow();
    void TheProgramEndsWithTheWindow();
    void ASecondCloseChangesNothing();

private:
    void Connect(const QString& url, const QString& user, const QString& password);

    std::unique_ptr<WindowFixture> Program;
};

void ShutDownTest::init()
{
    Program = std::make_unique<WindowFixture>();
}

void ShutDownTest::cleanup()
{
    Program.reset();
}

void ShutDownTest::Connect(const QString& url, const QString& user, const QString& password)
{
    Program->Control<QComboBox>("txtURL").setEditText(url);
    Program->Control<QLineEdit>("txtUserName").setText(user);
    Program->Control<QLineEdit>("txtPassword").setText(password);
    Program->Click("cmdConnect");
    QTRY_VERIFY(!Program->Inet1().StillExecuting());
}

void ShutDownTest::ClosingStoresTheLastConnectionNotTheFields()
{
    Program->Open();
    Connect("ftp://files.example", "ann", "secret");
    Program->Control<QComboBox>("txtURL").setEditText("ftp://typed.example");
    Program->Control<QLineEdit>("txtUserName").setText("typed");
    Program->Store("SaveUser", "overwritten");
    Program->Close();
    QCOMPARE(Program->Setting("SaveURL"), QString("ftp://files.example"));
    QCOMPARE(Program->Setting("SaveUser"), QString("ann"));
    QCOMPARE(Program->Setting("SavePass"), QString("secret"));
    QCOMPARE(Program->Setting("SaveProxy"), QString("Enter proxy address here"));
}

void ShutDownTest::ClosingStoresNoConnectionWithSavingOff()
{
    Program->Open();
    Program->Choose("mnuSavFTPAddress");
    Connect("ftp://files.example", "ann", "secret");
    Program->Close();
    QCOMPARE(Program->Setting("SaveURL"), QString(""));
    QCOMPARE(Program->Setting("SaveUser"), QString("(absent)"));
    QCOMPARE(Program->Setting("SavePass"), QString("(absent)"));
    QCOMPARE(Program->Setting("SaveProxy"), QString("(absent)"));
}

void ShutDownTest::ClosingStoresTheFolder_data()
{
    QTest::addColumn<QString>("saving");
    QTest::newRow("with the option on") << "True";
    QTest::newRow("with the option off") << "False";
}

void ShutDownTest::ClosingStoresTheFolder()
{
    QFETCH(QString, saving);
    Program->Store("DriveSav", saving);
    Program->Open();
    Program->Close();
    QCOMPARE(Program->Setting("SaveDrive"), ShortPath(QDir::toNativeSeparators(Program->LocalFolder())));
    QCOMPARE(Program->Values->Start.ExitFolder, ShortPath(QDir::toNativeSeparators(Program->LocalFolder())));
}

void ShutDownTest::ARestartBringsConnectionAndFolderBack()
{
    const QTemporaryDir other;
    Program->Open();
    Connect("ftp://files.example", "ann", "secret");
    ChangeCurrentFolder(other.path());
    Program->Close();
    ChangeCurrentFolder("/");
    Program->Open();
    QCOMPARE(Program->Control<QComboBox>("txtURL").currentText(), QString("ftp://files.example"));
    QCOMPARE(Program->Control<QLineEdit>("txtUserName").text(), QString("ann"));
    QCOMPARE(Program->Control<QLineEdit>("txtPassword").text(), QString("secret"));
    QCOMPARE(CurrentFolder(), ShortPath(QDir::toNativeSeparators(other.path())));
    Program->Close();
    ChangeCurrentFolder("/");
}

void ShutDownTest::TheSettingsAreOnTheDiskWhenTheWindowIsClosed()
{
    Program->Open();
    Connect("ftp://files.example", "ann", "secret");
    Program->Window->close();
    QCOMPARE(Program->Setting("SaveURL"), QString("ftp://files.example"));
    QCOMPARE(Program->Setting("SaveDrive"), ShortPath(QDir::toNativeSeparators(Program->LocalFolder())));
}

void ShutDownTest::EveryOtherWindowIsClosed()
{
    Program->Open();
    QDialog one;
    QDialog another(Program->Window.get());
    one.show();
    another.show();
    Program->Window->close();
    QVERIFY(!one.isVisible());
    QVERIFY(!another.isVisible());
    QVERIFY(!Program->Window->isVisible());
}

void ShutDownTest::NothingIsAsked()
{
    Program->Open();
    Program->Inet1().Hold();
    Program->Control<QComboBox>("txtURL").setEditText("ftp://files.example");
    Program->Click("cmdConnect");
    QVERIFY(Program->Inet1().StillExecuting());
    QVERIFY(Program->Window->close());
    QVERIFY(Program->Questions.Questions.empty());
}

void ShutDownTest::TheExitEntryClosesTheWindow()
{
    Program->Open();
    Program->Choose("mnuExit");
    QVERIFY(!Program->Window->isVisible());
    QCOMPARE(Program->Setting("SaveDrive"), ShortPath(QDir::toNativeSeparators(Program->LocalFolder())));
}

void ShutDownTest::TheProgramEndsWithTheWindow()
{
    Program->Open();
    QCOMPARE(Program->Quits, 0);
    Program->Window->close();
    QCOMPARE(Program->Quits, 1);
    QVERIFY(Program->Questions.Ended);
}

void ShutDownTest::ASecondCloseChangesNothing()
{
    Program->Open();
    Program->Window->close();
    ChangeCurrentFolder("/");
    Program->Window->close();
    QCOMPARE(Program->Setting("SaveDrive"), ShortPath(QDir::toNativeSeparators(Program->LocalFolder())));
    QCOMPARE(Program->Quits, 1);
}

QTEST_MAIN(ShutDownTest)
#include "shut_down_test.moc"
