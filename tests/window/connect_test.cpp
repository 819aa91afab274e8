#include "base/formats.h"
#include "support/window_fixture.h"

#include <QAbstractSlider>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>

class ConnectTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void AConnectHandsOverThePropertiesInTheirOrder();
    void WithBareListingsTheAccessTypeGoesFirst();
    void TheProxyIsHandedOverOnlyWhereItIsUsed();
    void WithFullListingsTheProxyIsNotHandedOver();
    void WhatWasChosenReachesTheComponent();
    void AnEmptyPortBoxBecomes21();
    void NoChosenAccessBecomesTheDefault();
    void AnAddressWithBlanksIsTrimmed();
    void OneLineBreakAtTheEndIsCutOff();
    void NamesAndPasswordsAreHandedOverAsTyped();
    void APortThatIsNoNumberIsReportedAndNothingIsListed_data();
    void APortThatIsNoNumberIsReportedAndNothingIsListed();
    void ARefusedPropertyIsReportedAndNothingIsListed();
    void AConnectStoresTheConnectionAtOnce();
    void AConnectStoresNothingWithSavingOff();
    void AConnectIsLoggedWithTheAddressAsTyped();
    void AConnectShowsConnectingAndIsBusy();
    void AConnectEnablesDisconnectWhenDone();
    void AConnectClearsTheLastError();
    void AnEmptyAddressIsHandedOver();
    void ASecondConnectEndsTheFirstSession();
    void EveryConnectAndHangUpIsASessionOfItsOwn();
    void OnlyTheThirdAccessTypeEnablesTheProxy();

    void AHangUpWaitsForTheRunningCommand();
    void AHangUpClosesOnTheComponentsAddress();
    void AHangUpIsLoggedAmpersandIncluded();
    void AHangUpDisablesDisconnectWhenDone();
    void AHangUpIsOfKindClose();
    void AHangUpIgnoresErrors();
    void AHangUpWithoutASessionIsSilent();
    void AConnectDuringAHangUpTakesOver();
    void AListingThatArrivesDuringAHangUpIsNotShown();

private:
    void Type(const QString& url);
    void Connect(const QString& url = "ftp://files.example");
    QStringList Remote() const;

    std::unique_ptr<WindowFixture> Program;
};

void ConnectTest::init()
{
    Program = std::make_unique<WindowFixture>();
    Program->Open();
}

void ConnectTest::cleanup()
{
    Program.reset();
}

void ConnectTest::Type(const QString& url)
{
    Program->Control<QComboBox>("txtURL").setEditText(url);
}

void ConnectTest::Connect(const QString& url)
{
    Type(url);
    Program->Click("cmdConnect");
    QTRY_VERIFY(!Program->Inet1().StillExecuting());
}

QStringList ConnectTest::Remote() const
{
    QStringList lines;
    const auto* model = Program->Control<QAbstractItemView>("lstRemoteFiles").model();
    for (int row = 0; row < model->rowCount(); ++row) lines += model->index(row, 0).data().toString();
    return lines;
}

void ConnectTest::AConnectHandsOverThePropertiesInTheirOrder()
{
    Connect();
    QCOMPARE(Program->Inet1().Lines, (QStringList{
                                         "Cancel",
                                         "Execute  | CLOSE",
                                         "URL = ftp://files.example",
                                         "UserName = ",
                                         "Password = ",
                                         "RemotePort = 21",
                                         "Protocol = 2",
                                         "RequestTimeout = 30",
                                         "Execute ftp://files.example | DIR",
                                     }));
}

void ConnectTest::WithBareListingsTheAccessTypeGoesFirst()
{
    Program->Choose("mnuUNIX");
    Connect();
    QCOMPARE(Program->Inet1().Lines, (QStringList{
                                         "Cancel",
                                         "Execute  | CLOSE",
                                         "AccessType = 0",
                                         "URL = ftp://files.example",
                                         "UserName = ",
                                         "Password = ",
                                         "RemotePort = 21",
                                         "Protocol = 2",
                                         "RequestTimeout = 30",
                                         "Execute ftp://files.example | LS",
                                     }));
}

void ConnectTest::TheProxyIsHandedOverOnlyWhereItIsUsed()
{
    Program->Choose("mnuUNIX");
    Program->Control<QComboBox>("Combo1").setCurrentIndex(1);
    Program->Control<QLineEdit>("txtProxy").setText("proxy.example:3128");
    Connect();
    QVERIFY(Program->Inet1().Lines.contains("AccessType = 1"));
    QVERIFY(Program->Inet1().Lines.filter("Proxy = ").isEmpty());

    Program->Inet1().Forget();
    Program->Control<QComboBox>("Combo1").setCurrentIndex(2);
    Connect();
    QCOMPARE(Program->Inet1().Lines.mid(2, 3),
             (QStringList{"AccessType = 2", "Proxy = proxy.example:3128", "URL = ftp://files.example"}));
}

