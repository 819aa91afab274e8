#include "shell/activity_log.h"
#include "shell/busy_pointer.h"
#include "shell/connection_values.h"
#include "shell/options.h"
#include "shell/settings_store.h"
#include "shell/status_line.h"
#include "sites/site_book.h"
#include "support/scripted_asker.h"

#include <QAbstractItemView>
#include <QFile>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QVBoxLayout>
#include <memory>

namespace {

const QDateTime Noon(QDate(2024, 5, 6), QTime(12, 0));

/// A window with the book's controls, and everything that the book works with.
struct Desk {
    explicit Desk(const QString& folder)
        : Settings(folder + "/settings.ini"),
          Log(
              {List2, Command22, Command23, Command25, List1}, folder, Pointer, [] {}, [] { return Noon; }),
          Book({txtURL, txtUserName, txtPassword, Command17, mnuSavFTPAddress},
               {Address, Chosen, Values, Settings, Questions, Status, Log, Errors,
                [](int number) { return QString("string %1").arg(number); }, [this] { ++Beeps; }},
               folder)
    {
        auto* layout = new QVBoxLayout(&Window);
        for (QWidget* widget : std::initializer_list<QWidget*>{&txtURL, &txtUserName, &txtPassword, &Command17})
            layout->addWidget(widget);
        mnuSavFTPAddress.setCheckable(true);
        mnuSavFTPAddress.setChecked(true);
        Chosen.SaveAllInformation = true;
        Window.show();
        Window.activateWindow();
    }

    void Connect(const QString& url, const QString& user, const QString& password)
    {
        Values.SavedUrl = url;
        Values.SavedUser = user;
        Values.SavedPassword = password;
        Book.AddCurrentSite();
    }

    QStringList List() const
    {
        QStringList entries;
        for (int entry = 0; entry < txtURL.count(); ++entry) entries += txtURL.itemText(entry);
        return entries;
    }

    void OpenList()
    {
        QTest::mouseClick(&txtURL, Qt::LeftButton, {}, QPoint(txtURL.width() - 5, txtURL.height() / 2));
        QTRY_VERIFY(txtURL.view()->isVisible());
    }

    void PickWithMouse(int entry)
    {
        OpenList();
        QAbstractItemView& view = *txtURL.view();
        const QPoint at = view.visualRect(view.model()->index(entry, 0)).center();
        QTest::mouseMove(view.viewport(), at);
        // The list takes no click as long as it may still belong to the one that opened it.
        QTRY_VERIFY((QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, at), !view.isVisible()));
    }

    void Type(const QString& text)
    {
        txtURL.setFocus();
        QTest::keyClicks(txtURL.lineEdit(), text);
    }

    QStringList Boxes() const { return {txtURL.currentText(), txtUserName.text(), txtPassword.text()}; }

    QWidget Window;
    QComboBox txtURL{&Window};
    QLineEdit txtUserName{&Window};
    QLineEdit txtPassword{&Window};
    QPushButton Command17{&Window};
    QListView List2{&Window};
    QWidget List1{&Window};
    QPushButton Command22{&Window};
    QPushButton Command23{&Window};
    QPushButton Command25{&Window};
    QLabel sbFTP{"Waiting ...", &Window};
    QAction mnuSavFTPAddress{&Window};

    AddressState Address;
    Options Chosen;
    ConnectionValues Values;
    SettingsStore Settings;
    ScriptedAsker Questions;
    StatusLine Status{sbFTP};
    BusyPointer Pointer;
    ActivityLog Log;
    ErrorRecord Errors;
    int Beeps = 0;
    SiteBook Book;
};

const Site Ann{"ftp://a", "ann", "1"};
const Site Bob{"ftp://b", "bob", "2"};
const Site Cid{"ftp://c", "cid", "3"};

}  // namespace

class SiteBookTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void AMissingFileYieldsAnEmptyBookAndIsCreated();
    void LoadingFillsTheListOnlyWhenAsked();
    void LoadingTwiceFillsTheListTwice();
    void LoadingLeavesTheTextAndTheSelectionAlone();
    void AFileThatCannotBeReadLeavesEverythingAsItWas();
    void ABookWithOneRecordTooManyLoadsNothingAndTakesNothing();
    void AFullBookTakesNoMore();

    void PickingWithTheMouseFillsTheBoxes();
    void PickingWithTheKeysFillsTheBoxes();
    void PickingTheSameEntryAgainFillsTheBoxesAgain();
    void DollarsStandForEmptyValues();
    void WithoutSavingAllInformationTheBoxesAreLeftAlone();
    void TypingLeavesNoSelectionAndEmptiesTheBoxes();
    void TypingAfterAPickDeselectsButKeepsTextAndCursor();
    void TypingAnAddressOfTheBookPicksNothing();
    void DroppingTheListDownWithoutASelectionEmptiesTheBoxes();
    void AnEntryBehindTheBookLeavesTheBoxesAlone();
    void BeforeTheFirstLoadNothingIsFilledIn();
    void AnAnnouncedChangeIsIgnoredOnce();

    void AnEmptyAddressBeepsAndWritesNothing();
    void ANewSiteIsAppendedToFileListAndArrays();
    void TheSameAddressTwiceLeavesOneRecord();
    void AddressesDifferByCaseButNotByBlanksAround();
    void ReplacingRewritesTheRecordAndListsTheAddressTwice();
    void ReplacingWithoutAMatchAppends();
    void EmptyValuesAreStoredAsMarksAndMarkTheConnectionValues();
    void AnEmptyUserAndPasswordArePickedAsEmptyBoxes();
    void AnAddressOf300CharactersIsCutTo270();
    void AnAddThatCannotBeWrittenIsQuiet();
    void TheReplaceButtonShowsAPlusWhileItIsSet();

    void ErasingOneAsksInTheUsersLanguage();
    void ErasingTheFirstOfThreeSelectsTheSecondOfTheRest();
    void ErasingTheLastOneEmptiesTheBox();
    void ErasingOneOfTwoSelectsNothing();
    void ErasingWithoutASelectionErasesNothing();
    void AnswerNoErasesNothing();

    void ErasingTheBookAsksWithTheStatusAsTitle();
    void ErasingTheBookRemovesFileAndList();
    void ErasingABookThatIsNotThereIsQuiet();
    void AnswerNoKeepsTheBook();

    void SavingAllInformationIsTurnedOff();
    void SavingAllInformationIsTurnedOn();

private:
    QString Name() const { return Folder->filePath("Tolvane.dta"); }

    QByteArray Bytes() const
    {
        QFile file(Name());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }

    void Write(const QByteArray& bytes) const
    {
        QFile file(Name());
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    void WriteThree() const { Write(EncodeSite(1, Ann) + EncodeSite(2, Bob) + EncodeSite(3, Cid)); }

    std::unique_ptr<QTemporaryDir> Folder;
    std::unique_ptr<Desk> My;
};

void SiteBookTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    My = std::make_unique<Desk>(Folder->path());
}

void SiteBookTest::cleanup()
{
    My.reset();
}

void SiteBookTest::AMissingFileYieldsAnEmptyBookAndIsCreated()
{
    My->Book.GetURLs(true);
    QCOMPARE(My->Book.Arrays().RecordCount, 0);
    QCOMPARE(My->Book.Arrays().LoadedCount, 0);
    QCOMPARE(My->txtURL.count(), 0);
    QCOMPARE(Bytes(), QByteArray());
}

void SiteBookTest::LoadingFillsTheListOnlyWhenAsked()
{
    WriteThree();
    My->Book.GetURLs(false);
    QCOMPARE(My->Book.Arrays().Urls, (QStringList{"", "ftp://a", "ftp://b", "ftp://c"}));
    QCOMPARE(My->List(), QStringList());
    My->Book.GetURLs(true);
    QCOMPARE(My->List(), (QStringList{"ftp://a", "ftp://b", "ftp://c"}));
}

void SiteBookTest::LoadingTwiceFillsTheListTwice()
{
    Write(EncodeSite(1, Ann));
    My->Book.GetURLs(true);
    My->Book.GetURLs(true);
    QCOMPARE(My->List(), (QStringList{"ftp://a", "ftp://a"}));
}

