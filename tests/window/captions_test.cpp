#include "base/run_time_error.h"
#include "i18n/caption_setter.h"
#include "i18n/language.h"
#include "i18n/text_table.h"
#include "shell/settings_store.h"
#include "support/sample_form.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

namespace {

Language German()
{
    Language language;
    language.LanguageBase = 5000;
    return language;
}

Language UnknownLanguage()
{
    Language language;
    language.LanguageBase = 12000;
    return language;
}

QString English(int n)
{
    return Language().LoadText(n);
}

QString German(int n)
{
    return German().LoadText(n);
}

/// Every text that can be seen on a window.
QStringList Texts(const QWidget& window)
{
    QStringList texts;
    for (const QAction* action : window.findChildren<QAction*>()) texts += action->text();
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        texts += widget->toolTip();
        if (const auto* label = qobject_cast<const QLabel*>(widget)) texts += label->text();
        if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) texts += button->text();
        if (const auto* edit = qobject_cast<const QLineEdit*>(widget)) texts += edit->text();
        if (const auto* box = qobject_cast<const QComboBox*>(widget)) texts += box->placeholderText();
    }
    return texts;
}

}  // namespace

class CaptionsTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void EveryTextIsThere();
    void TheHelpTextBreaksItsLinesWhereItShould();
    void ATextBeyondTheTableIsAnError_data();
    void ATextBeyondTheTableIsAnError();
    void TheLanguageComesFromTheSettings();
    void ASettingThatIsNoNumberLeavesEnglish();

    void MenusLabelsAndButtonsSpeakEnglish();
    void TheAlarmEntryIsNeverTranslated();
    void CheckBoxesKeepTheirDesignCaptions();
    void TheDriveListIsLeftAlone();
    void TheFilterBoxShowsItsTextWithoutFiltering();
    void TheAccessTypeShowsItsTextOnlyWhileNothingIsChosen();
    void TextBoxesKeepTheirTexts();
    void AnAddressBoxKeepsWhatIsInIt();
    void Tag999LeavesTheCaptionAndSetsTheToolTip();
    void Tag777LeavesBoth();
    void OnlyOneLabelGetsAToolTip();
    void AControlWithoutAToolTipNumberGetsText0();
    void PartsThatAreNoControlsGetNothing();
    void ALabelWithoutANumberKeepsItsText();
    void AnotherLanguageChangesAllButTheMenus();
    void AnUnknownLanguageChangesNothing();
    void ALanguageThatLacksTextsSkipsOnlyThose();
    void FailingStepsAreRecorded();
    void PictureButtonsAreNamedByTheirToolTips();

private:
    void Set(const Language& language) { SetCaptions(*Form, language, Errors); }

    std::unique_ptr<SampleForm> Form;
    ErrorRecord Errors;
};

void CaptionsTest::init()
{
    Form = std::make_unique<SampleForm>();
    Errors.Clear();
    Set({});
}

void CaptionsTest::cleanup()
{
    Form.reset();
}

void CaptionsTest::EveryTextIsThere()
{
    QCOMPARE(TextCount, 77);
    for (int n = 0; n < TextCount; ++n) QVERIFY2(!English(n).trimmed().isEmpty(), qPrintable(QString::number(n)));
    QCOMPARE(English(0), QString("&Options"));
    QCOMPARE(English(41), QString("&Disconnect"));
    QCOMPARE(English(64), QString("Go to Quorvell's web site!"));
    QCOMPARE(English(70), QString("Connect to FTP site"));
    QCOMPARE(English(76), QString("Check for duplicates"));
}

void CaptionsTest::TheHelpTextBreaksItsLinesWhereItShould()
{
    const QStringList lines = English(72).split('\n');
    QCOMPARE(lines.size(), 5);
    QVERIFY(lines[0].startsWith("Use the SHIFT or CTRL key to select more then one file, then drag"));
    QVERIFY(lines[0].endsWith("[Your Files] window. "));
    QCOMPARE(lines[1], QString("Enter in the FTP address in the URL box. Example:  ftp: "));
    QVERIFY(lines[2].startsWith("Password - "));
    QVERIFY(lines[3].startsWith("User Name - "));
    QVERIFY(lines[3].endsWith("to erase passwords if needed. "));
    QCOMPARE(lines[4],
             QString("Use the command line to download another file at a different location, at the same time. "
                     "Enter complete URL address and file name."));
}

