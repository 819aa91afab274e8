#include "base/formats.h"
#include "support/window_fixture.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>

class StateChangesTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void EveryStateIsShownAndLogged_data();
    void EveryStateIsShownAndLogged();
    void RequestingNeverShowsTimingOut();
    void OtherNumbersDoNothing();
    void OnlyTheseStatesBeep_data();
    void OnlyTheseStatesBeep();
    void AnErrorIsReportedWithCodeAndText();
    void AnErrorWithoutARunTimeErrorLogsTwoAndEightBlanks();
    void AnErrorNamesTheLastRunTimeError();
    void TheseStatesEndATransfer_data();
    void TheseStatesEndATransfer();
    void TheIdleStateAndAnErrorResetThePointer_data();
    void TheIdleStateAndAnErrorResetThePointer();
    void WhileReceivingTheCaptionStays();
    void WhileSendingTheCaptionStays();
    void ACompletedListingFillsThePanelAndBlanksTheStatus();
    void ACompletedListingIsLoggedAsBlanksAndTheTime();
    void WithListingsSkippedThePanelStays();
    void ACommandWithoutAListingLeavesThePanel();
    void AReceivedFileIsNamed();
    void ASentFileIsNamed();
    void AnErrorDuringAReceiveLeavesNoReceivedMessage();
    void EveryKindHasItsMessage_data();
    void EveryKindHasItsMessage();
    void TheWholeFirstSessionIsLogged();
    void WhatTheComponentRemarksIsLogged();
    void ControlCharactersInAnErrorAreShownAsMarks();

private:
    void Connect();
    QStringList Remote() const;

    QString Timed(const QString& text) const { return text + QString(8, ' ') + TimeOfDay(Program->Now); }

    std::unique_ptr<WindowFixture> Program;
};

void StateChangesTest::init()
{
    Program = std::make_unique<WindowFixture>();
    Program->Open();
}

void StateChangesTest::cleanup()
{
    Program.reset();
}

void StateChangesTest::Connect()
{
    Program->Control<QComboBox>("txtURL").setEditText("ftp://files.example");
    Program->Click("cmdConnect");
    QTRY_VERIFY(!Program->Inet1().StillExecuting());
}

QStringList StateChangesTest::Remote() const
{
    QStringList lines;
    const auto* model = Program->Control<QAbstractItemView>("lstRemoteFiles").model();
    for (int row = 0; row < model->rowCount(); ++row) lines += model->index(row, 0).data().toString();
    return lines;
}

void StateChangesTest::EveryStateIsShownAndLogged_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << 0 << "Waiting...";
    QTest::newRow("1") << 1 << "Resolving Host";
    QTest::newRow("2") << 2 << "Host Resolved";
    QTest::newRow("3") << 3 << "Connecting...";
    QTest::newRow("4") << 4 << "Connected!";
    QTest::newRow("5") << 5 << "Requesting...";
    QTest::newRow("6") << 6 << "Request Sent";
    QTest::newRow("7") << 7 << "Receiving Response...";
    QTest::newRow("8") << 8 << "Response Received!";
    QTest::newRow("9") << 9 << "Disconnecting...";
    QTest::newRow("10") << 10 << "Disconnected";
}

void StateChangesTest::EveryStateIsShownAndLogged()
{
    QFETCH(int, state);
    QFETCH(QString, text);
    Program->Inet1().Report(state);
    QCOMPARE(Program->Status(), text);
    QCOMPARE(Program->Log().mid(1), QStringList(Timed(text)));
}

void StateChangesTest::RequestingNeverShowsTimingOut()
{
    Program->Values->Transfer.OperationKind = 5;
    for (int times = 0; times < 3; ++times) Program->Inet1().Report(Inet::Requesting);
    QCOMPARE(Program->Status(), QString("Requesting..."));
    QCOMPARE(Program->Log().mid(1), QStringList(3, Timed("Requesting...")));
}

