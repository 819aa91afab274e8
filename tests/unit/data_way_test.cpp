#include "inet/ftp/data_way.h"

#include <QTemporaryDir>
#include <QtTest>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>

/// The file of the ways to the servers' data.
class DataWayTest : public QObject {
    Q_OBJECT

private slots:

    void init() { Folder = std::make_unique<QTemporaryDir>(); }

    void NothingIsKnownAtFirst();
    void WhatIsNotedIsThereInTheNextRun();
    void TheUsualWayNeedsNoEntry();
    void OnlySoManyServersAreKept();
    void WhatIsDamagedCountsForNothing_data();
    void WhatIsDamagedCountsForNothing();
    void TwoProgramsShareTheFile();
    void AFileThatCannotBeReadOrWrittenIsNoError();
    void NamesThatNoServerHasAreNotWritten();
    void WithoutAFileItRemembersForItself();

private:
    std::filesystem::path File() const { return Folder->filePath("ways").toStdString(); }

    std::string Bytes() const
    {
        std::ifstream file(File(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    void Write(const std::string& bytes) const { std::ofstream(File(), std::ios::binary) << bytes; }

    std::unique_ptr<QTemporaryDir> Folder;
};

using Ftp::DataWay;
using Ftp::DataWayBook;

void DataWayTest::NothingIsKnownAtFirst()
{
    DataWayBook book(File());
    QVERIFY(book.Find("ftp.example", 21) == DataWay::Extended);
    QVERIFY(!std::filesystem::exists(File()));
}

void DataWayTest::WhatIsNotedIsThereInTheNextRun()
{
    DataWayBook book(File());
    book.Note("FTP.example", 21, DataWay::Active);
    book.Note("ftp.example", 2121, DataWay::Passive);
    book.Note("2001:db8::1", 21, DataWay::Passive);
    DataWayBook next(File());
    QVERIFY(next.Find("ftp.EXAMPLE", 21) == DataWay::Active);
    QVERIFY(next.Find("ftp.example", 2121) == DataWay::Passive);
    QVERIFY(next.Find("2001:db8::1", 21) == DataWay::Passive);
    QVERIFY(next.Find("ftp.example", 22) == DataWay::Extended);
    QCOMPARE(Bytes(), std::string("2001:db8::1 21 PASV\nftp.example 2121 PASV\nftp.example 21 PORT\n"));
#ifndef Q_OS_WIN
    const auto rights = std::filesystem::status(File()).permissions();
    QVERIFY(rights == (std::filesystem::perms::owner_read | std::filesystem::perms::owner_write));
#endif
}

void DataWayTest::TheUsualWayNeedsNoEntry()
{
    DataWayBook book(File());
    book.Note("ftp.example", 21, DataWay::Extended);
    QVERIFY(!std::filesystem::exists(File()));
    book.Note("ftp.example", 21, DataWay::Active);
    book.Note("other.example", 21, DataWay::Active);
    book.Note("ftp.example", 21, DataWay::Extended);
    QCOMPARE(Bytes(), std::string("other.example 21 PORT\n"));
    QVERIFY(book.Find("ftp.example", 21) == DataWay::Extended);
}

void DataWayTest::OnlySoManyServersAreKept()
{
    DataWayBook book(File());
    const int most = int(DataWayBook::MostServers);
    for (int i = 0; i <= most; ++i) book.Note("host" + std::to_string(i), 21, DataWay::Active);
    DataWayBook next(File());
    QVERIFY(next.Find("host0", 21) == DataWay::Extended);
    QVERIFY(next.Find("host1", 21) == DataWay::Active);
    QVERIFY(next.Find("host" + std::to_string(most), 21) == DataWay::Active);
    const std::string bytes = Bytes();
    QCOMPARE(std::count(bytes.begin(), bytes.end(), '\n'), most);
}

void DataWayTest::WhatIsDamagedCountsForNothing_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("noise") << QByteArray("\0\xFF\x80\n\n\r", 6);
    QTest::newRow("cut off") << QByteArray("ftp.example 21 PO\n");
    QTest::newRow("another word") << QByteArray("ftp.example 21 EPSV\n");
    QTest::newRow("one more") << QByteArray("ftp.example 21 PORT PORT\n");
    QTest::newRow("without port") << QByteArray("ftp.example PORT\n");
    QTest::newRow("port 0") << QByteArray("ftp.example 0 PORT\n");
    QTest::newRow("too large a port") << QByteArray("ftp.example 99999 PORT\n");
    QTest::newRow("far too large a port") << QByteArray("ftp.example 99999999999999999999 PORT\n");
    QTest::newRow("negative") << QByteArray("ftp.example -21 PORT\n");
    QTest::newRow("long") << QByteArray(10'000, 'x') + " 21 PORT\n";
    QTest::newRow("huge") << QByteArray(10'000'000, 'x');
}

void DataWayTest::WhatIsDamagedCountsForNothing()
{
    QFETCH(QByteArray, bytes);
    Write("kept.example 21 PASV\n" + bytes.toStdString());
    DataWayBook book(File());
    QVERIFY(book.Find("ftp.example", 21) == DataWay::Extended);
    QVERIFY(book.Find("kept.example", 21) == DataWay::Passive);
    book.Note("ftp.example", 21, DataWay::Active);
    QCOMPARE(Bytes(), std::string("ftp.example 21 PORT\nkept.example 21 PASV\n"));
}

void DataWayTest::TwoProgramsShareTheFile()
{
    DataWayBook one(File());
    DataWayBook two(File());
    QVERIFY(two.Find("a.example", 21) == DataWay::Extended);
    one.Note("a.example", 21, DataWay::Active);
    two.Note("b.example", 21, DataWay::Passive);
    QCOMPARE(Bytes(), std::string("b.example 21 PASV\na.example 21 PORT\n"));
}

void DataWayTest::AFileThatCannotBeReadOrWrittenIsNoError()
{
    QVERIFY(std::filesystem::create_directory(File()));
    DataWayBook book(File());
    QVERIFY(book.Find("ftp.example", 21) == DataWay::Extended);
    book.Note("ftp.example", 21, DataWay::Active);
    QVERIFY(book.Find("ftp.example", 21) == DataWay::Active);
    QVERIFY(std::filesystem::is_directory(File()));
    DataWayBook nowhere(File() / "no" / "such" / "folder");
    nowhere.Note("ftp.example", 21, DataWay::Active);
    QVERIFY(nowhere.Find("ftp.example", 21) == DataWay::Active);
    QCOMPARE(QDir(Folder->path()).entryList(QDir::Files | QDir::Hidden).size(), 0);
}

void DataWayTest::NamesThatNoServerHasAreNotWritten()
{
    DataWayBook book(File());
    for (const char* name : {"", "a b", "a\nb 21 PORT", "\x7f"}) book.Note(name, 21, DataWay::Active);
    book.Note(std::string(256, 'x'), 21, DataWay::Active);
    QVERIFY(!std::filesystem::exists(File()));
}

void DataWayTest::WithoutAFileItRemembersForItself()
{
    DataWayBook book;
    book.Note("ftp.example", 21, DataWay::Passive);
    QVERIFY(book.Find("ftp.example", 21) == DataWay::Passive);
}

QTEST_APPLESS_MAIN(DataWayTest)
#include "data_way_test.moc"
