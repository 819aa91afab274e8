#include "dialogs/pic_view.h"
#include "dialogs/picture_file.h"
#include "dialogs/text_input.h"
#include "i18n/language.h"
#include "i18n/toolkit_texts.h"
#include "shell/asker.h"
#include "shell/sole_input.h"
#include "support/clipping.h"

#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <functional>

/// No text is cut off in the windows over the main one, in any of the ten languages. Runs at several scales.
class DialogsFitTest : public QObject {
    Q_OBJECT

private slots:

    void initTestCase() { FontBefore = QApplication::font(); }

    void init();

    void cleanup() { QApplication::setFont(FontBefore); }

    void Questions_data() { AddLanguagesAndFonts(); }

    void Questions();

    void ButtonsSpeakTheLanguage();

    void TheTextInput_data() { AddLanguagesAndFonts(); }

    void TheTextInput();

    void SentencesOfThePictureViewer_data() { AddLanguagesAndFonts(); }

    void SentencesOfThePictureViewer();

private:
    static void AddLanguagesAndFonts();
    QString FaultsWhileOpen(const char* className, const std::function<void()>& open, const std::function<void()>& end);

    QFont FontBefore;
    Language Texts;
    ToolkitTexts Toolkit;
    QWidget Window;
    SoleInput Input;
};

void DialogsFitTest::AddLanguagesAndFonts()
{
    QTest::addColumn<int>("base");
    QTest::addColumn<int>("percent");
    for (int base = 1000; base <= 10000; base += 1000)
        for (const int percent : {100, 120}) QTest::addRow("%d, letters %d %% wide", base, percent) << base << percent;
}

void DialogsFitTest::init()
{
    if (QTest::currentDataTag() == nullptr) return;
    QFETCH(const int, base);
    QFETCH(const int, percent);
    Texts.LanguageBase = static_cast<std::int16_t>(base);
    Toolkit.Follow(Texts);
    QFont font = FontBefore;
    font.setStretch(percent);
    QApplication::setFont(font);
}

/// What does not fit in the window of that class which `open` shows until `end` closes it.
QString DialogsFitTest::FaultsWhileOpen(const char* className, const std::function<void()>& open,
                                        const std::function<void()>& end)
{
    QString faults = "nothing was shown";
    QTimer::singleShot(0, this, [&] {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window->isVisible() && window->inherits(className) && QTest::qWaitForWindowExposed(window))
                faults = Clipping::Of(*window).join("; ");
        end();
    });
    open();
    return faults;
}

void DialogsFitTest::Questions()
{
    const QString erase = Texts.LoadText(74);
    const QString title = Texts.LoadText(75);
    const QString later = Texts.LoadText(72);
    const QList<Question> questions{
        {erase, title, Question::Critical, Question::YesNo, true},
        {later, title, Question::Information, Question::Ok, false},
        {"Cannot cancel last command. Still executing.", "Cancel error", Question::Critical, Question::RetryCancel},
        {"File " + QString(250, 'W') + ".html already exist on server.  Overwrite?", "Tolvane", Question::QuestionMark,
         Question::YesNo, true},
    };
    for (const Question& question : questions) {
        MessageBoxAsker asker(Window, Input);
        QCOMPARE(FaultsWhileOpen(
                     "QMessageBox", [&] { asker.Ask(question); }, [&] { asker.End(); }),
                 QString());
    }
}

void DialogsFitTest::ButtonsSpeakTheLanguage()
{
    const auto buttons = [&](int base) {
        Texts.LanguageBase = static_cast<std::int16_t>(base);
        Toolkit.Follow(Texts);
        QStringList words;
        for (const QMessageBox::StandardButton button :
             {QMessageBox::Yes, QMessageBox::No, QMessageBox::Cancel, QMessageBox::Retry}) {
            QMessageBox box;
            words += box.addButton(button)->text().remove('&');
        }
        return words;
    };
    QCOMPARE(buttons(1000), (QStringList{"Yes", "No", "Cancel", "Retry"}));
    QCOMPARE(buttons(5000).first(2), (QStringList{"Ja", "Nein"}));
    QStringList spoken;
    for (int base = 1000; base <= 10000; base += 1000) spoken += buttons(base)[2];
    QCOMPARE(spoken.count("Cancel"), 1);
}

void DialogsFitTest::TheTextInput()
{
    QString answer;
    for (const char* title : {"Enter new folder name.", "Enter new file name."}) {
        TextInputDialog dialog(Window, Input, answer, [] {});
        QCOMPARE(FaultsWhileOpen(
                     "QDialog", [&] { dialog.Ask(title, "a file of mine.html"); }, [&] { dialog.End(); }),
                 QString());
    }
}

void DialogsFitTest::SentencesOfThePictureViewer()
{
    for (const auto fault :
         {PictureFault::Unreadable, PictureFault::NoPicture, PictureFault::Incomplete, PictureFault::TooLarge}) {
        PicView view(Window);
        LoadedPicture picture;
        picture.Fault = fault;
        view.Take("/a/picture.gif", picture);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QCOMPARE(Clipping::Of(view).join("; "), QString());
    }
}

QTEST_MAIN(DialogsFitTest)
#include "dialogs_fit_test.moc"
