#include "support/site_book_bench.h"

/// What the site book loads, adds and erases.
class SiteBookTest : public QObject, SiteBookBench {
    Q_OBJECT

private slots:

    void init() { SetUp(); }

    void cleanup() { TearDown(); }

    void AMissingFileYieldsAnEmptyBookAndIsCreated();
    void LoadingFillsTheListOnlyWhenAsked();
    void LoadingTwiceFillsTheListTwice();
    void LoadingLeavesTheTextAndTheSelectionAlone();
    void AFileThatCannotBeReadLeavesEverythingAsItWas();
    void ABookWithOneRecordTooManyLoadsNothingAndTakesNothing();
    void AFullBookTakesNoMore();

    void AnEmptyAddressBeepsAndWritesNothing();
    void ANewSiteIsAppendedToFileListAndArrays();
    void TheSameAddressTwiceLeavesOneRecord();
    void AddressesDifferByCaseButNotByBlanksAround();
    void ReplacingRewritesTheRecordAndListsTheAddressTwice();
    void ReplacingWithoutAMatchAppends();
    void EmptyValuesAreStoredAsMarksAndMarkTheConnectionValues();
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
};

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
