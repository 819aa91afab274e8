#include "platform/free_space.h"

#include "base/byte_text.h"

#include <sys/statvfs.h>

std::optional<FreeSpace> FreeSpaceOf(const QString& path)
{
    struct statvfs drive = {};
    if (statvfs(FilePath(path).c_str(), &drive) != 0) return std::nullopt;
    constexpr std::uint64_t Sector = 512;
    const std::uint64_t cluster = drive.f_frsize != 0 ? drive.f_frsize : drive.f_bsize;
    if (cluster % Sector != 0) return FreeSpace{1, cluster, drive.f_bavail};
    return FreeSpace{cluster / Sector, Sector, drive.f_bavail};
}
