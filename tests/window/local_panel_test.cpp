#include "base/byte_text.h"
#include "platform/current_folder.h"
#include "support/many_files.h"
#include "support/panel_driver.h"

#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QRegularExpression>
#include <filesystem>
#include <fstream>

class LocalPanelTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void TheFilesOfTheCurrentFolderAreShownWithTheirCount();
    void TheTenPatternsStandInTheirOrder();
    void TheFilterBoxShowsItsCaptionAndEveryFileIsListedAtFirst();
    void APickedPatternFiltersAndTheFilesTakeTheFocus();
    void TheEighthPatternAlsoListsLongerEndings();
    void ATypedPatternWorksLikeAPickedOne();
    void TypingDoesNotTakeTheFocusAway();
    void ATypedPatternIsNotCompletedToALongerOne();
    void ARefreshKeepsTheFilter();
    void TheFilterStaysInAnotherFolder();

    void TheFolderListShowsTheWayDownAndTheSubFolders();
    void ADoubleClickMovesIntoASubFolder();
    void ADoubleClickOnAFolderAboveMovesUp();
    void TheEnterKeyMovesToTheHighlightedFolder();
    void AVanishedFolderIsToldAndThePanelStays();
#ifndef Q_OS_WIN
    void ACurrentFolderThatVanishesShowsNoFilesAndIsTold();
    void ACurrentFolderThatComesBackIsFoundAgain();
#endif
    void TheDriveListHoldsTheRootAndMovesThere();
    void TheDriveListFollowsTheFolder();
    void ADriveThatIsGoneIsToldAndTheListGoesBack();
    void TheFreeSpaceIsShown();
#ifndef Q_OS_WIN
    void NamesThatAreNoTextAreShownHarmlesslyAndKept();
#endif
    void AFolderOfThousandsIsShownWhole();

private:
    ListBox& Folders() const
    {
        return Driver->Control<ListBox>("Dir1");
    }

    static QString Root()
    {
        return QDir::toNativeSeparators(QDir::rootPath());
    }

    static QString Inside(const QString& folder, const QString& name)
    {
        return folder + QDir::separator() + name;
    }

    QComboBox& Filter() const
    {
        return Driver->Control<QComboBox>("Combo2");
    }

    QStringList FolderNames() const
    {
        return Folders().Entries();
    }

    int RowOf(const QString& folder) const
    {
        return static_cast<int>(FolderNames().lastIndexOf(folder));
    }

    void DoubleClickFolder(const QString& folder) const
    {
        QVERIFY(RowOf(folder) >= 0);
        PanelDriver::DoubleClick(Folders(), RowOf(folder));
    }

    /// Picks an item as the drop-down list does.
    static void Pick(QComboBox& box, int item)
    {
        box.setFocus();
        box.setCurrentIndex(item);
        emit box.activated(item);
    }

    void TypeFilter(const QString& pattern) const
    {
        Filter().setFocus();
        Filter().lineEdit()->selectAll();
        QTest::keyClicks(Filter().lineEdit(), pattern);
    }

    void OpenWith(const QStringList& files)
    {
        Driver->MakeFiles(files);
        Driver->Open();
    }

    std::unique_ptr<PanelDriver> Driver;
};

void LocalPanelTest::init()
{
    Driver = std::make_unique<PanelDriver>();
}

void LocalPanelTest::cleanup()
{
    Driver.reset();
}

void LocalPanelTest::TheFilesOfTheCurrentFolderAreShownWithTheirCount()
{
    QVERIFY(QDir(Driver->LocalFolder()).mkdir("folder"));
    OpenWith({"b.txt", "A.txt", "c"});
    QCOMPARE(PanelDriver::Entries(Driver->Files()), (QStringList{"A.txt", "b.txt", "c"}));
    QCOMPARE(Driver->LocalCount(), QString("3"));
}

