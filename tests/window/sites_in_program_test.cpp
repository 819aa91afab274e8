#include "sites/site_record.h"
#include "support/window_fixture.h"

#include <QAbstractButton>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>

/// The site book and the clipboard watch as parts of the whole program.
class SitesInProgramTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void TheFirstStartLeavesAnEmptyBook();
    void AConnectAddsItsAddress();
    void AConnectWithSavingOffAddsNothing();
    void AConnectWithoutAnAddressBeepsAndAddsNothing();
    void TheBookIsWrittenBeforeTheSessionIsThere();
    void EmptyValuesAreStoredAsMarksAndComeBackEmpty();
    void TheSameAddressIsAddedOnce();
    void ThePlusButtonLetsAConnectReplace();
    void ARestartListsTheBook();
    void ARestartWithSavingOffListsTheBookToo();
    void TheRestoredAddressKeepsItsUserAndPassword();
    void PickingFillsTheBoxes();
    void PickingFillsNothingWithSavingOff();
    void TypingClearsTheBoxes();
    void TypingClearsNothingWithSavingOff();
    void ErasingTheHighlightedEntryAsksAndSelectsTheSecond();
    void ErasingTheBookAsksUnderTheStatus();
    void TheSavingEntryStoresAndForgetsTheAddress();

    void TheClipboardWatchPastesAnAddress();
    void APastedAddressKeepsTheBoxes();
    void TheWatchIsOffAtFirstAndIsNotStored();
    void TheCommandLineTakesAnAddressToo();

private:
    QComboBox& Url() const { return Program->Control<QComboBox>("txtURL"); }

    QLineEdit& User() const { return Program->Control<QLineEdit>("txtUserName"); }

    QLineEdit& Password() const { return Program->Control<QLineEdit>("txtPassword"); }

    QAbstractButton& Button(const char* name) const { return Program->Control<QAbstractButton>(name); }

    void Connect(const QString& url, const QString& user = {}, const QString& password = {}) const
    {
        Url().setEditText(url);
        User().setText(user);
        Password().setText(password);
        Program->Click("cmdConnect");
        QTRY_VERIFY(!Program->Inet1().StillExecuting());
    }

    QByteArray BookBytes() const
    {
        QFile file(Program->HomeFolder() + "/Tolvane.dta");
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }

    QStringList Listed() const
    {
        QStringList entries;
        for (int entry = 0; entry < Url().count(); ++entry) entries += Url().itemText(entry);
        return entries;
    }

    /// Moves to an entry with the arrow keys, as from an empty box.
    void Pick(int entry) const
    {
        Url().setFocus();
        for (int press = Url().currentIndex(); press < entry; ++press) QTest::keyClick(&Url(), Qt::Key_Down);
        QCOMPARE(Url().currentIndex(), entry);
    }

    QStringList Boxes() const { return {Url().currentText(), User().text(), Password().text()}; }

    std::unique_ptr<WindowFixture> Program;
};

void SitesInProgramTest::init()
{
    QGuiApplication::clipboard()->clear();
    Program = std::make_unique<WindowFixture>();
    Program->Open();
}

void SitesInProgramTest::cleanup()
{
    Program.reset();
}

void SitesInProgramTest::TheFirstStartLeavesAnEmptyBook()
{
    QCOMPARE(BookBytes(), QByteArray());
    QCOMPARE(Listed(), QStringList());
}

void SitesInProgramTest::AConnectAddsItsAddress()
{
    Connect("ftp://files.example", "ann", "secret");
    QCOMPARE(BookBytes(), EncodeSite(1, {"ftp://files.example", "ann", "secret"}));
    QCOMPARE(Listed(), QStringList("ftp://files.example"));
    QCOMPARE(Boxes(), (QStringList{"ftp://files.example", "ann", "secret"}));
}

void SitesInProgramTest::AConnectWithSavingOffAddsNothing()
{
    Program->Choose("mnuSavFTPAddress");
    Connect("ftp://files.example", "ann", "secret");
    QCOMPARE(BookBytes(), QByteArray());
    QCOMPARE(Listed(), QStringList());
}

void SitesInProgramTest::AConnectWithoutAnAddressBeepsAndAddsNothing()
{
    Connect("");
    QCOMPARE(Program->Beeps, 1);
    QCOMPARE(BookBytes(), QByteArray());
}

void SitesInProgramTest::TheBookIsWrittenBeforeTheSessionIsThere()
{
    Program->Inet1().Hold();
    Url().setEditText("ftp://files.example");
    Program->Click("cmdConnect");
    QVERIFY(Program->Inet1().StillExecuting());
    QCOMPARE(BookBytes(), EncodeSite(1, {"ftp://files.example", "$", "$ "}));
}

