#pragma once

#include <QByteArray>
#include <QList>

/// Where a file system is mounted.
struct MountPoint {
    QByteArray Path;
    bool OnNetwork = false;  ///< asking it may take long or forever

    bool operator==(const MountPoint&) const = default;
};

/// The mount points of file systems with files of the user's, in the order of the table, each once: neither the
/// kernel's own file systems nor those that belong to the system's working. `table` is the text of a mount table
/// (proc(5), /proc/self/mounts).
QList<MountPoint> MountPoints(const QByteArray& table);
