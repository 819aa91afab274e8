#include "base/byte_text.h"
#include "dialogs/text_input.h"
#include "shell/asker.h"
#include "shell/sole_input.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>
#include <functional>
#include <memory>

namespace {

/// Waits for the window itself to be active: the toolkit counts its parent too.
bool IsActive(QWidget& window)
{
    return QTest::qWaitFor([&] { return QApplication::activeWindow() == &window; });
}

/// A main window with a box, a button and an entry, and the dialog over it.
struct Desk {
    Desk()
    {
        auto* layout = new QVBoxLayout(&Window);
        layout->addWidget(&Box);
        layout->addWidget(&Button);
        Window.addAction(&Entry);
        Entry.setShortcut(Qt::CTRL | Qt::Key_E);
        QObject::connect(&Entry, &QAction::triggered, [this] { ++Triggered; });
        QObject::connect(&Button, &QPushButton::clicked, [this] { ++Clicked; });
        Window.show();
        Window.activateWindow();
    }

    /// The dialog now open.
    QDialog& Form() const { return *Window.findChild<QDialog*>("frmText"); }

    QLineEdit& Text1() const { return *Form().findChild<QLineEdit*>("Text1"); }

    QPushButton& Command(int number) const { return *Form().findChild<QPushButton*>(QString("Command%1").arg(number)); }

    /// Asks, and lets the user act once the dialog is up.
    void Ask(const std::function<void()>& act, const QString& prefill = {},
             const QString& title = "Enter new file name.")
    {
        QTimer::singleShot(0, &Window, [this, act] {
            QVERIFY(Window.findChild<QDialog*>("frmText") != nullptr);
            if (IsActive(Form())) act();
            if (auto* left = Window.findChild<QDialog*>("frmText"); left != nullptr && left->isVisible()) {
                left->close();
                QFAIL("The dialog is still open");
            }
        });
        Dialog.Ask(title, prefill);
        QVERIFY(Window.findChild<QDialog*>("frmText") == nullptr);
    }

    QWidget Window;
    QLineEdit Box{&Window};
    QPushButton Button{"&Button", &Window};
    QAction Entry{"&Entry", &Window};
    SoleInput Input;
    QString InputText;
    int Beeps = 0;
    int Triggered = 0;
    int Clicked = 0;
    TextInputDialog Dialog{Window, Input, InputText, [this] { ++Beeps; }};
    MessageBoxAsker Asker{Window, Input};
};

}  // namespace

class TextInputTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void TheFormHasItsControlsAndCaptions();
    void OkWithAnEmptyBoxBeepsAndStays();
    void OkTakesTheTextWithoutTheBlanksAround();
    void BlanksAloneAreAcceptedAndYieldNothing();
    void OkIsPressedByMouse();
    void EnterIsOkAlsoFromTheBox();
    void MnemonicsPressTheButtons();
    void EscapeIsCancel();
    void CancelEmptiesAPrefilledAnswer();
    void TheTitleBarLeavesThePrefilledAnswer();
    void ThePrefillIsOfferedForEditing();
    void EachUseStartsAfresh();
    void NamesThatAreNoUtf8ComeBackAsTheyWere();

    void TheMainWindowTakesNoInputMeanwhile();
    void TheMainWindowCanBeClosedMeanwhile();
    void TheContextMenuOfTheBoxWorks();
    void AQuestionOnTopTakesTheInputUntilItIsAnswered();
    void TheEndOfTheProgramCancels();
    void AfterTheEndEveryQuestionIsCancelledAtOnce();

private:
    std::unique_ptr<Desk> My;
};

void TextInputTest::init()
{
    My = std::make_unique<Desk>();
    QVERIFY(IsActive(My->Window));
}

void TextInputTest::cleanup()
{
    My.reset();
}

void TextInputTest::TheFormHasItsControlsAndCaptions()
{
    My->Ask([this] {
        QCOMPARE(My->Form().windowTitle(), QString("Enter new file name."));
        QVERIFY(!My->Form().windowIcon().isNull());
        QVERIFY(!My->Form().windowIcon().pixmap(32).isNull());
        QVERIFY(!My->Form().isModal());
        QCOMPARE(My->Command(1).text(), QString("&Ok"));
        QCOMPARE(My->Command(2).text(), QString("&Cancel"));
        QVERIFY(My->Text1().hasFocus());
        QTest::keyClick(&My->Text1(), Qt::Key_Escape);
    });
}

