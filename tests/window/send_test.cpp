#include "support/panel_driver.h"

#include <QAbstractButton>

class SendTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void SelectedFilesAreSentOneAfterAnotherAndAListingFollows();
    void ANameWithBlanksIsQuotedTwice();
    void WithTheUnixOptionTheNamesAreListed();
    void TheArrowSendsTheSelectionWithoutADrag();
    void ADropAfterASelectingPressOnRemoteLinesOnlyClearsTheFlag();
    void ADropOfTheRemoteListOnItselfChangesNothing();
    void WhileTheLogIsShownADropOnlyBeeps();
    void OnAnEmptyRemoteListADropOnlyBeeps();
    void WithoutAnAddressNothingIsSent();
    void WithoutASelectionNothingIsSent();

    void WithoutTheCheckAnExistingFileIsNotAskedAbout();
    void TheCheckAsksAndNoSkipsTheFile();
    void TheCheckAsksAndYesSendsTheFile();
    void TheCheckLooksAtWholeLines();
    void LowerCaseNamesAreSentInLowerCase();

    void TheNextFileWaitsForTheOneBefore();
    void AFailedFileIsFollowedByTheNext();
    void EscapeCancelsBetweenFiles();
    void AnEscapeBeforeTheDropDoesNotCount();
    void AHangUpEndsTheRunWithoutAListing();
    void TheStatusNamesTheFile();
    void TheSessionEndsAfterTheLastFileWhenWished();
    void ADropDuringAListingWaitsForIt();

private:
    void OpenWith(const QStringList& files)
    {
        Driver->MakeFiles(files);
        Driver->Open();
        QCOMPARE(PanelDriver::Entries(Driver->Files()), files);
    }

    static QStringList Sent(const QStringList& names)
    {
        QStringList operations;
        for (const QString& name : names) operations += "PUT \"" + name + "\" \"" + name + "\"";
        return operations;
    }

    std::unique_ptr<PanelDriver> Driver;
};

void SendTest::init()
{
    Driver = std::make_unique<PanelDriver>();
}

void SendTest::cleanup()
{
    Driver.reset();
}

void SendTest::SelectedFilesAreSentOneAfterAnotherAndAListingFollows()
{
    OpenWith({"a", "b", "c", "d"});
    Driver->Connect({"old"});
    Driver->SetListing({"old", "a", "b", "d"});
    PanelDriver::Select(Driver->Files(), {0, 1, 3});
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Operations(), Sent({"a", "b", "d"}) + QStringList{"DIR"});
    QCOMPARE(Driver->Status(), QString("Refreshing FTP Folder"));
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
    Driver->WaitUntilIdle();
    QCOMPARE(Driver->Log().filter("File Sent!").size(), 3);
    QCOMPARE(PanelDriver::Entries(Driver->Remote()), (QStringList{"old", "a", "b", "d"}));
}

void SendTest::ANameWithBlanksIsQuotedTwice()
{
    OpenWith({"my holiday film.mpg"});
    Driver->Connect({"old"});
    PanelDriver::LeftClick(Driver->Files(), 0);
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Operations(), (QStringList{R"(PUT "my holiday film.mpg" "my holiday film.mpg")", "DIR"}));
}

void SendTest::WithTheUnixOptionTheNamesAreListed()
{
    OpenWith({"a"});
    Driver->Connect({"old"});
    Driver->Choose("mnuUNIX");
    PanelDriver::LeftClick(Driver->Files(), 0);
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Operations(), Sent({"a"}) + QStringList{"LS"});
}

void SendTest::TheArrowSendsTheSelectionWithoutADrag()
{
    OpenWith({"a", "b"});
    Driver->Connect({"old"});
    PanelDriver::Select(Driver->Files(), {0, 1});
    Driver->Values->Transfer.EntryChosen = true;
    Driver->Click("Image1");
    QCOMPARE(Driver->Operations(), Sent({"a", "b"}) + QStringList{"DIR"});
    QVERIFY(Driver->Values->Transfer.EntryChosen);

    Driver->WaitUntilIdle();
    Driver->Click("Command22");
    Driver->Click("Image1");
    QCOMPARE(Driver->Operations().size(), 3);
}

void SendTest::ADropAfterASelectingPressOnRemoteLinesOnlyClearsTheFlag()
{
    OpenWith({"a"});
    Driver->Connect({"old"});
    PanelDriver::LeftClick(Driver->Files(), 0);
    Driver->Values->Transfer.EntryChosen = true;
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Operations(), QStringList());
    QVERIFY(!Driver->Values->Transfer.EntryChosen);

    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Operations(), Sent({"a"}) + QStringList{"DIR"});
}

