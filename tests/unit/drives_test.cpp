#include "platform/drives.h"
#include "platform/unix/mounts.h"

#include <QDir>
#include <QTest>

class DrivesTest : public QObject {
    Q_OBJECT

private slots:
    void OnlyFileSystemsWithTheUsersFilesCount();
    void BlanksInMountPointsAreReadBack();
    void AMountPointIsNamedOnce();
    void TheRootAndTheHomeFolderAreAlwaysThere();
    void AFolderBelongsToTheNearestDriveAboveIt();
};

void DrivesTest::OnlyFileSystemsWithTheUsersFilesCount()
{
    const QByteArray table = "proc /proc proc rw 0 0\n"
                             "tmpfs /run tmpfs rw 0 0\n"
                             "/dev/sda2 / ext4 rw 0 0\n"
                             "/dev/sda1 /boot/efi vfat rw 0 0\n"
                             "/dev/sda3 /home ext4 rw 0 0\n"
                             "/dev/loop1 /snap/core/1 squashfs ro 0 0\n"
                             "nas:/files /mnt/nas nfs4 rw 0 0\n"
                             "/dev/sdb1 /run/media/ann/STICK vfat rw 0 0\n"
                             "broken line\n";
    const QList<MountPoint> wanted{{"/", false}, {"/home", false}, {"/mnt/nas", true}, {"/run/media/ann/STICK", false}};
    QCOMPARE(MountPoints(table), wanted);
}

void DrivesTest::BlanksInMountPointsAreReadBack()
{
    const QList<MountPoint> wanted{{"/media/My Disk\\", false}};
    QCOMPARE(MountPoints("/dev/sdb1 /media/My\\040Disk\\134 vfat rw 0 0\n"), wanted);
}

void DrivesTest::AMountPointIsNamedOnce()
{
    QCOMPARE(MountPoints("/dev/a /data ext4 rw 0 0\n/dev/b /data ext4 rw 0 0\n").size(), 1);
}

void DrivesTest::TheRootAndTheHomeFolderAreAlwaysThere()
{
    const QStringList drives = Drives();
    QCOMPARE(drives.value(0), QString("/"));
    QVERIFY(drives.contains(QDir::homePath()));
}

void DrivesTest::AFolderBelongsToTheNearestDriveAboveIt()
{
    const QStringList drives{"/", "/home/ann", "/mnt/disk"};
    QCOMPARE(DriveOf("/home/ann", drives), QString("/home/ann"));
    QCOMPARE(DriveOf("/home/ann/music", drives), QString("/home/ann"));
    QCOMPARE(DriveOf("/home/anna", drives), QString("/"));
    QCOMPARE(DriveOf("/mnt/disk/a/b", drives), QString("/mnt/disk"));
    QCOMPARE(DriveOf("/", drives), QString("/"));
    QCOMPARE(DriveOf("/usr", {"/mnt/disk"}), QString());
}

QTEST_GUILESS_MAIN(DrivesTest)
#include "drives_test.moc"