void CaptionsTest::ATextBeyondTheTableIsAnError_data()
{
    QTest::addColumn<int>("base");
    QTest::addColumn<int>("number");
    QTest::newRow("one past the end") << 1000 << 77;
    QTest::newRow("the mark of no text") << 1000 << 999;
    QTest::newRow("the mark of no tool tip") << 1000 << 777;
    QTest::newRow("below the table") << 1000 << -1;
    QTest::newRow("a base of no language") << 12000 << 0;
    QTest::newRow("no base") << 0 << 5;
    QTest::newRow("a negative base") << -1000 << 5;
}

void CaptionsTest::ATextBeyondTheTableIsAnError()
{
    QFETCH(int, base);
    QFETCH(int, number);
    Language language;
    language.LanguageBase = static_cast<std::int16_t>(base);
    QVERIFY_EXCEPTION_THROWN(language.LoadText(number), RuntimeError);
}

void CaptionsTest::TheLanguageComesFromTheSettings()
{
    const QTemporaryDir folder;
    SettingsStore settings(folder.filePath("Tolvane.conf"));
    QCOMPARE(LanguageFrom(settings).LanguageBase, 1000);
    QCOMPARE(LanguageFrom(settings).LanguageBase2, 100);
    settings.Write("Language", "5000");
    settings.Write("Language2", "500");
    QCOMPARE(LanguageFrom(settings).LanguageBase, 5000);
    QCOMPARE(LanguageFrom(settings).LanguageBase2, 500);
}

void CaptionsTest::ASettingThatIsNoNumberLeavesEnglish()
{
    const QTemporaryDir folder;
    SettingsStore settings(folder.filePath("Tolvane.conf"));
    settings.Write("Language", "English");
    settings.Write("Language2", "99999");
    QCOMPARE(LanguageFrom(settings).LanguageBase, 1000);
    QCOMPARE(LanguageFrom(settings).LanguageBase2, 100);
}

void CaptionsTest::MenusLabelsAndButtonsSpeakEnglish()
{
    QCOMPARE(Form->mnuSavFTPAddress->text(), QString("&Save all information"));
    QCOMPARE(Form->mnuOps->title(), QString("&Options"));
    QCOMPARE(Form->mnuChkMesg->title(), QString("&Msg"));
    QCOMPARE(Form->Protocol2_4->text(), QString("&Secure HTTP"));
    QCOMPARE(Form->mnuLamguage->text(), QString("&Language"));
    QCOMPARE(Form->Command14->text(), QString("Go"));
    QCOMPARE(Form->cmdConnect->text(), QString("&Connect"));
    QCOMPARE(Form->Command1->text(), QString("&Disconnect"));
    QCOMPARE(Form->lblURL->text(), QString("Enter the FTP's URL Here:"));
    QCOMPARE(Form->Label15->text(), QString("Enter URL and click on go"));
    for (const QAction* entry : Form->findChildren<QAction*>()) {
        bool isNumber = false;
        entry->text().toInt(&isNumber);
        QVERIFY2(!isNumber, qPrintable(entry->objectName()));
    }
}

void CaptionsTest::TheAlarmEntryIsNeverTranslated()
{
    QCOMPARE(Form->mnuAlarm->text(), QString("Alarm"));
    Set(German());
    QCOMPARE(Form->mnuAlarm->text(), QString("Alarm"));
}

void CaptionsTest::CheckBoxesKeepTheirDesignCaptions()
{
    QCOMPARE(Form->Check1->text(), QString("Disconnect when done."));
    QCOMPARE(Form->Check2->text(), QString("Check for duplicates"));
    Set(German());
    QCOMPARE(Form->Check1->text(), QString("Disconnect when done."));
    QCOMPARE(Form->Check2->text(), QString("Check for duplicates"));
    QCOMPARE(Form->Check1->toolTip(), QString());
}

