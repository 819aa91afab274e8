#include "base/run_time_error.h"
#include "platform/rename.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <fstream>
#include <functional>
#include <memory>

class RenameTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void AFileGetsItsNewName();
    void AnotherFileIsNeverReplaced();
    void AFolderIsNeverReplaced();
    void AMissingFileIsTold();

private:
    QString Path(const QString& name) const { return Folder->filePath(name); }

    void Write(const QString& name, const char* text) const { std::ofstream(Path(name).toStdString()) << text; }

    QByteArray Read(const QString& name) const
    {
        QFile file(Path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }

    static QString ErrorOf(const std::function<void()>& step)
    {
        try {
            step();
        } catch (const RuntimeError& error) {
            return error.Description;
        }
        return "(none)";
    }

    std::unique_ptr<QTemporaryDir> Folder;
};

void RenameTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
}

void RenameTest::cleanup()
{
    Folder.reset();
}

void RenameTest::AFileGetsItsNewName()
{
    Write("a", "1");
    RenameFile(Path("a"), Path("b"));
    QCOMPARE(Read("a"), QByteArray("(none)"));
    QCOMPARE(Read("b"), QByteArray("1"));
}

void RenameTest::AnotherFileIsNeverReplaced()
{
    Write("a", "1");
    Write("b", "2");
    QCOMPARE(ErrorOf([this] { RenameFile(Path("a"), Path("b")); }), QString("File already exists"));
    QCOMPARE(Read("a"), QByteArray("1"));
    QCOMPARE(Read("b"), QByteArray("2"));
}

void RenameTest::AFolderIsNeverReplaced()
{
    Write("a", "1");
    QVERIFY(QDir().mkdir(Path("b")));
    QCOMPARE(ErrorOf([this] { RenameFile(Path("a"), Path("b")); }), QString("File already exists"));
    QCOMPARE(Read("a"), QByteArray("1"));
}

void RenameTest::AMissingFileIsTold()
{
    QCOMPARE(ErrorOf([this] { RenameFile(Path("a"), Path("b")); }), QString("File not found"));
    Write("a", "1");
    QCOMPARE(ErrorOf([this] { RenameFile(Path("a"), Path("none/b")); }), QString("File not found"));
}

QTEST_GUILESS_MAIN(RenameTest)
#include "rename_test.moc"
