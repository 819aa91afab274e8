#include "base/formats.h"
#include "support/window_fixture.h"

#include <QAbstractSlider>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QMenu>
#include <QTimer>

class StartUpTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void AFirstStartTicksTheTwoOptionsThatSave();
    void AFirstStartShowsThirtySecondsAndEmptyFields();
    void AFirstStartShowsTheCurrentFolder();
    void AFirstStartCountsOne();
    void StoredOptionsAreTicked_data();
    void StoredOptionsAreTicked();
    void AnOptionThatCannotBeConvertedIsOff_data();
    void AnOptionThatCannotBeConvertedIsOff();
    void ALoneDollarSignShowsAsEmpty_data();
    void ALoneDollarSignShowsAsEmpty();
    void TheLastConnectionIsRestored();
    void WithoutSavingTheFieldsStayEmpty();
    void TheFifthStartMakesTheMessageDue();
    void StartsBetweenMakeNoMessageDue();
    void TheSavedFolderIsOpened();
    void TheSavedFolderIsNotReadWithTheOptionOff();
    void AFolderThatIsGoneLeavesTheCurrentOne();
    void ATimeoutOutOfRangeBecomesTheNearestEnd_data();
    void ATimeoutOutOfRangeBecomesTheNearestEnd();
    void ATimeoutThatIsNoNumberLeavesTheSlider();
    void TheTempFolderIsMade();
    void TheTempFolderMayExist();
    void TheTitleNamesProductVersionAndMaker();
    void TheProtocolIsFtp();
    void EveryAdvertisementCarriesTheOffer();
    void TheLogBeginsWithTheStart();
    void TheTimersCarryTheirNamesAndIntervals();
    void TheFirstTimerStopsItselfOnItsFirstTick();
    void TheNormalHeightIsInTwips();
    void TheInformationFileLiesInTheProgramsFolder();
    void NothingConnectsByItself();
    void EscapeSetsTheFlagAndTypesNothing_data();
    void EscapeSetsTheFlagAndTypesNothing();
    void EscapeStillClosesAnOpenList();
    void EscapeStillClosesAnOpenMenu();
    void OptionsAreToggledSavedAndTicked_data();
    void OptionsAreToggledSavedAndTicked();
    void SwitchingSavingOffForgetsTheAddressAtOnce();
    void SwitchingSavingOnStoresTheAddressOfTheLastConnect();

private:
    std::unique_ptr<WindowFixture> Program;
};

void StartUpTest::init()
{
    Program = std::make_unique<WindowFixture>();
}

void StartUpTest::cleanup()
{
    Program.reset();
}

void StartUpTest::AFirstStartTicksTheTwoOptionsThatSave()
{
    Program->Open();
    for (const char* entry : {"mnuNT", "mnuUNIX", "mnuConvertLower", "mnuAlarm"})
        QVERIFY2(!Program->Entry(entry).isChecked(), entry);
    QVERIFY(Program->Entry("mnuSaveFolder").isChecked());
    QVERIFY(Program->Entry("mnuSavFTPAddress").isChecked());
    QVERIFY(!Program->Control<QCheckBox>("Check2").isChecked());
    const Options& chosen = Program->Values->Chosen;
    QVERIFY(chosen.SaveLastFolder && chosen.SaveAllInformation);
    QVERIFY(!chosen.ShortNames && !chosen.UnixListing && !chosen.LowerCaseNames && !chosen.AlarmOn);
}

void StartUpTest::AFirstStartShowsThirtySecondsAndEmptyFields()
{
    Program->Open();
    QCOMPARE(Program->Control<QAbstractSlider>("Slider1").value(), 30);
    QCOMPARE(Program->Control<QLabel>("SlideVal").text(), QString("30"));
    QCOMPARE(Program->Control<QComboBox>("txtURL").currentText(), QString(""));
    QCOMPARE(Program->Control<QLineEdit>("txtUserName").text(), QString(""));
    QCOMPARE(Program->Control<QLineEdit>("txtPassword").text(), QString(""));
    QCOMPARE(Program->Control<QLineEdit>("txtProxy").text(), QString("Enter proxy address here"));
    QCOMPARE(Program->Control<QLineEdit>("txtPort").text(), QString("21"));
    QCOMPARE(Program->Status(), QString("Waiting ..."));
}