void SiteBookTest::LoadingLeavesTheTextAndTheSelectionAlone()
{
    WriteThree();
    My->Type("ftp://typed");
    My->txtUserName.setText("me");
    My->Book.GetURLs(true);
    QCOMPARE(My->Boxes(), (QStringList{"ftp://typed", "me", ""}));
    QCOMPARE(My->txtURL.currentIndex(), -1);

    My->PickWithMouse(1);
    My->Book.GetURLs(true);
    QCOMPARE(My->txtURL.currentIndex(), 1);
    QCOMPARE(My->txtURL.currentText(), QString("ftp://b"));
}

void SiteBookTest::AFileThatCannotBeReadLeavesEverythingAsItWas()
{
    WriteThree();
    My->Book.GetURLs(true);
    QVERIFY(QFile::remove(Name()));
    QVERIFY(QDir().mkdir(Name()));
    My->Book.GetURLs(true);
    QCOMPARE(My->Book.Arrays().LoadedCount, 3);
    QCOMPARE(My->List().size(), 3);
    QVERIFY(My->Questions.Questions.empty());
    QCOMPARE(My->sbFTP.text(), QString("Waiting ..."));
}

void SiteBookTest::ABookWithOneRecordTooManyLoadsNothingAndTakesNothing()
{
    const QByteArray over = EncodeSite(1, Ann).repeated(32768);
    Write(over);
    My->Book.GetURLs(true);
    QCOMPARE(My->Book.Arrays().RecordCount, 0);
    QCOMPARE(My->txtURL.count(), 0);
    My->Connect("ftp://new", "u", "p");
    QVERIFY(Bytes() == over);
}

void SiteBookTest::AFullBookTakesNoMore()
{
    const QByteArray full = EncodeSite(1, Ann).repeated(32767);
    Write(full);
    My->Book.GetURLs(true);
    QCOMPARE(My->Book.Arrays().LoadedCount, 32767);
    QCOMPARE(My->txtURL.count(), 32767);
    My->Connect("ftp://new", "u", "p");
    QVERIFY(Bytes() == full);
}

void SiteBookTest::PickingWithTheMouseFillsTheBoxes()
{
    WriteThree();
    My->Book.GetURLs(true);
    My->PickWithMouse(1);
    QCOMPARE(My->Boxes(), (QStringList{"ftp://b", "bob", "2"}));
    My->PickWithMouse(2);
    QCOMPARE(My->Boxes(), (QStringList{"ftp://c", "cid", "3"}));
}

void SiteBookTest::PickingWithTheKeysFillsTheBoxes()
{
    WriteThree();
    My->Book.GetURLs(true);
    My->txtURL.setFocus();
    QTest::keyClick(&My->txtURL, Qt::Key_Down);
    QCOMPARE(My->Boxes(), (QStringList{"ftp://a", "ann", "1"}));
    QTest::keyClick(&My->txtURL, Qt::Key_Down);
    QCOMPARE(My->Boxes(), (QStringList{"ftp://b", "bob", "2"}));
    QTest::keyClick(&My->txtURL, Qt::Key_Up);
    QCOMPARE(My->Boxes(), (QStringList{"ftp://a", "ann", "1"}));
}

void SiteBookTest::PickingTheSameEntryAgainFillsTheBoxesAgain()
{
    WriteThree();
    My->Book.GetURLs(true);
    My->PickWithMouse(0);
    My->txtUserName.setText("else");
    My->txtPassword.clear();
    My->PickWithMouse(0);
    QCOMPARE(My->Boxes(), (QStringList{"ftp://a", "ann", "1"}));

    QTest::keyClick(My->txtURL.lineEdit(), Qt::Key_Backspace);
    QCOMPARE(My->Boxes(), (QStringList{"ftp://", "", ""}));
    My->PickWithMouse(0);
    QCOMPARE(My->Boxes(), (QStringList{"ftp://a", "ann", "1"}));
}