void CaptionsTest::TheDriveListIsLeftAlone()
{
    QCOMPARE(Form->Drive1->placeholderText(), QString());
    QCOMPARE(Form->Drive1->toolTip(), QString());
}

void CaptionsTest::TheFilterBoxShowsItsTextWithoutFiltering()
{
    SampleForm form;
    const QSignalSpy typed(form.Combo2, &QComboBox::editTextChanged);
    const QSignalSpy changed(form.Combo2, &QComboBox::currentTextChanged);
    const QSignalSpy chosen(form.Combo2, &QComboBox::currentIndexChanged);
    const QSignalSpy picked(form.Combo2, &QComboBox::activated);
    form.Combo2->setEditText("*.gif*");
    QCOMPARE(typed.count(), 1);
    SetCaptions(form, {}, Errors);
    QCOMPARE(form.Combo2->currentText(), QString("Filter"));
    QCOMPARE(form.Combo2->lineEdit()->text(), QString("Filter"));
    QCOMPARE(typed.count() + changed.count() + chosen.count() + picked.count(), 2);
    QCOMPARE(form.Combo2->count(), 10);
}

void CaptionsTest::TheAccessTypeShowsItsTextOnlyWhileNothingIsChosen()
{
    QCOMPARE(Form->Combo1->currentIndex(), -1);
    QCOMPARE(Form->Combo1->placeholderText(), QString("Default"));
    QCOMPARE(Form->Combo1->itemText(1), QString("Direct Connection"));
    Form->Combo1->setCurrentIndex(1);
    Set({});
    QCOMPARE(Form->Combo1->currentText(), QString("Direct Connection"));
}

void CaptionsTest::TextBoxesKeepTheirTexts()
{
    QCOMPARE(Form->txtProxy->property("Tag").toString(), QString("57"));
    Form->txtProxy->setText("proxy.example.net:3128");
    Set({});
    QCOMPARE(Form->txtProxy->text(), QString("proxy.example.net:3128"));
    QCOMPARE(Form->txtProxy->toolTip(), QString());
    QCOMPARE(Form->txtPort->text(), QString("21"));
}

void CaptionsTest::AnAddressBoxKeepsWhatIsInIt()
{
    Form->txtURL->setEditText("ftp://files.example.net");
    Set({});
    QCOMPARE(Form->txtURL->currentText(), QString("ftp://files.example.net"));
    QCOMPARE(Form->txtCom->currentText(), QString("ftp://"));
}

void CaptionsTest::Tag999LeavesTheCaptionAndSetsTheToolTip()
{
    QCOMPARE(Form->Command4->toolTip(), QString("Move up a Folder"));
    QCOMPARE(Form->Command4->text(), QString());
    QCOMPARE(Form->Command16->toolTip(), QString("File Size"));
    QCOMPARE(Form->Command19->toolTip(), QString("File Size"));
    QCOMPARE(Form->Image3->toolTip(), QString("Check for duplicates"));
    QCOMPARE(Form->cmdPaste->toolTip(), QString("Paste from clipboard"));
    QCOMPARE(Form->Command14->toolTip(), QString("Connect to FTP site"));
}

void CaptionsTest::Tag777LeavesBoth()
{
    const SampleForm untouched;
    QCOMPARE(Form->Command22->text(), QString("L"));
    QCOMPARE(Form->Command22->toolTip(), untouched.Command22->toolTip());
    QCOMPARE(Form->Command23->toolTip(), untouched.Command23->toolTip());
    QCOMPARE(Form->Command25->toolTip(), untouched.Command25->toolTip());
    QCOMPARE(Form->Slider1->toolTip(), QString("Set Request Timeout"));
    QVERIFY(!Form->Command22->toolTip().isEmpty());
}

