#include "session/transfer_state.h"
#include "support/panel_driver.h"

#include <QAbstractSlider>
#include <QDir>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QPushButton>

/// The watchdog, the exit button, the stopwatch, the request time-out and the alarm.
class PacingTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void TheTimersHaveTheirIntervals();
    void LeftOverStatusesBecomeWaiting_data();
    void LeftOverStatusesBecomeWaiting();
    void OtherStatusesAreLeftAlone_data();
    void OtherStatusesAreLeftAlone();
    void TheWatchdogRunsByItself();

    void ExitClosesTheWindow();
    void ExitCancelsTheRunningCommandFirst();
    void ACommandThatCannotBeCancelledIsReported();
    void CancelTriesAgain();
    void RetryEndsTheProgramAtOnce();
    void ACommandThatEndsUnderTheQuestionLetsTheWindowClose();
    void TheQuestionGoesAwayWithTheWindow();
    void EscapeInTheQuestionTriesAgain();

    void TheStopwatchStartsAtOne();
    void ResetChangesNothing();
    void ShowingItAgainContinuesTheCount();
    void PauseKeepsTheTimeAndTheControls();
    void APausedStopwatchIsHiddenByItsButton();
    void TheTimeIsWrittenWithoutLeadingZeros_data();
    void TheTimeIsWrittenWithoutLeadingZeros();
    void TheStopwatchTicksByItself();

    void TheSliderStoresTheTimeOutAndShowsIt();
    void TheSliderGoesFrom5To300();
    void TheSliderCountsAtTheNextConnect();

    void TwoDelaysEndTogether();
    void TheProgramEndsDuringADelay();
    void TheListingComesAShortDelayAfterTheLastFileSent();

    void TheAlarmPlaysAfterTheLastFile_data();
    void TheAlarmPlaysAfterTheLastFile();
    void WithoutTheOptionNoAlarmPlays();
    void TheAlarmPlaysBeforeTheHangUp();

private:
    QTimer& Timer(const char* name) const { return Driver->Control<QTimer>(name); }

    static void Tick(QTimer& timer, int times = 1)
    {
        for (int tick = 0; tick < times; ++tick) QVERIFY(QMetaObject::invokeMethod(&timer, "timeout"));
    }

    QString Shown() const { return Driver->Control<QLabel>("LblTimer").text(); }

    bool IsShown(const char* name) const { return Driver->Control<QWidget>(name).isVisible(); }

    void BeginEndlessCommand(int deafTo) const;

    std::unique_ptr<PanelDriver> Driver;
};

void PacingTest::init()
{
    Driver = std::make_unique<PanelDriver>();
    Driver->Open();
}

void PacingTest::cleanup()
{
    Driver.reset();
}

void PacingTest::TheTimersHaveTheirIntervals()
{
    const QMap<const char*, int> intervals{{"Timer1", 1500}, {"Timer2", 2100}, {"Timer3", 1000},    {"Timer4", 4000},
                                           {"Timer5", 100},  {"Timer6", 3600}, {"MultiTimer", 1030}};
    for (auto timer = intervals.begin(); timer != intervals.end(); ++timer)
        QCOMPARE(Timer(timer.key()).interval(), timer.value());
    QVERIFY(Timer("Timer2").isActive());
    QVERIFY(!Timer("Timer3").isActive());
    QVERIFY(!Timer("MultiTimer").isActive());
}

void PacingTest::LeftOverStatusesBecomeWaiting_data()
{
    QTest::addColumn<QString>("status");
    QTest::newRow("an error") << "Error! 550: No such file";
    QTest::newRow("a received file without a name") << "File Received!";
    QTest::newRow("the same with blanks around") << "  File Received!  ";
    QTest::newRow("a response") << "Response Received!";
    QTest::newRow("a hang-up") << " Closing Connection. ";
    QTest::newRow("nothing") << "";
    QTest::newRow("blanks") << "   ";
}

void PacingTest::LeftOverStatusesBecomeWaiting()
{
    QFETCH(QString, status);
    Driver->Control<QLabel>("sbFTP").setText(status);
    TransferState& state = Driver->Values->Transfer;
    state.ReceiveInProgress = true;
    state.SendInProgress = true;
    Tick(Timer("Timer2"));
    QCOMPARE(Driver->Status(), QString("Waiting ..."));
    QVERIFY(!state.ReceiveInProgress);
    QVERIFY(!state.SendInProgress);
}