void StartUpTest::AFirstStartShowsTheCurrentFolder()
{
    QFile file(Program->LocalFolder() + "/here.txt");
    QVERIFY(file.open(QIODevice::WriteOnly));
    Program->Open();
    QCOMPARE(CurrentFolder(), QDir::toNativeSeparators(Program->LocalFolder()));
    const auto* files = Program->Control<QAbstractItemView>("List1").model();
    QCOMPARE(files->rowCount(), 1);
    QCOMPARE(files->index(0, 0).data().toString(), QString("here.txt"));
}

void StartUpTest::AFirstStartCountsOne()
{
    Program->Open();
    QCOMPARE(Program->Setting("Message"), QString("1"));
}

void StartUpTest::StoredOptionsAreTicked_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("entry");
    QTest::newRow("short names") << "NT"
                                 << "mnuNT";
    QTest::newRow("bare listings") << "UNIX"
                                   << "mnuUNIX";
    QTest::newRow("lower case") << "LowerCase"
                                << "mnuConvertLower";
    QTest::newRow("alarm") << "Alarm"
                           << "mnuAlarm";
    QTest::newRow("last folder") << "DriveSav"
                                 << "mnuSaveFolder";
    QTest::newRow("all information") << "FTP Address"
                                     << "mnuSavFTPAddress";
}

void StartUpTest::StoredOptionsAreTicked()
{
    QFETCH(QString, key);
    QFETCH(QString, entry);
    for (const bool on : {true, false, true}) {
        Program->Close();
        Program->Store(key, on ? "True" : "False");
        Program->Open();
        QCOMPARE(Program->Entry(qPrintable(entry)).isChecked(), on);
    }
}

void StartUpTest::AnOptionThatCannotBeConvertedIsOff_data()
{
    StoredOptionsAreTicked_data();
}

void StartUpTest::AnOptionThatCannotBeConvertedIsOff()
{
    QFETCH(QString, key);
    QFETCH(QString, entry);
    Program->Store(key, "yes");
    Program->Open();
    QVERIFY(!Program->Entry(qPrintable(entry)).isChecked());
    // The steps behind it have run.
    QCOMPARE(Program->Setting("Message"), QString("1"));
}

void StartUpTest::ALoneDollarSignShowsAsEmpty_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("shown");
    QTest::newRow("alone") << "$"
                           << "";
    QTest::newRow("with blanks around") << "  $ "
                                        << "";
    QTest::newRow("part of a text") << "$ecret"
                                    << "$ecret";
    QTest::newRow("a text with blanks around") << " secret "
                                               << " secret ";
}

void StartUpTest::ALoneDollarSignShowsAsEmpty()
{
    QFETCH(QString, stored);
    QFETCH(QString, shown);
    Program->Store("SavePass", stored);
    Program->Store("SaveUser", stored);
    Program->Open();
    QCOMPARE(Program->Control<QLineEdit>("txtPassword").text(), shown);
    QCOMPARE(Program->Control<QLineEdit>("txtUserName").text(), shown);
    QCOMPARE(Program->Values->Connection.SavedPassword, shown);
    QCOMPARE(Program->Values->Connection.SavedUser, shown);
}