void StateChangesTest::OtherNumbersDoNothing()
{
    for (const int state : {-1, 13, 99}) Program->Inet1().Report(state);
    QCOMPARE(Program->Status(), QString("Waiting ..."));
    QCOMPARE(Program->Log().size(), 1);
    QCOMPARE(Program->Beeps, 0);
}

void StateChangesTest::OnlyTheseStatesBeep_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<int>("beeps");
    for (int state = 0; state <= 12; ++state) {
        const int beeps = state == 4 || state == 10 ? 1 : state == 11 ? 2 : 0;
        QTest::newRow(qPrintable(QString::number(state))) << state << beeps;
    }
}

void StateChangesTest::OnlyTheseStatesBeep()
{
    QFETCH(int, state);
    QFETCH(int, beeps);
    Program->Values->Transfer.OperationKind = EraseKind;
    Program->Inet1().Report(state);
    QCOMPARE(Program->Beeps, beeps);
}

void StateChangesTest::AnErrorIsReportedWithCodeAndText()
{
    Program->Inet1().SetResponse(550, "No such file.");
    Program->Inet1().Report(Inet::Error);
    QCOMPARE(Program->Status(), QString("Error! 550: No such file."));
}

void StateChangesTest::AnErrorWithoutARunTimeErrorLogsTwoAndEightBlanks()
{
    Program->Values->Errors.Clear();
    Program->Inet1().SetResponse(12007, "The name could not be resolved.");
    Program->Inet1().Report(Inet::Error);
    QCOMPARE(Program->Log().last(), Timed("Error! 12007: The name could not be resolved.  "));
}

void StateChangesTest::AnErrorNamesTheLastRunTimeError()
{
    Program->Values->Errors.Caught(RuntimeError("File not found"));
    Program->Inet1().SetResponse(550, "No such file.");
    Program->Inet1().Report(Inet::Error);
    QCOMPARE(Program->Log().last(), Timed("Error! 550: No such file.  File not found"));
    QCOMPARE(Program->Status(), QString("Error! 550: No such file."));
}

void StateChangesTest::TheseStatesEndATransfer_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<bool>("ends");
    for (int state = 0; state <= 11; ++state)
        QTest::newRow(qPrintable(QString::number(state))) << state << (state == 0 || state == 10 || state == 11);
}

void StateChangesTest::TheseStatesEndATransfer()
{
    QFETCH(int, state);
    QFETCH(bool, ends);
    Program->Values->Transfer.ReceiveInProgress = true;
    Program->Values->Transfer.SendInProgress = true;
    Program->Inet1().Report(state);
    QCOMPARE(Program->Values->Transfer.ReceiveInProgress, !ends);
    QCOMPARE(Program->Values->Transfer.SendInProgress, !ends);
}

void StateChangesTest::TheIdleStateAndAnErrorResetThePointer_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<bool>("resets");
    for (int state = 0; state <= 12; ++state)
        QTest::newRow(qPrintable(QString::number(state))) << state << (state == 0 || state == 11);
}

void StateChangesTest::TheIdleStateAndAnErrorResetThePointer()
{
    QFETCH(int, state);
    QFETCH(bool, resets);
    Program->Inet1().Hold();
    Program->Click("cmdConnect");
    QVERIFY(QApplication::overrideCursor() != nullptr);
    Program->Values->Transfer.OperationKind = EraseKind;
    Program->Inet1().Report(state);
    QCOMPARE(QApplication::overrideCursor() == nullptr, resets);
}

void StateChangesTest::WhileReceivingTheCaptionStays()
{
    TransferState& transfer = Program->Values->Transfer;
    transfer.ReceiveInProgress = true;
    transfer.CurrentFileName = "\"a b.txt\"";
    auto& whenDone = Program->Control<QCheckBox>("Check1");
    for (const int state : {5, 6, 7, 8}) {
        whenDone.setEnabled(false);
        Program->Inet1().Report(state);
        QCOMPARE(Program->Status(), QString("Receiving File:  \"a b.txt\""));
        QVERIFY(whenDone.isEnabled());
    }
    QCOMPARE(Program->Log().mid(1), (QStringList{Timed("Requesting..."), Timed("Request Sent"),
                                                 Timed("Receiving Response..."), Timed("Response Received!")}));
    QCOMPARE(QApplication::overrideCursor()->shape(), Qt::BusyCursor);
}