void SiteBookTest::DollarsStandForEmptyValues()
{
    Write(EncodeSite(1, {"ftp://a", "$", "$ "}) + EncodeSite(2, {"ftp://b", "$x", "  $"}));
    My->Book.GetURLs(true);
    QCOMPARE(My->Book.Arrays().Passwords, (QStringList{"", "$", "$"}));
    My->txtUserName.setText("old");
    My->txtPassword.setText("old");
    My->PickWithMouse(0);
    QCOMPARE(My->Boxes(), (QStringList{"ftp://a", "", ""}));
    My->PickWithMouse(1);
    QCOMPARE(My->Boxes(), (QStringList{"ftp://b", "$x", ""}));
}

void SiteBookTest::WithoutSavingAllInformationTheBoxesAreLeftAlone()
{
    WriteThree();
    My->Book.GetURLs(true);
    My->Chosen.SaveAllInformation = false;
    My->txtUserName.setText("me");
    My->PickWithMouse(1);
    QCOMPARE(My->Boxes(), (QStringList{"ftp://b", "me", ""}));
    My->Type("x");
    QCOMPARE(My->txtUserName.text(), QString("me"));
}

void SiteBookTest::TypingLeavesNoSelectionAndEmptiesTheBoxes()
{
    WriteThree();
    My->Book.GetURLs(true);
    My->txtUserName.setText("me");
    My->txtPassword.setText("secret");
    My->Type("f");
    QCOMPARE(My->Boxes(), (QStringList{"f", "", ""}));
    QCOMPARE(My->txtURL.currentIndex(), -1);
}

void SiteBookTest::TypingAfterAPickDeselectsButKeepsTextAndCursor()
{
    WriteThree();
    My->Book.GetURLs(true);
    My->PickWithMouse(1);
    QLineEdit& edit = *My->txtURL.lineEdit();
    My->txtURL.setFocus();
    edit.setCursorPosition(6);
    QTest::keyClicks(&edit, "xy");
    QCOMPARE(My->Boxes(), (QStringList{"ftp://xyb", "", ""}));
    QCOMPARE(edit.cursorPosition(), 8);
    QCOMPARE(My->txtURL.currentIndex(), -1);
}

void SiteBookTest::TypingAnAddressOfTheBookPicksNothing()
{
    WriteThree();
    My->Book.GetURLs(true);
    My->Type("ftp://b");
    My->txtUserName.setText("me");
    QTest::keyClick(My->txtURL.lineEdit(), Qt::Key_Return);
    My->txtPassword.setFocus();
    QCOMPARE(My->Boxes(), (QStringList{"ftp://b", "me", ""}));
    QCOMPARE(My->txtURL.currentIndex(), -1);
    QCOMPARE(My->txtURL.count(), 3);

    My->txtURL.lineEdit()->clear();
    My->Type("ftp://");
    QCOMPARE(My->txtURL.currentText(), QString("ftp://"));  // completes nothing
    My->txtURL.lineEdit()->clear();
    My->Type("FTP://A");
    My->txtPassword.setFocus();
    QCOMPARE(My->txtURL.currentText(), QString("FTP://A"));
}

void SiteBookTest::DroppingTheListDownWithoutASelectionEmptiesTheBoxes()
{
    WriteThree();
    My->Book.GetURLs(true);
    My->Address.AddressRestored = true;
    My->txtURL.setEditText("ftp://restored");
    My->txtUserName.setText("me");
    My->OpenList();
    QCOMPARE(My->Boxes(), (QStringList{"ftp://restored", "", ""}));
}

void SiteBookTest::AnEntryBehindTheBookLeavesTheBoxesAlone()
{
    Write(EncodeSite(1, Ann));
    My->Book.GetURLs(true);
    My->Book.GetURLs(true);
    My->PickWithMouse(0);
    My->txtUserName.setText("me");
    QTest::keyClick(&My->txtURL, Qt::Key_Down);
    QCOMPARE(My->txtURL.currentIndex(), 1);
    QCOMPARE(My->Boxes(), (QStringList{"ftp://a", "me", "1"}));
}

void SiteBookTest::BeforeTheFirstLoadNothingIsFilledIn()
{
    My->txtUserName.setText("me");
    My->Type("x");
    QCOMPARE(My->txtUserName.text(), QString("me"));
}