void PacingTest::OtherStatusesAreLeftAlone_data()
{
    QTest::addColumn<QString>("status");
    QTest::newRow("connected") << "Connected!";
    QTest::newRow("a received file") << "\"a\" - File Received!";
    QTest::newRow("waiting") << "Waiting...";
    QTest::newRow("a completed response") << "Response Completed!";
    QTest::newRow("an error in the midst") << "No Error";
}

void PacingTest::OtherStatusesAreLeftAlone()
{
    QFETCH(QString, status);
    Driver->Control<QLabel>("sbFTP").setText(status);
    TransferState& state = Driver->Values->Transfer;
    state.ReceiveInProgress = true;
    state.SendInProgress = true;
    Tick(Timer("Timer2"));
    QCOMPARE(Driver->Status(), status);
    QVERIFY(state.ReceiveInProgress);
    QVERIFY(state.SendInProgress);
}

void PacingTest::TheWatchdogRunsByItself()
{
    Driver->Connect({"a"});
    Driver->Inet1().FailNext(550, "No");
    Driver->Click("Command4");
    QTRY_COMPARE(Driver->Status(), QString("Waiting ..."));
}

void PacingTest::ExitClosesTheWindow()
{
    Driver->Connect({"a"});
    Driver->Click("Command2");
    QVERIFY(!Driver->Window->isVisible());
    QCOMPARE(Driver->Quits, 1);
    QCOMPARE(Driver->Inet1().Lines, QStringList());
    QVERIFY(Driver->Setting("SaveDrive") != "(absent)");
}

void PacingTest::ExitCancelsTheRunningCommandFirst()
{
    Driver->Connect({"a"});
    Driver->Inet1().Hold();
    Driver->Control<QComboBox>("txtURL").setEditText("ftp://other");
    Driver->Click("cmdConnect");
    QVERIFY(Driver->Inet1().StillExecuting());
    Driver->Inet1().Forget();
    Driver->Click("Command2");
    QCOMPARE(Driver->Inet1().Lines, QStringList{"Cancel"});
    QVERIFY(!Driver->Window->isVisible());
    QCOMPARE(Driver->Questions.Texts(), QStringList());
    QCOMPARE(Driver->Quits, 1);
}

void PacingTest::BeginEndlessCommand(int deafTo) const
{
    Driver->Inet1().Hold();
    Driver->Inet1().DeafToCancels = deafTo;
    // Begun without anybody who waits for it.
    Driver->Inet1().Execute("ftp://host", "DIR");
    Driver->Inet1().Forget();
}

void PacingTest::ACommandThatCannotBeCancelledIsReported()
{
    BeginEndlessCommand(1);
    Driver->Click("Command2");
    QCOMPARE(Driver->Questions.Questions.size(), 1U);
    const Question& question = Driver->Questions.Questions.front();
    QCOMPARE(question.Text, QString("Cannot cancel last command. Still executing."));
    QCOMPARE(question.Title, QString("Cancel error"));
    QCOMPARE(question.Sign, Question::Critical);
    QCOMPARE(question.Choice, Question::RetryCancel);
    QVERIFY(question.Foreground);
}

void PacingTest::CancelTriesAgain()
{
    BeginEndlessCommand(3);
    Driver->Questions.Answers = {Answer::Cancel, Answer::Cancel, Answer::Cancel};
    Driver->Click("Command2");
    QCOMPARE(Driver->Inet1().Lines, (QStringList{"Cancel", "Cancel", "Cancel", "Cancel"}));
    QCOMPARE(Driver->Questions.Questions.size(), 3U);
    QCOMPARE(Driver->Ends, 0);
    QCOMPARE(Driver->Quits, 1);
    QVERIFY(!Driver->Window->isVisible());
}

