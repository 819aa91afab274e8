#pragma once

#include <QString>
#include <cstdint>
#include <optional>

/// What a drive's file system says about its free space. The product of the three is the free space in bytes.
struct FreeSpace {
    std::uint64_t SectorsPerCluster = 0;
    std::uint64_t BytesPerSector = 0;
    std::uint64_t FreeClusters = 0;  ///< those that this user may use

    std::uint64_t Bytes() const { return SectorsPerCluster * BytesPerSector * FreeClusters; }
};

/// The free space of the drive that holds the path; nothing when it cannot be asked. Any thread.
std::optional<FreeSpace> FreeSpaceOf(const QString& path);
