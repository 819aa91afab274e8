// Fills a tiny file system and changes a site book on it. Needs the rights to mount one: run as the administrator.

#include "base/run_time_error.h"
#include "sites/site_file.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <functional>
#include <sys/mount.h>

class SiteBookFullDiskTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void AFullDiskLeavesTheOldBook();
    void OnceThereIsRoomTheBookGrowsAgain();
    void ADiskAlmostFullNeverDamagesTheBook();
    void WithoutAnyFreeFileTheOldBookStays();

private:
    QString Name() const { return Folder.filePath("Tolvane.dta"); }

    QByteArray Bytes() const
    {
        QFile file(Name());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }

    QByteArray Filler(qsizetype size) const { return QByteArray(size, 'x'); }

    /// Writes until nothing more fits but `rest` bytes.
    void FillUp(qint64 rest) const
    {
        QFile filler(Folder.filePath("filler"));
        QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        while (filler.write(Filler(4096)) == 4096) continue;
        filler.resize(std::max<qint64>(0, filler.size() - rest));
    }

    static QString ErrorOf(const std::function<void()>& step)
    {
        try {
            step();
        } catch (const RuntimeError& error) {
            return error.Description;
        }
        return {};
    }

    QTemporaryDir Folder;
};

namespace {

Site Numbered(int number)
{
    return {QString("ftp://host%1.example").arg(number), "ann", "secret"};
}

}  // namespace

void SiteBookFullDiskTest::init()
{
    const QByteArray folder = Folder.path().toLocal8Bit();
    QVERIFY2(mount("tmpfs", folder, "tmpfs", 0, "size=128k,nr_inodes=4") == 0, "No right to mount a file system");
    for (int number = 1; number <= 100; ++number) SiteFile(Name()).Append(Numbered(number));
    QCOMPARE(Bytes().size(), 100 * SiteRecordSize);
}

void SiteBookFullDiskTest::cleanup()
{
    umount(Folder.path().toLocal8Bit());
}

void SiteBookFullDiskTest::AFullDiskLeavesTheOldBook()
{
    const QByteArray before = Bytes();
    FillUp(0);
    QCOMPARE(ErrorOf([this] { SiteFile(Name()).Append(Numbered(101)); }), QString("Disk full"));
    QCOMPARE(Bytes(), before);
    QCOMPARE(ErrorOf([this] { SiteFile(Name()).Put(1, Numbered(7)); }), QString("Disk full"));
    QCOMPARE(Bytes(), before);
    QCOMPARE(ErrorOf([this] { SiteFile(Name()).Erase(1); }), QString("Disk full"));
    QCOMPARE(Bytes(), before);
}

void SiteBookFullDiskTest::OnceThereIsRoomTheBookGrowsAgain()
{
    FillUp(0);
    QCOMPARE(ErrorOf([this] { SiteFile(Name()).Append(Numbered(101)); }), QString("Disk full"));
    QVERIFY(QFile::remove(Folder.filePath("filler")));
    QCOMPARE(ErrorOf([this] { SiteFile(Name()).Append(Numbered(101)); }), QString());
    QCOMPARE(Bytes().size(), 101 * SiteRecordSize);
}

void SiteBookFullDiskTest::ADiskAlmostFullNeverDamagesTheBook()
{
    int refused = 0;
    int written = 0;
    for (qint64 rest = 0; rest <= 64 * 1024; rest += 4096) {
        const QByteArray before = Bytes();
        FillUp(rest);
        const QString error = ErrorOf([this] { SiteFile(Name()).Append(Numbered(101)); });
        const QByteArray after = Bytes();
        if (error.isEmpty()) {
            ++written;
            QCOMPARE(after.size(), before.size() + SiteRecordSize);
            QVERIFY(after.startsWith(before));
        } else {
            ++refused;
            QCOMPARE(after, before);
        }
        QVERIFY(QFile::remove(Folder.filePath("filler")));
    }
    qInfo("%d refused, %d written", refused, written);
    QVERIFY(refused > 0 && written > 0);
}

void SiteBookFullDiskTest::WithoutAnyFreeFileTheOldBookStays()
{
    const QByteArray before = Bytes();
    int made = 0;
    for (;; ++made) {
        QFile file(Folder.filePath(QString::number(made)));
        if (!file.open(QIODevice::WriteOnly)) break;
    }
    QVERIFY(made > 0);
    QVERIFY(!ErrorOf([this] { SiteFile(Name()).Append(Numbered(101)); }).isEmpty());
    QCOMPARE(Bytes(), before);
}

QTEST_GUILESS_MAIN(SiteBookFullDiskTest)
#include "site_book_full_disk.moc"
