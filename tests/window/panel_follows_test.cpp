#include "platform/current_folder.h"
#include "support/many_files.h"
#include "support/panel_driver.h"

#include <QDir>
#include <QScrollBar>
#include <ctime>
#include <filesystem>
#include <fstream>
#ifndef Q_OS_WIN
#include <unistd.h>
#endif

/// The local panel follows what other programs do in its folder.
class PanelFollowsTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void ANewFileAppears();
    void ARemovedFileGoes();
    void ARenamedFileIsShownUnderItsNewName();
    void OnlyFilesThatMatchTheFilterAppear();
    void ANewSubFolderAppears();
    void TheSelectionStays();
    void TheHighlightedEntryStays();
    void ASelectedFileThatGoesIsNoLongerSelected();
    void ThePlaceInTheListStays();
    void ThePlaceInALongListStays();
    void ThePlaceInTheFolderListStays();
    void TheFolderThatWasMovedToIsFollowed();
    void ManyChangesAreGathered();
#ifdef Q_OS_WIN
    void AFolderThatIsShownStays();
#else
    void AFolderThatVanishesIsTold();
    void AFolderThatComesBackIsShownAgain();
    void AFolderThatComesBackWithTheOneAboveIsShownAgain();
    void AFolderThatIsRenamedKeepsItsFiles();
    void AFolderWithoutPermissionIsTold();
    void AFolderWhoseNameIsNoTextIsFollowed();
#endif
    void AFolderOfVeryManyFilesCausesNoPause();

private:
    ListBox& Files() const
    {
        return Driver->Files();
    }

    ListBox& Folders() const
    {
        return Driver->Control<ListBox>("Dir1");
    }

    QString Inside(const QString& name) const
    {
        return Driver->LocalFolder() + '/' + name;
    }

    static QString NameOf(int number)
    {
        return QString("file %1").arg(number, 6, 10, QChar('0'));
    }

    void MakeNumbered(int count) const
    {
        const std::filesystem::path folder = Driver->LocalFolder().toStdString();
        for (int number = 0; number < count; ++number) std::ofstream(folder / NameOf(number).toStdString());
    }

    std::unique_ptr<PanelDriver> Driver;
};

void PanelFollowsTest::init()
{
    Driver = std::make_unique<PanelDriver>();
}

void PanelFollowsTest::cleanup()
{
    Driver.reset();
}

void PanelFollowsTest::ANewFileAppears()
{
    Driver->MakeFile("b");
    Driver->Open();
    Driver->MakeFile("a");
    QTRY_COMPARE(Files().Entries(), (QStringList{"a", "b"}));
    QCOMPARE(Driver->LocalCount(), QString("2"));
}

void PanelFollowsTest::ARemovedFileGoes()
{
    Driver->MakeFiles({"a", "b"});
    Driver->Open();
    QVERIFY(QFile::remove(Inside("a")));
    QTRY_COMPARE(Files().Entries(), QStringList("b"));
    QCOMPARE(Driver->LocalCount(), QString("1"));
}

void PanelFollowsTest::ARenamedFileIsShownUnderItsNewName()
{
    Driver->MakeFiles({"a", "b"});
    Driver->Open();
    QVERIFY(QFile::rename(Inside("a"), Inside("c")));
    QTRY_COMPARE(Files().Entries(), (QStringList{"b", "c"}));
}

void PanelFollowsTest::OnlyFilesThatMatchTheFilterAppear()
{
    Driver->Open();
    auto& filter = Driver->Control<QComboBox>("Combo2");
    filter.setCurrentIndex(7);
    emit filter.activated(7);
    Driver->MakeFiles({"a.txt", "b.gif"});
    QTRY_COMPARE(Files().Entries(), QStringList("b.gif"));
}

