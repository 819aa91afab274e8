#include "platform/short_path.h"
#include "support/operations_bench.h"

#include <QDir>
#include <QElapsedTimer>
#include <QListView>

/// What the buttons beside the remote panel send, ask and tell.
class RemoteOperationsTest : public QObject, OperationsBench {
    Q_OBJECT

private slots:

    void init() { SetUp(); }

    void cleanup() { TearDown(); }

    void AFolderIsMadeAndTheListingAsked();
    void WithTheUnixOptionTheNamesAreAskedFor();
    void AnAbandonedDialogSendsNothing_data();
    void AnAbandonedDialogSendsNothing();
    void AFileIsRenamedFromItsOwnName();
    void TheListChangingUnderTheDialogChangesNothing();

    void EveryOddNameGoesWholeIntoItsQuotes_data();
    void EveryOddNameGoesWholeIntoItsQuotes();
    void ThreeFilesAskThreeTimesAndNoLeavesOneOut();
    void TheListingComesAShortDelayAfterTheErasing();
    void WithEveryAnswerNoOnlyTheListingIsAsked();
    void FiveHundredFilesAreErasedInOrderWithOneLeftOut();
    void AListingDuringTheErasingDoesNotChangeWhatIsErased();

    void TheDeleteKeyErasesTheHighlightedFile();
    void TheDeleteKeyAsksFirst();
    void OtherKeysEraseNothing();

    void AFolderIsErased();
    void AFolderIsNotErasedWithoutAYes();

    void ATextFileWithoutACopyIsReadUnderItsOwnName();
    void ATextFileWithACopyIsReadOntoIt();
    void WithoutAnEditorTheReasonIsShown();
    void TheSizeIsShownAndLogged_data();
    void TheSizeIsShownAndLogged();
    void TheSizeGivesTheFocusToTheLog();
    void ReadingAndMeasuringLeaveTheLines();
};

void RemoteOperationsTest::AFolderIsMadeAndTheListingAsked()
{
    ConnectWith(*Driver, {"a"});
    Driver->Values->InputText = "left over";
    Type("  new folder ");
    Driver->Click("Command10");
    QCOMPARE(Driver->Prompt->Titles, QStringList{"Enter new folder name."});
    QCOMPARE(Driver->Prompt->Prefills, QStringList{""});
    QCOMPARE(Driver->Inet1().Lines,
             (QStringList{"Execute ftp://host | MKDIR \"new folder\"", "Execute ftp://host | DIR"}));
    QCOMPARE(Driver->Status(), QString("Folder Created."));
    QCOMPARE(Logged("Created Folder \"new folder\""), 1);
    QCOMPARE(Driver->Values->Transfer.OperationKind, static_cast<int>(ListingKind));
    QVERIFY(IsNormalPointer());
    Driver->SetListing({"a", "new folder"});
    Driver->WaitUntilIdle();
    QCOMPARE(PanelDriver::Entries(Driver->Remote()), (QStringList{"a", "new folder"}));
}

void RemoteOperationsTest::WithTheUnixOptionTheNamesAreAskedFor()
{
    ConnectWith(*Driver, {"a"});
    Driver->Choose("mnuUNIX");
    Type("b");
    Driver->Click("Command10");
    QCOMPARE(Driver->Operations(), (QStringList{"MKDIR \"b\"", "LS"}));
}

void RemoteOperationsTest::AnAbandonedDialogSendsNothing_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<bool>("byTitleBar");
    for (const char* button : {"Command10", "Command6"}) {
        QTest::addRow("%s cancelled", button) << button << false;
        QTest::addRow("%s closed by the title bar", button) << button << true;
    }
}

