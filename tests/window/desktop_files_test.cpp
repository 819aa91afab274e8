#include "base/byte_text.h"
#include "base/file_address.h"
#include "support/panel_driver.h"

#include <QAbstractButton>
#include <QDir>
#include <QDragEnterEvent>
#include <QMessageBox>
#include <QMimeData>
#include <filesystem>

/// Files that come from other programs' windows, and files that are dragged to them.
class DesktopFilesTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void DroppedFilesAreSentFromWhereTheyLie();
    void AFileOfTheCurrentFolderIsSentToo();
#ifndef Q_OS_WIN
    void NamesThatAreNoTextGoAsTheyCame();
#endif
    void FoldersAreToldAndTheOthersSent();
    void NothingButFoldersIsOnlyTold();
    void MoreThanAFewAreCounted();
    void AFileThatCannotBeReadIsFollowedByTheNext();
    void TheDropItselfIsOverBeforeAnythingIsSent();
    void OnlyFilesOfThisMachineAreTaken();
    void TheOtherListsTakeNothing();
    void WhileTheLogIsShownADropOnlyBeeps();
    void OnAnEmptyRemoteListADropOnlyBeeps();
    void ADropDuringARunIsDoneFirst();
    void TheCheckAsksAboutDroppedFiles();
    void LowerCaseNamesAreForTheServerOnly();
    void AQuestionKeepsDropsOut();

    void ADragOutOfTheWindowOffersTheSelectedFiles();
    void ADragInsideTheWindowStaysOne();
    void WithoutASelectionNothingLeavesTheWindow();
    void RemoteLinesDoNotLeaveTheWindow();

private:
    QString MakeElsewhere(const QString& name) const
    {
        const QString path = Elsewhere->filePath(name);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write("x") != 1) qFatal("Cannot write %s", qPrintable(path));
        return path;
    }

    /// Moves files over a control and lets go, as the desktop reports it. Says whether they were taken.
    static bool Drop(QWidget& onto, const QList<QUrl>& files, Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction)
    {
        QMimeData data;
        data.setUrls(files);
        QDragEnterEvent enter(QPoint(5, 5), actions, &data, Qt::LeftButton, Qt::NoModifier);
        enter.ignore();  // as the toolkit hands it out
        QApplication::sendEvent(&onto, &enter);
        if (!enter.isAccepted()) return false;
        QDragMoveEvent move(QPoint(6, 6), actions, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&onto, &move);
        QDropEvent drop(QPointF(6, 6), actions, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&onto, &drop);
        return drop.isAccepted() && drop.dropAction() == Qt::CopyAction;
    }

    bool DropPaths(const QStringList& paths) const
    {
        QList<QUrl> files;
        for (const QString& path : paths) files += QUrl::fromLocalFile(path);
        return Drop(*Driver->Remote().viewport(), files);
    }

    static QString Put(const QString& path)
    {
        return QString("PUT \"%1\" \"%2\"").arg(path, path.section('/', -1));
    }

    std::unique_ptr<PanelDriver> Driver;
    std::unique_ptr<QTemporaryDir> Elsewhere;
};

void DesktopFilesTest::init()
{
    Driver = std::make_unique<PanelDriver>();
    Elsewhere = std::make_unique<QTemporaryDir>();
    Driver->MakeFiles({"a", "b", "c"});
    Driver->Open();
    Driver->Connect({"old"});
    Driver->Beeps = 0;
}

void DesktopFilesTest::cleanup()
{
    Driver.reset();
    Elsewhere.reset();
}