void SiteBookTest::AnAnnouncedChangeIsIgnoredOnce()
{
    My->Book.GetURLs(true);
    My->txtUserName.setText("me");
    My->Address.AddressRestored = true;
    My->txtURL.setEditText("ftp://restored");
    QCOMPARE(My->Boxes(), (QStringList{"ftp://restored", "me", ""}));
    QVERIFY(!My->Address.AddressRestored);
    My->txtURL.setEditText("ftp://set");
    QCOMPARE(My->Boxes(), (QStringList{"ftp://set", "", ""}));
}

void SiteBookTest::AnEmptyAddressBeepsAndWritesNothing()
{
    My->Connect("", "me", "secret");
    QCOMPARE(My->Beeps, 1);
    QVERIFY(!QFile::exists(Name()));
    QCOMPARE(My->txtURL.count(), 0);
}

void SiteBookTest::ANewSiteIsAppendedToFileListAndArrays()
{
    Write(EncodeSite(1, Ann));
    My->Book.GetURLs(true);
    My->txtURL.setEditText("ftp://b");
    My->txtUserName.setText("bob");
    My->Connect("ftp://b", "bob", "2");
    QCOMPARE(Bytes(), EncodeSite(1, Ann) + EncodeSite(2, Bob));
    QCOMPARE(My->List(), (QStringList{"ftp://a", "ftp://b"}));
    QCOMPARE(My->Book.Arrays().Urls, (QStringList{"", "ftp://a", "ftp://b"}));
    QCOMPARE(My->Boxes(), (QStringList{"ftp://b", "bob", ""}));
    QCOMPARE(My->txtURL.currentIndex(), -1);
    QCOMPARE(My->Beeps, 0);
}

void SiteBookTest::TheSameAddressTwiceLeavesOneRecord()
{
    My->Connect("ftp://a", "ann", "1");
    My->Connect("ftp://a", "other", "9");
    QCOMPARE(Bytes(), EncodeSite(1, Ann));
    QCOMPARE(My->List(), QStringList{"ftp://a"});
}

void SiteBookTest::AddressesDifferByCaseButNotByBlanksAround()
{
    My->Connect("ftp://a", "ann", "1");
    My->Connect("  ftp://a ", "ann", "1");
    QCOMPARE(My->Book.Arrays().RecordCount, 1);
    My->Connect("ftp://A", "ann", "1");
    QCOMPARE(My->Book.Arrays().Urls, (QStringList{"", "ftp://a", "ftp://A"}));
}

void SiteBookTest::ReplacingRewritesTheRecordAndListsTheAddressTwice()
{
    WriteThree();
    My->Book.GetURLs(true);
    My->Book.Command17_Click();
    My->Connect("ftp://b", "new", "secret");
    QCOMPARE(Bytes(), EncodeSite(1, Ann) + EncodeSite(2, {"ftp://b", "new", "secret"}) + EncodeSite(3, Cid));
    QCOMPARE(My->List(), (QStringList{"ftp://a", "ftp://b", "ftp://c", "ftp://b"}));
    QVERIFY(!My->Book.ReplaceSite());
    QCOMPARE(My->Command17.text(), QString());
    QCOMPARE(My->Book.Arrays().Users[2], QString("new"));
}

void SiteBookTest::ReplacingWithoutAMatchAppends()
{
    Write(EncodeSite(1, Ann));
    My->Book.Command17_Click();
    My->Connect("ftp://b", "bob", "2");
    QCOMPARE(Bytes(), EncodeSite(1, Ann) + EncodeSite(2, Bob));
    QVERIFY(!My->Book.ReplaceSite());
}

void SiteBookTest::EmptyValuesAreStoredAsMarksAndMarkTheConnectionValues()
{
    My->Connect("ftp://a", "", "");
    QCOMPARE(Bytes(), EncodeSite(1, {"ftp://a", "$", "$ "}));
    QCOMPARE(My->Values.SavedUser, QString("$"));
    QCOMPARE(My->Values.SavedPassword, QString("$ "));
}