void ConnectTest::WithFullListingsTheProxyIsNotHandedOver()
{
    Program->Control<QComboBox>("Combo1").setCurrentIndex(2);
    Program->Control<QLineEdit>("txtProxy").setText("proxy.example:3128");
    Connect();
    QVERIFY(Program->Inet1().Lines.filter("Proxy = ").isEmpty());
    QVERIFY(Program->Inet1().Lines.filter("AccessType = ").isEmpty());
    QCOMPARE(Program->Inet1().Operations().last(), QString("DIR"));
}

void ConnectTest::WhatWasChosenReachesTheComponent()
{
    Program->Control<QLineEdit>("txtPort").setText(" 2121 ");
    Program->Control<QAbstractSlider>("Slider1").setValue(45);
    Program->Values->Connection.ProtocolChoice = 4;
    Connect();
    const QStringList& lines = Program->Inet1().Lines;
    QVERIFY(lines.contains("RemotePort = 2121"));
    QVERIFY(lines.contains("RequestTimeout = 45"));
    QVERIFY(lines.contains("Protocol = 4"));
}

void ConnectTest::AnEmptyPortBoxBecomes21()
{
    Program->Control<QLineEdit>("txtPort").clear();
    Connect();
    QCOMPARE(Program->Control<QLineEdit>("txtPort").text(), QString("21"));
    QVERIFY(Program->Inet1().Lines.contains("RemotePort = 21"));
}

void ConnectTest::NoChosenAccessBecomesTheDefault()
{
    auto& access = Program->Control<QComboBox>("Combo1");
    QCOMPARE(access.currentIndex(), -1);
    QCOMPARE(access.count(), 3);
    Connect();
    QCOMPARE(access.currentIndex(), 0);
}

void ConnectTest::AnAddressWithBlanksIsTrimmed()
{
    Connect("  ftp://files.example ");
    QVERIFY(Program->Inet1().Lines.contains("URL = ftp://files.example"));
    QCOMPARE(Program->Values->Transfer.CurrentUrl, QString("ftp://files.example"));
    QCOMPARE(Program->Values->Transfer.CurrentSite, QString("ftp://files.example"));
    QCOMPARE(Program->Values->Connection.SavedUrl, QString("  ftp://files.example "));
}

void ConnectTest::OneLineBreakAtTheEndIsCutOff()
{
    // The box takes no line breaks from the keyboard, but keeps those it is given.
    auto& box = Program->Control<QComboBox>("txtURL");
    box.addItem("ftp://files.example\r\n");
    box.setCurrentIndex(box.count() - 1);
    const QString kept = box.currentText();
    Program->Click("cmdConnect");
    QCOMPARE(Program->Values->Transfer.CurrentSite, kept);
    QCOMPARE(Program->Values->Transfer.CurrentUrl, kept.endsWith('\n') ? kept.chopped(1) : kept);
}

void ConnectTest::NamesAndPasswordsAreHandedOverAsTyped()
{
    Program->Control<QLineEdit>("txtUserName").setText(" ann ");
    Program->Control<QLineEdit>("txtPassword").setText(" $ ");
    Connect();
    QVERIFY(Program->Inet1().Lines.contains("UserName =  ann "));
    QVERIFY(Program->Inet1().Lines.contains("Password =  $ "));
}

void ConnectTest::APortThatIsNoNumberIsReportedAndNothingIsListed_data()
{
    QTest::addColumn<QString>("port");
    QTest::addColumn<QString>("error");
    QTest::newRow("letters") << "abc"
                             << "Type mismatch";
    QTest::newRow("too large") << "70000"
                               << "Overflow";
    QTest::newRow("negative") << "-21"
                              << "Overflow";
}

void ConnectTest::APortThatIsNoNumberIsReportedAndNothingIsListed()
{
    QFETCH(QString, port);
    QFETCH(QString, error);
    Program->Control<QLineEdit>("txtPort").setText(port);
    Connect();
    QCOMPARE(Program->Status(), error);
    QCOMPARE(Program->Log().last(), error);
    QCOMPARE(Program->Inet1().Operations(), QStringList("CLOSE"));
    QCOMPARE(Program->Values->Errors.Description(), error);
    // The pointer stays busy until something else resets it.
    QVERIFY(QApplication::overrideCursor() != nullptr);
}

