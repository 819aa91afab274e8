#include "platform/drives.h"

#include <QDir>
#include <QTest>

class WindowsDrivesTest : public QObject {
    Q_OBJECT

private slots:
    void EveryLetterLooksLikeARoot();
    void TheDriveOfTheSystemIsThere();
    void AFolderBelongsToItsLetter();
};

void WindowsDrivesTest::EveryLetterLooksLikeARoot()
{
    const QStringList drives = Drives();
    QVERIFY(!drives.isEmpty());
    for (const QString& drive : drives) {
        QCOMPARE(drive.size(), 3);
        QVERIFY(drive[0] >= u'A' && drive[0] <= u'Z');
        QCOMPARE(drive.mid(1), QString(":\\"));
    }
}

void WindowsDrivesTest::TheDriveOfTheSystemIsThere()
{
    QVERIFY(Drives().contains(qEnvironmentVariable("SystemDrive").toUpper() + u'\\'));
}

void WindowsDrivesTest::AFolderBelongsToItsLetter()
{
    const QStringList drives{"C:\\", "D:\\"};
    QCOMPARE(DriveOf("C:\\", drives), QString("C:\\"));
    QCOMPARE(DriveOf("c:\\Users\\Ann", drives), QString("C:\\"));
    QCOMPARE(DriveOf("D:\\music", drives), QString("D:\\"));
    QCOMPARE(DriveOf("E:\\", drives), QString());
    QCOMPARE(DriveOf("\\\\nas\\files", drives), QString());
}

QTEST_GUILESS_MAIN(WindowsDrivesTest)
#include "windows_drives_test.moc"