void DesktopFilesTest::DroppedFilesAreSentFromWhereTheyLie()
{
    const QString one = MakeElsewhere("my film.mpg");
    const QString two = MakeElsewhere("b");
    Driver->SetListing({"old", "my film.mpg", "b"});
    QVERIFY(DropPaths({one, two}));
    QTRY_COMPARE(Driver->Operations(), (QStringList{Put(one), Put(two), "DIR"}));
    Driver->WaitUntilIdle();
    QCOMPARE(Driver->Log().filter("File Sent!").size(), 2);
    QCOMPARE(PanelDriver::Entries(Driver->Remote()), (QStringList{"old", "my film.mpg", "b"}));
    QCOMPARE(Driver->Questions.Texts(), QStringList());
    QCOMPARE(Driver->Beeps, 0);
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
}

void DesktopFilesTest::AFileOfTheCurrentFolderIsSentToo()
{
    PanelDriver::LeftClick(Driver->Files(), 2);
    QVERIFY(DropPaths({Driver->LocalFolder() + "/a"}));
    QTRY_COMPARE(Driver->Operations(), (QStringList{Put(Driver->LocalFolder() + "/a"), "DIR"}));
    QCOMPARE(Driver->Files().SelectedEntries(), QStringList{"c"});
}

#ifndef Q_OS_WIN
void DesktopFilesTest::NamesThatAreNoTextGoAsTheyCame()
{
    const QString path = Elsewhere->path() + "/caf" + QChar(0xDCE9);
    QFile made(Elsewhere->filePath("plain"));
    QVERIFY(made.open(QIODevice::WriteOnly));
    made.close();
    std::filesystem::rename(made.fileName().toStdString(), FilePath(path));
    QVERIFY(Drop(*Driver->Remote().viewport(), {FileAddress(path)}));
    QTRY_COMPARE(Driver->Operations(), (QStringList{Put(path), "DIR"}));
    std::filesystem::remove(FilePath(path));
}
#endif

void DesktopFilesTest::FoldersAreToldAndTheOthersSent()
{
    const QString file = MakeElsewhere("file");
    QVERIFY(QDir(Elsewhere->path()).mkdir("photos"));
    QVERIFY(DropPaths({Elsewhere->filePath("photos"), file, Elsewhere->filePath("gone")}));
    QTRY_COMPARE(Driver->Operations(), (QStringList{Put(file), "DIR"}));
    const QString sentence = "Only files can be sent. Not sent: photos, gone";
    QTRY_COMPARE(Driver->Questions.Texts(), QStringList{sentence});
    QCOMPARE(Driver->Questions.Questions[0].Choice, Question::Ok);
    QCOMPARE(Driver->Log().filter(sentence).size(), 1);
}

void DesktopFilesTest::NothingButFoldersIsOnlyTold()
{
    QVERIFY(DropPaths({Elsewhere->path()}));
    QTRY_COMPARE(Driver->Questions.Texts().size(), 1);
    QCOMPARE(Driver->Operations(), QStringList());
}

void DesktopFilesTest::MoreThanAFewAreCounted()
{
    QStringList folders;
    for (int number = 1; number <= 7; ++number) {
        QVERIFY(QDir(Elsewhere->path()).mkdir(QString::number(number)));
        folders += Elsewhere->filePath(QString::number(number)) + '/';
    }
    QVERIFY(DropPaths(folders));
    QTRY_COMPARE(Driver->Questions.Texts(), QStringList{"Only files can be sent. Not sent: 1, 2, 3, 4, 5 and 2 more"});
}

void DesktopFilesTest::AFileThatCannotBeReadIsFollowedByTheNext()
{
    const QString one = MakeElsewhere("secret");
    const QString two = MakeElsewhere("open");
    Driver->Inet1().FailNext(12112, "secret: Permission denied");
    QVERIFY(DropPaths({one, two}));
    QTRY_COMPARE(Driver->Operations(), (QStringList{Put(one), Put(two), "DIR"}));
    QCOMPARE(Driver->Log().filter("Permission denied").size(), 1);
    QCOMPARE(Driver->Log().filter("File Sent!").size(), 1);
}

