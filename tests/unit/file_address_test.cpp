#include "base/byte_text.h"
#include "base/file_address.h"

#include <QTest>

class FileAddressTest : public QObject {
    Q_OBJECT

private slots:
    void APathAndItsAddress_data();
    void APathAndItsAddress();
    void OtherAddressesAreNoFiles();
    void TheOwnHostMayBeNamed();
};

void FileAddressTest::APathAndItsAddress_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("address");
    QTest::newRow("plain") << QByteArray("/home/ann/a.txt") << QByteArray("file:///home/ann/a.txt");
    QTest::newRow("blanks and marks") << QByteArray("/a b/100% #1?.txt")
                                      << QByteArray("file:///a%20b/100%25%20%231%3F.txt");
    QTest::newRow("beyond ASCII") << QByteArray("/caf\xC3\xA9") << QByteArray("file:///caf%C3%A9");
#ifndef Q_OS_WIN  // where names are text
    QTest::newRow("no text at all") << QByteArray("/caf\xE9\x01") << QByteArray("file:///caf%E9%01");
#endif
    QTest::newRow("looks like an escape") << QByteArray("/%41") << QByteArray("file:///%2541");
}

void FileAddressTest::APathAndItsAddress()
{
    QFETCH(const QByteArray, path);
    QFETCH(const QByteArray, address);
    QCOMPARE(FileAddress(BytesToText(path)).toEncoded(), address);
    QCOMPARE(TextToBytes(LocalPath(QUrl::fromEncoded(address))), path);
}

void FileAddressTest::OtherAddressesAreNoFiles()
{
    for (const char* address : {"", "http://example.org/a.txt", "ftp://example.org/a.txt", "a.txt"})
        QCOMPARE(LocalPath(QUrl(address)), QString());
}

void FileAddressTest::TheOwnHostMayBeNamed()
{
    QCOMPARE(LocalPath(QUrl("file://localhost/a.txt")), QString("/a.txt"));
}

QTEST_GUILESS_MAIN(FileAddressTest)
#include "file_address_test.moc"
