#include "base/run_time_error.h"
#include "i18n/caption_setter.h"
#include "i18n/language.h"
#include "i18n/language_chooser.h"
#include "shell/settings_store.h"
#include "shell/sole_input.h"
#include "support/clipping.h"
#include "support/sample_form.h"

#include <QApplication>
#include <QDialog>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

/// No text is cut off in any of the ten languages. Runs at several scales of the screen.
class LanguagesFitTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void TheMainWindow_data();
    void TheMainWindow();
    void TheChooser_data();
    void TheChooser();
    void ATextThatDoesNotFitIsFound();

private:
    static void AddLanguagesAndFonts();
    static void UseFont(int percent);
    QFont FontBefore;
};

namespace {

Language LanguageAt(int base)
{
    Language language;
    language.LanguageBase = static_cast<std::int16_t>(base);
    return language;
}

}  // namespace

void LanguagesFitTest::initTestCase()
{
    FontBefore = QApplication::font();
}

void LanguagesFitTest::cleanup()
{
    QApplication::setFont(FontBefore);
}

void LanguagesFitTest::AddLanguagesAndFonts()
{
    QTest::addColumn<int>("base");
    QTest::addColumn<int>("percent");
    for (int base = 1000; base <= 10000; base += 1000)
        for (const int percent : {100, 120}) QTest::addRow("%d, letters %d %% wide", base, percent) << base << percent;
}

void LanguagesFitTest::UseFont(int percent)
{
    QFont font = QApplication::font();
    font.setStretch(percent);
    QApplication::setFont(font);
}

void LanguagesFitTest::TheMainWindow_data()
{
    AddLanguagesAndFonts();
}

void LanguagesFitTest::TheMainWindow()
{
    QFETCH(const int, base);
    QFETCH(const int, percent);
    UseFont(percent);
    SampleForm form;
    ErrorRecord errors;
    SetCaptions(form, LanguageAt(base), errors);
    form.show();
    QVERIFY(QTest::qWaitForWindowActive(&form));
    form.UncoverCommandLine();
    form.ShowStopwatch();
    QApplication::processEvents();
    QCOMPARE(Clipping::Of(form).join("; "), QString());
    form.FillIn();
    QApplication::processEvents();
    QCOMPARE(Clipping::Of(form).join("; "), QString());
    QCOMPARE(form.size(), SampleForm::FullSize);
}

void LanguagesFitTest::TheChooser_data()
{
    AddLanguagesAndFonts();
}

void LanguagesFitTest::TheChooser()
{
    QFETCH(const int, base);
    QFETCH(const int, percent);
    UseFont(percent);
    const QTemporaryDir folder;
    SettingsStore settings(folder.filePath("Tolvane.conf"));
    Language texts = LanguageAt(base);
    SoleInput input;
    ErrorRecord errors;
    LanguageChooser chooser({texts, settings, input, errors});
    QString faults = "nothing was shown";
    QTimer::singleShot(0, &chooser, [&] {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName() != "frmOpen") continue;
            if (QTest::qWaitForWindowExposed(window)) faults = Clipping::Of(*window).join("; ");
        }
        chooser.End();
    });
    chooser.Show(nullptr);
    QCOMPARE(faults, QString());
}

void LanguagesFitTest::ATextThatDoesNotFitIsFound()
{
    SampleForm form;
    ErrorRecord errors;
    SetCaptions(form, LanguageAt(5000), errors);
    form.cmdConnect->setFixedWidth(40);
    form.LblStatus->setFixedWidth(10);
    form.Combo2->setFixedWidth(30);
    form.Check2->setFixedWidth(50);
    form.show();
    QVERIFY(QTest::qWaitForWindowActive(&form));
    const QString faults = Clipping::Of(form).join("; ");
    for (const char* name : {"cmdConnect", "LblStatus", "Combo2", "Check2"})
        QVERIFY2(faults.contains(QString(name) + " needs"), name);
}

QTEST_MAIN(LanguagesFitTest)
#include "languages_fit_test.moc"
