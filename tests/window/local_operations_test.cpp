#include "base/byte_text.h"
#include "base/formats.h"
#include "local/local_operations.h"
#include "platform/current_folder.h"
#include "support/panel_driver.h"

#include <QDialog>
#include <QDir>
#include <QImage>
#include <QLineEdit>
#include <QPushButton>
#include <filesystem>
#include <fstream>
#include <functional>

class LocalOperationsTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void TheFullNameHasOneSeparatorInARoot();
    void TheEndingDecidesHowAFileIsViewed_data();
    void TheEndingDecidesHowAFileIsViewed();

    void APictureIsShownInTheViewer();
    void ATextIsOpenedInTheTextEditor_data();
    void ATextIsOpenedInTheTextEditor();
    void AnyOtherEndingOpensNothing();
    void ViewingIsLoggedWithTheFullName();
    void NothingIsViewedWithNothingHighlighted();
    void AMissingTextEditorIsTold();
    void TheViewerFollowsTheList();
    void AClickOpensNothingWithoutAViewer();
    void TheViewerClosedByItsTitleBarReopens();
    void TheViewerClosedByItsButtonStaysAway();
    void AFileThatIsNoPictureIsToldInTheViewer();
    void TheViewerClosesWithTheProgram();

    void SizeDateAndTimeAreTold();
    void TheSizeOfAnEmptyFileIsZero();
    void AFileThatIsGoneHasNoSize();
    void NothingHighlightedHasNoSize();

    void EraseWithNothingSelectedBeepsTwiceAndAsksNothing();
    void EraseAsksFirst();
    void NoErasesNothing();
    void YesErasesTheSelectedFilesInListOrder();
    void AFileThatCannotBeErasedIsTold();
    void ALinkIsErasedNotWhatItPointsTo();
    void HundredsAreErasedAtOnce();
    void NamesThatAreNoTextAreErased();

    void RenameOffersTheNameAndTakesTheNewOne();
    void RenameTakesTheFirstSelectedFile();
    void RenameCanceledLeavesTheFile();
    void RenameClosedByTheTitleBarLeavesTheFile();
    void ARenameOntoAnotherFileIsRefused();
    void ARenameOntoAFolderIsRefused();
    void ANameWithASeparatorIsRefused();
    void RenameOfAFileThatIsGoneIsTold();
    void RenameWithNothingSelectedBeeps();
    void RenameEndsWithTheProgram();

#ifndef Q_OS_WIN
    void AFolderThatIsGoneIsTold();
#endif

private:
    ListBox& Files() const
    {
        return Driver->Files();
    }

    void Select(const QString& name) const
    {
        PanelDriver::LeftClick(Files(), static_cast<int>(Files().Entries().indexOf(name)));
    }

    QString PathOf(const QString& name) const
    {
        return QDir::toNativeSeparators(CurrentFolder() + '/' + name);
    }

    bool Exists(const QString& name) const
    {
        return QFile::exists(PathOf(name));
    }

    QString Stamp() const
    {
        return "        " + GeneralDateTime(Driver->Now);
    }

    QWidget* Viewer() const
    {
        for (QWidget* viewer : Driver->Window->findChildren<QWidget*>("PicView"))
            if (viewer->isVisible()) return viewer;
        return nullptr;
    }

    void MakePicture(const QString& name) const
    {
        QImage picture(20, 10, QImage::Format_RGB32);
        picture.fill(Qt::red);
        QVERIFY(picture.save(Driver->LocalFolder() + '/' + name, "bmp"));
    }

    void OpenWith(const QStringList& files)
    {
        Driver->MakeFiles(files);
        Driver->Open();
    }

    /// Presses Command21; the user does something with the dialog.
    void Rename(const std::function<void(QDialog&, QLineEdit&)>& act)
    {
        bool acted = false;
        QTimer::singleShot(0, Driver->Window.get(), [&] {
            auto* dialog = Driver->Window->findChild<QDialog*>("frmText");
            QVERIFY(dialog != nullptr);
            acted = true;
            act(*dialog, *dialog->findChild<QLineEdit*>("Text1"));
        });
        Driver->Click("Command21");
        QVERIFY(acted);
        QVERIFY(Driver->Window->findChild<QDialog*>("frmText") == nullptr);
    }

    void RenameTo(const QString& name)
    {
        Rename([&](QDialog& dialog, QLineEdit& box) {
            box.setText(name);
            dialog.findChild<QPushButton*>("Command1")->click();
        });
    }

    std::unique_ptr<PanelDriver> Driver;
};

