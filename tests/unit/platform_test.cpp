#include "base/byte_text.h"
#include "base/run_time_error.h"
#include "platform/current_folder.h"
#include "platform/detached_thread.h"
#include "platform/end_requests.h"
#include "platform/free_space.h"
#include "platform/local_file.h"
#include "platform/places.h"
#include "platform/short_path.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <atomic>
#include <csignal>
#include <fstream>
#include <memory>
#include <string>
#include <system_error>
#include <thread>
#ifndef Q_OS_WIN
#include <sys/stat.h>
#include <sys/statvfs.h>
#endif

class PlatformTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void TheVariableNamesTheProgramsFolder();
#ifndef Q_OS_WIN
    void TheProgramsFolderIsMadeWhenItIsMissing();
#endif
    void TheProgramsFolderIsTheExecutablesWhenThatCanBeWritten();
    void TheUsersOwnFolderStandsInForOneThatCannotBeWritten_data();
    void TheUsersOwnFolderStandsInForOneThatCannotBeWritten();
    void TheShortFormOfNothingIsNothing();
    void TheShortPathOfAMissingFileIsThePathItself();
    void TheShortNameOfAMissingFileIsEmpty();
    void TheShortNameOfAFileStartsAtTheCurrentFolder();
#ifndef Q_OS_WIN
    void TheCurrentFolderKeepsEveryByte();
#endif
    void AMissingFolderIsReportedAndLeavesTheCurrentOne();
    void TheFreeSpaceIsTheFileSystems();
    void EveryDetachedThreadRuns();
#ifndef Q_OS_WIN
    void APipeInAFilesPlaceIsNotWaitedFor();
    void TheFreeSpaceOfAMissingPathIsUnknown();
    void ARequestToEndArrivesInTheEventLoop_data();
    void ARequestToEndArrivesInTheEventLoop();
    void AnIgnoredRequestStaysIgnored();
#endif

private:
    QString Before;
    std::unique_ptr<QTemporaryDir> Folder;
};

void PlatformTest::initTestCase()
{
    Before = CurrentFolder();
}

void PlatformTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    QVERIFY(Folder->isValid());
}

void PlatformTest::cleanup()
{
    ChangeCurrentFolder(Before);
    qunsetenv("TOLVANE_HOME");
    qunsetenv("XDG_DATA_HOME");
}

void PlatformTest::TheVariableNamesTheProgramsFolder()
{
    qputenv("TOLVANE_HOME", Folder->path().toUtf8());
    QCOMPARE(ProgramFolder(), QDir::toNativeSeparators(Folder->path()));
    qputenv("TOLVANE_HOME", Folder->path().toUtf8() + "/");
    QCOMPARE(ProgramFolder(), QDir::toNativeSeparators(Folder->path()));
}

#ifndef Q_OS_WIN
void PlatformTest::TheProgramsFolderIsMadeWhenItIsMissing()
{
    const QByteArray home = Folder->path().toUtf8() + "/a/caf\xE9";
    qputenv("TOLVANE_HOME", home);
    QCOMPARE(TextToBytes(ProgramFolder()), home);
    QVERIFY(std::filesystem::is_directory(home.toStdString()));
}
#endif

void PlatformTest::TheProgramsFolderIsTheExecutablesWhenThatCanBeWritten()
{
    QCOMPARE(ProgramFolder(), QDir::toNativeSeparators(QCoreApplication::applicationDirPath()));
}

void PlatformTest::TheUsersOwnFolderStandsInForOneThatCannotBeWritten_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("one that is gone") << QString("/no/such/folder");
#ifdef Q_OS_WIN
    // Under Wine a folder in which not even an administrator makes a file.
    QTest::newRow("one of the system's") << QString("Z:/proc");
    QTest::newRow("a drive that is not there") << QString("Q:/");
#endif
}

void PlatformTest::TheUsersOwnFolderStandsInForOneThatCannotBeWritten()
{
    QFETCH(const QString, folder);
#ifdef Q_OS_WIN
    const QString own = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/Tolvane";
#else
    qputenv("XDG_DATA_HOME", Folder->path().toUtf8());
    const QString own = Folder->path() + "/Tolvane";
#endif
    QCOMPARE(ProgramFolderBeside(folder), QDir::toNativeSeparators(own));
    const QString writable = QDir::toNativeSeparators(Folder->path());
    QCOMPARE(ProgramFolderBeside(writable), writable);
    QCOMPARE(QDir(writable).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), QStringList());
}

void PlatformTest::TheShortFormOfNothingIsNothing()
{
    QCOMPARE(ShortPath(""), QString());
    QCOMPARE(ShortName(""), QString());
}

void PlatformTest::TheShortPathOfAMissingFileIsThePathItself()
{
    QCOMPARE(ShortPath("/no/such/file here"), QString("/no/such/file here"));
}