void RemoteOperationsTest::AnAbandonedDialogSendsNothing()
{
    QFETCH(QString, button);
    QFETCH(bool, byTitleBar);
    ConnectWith(*Driver, {"a"});
    Driver->Values->InputText = "left over";
    if (byTitleBar)
        Type(std::nullopt);
    else
        Type("");
    const QStringList log = Driver->Log();
    Driver->Click(qPrintable(button));
    QCOMPARE(Driver->Prompt->Titles.size(), 1);
    QCOMPARE(Driver->Operations(), QStringList());
    QCOMPARE(Driver->Log(), log);
    QVERIFY(IsNormalPointer());
}

void RemoteOperationsTest::AFileIsRenamedFromItsOwnName()
{
    ConnectWith(*Driver, {"a", "old name"}, 1);
    Type("new name");
    Driver->Click("Command6");
    QCOMPARE(Driver->Prompt->Titles, QStringList{"Enter new file name."});
    QCOMPARE(Driver->Prompt->Prefills, QStringList{"old name"});
    QCOMPARE(Driver->Operations(), (QStringList{R"(RENAME "old name" "new name")", "DIR"}));
    QCOMPARE(Logged(R"(Renamed File "old name" to "new name")"), 1);
    QCOMPARE(Driver->Status(), QString("File Renamed."));
    QVERIFY(IsNormalPointer());
}

void RemoteOperationsTest::TheListChangingUnderTheDialogChangesNothing()
{
    ConnectWith(*Driver, {"old"});
    Driver->Prompt->Meanwhile = [this] { Driver->Remote().SetEntries({"another", "old"}); };
    Type("new");
    Driver->Click("Command6");
    QCOMPARE(Driver->Operations(), (QStringList{R"(RENAME "old" "new")", "DIR"}));
}

void RemoteOperationsTest::EveryOddNameGoesWholeIntoItsQuotes_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("blanks") << "two  blanks";
    QTest::newRow("quotes") << R"(a "quoted" word)";
    QTest::newRow("percent signs") << "100% %41 %1 %2";
    QTest::newRow("leading dashes") << "--version";
    QTest::newRow("no ASCII") << QString::fromUtf8("grüße 日本.txt");
    QTest::newRow("no UTF-8") << QString("caf") + QChar(0xDCE9);
    QTest::newRow("a listing line") << "-rw-r--r--   1 ftp      ftp            12 Mar 09 17:05 file.txt";
    QTest::newRow("250 bytes") << QString(250, 'n');
}

void RemoteOperationsTest::EveryOddNameGoesWholeIntoItsQuotes()
{
    QFETCH(QString, name);
    const QString quoted = '"' + name + '"';
    ConnectWith(*Driver, {name});
    const auto chooseAgain = [&] {
        Driver->WaitUntilIdle();
        Driver->Inet1().Forget();
        PanelDriver::LeftClick(Driver->Remote(), 0);
    };
    Type(name);
    Driver->Click("Command10");
    QCOMPARE(Driver->Operations().first(), "MKDIR " + quoted);
    chooseAgain();
    Type(name + "2");
    Driver->Click("Command6");
    QCOMPARE(Driver->Operations().first(), "RENAME " + quoted + " \"" + name + "2\"");
    QCOMPARE(Driver->Prompt->Prefills.last(), name);
    chooseAgain();
    Driver->Questions.Reply = [](const Question&) { return Answer::Yes; };
    Driver->Click("Command7");
    QCOMPARE(Driver->Operations().first(), "DELETE " + quoted);
    QCOMPARE(Driver->Questions.Texts().last(), "Erase File " + quoted + ".  Are you sure?");
    chooseAgain();
    Driver->Click("Command9");
    QCOMPARE(Driver->Operations().first(), "RMDIR " + quoted);
    QCOMPARE(Driver->Questions.Texts().last(), "Erase folder " + name + "? Are you sure?");
    chooseAgain();
    Driver->Click("Command5");
    QCOMPARE(Driver->Operations(), QStringList{"GET " + quoted + ' '});
    chooseAgain();
    Driver->Click("Command16");
    QCOMPARE(Driver->Operations(), QStringList{"SIZE " + quoted});
    QCOMPARE(Driver->Questions.Texts().last(), "   " + name + "  = 0  Bytes ");
}