void LocalOperationsTest::init()
{
    Driver = std::make_unique<PanelDriver>();
    Driver->UseDialogs = true;
}

void LocalOperationsTest::cleanup()
{
    Driver.reset();
}

void LocalOperationsTest::TheFullNameHasOneSeparatorInARoot()
{
    const QString separator = QDir::separator();
    const QString root = QDir::rootPath().replace('/', separator);
    QCOMPARE(FullName(root, "a.txt"), root + "a.txt");
    QCOMPARE(FullName(root + "home", "a.txt"), root + "home" + separator + "a.txt");
}

void LocalOperationsTest::TheEndingDecidesHowAFileIsViewed_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("kind");
    for (const char* name : {"a.bmp", "a.gif", "a.jpg", "a.ico", "A.GIF", "a.b.jpg"})
        QTest::newRow(name) << name << static_cast<int>(ViewKind::Picture);
    for (const char* name : {"a.html", "a.htm", "a.txt", "a.cgi", "A.TXT", "a.HtMl", "axhtml"})
        QTest::newRow(name) << name << static_cast<int>(ViewKind::Text);
    for (const char* name : {"a.jpeg", "a.doc", "txt", "a", "a.txts", "gif", "a.gifs"})
        QTest::newRow(name) << name << static_cast<int>(ViewKind::None);
}

void LocalOperationsTest::TheEndingDecidesHowAFileIsViewed()
{
    QFETCH(QString, name);
    QFETCH(int, kind);
    QCOMPARE(static_cast<int>(ViewKindOf("/folder/" + name)), kind);
}

void LocalOperationsTest::APictureIsShownInTheViewer()
{
    MakePicture("a.bmp");
    Driver->Open();
    Select("a.bmp");
    QVERIFY(Viewer() == nullptr);
    Driver->Click("Command15");
    QVERIFY(Viewer() != nullptr);
    QVERIFY(Driver->Values->ViewerOpen);
    QCOMPARE(Viewer()->windowTitle(), PathOf("a.bmp"));
    QCOMPARE(Driver->Edited, QStringList());
}

void LocalOperationsTest::ATextIsOpenedInTheTextEditor_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"a.html", "a.htm", "A.TXT", "a.cgi"}) QTest::newRow(name) << name;
}

void LocalOperationsTest::ATextIsOpenedInTheTextEditor()
{
    QFETCH(QString, name);
    OpenWith({name});
    Select(name);
    Driver->Click("Command15");
    QCOMPARE(Driver->Edited, QStringList(PathOf(name)));
    QVERIFY(Viewer() == nullptr);
    QVERIFY(!Driver->Values->ViewerOpen);
}

void LocalOperationsTest::AnyOtherEndingOpensNothing()
{
    OpenWith({"a.doc"});
    Select("a.doc");
    Driver->Click("Command15");
    QCOMPARE(Driver->Edited, QStringList());
    QVERIFY(Viewer() == nullptr);
    QCOMPARE(Driver->Log().last(), "Viewed local file " + PathOf("a.doc") + Stamp());
}

void LocalOperationsTest::ViewingIsLoggedWithTheFullName()
{
    OpenWith({"a.txt"});
    Select("a.txt");
    Driver->Click("Command15");
    QCOMPARE(Driver->Log().last(), "Viewed local file " + PathOf("a.txt") + Stamp());
}

void LocalOperationsTest::NothingIsViewedWithNothingHighlighted()
{
    OpenWith({"a.txt"});
    const QStringList before = Driver->Log();
    Driver->Click("Command15");
    QCOMPARE(Driver->Edited, QStringList());
    QCOMPARE(Driver->Log(), before);
}

void LocalOperationsTest::AMissingTextEditorIsTold()
{
    Driver->EditorComplaint = "File not found";
    OpenWith({"a.txt"});
    Select("a.txt");
    Driver->Click("Command15");
    QCOMPARE(Driver->Status(), "Cannot open a text editor for " + PathOf("a.txt") + ": File not found");
}

void LocalOperationsTest::TheViewerFollowsTheList()
{
    MakePicture("a.bmp");
    MakePicture("b.bmp");
    Driver->Open();
    Select("a.bmp");
    Driver->Click("Command15");
    const QPoint place = Viewer()->pos();
    Select("b.bmp");
    QVERIFY(Viewer() != nullptr);
    QCOMPARE(Viewer()->windowTitle(), PathOf("b.bmp"));
    QCOMPARE(Viewer()->pos(), place);
    QCOMPARE(Driver->Log().last(), "Viewed local file " + PathOf("b.bmp") + Stamp());
}