void LocalPanelTest::TheTenPatternsStandInTheirOrder()
{
    Driver->Open();
    const QStringList wanted{
        "*.html;*.htm*",
        "*.gif;*.jpg;*.bmp*",
        "*.mpg;*.mov;*.avi;*.mpeg*",
        "*.txt;*.doc*",
        "*.html;*.htm;*.gif;*.jpg;*.bmp;*.mpeg;*.mpg;*.mov;*.avi;*.txt;*.doc;*.wav;*.mid*",
        "*.zip;*.wav;*.mid;*.midi;*.mp3;*.exe*",
        "*.gif;*.jpg*",
        "*.gif*",
        "*.jpg*",
        "*.*",
    };
    QStringList shown;
    for (int item = 0; item < Filter().count(); ++item) shown += Filter().itemText(item);
    QCOMPARE(shown, wanted);
}

void LocalPanelTest::TheFilterBoxShowsItsCaptionAndEveryFileIsListedAtFirst()
{
    OpenWith({"a.gif", "b.txt"});
    QCOMPARE(Filter().currentText(), Driver->Texts.LoadText(42));
    QCOMPARE(Driver->Files().Count(), 2);
}

void LocalPanelTest::APickedPatternFiltersAndTheFilesTakeTheFocus()
{
    OpenWith({"a.TXT", "b.doc", "c.gif", "d.docx", "e.txts"});
    Pick(Filter(), 3);
    QCOMPARE(PanelDriver::Entries(Driver->Files()), (QStringList{"a.TXT", "b.doc", "d.docx"}));
    QCOMPARE(Driver->LocalCount(), QString("3"));
    QVERIFY(Driver->Files().hasFocus());
    Pick(Filter(), 9);
    QCOMPARE(Driver->Files().Count(), 5);
}

void LocalPanelTest::TheEighthPatternAlsoListsLongerEndings()
{
    OpenWith({"x.gif", "x.gifs", "x.jpg", "gif"});
    Pick(Filter(), 7);
    QCOMPARE(PanelDriver::Entries(Driver->Files()), (QStringList{"x.gif", "x.gifs"}));
}

void LocalPanelTest::ATypedPatternWorksLikeAPickedOne()
{
    OpenWith({"a.cpp", "b.h", "c.gif"});
    TypeFilter("*.cpp;*.h");
    QTest::keyClick(Filter().lineEdit(), Qt::Key_Return);
    QCOMPARE(PanelDriver::Entries(Driver->Files()), (QStringList{"a.cpp", "b.h"}));
    QCOMPARE(Driver->LocalCount(), QString("2"));
    QVERIFY(Driver->Files().hasFocus());
    QCOMPARE(Filter().currentText(), QString("*.cpp;*.h"));
    QCOMPARE(Filter().count(), 10);
}

void LocalPanelTest::TypingDoesNotTakeTheFocusAway()
{
    OpenWith({"a.cpp", "b.h"});
    TypeFilter("*.h");
    QVERIFY(Filter().hasFocus() || Filter().lineEdit()->hasFocus());
    QCOMPARE(Driver->Files().Count(), 2);
}

void LocalPanelTest::ATypedPatternIsNotCompletedToALongerOne()
{
    OpenWith({"a.gif", "b.jpg"});
    TypeFilter("*.gif");
    QTest::keyClick(Filter().lineEdit(), Qt::Key_Return);
    QCOMPARE(PanelDriver::Entries(Driver->Files()), QStringList{"a.gif"});
}

void LocalPanelTest::ARefreshKeepsTheFilter()
{
    OpenWith({"a.gif", "b.txt"});
    Pick(Filter(), 7);
    Driver->Connect({"c.gif"});
    PanelDriver::LeftClick(Driver->Remote(), 0);
    Driver->Inet1().Respond = [&](const QString&) {
        Driver->MakeFiles({"c.gif", "d.txt"});
        return RecordingInet::Outcome{};
    };
    PanelDriver::RightDrag(Driver->Remote(), Driver->Files());
    QCOMPARE(PanelDriver::Entries(Driver->Files()), (QStringList{"a.gif", "c.gif"}));
    QCOMPARE(Driver->LocalCount(), QString("2"));
}

