#include "base/byte_text.h"
#include "platform/local_file.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <fstream>
#include <memory>
#include <system_error>

/// Files as a transfer reads and writes them.
class LocalFileTest : public QObject {
    Q_OBJECT

private slots:
    void init();

    void ASourceTellsItsSizeAndItsBytes();
    void AFolderIsNoSource();
    void AWholeFileTakesItsPlace_data();
    void AWholeFileTakesItsPlace();
    void WhatIsNotWholeLeavesTheOldFile();
    void AFolderIsNoTarget();

private:
    QString Path(const QString& name) const { return QDir::toNativeSeparators(Folder->filePath(name)); }

    void Put(const QString& path, const std::string& bytes) const
    {
        std::ofstream file(FilePath(path), std::ios::binary);
        file << bytes;
        QVERIFY2(file.flush(), qPrintable(path));
    }

    static QByteArray Content(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(absent)");
    }

    static QStringList Names(const QString& folder)
    {
        return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<QTemporaryDir> Folder;
};

void LocalFileTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    QVERIFY(Folder->isValid());
}

void LocalFileTest::ASourceTellsItsSizeAndItsBytes()
{
    Put(Path("file"), "1234567");
    SourceFile source(FilePath(Path("file")));
    QCOMPARE(source.Size(), std::uint64_t{7});
    std::string bytes(4, ' ');
    QCOMPARE(source.Read(bytes.data(), bytes.size()), std::size_t{4});
    QCOMPARE(bytes, std::string("1234"));
    QCOMPARE(source.Read(bytes.data(), bytes.size()), std::size_t{3});
    QCOMPARE(source.Read(bytes.data(), bytes.size()), std::size_t{0});
}

void LocalFileTest::AFolderIsNoSource()
{
    QVERIFY_EXCEPTION_THROWN(SourceFile{FilePath(QDir::toNativeSeparators(Folder->path()))}, std::system_error);
}

// A path may be short enough for the system's usual calls while that of the file beside it is not.
void LocalFileTest::AWholeFileTakesItsPlace_data()
{
    QTest::addColumn<int>("folderLength");
    QTest::addColumn<int>("nameLength");
    QTest::addColumn<bool>("before");
    for (const bool before : {false, true}) {
        const char* what = before ? "in an old one's" : "in an empty";
        QTest::addRow("%s place", what) << 0 << 10 << before;
        QTest::addRow("%s place almost too deep", what) << 243 << 1 << before;
        QTest::addRow("%s place far down", what) << 245 << 100 << before;
    }
}

void LocalFileTest::AWholeFileTakesItsPlace()
{
    QFETCH(const int, folderLength);
    QFETCH(const int, nameLength);
    QFETCH(const bool, before);
    const auto missing = static_cast<qsizetype>(folderLength) - Path("").size();
    const QString folder = missing > 0 ? Path(QString(missing, u'f')) : QDir::toNativeSeparators(Folder->path());
    QVERIFY(QDir().mkpath(folder));
    const QString path = folder + QDir::separator() + QString(nameLength, u'n');
    if (before) Put(path, "old");
    {
        PartFile part(FilePath(path));
        part.Write("12", 2);
        part.Write("345", 3);
        QCOMPARE(Content(path), QByteArray(before ? "old" : "(absent)"));
        part.TakePlace();
    }
    QCOMPARE(Content(path), QByteArray("12345"));
    QCOMPARE(Names(folder), QStringList(QString(nameLength, u'n')));
}

void LocalFileTest::WhatIsNotWholeLeavesTheOldFile()
{
    Put(Path("file"), "old");
    {
        PartFile part(FilePath(Path("file")));
        part.Write("new", 3);
        QCOMPARE(Names(Folder->path()).size(), 2);
    }
    QCOMPARE(Content(Path("file")), QByteArray("old"));
    QCOMPARE(Names(Folder->path()), QStringList("file"));
}

void LocalFileTest::AFolderIsNoTarget()
{
    QVERIFY(QDir(Folder->path()).mkdir("folder"));
    QVERIFY_EXCEPTION_THROWN(PartFile{FilePath(Path("folder"))}, std::system_error);
    QCOMPARE(Names(Folder->path()), QStringList("folder"));
}

QTEST_GUILESS_MAIN(LocalFileTest)
#include "local_file_test.moc"