void PacingTest::RetryEndsTheProgramAtOnce()
{
    BeginEndlessCommand(1);
    Driver->Questions.Answers = {Answer::Retry};
    Driver->Click("Command2");
    QCOMPARE(Driver->Ends, 1);
    QCOMPARE(Driver->Quits, 0);
    QCOMPARE(Driver->Inet1().Lines, QStringList{"Cancel"});
    QVERIFY(!Driver->Window->isVisible());
    QCOMPARE(Driver->Setting("SaveDrive"), QString("(absent)"));
}

void PacingTest::ACommandThatEndsUnderTheQuestionLetsTheWindowClose()
{
    BeginEndlessCommand(1);
    Driver->Questions.Reply = [this](const Question&) {
        Driver->Inet1().Complete();
        return Answer::Cancel;
    };
    Driver->Click("Command2");
    QCOMPARE(Driver->Inet1().Lines, QStringList{"Cancel"});
    QCOMPARE(Driver->Quits, 1);
}

void PacingTest::TheQuestionGoesAwayWithTheWindow()
{
    Driver.reset();
    Driver = std::make_unique<PanelDriver>();
    Driver->UseMessageBoxes = true;
    Driver->Open();
    BeginEndlessCommand(1'000'000);
    auto* look = new QTimer(Driver->Window.get());
    connect(look, &QTimer::timeout, look, [this, look] {
        if (Driver->Window->findChild<QMessageBox*>() == nullptr) return;
        look->stop();
        QVERIFY(Driver->Window->close());
    });
    look->start(0);
    Driver->Click("Command2");
    QVERIFY(!Driver->Window->isVisible());
    QCOMPARE(Driver->Ends, 0);
    QCOMPARE(Driver->Quits, 1);
}

void PacingTest::EscapeInTheQuestionTriesAgain()
{
    Driver.reset();
    Driver = std::make_unique<PanelDriver>();
    Driver->UseMessageBoxes = true;
    Driver->Open();
    BeginEndlessCommand(1);
    auto* look = new QTimer(Driver->Window.get());
    connect(look, &QTimer::timeout, look, [this, look] {
        auto* box = Driver->Window->findChild<QMessageBox*>();
        if (box == nullptr) return;
        look->stop();
        QCOMPARE(box->icon(), QMessageBox::Critical);
        QVERIFY(box->button(QMessageBox::Retry) != nullptr && box->button(QMessageBox::Cancel) != nullptr);
        QTest::keyClick(box, Qt::Key_Escape);
    });
    look->start(0);
    Driver->Click("Command2");
    QCOMPARE(Driver->Inet1().Lines, (QStringList{"Cancel", "Cancel"}));
    QCOMPARE(Driver->Ends, 0);
    QCOMPARE(Driver->Quits, 1);
}

void PacingTest::TheStopwatchStartsAtOne()
{
    for (const char* name : {"LblTimer", "cmdPause", "Command13"}) QVERIFY(!IsShown(name));
    Driver->Click("Command11");
    for (const char* name : {"LblTimer", "cmdPause", "Command13"}) QVERIFY(IsShown(name));
    QVERIFY(Timer("Timer3").isActive());
    QCOMPARE(Shown(), QString("1"));
    Driver->Click("Command11");
    for (const char* name : {"LblTimer", "cmdPause", "Command13"}) QVERIFY(!IsShown(name));
    QVERIFY(!Timer("Timer3").isActive());
}

void PacingTest::ResetChangesNothing()
{
    Driver->Click("Command11");
    Tick(Timer("Timer3"), 4);
    Driver->Click("Command13");
    QCOMPARE(Shown(), QString("5"));
    QVERIFY(Timer("Timer3").isActive());
    Tick(Timer("Timer3"));
    QCOMPARE(Shown(), QString("6"));
}

void PacingTest::ShowingItAgainContinuesTheCount()
{
    Driver->Click("Command11");
    Tick(Timer("Timer3"), 4);
    Driver->Click("Command11");
    Driver->Click("Command11");
    QCOMPARE(Shown(), QString("6"));
}

void PacingTest::PauseKeepsTheTimeAndTheControls()
{
    Driver->Click("Command11");
    Driver->Click("cmdPause");
    QVERIFY(!Timer("Timer3").isActive());
    QCOMPARE(Shown(), QString("1"));
    for (const char* name : {"LblTimer", "cmdPause", "Command13"}) QVERIFY(IsShown(name));
    Driver->Click("cmdPause");
    QVERIFY(Timer("Timer3").isActive());
    QCOMPARE(Shown(), QString("1"));
}

