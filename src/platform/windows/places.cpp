#include "platform/places.h"

#include "base/byte_text.h"

#include <QString>
#include <filesystem>
#include <shlobj.h>
#include <string>
#include <system_error>
#include <windows.h>

namespace {

using Path = std::filesystem::path;

Path ExecutableFolder()
{
    std::wstring name(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
        if (length < name.size()) {
            name.resize(length);
            return Path(name).parent_path();
        }
        name.resize(name.size() * 2);
    }
}

/// Asks by trying: rights, a write-protected medium and a full disk all count.
bool CanBeWritten(const Path& folder)
{
    const Path trial = folder / (L"tolvane-" + std::to_wstring(GetCurrentProcessId()) + L".tmp");
    const HANDLE file = CreateFileW(trial.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    CloseHandle(file);
    return true;
}

Path UserDataFolder()
{
    PWSTR folder = nullptr;
    Path data;
    if (SHGetKnownFolderPath(FOLDERID_LocalAppData, KF_FLAG_CREATE, nullptr, &folder) == S_OK) data = folder;
    CoTaskMemFree(folder);
    return data / L"Tolvane";
}

Path KeepingFolder(const Path& executable)
{
    return CanBeWritten(executable) ? executable : UserDataFolder();
}

Path Choose()
{
    if (const QString home = qEnvironmentVariable("TOLVANE_HOME"); !home.isEmpty()) {
        std::error_code failure;
        return std::filesystem::absolute(FilePath(home), failure).lexically_normal();
    }
    return KeepingFolder(ExecutableFolder());
}

}  // namespace

QString ProgramFolder()
{
    Path folder = Choose();
    if (!folder.has_filename() && folder.has_parent_path()) folder = folder.parent_path();
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    return PathText(folder);
}

QString ProgramFolderBeside(const QString& executableFolder)
{
    return PathText(KeepingFolder(FilePath(executableFolder)));
}

QString ShippedFile(const QString& programFolder, const QString& name)
{
    const Path own = FilePath(programFolder) / FilePath(name);
    for (const Path& file : {own, ExecutableFolder() / FilePath(name)}) {
        std::error_code failure;
        if (std::filesystem::is_regular_file(file, failure)) return PathText(file.lexically_normal());
    }
    return PathText(own);
}
