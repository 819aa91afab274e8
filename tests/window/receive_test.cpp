#include "support/panel_driver.h"

#include <QAbstractButton>
#include <QAbstractEventDispatcher>

class ReceiveTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void SelectedLinesAreReceivedOneAfterAnother();
    void ANameWithBlanksIsQuotedTwice();
    void BlanksAroundANameAreLeftOut();
    void ADropOnTheFolderListReceivesToo();
    void TheArrowReceivesTheSelectionWithoutADrag();
    void ADropAfterASelectingPressOnlyClearsTheFlag();
    void APlainClickReceivesNothing();
    void AKeyboardSelectionCanBeDraggedAtOnce();
    void ARightPressKeepsTheSelection();
    void ADropFromAnotherListChangesNothing();
    void ADragWithoutASelectionOnlyEndsInWaiting();

    void WithoutTheCheckAnExistingFileIsNotAskedAbout();
    void TheCheckAsksAndNoSkipsTheFile();
    void TheCheckAsksAndYesReceivesTheFile();
    void TheCheckFindsTheNameInsideAListingLine();
    void AListingLineWithoutALocalTwinIsNotAskedAbout();
    void LowerCaseNamesAreReceivedInLowerCase();
    void AShortNameOfNoLocalFileIsEmpty();
    void AShortNameOfALocalFileStandsForIt();
    void ABlankNameEndsTheRun();

    void EscapeCancelsBetweenFiles();
    void AFailedFileIsFollowedByTheNext();
    void AHangUpEndsTheRunAndTheStatusSaysSo();
    void TheStatusNamesTheFileAndTheBoxIsDisabledAtFirst();
    void EveryReceivedFileRefreshesTheLocalList();
    void TheSessionEndsAfterTheLastFileWhenWished();
    void EachDropCountsItsFilesAnew();
    void ADropDuringARunIsDoneFirstAndTheRunGoesOn();
    void AClosedWindowEndsARunAtOnce();

    void TheOptionEntriesAreSaved_data();
    void TheOptionEntriesAreSaved();
    void ThePictureBesideTheCheckTogglesIt();

private:
    QStringList Received(const QStringList& names) const
    {
        QStringList operations;
        for (const QString& name : names) operations += "GET \"" + name + "\" \"" + name + "\"";
        return operations;
    }

    std::unique_ptr<PanelDriver> Driver;
};

void ReceiveTest::init()
{
    Driver = std::make_unique<PanelDriver>();
    Driver->Open();
}

void ReceiveTest::cleanup()
{
    Driver.reset();
}

void ReceiveTest::SelectedLinesAreReceivedOneAfterAnother()
{
    Driver->Connect({"a", "b", "c", "d"});
    PanelDriver::Select(Driver->Remote(), {0, 1, 3});
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), Received({"a", "b", "d"}));
    QVERIFY(!Driver->Inet1().StillExecuting());
    QCOMPARE(Driver->Status(), QString("Waiting..."));
    QCOMPARE(Driver->Log().filter("File Received!").size(), 3);
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
}

void ReceiveTest::ANameWithBlanksIsQuotedTwice()
{
    Driver->Connect({"my holiday film.mpg"});
    PanelDriver::LeftClick(Driver->Remote(), 0);
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), QStringList{R"(GET "my holiday film.mpg" "my holiday film.mpg")"});
}

void ReceiveTest::BlanksAroundANameAreLeftOut()
{
    Driver->Connect({"  a b  "});
    PanelDriver::LeftClick(Driver->Remote(), 0);
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), Received({"a b"}));
}

void ReceiveTest::ADropOnTheFolderListReceivesToo()
{
    Driver->Connect({"a", "b"});
    PanelDriver::Select(Driver->Remote(), {0, 1});
    QString announced;
    QTimer::singleShot(0, this, [&] { announced = Driver->Status(); });
    PanelDriver::RightDrag(Driver->Remote(), Driver->Control<QWidget>("Dir1"));
    QCOMPARE(announced, QString("Receiving File(s). Please Wait..."));
    QCOMPARE(Driver->Operations(), Received({"a", "b"}));
    QCOMPARE(Driver->Status(), QString("Waiting..."));
}

void ReceiveTest::TheArrowReceivesTheSelectionWithoutADrag()
{
    Driver->Connect({"a", "b"});
    PanelDriver::Select(Driver->Remote(), {0, 1});
    Driver->Values->Transfer.EntryChosen = true;
    Driver->Click("Image2");
    QCOMPARE(Driver->Operations(), Received({"a", "b"}));
    QVERIFY(Driver->Values->Transfer.EntryChosen);
}