void LocalOperationsTest::AClickOpensNothingWithoutAViewer()
{
    OpenWith({"a.txt"});
    Select("a.txt");
    QCOMPARE(Driver->Edited, QStringList());
    QVERIFY(Viewer() == nullptr);
}

void LocalOperationsTest::TheViewerClosedByItsTitleBarReopens()
{
    MakePicture("a.bmp");
    Driver->Open();
    Select("a.bmp");
    Driver->Click("Command15");
    Viewer()->close();
    QVERIFY(Viewer() == nullptr);
    Select("a.bmp");
    QVERIFY(Viewer() != nullptr);
}

void LocalOperationsTest::TheViewerClosedByItsButtonStaysAway()
{
    MakePicture("a.bmp");
    Driver->Open();
    Select("a.bmp");
    Driver->Click("Command15");
    QTest::mouseClick(Viewer()->findChild<QPushButton*>("Command1"), Qt::LeftButton);
    QVERIFY(Viewer() == nullptr);
    Select("a.bmp");
    QVERIFY(Viewer() == nullptr);
}

void LocalOperationsTest::AFileThatIsNoPictureIsToldInTheViewer()
{
    OpenWith({"a.gif"});
    Select("a.gif");
    Driver->Click("Command15");
    auto* sentence = Viewer()->findChild<QLabel*>("Sentence");
    QTRY_VERIFY(sentence->isVisible());
    QCOMPARE(sentence->text(), QString("The file is no picture that can be shown."));
}

void LocalOperationsTest::TheViewerClosesWithTheProgram()
{
    MakePicture("a.bmp");
    Driver->Open();
    Select("a.bmp");
    Driver->Click("Command15");
    Driver->Window->close();
    QVERIFY(Viewer() == nullptr);
}

void LocalOperationsTest::SizeDateAndTimeAreTold()
{
    Driver->MakeFile("a.txt", QByteArray(1234567, 'x'));
    const QDateTime when(QDate(2020, 2, 3), QTime(4, 5, 6));
    QFile file(PathOf("a.txt"));
    QVERIFY(file.open(QIODevice::ReadWrite) && file.setFileTime(when, QFileDevice::FileModificationTime));
    file.close();
    Driver->Open();
    Select("a.txt");
    Driver->Click("Command19");
    const QString message = "a.txt    File Size = " + Thousands(1234567) + "  -  " + GeneralDateTime(when);
    QCOMPARE(Driver->Questions.Texts(), QStringList(message));
    QCOMPARE(Driver->Questions.Questions[0].Title, QString("File Size, Date & Time"));
    QCOMPARE(Driver->Questions.Questions[0].Sign, Question::Information);
    QCOMPARE(Driver->Questions.Questions[0].Choice, Question::Ok);
    QCOMPARE(Driver->Log().last(), "Viewed size on local file " + message + Stamp());
}

void LocalOperationsTest::TheSizeOfAnEmptyFileIsZero()
{
    Driver->MakeFile("a", "");
    Driver->Open();
    Select("a");
    Driver->Click("Command19");
    QVERIFY(Driver->Questions.Texts().value(0).startsWith("a    File Size = 0  -  "));
}

void LocalOperationsTest::AFileThatIsGoneHasNoSize()
{
    OpenWith({"a"});
    Select("a");
    QVERIFY(QFile::remove(PathOf("a")));
    Driver->Click("Command19");
    QCOMPARE(Driver->Questions.Texts(), QStringList());
    QCOMPARE(Driver->Status(), QString("Cannot tell the size of a: File not found"));
}

void LocalOperationsTest::NothingHighlightedHasNoSize()
{
    OpenWith({"a"});
    Driver->Click("Command19");
    QCOMPARE(Driver->Questions.Texts(), QStringList());
}

void LocalOperationsTest::EraseWithNothingSelectedBeepsTwiceAndAsksNothing()
{
    OpenWith({"a"});
    Driver->Click("Command20");
    QCOMPARE(Driver->Beeps, 2);
    QCOMPARE(Driver->Questions.Texts(), QStringList());
    QVERIFY(Files().hasFocus());
}