void CaptionsTest::OnlyOneLabelGetsAToolTip()
{
    QStringList withToolTip;
    for (const QLabel* label : Form->findChildren<QLabel*>())
        if (!label->toolTip().isEmpty()) withToolTip += label->objectName();
    QCOMPARE(withToolTip, QStringList({"DrvSpace"}));
    QCOMPARE(Form->DrvSpace->toolTip(), QString("Space available on your hard drive"));
    QCOMPARE(Form->DrvSpace->text(), QString());
    Set(German());
    QCOMPARE(Form->DrvSpace->toolTip(), German(63));
}

void CaptionsTest::AControlWithoutAToolTipNumberGetsText0()
{
    QWidget window;
    QPushButton button(&window);
    button.setObjectName("Command99");
    button.setProperty("Tag", "999");
    QLineEdit box(&window);
    box.setObjectName("txtAny");
    SetCaptions(window, {}, Errors);
    QCOMPARE(button.toolTip(), QString("&Options"));
    QCOMPARE(box.toolTip(), QString());
}

void CaptionsTest::PartsThatAreNoControlsGetNothing()
{
    for (const QWidget* widget : Form->findChildren<QWidget*>()) {
        if (qobject_cast<const Picture*>(widget) != nullptr) continue;
        QVERIFY2(!widget->toolTip().contains("Options"), qPrintable(widget->objectName()));
    }
    QCOMPARE(Form->TransferProgress->toolTip(), QString());
    QCOMPARE(Form->txtURL->lineEdit()->toolTip(), QString());
}

void CaptionsTest::ALabelWithoutANumberKeepsItsText()
{
    QCOMPARE(Form->sbFTP->text(), QString("Waiting ..."));
    QCOMPARE(Form->SlideVal->text(), QString("30"));
    QCOMPARE(Form->Label2_0->text(), QString("0"));
    Form->LblTimer->setText("59");
    Set({});
    QCOMPARE(Form->LblTimer->text(), QString("59"));
}

void CaptionsTest::AnotherLanguageChangesAllButTheMenus()
{
    Set(German());
    QCOMPARE(Form->LblStatus->text(), German(24));
    QCOMPARE(Form->cmdConnect->text(), German(40));
    QCOMPARE(Form->Combo2->currentText(), German(42));
    QCOMPARE(Form->Combo1->placeholderText(), German(46));
    QCOMPARE(Form->Command4->toolTip(), German(53));
    QCOMPARE(Form->cmdConnect->toolTip(), German(58));
    QCOMPARE(Form->mnuOps->title(), English(0));
    QCOMPARE(Form->mnuExit->text(), English(8));
}

void CaptionsTest::AnUnknownLanguageChangesNothing()
{
    SampleForm form;
    const QStringList before = Texts(form);
    SetCaptions(form, UnknownLanguage(), Errors);
    QCOMPARE(Texts(form), before);
}

void CaptionsTest::ALanguageThatLacksTextsSkipsOnlyThose()
{
    Language last;
    last.LanguageBase = 1036;  // has the texts up to 40 only
    SampleForm form;
    SetCaptions(form, last, Errors);
    QCOMPARE(form.cmdConnect->text(), English(76));
    QCOMPARE(form.Command1->text(), SampleForm().Command1->text());
    QCOMPARE(form.LblStatus->text(), English(60));
    QCOMPARE(form.Combo2->currentText(), QString("Filter"));
    QCOMPARE(form.Command4->toolTip(), QString("53"));
}

void CaptionsTest::FailingStepsAreRecorded()
{
    QVERIFY(!Errors.Description().isEmpty());
}

void CaptionsTest::PictureButtonsAreNamedByTheirToolTips()
{
    QCOMPARE(Form->Command4->accessibleName(), QString("Move up a Folder"));
    QCOMPARE(Form->Image1->accessibleName(), QString("Click to SEND files to FTP site"));
    QCOMPARE(Form->Command22->accessibleName(), Form->Command22->toolTip());
    QCOMPARE(Form->txtURL->accessibleName(), QString("Enter the FTP's URL Here"));
    Set(German());
    QCOMPARE(Form->Command4->accessibleName(), German(53));
}

QTEST_MAIN(CaptionsTest)
#include "captions_test.moc"