void ReceiveTest::ADropAfterASelectingPressOnlyClearsTheFlag()
{
    Driver->Connect({"a", "b"});
    Driver->Values->Transfer.OperationKind = EraseKind;
    const QString status = Driver->Status();
    PanelDriver::Drag(Qt::LeftButton, Driver->Remote(), 1, Driver->Files());
    QCOMPARE(Driver->Operations(), QStringList());
    QVERIFY(!Driver->Values->Transfer.EntryChosen);
    QCOMPARE(Driver->Values->Transfer.OperationKind, static_cast<int>(EraseKind));
    QCOMPARE(Driver->Status(), status);

    PanelDriver::Drag(Qt::RightButton, Driver->Remote(), 1, Driver->Files());
    QCOMPARE(Driver->Operations(), Received({"b"}));
}

void ReceiveTest::APlainClickReceivesNothing()
{
    Driver->Connect({"a", "b"});
    PanelDriver::LeftClick(Driver->Remote(), 0);
    QVERIFY(!Driver->Values->Transfer.EntryChosen);  // set by the press, cleared by the drop on the list itself
    QVERIFY(Driver->Remote().IsSelected(0));
    QCOMPARE(Driver->Operations(), QStringList());
    QCOMPARE(Driver->Beeps, 0);
}

void ReceiveTest::AKeyboardSelectionCanBeDraggedAtOnce()
{
    Driver->Connect({"a", "b", "c"});
    Driver->Remote().setFocus();
    QTest::keyClick(&Driver->Remote(), Qt::Key_Home);
    QTest::keyClick(&Driver->Remote(), Qt::Key_Down, Qt::ShiftModifier);
    QVERIFY(!Driver->Values->Transfer.EntryChosen);
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), Received({"a", "b"}));
}

void ReceiveTest::ARightPressKeepsTheSelection()
{
    Driver->Connect({"a", "b", "c"});
    PanelDriver::LeftClick(Driver->Remote(), 0);
    PanelDriver::Drag(Qt::RightButton, Driver->Remote(), 2, Driver->Files());
    QCOMPARE(Driver->Operations(), Received({"a"}));
}

void ReceiveTest::ADropFromAnotherListChangesNothing()
{
    Driver->MakeFiles({"mine"});
    Driver->Restart();
    Driver->Connect({"a"});
    PanelDriver::LeftClick(Driver->Files(), 0);
    Driver->Values->Transfer.OperationKind = EraseKind;
    const QString status = Driver->Status();
    PanelDriver::RightDrag(Driver->Files(), Driver->Control<QWidget>("Dir1"));
    PanelDriver::RightDrag(Driver->Files(), Driver->Files());
    QCOMPARE(Driver->Operations(), QStringList());
    QCOMPARE(Driver->Values->Transfer.OperationKind, static_cast<int>(EraseKind));
    QCOMPARE(Driver->Status(), status);
}

void ReceiveTest::ADragWithoutASelectionOnlyEndsInWaiting()
{
    Driver->Connect({"a"});
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), QStringList());
    QCOMPARE(Driver->Status(), QString("Waiting..."));
}

void ReceiveTest::WithoutTheCheckAnExistingFileIsNotAskedAbout()
{
    Driver->MakeFiles({"a"});
    Driver->Restart();
    Driver->Connect({"a"});
    PanelDriver::LeftClick(Driver->Remote(), 0);
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), Received({"a"}));
    QCOMPARE(Driver->Questions.Texts(), QStringList());
}

void ReceiveTest::TheCheckAsksAndNoSkipsTheFile()
{
    Driver->MakeFiles({"A.TXT"});
    Driver->Restart();
    Driver->Control<QAbstractButton>("Check2").setChecked(true);
    Driver->Connect({"a.txt", "b.txt"});
    PanelDriver::Select(Driver->Remote(), {0, 1});
    Driver->Questions.Answers = {Answer::No};
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Questions.Texts(), QStringList{"File a.txt already exist on drive.  Overwrite?"});
    QCOMPARE(Driver->Questions.Questions[0].Sign, Question::QuestionMark);
    QCOMPARE(Driver->Questions.Questions[0].Choice, Question::YesNo);
    QVERIFY(Driver->Questions.Questions[0].Foreground);
    QCOMPARE(Driver->Operations(), Received({"b.txt"}));
}

void ReceiveTest::TheCheckAsksAndYesReceivesTheFile()
{
    Driver->MakeFiles({"a.txt"});
    Driver->Restart();
    Driver->Control<QAbstractButton>("Check2").setChecked(true);
    Driver->Connect({" a.txt "});
    PanelDriver::LeftClick(Driver->Remote(), 0);
    Driver->Questions.Answers = {Answer::Yes};
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Questions.Texts(), QStringList{"File a.txt already exist on drive.  Overwrite?"});
    QCOMPARE(Driver->Operations(), Received({"a.txt"}));
}