void SendTest::ADropOfTheRemoteListOnItselfChangesNothing()
{
    OpenWith({"a"});
    Driver->Connect({"old"});
    PanelDriver::LeftClick(Driver->Files(), 0);
    Driver->Values->Transfer.OperationKind = EraseKind;
    Driver->Beeps = 0;
    const QString status = Driver->Status();
    PanelDriver::RightDrag(Driver->Remote(), Driver->Remote());
    QCOMPARE(Driver->Operations(), QStringList());
    QCOMPARE(Driver->Values->Transfer.OperationKind, static_cast<int>(EraseKind));
    QCOMPARE(Driver->Status(), status);
    QCOMPARE(Driver->Beeps, 0);
}

// The log lies over the remote list while it is shown, so the drop is delivered as if it had got there.
void SendTest::WhileTheLogIsShownADropOnlyBeeps()
{
    OpenWith({"a"});
    Driver->Connect({"old"});
    PanelDriver::LeftClick(Driver->Files(), 0);
    Driver->Click("Command22");
    Driver->Beeps = 0;
    emit Driver->Remote().DragDropped(&Driver->Files(), QPoint(1, 1));
    QCOMPARE(Driver->Beeps, 1);
    QCOMPARE(Driver->Operations(), QStringList());

    Driver->Click("Image1");
    QCOMPARE(Driver->Beeps, 2);
    QCOMPARE(Driver->Operations(), QStringList());
}

void SendTest::OnAnEmptyRemoteListADropOnlyBeeps()
{
    OpenWith({"a"});
    Driver->Connect({});
    PanelDriver::LeftClick(Driver->Files(), 0);
    Driver->Beeps = 0;
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Beeps, 1);
    Driver->Click("Image1");
    QCOMPARE(Driver->Beeps, 2);
    QCOMPARE(Driver->Operations(), QStringList());
}

void SendTest::WithoutAnAddressNothingIsSent()
{
    OpenWith({"a"});
    Driver->Connect({"old"});
    Driver->Inet1().SetURL({});
    PanelDriver::LeftClick(Driver->Files(), 0);
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Operations(), QStringList());
    QCOMPARE(Driver->Values->Transfer.TransferNames, QStringList{"a"});
    QCOMPARE(Driver->Values->Transfer.TransferCount, 1);
}

void SendTest::WithoutASelectionNothingIsSent()
{
    OpenWith({"a"});
    Driver->Connect({"old"});
    const QString status = Driver->Status();
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Operations(), QStringList());
    QCOMPARE(Driver->Status(), status);
}

void SendTest::WithoutTheCheckAnExistingFileIsNotAskedAbout()
{
    OpenWith({"a"});
    Driver->Connect({"a"});
    PanelDriver::LeftClick(Driver->Files(), 0);
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Operations(), Sent({"a"}) + QStringList{"DIR"});
    QCOMPARE(Driver->Questions.Texts(), QStringList());
}

void SendTest::TheCheckAsksAndNoSkipsTheFile()
{
    OpenWith({"a.txt", "b.txt"});
    Driver->Control<QAbstractButton>("Check2").setChecked(true);
    Driver->Connect({"  A.TXT "});
    PanelDriver::Select(Driver->Files(), {0, 1});
    Driver->Questions.Answers = {Answer::No};
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Questions.Texts(), QStringList{"File a.txt already exist on server.  Overwrite?"});
    QCOMPARE(Driver->Questions.Questions[0].Sign, Question::QuestionMark);
    QCOMPARE(Driver->Questions.Questions[0].Choice, Question::YesNo);
    QVERIFY(Driver->Questions.Questions[0].Foreground);
    QCOMPARE(Driver->Operations(), Sent({"b.txt"}) + QStringList{"DIR"});
}

void SendTest::TheCheckAsksAndYesSendsTheFile()
{
    OpenWith({"a.txt"});
    Driver->Control<QAbstractButton>("Check2").setChecked(true);
    Driver->Connect({"a.txt"});
    PanelDriver::LeftClick(Driver->Files(), 0);
    Driver->Questions.Answers = {Answer::Yes};
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Questions.Texts().size(), 1);
    QCOMPARE(Driver->Operations(), Sent({"a.txt"}) + QStringList{"DIR"});
}

void SendTest::TheCheckLooksAtWholeLines()
{
    OpenWith({"a.txt"});
    Driver->Control<QAbstractButton>("Check2").setChecked(true);
    Driver->Connect({"-rw-r--r--   1 ftp      ftp          1024 Mar 09 17:05 a.txt"});
    PanelDriver::LeftClick(Driver->Files(), 0);
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Questions.Texts(), QStringList());
    QCOMPARE(Driver->Operations(), Sent({"a.txt"}) + QStringList{"DIR"});
}

void SendTest::LowerCaseNamesAreSentInLowerCase()
{
    OpenWith({"ReadMe.TXT"});
    Driver->Connect({"old"});
    Driver->Choose("mnuConvertLower");
    PanelDriver::LeftClick(Driver->Files(), 0);
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Operations(), Sent({"readme.txt"}) + QStringList{"DIR"});
}

