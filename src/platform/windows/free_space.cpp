#include "platform/free_space.h"

#include <array>
#include <windows.h>

std::optional<FreeSpace> FreeSpaceOf(const QString& path)
{
    const QString trimmed = path.trimmed();
    if (trimmed.isEmpty()) return std::nullopt;
    const std::array root{static_cast<wchar_t>(trimmed.front().unicode()), L':', L'\\', L'\0'};
    DWORD sectors = 0;
    DWORD bytes = 0;
    DWORD freeClusters = 0;
    DWORD clusters = 0;
    if (GetDiskFreeSpaceW(root.data(), &sectors, &bytes, &freeClusters, &clusters) == 0) return std::nullopt;
    return FreeSpace{sectors, bytes, freeClusters};
}
