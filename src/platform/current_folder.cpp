#include "platform/current_folder.h"

#include "base/byte_text.h"
#include "base/run_time_error.h"

#include <filesystem>
#include <system_error>

QString CurrentFolder()
{
    std::error_code failure;
    return PathText(std::filesystem::current_path(failure));
}

void ChangeCurrentFolder(const QString& folder)
{
    std::error_code failure;
    std::filesystem::current_path(FilePath(folder), failure);
    if (failure == std::errc::permission_denied) throw RuntimeError("Permission denied");
    if (failure) throw RuntimeError("Path not found");
}