void RemoteOperationsTest::ThreeFilesAskThreeTimesAndNoLeavesOneOut()
{
    ConnectWith(*Driver, {"a", "b", "c", "d"});
    PanelDriver::Select(Driver->Remote(), {0, 1, 3});
    Answering({Answer::Yes, Answer::No, Answer::Yes});
    QStringList statuses;
    for (const char* operation : {"DELETE \"a\"", "DELETE \"d\""})
        Driver->During(operation,
                       [&] { statuses += Driver->Values->Transfer.OperationKind == ListingKind ? "0" : "?"; });
    Driver->Click("Command7");
    QCOMPARE(Driver->Questions.Texts(),
             (QStringList{"Erase File \"a\".  Are you sure?", "Erase File \"b\".  Are you sure?",
                          "Erase File \"d\".  Are you sure?"}));
    for (const Question& question : Driver->Questions.Questions) {
        QCOMPARE(question.Title, QString(Hint));
        QCOMPARE(question.Choice, Question::YesNo);
        QCOMPARE(question.Sign, Question::NoIcon);
    }
    QCOMPARE(Driver->Beeps, 3);
    QCOMPARE(Driver->Operations(), (QStringList{"DELETE \"a\"", "DELETE \"d\"", "DIR"}));
    QCOMPARE(statuses, (QStringList{"0", "0"}));
    QCOMPARE(Driver->Status(), QString("File Erased."));
    QCOMPARE(Logged("Erased File \"a\""), 1);
    QCOMPARE(Logged("Erased File \"b\""), 0);
    QCOMPARE(Logged("Erased File \"d\""), 1);
}

void RemoteOperationsTest::TheListingComesAShortDelayAfterTheErasing()
{
    ConnectWith(*Driver, {"a"});
    Answering({Answer::Yes});
    QElapsedTimer since;
    qint64 delay = -1;
    connect(&Driver->Inet1(), &Inet::StateChanged, this, [&](int state) {
        const QString operation = Driver->Operations().last();
        if (operation == "DELETE \"a\"" && state == Inet::ResponseCompleted) since.start();
        if (operation == "DIR" && state == Inet::Requesting) delay = since.elapsed();
    });
    Driver->Click("Command7");
    Driver->WaitUntilIdle();
    QVERIFY2(delay >= 1000, qPrintable(QString::number(delay)));
}

void RemoteOperationsTest::WithEveryAnswerNoOnlyTheListingIsAsked()
{
    ConnectWith(*Driver, {"a", "b"});
    PanelDriver::Select(Driver->Remote(), {0, 1});
    Answering({Answer::No, Answer::No});
    Driver->Click("Command7");
    QCOMPARE(Driver->Questions.Questions.size(), 2U);
    QCOMPARE(Driver->Operations(), QStringList{"DIR"});
    QVERIFY(Driver->Status() != "File Erased.");
}

void RemoteOperationsTest::FiveHundredFilesAreErasedInOrderWithOneLeftOut()
{
    QStringList names;
    for (int number = 0; number < 500; ++number) names += QString("file %1").arg(number);
    ConnectWith(*Driver, names);
    Driver->Remote().selectAll();
    Driver->Questions.Reply = [](const Question& question) {
        return question.Text.contains("\"file 250\"") ? Answer::No : Answer::Yes;
    };
    Driver->Click("Command7");
    names.removeAt(250);
    QStringList expected;
    for (const QString& name : names) expected += "DELETE \"" + name + '"';
    QCOMPARE(Driver->Operations(), expected + QStringList{"DIR"});
    QCOMPARE(Driver->Questions.Questions.size(), 500U);
}