void StartUpTest::TheLastConnectionIsRestored()
{
    Program->Store("SaveURL", "ftp://files.example");
    Program->Store("SaveUser", "ann");
    Program->Store("SavePass", "secret");
    Program->Store("SaveProxy", "proxy.example:3128");
    Program->Open();
    QCOMPARE(Program->Control<QComboBox>("txtURL").currentText(), QString("ftp://files.example"));
    QCOMPARE(Program->Control<QLineEdit>("txtUserName").text(), QString("ann"));
    QCOMPARE(Program->Control<QLineEdit>("txtPassword").text(), QString("secret"));
    QCOMPARE(Program->Control<QLineEdit>("txtProxy").text(), QString("proxy.example:3128"));
    QVERIFY(!Program->Values->Address.AddressRestored);  // it was for that one change
    const ConnectionValues& values = Program->Values->Connection;
    QCOMPARE(values.SavedUrl, QString("ftp://files.example"));
    QCOMPARE(values.SavedProxy, QString("proxy.example:3128"));
}

void StartUpTest::WithoutSavingTheFieldsStayEmpty()
{
    Program->Store("FTP Address", "False");
    Program->Store("SaveURL", "ftp://files.example");
    Program->Store("SaveUser", "ann");
    Program->Store("SavePass", "secret");
    Program->Store("SaveProxy", "proxy.example:3128");
    Program->Open();
    QCOMPARE(Program->Control<QComboBox>("txtURL").currentText(), QString(""));
    QCOMPARE(Program->Control<QLineEdit>("txtUserName").text(), QString(""));
    QCOMPARE(Program->Control<QLineEdit>("txtPassword").text(), QString(""));
    QCOMPARE(Program->Control<QLineEdit>("txtProxy").text(), QString("Enter proxy address here"));
    QVERIFY(!Program->Values->Address.AddressRestored);
    QCOMPARE(Program->Values->Connection.SavedUrl, QString());
}

void StartUpTest::TheFifthStartMakesTheMessageDue()
{
    Program->Store("Message", "4");
    Program->Open();
    QCOMPARE(Program->Setting("Message"), QString("0"));
    QVERIFY(Program->Values->Start.MessageDue);
}

void StartUpTest::StartsBetweenMakeNoMessageDue()
{
    for (int start = 1; start <= 4; ++start) {
        Program->Restart();
        QCOMPARE(Program->Setting("Message"), QString::number(start));
        QVERIFY(!Program->Values->Start.MessageDue);
    }
    Program->Restart();
    QVERIFY(Program->Values->Start.MessageDue);
}

void StartUpTest::TheSavedFolderIsOpened()
{
    const QTemporaryDir other;
    Program->Store("SaveDrive", other.path());
    Program->Open();
    QCOMPARE(CurrentFolder(), QDir::toNativeSeparators(other.path()));
    QCOMPARE(Program->Values->Start.StartFolder, other.path());
    Program->Close();
    ChangeCurrentFolder("/");
}

void StartUpTest::TheSavedFolderIsNotReadWithTheOptionOff()
{
    const QTemporaryDir other;
    Program->Store("DriveSav", "False");
    Program->Store("SaveDrive", other.path());
    Program->Open();
    QCOMPARE(CurrentFolder(), QDir::toNativeSeparators(Program->LocalFolder()));
    QCOMPARE(Program->Values->Start.StartFolder, QDir::toNativeSeparators(Program->LocalFolder()));
}

void StartUpTest::AFolderThatIsGoneLeavesTheCurrentOne()
{
    Program->Store("SaveDrive", "/no/such/folder");
    Program->Open();
    QCOMPARE(CurrentFolder(), QDir::toNativeSeparators(Program->LocalFolder()));
    QCOMPARE(Program->Setting("Message"), QString("1"));
    QVERIFY(Program->Questions.Questions.empty());
}

void StartUpTest::ATimeoutOutOfRangeBecomesTheNearestEnd_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<bool>("lowest");
    QTest::newRow("negative") << "-5" << true;
    QTest::newRow("zero") << "0" << true;
    QTest::newRow("huge") << "2000000000" << false;
}

void StartUpTest::ATimeoutOutOfRangeBecomesTheNearestEnd()
{
    QFETCH(QString, stored);
    QFETCH(bool, lowest);
    Program->Store("Timeout", stored);
    Program->Open();
    const auto& slider = Program->Control<QAbstractSlider>("Slider1");
    QCOMPARE(slider.value(), lowest ? slider.minimum() : slider.maximum());
    QVERIFY(slider.minimum() >= 1);
    QCOMPARE(Program->Control<QLabel>("SlideVal").text(), QString::number(slider.value()));
}