void ConnectTest::ARefusedPropertyIsReportedAndNothingIsListed()
{
    Program->Inet1().Refuse("Protocol", "Invalid property value");
    Connect();
    QCOMPARE(Program->Status(), QString("Invalid property value"));
    QCOMPARE(Program->Log().last(), QString("Invalid property value"));
    QCOMPARE(Program->Inet1().Operations(), QStringList("CLOSE"));
}

void ConnectTest::AConnectStoresTheConnectionAtOnce()
{
    Program->Control<QLineEdit>("txtUserName").setText("ann");
    Program->Control<QLineEdit>("txtPassword").setText("secret");
    Program->Inet1().Hold();
    Type("ftp://files.example ");
    Program->Click("cmdConnect");
    QVERIFY(Program->Inet1().StillExecuting());
    QCOMPARE(Program->Setting("SaveURL"), QString("ftp://files.example "));
    QCOMPARE(Program->Setting("SaveUser"), QString("ann"));
    QCOMPARE(Program->Setting("SavePass"), QString("secret"));
    QCOMPARE(Program->Setting("SaveProxy"), QString("Enter proxy address here"));
}

void ConnectTest::AConnectStoresNothingWithSavingOff()
{
    Program->Choose("mnuSavFTPAddress");
    Connect();
    QCOMPARE(Program->Setting("SaveURL"), QString(""));
    QCOMPARE(Program->Setting("SaveUser"), QString("(absent)"));
    QCOMPARE(Program->Values->Connection.SavedUrl, QString("ftp://files.example"));
}

void ConnectTest::AConnectIsLoggedWithTheAddressAsTyped()
{
    Type(" ftp://files.example");
    Program->Inet1().Hold();
    Program->Click("cmdConnect");
    QCOMPARE(Program->Log().last(),
             "Connect to FTP site  -   ftp://files.example        " + GeneralDateTime(Program->Now));
}

void ConnectTest::AConnectShowsConnectingAndIsBusy()
{
    Type("ftp://files.example");
    Program->Inet1().Hold();
    Program->Click("cmdConnect");
    QCOMPARE(Program->Status(), QString("Connecting..."));
    QVERIFY(QApplication::overrideCursor() != nullptr);
    QCOMPARE(QApplication::overrideCursor()->shape(), Qt::BusyCursor);
    QCOMPARE(Program->Values->Transfer.OperationKind, 0);
    QVERIFY(!Program->Values->Transfer.SkipListing);
}

void ConnectTest::AConnectEnablesDisconnectWhenDone()
{
    auto& box = Program->Control<QCheckBox>("Check1");
    box.setEnabled(false);
    Program->Inet1().Hold();
    Program->Click("cmdConnect");
    QVERIFY(box.isEnabled());
}

void ConnectTest::AConnectClearsTheLastError()
{
    Program->Values->Errors.Caught(RuntimeError("File not found"));
    Connect();
    QCOMPARE(Program->Values->Errors.Description(), QString());
}

void ConnectTest::AnEmptyAddressIsHandedOver()
{
    Connect("");
    QVERIFY(Program->Inet1().Lines.contains("URL = "));
    QCOMPARE(Program->Inet1().Lines.last(), QString("Execute  | DIR"));
}

void ConnectTest::ASecondConnectEndsTheFirstSession()
{
    Program->Inet1().Hold();
    Type("ftp://slow.example");
    Program->Click("cmdConnect");
    Program->Inet1().Forget();
    Type("ftp://files.example");
    Program->Click("cmdConnect");
    QCOMPARE(Program->Inet1().Lines.first(2), (QStringList{"Cancel", "Execute  | CLOSE"}));
    QCOMPARE(Program->Inet1().Lines.last(), QString("Execute ftp://files.example | DIR"));
    QVERIFY(Program->Inet1().StillExecuting());
}

void ConnectTest::EveryConnectAndHangUpIsASessionOfItsOwn()
{
    const int first = Program->Values->Transfer.SessionNumber;
    Connect();
    const int second = Program->Values->Transfer.SessionNumber;
    QVERIFY(second != first);
    Program->Click("Command1");
    QVERIFY(Program->Values->Transfer.SessionNumber != second);
}

