#include "i18n/language_chooser.h"
#include "i18n/toolkit_texts.h"
#include "shell/sole_input.h"
#include "support/window_fixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>

/// The choice of a language: at the first start, and from the menu of the real window.
class LanguageTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void AFreshStartAsksOnceAndStoresTheChoice();
    void TheMarkOfTheFirstStartIsStoredBeforeTheChooserAppears();
    void ASecondStartDoesNotAsk();
    void AMarkThatIsNoNumberCountsAsNone();
    void CancelAtTheFirstStartLeavesEnglishAndStoresNothing();
    void EachButtonStoresItsLanguage_data();
    void EachButtonStoresItsLanguage();
    void TheChooserSpeaksTheCurrentLanguage();
    void TheChooserIsOperatedWithTheKeyboard();
    void TheEndOfTheProgramClosesTheChooser();
    void AnEndedChooserShowsNothing();

    void SwitchingToGermanChangesAllButTheMenusAtOnce();
    void TheNextStartSpeaksGermanInItsMenusToo();
    void TheFilterShowsItsTextAndFiltersNothing();
    void TheMessageIsAnInformationBoxInThreeLines();
    void CancelFromTheMenuChangesNothing();
    void ClosingTheChooserByItsTitleBarIsNoCancel();
    void ACancelMarkOfTheFirstStartHoldsUntilTheFirstUseOfTheMenu();
    void TheWindowTakesNoInputWhileTheChooserIsOpen();
    void TheWindowCanBeClosedWhileTheChooserIsOpen();
    void ABaseWithoutTextsChangesNothing();
    void BoxesSpeakTheChosenLanguage_data();
    void BoxesSpeakTheChosenLanguage();

private:
    void FirstStart(const std::function<void(QWidget&)>& visit);
    void ChooseLanguage(const std::function<void(QWidget&)>& visit);
    void Pick(const char* button);

    QString Text(const char* name) const { return Program->Control<QPushButton>(name).text(); }

    std::unique_ptr<WindowFixture> Program;
    int Shown = 0;
};

namespace {

QWidget* OpenChooser()
{
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->objectName() == "frmOpen" && window->isVisible()) return window;
    return nullptr;
}

std::function<void(QWidget&)> Clicking(const char* button)
{
    return [button](QWidget& chooser) { QTest::mouseClick(chooser.findChild<QPushButton*>(button), Qt::LeftButton); };
}

Language LanguageAt(int base)
{
    Language language;
    language.LanguageBase = static_cast<std::int16_t>(base);
    return language;
}

}  // namespace

void LanguageTest::init()
{
    Program = std::make_unique<WindowFixture>();
    Shown = 0;
}

void LanguageTest::cleanup()
{
    Program.reset();
}

/// Runs the program's beginning; when the chooser appears it is visited.
void LanguageTest::FirstStart(const std::function<void(QWidget&)>& visit)
{
    SettingsStore settings(Program->SettingsFile());
    SoleInput input;
    ErrorRecord errors;
    Program->Texts = LanguageFrom(settings);
    LanguageChooser chooser({Program->Texts, settings, input, errors});
    QTimer::singleShot(0, &chooser, [&] {
        QVERIFY(OpenChooser() != nullptr);
        ++Shown;
        visit(*OpenChooser());
    });
    ChooseLanguageAtFirstStart(chooser, settings);
}

/// Chooses the entry of the menu; when the chooser appears it is visited.
void LanguageTest::ChooseLanguage(const std::function<void(QWidget&)>& visit)
{
    QTimer::singleShot(0, Program->Window.get(), [&] {
        QVERIFY(OpenChooser() != nullptr);
        ++Shown;
        visit(*OpenChooser());
    });
    Program->Choose("mnuLamguage");
}

void LanguageTest::Pick(const char* button)
{
    ChooseLanguage(Clicking(button));
}