// The server may refuse the whole line; the component then takes the name out of it, here and on the disk.
void ReceiveTest::TheCheckFindsTheNameInsideAListingLine()
{
    Driver->MakeFiles({"notes.txt"});
    Driver->Restart();
    Driver->Control<QAbstractButton>("Check2").setChecked(true);
    const QString line = "-rw-r--r--   1 ftp      ftp          1024 Mar 09 17:05 notes.txt";
    Driver->Connect({line});
    PanelDriver::LeftClick(Driver->Remote(), 0);
    Driver->Questions.Answers = {Answer::No};
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Questions.Texts(), QStringList{"File notes.txt already exist on drive.  Overwrite?"});
    QCOMPARE(Driver->Operations(), QStringList());
}

void ReceiveTest::AListingLineWithoutALocalTwinIsNotAskedAbout()
{
    Driver->MakeFiles({"other.txt"});
    Driver->Restart();
    Driver->Control<QAbstractButton>("Check2").setChecked(true);
    const QString line = "-rw-r--r--   1 ftp      ftp          1024 Mar 09 17:05 notes.txt";
    Driver->Connect({line});
    PanelDriver::LeftClick(Driver->Remote(), 0);
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Questions.Texts(), QStringList());
    QCOMPARE(Driver->Operations(), Received({line}));
}

void ReceiveTest::LowerCaseNamesAreReceivedInLowerCase()
{
    Driver->Connect({"ReadMe.TXT"});
    Driver->Choose("mnuConvertLower");
    PanelDriver::LeftClick(Driver->Remote(), 0);
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), Received({"readme.txt"}));
}

void ReceiveTest::AShortNameOfNoLocalFileIsEmpty()
{
    Driver->Connect({"a long name.text"});
    Driver->Choose("mnuNT");
    PanelDriver::LeftClick(Driver->Remote(), 0);
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), QStringList{R"(GET "" "")"});
}

void ReceiveTest::AShortNameOfALocalFileStandsForIt()
{
    Driver->MakeFiles({"a.txt"});
    Driver->Connect({"a.txt"});
    Driver->Choose("mnuNT");
    PanelDriver::LeftClick(Driver->Remote(), 0);
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), Received({"a.txt"}));
}

void ReceiveTest::ABlankNameEndsTheRun()
{
    Driver->Connect({"a", "   ", "c"});
    PanelDriver::Select(Driver->Remote(), {0, 1, 2});
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), Received({"a"}));
    QCOMPARE(Driver->Status(), QString("Waiting..."));
}

void ReceiveTest::EscapeCancelsBetweenFiles()
{
    Driver->Connect({"a", "b", "c"});
    PanelDriver::Select(Driver->Remote(), {0, 1, 2});
    Driver->During(R"(GET "b" "b")", [&] { QTest::keyClick(Driver->Window.get(), Qt::Key_Escape); });
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), Received({"a", "b"}));
    QCOMPARE(Driver->Status(), QString("Canceled by user"));
    QVERIFY(!Driver->Values->Chosen.EscapePressed);
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);

    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), Received({"a", "b", "a", "b", "c"}));
}

void ReceiveTest::AFailedFileIsFollowedByTheNext()
{
    Driver->Connect({"a", "b"});
    PanelDriver::Select(Driver->Remote(), {0, 1});
    Driver->Inet1().FailNext(550, "No such file");
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), Received({"a", "b"}));
    QCOMPARE(Driver->Log().filter("File Received!").size(), 1);
    QCOMPARE(Driver->Log().filter("Error! 550: No such file").size(), 1);
}

void ReceiveTest::AHangUpEndsTheRunAndTheStatusSaysSo()
{
    Driver->Connect({"a", "b", "c"});
    PanelDriver::Select(Driver->Remote(), {0, 1, 2});
    Driver->During(R"(GET "a" "a")", [&] { Driver->Click("Command1"); });
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), Received({"a"}) + QStringList{"CLOSE"});
    QCOMPARE(Driver->Status(), QString("The session was closed. Files not begun: 2"));
    QVERIFY(Driver->Log().last().startsWith("The session was closed. Files not begun: 2        "));
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
}