void LocalOperationsTest::EraseAsksFirst()
{
    OpenWith({"a"});
    Select("a");
    QString status;
    Driver->Questions.Reply = [&](const Question&) {
        status = Driver->Status();
        return Answer::No;
    };
    Driver->Click("Command20");
    QCOMPARE(status, QString("Erase File(s)    Are you sure?"));
    const Question& asked = Driver->Questions.Questions.at(0);
    QCOMPARE(asked.Text, QString("Erase File(s)    Are you sure?"));
    QCOMPARE(asked.Title, QString("Erase File?"));
    QCOMPARE(asked.Sign, Question::Critical);
    QCOMPARE(asked.Choice, Question::YesNo);
    QVERIFY(asked.Foreground);
}

void LocalOperationsTest::NoErasesNothing()
{
    OpenWith({"a"});
    Select("a");
    const QStringList before = Driver->Log();
    Driver->Questions.Answers = {Answer::No};
    Driver->Click("Command20");
    QVERIFY(Exists("a"));
    QVERIFY(Files().hasFocus());
    QCOMPARE(Driver->Log(), before);
}

void LocalOperationsTest::YesErasesTheSelectedFilesInListOrder()
{
    OpenWith({"a", "b", "c", "d"});
    PanelDriver::Select(Files(), {3, 0, 2});
    Driver->Questions.Answers = {Answer::Yes};
    Driver->Click("Command20");
    QCOMPARE(PanelDriver::Entries(Files()), QStringList("b"));
    QVERIFY(Exists("b") && !Exists("a") && !Exists("c") && !Exists("d"));
    QCOMPARE(Driver->Log().mid(Driver->Log().size() - 3),
             (QStringList{"Erased local file a" + Stamp(), "Erased local file c" + Stamp(),
                          "Erased local file d" + Stamp()}));
    QCOMPARE(Driver->Status(), QString("Waiting..."));
    QVERIFY(Files().hasFocus());
}

void LocalOperationsTest::AFileThatCannotBeErasedIsTold()
{
    OpenWith({"a", "b"});
    PanelDriver::Select(Files(), {0, 1});
    QVERIFY(QFile::remove(PathOf("a")));
    QVERIFY(QDir().mkdir(PathOf("a")));
    Driver->Questions.Answers = {Answer::Yes};
    Driver->Click("Command20");
    QCOMPARE(Driver->Status(), QString("Cannot erase a: File not found"));
    QVERIFY(Exists("a"));
    QVERIFY(!Exists("b"));
}

void LocalOperationsTest::ALinkIsErasedNotWhatItPointsTo()
{
    Driver->MakeFile("target");
    QVERIFY(QFile::link(PathOf("target"), PathOf("link")));
    Driver->Open();
    Select("link");
    Driver->Questions.Answers = {Answer::Yes};
    Driver->Click("Command20");
    QCOMPARE(PanelDriver::Entries(Files()), QStringList("target"));
}

void LocalOperationsTest::HundredsAreErasedAtOnce()
{
    QStringList names;
    for (int number = 0; number < 500; ++number) names += QString::number(number);
    OpenWith(names);
    Files().selectAll();
    Driver->Questions.Answers = {Answer::Yes};
    Driver->Click("Command20");
    QCOMPARE(Files().Count(), 0);
    QVERIFY(QDir(Driver->LocalFolder()).isEmpty());
}

void LocalOperationsTest::NamesThatAreNoTextAreErased()
{
    const std::filesystem::path odd = FilePath(Driver->LocalFolder()) / "caf\xE9";
    std::ofstream(odd) << "x";
    Driver->Open();
    PanelDriver::LeftClick(Files(), 0);
    Driver->Questions.Answers = {Answer::Yes};
    Driver->Click("Command20");
    QVERIFY(!std::filesystem::exists(odd));
}

void LocalOperationsTest::RenameOffersTheNameAndTakesTheNewOne()
{
    OpenWith({"old.txt"});
    Select("old.txt");
    QString title;
    QString offered;
    Rename([&](QDialog& dialog, QLineEdit& box) {
        title = dialog.windowTitle();
        offered = box.text();
        box.selectAll();
        QTest::keyClicks(&box, " new.txt ");
        QTest::keyClick(&box, Qt::Key_Return);
    });
    QCOMPARE(title, QString("Enter new file name."));
    QCOMPARE(offered, QString("old.txt"));
    QCOMPARE(PanelDriver::Entries(Files()), QStringList("new.txt"));
    QVERIFY(Exists("new.txt") && !Exists("old.txt"));
    QCOMPARE(Driver->Log().last(), "Renamed local file old.txt to new.txt" + Stamp());
}