void LocalPanelTest::TheFilterStaysInAnotherFolder()
{
    QVERIFY(QDir(Driver->LocalFolder()).mkdir("deeper"));
    Driver->MakeFiles({"deeper/a.gif", "deeper/b.txt"});
    Driver->Open();
    Pick(Filter(), 7);
    DoubleClickFolder("deeper");
    QCOMPARE(PanelDriver::Entries(Driver->Files()), QStringList{"a.gif"});
}

void LocalPanelTest::TheFolderListShowsTheWayDownAndTheSubFolders()
{
    QVERIFY(QDir(Driver->LocalFolder()).mkdir("zoo"));
    QVERIFY(QDir(Driver->LocalFolder()).mkdir("Bar"));
    Driver->Open();
    const QStringList way = CurrentFolder().mid(Root().size()).split(QDir::separator(), Qt::SkipEmptyParts);
    QCOMPARE(FolderNames(), QStringList{Root()} + way + (QStringList{"Bar", "zoo"}));
    QCOMPARE(Folders().currentIndex().row(), static_cast<int>(way.size()));
}

void LocalPanelTest::ADoubleClickMovesIntoASubFolder()
{
    QVERIFY(QDir(Driver->LocalFolder()).mkpath("deeper/still"));
    Driver->MakeFile("deeper/file");
    Driver->Open();
    const QString before = CurrentFolder();
    DoubleClickFolder("deeper");
    QCOMPARE(CurrentFolder(), Inside(before, "deeper"));
    QCOMPARE(PanelDriver::Entries(Driver->Files()), QStringList{"file"});
    QCOMPARE(FolderNames().last(), QString("still"));
}

void LocalPanelTest::ADoubleClickOnAFolderAboveMovesUp()
{
    Driver->Open();
    const QString above = QDir::toNativeSeparators(QFileInfo(CurrentFolder()).path());
    DoubleClickFolder(QFileInfo(above).fileName());
    QCOMPARE(CurrentFolder(), above);
}

void LocalPanelTest::TheEnterKeyMovesToTheHighlightedFolder()
{
    QVERIFY(QDir(Driver->LocalFolder()).mkdir("deeper"));
    Driver->Open();
    const QString before = CurrentFolder();
    Folders().setFocus();
    QTest::keyClick(&Folders(), Qt::Key_Down);
    QTest::keyClick(&Folders(), Qt::Key_Return);
    QCOMPARE(CurrentFolder(), Inside(before, "deeper"));
}

void LocalPanelTest::AVanishedFolderIsToldAndThePanelStays()
{
    QVERIFY(QDir(Driver->LocalFolder()).mkdir("deeper"));
    OpenWith({"file"});
    const QString before = CurrentFolder();
    QVERIFY(QDir(Driver->LocalFolder()).rmdir("deeper"));
    DoubleClickFolder("deeper");
    QCOMPARE(Driver->Status(), "Cannot open folder " + Inside(before, "deeper") + ": Path not found");
    QCOMPARE(CurrentFolder(), before);
    QCOMPARE(PanelDriver::Entries(Driver->Files()), QStringList{"file"});
}

#ifndef Q_OS_WIN
// Elsewhere the system keeps a folder while it is a program's current one.
void LocalPanelTest::ACurrentFolderThatVanishesShowsNoFilesAndIsTold()
{
    QVERIFY(QDir(Driver->LocalFolder()).mkdir("deeper"));
    Driver->MakeFile("deeper/file");
    Driver->Open();
    DoubleClickFolder("deeper");
    const QString gone = CurrentFolder();
    QVERIFY(QDir(gone).removeRecursively());
    Pick(Filter(), 9);
    QCOMPARE(Driver->Status(), "Cannot open folder " + gone + ": Path not found");
    QCOMPARE(Driver->Files().Count(), 0);
    QCOMPARE(Driver->LocalCount(), QString("0"));
    ChangeCurrentFolder(Driver->LocalFolder());
}