// The other program waits until its drop has been answered.
void DesktopFilesTest::TheDropItselfIsOverBeforeAnythingIsSent()
{
    QVERIFY(DropPaths({MakeElsewhere("file")}));
    QCOMPARE(Driver->Operations(), QStringList());
    QTRY_COMPARE(Driver->Operations().size(), 2);
}

void DesktopFilesTest::OnlyFilesOfThisMachineAreTaken()
{
    QWidget& list = *Driver->Remote().viewport();
    const QUrl file = QUrl::fromLocalFile(MakeElsewhere("file"));
    QVERIFY(!Drop(list, {QUrl("http://example.org/file")}));
    QVERIFY(!Drop(list, {}));
    QVERIFY(!Drop(list, {file}, Qt::MoveAction));
    QVERIFY(Drop(list, {file, QUrl("http://example.org/page")}));
    QTRY_COMPARE(Driver->Questions.Texts(), QStringList{"Only files can be sent. Not sent: http://example.org/page"});
    QCOMPARE(Driver->Operations(), (QStringList{Put(file.toLocalFile()), "DIR"}));
}

void DesktopFilesTest::TheOtherListsTakeNothing()
{
    for (const char* name : {"List1", "Dir1"}) {
        auto& list = Driver->Control<ListBox>(name);
        QVERIFY(!list.acceptDrops() && !list.viewport()->acceptDrops());
    }
    QVERIFY(Driver->Remote().viewport()->acceptDrops());
}

// The log lies over the remote list; the drop was on its way when it was shown.
void DesktopFilesTest::WhileTheLogIsShownADropOnlyBeeps()
{
    QVERIFY(DropPaths({MakeElsewhere("file")}));
    Driver->Click("Command22");
    Driver->Beeps = 0;
    QTRY_COMPARE(Driver->Beeps, 1);
    QCOMPARE(Driver->Operations(), QStringList());
}

void DesktopFilesTest::OnAnEmptyRemoteListADropOnlyBeeps()
{
    Driver->Remote().Clear();
    QVERIFY(DropPaths({MakeElsewhere("file")}));
    QTRY_COMPARE(Driver->Beeps, 1);
    QCOMPARE(Driver->Operations(), QStringList());
}

void DesktopFilesTest::ADropDuringARunIsDoneFirst()
{
    const QString dropped = MakeElsewhere("dropped");
    Driver->Control<QAbstractButton>("Check2").setChecked(true);
    Driver->Remote().SetEntries({"old", "b"});
    Driver->SetListing({"old", "b"});
    Driver->Questions.Reply = [&](const Question&) {
        DropPaths({dropped});
        QCoreApplication::processEvents();  // as an open box does
        return Answer::Yes;
    };
    PanelDriver::Select(Driver->Files(), {0, 1});
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QTRY_COMPARE(Driver->Operations(), (QStringList{R"(PUT "a" "a")", Put(dropped), "DIR", R"(PUT "b" "b")", "DIR"}));
    Driver->WaitUntilIdle();
    QCOMPARE(Driver->Log().filter("File Sent!").size(), 3);
}

void DesktopFilesTest::TheCheckAsksAboutDroppedFiles()
{
    Driver->Control<QAbstractButton>("Check2").setChecked(true);
    Driver->Questions.Answers = {Answer::No};
    const QString next = MakeElsewhere("next");
    QVERIFY(DropPaths({MakeElsewhere("OLD"), next}));
    QTRY_COMPARE(Driver->Operations(), (QStringList{Put(next), "DIR"}));
    QCOMPARE(Driver->Questions.Texts(), QStringList{"File OLD already exist on server.  Overwrite?"});
}

void DesktopFilesTest::LowerCaseNamesAreForTheServerOnly()
{
    Driver->Choose("mnuConvertLower");
    const QString path = MakeElsewhere("ReadMe.TXT");
    QVERIFY(DropPaths({path}));
    QTRY_COMPARE(Driver->Operations(), (QStringList{"PUT \"" + path + "\" \"readme.txt\"", "DIR"}));
}