void TextInputTest::OkWithAnEmptyBoxBeepsAndStays()
{
    My->Ask([this] {
        QTest::mouseClick(&My->Command(1), Qt::LeftButton);
        QCOMPARE(My->Beeps, 1);
        QVERIFY(My->Form().isVisible());
        QTest::keyClick(&My->Text1(), Qt::Key_Return);
        QCOMPARE(My->Beeps, 2);
        QVERIFY(My->Form().isVisible());
        QTest::mouseClick(&My->Command(2), Qt::LeftButton);
    });
    QCOMPARE(My->InputText, QString());
}

void TextInputTest::OkTakesTheTextWithoutTheBlanksAround()
{
    My->Ask([this] {
        QTest::keyClicks(&My->Text1(), "  new  folder ");
        QTest::keyClick(&My->Text1(), Qt::Key_Return);
    });
    QCOMPARE(My->InputText, QString("new  folder"));
    QCOMPARE(My->Beeps, 0);
}

void TextInputTest::BlanksAloneAreAcceptedAndYieldNothing()
{
    My->InputText = "old.txt";
    My->Ask([this] {
        QTest::keyClicks(&My->Text1(), "   ");
        QTest::keyClick(&My->Text1(), Qt::Key_Return);
    });
    QCOMPARE(My->InputText, QString());
    QCOMPARE(My->Beeps, 0);
}

void TextInputTest::OkIsPressedByMouse()
{
    My->Ask([this] {
        QTest::keyClicks(&My->Text1(), "a");
        QTest::mouseClick(&My->Command(1), Qt::LeftButton);
    });
    QCOMPARE(My->InputText, QString("a"));
}

void TextInputTest::EnterIsOkAlsoFromTheBox()
{
    My->Ask([this] {
        QTest::keyClicks(&My->Text1(), "a");
        QTest::keyClick(&My->Text1(), Qt::Key_Enter);
    });
    QCOMPARE(My->InputText, QString("a"));
}

void TextInputTest::MnemonicsPressTheButtons()
{
    My->Ask([this] {
        QTest::keyClicks(&My->Text1(), "a");
        QTest::keyClick(&My->Text1(), Qt::Key_O, Qt::AltModifier);
        QTRY_VERIFY(!My->Form().isVisible());
    });
    QCOMPARE(My->InputText, QString("a"));
    My->Ask([this] {
        QTest::keyClick(&My->Text1(), Qt::Key_C, Qt::AltModifier);
        QTRY_VERIFY(!My->Form().isVisible());
    });
    QCOMPARE(My->InputText, QString());
}

void TextInputTest::EscapeIsCancel()
{
    My->InputText = "old.txt";
    My->Ask([this] { QTest::keyClick(&My->Text1(), Qt::Key_Escape); }, "old.txt");
    QCOMPARE(My->InputText, QString());
}

void TextInputTest::CancelEmptiesAPrefilledAnswer()
{
    My->InputText = "old.txt";
    My->Ask([this] { QTest::mouseClick(&My->Command(2), Qt::LeftButton); }, "old.txt");
    QCOMPARE(My->InputText, QString());
}

void TextInputTest::TheTitleBarLeavesThePrefilledAnswer()
{
    My->InputText = "old.txt";
    My->Ask(
        [this] {
            QTest::keyClicks(&My->Text1(), "typed");
            My->Form().close();
        },
        "old.txt");
    QCOMPARE(My->InputText, QString("old.txt"));
}

void TextInputTest::ThePrefillIsOfferedForEditing()
{
    My->InputText = "old.txt";
    My->Ask(
        [this] {
            QCOMPARE(My->Text1().text(), QString("old.txt"));
            QTest::keyClick(&My->Text1(), Qt::Key_End);
            QTest::keyClicks(&My->Text1(), ".bak");
            QTest::keyClick(&My->Text1(), Qt::Key_Return);
        },
        "old.txt");
    QCOMPARE(My->InputText, QString("old.txt.bak"));
}

void TextInputTest::EachUseStartsAfresh()
{
    My->Ask([this] {
        QTest::keyClicks(&My->Text1(), "first");
        QTest::keyClick(&My->Text1(), Qt::Key_Return);
    });
    My->Ask(
        [this] {
            QCOMPARE(My->Text1().text(), QString());
            QCOMPARE(My->Form().windowTitle(), QString("Enter new folder name."));
            QTest::keyClick(&My->Text1(), Qt::Key_Escape);
        },
        {}, "Enter new folder name.");
}