void SiteBookTest::AnEmptyUserAndPasswordArePickedAsEmptyBoxes()
{
    My->Connect("ftp://a", "", "");
    My->txtUserName.setText("old");
    My->txtPassword.setText("old");
    My->PickWithMouse(0);
    QCOMPARE(My->Boxes(), (QStringList{"ftp://a", "", ""}));
}

void SiteBookTest::AnAddressOf300CharactersIsCutTo270()
{
    const QString address = "ftp://" + QString(294, u'x');
    My->Connect(address, "u", "p");
    QCOMPARE(Bytes().size(), 372);
    QCOMPARE(My->Book.Arrays().Urls[1], address.left(270));
    QCOMPARE(My->List(), QStringList{address});
}

void SiteBookTest::AnAddThatCannotBeWrittenIsQuiet()
{
    QVERIFY(QDir().mkdir(Name()));
    My->Book.Command17_Click();
    My->Connect("ftp://a", "", "p");
    QVERIFY(My->Questions.Questions.empty());
    QCOMPARE(My->Values.SavedUser, QString("$"));
    QCOMPARE(My->List(), QStringList{"ftp://a"});
    QVERIFY(My->Book.ReplaceSite());  // the operation ended before it was cleared
    QCOMPARE(My->Command17.text(), QString());
}

void SiteBookTest::TheReplaceButtonShowsAPlusWhileItIsSet()
{
    connect(&My->Command17, &QPushButton::clicked, &My->Book, &SiteBook::Command17_Click);
    QTest::mouseClick(&My->Command17, Qt::LeftButton);
    QVERIFY(My->Book.ReplaceSite());
    QCOMPARE(My->Command17.text(), QString("+"));
    QTest::mouseClick(&My->Command17, Qt::LeftButton);
    QVERIFY(!My->Book.ReplaceSite());
    QCOMPARE(My->Command17.text(), QString());
}

void SiteBookTest::ErasingOneAsksInTheUsersLanguage()
{
    My->Book.Command18_Click();
    QCOMPARE(My->Questions.Questions.size(), 1);
    const Question& asked = My->Questions.Questions.front();
    QCOMPARE(asked.Text, QString("string 74"));
    QCOMPARE(asked.Title, QString("string 75"));
    QCOMPARE(asked.Sign, Question::Critical);
    QCOMPARE(asked.Choice, Question::YesNo);
    QVERIFY(asked.Foreground);
}

void SiteBookTest::ErasingTheFirstOfThreeSelectsTheSecondOfTheRest()
{
    WriteThree();
    My->Book.GetURLs(true);
    My->PickWithMouse(0);
    My->Questions.Answers = {Answer::Yes};
    My->Book.Command18_Click();
    QCOMPARE(Bytes(), EncodeSite(1, Bob) + EncodeSite(2, Cid));
    QCOMPARE(My->List(), (QStringList{"ftp://b", "ftp://c"}));
    QCOMPARE(My->txtURL.currentIndex(), 1);
    QCOMPARE(My->Boxes(), (QStringList{"ftp://c", "cid", "3"}));
    QCOMPARE(My->Book.Arrays().RecordCount, 2);
}

void SiteBookTest::ErasingTheLastOneEmptiesTheBox()
{
    Write(EncodeSite(1, Ann));
    My->Book.GetURLs(true);
    My->PickWithMouse(0);
    My->Questions.Answers = {Answer::Yes};
    My->Book.Command18_Click();
    QCOMPARE(Bytes(), QByteArray());
    QCOMPARE(My->txtURL.count(), 0);
    QCOMPARE(My->Boxes(), (QStringList{"", "", ""}));
}

void SiteBookTest::ErasingOneOfTwoSelectsNothing()
{
    Write(EncodeSite(1, Ann) + EncodeSite(2, Bob));
    My->Book.GetURLs(true);
    My->PickWithMouse(1);
    My->Questions.Answers = {Answer::Yes};
    My->Book.Command18_Click();
    QCOMPARE(Bytes(), EncodeSite(1, Ann));
    QCOMPARE(My->List(), QStringList{"ftp://a"});
    QCOMPARE(My->txtURL.currentIndex(), -1);
}