void ReceiveTest::TheStatusNamesTheFileAndTheBoxIsDisabledAtFirst()
{
    Driver->Connect({"a"});
    PanelDriver::LeftClick(Driver->Remote(), 0);
    auto& box = Driver->Control<QAbstractButton>("Check1");
    QString status;
    bool enabledAtFirst = true;
    bool enabledLater = false;
    QString caption;
    connect(&Driver->Inet1(), &Inet::StateChanged, this, [&](int state) {
        if (state == Inet::RequestSent) {
            caption = Driver->Status();
            enabledLater = box.isEnabled();
        }
    });
    Driver->Inet1().Hold();
    const auto look = connect(qApp->eventDispatcher(), &QAbstractEventDispatcher::aboutToBlock, this, [&] {
        if (!status.isEmpty() || !Driver->Inet1().StillExecuting()) return;
        status = Driver->Status();
        enabledAtFirst = box.isEnabled();
        Driver->Inet1().Release();
    });
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    disconnect(look);
    QCOMPARE(status, QString("Receiving File \"a\""));
    QVERIFY(!enabledAtFirst);
    QCOMPARE(caption, QString("Receiving File:  \"a\""));
    QVERIFY(enabledLater);
}

void ReceiveTest::EveryReceivedFileRefreshesTheLocalList()
{
    Driver->Connect({"a", "b"});
    QCOMPARE(Driver->LocalCount(), QString("0"));
    PanelDriver::Select(Driver->Remote(), {0, 1});
    QStringList counts;
    Driver->Inet1().Respond = [&](const QString& operation) {
        counts += Driver->LocalCount();
        Driver->MakeFile(operation.section('"', 1, 1));
        return RecordingInet::Outcome{};
    };
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(counts, (QStringList{"0", "1"}));
    QCOMPARE(PanelDriver::Entries(Driver->Files()), (QStringList{"a", "b"}));
    QCOMPARE(Driver->LocalCount(), QString("2"));
}

void ReceiveTest::TheSessionEndsAfterTheLastFileWhenWished()
{
    Driver->Connect({"a", "b"});
    PanelDriver::Select(Driver->Remote(), {0, 1});
    Driver->Control<QAbstractButton>("Check1").setChecked(true);
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), Received({"a", "b"}) + QStringList{"CLOSE"});
    QVERIFY(Driver->Control<QAbstractButton>("Check1").isEnabled());
}

void ReceiveTest::EachDropCountsItsFilesAnew()
{
    Driver->Connect({"a", "b"});
    Driver->Control<QAbstractButton>("Check1").setChecked(true);
    PanelDriver::Select(Driver->Remote(), {0, 1});
    Driver->Inet1().FailNext(550, "No such file");
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), Received({"a", "b"}));  // one of two is done: not the last

    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), Received({"a", "b", "a", "b"}) + QStringList{"CLOSE"});
}

void ReceiveTest::ADropDuringARunIsDoneFirstAndTheRunGoesOn()
{
    Driver->Connect({"a", "b", "c"});
    Driver->Control<QAbstractButton>("Check1").setChecked(true);
    PanelDriver::Select(Driver->Remote(), {0, 1});
    Driver->During(R"(GET "a" "a")", [&] {
        PanelDriver::LeftClick(Driver->Remote(), 2);
        PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    });
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), Received({"a", "c", "b"}) + QStringList{"CLOSE"});
}

void ReceiveTest::AClosedWindowEndsARunAtOnce()
{
    Driver->Connect({"a", "b"});
    PanelDriver::Select(Driver->Remote(), {0, 1});
    Driver->During(R"(GET "a" "a")", [&] { Driver->Window->close(); });
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(Driver->Operations(), Received({"a"}));
}

void ReceiveTest::TheOptionEntriesAreSaved_data()
{
    QTest::addColumn<QByteArray>("entry");
    QTest::addColumn<QString>("key");
    QTest::newRow("short names") << QByteArray("mnuNT") << "NT";
    QTest::newRow("lower case") << QByteArray("mnuConvertLower") << "LowerCase";
    QTest::newRow("alarm") << QByteArray("mnuAlarm") << "Alarm";
}

void ReceiveTest::TheOptionEntriesAreSaved()
{
    QFETCH(QByteArray, entry);
    QFETCH(QString, key);
    QVERIFY(!Driver->Entry(entry.constData()).isChecked());
    for (const char* value : {"True", "False", "True"}) {
        Driver->Choose(entry.constData());
        QCOMPARE(Driver->Entry(entry.constData()).isChecked(), value == QByteArray("True"));
        Driver->Settings->Save();
        QCOMPARE(Driver->Setting(key), QString(value));
    }
    Driver->Restart();
    QVERIFY(Driver->Entry(entry.constData()).isChecked());
}

void ReceiveTest::ThePictureBesideTheCheckTogglesIt()
{
    auto& check = Driver->Control<QAbstractButton>("Check2");
    QVERIFY(!check.isChecked());
    Driver->Click("Image3");
    QVERIFY(check.isChecked());
    Driver->Click("Image3");
    QVERIFY(!check.isChecked());
}

QTEST_MAIN(ReceiveTest)
#include "receive_test.moc"