void LanguageTest::AFreshStartAsksOnceAndStoresTheChoice()
{
    FirstStart(Clicking("Command4"));
    QCOMPARE(Shown, 1);
    QCOMPARE(Program->Setting("Language"), QString("5000"));
    QCOMPARE(Program->Setting("Language2"), QString("500"));
    QCOMPARE(Program->Setting("FLanguage"), QString("1"));
    QCOMPARE(Program->Texts.LanguageBase, 5000);
    QCOMPARE(Program->Texts.LanguageBase2, 500);
    Program->Open();
    QCOMPARE(Text("cmdConnect"), QString("&Verbinden"));
    QCOMPARE(Program->Entry("mnuExit").text(), QString("&Beenden"));
}

void LanguageTest::TheMarkOfTheFirstStartIsStoredBeforeTheChooserAppears()
{
    QString mark;
    FirstStart([&](QWidget& chooser) {
        mark = Program->Setting("FLanguage");
        chooser.close();
    });
    QCOMPARE(mark, QString("1"));
}

void LanguageTest::ASecondStartDoesNotAsk()
{
    FirstStart(Clicking("Command4"));
    FirstStart(Clicking("Command1"));
    QCOMPARE(Shown, 1);
    QCOMPARE(Program->Texts.LanguageBase, 5000);
}

void LanguageTest::AMarkThatIsNoNumberCountsAsNone()
{
    Program->Store("FLanguage", "yes");
    FirstStart(Clicking("Command7"));
    QCOMPARE(Shown, 1);
    QCOMPARE(Program->Setting("FLanguage"), QString("1"));
}

void LanguageTest::CancelAtTheFirstStartLeavesEnglishAndStoresNothing()
{
    FirstStart(Clicking("Command7"));
    QCOMPARE(Shown, 1);
    QCOMPARE(Program->Texts.LanguageBase, 1000);
    QCOMPARE(Program->Setting("Language"), QString("(absent)"));
    QCOMPARE(Program->Setting("Language2"), QString("(absent)"));
    Program->Open();
    QCOMPARE(Text("cmdConnect"), QString("&Connect"));
    QCOMPARE(Program->Entry("mnuSavFTPAddress").text(), QString("&Save all information"));
    QCOMPARE(Text("Command14"), QString("Go"));
    QCOMPARE(Program->Control<QComboBox>("Combo2").currentText(), QString("Filter"));
}

void LanguageTest::EachButtonStoresItsLanguage_data()
{
    QTest::addColumn<QString>("caption");
    QTest::addColumn<int>("base");
    QTest::newRow("Command1") << "English" << 1000;
    QTest::newRow("Command2") << QString::fromUtf8("Français") << 2000;
    QTest::newRow("Command5") << QString::fromUtf8("Español") << 3000;
    QTest::newRow("Command3") << "Dansk" << 4000;
    QTest::newRow("Command4") << "Deutsch" << 5000;
    QTest::newRow("Command6") << "Italiano" << 6000;
    QTest::newRow("Command8") << "Finnish" << 7000;
    QTest::newRow("Command9") << "Portuguese" << 8000;
    QTest::newRow("Command10") << "Swedish" << 9000;
    QTest::newRow("Command11") << QString::fromUtf8("Português") << 10000;
}

void LanguageTest::EachButtonStoresItsLanguage()
{
    QFETCH(const QString, caption);
    QFETCH(const int, base);
    QString shown;
    FirstStart([&](QWidget& chooser) {
        shown = chooser.findChild<QPushButton*>(QTest::currentDataTag())->text();
        QCOMPARE(chooser.findChildren<QPushButton*>().size(), 11);
        Clicking(QTest::currentDataTag())(chooser);
    });
    QCOMPARE(shown, caption);
    QCOMPARE(Program->Texts.LanguageBase, base);
    QCOMPARE(Program->Texts.LanguageBase2, base / 10);
    QVERIFY(!Program->Texts.LanguageCancelled);
    QCOMPARE(Program->Setting("Language"), QString::number(base));
    QCOMPARE(Program->Setting("Language2"), QString::number(base / 10));
    const SettingsStore settings(Program->SettingsFile());
    QCOMPARE(LanguageFrom(settings).LanguageBase, base);
}