void PacingTest::APausedStopwatchIsHiddenByItsButton()
{
    Driver->Click("Command11");
    Driver->Click("cmdPause");
    Driver->Click("Command11");
    QVERIFY(!IsShown("LblTimer"));
    QVERIFY(!Timer("Timer3").isActive());
    Driver->Click("Command11");
    QVERIFY(IsShown("LblTimer"));
    QCOMPARE(Shown(), QString("2"));
}

void PacingTest::TheTimeIsWrittenWithoutLeadingZeros_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("59 s") << 59 << "59";
    QTest::newRow("a minute") << 60 << "1 : 0";
    QTest::newRow("a minute and five") << 65 << "1 : 5";
    QTest::newRow("59 minutes") << 3599 << "59 : 59";
    QTest::newRow("an hour") << 3600 << "1 : 0 : 0";
    QTest::newRow("an hour and more") << 3600 + 62 << "1 : 1 : 2";
    QTest::newRow("a day and a second") << 24 * 3600 + 1 << "24 : 0 : 1";
}

void PacingTest::TheTimeIsWrittenWithoutLeadingZeros()
{
    QFETCH(int, seconds);
    QFETCH(QString, text);
    Driver->Click("Command11");
    Tick(Timer("Timer3"), seconds - 1);
    QCOMPARE(Shown(), text);
}

void PacingTest::TheStopwatchTicksByItself()
{
    Driver->Click("Command11");
    QTRY_COMPARE(Shown(), QString("2"));
}

void PacingTest::TheSliderStoresTheTimeOutAndShowsIt()
{
    auto& slider = Driver->Control<QAbstractSlider>("Slider1");
    slider.setFocus();
    QTest::keyClick(&slider, Qt::Key_Right);
    QCOMPARE(slider.value(), 31);
    QCOMPARE(Driver->Control<QLabel>("SlideVal").text(), QString("31"));
    QCOMPARE(Driver->Settings->Read("Timeout", ""), QString("31"));
    Driver->Restart();
    QCOMPARE(Driver->Control<QAbstractSlider>("Slider1").value(), 31);
    QCOMPARE(Driver->Control<QLabel>("SlideVal").text(), QString("31"));
}

void PacingTest::TheSliderGoesFrom5To300()
{
    auto& slider = Driver->Control<QAbstractSlider>("Slider1");
    QTest::keyClick(&slider, Qt::Key_Home);
    QCOMPARE(Driver->Control<QLabel>("SlideVal").text(), QString("5"));
    QTest::keyClick(&slider, Qt::Key_End);
    QCOMPARE(Driver->Control<QLabel>("SlideVal").text(), QString("300"));
    QCOMPARE(Driver->Settings->Read("Timeout", ""), QString("300"));
}

void PacingTest::TheSliderCountsAtTheNextConnect()
{
    Driver->Connect({"a"});
    Driver->Control<QAbstractSlider>("Slider1").setValue(77);
    QCOMPARE(Driver->Inet1().Lines, QStringList());
    Driver->Click("cmdConnect");
    QVERIFY(Driver->Inet1().Lines.contains("RequestTimeout = 77"));
}

// The first erasing is over when the second one, begun in its delay, is.
void PacingTest::TwoDelaysEndTogether()
{
    Driver->Connect({"a"});
    PanelDriver::LeftClick(Driver->Remote(), 0);
    Driver->Questions.Reply = [](const Question&) { return Answer::Yes; };
    QElapsedTimer since;
    QTimer look;
    connect(&look, &QTimer::timeout, this, [&] {
        if (!Timer("MultiTimer").isActive()) return;
        look.stop();
        since.start();
        QCOMPARE(Timer("MultiTimer").interval(), 1100);
        Driver->Click("Command7");
        QCOMPARE(Timer("MultiTimer").interval(), 0);
    });
    look.start(1);
    Driver->Click("Command7");
    QVERIFY(since.isValid());
    QVERIFY2(since.elapsed() >= 1000, qPrintable(QString::number(since.elapsed())));
    QVERIFY(!Timer("MultiTimer").isActive());
    QCOMPARE(Driver->Operations(), (QStringList{"DELETE \"a\"", "DELETE \"a\"", "DIR", "DIR"}));
}