void PanelFollowsTest::ANewSubFolderAppears()
{
    Driver->Open();
    const QString here = Folders().Entry(Folders().ListIndex());
    QVERIFY(QDir().mkdir(Inside("deeper")));
    QTRY_COMPARE(Folders().Entries().last(), QString("deeper"));
    QCOMPARE(Folders().Entry(Folders().ListIndex()), here);
    PanelDriver::DoubleClick(Folders(), Folders().Count() - 1);
    QVERIFY(CurrentFolder().endsWith(QDir::separator() + QString("deeper")));
}

void PanelFollowsTest::TheSelectionStays()
{
    Driver->MakeFiles({"b", "c", "d", "e"});
    Driver->Open();
    PanelDriver::Select(Files(), {0, 2, 3});
    Driver->MakeFiles({"a", "cc"});
    QTRY_COMPARE(Files().Count(), 6);
    QCOMPARE(Files().SelectedEntries(), (QStringList{"b", "d", "e"}));
}

void PanelFollowsTest::TheHighlightedEntryStays()
{
    Driver->MakeFiles({"b", "c"});
    Driver->Open();
    PanelDriver::LeftClick(Files(), 1);
    Driver->MakeFile("a");
    QTRY_COMPARE(Files().Count(), 3);
    QCOMPARE(Files().ListIndex(), 2);
    QCOMPARE(Files().SelectedEntries(), QStringList("c"));
}

void PanelFollowsTest::ASelectedFileThatGoesIsNoLongerSelected()
{
    Driver->MakeFiles({"a", "b", "c"});
    Driver->Open();
    PanelDriver::Select(Files(), {0, 1});
    QVERIFY(QFile::remove(Inside("b")));
    QTRY_COMPARE(Files().Count(), 2);
    QCOMPARE(Files().SelectedEntries(), QStringList("a"));
    QCOMPARE(Files().ListIndex(), -1);
}

void PanelFollowsTest::ThePlaceInTheListStays()
{
    MakeNumbered(300);
    Driver->Open();
    QTRY_VERIFY(Files().verticalScrollBar()->maximum() > 200);
    Files().verticalScrollBar()->setValue(100);
    const QString top = Files().Entry(Files().indexAt({0, 0}).row());
    Driver->MakeFiles({"a", "b", "z"});
    QTRY_COMPARE(Files().Count(), 303);
    QCOMPARE(Files().Entry(Files().indexAt({0, 0}).row()), top);
    QVERIFY(QFile::remove(Inside(top)));
    QTRY_COMPARE(Files().Count(), 302);
    QCOMPARE(Files().Entry(Files().indexAt({0, 0}).row()), QString("file 000101"));
}