void StartUpTest::ATimeoutThatIsNoNumberLeavesTheSlider()
{
    Program->Store("Timeout", "soon");
    Program->Open();
    const auto& slider = Program->Control<QAbstractSlider>("Slider1");
    QCOMPARE(Program->Control<QLabel>("SlideVal").text(), QString::number(slider.value()));
    QCOMPARE(Program->Setting("Message"), QString("1"));
}

void StartUpTest::TheTempFolderIsMade()
{
    Program->Open();
    QVERIFY(QDir(Program->HomeFolder() + "/Temp").exists());
}

void StartUpTest::TheTempFolderMayExist()
{
    QVERIFY(QDir(Program->HomeFolder()).mkdir("Temp"));
    Program->Open();
    QVERIFY(QDir(Program->HomeFolder() + "/Temp").exists());
    QCOMPARE(Program->Setting("Message"), QString("1"));
}

void StartUpTest::TheTitleNamesProductVersionAndMaker()
{
    Program->Open();
    const QString title = Program->Window->windowTitle();
    QVERIFY2(title.startsWith("Tolvane v3.2    "), qPrintable(title));
    QVERIFY(title.contains("Quorvell"));
}

void StartUpTest::TheProtocolIsFtp()
{
    Program->Open();
    QCOMPARE(Program->Values->Connection.ProtocolChoice, 2);
    QCOMPARE(Program->Values->Start.LineBreak, QString("\r\n"));
}

void StartUpTest::EveryAdvertisementCarriesTheOffer()
{
    Program->Open();
    const QString offer = Program->Texts.LoadText(73);
    QVERIFY(!offer.isEmpty());
    for (int number = 0; number < 30; ++number)
        QCOMPARE(Program->Control<QWidget>(qPrintable(QString("ads_%1").arg(number))).toolTip(), offer);
}

void StartUpTest::TheLogBeginsWithTheStart()
{
    Program->Open();
    QCOMPARE(Program->Log(), QStringList("Session started at: " + GeneralDateTime(Program->Now)));
}

void StartUpTest::TheTimersCarryTheirNamesAndIntervals()
{
    Program->Open();
    const QList<std::pair<const char*, int>> timers{{"Timer1", 1500},     {"Timer2", 2100},       {"Timer3", 1000},
                                                    {"Timer4", 4000},     {"Timer5", 100},        {"Timer6", 3600},
                                                    {"MultiTimer", 1030}, {"ClipBoardTimer", 330}};
    for (const auto& [name, interval] : timers) QCOMPARE(Program->Control<QTimer>(name).interval(), interval);
    for (const char* off : {"Timer3", "Timer5", "Timer6", "MultiTimer", "ClipBoardTimer"})
        QVERIFY2(!Program->Control<QTimer>(off).isActive(), off);
}

void StartUpTest::TheFirstTimerStopsItselfOnItsFirstTick()
{
    Program->Open();
    const auto& timer = Program->Control<QTimer>("Timer1");
    QVERIFY(timer.isActive());
    QTRY_VERIFY(!timer.isActive());
}

void StartUpTest::TheNormalHeightIsInTwips()
{
    Program->Open();
    QCOMPARE(Program->Values->Start.NormalFormHeight, Program->Window->height() * 15);
    QVERIFY(Program->Values->Start.NormalFormHeight < 8565);
}

void StartUpTest::TheInformationFileLiesInTheProgramsFolder()
{
    Program->Open();
    QCOMPARE(Program->Values->Start.InfoFilePath, Program->HomeFolder() + "/TolvInfo.dta");
}