void StateChangesTest::WhileSendingTheCaptionStays()
{
    TransferState& transfer = Program->Values->Transfer;
    transfer.SendInProgress = true;
    transfer.CurrentFileName = "\"a b.txt\"";
    auto& whenDone = Program->Control<QCheckBox>("Check1");
    whenDone.setEnabled(false);
    Program->Inet1().Report(Inet::ReceivingResponse);
    QCOMPARE(Program->Status(), QString("Sending File:  \"a b.txt\""));
    QCOMPARE(Program->Log().last(), Timed("Receiving Response..."));
    QVERIFY(whenDone.isEnabled());
    QCOMPARE(QApplication::overrideCursor()->shape(), Qt::BusyCursor);
}

void StateChangesTest::ACompletedListingFillsThePanelAndBlanksTheStatus()
{
    Program->Inet1().Replies["DIR"] = "a\r\nb\r\n";
    Connect();
    QCOMPARE(Remote(), (QStringList{"a", "b"}));
    QCOMPARE(Program->Status(), QString(""));
    QVERIFY(!Program->Control<QCheckBox>("Check1").isEnabled());
    QCOMPARE(Program->Values->Transfer.ResponseMessage, QString());
}

void StateChangesTest::ACompletedListingIsLoggedAsBlanksAndTheTime()
{
    Program->Inet1().Replies["DIR"] = "a\r\n";
    Connect();
    QCOMPARE(Program->Log().last(), QString(8, ' ') + TimeOfDay(Program->Now));
}

void StateChangesTest::WithListingsSkippedThePanelStays()
{
    Program->Inet1().Replies["DIR"] = "a\r\nb\r\n";
    Connect();
    Program->Inet1().Replies["DIR"] = "c\r\n";
    TransferState& transfer = Program->Values->Transfer;
    transfer.SkipListing = true;
    Program->Control<QCheckBox>("Check1").setEnabled(true);
    QVERIFY(transfer.OperationKind == ListingKind && transfer.ListingExpected);
    Program->Inet1().Execute("ftp://files.example", "DIR");
    QTRY_VERIFY(!Program->Inet1().StillExecuting());
    QCOMPARE(Remote(), (QStringList{"a", "b"}));
    QVERIFY(!Program->Control<QCheckBox>("Check1").isEnabled());
}

void StateChangesTest::ACommandWithoutAListingLeavesThePanel()
{
    Program->Inet1().Replies["DIR"] = "a\r\nb\r\n";
    Connect();
    Program->Control<QCheckBox>("Check1").setEnabled(true);
    Program->Values->Transfer.ListingExpected = false;
    Program->Inet1().Execute("ftp://files.example", "CDUP");
    QTRY_VERIFY(!Program->Inet1().StillExecuting());
    QCOMPARE(Remote(), (QStringList{"a", "b"}));
    QVERIFY(!Program->Control<QCheckBox>("Check1").isEnabled());
    QCOMPARE(Program->Log().last(), QString(8, ' ') + TimeOfDay(Program->Now));
}

void StateChangesTest::AReceivedFileIsNamed()
{
    TransferState& transfer = Program->Values->Transfer;
    transfer.OperationKind = ReceiveKind;
    transfer.ReceiveInProgress = true;
    transfer.SelectedCount = 2;
    transfer.CurrentFileName = "\"new.txt\"";
    QFile file(Program->LocalFolder() + "/new.txt");
    QVERIFY(file.open(QIODevice::WriteOnly));
    Program->Inet1().Report(Inet::ResponseCompleted);
    QCOMPARE(Program->Status(), QString("\"new.txt\" - File Received!"));
    QCOMPARE(Program->Log().mid(1), (QStringList{Timed("Response Completed!"), Timed("\"new.txt\" - File Received!")}));
    QVERIFY(!transfer.ReceiveInProgress);
    // The local list has been refreshed.
    QCOMPARE(Program->Control<QAbstractItemView>("List1").model()->rowCount(), 1);
}