void SitesInProgramTest::EmptyValuesAreStoredAsMarksAndComeBackEmpty()
{
    Connect("ftp://files.example");
    QCOMPARE(Program->Setting("SaveUser"), QString("$"));
    QCOMPARE(Program->Setting("SavePass"), QString("$ "));
    QVERIFY(Program->Inet1().Lines.contains("UserName = "));
    Program->Restart();
    QCOMPARE(Boxes(), (QStringList{"ftp://files.example", "", ""}));
    Pick(0);
    QCOMPARE(Boxes(), (QStringList{"ftp://files.example", "", ""}));
}

void SitesInProgramTest::TheSameAddressIsAddedOnce()
{
    Connect("ftp://files.example", "ann", "secret");
    Connect("ftp://files.example ", "bob", "other");
    QCOMPARE(BookBytes(), EncodeSite(1, {"ftp://files.example", "ann", "secret"}));
    QCOMPARE(Listed(), QStringList("ftp://files.example"));
}

void SitesInProgramTest::ThePlusButtonLetsAConnectReplace()
{
    Connect("ftp://a", "ann", "1");
    Connect("ftp://b", "bob", "2");
    Program->Click("Command17");
    QCOMPARE(Button("Command17").text(), QString("+"));
    Connect("ftp://a", "cid", "3");
    QCOMPARE(Button("Command17").text(), QString());
    QCOMPARE(BookBytes(), EncodeSite(1, {"ftp://a", "cid", "3"}) + EncodeSite(2, {"ftp://b", "bob", "2"}));
}

void SitesInProgramTest::ARestartListsTheBook()
{
    Connect("ftp://a", "ann", "1");
    Connect("ftp://b", "bob", "2");
    Program->Restart();
    QCOMPARE(Listed(), (QStringList{"ftp://a", "ftp://b"}));
    QCOMPARE(Url().currentIndex(), -1);
    QCOMPARE(Boxes(), (QStringList{"ftp://b", "bob", "2"}));
}

void SitesInProgramTest::ARestartWithSavingOffListsTheBookToo()
{
    Connect("ftp://a", "ann", "1");
    Program->Choose("mnuSavFTPAddress");
    Program->Restart();
    QCOMPARE(Listed(), QStringList("ftp://a"));
    QCOMPARE(Boxes(), (QStringList{"", "", ""}));
}

void SitesInProgramTest::TheRestoredAddressKeepsItsUserAndPassword()
{
    Connect("ftp://a", "ann", "1");
    Program->Restart();
    QCOMPARE(Boxes(), (QStringList{"ftp://a", "ann", "1"}));
    QVERIFY(!Program->Values->Address.AddressRestored);
}

void SitesInProgramTest::PickingFillsTheBoxes()
{
    Connect("ftp://a", "ann", "1");
    Connect("ftp://b", "bob", "2");
    Program->Restart();
    Pick(0);
    QCOMPARE(Boxes(), (QStringList{"ftp://a", "ann", "1"}));
    Pick(1);
    QCOMPARE(Boxes(), (QStringList{"ftp://b", "bob", "2"}));
}

void SitesInProgramTest::PickingFillsNothingWithSavingOff()
{
    Connect("ftp://a", "ann", "1");
    Program->Choose("mnuSavFTPAddress");
    Program->Restart();
    Pick(0);
    QCOMPARE(Boxes(), (QStringList{"ftp://a", "", ""}));
}

void SitesInProgramTest::TypingClearsTheBoxes()
{
    Connect("ftp://a", "ann", "1");
    Url().setFocus();
    QTest::keyClicks(Url().lineEdit(), "b");
    QCOMPARE(Boxes(), (QStringList{"ftp://ab", "", ""}));
}

void SitesInProgramTest::TypingClearsNothingWithSavingOff()
{
    Connect("ftp://a", "ann", "1");
    Program->Choose("mnuSavFTPAddress");
    Url().setFocus();
    QTest::keyClicks(Url().lineEdit(), "b");
    QCOMPARE(Boxes(), (QStringList{"ftp://ab", "ann", "1"}));
}

