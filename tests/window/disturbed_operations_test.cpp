#include "support/operations_bench.h"

#include <QDialog>
#include <QMessageBox>
#include <QPushButton>

/// Operations on the server that are refused, overtaken or cut short.
class DisturbedOperationsTest : public QObject, OperationsBench {
    Q_OBJECT

private slots:

    void init() { SetUp(); }

    void cleanup() { TearDown(); }

    void WithoutAHighlightedLineNothingIsSent();
    void ARefusalIsFollowedByTheListingAndClaimsNothing_data();
    void ARefusalIsFollowedByTheListingAndClaimsNothing();
    void AnOperationWaitsForTheOneBefore();
    void AHangUpDuringAnOperationIsNotUndone_data();
    void AHangUpDuringAnOperationIsNotUndone();
    void AComponentThatRefusesIsReported();
    void ASecondOperationDuringAWaitIsDoneFirst();

    void ClosingTheWindowUnderAQuestionEndsTheErasing();
    void ClosingTheWindowUnderTheDialogSendsNothing();
    void ClosingTheWindowUnderAnOperationEndsIt_data();
    void ClosingTheWindowUnderAnOperationEndsIt();
};

void DisturbedOperationsTest::WithoutAHighlightedLineNothingIsSent()
{
    Driver->Connect({});
    for (const char* button : {"Command6", "Command7", "Command9", "Command5", "Command16"}) Driver->Click(button);
    QTest::keyClick(&Driver->Remote(), Qt::Key_Delete);
    QCOMPARE(Driver->Operations(), QStringList());
    QCOMPARE(Driver->Prompt->Titles, QStringList());
    QCOMPARE(Driver->Questions.Texts(), QStringList());
    QCOMPARE(Driver->Edited, QStringList());
}

namespace {

void Buttons()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("claim");
    QTest::newRow("make") << "Command10"
                          << "MKDIR \"new\""
                          << "Created";
    QTest::newRow("rename") << "Command6"
                            << R"(RENAME "a" "new")"
                            << "Renamed";
    QTest::newRow("erase") << "Command7"
                           << "DELETE \"a\""
                           << "Erased";
    QTest::newRow("erase folder") << "Command9"
                                  << "RMDIR \"a\""
                                  << "Erased";
    QTest::newRow("Delete key") << ""
                                << "DELETE \"a\""
                                << "Erased";
    QTest::newRow("read") << "Command5"
                          << "GET \"a\" "
                          << "Read File";
    QTest::newRow("size") << "Command16"
                          << "SIZE \"a\""
                          << "File size";
}

}  // namespace

void DisturbedOperationsTest::ARefusalIsFollowedByTheListingAndClaimsNothing_data()
{
    Buttons();
}

void DisturbedOperationsTest::ARefusalIsFollowedByTheListingAndClaimsNothing()
{
    QFETCH(QString, button);
    QFETCH(QString, operation);
    QFETCH(QString, claim);
    ConnectWith(*Driver, {"a"});
    Type("new");
    Driver->Questions.Reply = [](const Question&) { return Answer::Yes; };
    Driver->Inet1().FailNext(550, "No, thank you");
    if (button.isEmpty())
        QTest::keyClick(&Driver->Remote(), Qt::Key_Delete);
    else
        Driver->Click(qPrintable(button));
    const bool changes = button != "Command5" && button != "Command16";
    QCOMPARE(Driver->Operations(), changes ? QStringList({operation, "DIR"}) : QStringList{operation});
    QCOMPARE(Driver->Status(), QString("Error! 550: No, thank you"));
    QCOMPARE(Driver->Log().filter("Error! 550: No, thank you").size(), 1);
    QCOMPARE(Driver->Log().filter(claim), QStringList());
    QCOMPARE(Driver->Edited, QStringList());
    QVERIFY(IsNormalPointer());
    QVERIFY(!Driver->Values->Transfer.SkipListing);
}

void DisturbedOperationsTest::AnOperationWaitsForTheOneBefore()
{
    ConnectWith(*Driver, {"a"});
    Driver->Click("Command4");
    QVERIFY(Driver->Inet1().StillExecuting());
    Type("new");
    Driver->Click("Command10");
    QCOMPARE(Driver->Operations(), (QStringList{"CDUP", "DIR", "MKDIR \"new\"", "DIR"}));
}

void DisturbedOperationsTest::AHangUpDuringAnOperationIsNotUndone_data()
{
    Buttons();
}