void StateChangesTest::ASentFileIsNamed()
{
    TransferState& transfer = Program->Values->Transfer;
    transfer.OperationKind = SendKind;
    transfer.SendInProgress = true;
    transfer.SelectedCount = 2;
    transfer.CurrentFileName = "\"a.txt\"";
    Program->Inet1().Report(Inet::ResponseCompleted);
    QCOMPARE(Program->Status(), QString("\"a.txt\" - File Sent!"));
    QCOMPARE(Program->Log().last(), Timed("\"a.txt\" - File Sent!"));
    QVERIFY(!transfer.SendInProgress);
}

void StateChangesTest::AnErrorDuringAReceiveLeavesNoReceivedMessage()
{
    Connect();
    TransferState& transfer = Program->Values->Transfer;
    transfer.OperationKind = ReceiveKind;
    transfer.ReceiveInProgress = true;
    transfer.CurrentFileName = "\"a.txt\"";
    Program->Inet1().FailNext(550, "Not found.");
    Program->Inet1().Execute("ftp://files.example", "GET \"a.txt\" \"a.txt\"");
    QTRY_VERIFY(!Program->Inet1().StillExecuting());
    QVERIFY(!transfer.ReceiveInProgress);
    QCOMPARE(transfer.OperationKind, int(ReceiveKind));
    QCOMPARE(Program->Status(), QString("Error! 550: Not found."));
    QVERIFY(Program->Log().filter("File Received!").isEmpty());
}

void StateChangesTest::EveryKindHasItsMessage_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("text");
    QTest::newRow("erase") << 3 << "File has been erased.";
    QTest::newRow("close") << 4 << "Closing Connection.";
    QTest::newRow("time-out") << 5 << "Timing Out!";
    QTest::newRow("another") << 6 << "";
}

void StateChangesTest::EveryKindHasItsMessage()
{
    QFETCH(int, kind);
    QFETCH(QString, text);
    Program->Values->Transfer.OperationKind = kind;
    Program->Inet1().Report(Inet::ResponseCompleted);
    QCOMPARE(Program->Status(), text);
    QCOMPARE(Program->Log().mid(1), (QStringList{Timed("Response Completed!"), Timed(text)}));
}

void StateChangesTest::TheWholeFirstSessionIsLogged()
{
    Connect();
    Program->Click("Command1");
    QCOMPARE(Program->Log().mid(1),
             (QStringList{
                 "Connect to FTP site  -  ftp://files.example        " + GeneralDateTime(Program->Now),
                 Timed("Requesting..."),
                 Timed("Request Sent"),
                 Timed("Receiving Response..."),
                 Timed("Response Received!"),
                 Timed("Response Completed!"),
                 Timed(""),
                 Timed("Disconnecting..."),
                 Timed("Disconnected"),
                 Timed("Response Completed!"),
                 Timed("Closing Connection."),
                 "&Disconnect        " + GeneralDateTime(Program->Now),
             }));
}

void StateChangesTest::WhatTheComponentRemarksIsLogged()
{
    Program->Inet1().Remark("Taken by the name inside the line: a.txt");
    QCOMPARE(Program->Log().last(), "Taken by the name inside the line: a.txt        " + GeneralDateTime(Program->Now));
    QCOMPARE(Program->Status(), QString("Waiting ..."));
}

void StateChangesTest::ControlCharactersInAnErrorAreShownAsMarks()
{
    Program->Inet1().SetResponse(550, "a\x1B[31mb\r\nc");
    Program->Inet1().Report(Inet::Error);
    const QString mark(QChar::ReplacementCharacter);
    QCOMPARE(Program->Status(), "Error! 550: a" + mark + "[31mb" + mark + mark + "c");
}

QTEST_MAIN(StateChangesTest)
#include "state_changes_test.moc"
