#include "controls/picture_strip.h"
#include "support/window_fixture.h"

#include <QAbstractButton>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QPushButton>

/// The about box, the help, "Why free?", the advertisements and the web pages.
class SmallWindowsTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void TheMenuShowsTheAboutBox();
    void DoneTakesItAway();
    void EscapeTakesItAway();
    void AskedForTwiceItIsOneBox();
    void ItIsShownWhileTheProgramStarts();
    void ItsTitleFollowsTheLanguage();
    void ItsLinksAskAndOpenThePage_data();
    void ItsLinksAskAndOpenThePage();
    void ItsLinksWorkByKeyboard();
    void AChangeOfLanguageLeavesItsButtonAlone();
    void ItGoesWithTheProgram();

    void TheWebButtonAsksFirst();
    void AnsweringNoOpensNothing();

    void HelpShowsTheTextOfTheLanguage();
    void MoreHelpOpensTheManual();
    void NoMoreHelpOpensNothing();
    void AMissingManualIsTold();
    void AnEditorThatCannotStartIsTold();
    void TheManualShipsWithTheProgram();
    void WhyFreeExplains();

    void ThirtyPicturesShowThirtyDifferentThings();
    void TheStripTurns();
    void TheStripTurnsByItself();
    void AClickAsksBeforeItOpensAnything();
    void ThePicturesAreReadOutAsTheOffer();
    void AfterAChangeOfLanguageTheOfferIsThereAgain();

private:
    QDialog* Box() const { return Program->Window->findChild<QDialog*>("Abouts"); }

    QStringList Titles() const;
    void ChooseGerman() const;

    QString Front() const { return Program->Control<PictureStrip>("AdsStrip").Front()->objectName(); }

    std::unique_ptr<WindowFixture> Program;
};

namespace {

constexpr auto MakersSite = "https://www.quorvell.example/";

}  // namespace

void SmallWindowsTest::init()
{
    Program = std::make_unique<WindowFixture>();
    Program->Open();
}

void SmallWindowsTest::cleanup()
{
    Program.reset();
}

QStringList SmallWindowsTest::Titles() const
{
    QStringList titles;
    for (const Question& question : Program->Questions.Questions) titles += question.Title;
    return titles;
}

void SmallWindowsTest::ChooseGerman() const
{
    QTimer::singleShot(0, Program->Window.get(), [] {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window->objectName() == "frmOpen")
                QTest::mouseClick(window->findChild<QWidget*>("Command4"), Qt::LeftButton);
    });
    Program->Choose("mnuLamguage");
    QCOMPARE(Program->Texts.LanguageBase, std::int16_t(5000));
}

void SmallWindowsTest::TheMenuShowsTheAboutBox()
{
    Program->Choose("mnuAbout");
    QVERIFY(Box() != nullptr && Box()->isVisible());
    QStringList texts;
    for (const QLabel* label : Box()->findChildren<QLabel*>()) texts += label->text();
    QVERIFY(texts.contains("Tolvane"));
    QVERIFY(texts.contains("Version 3.2"));
    QVERIFY(texts.contains("32-bit, Internet, Drag && Drop, Free. File Transfer Protocol Program."));
    QVERIFY(!Box()->findChild<QLabel*>("Image1")->pixmap().isNull());
    QCOMPARE(Box()->findChild<QPushButton*>("Command1")->text(), QString("&Done"));
    QVERIFY(!Box()->isModal());
}

void SmallWindowsTest::DoneTakesItAway()
{
    Program->Choose("mnuAbout");
    QTest::mouseClick(Box()->findChild<QPushButton*>("Command1"), Qt::LeftButton);
    QTRY_VERIFY(Box() == nullptr);
}

void SmallWindowsTest::EscapeTakesItAway()
{
    Program->Choose("mnuAbout");
    QTest::keyClick(Box(), Qt::Key_Escape);
    QTRY_VERIFY(Box() == nullptr);
    Program->Choose("mnuAbout");
    QVERIFY(Box() != nullptr && Box()->isVisible());
}

void SmallWindowsTest::AskedForTwiceItIsOneBox()
{
    Program->Choose("mnuAbout");
    Program->Choose("mnuAbout");
    QCOMPARE(Program->Window->findChildren<QDialog*>("Abouts").size(), 1);
}

void SmallWindowsTest::ItIsShownWhileTheProgramStarts()
{
    Program->Window->Form_Initialize();
    QVERIFY(Box() != nullptr && Box()->isVisible());
    QVERIFY(!Box()->isActiveWindow());
    QVERIFY(QMetaObject::invokeMethod(&Program->Control<QTimer>("Timer1"), "timeout"));
    QTRY_VERIFY(Box() == nullptr);
    // It may have been closed before the time was over.
    QVERIFY(QMetaObject::invokeMethod(&Program->Control<QTimer>("Timer1"), "timeout"));
}

void SmallWindowsTest::ItsTitleFollowsTheLanguage()
{
    Program->Texts.LanguageBase = 5000;
    Program->Choose("mnuAbout");
    QCOMPARE(Box()->windowTitle(), Program->Texts.LoadText(18).remove(u'&'));
    Program->Texts.LanguageBase = 1000;
}

