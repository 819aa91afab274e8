#include "base/byte_text.h"
#include "base/run_time_error.h"
#include "local/folder_reader.h"
#include "support/many_files.h"

#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <filesystem>
#include <fstream>
#ifndef Q_OS_WIN
#include <sys/stat.h>
#endif

using namespace std::chrono_literals;
namespace fs = std::filesystem;

class FolderReaderTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void NamesAreSortedWithoutRegardToCaseAndDotNamesComeLast();
    void OnlyFilesMustMatchThePattern();
#ifndef Q_OS_WIN
    void LinksCountAsWhatTheyPointTo();
    void PipesAreLeftOut();
    void NamesThatAreNoTextComeBackAsTheSameBytes();
#endif
    void ALargeFolderIsReadInSlicesAndComesOutSorted();
    void AFolderThatIsNotThereIsAnError();
    void AFileIsNoFolder();
    void AnEmptyFolderHasNoNames();

private:
    void MakeFile(const std::string& name) const
    {
        std::ofstream(Place() / name) << name;
    }

    fs::path Place() const
    {
        return Folder->path().toStdString();
    }

    FolderReader Read(const QString& pattern = "*.*") const
    {
        FolderReader reader(Folder->path(), FilePattern(pattern));
        while (reader.ReadOn(1000ms)) {}
        return reader;
    }

    static QString ErrorOf(const QString& folder)
    {
        try {
            const FolderReader reader(folder, FilePattern());
        } catch (const RuntimeError& error) {
            return error.Description;
        }
        return {};
    }

    std::unique_ptr<QTemporaryDir> Folder;
};

void FolderReaderTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    QVERIFY(Folder->isValid());
}

// The temporary folder would not find the name that is no text.
void FolderReaderTest::cleanup()
{
    for (const fs::directory_entry& entry : fs::directory_iterator(Place())) fs::remove_all(entry);
    Folder.reset();
}

void FolderReaderTest::NamesAreSortedWithoutRegardToCaseAndDotNamesComeLast()
{
    for (const char* name : {"b.txt", "A.txt", ".htaccess", "aa.txt", "C"}) MakeFile(name);
    for (const char* name : {"zoo", ".git", "Bar"}) fs::create_directory(Place() / name);
    const FolderReader reader = Read();
    QCOMPARE(reader.Files(), (QStringList{"A.txt", "aa.txt", "b.txt", "C", ".htaccess"}));
    QCOMPARE(reader.Folders(), (QStringList{"Bar", "zoo", ".git"}));
}

void FolderReaderTest::OnlyFilesMustMatchThePattern()
{
    MakeFile("x.gif");
    MakeFile("x.gifs");
    MakeFile("x.png");
    fs::create_directory(Place() / "pictures");
    const FolderReader reader = Read("*.gif*");
    QCOMPARE(reader.Files(), (QStringList{"x.gif", "x.gifs"}));
    QCOMPARE(reader.Folders(), QStringList{"pictures"});
}

#ifndef Q_OS_WIN
void FolderReaderTest::LinksCountAsWhatTheyPointTo()
{
    MakeFile("file");
    fs::create_directory(Place() / "folder");
    fs::create_symlink("file", Place() / "to file");
    fs::create_symlink("folder", Place() / "to folder");
    fs::create_symlink("gone", Place() / "to nothing");
    const FolderReader reader = Read();
    QCOMPARE(reader.Files(), (QStringList{"file", "to file", "to nothing"}));
    QCOMPARE(reader.Folders(), (QStringList{"folder", "to folder"}));
}

// Whoever opened one to send it would wait for a writer for ever.
void FolderReaderTest::PipesAreLeftOut()
{
    MakeFile("file");
    QCOMPARE(::mkfifo((Place() / "pipe").c_str(), 0600), 0);
    QCOMPARE(Read().Files(), QStringList{"file"});
}

void FolderReaderTest::NamesThatAreNoTextComeBackAsTheSameBytes()
{
    MakeFile("caf\xE9.txt");
    const QStringList files = Read("*.txt").Files();
    QCOMPARE(files.size(), 1);
    QCOMPARE(TextToBytes(files[0]), QByteArray("caf\xE9.txt"));
}
#endif

void FolderReaderTest::ALargeFolderIsReadInSlicesAndComesOutSorted()
{
    constexpr int Count = ThisManyFiles(3000);
    for (int number = 0; number < Count; ++number) MakeFile("f" + std::to_string(number * 7919 % Count));
    FolderReader reader(Folder->path(), FilePattern());
    int slices = 0;
    while (reader.ReadOn(0ms)) ++slices;
    QVERIFY(slices >= Count);  // one entry each, however short the time
    const QStringList files = reader.Files();
    QCOMPARE(files.size(), Count);
    QVERIFY(std::is_sorted(files.begin(), files.end()));
}

void FolderReaderTest::AFolderThatIsNotThereIsAnError()
{
    QCOMPARE(ErrorOf(Folder->path() + "/gone"), QString("Path not found"));
}

void FolderReaderTest::AFileIsNoFolder()
{
    MakeFile("file");
    QCOMPARE(ErrorOf(Folder->path() + "/file"), QString("Path not found"));
}

void FolderReaderTest::AnEmptyFolderHasNoNames()
{
    const FolderReader reader = Read();
    QCOMPARE(reader.Files(), QStringList());
    QCOMPARE(reader.Folders(), QStringList());
}

QTEST_GUILESS_MAIN(FolderReaderTest)
#include "folder_reader_test.moc"