void LanguageTest::TheChooserSpeaksTheCurrentLanguage()
{
    Program->Store("Language", "5000");
    QStringList texts;
    FirstStart([&](QWidget& chooser) {
        for (const char* name : {"Label2", "Label3", "Label4"}) texts += chooser.findChild<QLabel*>(name)->text();
        texts += chooser.findChild<QPushButton*>("Command7")->text();
        chooser.close();
    });
    QCOMPARE(texts, (QStringList{"Please select a language:", QString::fromUtf8("Bitte wählen Sie eine Sprache."),
                                 QString::fromUtf8("Sie können die Sprache jederzeit ändern."), "&Cancel"}));
}

void LanguageTest::TheChooserIsOperatedWithTheKeyboard()
{
    FirstStart([](QWidget& chooser) {
        QVERIFY(QTest::qWaitForWindowActive(&chooser));
        QTest::keyClick(chooser.focusWidget(), Qt::Key_Tab);
        QTest::keyClick(chooser.focusWidget(), Qt::Key_Return);
    });
    QCOMPARE(Program->Texts.LanguageBase, 2000);
    Program->Store("FLanguage", "0");
    FirstStart([](QWidget& chooser) { QTest::keyClick(&chooser, Qt::Key_Escape); });
    QVERIFY(Program->Texts.LanguageCancelled);
    QCOMPARE(Program->Texts.LanguageBase, 2000);
    QCOMPARE(Shown, 2);
}

void LanguageTest::TheEndOfTheProgramClosesTheChooser()
{
    SettingsStore settings(Program->SettingsFile());
    SoleInput input;
    ErrorRecord errors;
    LanguageChooser chooser({Program->Texts, settings, input, errors});
    QTimer::singleShot(0, &chooser, &LanguageChooser::End);
    ChooseLanguageAtFirstStart(chooser, settings);
    QVERIFY(chooser.Ended());
    QVERIFY(OpenChooser() == nullptr);
    QCOMPARE(Program->Setting("FLanguage"), QString("1"));
    QCOMPARE(Program->Setting("Language"), QString("(absent)"));
}

void LanguageTest::AnEndedChooserShowsNothing()
{
    SettingsStore settings(Program->SettingsFile());
    SoleInput input;
    ErrorRecord errors;
    LanguageChooser chooser({Program->Texts, settings, input, errors});
    chooser.End();
    chooser.Show(nullptr);
    QVERIFY(OpenChooser() == nullptr);
}

void LanguageTest::SwitchingToGermanChangesAllButTheMenusAtOnce()
{
    Program->Open();
    Pick("Command4");
    QCOMPARE(Shown, 1);
    QCOMPARE(Text("cmdConnect"), QString("&Verbinden"));
    QCOMPARE(Text("Command14"), QString("Los"));
    QCOMPARE(Program->Control<QLabel>("LblYourFiles").text(), QString("Ihre Dateien"));
    QCOMPARE(Program->Control<QComboBox>("Combo1").placeholderText(), QString("Standard"));
    QCOMPARE(Program->Control<QWidget>("Command4").toolTip(), QString("Eine Ebene nach oben"));
    QCOMPARE(Program->Control<QWidget>("Command4").accessibleName(), QString("Eine Ebene nach oben"));
    QCOMPARE(Program->Control<QLabel>("DrvSpace").toolTip(),
             QString::fromUtf8("Freier Speicherplatz auf Ihrer Festplatte"));
    QCOMPARE(Program->Control<QCheckBox>("Check1").text(), QString("Disconnect when done."));
    QCOMPARE(Program->Control<QMenu>("mnuOps").title(), QString("&Options"));
    QCOMPARE(Program->Entry("mnuExit").text(), QString("&Exit"));
    QCOMPARE(Program->Setting("Language"), QString("5000"));
}