void DisturbedOperationsTest::AHangUpDuringAnOperationIsNotUndone()
{
    QFETCH(QString, button);
    QFETCH(QString, operation);
    ConnectWith(*Driver, {"a", "b"});
    if (button == "Command7") PanelDriver::Select(Driver->Remote(), {0, 1});
    Type("new");
    Driver->Questions.Reply = [](const Question&) { return Answer::Yes; };
    Driver->During(operation, [this] { Driver->Click("Command1"); });
    if (button.isEmpty())
        QTest::keyClick(&Driver->Remote(), Qt::Key_Delete);
    else
        Driver->Click(qPrintable(button));
    Driver->WaitUntilIdle();
    QCOMPARE(Driver->Operations(), (QStringList{operation, "CLOSE"}));
    QVERIFY(IsNormalPointer());
}

void DisturbedOperationsTest::AComponentThatRefusesIsReported()
{
    ConnectWith(*Driver, {"a"});
    Driver->Inet1().Refuse("Execute", "Unable to connect");
    Type("new");
    Driver->Click("Command10");
    QCOMPARE(Driver->Status(), QString("Unable to connect"));
    QCOMPARE(Logged("Unable to connect"), 1);
    QVERIFY(IsNormalPointer());
}

void DisturbedOperationsTest::ASecondOperationDuringAWaitIsDoneFirst()
{
    ConnectWith(*Driver, {"a"});
    Type("one");
    Type("two");
    Driver->During("MKDIR \"one\"", [this] { Driver->Click("Command10"); });
    Driver->Click("Command10");
    QCOMPARE(Driver->Operations(), (QStringList{"MKDIR \"one\"", "MKDIR \"two\"", "DIR", "DIR"}));
    QCOMPARE(Logged("Created Folder \"one\""), 1);
    QCOMPARE(Logged("Created Folder \"two\""), 1);
}

void DisturbedOperationsTest::ClosingTheWindowUnderAQuestionEndsTheErasing()
{
    Driver.reset();
    Driver = std::make_unique<PanelDriver>();
    Driver->UseMessageBoxes = true;
    Driver->Open();
    ConnectWith(*Driver, {"a", "b", "c"});
    Driver->Remote().selectAll();
    auto* look = new QTimer(Driver->Window.get());
    connect(look, &QTimer::timeout, look, [this, look] {
        auto* box = Driver->Window->findChild<QMessageBox*>();
        if (box == nullptr) return;
        if (box->text().contains("\"a\"")) {
            box->button(QMessageBox::Yes)->click();
        } else if (box->text().contains("\"b\"")) {
            look->stop();
            QVERIFY(Driver->Window->close());
        }
    });
    look->start(0);
    Driver->Click("Command7");
    QVERIFY(!Driver->Window->isVisible());
    QVERIFY(Driver->Window->findChild<QMessageBox*>() == nullptr);
    QCOMPARE(Driver->Operations(), QStringList{"DELETE \"a\""});
    QCOMPARE(Driver->Beeps, 2);
}

void DisturbedOperationsTest::ClosingTheWindowUnderTheDialogSendsNothing()
{
    Driver.reset();
    Driver = std::make_unique<PanelDriver>();
    Driver->UseDialogs = true;
    Driver->Open();
    ConnectWith(*Driver, {"a"});
    auto* look = new QTimer(Driver->Window.get());
    bool wasOpen = false;
    connect(look, &QTimer::timeout, look, [this, look, &wasOpen] {
        if (Driver->Window->findChild<QDialog*>("frmText") == nullptr) return;
        look->stop();
        wasOpen = true;
        QVERIFY(Driver->Window->close());
    });
    look->start(0);
    Driver->Click("Command6");
    QVERIFY(wasOpen);
    QVERIFY(!Driver->Window->isVisible());
    QVERIFY(Driver->Window->findChild<QDialog*>("frmText") == nullptr);
    QCOMPARE(Driver->Operations(), QStringList());
}

void DisturbedOperationsTest::ClosingTheWindowUnderAnOperationEndsIt_data()
{
    Buttons();
}

void DisturbedOperationsTest::ClosingTheWindowUnderAnOperationEndsIt()
{
    QFETCH(QString, button);
    QFETCH(QString, operation);
    ConnectWith(*Driver, {"a"});
    Type("new");
    Driver->Questions.Reply = [](const Question&) { return Answer::Yes; };
    Driver->Inet1().Hold();
    auto* look = new QTimer(Driver->Window.get());
    connect(look, &QTimer::timeout, look, [this] {
        if (Driver->Inet1().StillExecuting()) Driver->Window->close();
    });
    look->start(0);
    if (button.isEmpty())
        QTest::keyClick(&Driver->Remote(), Qt::Key_Delete);
    else
        Driver->Click(qPrintable(button));
    QVERIFY(!Driver->Window->isVisible());
    QCOMPARE(Driver->Operations(), QStringList{operation});
    QVERIFY(!Driver->Values->Transfer.SkipListing);
}

QTEST_MAIN(DisturbedOperationsTest)
#include "disturbed_operations_test.moc"