void PacingTest::TheProgramEndsDuringADelay()
{
    Driver->Connect({"a"});
    PanelDriver::LeftClick(Driver->Remote(), 0);
    Driver->Questions.Answers = {Answer::Yes};
    int over = 0;
    connect(&Timer("MultiTimer"), &QTimer::timeout, this, [&over] { ++over; });
    bool closed = false;
    auto* look = new QTimer(Driver->Window.get());
    connect(look, &QTimer::timeout, look, [&, look] {
        if (!Timer("MultiTimer").isActive()) return;
        look->stop();
        closed = Driver->Window->close();
    });
    look->start(0);
    Driver->Click("Command7");
    QVERIFY(closed);
    QCOMPARE(over, 0);
    QCOMPARE(Driver->Operations(), QStringList{"DELETE \"a\""});
}

void PacingTest::TheListingComesAShortDelayAfterTheLastFileSent()
{
    Driver->MakeFiles({"a", "b"});
    Driver->Restart();
    Driver->Connect({"old"});
    int over = 0;
    connect(&Timer("MultiTimer"), &QTimer::timeout, this, [&over] { ++over; });
    QList<int> delays;
    connect(&Driver->Inet1(), &Inet::StateChanged, this, [&](int state) {
        if (state == Inet::Requesting) delays += std::exchange(over, 0);
    });
    Driver->Files().selectAll();
    Driver->Click("Image1");
    Driver->WaitUntilIdle();
    QCOMPARE(Driver->Operations().size(), 3);
    QCOMPARE(delays, (QList<int>{0, 0, 1}));
}

void PacingTest::TheAlarmPlaysAfterTheLastFile_data()
{
    QTest::addColumn<bool>("sending");
    QTest::newRow("receiving") << false;
    QTest::newRow("sending") << true;
}

void PacingTest::TheAlarmPlaysAfterTheLastFile()
{
    QFETCH(bool, sending);
    Driver->MakeFiles({"a", "b"});
    Driver->Store("Alarm", "True");
    Driver->Restart();
    Driver->Choose("mnuUNIX");
    Driver->Connect({"a", "b"});
    (sending ? Driver->Files() : Driver->Remote()).selectAll();
    QList<qsizetype> played;
    connect(&Driver->Inet1(), &Inet::StateChanged, this, [&](int state) {
        if (state == Inet::ResponseCompleted) played += Driver->Sounds.size();
    });
    Driver->Click(sending ? "Image1" : "Image2");
    QCOMPARE(Driver->Sounds, QStringList{Driver->HomeFolder() + QDir::separator() + "Alarm.WAV"});
    QCOMPARE(played.first(2), (QList<qsizetype>{0, 1}));
}

void PacingTest::WithoutTheOptionNoAlarmPlays()
{
    Driver->MakeFile("a");
    Driver->Restart();
    Driver->Choose("mnuUNIX");
    Driver->Connect({"b"});
    Driver->Remote().selectAll();
    Driver->Click("Image2");
    Driver->Files().selectAll();
    Driver->Click("Image1");
    QVERIFY(Driver->Operations().size() > 2);
    QCOMPARE(Driver->Sounds, QStringList());
}

void PacingTest::TheAlarmPlaysBeforeTheHangUp()
{
    Driver->Store("Alarm", "True");
    Driver->Restart();
    Driver->Choose("mnuUNIX");
    Driver->Connect({"a"});
    Driver->Remote().selectAll();
    Driver->Control<QAbstractButton>("Check1").setChecked(true);
    qsizetype atHangUp = -1;
    connect(&Driver->Inet1(), &Inet::StateChanged, this, [&](int state) {
        if (state == Inet::Disconnecting) atHangUp = Driver->Sounds.size();
    });
    Driver->Click("Image2");
    Driver->WaitUntilIdle();
    QVERIFY(Driver->Operations().contains("CLOSE"));
    QCOMPARE(atHangUp, 1);
}

QTEST_MAIN(PacingTest)
#include "pacing_test.moc"