void LanguageTest::TheNextStartSpeaksGermanInItsMenusToo()
{
    Program->Open();
    Pick("Command4");
    Program->Close();
    FirstStart([](QWidget& chooser) { chooser.close(); });
    Program->Open();
    QCOMPARE(Program->Control<QMenu>("mnuOps").title(), QString("&Optionen"));
    QCOMPARE(Program->Entry("mnuExit").text(), QString("&Beenden"));
    QCOMPARE(Program->Entry("mnuAlarm").text(), QString("Alarm"));
}

void LanguageTest::TheFilterShowsItsTextAndFiltersNothing()
{
    for (const char* name : {"a.txt", "Filtro", "b.gif"}) {
        QFile file(Program->LocalFolder() + '/' + name);
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    Program->Open();
    auto& files = Program->Control<QAbstractItemView>("List1");
    QTRY_COMPARE(files.model()->rowCount(), 3);
    Pick("Command6");
    const QString filter = Program->Texts.LoadText(42);
    QCOMPARE(Program->Control<QComboBox>("Combo2").currentText(), filter);
    QApplication::processEvents();
    QCOMPARE(files.model()->rowCount(), 3);
}

void LanguageTest::TheMessageIsAnInformationBoxInThreeLines()
{
    Program->Open();
    Pick("Command2");
    QCOMPARE(Program->Questions.Questions.size(), 1U);
    const Question& message = Program->Questions.Questions.front();
    QCOMPARE(message.Title, QString("Information - Informaciones"));
    QCOMPARE(message.Sign, Question::Information);
    QCOMPARE(message.Choice, Question::Ok);
    const QStringList lines{"The Menu will change on next session.",
                            QString::fromUtf8("Le menu changera à la prochaine session."),
                            QString::fromUtf8("El menú cambiará en siguiente la sesión.")};
    QCOMPARE(message.Text, lines.join("\r\n"));
    QCOMPARE(Program->Status(), lines.join(' '));

    Program->UseMessageBoxes = true;
    Program->Restart();
    QString shown;
    ChooseLanguage([&](QWidget& chooser) {
        QTimer::singleShot(0, Program->Window.get(), [&] {
            auto* box = Program->Window->findChild<QMessageBox*>();
            QVERIFY(box != nullptr);
            shown = box->text();
            QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
        });
        Clicking("Command3")(chooser);
    });
    QCOMPARE(shown, lines.join('\n'));
}

void LanguageTest::CancelFromTheMenuChangesNothing()
{
    Program->Open();
    const QString status = Program->Status();
    Pick("Command7");
    QCOMPARE(Shown, 1);
    QVERIFY(!Program->Texts.LanguageCancelled);
    QCOMPARE(Program->Status(), status);
    QVERIFY(Program->Questions.Questions.empty());
    QCOMPARE(Program->Setting("Language"), QString("(absent)"));
    QCOMPARE(Text("cmdConnect"), QString("&Connect"));
}

void LanguageTest::ClosingTheChooserByItsTitleBarIsNoCancel()
{
    Program->Open();
    ChooseLanguage([](QWidget& chooser) { chooser.close(); });
    QVERIFY(!Program->Texts.LanguageCancelled);
    QCOMPARE(Program->Questions.Questions.size(), 1U);
    QCOMPARE(Program->Setting("Language"), QString("(absent)"));
    QCOMPARE(Text("cmdConnect"), QString("&Connect"));
}

void LanguageTest::ACancelMarkOfTheFirstStartHoldsUntilTheFirstUseOfTheMenu()
{
    FirstStart(Clicking("Command7"));
    QVERIFY(Program->Texts.LanguageCancelled);
    Program->Open();
    Pick("Command4");
    QVERIFY(!Program->Texts.LanguageCancelled);
    QCOMPARE(Program->Setting("Language"), QString("5000"));
    QCOMPARE(Text("cmdConnect"), QString("&Connect"));
    QVERIFY(Program->Questions.Questions.empty());
    Pick("Command4");
    QCOMPARE(Text("cmdConnect"), QString("&Verbinden"));
    QCOMPARE(Program->Questions.Questions.size(), 1U);
}

void LanguageTest::TheWindowTakesNoInputWhileTheChooserIsOpen()
{
    Program->Open();
    auto& user = Program->Control<QLineEdit>("txtUserName");
    ChooseLanguage([&](QWidget& chooser) {
        QTest::keyClicks(&user, "ann");
        Program->Click("cmdConnect");
        QTest::keyClick(Program->Window.get(), Qt::Key_Escape);
        Clicking("Command7")(chooser);
    });
    QCOMPARE(user.text(), QString());
    QVERIFY(Program->Inet1().Lines.isEmpty());
    QTest::keyClicks(&user, "ann");
    QCOMPARE(user.text(), QString("ann"));
}

void LanguageTest::TheWindowCanBeClosedWhileTheChooserIsOpen()
{
    Program->Open();
    ChooseLanguage([this](QWidget& chooser) {
        QVERIFY(!chooser.isModal());
        QVERIFY(Program->Window->close());
    });
    QCOMPARE(Shown, 1);
    QCOMPARE(Program->Quits, 1);
    QVERIFY(OpenChooser() == nullptr);
    QVERIFY(Program->Questions.Questions.empty());
    QCOMPARE(Program->Setting("Language"), QString("(absent)"));
}

void LanguageTest::ABaseWithoutTextsChangesNothing()
{
    Program->Open();
    Program->Texts.LanguageBase = 12000;
    ChooseLanguage([](QWidget& chooser) {
        QCOMPARE(chooser.findChild<QLabel*>("Label3")->text(), QString());
        chooser.close();
    });
    QCOMPARE(Text("cmdConnect"), QString("&Connect"));
    QCOMPARE(Program->Control<QComboBox>("Combo2").currentText(), QString("Filter"));
}

void LanguageTest::BoxesSpeakTheChosenLanguage_data()
{
    QTest::addColumn<int>("base");
    QTest::addColumn<QStringList>("buttons");
    QTest::newRow("English") << 1000 << QStringList{"&Yes", "&No", "Cancel", "Retry"};
    const auto add = [](const char* name, int base, const char* buttons) {
        QTest::newRow(name) << base << QString::fromUtf8(buttons).split('|');
    };
    add("French", 2000, "&Oui|&Non|Annuler|Réessayer");
    add("Spanish", 3000, "&Sí|&No|Cancelar|Reintentar");
    add("Danish", 4000, "&Ja|&Nej|Annuller|Prøv igen");
    add("German", 5000, "&Ja|&Nein|Abbrechen|Wiederholen");
    add("Italian", 6000, "&Sì|&No|Annulla|Riprova");
    add("Finnish", 7000, "&Kyllä|&Ei|Peru|Yritä uudelleen");
    add("Portuguese", 8000, "&Sim|&Não|Cancelar|Tentar Novamente");
    add("Swedish", 9000, "&Ja|&Nej|Avbryt|Försök igen");
    add("Brazilian", 10000, "&Sim|&Não|Cancelar|Repetir");
}

void LanguageTest::BoxesSpeakTheChosenLanguage()
{
    QFETCH(const int, base);
    QFETCH(const QStringList, buttons);
    ToolkitTexts toolkit;
    toolkit.Follow(LanguageAt(base));
    QStringList texts;
    const QMessageBox box(QMessageBox::Question, {}, {},
                          QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel | QMessageBox::Retry);
    for (const auto button : {QMessageBox::Yes, QMessageBox::No, QMessageBox::Cancel, QMessageBox::Retry})
        texts += box.button(button)->text();
    QCOMPARE(texts, buttons);
}

QTEST_MAIN(LanguageTest)
#include "language_test.moc"
