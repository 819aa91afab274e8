#include "base/byte_text.h"
#include "base/run_time_error.h"
#include "local/folder_reader.h"
#include "platform/file_facts.h"
#include "platform/rename.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#ifdef Q_OS_WIN
#include <windows.h>
#endif

/// Size, date and removal of files, where paths are long and where others use the files.
class FileFactsTest : public QObject {
    Q_OBJECT

private slots:
    void init();

    void SizeAndDateAreTold();
    void AFileThatIsGoneIsTold();
    void AFolderIsNoFile();
    void APathOfAnyLengthWorks();
    void AFolderThatIsAlmostTooLongIsRead();
#ifdef Q_OS_WIN
    void AFileInUseIsLeftAlone();
    void AFileInUseTellsItsSize();
#else
    void OfALinkTheLinkIsErased();
#endif

private:
    QString Path(const QString& name) const
    {
        return QDir::toNativeSeparators(Folder->filePath(name));
    }

    void Put(const QString& path, const std::string& bytes) const
    {
        std::ofstream file(FilePath(path), std::ios::binary);
        file << bytes;
        QVERIFY2(file.flush(), qPrintable(path));
    }

    /// What the call throws, or an empty text.
    template <typename Call>
    static QString Refusal(Call&& call)
    {
        try {
            call();
            return {};
        } catch (const RuntimeError& error) {
            return error.Description;
        }
    }

    std::unique_ptr<QTemporaryDir> Folder;
};

void FileFactsTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    QVERIFY(Folder->isValid());
}

void FileFactsTest::SizeAndDateAreTold()
{
    Put(Path("file"), "12345");
    const QDateTime date = QDateTime::fromSecsSinceEpoch(1'000'000'000);
    QFile file(Path("file"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(date, QFileDevice::FileModificationTime));
    file.close();
    const FileFacts facts = FactsOf(Path("file"));
    QCOMPARE(facts.Bytes, std::uint64_t{5});
    QCOMPARE(facts.Changed, date);
}

void FileFactsTest::AFileThatIsGoneIsTold()
{
    QCOMPARE(Refusal([&] { FactsOf(Path("file")); }), QString("File not found"));
    QCOMPARE(Refusal([&] { EraseFile(Path("file")); }), QString("File not found"));
    QCOMPARE(Refusal([&] { EraseFile(Path("no/such/file")); }), QString("File not found"));
    QVERIFY(!IsFolder(Path("file")));
}

void FileFactsTest::AFolderIsNoFile()
{
    QVERIFY(QDir(Folder->path()).mkdir("folder"));
    QVERIFY(IsFolder(Path("folder")));
    QVERIFY(!Refusal([&] { FactsOf(Path("folder")); }).isEmpty());
    QCOMPARE(Refusal([&] { EraseFile(Path("folder")); }), QString("File not found"));
    QVERIFY(IsFolder(Path("folder")));
}

void FileFactsTest::APathOfAnyLengthWorks()
{
    const QString folder = Path(QString(120, u'f') + '/' + QString(120, u'g'));
    QVERIFY(QDir().mkpath(folder));
    const QString file = folder + QDir::separator() + QString(100, u'n');
    QVERIFY(file.size() > 300);
    Put(file, "1234567");
    QVERIFY(IsFolder(folder));
    QVERIFY(!IsFolder(file));
    QCOMPARE(FactsOf(file).Bytes, std::uint64_t{7});
    QVERIFY(FactsOf(file).Changed.secsTo(QDateTime::currentDateTime()) < 3600);
    RenameFile(file, file + "2");
    QCOMPARE(Refusal([&] { FactsOf(file); }), QString("File not found"));
    EraseFile(file + "2");
    QCOMPARE(Refusal([&] { EraseFile(file + "2"); }), QString("File not found"));
}

// The folder's own path is short enough for every call, and those of what it holds are not.
void FileFactsTest::AFolderThatIsAlmostTooLongIsRead()
{
    const QString folder = Path(QString(240 - static_cast<int>(Path("").size()), u'f'));
    QVERIFY(QDir().mkpath(folder + '/' + QString(30, u'd')));
    Put(folder + QDir::separator() + QString(30, u'n'), "x");
    FolderReader reader(folder, FilePattern("*.*"));
    while (reader.ReadOn(std::chrono::milliseconds(5))) {}
    QCOMPARE(reader.Files(), QStringList(QString(30, u'n')));
    QCOMPARE(reader.Folders(), QStringList(QString(30, u'd')));
}

#ifdef Q_OS_WIN

namespace {

/// Another program that lets nobody near the file while it lives.
class Lock {
public:
    explicit Lock(const QString& path)
        : Handle(
              CreateFileW(FilePath(path).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr))
    {
    }

    ~Lock() { CloseHandle(Handle); }

    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    bool Holds() const { return Handle != INVALID_HANDLE_VALUE; }

private:
    HANDLE Handle;
};

}  // namespace

void FileFactsTest::AFileInUseIsLeftAlone()
{
    Put(Path("file"), "12345");
    {
        const Lock lock(Path("file"));
        QVERIFY(lock.Holds());
        QCOMPARE(Refusal([&] { EraseFile(Path("file")); }), QString("it is in use by another program"));
        QCOMPARE(Refusal([&] { RenameFile(Path("file"), Path("other")); }), QString("it is in use by another program"));
    }
    QCOMPARE(FactsOf(Path("file")).Bytes, std::uint64_t{5});
    EraseFile(Path("file"));
}

void FileFactsTest::AFileInUseTellsItsSize()
{
    Put(Path("file"), "12345");
    const Lock lock(Path("file"));
    QVERIFY(lock.Holds());
    QCOMPARE(FactsOf(Path("file")).Bytes, std::uint64_t{5});
}

#else

void FileFactsTest::OfALinkTheLinkIsErased()
{
    Put(Path("file"), "12345");
    QVERIFY(QFile::link(Path("file"), Path("link")));
    QCOMPARE(FactsOf(Path("link")).Bytes, std::uint64_t{5});
    EraseFile(Path("link"));
    QVERIFY(QFile::exists(Path("file")));
    QVERIFY(!QFile::exists(Path("link")));
}

#endif

QTEST_GUILESS_MAIN(FileFactsTest)
#include "file_facts_test.moc"