void SiteBookTest::ErasingWithoutASelectionErasesNothing()
{
    WriteThree();
    My->Book.GetURLs(true);
    My->Type("ftp://b");
    My->Questions.Answers = {Answer::Yes};
    My->Book.Command18_Click();
    QCOMPARE(Bytes().size(), 3 * 372);
    QCOMPARE(My->List().size(), 3);
    QCOMPARE(My->txtURL.currentText(), QString("ftp://b"));
}

void SiteBookTest::AnswerNoErasesNothing()
{
    WriteThree();
    My->Book.GetURLs(true);
    My->PickWithMouse(0);
    My->Book.Command18_Click();
    QCOMPARE(Bytes().size(), 3 * 372);
    QCOMPARE(My->List().size(), 3);
}

void SiteBookTest::ErasingTheBookAsksWithTheStatusAsTitle()
{
    My->Status.Show("Connected!");
    My->Book.Command12_Click();
    QCOMPARE(My->Questions.Questions.size(), 1);
    const Question& asked = My->Questions.Questions.front();
    QCOMPARE(asked.Text, QString("Erase URL & Password list?"));
    QCOMPARE(asked.Title, QString("Connected!"));
    QCOMPARE(asked.Sign, Question::NoIcon);
    QCOMPARE(asked.Choice, Question::YesNo);
    QVERIFY(asked.Foreground);
}

void SiteBookTest::ErasingTheBookRemovesFileAndList()
{
    WriteThree();
    My->Book.GetURLs(true);
    My->Questions.Answers = {Answer::Yes};
    My->Book.Command12_Click();
    QVERIFY(!QFile::exists(Name()));
    QCOMPARE(My->txtURL.count(), 0);
    QCOMPARE(My->sbFTP.text(), QString("List Erased!"));
    QCOMPARE(My->Log.Count(), 1);
    QVERIFY(My->Log.Line(0).startsWith("Erased URL's and Passwords at:         "));
    QVERIFY(My->Log.Line(0).contains("12:00:00"));
}

void SiteBookTest::ErasingABookThatIsNotThereIsQuiet()
{
    My->Questions.Answers = {Answer::Yes};
    My->Book.Command12_Click();
    QCOMPARE(My->Questions.Questions.size(), 1);
    QCOMPARE(My->sbFTP.text(), QString("List Erased!"));
    QCOMPARE(My->Log.Count(), 1);
}

void SiteBookTest::AnswerNoKeepsTheBook()
{
    WriteThree();
    My->Book.GetURLs(true);
    My->Book.Command12_Click();
    QCOMPARE(Bytes().size(), 3 * 372);
    QCOMPARE(My->List().size(), 3);
    QCOMPARE(My->sbFTP.text(), QString("Waiting ..."));
    QCOMPARE(My->Log.Count(), 0);
}

void SiteBookTest::SavingAllInformationIsTurnedOff()
{
    My->Values.SavedUrl = "ftp://a";
    My->Settings.Write("SaveURL", "ftp://a");
    My->Book.mnuSavFTPAddress_Click();
    QCOMPARE(My->Settings.Read("FTP Address", "absent"), QString("False"));
    QCOMPARE(My->Settings.Read("SaveURL", "absent"), QString());
    QVERIFY(!My->Chosen.SaveAllInformation);
    QVERIFY(!My->mnuSavFTPAddress.isChecked());
}

void SiteBookTest::SavingAllInformationIsTurnedOn()
{
    My->mnuSavFTPAddress.setChecked(false);
    My->Chosen.SaveAllInformation = false;
    My->Values.SavedUrl = "ftp://a";
    My->Book.mnuSavFTPAddress_Click();
    QCOMPARE(My->Settings.Read("FTP Address", "absent"), QString("True"));
    QCOMPARE(My->Settings.Read("SaveURL", "absent"), QString("ftp://a"));
    QVERIFY(My->Chosen.SaveAllInformation);
    QVERIFY(My->mnuSavFTPAddress.isChecked());
}

QTEST_MAIN(SiteBookTest)

#include "site_book_test.moc"