void DesktopFilesTest::AQuestionKeepsDropsOut()
{
    Driver->UseMessageBoxes = true;
    Driver->Restart();
    Driver->Connect({"old"});
    PanelDriver::LeftClick(Driver->Files(), 0);
    bool taken = true;
    QTimer::singleShot(0, Driver->Window.get(), [&] {
        auto* box = Driver->Window->findChild<QMessageBox*>();
        QVERIFY(box != nullptr);
        taken = DropPaths({MakeElsewhere("file")});
        box->reject();
    });
    Driver->Click("Command20");
    QVERIFY(!taken);
    QCOMPARE(Driver->Operations(), QStringList());
}

void DesktopFilesTest::ADragOutOfTheWindowOffersTheSelectedFiles()
{
    QWidget* list = Driver->Files().viewport();
    PanelDriver::Select(Driver->Files(), {0, 2});
    QTest::mousePress(list, Qt::RightButton, Qt::NoModifier, QPoint(5, 5));
    QTest::mouseMove(list, QPoint(60, 5));
    QCOMPARE(Driver->Dragged, QList<QUrl>());
    const QPoint outside = list->mapFromGlobal(Driver->Window->frameGeometry().topLeft() - QPoint(30, 0));
    QTest::mouseMove(list, outside);
    const QList<QUrl> wanted{QUrl::fromLocalFile(Driver->LocalFolder() + "/a"),
                             QUrl::fromLocalFile(Driver->LocalFolder() + "/c")};
    QCOMPARE(Driver->Dragged, wanted);
    // The drag by hand is over: what follows means nothing to it.
    QVERIFY(!Driver->Files().IsDragging());
    QTest::mouseMove(list, list->mapFromGlobal(Driver->Remote().mapToGlobal(QPoint(20, 20))));
    QTest::mouseRelease(list, Qt::RightButton, Qt::NoModifier,
                        list->mapFromGlobal(Driver->Remote().mapToGlobal(QPoint(20, 20))));
    QCOMPARE(Driver->Dragged, wanted);
    QCOMPARE(Driver->Operations(), QStringList());
    QCOMPARE(Driver->Files().SelectedEntries(), (QStringList{"a", "c"}));
}

void DesktopFilesTest::ADragInsideTheWindowStaysOne()
{
    PanelDriver::Select(Driver->Files(), {0});
    PanelDriver::RightDrag(Driver->Files(), Driver->Remote());
    QCOMPARE(Driver->Operations(), (QStringList{R"(PUT "a" "a")", "DIR"}));
    QCOMPARE(Driver->Dragged, QList<QUrl>());
}

void DesktopFilesTest::WithoutASelectionNothingLeavesTheWindow()
{
    QWidget* list = Driver->Files().viewport();
    QTest::mousePress(list, Qt::RightButton, Qt::NoModifier, QPoint(5, 5));
    QTest::mouseMove(list, QPoint(-2000, 5));
    QVERIFY(Driver->Files().IsDragging());
    QCOMPARE(Driver->Dragged, QList<QUrl>());
    QTest::mouseRelease(list, Qt::RightButton, Qt::NoModifier, QPoint(-2000, 5));
    QVERIFY(!Driver->Files().IsDragging());
}

void DesktopFilesTest::RemoteLinesDoNotLeaveTheWindow()
{
    QWidget* list = Driver->Remote().viewport();
    PanelDriver::LeftClick(Driver->Remote(), 0);
    QTest::mousePress(list, Qt::RightButton, Qt::NoModifier, QPoint(5, 5));
    QTest::mouseMove(list, QPoint(-2000, 5));
    QVERIFY(Driver->Remote().IsDragging());
    QCOMPARE(Driver->Dragged, QList<QUrl>());
    QTest::mouseRelease(list, Qt::RightButton, Qt::NoModifier, QPoint(-2000, 5));
}

QTEST_MAIN(DesktopFilesTest)
#include "desktop_files_test.moc"