void LocalOperationsTest::RenameTakesTheFirstSelectedFile()
{
    OpenWith({"a", "b", "c"});
    PanelDriver::Select(Files(), {2, 1});
    RenameTo("x");
    QCOMPARE(PanelDriver::Entries(Files()), (QStringList{"a", "c", "x"}));
}

void LocalOperationsTest::RenameCanceledLeavesTheFile()
{
    OpenWith({"a"});
    Select("a");
    const QStringList before = Driver->Log();
    Rename([](QDialog& dialog, QLineEdit& box) {
        box.setText("b");
        dialog.findChild<QPushButton*>("Command2")->click();
    });
    QVERIFY(Exists("a") && !Exists("b"));
    QCOMPARE(Driver->Log(), before);
    QCOMPARE(Driver->Window->focusWidget(), &Files());
}

void LocalOperationsTest::RenameClosedByTheTitleBarLeavesTheFile()
{
    OpenWith({"a"});
    Select("a");
    const QString status = Driver->Status();
    Rename([](QDialog& dialog, QLineEdit& box) {
        box.setText("b");
        dialog.close();
    });
    QVERIFY(Exists("a") && !Exists("b"));
    QCOMPARE(Driver->Status(), status);
}

void LocalOperationsTest::ARenameOntoAnotherFileIsRefused()
{
    Driver->MakeFile("a", "from a");
    Driver->MakeFile("b", "from b");
    Driver->Open();
    Select("a");
    RenameTo("b");
    QCOMPARE(Driver->Status(), QString("Cannot rename a to b: File already exists"));
    QFile kept(PathOf("b"));
    QVERIFY(kept.open(QIODevice::ReadOnly));
    QCOMPARE(kept.readAll(), QByteArray("from b"));
    QVERIFY(Exists("a"));
}

void LocalOperationsTest::ARenameOntoAFolderIsRefused()
{
    QVERIFY(QDir(Driver->LocalFolder()).mkdir("folder"));
    OpenWith({"a"});
    Select("a");
    RenameTo("folder");
    QCOMPARE(Driver->Status(), QString("Cannot rename a to folder: File already exists"));
    QVERIFY(Exists("a"));
}

void LocalOperationsTest::ANameWithASeparatorIsRefused()
{
    QVERIFY(QDir(Driver->LocalFolder()).mkdir("folder"));
    OpenWith({"a"});
    Select("a");
    RenameTo("folder/b");
    QCOMPARE(Driver->Status(), QString("Cannot rename a to folder/b: A file name cannot hold a separator"));
    QVERIFY(Exists("a"));
    QVERIFY(!Exists("folder/b"));
}

void LocalOperationsTest::RenameOfAFileThatIsGoneIsTold()
{
    OpenWith({"a"});
    Select("a");
    QVERIFY(QFile::remove(PathOf("a")));
    RenameTo("b");
    QCOMPARE(Driver->Status(), QString("Cannot rename a to b: File not found"));
}

void LocalOperationsTest::RenameWithNothingSelectedBeeps()
{
    OpenWith({"a"});
    Driver->Click("Command21");
    QCOMPARE(Driver->Beeps, 1);
    QVERIFY(Driver->Window->findChild<QDialog*>("frmText") == nullptr);
}

void LocalOperationsTest::RenameEndsWithTheProgram()
{
    OpenWith({"a"});
    Select("a");
    Rename([this](QDialog&, QLineEdit& box) {
        box.setText("b");
        Driver->Window->close();
    });
    QVERIFY(Driver->Window->Ended());
    QVERIFY(Exists("a") && !Exists("b"));
}

#ifndef Q_OS_WIN
// Elsewhere the system keeps a folder while it is a program's current one.
void LocalOperationsTest::AFolderThatIsGoneIsTold()
{
    QVERIFY(QDir(Driver->LocalFolder()).mkdir("deeper"));
    Driver->MakeFile("deeper/file.txt");
    ChangeCurrentFolder(Driver->LocalFolder() + "/deeper");
    Driver->Store("DriveSav", "False");
    Driver->Open();
    Select("file.txt");
    QVERIFY(QDir(Driver->LocalFolder() + "/deeper").removeRecursively());
    Driver->Click("Command15");
    QCOMPARE(Driver->Status(), QString("Path not found"));
    QCOMPARE(Driver->Edited, QStringList());
    ChangeCurrentFolder(Driver->LocalFolder());
}
#endif

QTEST_MAIN(LocalOperationsTest)
#include "local_operations_test.moc"
