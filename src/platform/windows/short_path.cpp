#include "platform/short_path.h"

#include "base/byte_text.h"

#include <filesystem>
#include <string>
#include <windows.h>

QString ShortName(const QString& path)
{
    if (path.isEmpty()) return {};
    const std::filesystem::path given = FilePath(path);
    std::wstring buffer(1024, L' ');
    DWORD length = GetShortPathNameW(given.c_str(), buffer.data(), static_cast<DWORD>(buffer.size()));
    if (length >= buffer.size()) {
        buffer.resize(length);
        length = GetShortPathNameW(given.c_str(), buffer.data(), length);
    }
    buffer.resize(length);
    return PathText(buffer);
}

QString ShortPath(const QString& path)
{
    const QString name = ShortName(path);
    return name.isEmpty() ? path : name;
}