void RemoteOperationsTest::AListingDuringTheErasingDoesNotChangeWhatIsErased()
{
    ConnectWith(*Driver, {"a", "b"});
    PanelDriver::Select(Driver->Remote(), {0, 1});
    Driver->SetListing({"x", "y"});
    Driver->During("DELETE \"a\"", [this] { Driver->Click("Command4"); });
    Driver->Questions.Reply = [](const Question&) { return Answer::Yes; };
    Driver->Click("Command7");
    QCOMPARE(Driver->Operations(), (QStringList{"DELETE \"a\"", "CDUP", "DIR", "DELETE \"b\"", "DIR"}));
}

void RemoteOperationsTest::TheDeleteKeyErasesTheHighlightedFile()
{
    ConnectWith(*Driver, {"a", "b"}, 1);
    Answering({Answer::Yes});
    QList<int> kinds;
    QStringList statuses;
    connect(&Driver->Inet1(), &Inet::StateChanged, this, [&](int state) {
        if (state == Inet::Requesting) kinds += Driver->Values->Transfer.OperationKind;
        if (state == Inet::ResponseCompleted) statuses += Driver->Status();
    });
    QTest::keyClick(&Driver->Remote(), Qt::Key_Delete);
    QCOMPARE(Driver->Questions.Texts(), QStringList{"Erase File \"b\".  Are you sure?"});
    QCOMPARE(Driver->Questions.Questions.front().Title, QString(Hint));
    QCOMPARE(Driver->Status(), QString("File Erased."));
    QCOMPARE(Driver->Operations(), (QStringList{"DELETE \"b\"", "DIR"}));
    Driver->WaitUntilIdle();
    QCOMPARE(kinds, (QList<int>{EraseKind, ListingKind}));
    QCOMPARE(statuses.first(), QString("File has been erased."));
}

void RemoteOperationsTest::TheDeleteKeyAsksFirst()
{
    ConnectWith(*Driver, {"a"});
    Answering({Answer::No});
    QTest::keyClick(&Driver->Remote(), Qt::Key_Delete);
    QCOMPARE(Driver->Questions.Questions.size(), 1U);
    QCOMPARE(Driver->Operations(), QStringList());
}

void RemoteOperationsTest::OtherKeysEraseNothing()
{
    ConnectWith(*Driver, {"a", "b"});
    for (const auto key : {Qt::Key_Backspace, Qt::Key_Insert, Qt::Key_Period, Qt::Key_D})
        QTest::keyClick(&Driver->Remote(), key);
    QCOMPARE(Driver->Questions.Texts(), QStringList());
    QCOMPARE(Driver->Operations(), QStringList());
}

void RemoteOperationsTest::AFolderIsErased()
{
    ConnectWith(*Driver, {"pub", "old folder"}, 1);
    QString during;
    Driver->Questions.Reply = [&](const Question&) {
        during = QString::number(Driver->Beeps);
        return Answer::Yes;
    };
    Driver->Click("Command9");
    QCOMPARE(during, QString("1"));
    QCOMPARE(Driver->Questions.Texts(), QStringList{"Erase folder old folder? Are you sure?"});
    QCOMPARE(Driver->Questions.Questions.front().Title, QString(Hint));
    QCOMPARE(Driver->Questions.Questions.front().Choice, Question::YesNo);
    QCOMPARE(Driver->Questions.Questions.front().Sign, Question::NoIcon);
    QCOMPARE(Driver->Operations(), (QStringList{"RMDIR \"old folder\"", "DIR"}));
    QCOMPARE(Logged("Erased Folder \"old folder\""), 1);
    QCOMPARE(Driver->Status(), QString("Folder Erased."));
}

void RemoteOperationsTest::AFolderIsNotErasedWithoutAYes()
{
    ConnectWith(*Driver, {"pub"});
    Driver->Click("Command9");
    QCOMPARE(Driver->Operations(), QStringList());
    QCOMPARE(Driver->Status(), QString());
}