void SitesInProgramTest::ErasingTheHighlightedEntryAsksAndSelectsTheSecond()
{
    Connect("ftp://a", "ann", "1");
    Connect("ftp://b", "bob", "2");
    Connect("ftp://c", "cid", "3");
    Program->Restart();
    Pick(0);
    Program->Questions.Answers = {Answer::Yes};
    Program->Click("Command18");
    QCOMPARE(Program->Questions.Texts(), QStringList("Erase highlighted URL?"));
    QCOMPARE(Program->Questions.Questions[0].Title, QString("Erase URL?"));
    QCOMPARE(BookBytes(), EncodeSite(1, {"ftp://b", "bob", "2"}) + EncodeSite(2, {"ftp://c", "cid", "3"}));
    QCOMPARE(Listed(), (QStringList{"ftp://b", "ftp://c"}));
    QCOMPARE(Url().currentIndex(), 1);
    QCOMPARE(Boxes(), (QStringList{"ftp://c", "cid", "3"}));
}

void SitesInProgramTest::ErasingTheBookAsksUnderTheStatus()
{
    Connect("ftp://a", "ann", "1");
    const QString status = Program->Status();
    Program->Questions.Answers = {Answer::Yes};
    Program->Click("Command12");
    QCOMPARE(Program->Questions.Texts(), QStringList("Erase URL & Password list?"));
    QCOMPARE(Program->Questions.Questions[0].Title, status);
    QCOMPARE(Program->Status(), QString("List Erased!"));
    QVERIFY(!QFile::exists(Program->HomeFolder() + "/Tolvane.dta"));
    QCOMPARE(Listed(), QStringList());
    QVERIFY(Program->Log().last().startsWith("Erased URL's and Passwords at: "));
}

void SitesInProgramTest::TheSavingEntryStoresAndForgetsTheAddress()
{
    Connect("ftp://a");
    Program->Choose("mnuSavFTPAddress");
    QVERIFY(!Program->Entry("mnuSavFTPAddress").isChecked());
    QCOMPARE(Program->Setting("FTP Address"), QString("False"));
    QCOMPARE(Program->Setting("SaveURL"), QString());
    Program->Choose("mnuSavFTPAddress");
    QVERIFY(Program->Entry("mnuSavFTPAddress").isChecked());
    QCOMPARE(Program->Setting("FTP Address"), QString("True"));
    QCOMPARE(Program->Setting("SaveURL"), QString("ftp://a"));
}

void SitesInProgramTest::TheClipboardWatchPastesAnAddress()
{
    Program->Choose("mnuWatchClip");
    QVERIFY(Program->Entry("mnuWatchClip").isChecked());
    QGuiApplication::clipboard()->setText("ftp://clipped.example/a b\r\n");
    QTRY_VERIFY(Button("cmdPaste").isEnabled());
    QVERIFY(Button("cmdPaste2").isEnabled());
    QCOMPARE(Program->Beeps, 2);
    Program->Click("cmdPaste");
    QCOMPARE(Url().currentText(), QString("ftp://clipped.example/a b"));
    QVERIFY(!Button("cmdPaste").isEnabled());
    QVERIFY(Button("cmdPaste2").isEnabled());
}

void SitesInProgramTest::APastedAddressKeepsTheBoxes()
{
    Connect("ftp://a", "ann", "1");
    Program->Choose("mnuWatchClip");
    QGuiApplication::clipboard()->setText("http://clipped.example");
    QTRY_VERIFY(Button("cmdPaste").isEnabled());
    Program->Click("cmdPaste");
    QCOMPARE(Boxes(), (QStringList{"http://clipped.example", "ann", "1"}));
}

void SitesInProgramTest::TheWatchIsOffAtFirstAndIsNotStored()
{
    QVERIFY(!Program->Entry("mnuWatchClip").isChecked());
    Program->Choose("mnuWatchClip");
    QVERIFY(Program->Entry("mnuWatchClip").isChecked());
    Program->Choose("mnuWatchClip");
    QVERIFY(!Program->Entry("mnuWatchClip").isChecked());
    Program->Choose("mnuWatchClip");
    Program->Restart();
    QVERIFY(!Program->Entry("mnuWatchClip").isChecked());
}

void SitesInProgramTest::TheCommandLineTakesAnAddressToo()
{
    Program->Choose("mnuWatchClip");
    QGuiApplication::clipboard()->setText("ftp://clipped.example");
    QTRY_VERIFY(Button("cmdPaste2").isEnabled());
    Button("cmdPaste2").click();
    QCOMPARE(Program->Control<QComboBox>("txtCom").currentText(), QString("ftp://clipped.example"));
    QVERIFY(!Button("cmdPaste2").isEnabled());
}

QTEST_MAIN(SitesInProgramTest)
#include "sites_in_program_test.moc"