void ConnectTest::OnlyTheThirdAccessTypeEnablesTheProxy()
{
    auto& access = Program->Control<QComboBox>("Combo1");
    auto& proxy = Program->Control<QLineEdit>("txtProxy");
    QVERIFY(!proxy.isEnabled());
    for (const int item : {2, 0, 2, 1}) {
        access.setCurrentIndex(item);
        QCOMPARE(proxy.isEnabled(), item == 2);
    }
}

void ConnectTest::AHangUpWaitsForTheRunningCommand()
{
    Connect();
    Program->Inet1().Hold();
    Program->Click("cmdConnect");
    Program->Inet1().Forget();
    bool released = false;
    QTimer::singleShot(0, this, [&] {
        QCOMPARE(Program->Status(), QString("Closing Connection."));
        QVERIFY(Program->Values->Transfer.Closing);
        QCOMPARE(Program->Inet1().Lines, QStringList());
        released = true;
        Program->Inet1().Release();
    });
    Program->Click("Command1");
    QVERIFY(released);
    QCOMPARE(Program->Inet1().Lines, (QStringList{"Cancel", "Execute ftp://files.example | CLOSE"}));
    QVERIFY(!Program->Inet1().StillExecuting());
    QVERIFY(!Program->Values->Transfer.Closing);
    QVERIFY(!Program->Values->Transfer.SkipListing);
    QCOMPARE(Program->Status(), QString("Closing Connection."));
}

void ConnectTest::AHangUpClosesOnTheComponentsAddress()
{
    Connect("ftp://files.example ");
    Type("ftp://typed.example");
    Program->Click("Command1");
    QCOMPARE(Program->Inet1().Lines.last(), QString("Execute ftp://files.example | CLOSE"));
}

void ConnectTest::AHangUpIsLoggedAmpersandIncluded()
{
    Connect();
    Program->Click("Command1");
    QCOMPARE(Program->Log().last(), "&Disconnect        " + GeneralDateTime(Program->Now));
}

void ConnectTest::AHangUpDisablesDisconnectWhenDone()
{
    auto& box = Program->Control<QCheckBox>("Check1");
    box.setEnabled(true);
    Program->Click("Command1");
    QVERIFY(!box.isEnabled());
}

void ConnectTest::AHangUpIsOfKindClose()
{
    Connect();
    bool skipping = false;
    QObject::connect(&Program->Inet1(), &Inet::StateChanged, this, [&](int state) {
        if (state == Inet::Disconnecting) skipping = Program->Values->Transfer.SkipListing;
    });
    Program->Click("Command1");
    QCOMPARE(Program->Values->Transfer.OperationKind, 4);
    QVERIFY(skipping);
    QVERIFY(Program->Log().contains("Closing Connection.        " + TimeOfDay(Program->Now)));
}

void ConnectTest::AHangUpIgnoresErrors()
{
    Connect();
    Program->Inet1().Refuse("Execute", "No session");
    Program->Click("Command1");
    QCOMPARE(Program->Status(), QString("Closing Connection."));
    QCOMPARE(Program->Log().last(), "&Disconnect        " + GeneralDateTime(Program->Now));
    QVERIFY(!Program->Values->Transfer.Closing);
}

void ConnectTest::AHangUpWithoutASessionIsSilent()
{
    Program->Click("Command1");
    QCOMPARE(Program->Inet1().Lines, (QStringList{"Cancel", "Execute  | CLOSE"}));
    QCOMPARE(Program->Beeps, 0);
}

void ConnectTest::AConnectDuringAHangUpTakesOver()
{
    Connect();
    Program->Inet1().Hold();
    Program->Click("cmdConnect");
    Program->Inet1().Replies["DIR"] = "a\r\nb\r\n";
    QTimer::singleShot(0, this, [&] {
        Program->Inet1().Release();
        Connect("ftp://other.example");
    });
    Program->Click("Command1");
    QTRY_COMPARE(Remote(), (QStringList{"a", "b"}));
    QCOMPARE(Program->Inet1().Lines.last(), QString("Execute ftp://other.example | DIR"));
    QVERIFY(!Program->Values->Transfer.Closing);
    QVERIFY(!Program->Values->Transfer.SkipListing);
}

void ConnectTest::AListingThatArrivesDuringAHangUpIsNotShown()
{
    Program->Inet1().Replies["DIR"] = "a\r\nb\r\n";
    Program->Inet1().Hold();
    Type("ftp://files.example");
    Program->Click("cmdConnect");
    QTimer::singleShot(0, this, [&] { Program->Inet1().Release(); });
    Program->Click("Command1");
    QCOMPARE(Remote(), QStringList());
}

QTEST_MAIN(ConnectTest)
#include "connect_test.moc"