void SmallWindowsTest::ItsLinksAskAndOpenThePage_data()
{
    QTest::addColumn<QString>("label");
    QTest::newRow("Label6") << "Label6";
    QTest::newRow("Label7") << "Label7";
}

void SmallWindowsTest::ItsLinksAskAndOpenThePage()
{
    QFETCH(const QString, label);
    Program->Choose("mnuAbout");
    Program->Questions.Answers = {Answer::No, Answer::Yes};
    auto* link = Box()->findChild<QWidget*>(label);
    QTest::mouseClick(link, Qt::LeftButton);
    QCOMPARE(Program->Opened, QStringList());
    QTest::mouseClick(link, Qt::LeftButton);
    QCOMPARE(Program->Opened, QStringList{MakersSite});
    QCOMPARE(Titles(), (QStringList{"Run WWW Browser?", "Run WWW Browser?"}));
}

void SmallWindowsTest::ItsLinksWorkByKeyboard()
{
    Program->Choose("mnuAbout");
    Program->Questions.Answers = {Answer::Yes, Answer::Yes};
    QTest::keyClick(Box()->findChild<QWidget*>("Label6"), Qt::Key_Return);
    QTest::keyClick(Box()->findChild<QWidget*>("Label7"), Qt::Key_Space);
    QCOMPARE(Program->Opened, (QStringList{MakersSite, MakersSite}));
}

void SmallWindowsTest::AChangeOfLanguageLeavesItsButtonAlone()
{
    Program->Choose("mnuAbout");
    ChooseGerman();
    QCOMPARE(Program->Control<QLabel>("lblURL").text(), Program->Texts.LoadText(27));
    QCOMPARE(Box()->findChild<QPushButton*>("Command1")->text(), QString("&Done"));
    QCOMPARE(Box()->findChild<QPushButton*>("Command1")->toolTip(), QString());
    Program->Texts.LanguageBase = 1000;
}

void SmallWindowsTest::ItGoesWithTheProgram()
{
    Program->Choose("mnuAbout");
    const QPointer<QDialog> box = Box();
    Program->Window->close();
    QVERIFY(box == nullptr || !box->isVisible());
}

void SmallWindowsTest::TheWebButtonAsksFirst()
{
    Program->Questions.Answers = {Answer::Yes};
    Program->Click("Command3");
    QCOMPARE(Program->Questions.Texts(), QStringList{"Launch  your Browser?  Do you wish to continue?"});
    QCOMPARE(Titles(), QStringList{"Run WWW Browser?"});
    QCOMPARE(Program->Questions.Questions[0].Choice, Question::YesNo);
    QCOMPARE(Program->Opened, QStringList{MakersSite});
}

void SmallWindowsTest::AnsweringNoOpensNothing()
{
    Program->Questions.Answers = {Answer::No, Answer::No, Answer::No};
    Program->Click("Command3");
    Program->Choose("mnuHelp2");
    QTest::mouseClick(Program->Control<PictureStrip>("AdsStrip").Front(), Qt::LeftButton);
    QCOMPARE(Program->Questions.Questions.size(), std::size_t(3));
    QCOMPARE(Program->Opened, QStringList());
    QCOMPARE(Program->Edited, QStringList());
}

void SmallWindowsTest::HelpShowsTheTextOfTheLanguage()
{
    for (int base = 1000; base <= 10000; base += 1000) {
        Program->Questions.Questions.clear();
        Program->Texts.LanguageBase = static_cast<std::int16_t>(base);
        Program->Choose("mnuHelp2");
        const Question& help = Program->Questions.Questions.at(0);
        QCOMPARE(QString(help.Text).remove(u'\r'), Program->Texts.LoadText(72) + "  View more help?");
        QCOMPARE(help.Title, Program->Texts.LoadText(16).mid(1));
        QVERIFY(!help.Title.contains(u'&'));
        QCOMPARE(help.Sign, Question::Information);
        QCOMPARE(help.Choice, Question::YesNo);
        QVERIFY(help.Foreground);
        if (base == 1000) QCOMPARE(help.Title, QString("Help"));
    }
    Program->Texts.LanguageBase = 1000;
}

void SmallWindowsTest::MoreHelpOpensTheManual()
{
    QFile manual(Program->HomeFolder() + "/help.txt");
    QVERIFY(manual.open(QIODevice::WriteOnly));
    Program->Questions.Answers = {Answer::Yes};
    Program->Choose("mnuHelp2");
    QCOMPARE(Program->Edited, QStringList{QDir::toNativeSeparators(manual.fileName())});
    QCOMPARE(Program->Questions.Questions.size(), std::size_t(1));
}

void SmallWindowsTest::NoMoreHelpOpensNothing()
{
    Program->Choose("mnuHelp2");
    QCOMPARE(Program->Edited, QStringList());
    QCOMPARE(Program->Questions.Questions.size(), std::size_t(1));
}

