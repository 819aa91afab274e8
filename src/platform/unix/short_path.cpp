#include "platform/short_path.h"

#include "base/byte_text.h"

#include <filesystem>
#include <system_error>

QString ShortPath(const QString& path)
{
    return path;
}

QString ShortName(const QString& path)
{
    std::error_code failure;
    return !path.isEmpty() && std::filesystem::exists(FilePath(path), failure) ? path : QString();
}