void RemoteOperationsTest::ATextFileWithoutACopyIsReadUnderItsOwnName()
{
    ConnectWith(*Driver, {"read me.txt"});
    Driver->Click("Command5");
    QCOMPARE(Driver->Inet1().Lines, QStringList{"Execute ftp://host | GET \"read me.txt\" "});
    QCOMPARE(Logged("Read File \"read me.txt\""), 1);
    QCOMPARE(Driver->Edited, QStringList{""});
}

void RemoteOperationsTest::ATextFileWithACopyIsReadOntoIt()
{
    Driver->MakeFile("read me.txt");
    ConnectWith(*Driver, {"read me.txt"});
    const QString copy = ShortPath(QDir::toNativeSeparators(Driver->LocalFolder() + "/read me.txt"));
    Driver->Click("Command5");
    QCOMPARE(Driver->Operations(), QStringList{"GET \"read me.txt\" " + copy});
    QCOMPARE(Driver->Edited, QStringList{copy});
}

void RemoteOperationsTest::WithoutAnEditorTheReasonIsShown()
{
    Driver->EditorComplaint = "File not found";
    ConnectWith(*Driver, {"a"});
    Driver->Click("Command5");
    QCOMPARE(Driver->Status(), QString("File not found"));
    QCOMPARE(Logged("File not found"), 1);
    QVERIFY(!Driver->Values->Transfer.SkipListing);
}

void RemoteOperationsTest::TheSizeIsShownAndLogged_data()
{
    QTest::addColumn<QString>("reply");
    QTest::addColumn<qint64>("figure");
    QTest::newRow("a number") << "5368709120" << qint64{5368709120};
    QTest::newRow("a number and words") << "1234 bytes" << qint64{1234};
    QTest::newRow("nothing") << "" << qint64{0};
    QTest::newRow("words") << "no idea" << qint64{0};
}

void RemoteOperationsTest::TheSizeIsShownAndLogged()
{
    QFETCH(QString, reply);
    QFETCH(qint64, figure);
    ConnectWith(*Driver, {"a file"});
    Driver->Inet1().Replies["SIZE \"a file\""] = reply;
    const int chunks = Driver->Inet1().ChunksTaken;
    Driver->Click("Command16");
    QCOMPARE(Driver->Operations(), QStringList{"SIZE \"a file\""});
    QCOMPARE(Driver->Inet1().ChunksTaken, chunks + 1);
    const QString text = "   a file  = " + Thousands(figure) + "  Bytes ";
    QCOMPARE(Driver->Questions.Texts(), QStringList{text});
    const Question& box = Driver->Questions.Questions.front();
    QCOMPARE(box.Title, QString("File Size"));
    QCOMPARE(box.Sign, Question::Information);
    QCOMPARE(box.Choice, Question::Ok);
    QCOMPARE(Logged("File size on " + text), 1);
    QVERIFY(IsNormalPointer());
}

void RemoteOperationsTest::TheSizeGivesTheFocusToTheLog()
{
    ConnectWith(*Driver, {"a"});
    Driver->Click("Command22");
    Driver->Remote().setFocus();
    Driver->Click("Command16");
    QVERIFY(Driver->Control<QListView>("List2").hasFocus());
}

void RemoteOperationsTest::ReadingAndMeasuringLeaveTheLines()
{
    ConnectWith(*Driver, {"a", "b"});
    Driver->Inet1().Replies["SIZE \"a\""] = "12\r\n";
    QList<bool> skipped;
    connect(&Driver->Inet1(), &Inet::StateChanged, this, [&](int state) {
        if (state == Inet::ResponseCompleted) skipped += Driver->Values->Transfer.SkipListing;
    });
    for (const char* button : {"Command5", "Command16"}) {
        Driver->Click(button);
        Driver->WaitUntilIdle();
        QCOMPARE(PanelDriver::Entries(Driver->Remote()), (QStringList{"a", "b"}));
        QVERIFY(!Driver->Values->Transfer.SkipListing);
    }
    QCOMPARE(skipped, (QList<bool>{true, true}));
}

QTEST_MAIN(RemoteOperationsTest)
#include "remote_operations_test.moc"