void PlatformTest::TheShortNameOfAMissingFileIsEmpty()
{
    ChangeCurrentFolder(Folder->path());
    QCOMPARE(ShortName("report.txt"), QString());
}

void PlatformTest::TheShortNameOfAFileStartsAtTheCurrentFolder()
{
    ChangeCurrentFolder(Folder->path());
#ifdef Q_OS_WIN
    const QString name = "a long name.menu.txt";
    const QRegularExpression wanted("^[A-Z0-9_]{1,6}~[0-9A-Z]{1,4}\\.TXT$");  // the system may choose any such name
    std::ofstream(FilePath(name)) << "tea";
    QVERIFY2(wanted.match(ShortName(name)).hasMatch(), qPrintable(ShortName(name)));
#else
    const QString name = BytesToText("caf\xE9 menu.txt");
    std::ofstream(FilePath(name)) << "tea";
    QCOMPARE(ShortName(name), name);
#endif
}

#ifndef Q_OS_WIN
void PlatformTest::TheCurrentFolderKeepsEveryByte()
{
    const QString folder = Folder->path() + "/" + BytesToText("caf\xE9");
    std::filesystem::create_directory(FilePath(folder));
    ChangeCurrentFolder(folder);
    QCOMPARE(CurrentFolder(), folder);
}
#endif

void PlatformTest::AMissingFolderIsReportedAndLeavesTheCurrentOne()
{
    ErrorRecord errors;
    QVERIFY(!errors.Attempt([&] { ChangeCurrentFolder(Folder->path() + "/gone"); }));
    QCOMPARE(errors.Description(), QString("Path not found"));
    QCOMPARE(CurrentFolder(), Before);
}

/// Each is begun when the one before is just about to end.
void PlatformTest::EveryDetachedThreadRuns()
{
    constexpr int Threads = 1000;
    for (int thread = 0; thread < Threads; ++thread) {
        const auto hasRun = std::make_shared<std::atomic<bool>>(false);
        RunDetached([hasRun] { *hasRun = true; });
        QElapsedTimer sinceBegin;
        sinceBegin.start();
        while (!*hasRun && sinceBegin.elapsed() < 20'000) std::this_thread::yield();
        QVERIFY2(*hasRun, qPrintable(QString::number(thread)));
    }
}

void PlatformTest::TheFreeSpaceIsTheFileSystems()
{
    const auto space = FreeSpaceOf(Folder->path());
    QVERIFY(space.has_value());
#ifndef Q_OS_WIN
    struct statvfs drive = {};
    QCOMPARE(statvfs(Folder->path().toUtf8().constData(), &drive), 0);
    QCOMPARE(space->SectorsPerCluster * space->BytesPerSector, std::uint64_t(drive.f_frsize));
    QVERIFY(space->Bytes() <= std::uint64_t(drive.f_frsize) * drive.f_blocks);
#endif
    QVERIFY(space->Bytes() > 0);
}

#ifndef Q_OS_WIN
void PlatformTest::TheFreeSpaceOfAMissingPathIsUnknown()
{
    QVERIFY(!FreeSpaceOf(Folder->path() + "/gone").has_value());
}

void PlatformTest::APipeInAFilesPlaceIsNotWaitedFor()
{
    const QTemporaryDir folder;
    const std::string pipe = folder.filePath("pipe").toStdString();
    QCOMPARE(mkfifo(pipe.c_str(), 0600), 0);
    QVERIFY_EXCEPTION_THROWN(SourceFile{pipe}, std::system_error);
}

void PlatformTest::ARequestToEndArrivesInTheEventLoop_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("terminate") << SIGTERM;
    QTest::newRow("interrupt") << SIGINT;
    QTest::newRow("hang up") << SIGHUP;
}

void PlatformTest::ARequestToEndArrivesInTheEventLoop()
{
    QFETCH(int, number);
    const EndRequests requests;
    QSignalSpy arrived(&requests, &EndRequests::Requested);
    QCOMPARE(raise(number), 0);
    QCOMPARE(arrived.size(), 0);
    QTRY_COMPARE(arrived.size(), 1);
}

void PlatformTest::AnIgnoredRequestStaysIgnored()
{
    signal(SIGHUP, SIG_IGN);
    {
        const EndRequests requests;
        QSignalSpy arrived(&requests, &EndRequests::Requested);
        QCOMPARE(raise(SIGHUP), 0);
        QCOMPARE(raise(SIGTERM), 0);
        QTRY_COMPARE(arrived.size(), 1);
    }
    QVERIFY(signal(SIGHUP, SIG_DFL) == SIG_IGN);
}
#endif

QTEST_GUILESS_MAIN(PlatformTest)
#include "platform_test.moc"