void SendTest::TheNextFileWaitsForTheOneBefore()
{
    OpenWith({"a", "b"});
    Driver->Connect({"old"});
    PanelDriver::Select(Driver->Files(), {0, 1});
    QStringList log;
    connect(&Driver->Inet1(), &Inet::StateChanged, this, [&](int state) {
        if (state == Inet::Requesting || state == Inet::ResponseCompleted)
            log += Driver->Operations().last() + ' ' + QString::number(state);
    });
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    Driver->WaitUntilIdle();
    const QStringList wanted{
        R"(PUT "a" "a" 5)", R"(PUT "a" "a" 12)", R"(PUT "b" "b" 5)", R"(PUT "b" "b" 12)", "DIR 5", "DIR 12"};
    QCOMPARE(log, wanted);
}

void SendTest::AFailedFileIsFollowedByTheNext()
{
    OpenWith({"a", "b"});
    Driver->Connect({"old"});
    PanelDriver::Select(Driver->Files(), {0, 1});
    Driver->Inet1().FailNext(553, "Not allowed");
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Operations(), Sent({"a", "b"}) + QStringList{"DIR"});
    QCOMPARE(Driver->Log().filter("File Sent!").size(), 1);
}

void SendTest::EscapeCancelsBetweenFiles()
{
    OpenWith({"a", "b", "c"});
    Driver->Connect({"old"});
    PanelDriver::Select(Driver->Files(), {0, 1, 2});
    Driver->During(R"(PUT "a" "a")", [&] { QTest::keyClick(Driver->Window.get(), Qt::Key_Escape); });
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Operations(), Sent({"a"}) + QStringList{"DIR"});
    QCOMPARE(Driver->Status(), QString("Canceled by user"));
    QVERIFY(!Driver->Values->Chosen.EscapePressed);
}

void SendTest::AnEscapeBeforeTheDropDoesNotCount()
{
    OpenWith({"a"});
    Driver->Connect({"old"});
    QTest::keyClick(Driver->Window.get(), Qt::Key_Escape);
    QVERIFY(Driver->Values->Chosen.EscapePressed);
    PanelDriver::LeftClick(Driver->Files(), 0);
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Operations(), Sent({"a"}) + QStringList{"DIR"});
}

void SendTest::AHangUpEndsTheRunWithoutAListing()
{
    OpenWith({"a", "b"});
    Driver->Connect({"old"});
    PanelDriver::Select(Driver->Files(), {0, 1});
    Driver->During(R"(PUT "a" "a")", [&] { Driver->Click("Command1"); });
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Operations(), Sent({"a"}) + QStringList{"CLOSE"});
    QCOMPARE(Driver->Status(), QString("The session was closed. Files not begun: 1"));
}

void SendTest::TheStatusNamesTheFile()
{
    OpenWith({"a"});
    Driver->Connect({"old"});
    PanelDriver::LeftClick(Driver->Files(), 0);
    QString caption;
    connect(&Driver->Inet1(), &Inet::StateChanged, this, [&](int state) {
        if (state == Inet::RequestSent && caption.isEmpty()) caption = Driver->Status();
    });
    QString announced;
    QTimer::singleShot(0, this, [&] { announced = Driver->Status(); });
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(announced, QString("Sending File(s). Please Wait..."));
    QCOMPARE(caption, QString("Sending File:  \"a\""));
}

void SendTest::TheSessionEndsAfterTheLastFileWhenWished()
{
    OpenWith({"a", "b"});
    Driver->Connect({"old"});
    PanelDriver::Select(Driver->Files(), {0, 1});
    Driver->Control<QAbstractButton>("Check1").setChecked(true);
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Operations(), Sent({"a", "b"}) + QStringList{"CLOSE"});
    QCOMPARE(Driver->Status(), QString("The session was closed."));
    QVERIFY(Driver->Control<QAbstractButton>("Check1").isEnabled());
}

void SendTest::ADropDuringAListingWaitsForIt()
{
    OpenWith({"a"});
    Driver->Connect({"old"});
    PanelDriver::LeftClick(Driver->Files(), 0);
    Driver->During("DIR", [&] { PanelDriver::RightDrag(Driver->Files(), Driver->Remote()); });
    Driver->Click("Command4");
    QTRY_COMPARE(Driver->Operations(), (QStringList{"CDUP", "DIR"} + Sent({"a"}) + QStringList{"DIR"}));
    Driver->WaitUntilIdle();
    QCOMPARE(Driver->Log().filter("File Sent!").size(), 1);
    QCOMPARE(PanelDriver::Entries(Driver->Remote()), QStringList{"old"});
}

QTEST_MAIN(SendTest)
#include "send_test.moc"