void LocalPanelTest::ACurrentFolderThatComesBackIsFoundAgain()
{
    QVERIFY(QDir(Driver->LocalFolder()).mkdir("deeper"));
    Driver->Open();
    DoubleClickFolder("deeper");
    const QString folder = CurrentFolder();
    QVERIFY(QDir(folder).removeRecursively());
    QVERIFY(QDir(Driver->LocalFolder()).mkdir("deeper"));
    Driver->MakeFile("deeper/new");
    Pick(Filter(), 9);
    QCOMPARE(CurrentFolder(), folder);
    QCOMPARE(PanelDriver::Entries(Driver->Files()), QStringList{"new"});
}

#endif

void LocalPanelTest::TheDriveListHoldsTheRootAndMovesThere()
{
    Driver->Open();
    auto& drives = Driver->Control<QComboBox>("Drive1");
    const int root = drives.findText(Root());
    QVERIFY(root >= 0);
    Pick(drives, root);
    QCOMPARE(CurrentFolder(), Root());
    QCOMPARE(FolderNames().value(0), Root());
    QCOMPARE(Folders().currentIndex().row(), 0);
}

void LocalPanelTest::TheDriveListFollowsTheFolder()
{
    Driver->Open();
    auto& drives = Driver->Control<QComboBox>("Drive1");
    QVERIFY(CurrentFolder().startsWith(drives.currentText()));
    DoubleClickFolder(Root());
    QCOMPARE(drives.currentText(), Root());
}

void LocalPanelTest::ADriveThatIsGoneIsToldAndTheListGoesBack()
{
    Driver->Open();
    auto& drives = Driver->Control<QComboBox>("Drive1");
    const QString before = drives.currentText();
    const QString folder = CurrentFolder();
    drives.addItem("/gone", "/gone");
    Pick(drives, drives.count() - 1);
    QCOMPARE(Driver->Status(), QString("Cannot open folder /gone: Path not found"));
    QCOMPARE(CurrentFolder(), folder);
    QCOMPARE(drives.currentText(), before);
    QCOMPARE(drives.findText("/gone"), -1);
}

void LocalPanelTest::TheFreeSpaceIsShown()
{
    Driver->Open();
    auto& small = Driver->Control<QLabel>("DrvSpace");
    auto& large = Driver->Control<QLabel>("DrvSpaceTrue");
    QVERIFY(small.isHidden() != large.isHidden());
    QString figure = (small.isHidden() ? large : small).text();
    figure.remove(QRegularExpression("[^0-9]"));
    QVERIFY(figure.toULongLong() > 0);
}

#ifndef Q_OS_WIN
void LocalPanelTest::NamesThatAreNoTextAreShownHarmlesslyAndKept()
{
    const std::filesystem::path odd = FilePath(Driver->LocalFolder()) / "caf\xE9";
    std::ofstream(odd) << "x";
    Driver->Open();
    QCOMPARE(TextToBytes(Driver->Files().Entry(0)), QByteArray("caf\xE9"));
    QCOMPARE(Driver->Files().model()->index(0, 0).data().toString(),
             QString("caf") + QChar(QChar::ReplacementCharacter));
    std::filesystem::remove(odd);
}
#endif

void LocalPanelTest::AFolderOfThousandsIsShownWhole()
{
    constexpr int Count = ThisManyFiles(20'000);
    const std::filesystem::path folder = FilePath(Driver->LocalFolder()) / "many";
    std::filesystem::create_directory(folder);
    for (int number = 0; number < Count; ++number) std::ofstream(folder / std::to_string(number));
    Driver->Open();
    int passes = 0;
    qint64 longest = 0;
    QElapsedTimer sincePass;
    QTimer pulse;
    connect(&pulse, &QTimer::timeout, this, [&] {
        ++passes;
        longest = qMax(longest, sincePass.restart());
    });
    pulse.start(0);
    sincePass.start();
    DoubleClickFolder("many");
    QCOMPARE(Driver->Files().Count(), Count);
    QCOMPARE(Driver->LocalCount(), QString::number(Count));
    QCoreApplication::processEvents();
    qInfo("%d files: %d passes of the event loop, the longest %lld ms", Count, passes, longest);
}

QTEST_MAIN(LocalPanelTest)
#include "local_panel_test.moc"