void PanelFollowsTest::ThePlaceInALongListStays()
{
    constexpr int Count = ThisManyFiles(10'000);
    constexpr int Top = Count / 10 * 7;
    MakeNumbered(Count);
    Driver->Open();
    QTRY_VERIFY(Files().verticalScrollBar()->maximum() > Count / 10 * 9);
    Files().verticalScrollBar()->setValue(Top);
    Driver->MakeFile("a");
    QTRY_COMPARE(Files().Count(), Count + 1);
    QTRY_COMPARE(Files().verticalScrollBar()->value(), Top + 1);
    QCOMPARE(Files().Entry(Files().indexAt({0, 0}).row()), NameOf(Top));
}

void PanelFollowsTest::ThePlaceInTheFolderListStays()
{
    for (int number = 0; number < 100; ++number) QVERIFY(QDir().mkdir(Inside(QString("b%1").arg(number, 3))));
    Driver->Open();
    QTRY_VERIFY(Folders().verticalScrollBar()->maximum() > 0);
    Folders().verticalScrollBar()->setValue(Folders().verticalScrollBar()->maximum() / 2);
    const QString top = Folders().Entry(Folders().indexAt({0, 0}).row());
    QVERIFY(QDir().mkdir(Inside("a")));
    QTRY_VERIFY(Folders().Entries().contains("a"));
    QCOMPARE(Folders().Entry(Folders().indexAt({0, 0}).row()), top);
}

void PanelFollowsTest::TheFolderThatWasMovedToIsFollowed()
{
    QVERIFY(QDir().mkdir(Inside("deeper")));
    Driver->Open();
    PanelDriver::DoubleClick(Folders(), Folders().Count() - 1);
    QVERIFY(CurrentFolder().endsWith(QDir::separator() + QString("deeper")));
    Driver->MakeFile("deeper/new");
    QTRY_COMPARE(Files().Entries(), QStringList("new"));
}

void PanelFollowsTest::ManyChangesAreGathered()
{
    Driver->Open();
    int updates = 0;
    connect(Files().model(), &QAbstractItemModel::modelReset, this, [&] { ++updates; });
    MakeNumbered(1000);
    QTRY_COMPARE(Files().Count(), 1000);
    QVERIFY2(updates < 20, qPrintable(QString::number(updates)));
}

#ifdef Q_OS_WIN

// The folder in the panel is the program's current one, which the system lets nobody erase or rename.
void PanelFollowsTest::AFolderThatIsShownStays()
{
    QVERIFY(QDir().mkdir(Inside("deeper")));
    Driver->Open();
    PanelDriver::DoubleClick(Folders(), Folders().Count() - 1);
    const QString status = Driver->Status();
    QVERIFY(!QDir().rmdir(Inside("deeper")));
    QVERIFY(!QDir().rename(Inside("deeper"), Inside("renamed")));
    Driver->MakeFile("deeper/new");
    QTRY_COMPARE(Files().Entries(), QStringList("new"));
    QCOMPARE(Driver->Status(), status);
    ChangeCurrentFolder(Driver->LocalFolder());
}

#else

void PanelFollowsTest::AFolderThatVanishesIsTold()
{
    QVERIFY(QDir().mkdir(Inside("deeper")));
    Driver->MakeFile("deeper/file");
    Driver->Open();
    PanelDriver::DoubleClick(Folders(), Folders().Count() - 1);
    QCOMPARE(Files().Count(), 1);
    const QString gone = CurrentFolder();
    QVERIFY(QDir(Inside("deeper")).removeRecursively());
    QTRY_COMPARE(Driver->Status(), "Cannot open folder " + gone + ": Path not found");
    QCOMPARE(Files().Count(), 0);
    ChangeCurrentFolder(Driver->LocalFolder());
}

void PanelFollowsTest::AFolderThatComesBackIsShownAgain()
{
    const QTemporaryDir top;
    const QString folder = top.path() + "/there";
    QVERIFY(QDir().mkdir(folder));
    ChangeCurrentFolder(folder);
    Driver->Open();
    QVERIFY(QDir().rmdir(folder));
    QTRY_VERIFY2(Driver->Status().startsWith("Cannot open folder"), qPrintable(Driver->Status()));
    // Others come and go meanwhile.
    QVERIFY(QDir().mkdir(top.path() + "/another"));
    QVERIFY(QDir().mkdir(folder));
    QVERIFY(QFile(folder + "/new").open(QIODevice::WriteOnly));
    QTRY_COMPARE(PanelDriver::Entries(Files()), QStringList{"new"});
    QCOMPARE(CurrentFolder(), folder);
    QVERIFY(QFile(folder + "/newer").open(QIODevice::WriteOnly));
    QTRY_COMPARE(PanelDriver::Entries(Files()), (QStringList{"new", "newer"}));
    Driver->Close();
    ChangeCurrentFolder("/");
}

void PanelFollowsTest::AFolderThatComesBackWithTheOneAboveIsShownAgain()
{
    const QTemporaryDir top;
    const QString folder = top.path() + "/above/there";
    QVERIFY(QDir().mkpath(folder));
    ChangeCurrentFolder(folder);
    Driver->Open();
    QVERIFY(QDir(top.path() + "/above").removeRecursively());
    QTRY_VERIFY2(Driver->Status().startsWith("Cannot open folder"), qPrintable(Driver->Status()));
    QVERIFY(QDir().mkdir(top.path() + "/above"));
    QVERIFY(QDir().mkdir(folder));
    QVERIFY(QFile(folder + "/new").open(QIODevice::WriteOnly));
    QTRY_COMPARE(PanelDriver::Entries(Files()), QStringList{"new"});
    Driver->Close();
    ChangeCurrentFolder("/");
}

void PanelFollowsTest::AFolderThatIsRenamedKeepsItsFiles()
{
    QVERIFY(QDir().mkdir(Inside("deeper")));
    Driver->MakeFile("deeper/file");
    Driver->Open();
    PanelDriver::DoubleClick(Folders(), Folders().Count() - 1);
    const QString status = Driver->Status();
    QVERIFY(QDir().rename(Inside("deeper"), Inside("renamed")));
    QTRY_VERIFY(Folders().Entries().contains("renamed"));
    QCOMPARE(Files().Entries(), QStringList("file"));
    QCOMPARE(Driver->Status(), status);
    Driver->MakeFile("renamed/new");
    QTRY_COMPARE(Files().Count(), 2);
}

// Who may read everything sees no difference.
void PanelFollowsTest::AFolderWithoutPermissionIsTold()
{
    QVERIFY(QDir().mkdir(Inside("deeper")));
    Driver->MakeFile("deeper/file");
    Driver->Open();
    std::filesystem::permissions(Inside("deeper").toStdString(), std::filesystem::perms::none);
    PanelDriver::DoubleClick(Folders(), Folders().Count() - 1);
    if (geteuid() == 0)
        QCOMPARE(Files().Count(), 1);
    else
        QCOMPARE(Driver->Status(), "Cannot open folder " + CurrentFolder() + "/deeper: Permission denied");
    std::filesystem::permissions(Inside("deeper").toStdString(), std::filesystem::perms::owner_all);
}

void PanelFollowsTest::AFolderWhoseNameIsNoTextIsFollowed()
{
    const std::filesystem::path odd = std::filesystem::path(Driver->LocalFolder().toStdString()) / "caf\xE9";
    std::filesystem::create_directory(odd);
    Driver->Open();
    PanelDriver::DoubleClick(Folders(), Folders().Count() - 1);
    std::ofstream(odd / "new") << "x";
    QTRY_COMPARE(Files().Entries(), QStringList("new"));
    ChangeCurrentFolder(Driver->LocalFolder());
    std::filesystem::remove_all(odd);
}

#endif

// The processor's time counts, so that a busy machine does not.
void PanelFollowsTest::AFolderOfVeryManyFilesCausesNoPause()
{
    constexpr int Count = ThisManyFiles(100'000);
    constexpr double LongestPause = 0.5;  // a tenth is meant; sanitizers take several times as long
    QVERIFY(QDir().mkdir(Inside("many")));
    const std::filesystem::path folder = Inside("many").toStdString();
    for (int number = 0; number < Count; ++number) std::ofstream(folder / ("file " + std::to_string(number)));
    Driver->Open();

    double longest = 0;
    int passes = 0;
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    double last = now();
    QTimer pulse;
    connect(&pulse, &QTimer::timeout, this, [&] {
        ++passes;
        longest = std::max(longest, now() - last);
        last = now();
    });
    pulse.start(0);
    PanelDriver::DoubleClick(Folders(), Folders().Count() - 1);
    QTRY_COMPARE(Files().Count(), Count);
    QTRY_VERIFY(Files().visualRect(Files().model()->index(Count - 1, 0)).isValid());
    const double opened = longest;
    longest = 0;
    Driver->MakeFile("many/a");
    QTRY_COMPARE_WITH_TIMEOUT(Files().Count(), Count + 1, 20'000);
    QTRY_VERIFY(Files().visualRect(Files().model()->index(Count, 0)).isValid());
    qInfo("%d files: the longest pause %.0f ms while opening, %.0f ms while following, in %d passes", Count,
          1000 * opened, 1000 * longest, passes);
    QVERIFY2(opened < LongestPause, qPrintable(QString::number(opened)));
    QVERIFY2(longest < LongestPause, qPrintable(QString::number(longest)));
}

QTEST_MAIN(PanelFollowsTest)
#include "panel_follows_test.moc"
