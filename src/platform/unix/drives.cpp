#include "platform/drives.h"

#include "base/byte_text.h"
#include "platform/unix/mounts.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace {

/// File systems on a disk, a stick, a disc or another computer.
bool HoldsFiles(const QByteArray& type)
{
    constexpr std::array<std::string_view, 33> Types{
        "ext2",    "ext3", "ext4",  "xfs",   "btrfs", "zfs",   "f2fs",    "jfs",      "reiserfs", "reiser4", "bcachefs",
        "nilfs2",  "vfat", "msdos", "exfat", "ntfs",  "ntfs3", "fuseblk", "hfs",      "hfsplus",  "apfs",    "udf",
        "iso9660", "nfs",  "nfs4",  "cifs",  "smb3",  "smbfs", "9p",      "virtiofs", "vboxsf",   "ceph",    "ufs",
    };
    return std::find(Types.begin(), Types.end(), type.toStdString()) != Types.end() || type.startsWith("fuse.sshfs") ||
           type.startsWith("fuse.rclone");
}

bool IsNetwork(const QByteArray& type)
{
    return type.startsWith("nfs") || type == "cifs" || type.startsWith("smb") || type == "ceph" ||
           type.startsWith("fuse.");
}

/// Mount points of the system's own: nobody keeps files there to send.
bool BelongsToTheSystem(const QByteArray& point)
{
    constexpr std::array<std::string_view, 8> Roots{"/proc", "/sys",  "/dev",     "/boot",
                                                    "/efi",  "/snap", "/var/lib", "/etc"};
    const bool inRoot = std::any_of(Roots.begin(), Roots.end(), [&](std::string_view root) {
        const QByteArray folder(root.data(), static_cast<qsizetype>(root.size()));
        return point == folder || point.startsWith(folder + '/');
    });
    return inRoot || (point.startsWith("/run/") && !point.startsWith("/run/media/"));
}

/// The table writes blanks, tabs, line feeds and backslashes as "\040" and the like.
QByteArray Unescaped(const QByteArray& field)
{
    QByteArray text;
    for (qsizetype at = 0; at < field.size(); ++at) {
        bool octal = false;
        const int code = field[at] == '\\' ? field.mid(at + 1, 3).toInt(&octal, 8) : 0;
        text += octal ? static_cast<char>(code) : field[at];
        if (octal) at += 3;
    }
    return text;
}

QByteArray MountTable()
{
    QFile file("/proc/self/mounts");
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

QList<MountPoint> MountPoints(const QByteArray& table)
{
    QList<MountPoint> points;
    for (const QByteArray& line : table.split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        if (fields.size() < 3 || !HoldsFiles(fields[2])) continue;
        const MountPoint point{Unescaped(fields[1]), IsNetwork(fields[2])};
        if (point.Path.startsWith('/') && !BelongsToTheSystem(point.Path) && !points.contains(point)) points += point;
    }
    return points;
}

QStringList Drives()
{
    QStringList drives{"/", QDir::homePath()};
    for (const MountPoint& point : MountPoints(MountTable())) {
        const QString path = BytesToText(point.Path);
        std::error_code ignored;
        if (point.OnNetwork || std::filesystem::is_directory(FilePath(path), ignored)) drives += path;
    }
    drives.removeDuplicates();
    return drives;
}

QString DriveOf(const QString& folder, const QStringList& drives)
{
    QString longest;
    for (const QString& drive : drives) {
        const bool inside = folder == drive || folder.startsWith(drive.endsWith(u'/') ? drive : drive + u'/');
        if (inside && drive.size() > longest.size()) longest = drive;
    }
    return longest;
}