void SmallWindowsTest::AMissingManualIsTold()
{
    Program->Questions.Answers = {Answer::Yes};
    Program->Choose("mnuHelp2");
    QCOMPARE(Program->Questions.Texts().mid(1), QStringList{"Help.txt file missing"});
    QCOMPARE(Titles().mid(1), QStringList{"Missing File"});
    QCOMPARE(Program->Edited, QStringList());
}

void SmallWindowsTest::AnEditorThatCannotStartIsTold()
{
    QFile manual(Program->HomeFolder() + "/help.txt");
    QVERIFY(manual.open(QIODevice::WriteOnly));
    Program->EditorComplaint = "File not found";
    Program->Questions.Answers = {Answer::Yes};
    Program->Choose("mnuHelp2");
    QCOMPARE(Program->Questions.Texts().mid(1), QStringList{"Help.txt file missing"});
    QCOMPARE(Titles().mid(1), QStringList{"Missing File"});
}

void SmallWindowsTest::TheManualShipsWithTheProgram()
{
    QFile manual(QCoreApplication::applicationDirPath() + "/../bin/help.txt");
    QVERIFY2(manual.open(QIODevice::ReadOnly), "help.txt lies beside the program");
    const QString text = QString::fromUtf8(manual.readAll());
    // What its readers look for first.
    for (const char* word : {"UNIX", "right mouse button", "Command line", "Escape", "log.txt", "Disconnect when done",
                             "Check for duplicates", "Alarm", "Stopwatch", "Timeout", "Proxy"})
        QVERIFY2(text.contains(word, Qt::CaseInsensitive), word);
    for (const QString& line : text.split(u'\n')) QVERIFY2(line.size() <= 80, qPrintable(line));
}

void SmallWindowsTest::WhyFreeExplains()
{
    Program->Choose("mnuFree");
    const Question& told = Program->Questions.Questions.at(0);
    QCOMPARE(told.Title, QString("Why free?"));
    QCOMPARE(told.Sign, Question::Information);
    QCOMPARE(told.Choice, Question::Ok);
    QVERIFY(told.Text.contains("www.quorvell.example"));
    QVERIFY(told.Text.contains("Paperbird"));
}

void SmallWindowsTest::ThirtyPicturesShowThirtyDifferentThings()
{
    QList<QImage> seen;
    for (int index = 0; index < 30; ++index) {
        const auto& picture = Program->Control<QAbstractButton>(qPrintable(QString("ads_%1").arg(index)));
        const QImage image = picture.icon().pixmap(picture.iconSize()).toImage();
        QCOMPARE(image.size() / image.devicePixelRatio(), picture.iconSize());
        QVERIFY2(!seen.contains(image), qPrintable(picture.objectName()));
        seen += image;
    }
}

void SmallWindowsTest::TheStripTurns()
{
    QCOMPARE(Front(), QString("ads_29"));
    for (int turn = 0; turn < 31; ++turn) {
        QVERIFY(QMetaObject::invokeMethod(&Program->Control<QTimer>("Timer4"), "timeout"));
        QCOMPARE(Front(), QString("ads_%1").arg(turn % 30));
    }
}

void SmallWindowsTest::TheStripTurnsByItself()
{
    QVERIFY(Program->Control<QTimer>("Timer4").isActive());
    QTRY_VERIFY_WITH_TIMEOUT(Front() != "ads_29", 60'000);
}

void SmallWindowsTest::AClickAsksBeforeItOpensAnything()
{
    Program->Questions.Answers = {Answer::No, Answer::Yes};
    QAbstractButton* picture = Program->Control<PictureStrip>("AdsStrip").Front();
    QTest::mouseClick(picture, Qt::LeftButton);
    QCOMPARE(Program->Opened, QStringList());
    picture->setFocus();
    QTest::keyClick(picture, Qt::Key_Return);
    QCOMPARE(Program->Opened.size(), 1);
    QVERIFY(Program->Opened[0].startsWith("https://www.quorvell.example/"));
    QVERIFY(Program->Questions.Questions[0].Text.contains("download it now"));
    QCOMPARE(Program->Questions.Questions[0].Choice, Question::YesNo);
}

void SmallWindowsTest::ThePicturesAreReadOutAsTheOffer()
{
    for (int index = 0; index < 30; ++index)
        QCOMPARE(Program->Control<QWidget>(qPrintable(QString("ads_%1").arg(index))).accessibleName(),
                 Program->Texts.LoadText(73));
}

void SmallWindowsTest::AfterAChangeOfLanguageTheOfferIsThereAgain()
{
    ChooseGerman();
    for (int index = 0; index < 30; ++index) {
        const auto& picture = Program->Control<QWidget>(qPrintable(QString("ads_%1").arg(index)));
        QCOMPARE(picture.toolTip(), Program->Texts.LoadText(73));
        QCOMPARE(picture.accessibleName(), Program->Texts.LoadText(73));
    }
    Program->Texts.LanguageBase = 1000;
}

QTEST_MAIN(SmallWindowsTest)
#include "small_windows_test.moc"
