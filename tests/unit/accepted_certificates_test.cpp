#include "base/run_time_error.h"
#include "sites/accepted_certificates.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <sys/stat.h>

/// The file of the certificates that the user has accepted.
class AcceptedCertificatesTest : public QObject {
    Q_OBJECT

private slots:

    void init() { Folder = std::make_unique<QTemporaryDir>(); }

    void NothingIsAcceptedAtFirst();
    void OneIsKeptForEachHostAndPort();
#ifndef Q_OS_WIN
    void OnlyTheOwnerMayReadTheFile();
#endif
    void WhatIsDamagedCountsForNothing_data();
    void WhatIsDamagedCountsForNothing();
    void AFileThatCannotBeReadCountsForNothing();
    void AFileThatCannotBeWrittenIsAnError();

private:
    QString Name() const
    {
        return Folder->filePath("TolvCert.dta");
    }

    QByteArray Bytes() const
    {
        QFile file(Name());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no such file)");
    }

    void Write(const QByteArray& bytes) const
    {
        QFile file(Name());
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    std::unique_ptr<QTemporaryDir> Folder;
};

namespace {

const QString One = QString("AB:").repeated(31) + "01";
const QString Two = QString("CD:").repeated(31) + "02";

}  // namespace

void AcceptedCertificatesTest::NothingIsAcceptedAtFirst()
{
    QCOMPARE(AcceptedCertificates(Name()).FingerprintOf("ftp.example", 21), QString());
    QVERIFY(!QFile::exists(Name()));
}

void AcceptedCertificatesTest::OneIsKeptForEachHostAndPort()
{
    const AcceptedCertificates book(Name());
    book.Accept("FTP.example", 21, One);
    book.Accept("ftp.example", 990, Two);
    QCOMPARE(book.FingerprintOf("ftp.example", 21), One);
    QCOMPARE(book.FingerprintOf("ftp.EXAMPLE", 990), Two);
    QCOMPARE(book.FingerprintOf("ftp.example", 22), QString());
    QCOMPARE(book.FingerprintOf("example", 21), QString());
    book.Accept("ftp.example", 21, Two);
    QCOMPARE(book.FingerprintOf("ftp.example", 21), Two);
    QCOMPARE(Bytes().count('\n'), 2);
    QCOMPARE(AcceptedCertificates(Name()).FingerprintOf("ftp.example", 990), Two);
}

#ifndef Q_OS_WIN

void AcceptedCertificatesTest::OnlyTheOwnerMayReadTheFile()
{
    AcceptedCertificates(Name()).Accept("ftp.example", 21, One);
    struct stat facts = {};
    QCOMPARE(stat(Name().toLocal8Bit().constData(), &facts), 0);
    QCOMPARE(facts.st_mode & 0777, 0600U);
}

#endif

void AcceptedCertificatesTest::WhatIsDamagedCountsForNothing_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray one = One.toLatin1();
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("noise") << QByteArray("\0\xFF\x80\n\n\r", 6);
    QTest::newRow("cut off") << "ftp.example 21 " + one.left(60) + '\n';
    QTest::newRow("too long") << "ftp.example 21 " + one + ":AB\n";
    QTest::newRow("without port") << "ftp.example " + one + '\n';
    QTest::newRow("another's") << "ftp.example.org 21 " + one + '\n';
    QTest::newRow("behind something") << "x ftp.example 21 " + one + '\n';
}

void AcceptedCertificatesTest::WhatIsDamagedCountsForNothing()
{
    QFETCH(QByteArray, bytes);
    Write(bytes + "kept.example 21 " + Two.toLatin1() + '\n');
    const AcceptedCertificates book(Name());
    QCOMPARE(book.FingerprintOf("ftp.example", 21), QString());
    book.Accept("ftp.example", 21, One);
    QCOMPARE(book.FingerprintOf("ftp.example", 21), One);
    if (bytes.endsWith('\n')) QCOMPARE(book.FingerprintOf("kept.example", 21), Two);
}

void AcceptedCertificatesTest::AFileThatCannotBeReadCountsForNothing()
{
    QVERIFY(QDir().mkdir(Name()));
    QCOMPARE(AcceptedCertificates(Name()).FingerprintOf("ftp.example", 21), QString());
}

void AcceptedCertificatesTest::AFileThatCannotBeWrittenIsAnError()
{
    QVERIFY(QDir().mkdir(Name()));
    QVERIFY_EXCEPTION_THROWN(AcceptedCertificates(Name()).Accept("ftp.example", 21, One), RuntimeError);
}

QTEST_APPLESS_MAIN(AcceptedCertificatesTest)
#include "accepted_certificates_test.moc"
