#pragma once

#include "platform/free_space.h"

#include <QLabel>
#include <QString>
#include <functional>
#include <optional>

class ErrorRecord;

/// Shows the free space of the local disk. User-interface thread.
class DiskSpace {
public:
    struct Controls {
        QLabel& DrvSpace;      ///< the figure as long as it fits 32 bits
        QLabel& DrvSpaceTrue;  ///< in the same place: the figure when it does not
    };

    /// `ask` tells the free space of the drive that holds a path.
    DiskSpace(Controls controls, ErrorRecord& errors,
              std::function<std::optional<FreeSpace>(const QString&)> ask = &FreeSpaceOf);

    /// Shows the free bytes of the drive that holds the path and returns them. -1 when the drive cannot be asked, which
    /// leaves everything as it was, and when the figure exceeds a signed 32-bit number: that error is recorded,
    /// DrvSpace keeps its text, and DrvSpaceTrue appears in its place.
    double ShowDiskSpace(const QString& path);

    /// The same for the current folder.
    void RefreshDiskSpace();

private:
    double ShowProduct(const FreeSpace& space);

    Controls Form;
    ErrorRecord& Errors;
    std::function<std::optional<FreeSpace>(const QString&)> Ask;
};