void StartUpTest::NothingConnectsByItself()
{
    Program->Store("SaveURL", "ftp://files.example");
    Program->Open();
    QCOMPARE(Program->Inet1().Lines, QStringList());
    QCOMPARE(Program->Inet2().Lines, QStringList());
    QCOMPARE(Program->Inet3().Lines, QStringList());
}

void StartUpTest::EscapeSetsTheFlagAndTypesNothing_data()
{
    QTest::addColumn<QString>("focus");
    for (const char* control :
         {"txtURL", "txtUserName", "txtPassword", "txtPort", "List1", "lstRemoteFiles", "cmdConnect", "Check2"})
        QTest::newRow(control) << control;
}

void StartUpTest::EscapeSetsTheFlagAndTypesNothing()
{
    QFETCH(QString, focus);
    Program->Open();
    QVERIFY(!Program->Values->Chosen.EscapePressed);
    auto& user = Program->Control<QLineEdit>("txtUserName");
    user.setText("ann");
    auto& control = Program->Control<QWidget>(qPrintable(focus));
    control.setFocus();
    QTest::keyClick(&control, Qt::Key_Escape);
    QVERIFY(Program->Values->Chosen.EscapePressed);
    QVERIFY(Program->Window->isVisible());
    QCOMPARE(user.text(), QString("ann"));
    QVERIFY(control.hasFocus() || control.focusProxy() != nullptr);
}

void StartUpTest::EscapeStillClosesAnOpenList()
{
    Program->Open();
    auto& access = Program->Control<QComboBox>("Combo1");
    access.showPopup();
    QTRY_VERIFY(QApplication::activePopupWidget() != nullptr);
    QTest::keyClick(QApplication::activePopupWidget()->focusWidget(), Qt::Key_Escape);
    QTRY_VERIFY(QApplication::activePopupWidget() == nullptr);
    QVERIFY(!Program->Values->Chosen.EscapePressed);
}

void StartUpTest::EscapeStillClosesAnOpenMenu()
{
    Program->Open();
    auto& menu = Program->Control<QMenu>("mnuOps");
    menu.popup(Program->Window->mapToGlobal(QPoint(10, 10)));
    QTRY_VERIFY(menu.isVisible());
    QTest::keyClick(&menu, Qt::Key_Escape);
    QVERIFY(!menu.isVisible());
}

void StartUpTest::OptionsAreToggledSavedAndTicked_data()
{
    StoredOptionsAreTicked_data();
}

void StartUpTest::OptionsAreToggledSavedAndTicked()
{
    QFETCH(QString, key);
    QFETCH(QString, entry);
    Program->Open();
    const bool before = Program->Entry(qPrintable(entry)).isChecked();
    for (const bool now : {!before, before}) {
        Program->Choose(qPrintable(entry));
        QCOMPARE(Program->Entry(qPrintable(entry)).isChecked(), now);
        QCOMPARE(Program->Settings->Read(key, ""), QString(now ? "True" : "False"));
    }
    Program->Choose(qPrintable(entry));
    Program->Restart();
    QCOMPARE(Program->Entry(qPrintable(entry)).isChecked(), !before);
}

void StartUpTest::SwitchingSavingOffForgetsTheAddressAtOnce()
{
    Program->Store("SaveURL", "ftp://files.example");
    Program->Open();
    Program->Choose("mnuSavFTPAddress");
    QCOMPARE(Program->Settings->Read("SaveURL", "(absent)"), QString(""));
    QCOMPARE(Program->Settings->Read("FTP Address", ""), QString("False"));
}

void StartUpTest::SwitchingSavingOnStoresTheAddressOfTheLastConnect()
{
    Program->Store("SaveURL", "ftp://files.example");
    Program->Open();
    Program->Choose("mnuSavFTPAddress");
    Program->Choose("mnuSavFTPAddress");
    QCOMPARE(Program->Settings->Read("SaveURL", ""), QString("ftp://files.example"));
    QCOMPARE(Program->Settings->Read("FTP Address", ""), QString("True"));
}

QTEST_MAIN(StartUpTest)
#include "start_up_test.moc"