void TextInputTest::NamesThatAreNoUtf8ComeBackAsTheyWere()
{
    const QString name = BytesToText("caf\xE9.txt");
    My->Ask(
        [this] {
            QTest::keyClick(&My->Text1(), Qt::Key_End);
            QTest::keyClicks(&My->Text1(), "2");
            QTest::keyClick(&My->Text1(), Qt::Key_Return);
        },
        name);
    QCOMPARE(TextToBytes(My->InputText), QByteArray("caf\xE9.txt2"));
}

void TextInputTest::TheMainWindowTakesNoInputMeanwhile()
{
    My->Ask([this] {
        QTest::keyClicks(&My->Box, "x");
        QTest::mouseClick(&My->Button, Qt::LeftButton);
        QTest::keyClick(&My->Window, Qt::Key_E, Qt::ControlModifier);
        QTest::keyClick(&My->Text1(), Qt::Key_E, Qt::ControlModifier);
        QTest::keyClick(&My->Text1(), Qt::Key_Escape);
    });
    QCOMPARE(My->Box.text(), QString());
    QCOMPARE(My->Clicked, 0);
    QCOMPARE(My->Triggered, 0);

    My->Window.activateWindow();
    QVERIFY(IsActive(My->Window));
    QTest::keyClicks(&My->Box, "x");
    QTest::mouseClick(&My->Button, Qt::LeftButton);
    QTest::keyClick(&My->Window, Qt::Key_E, Qt::ControlModifier);
    QCOMPARE(My->Box.text(), QString("x"));
    QCOMPARE(My->Clicked, 1);
    QCOMPARE(My->Triggered, 1);
}

void TextInputTest::TheMainWindowCanBeClosedMeanwhile()
{
    My->InputText = "old.txt";
    My->Ask(
        [this] {
            QVERIFY(My->Window.close());
            My->Dialog.End();
        },
        "old.txt");
    QVERIFY(!My->Window.isVisible());
    QCOMPARE(My->InputText, QString());
}

void TextInputTest::TheContextMenuOfTheBoxWorks()
{
    My->Ask(
        [this] {
            QContextMenuEvent wish(QContextMenuEvent::Mouse, QPoint(5, 5), My->Text1().mapToGlobal(QPoint(5, 5)));
            QApplication::sendEvent(&My->Text1(), &wish);
            QTRY_VERIFY(QApplication::activePopupWidget() != nullptr);
            auto& menu = *qobject_cast<QMenu*>(QApplication::activePopupWidget());
            for (QAction* action : menu.actions()) {
                if (!action->text().contains("Delete")) continue;
                QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(action).center());
            }
            QTRY_COMPARE(My->Text1().text(), QString());
            QTest::keyClick(&My->Text1(), Qt::Key_Escape);
        },
        "old.txt");
}

void TextInputTest::AQuestionOnTopTakesTheInputUntilItIsAnswered()
{
    Answer answer = Answer::Yes;
    My->Ask([&] {
        QTimer::singleShot(0, &My->Window, [&] {
            auto& box = *My->Window.findChild<QMessageBox*>();
            QTest::keyClicks(&My->Text1(), "x");
            QTest::keyClick(&box, Qt::Key_Escape);
        });
        answer = My->Asker.Ask({"Sure?", "Title"});
        QCOMPARE(My->Text1().text(), QString());
        QTest::keyClicks(&My->Text1(), "y");
        QTest::keyClick(&My->Text1(), Qt::Key_Return);
    });
    QCOMPARE(answer, Answer::No);
    QCOMPARE(My->InputText, QString("y"));
}

void TextInputTest::TheEndOfTheProgramCancels()
{
    My->InputText = "old.txt";
    My->Ask([this] { My->Dialog.End(); }, "old.txt");
    QCOMPARE(My->InputText, QString());
}

void TextInputTest::AfterTheEndEveryQuestionIsCancelledAtOnce()
{
    My->Dialog.End();
    My->InputText = "old.txt";
    My->Dialog.Ask("Enter new file name.", "old.txt");
    QCOMPARE(My->InputText, QString());
}

QTEST_MAIN(TextInputTest)

#include "text_input_test.moc"
