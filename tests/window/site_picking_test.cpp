#include "support/site_book_bench.h"

/// What picking and typing addresses does to the boxes.
class SitePickingTest : public QObject, SiteBookBench {
    Q_OBJECT

private slots:

    void init() { SetUp(); }

    void cleanup() { TearDown(); }

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

    void AnEmptyUserAndPasswordArePickedAsEmptyBoxes();
};

void SitePickingTest::PickingWithTheMouseFillsTheBoxes()
{
    WriteThree();
    My->Book.GetURLs(true);
    My->PickWithMouse(1);
    QCOMPARE(My->Boxes(), (QStringList{"ftp://b", "bob", "2"}));
    My->PickWithMouse(2);
    QCOMPARE(My->Boxes(), (QStringList{"ftp://c", "cid", "3"}));
}

void SitePickingTest::PickingWithTheKeysFillsTheBoxes()
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

void SitePickingTest::PickingTheSameEntryAgainFillsTheBoxesAgain()
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

void SitePickingTest::DollarsStandForEmptyValues()
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

void SitePickingTest::WithoutSavingAllInformationTheBoxesAreLeftAlone()
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

void SitePickingTest::TypingLeavesNoSelectionAndEmptiesTheBoxes()
{
    WriteThree();
    My->Book.GetURLs(true);
    My->txtUserName.setText("me");
    My->txtPassword.setText("secret");
    My->Type("f");
    QCOMPARE(My->Boxes(), (QStringList{"f", "", ""}));
    QCOMPARE(My->txtURL.currentIndex(), -1);
}

void SitePickingTest::TypingAfterAPickDeselectsButKeepsTextAndCursor()
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

void SitePickingTest::TypingAnAddressOfTheBookPicksNothing()
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

void SitePickingTest::DroppingTheListDownWithoutASelectionEmptiesTheBoxes()
{
    WriteThree();
    My->Book.GetURLs(true);
    My->Address.AddressRestored = true;
    My->txtURL.setEditText("ftp://restored");
    My->txtUserName.setText("me");
    My->OpenList();
    QCOMPARE(My->Boxes(), (QStringList{"ftp://restored", "", ""}));
}

void SitePickingTest::AnEntryBehindTheBookLeavesTheBoxesAlone()
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

void SitePickingTest::BeforeTheFirstLoadNothingIsFilledIn()
{
    My->txtUserName.setText("me");
    My->Type("x");
    QCOMPARE(My->txtUserName.text(), QString("me"));
}

void SitePickingTest::AnAnnouncedChangeIsIgnoredOnce()
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

void SitePickingTest::AnEmptyUserAndPasswordArePickedAsEmptyBoxes()
{
    My->Connect("ftp://a", "", "");
    My->txtUserName.setText("old");
    My->txtPassword.setText("old");
    My->PickWithMouse(0);
    QCOMPARE(My->Boxes(), (QStringList{"ftp://a", "", ""}));
}

QTEST_MAIN(SitePickingTest)
#include "site_picking_test.moc"
