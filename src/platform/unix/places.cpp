#include "platform/places.h"

#include "base/byte_text.h"

#include <QByteArray>
#include <cstdlib>
#include <filesystem>
#include <pwd.h>
#include <system_error>
#include <unistd.h>

namespace {

using Path = std::filesystem::path;

Path FromEnvironment(const char* variable)
{
    const char* value = std::getenv(variable);
    return value == nullptr ? Path() : Path(value);
}

Path ExecutableFolder()
{
    std::error_code failure;
    return std::filesystem::read_symlink("/proc/self/exe", failure).parent_path();
}

Path HomeFolder()
{
    Path home = FromEnvironment("HOME");
    if (home.is_absolute()) return home;
    const passwd* user = getpwuid(getuid());
    return user == nullptr ? Path("/") : Path(user->pw_dir);
}

Path UserDataFolder()
{
    Path data = FromEnvironment("XDG_DATA_HOME");
    if (!data.is_absolute()) data = HomeFolder() / ".local" / "share";
    return data / "Tolvane";
}

Path KeepingFolder(const Path& executable)
{
    return !executable.empty() && access(executable.c_str(), W_OK) == 0 ? executable : UserDataFolder();
}

Path Choose()
{
    std::error_code failure;
    if (const Path home = FromEnvironment("TOLVANE_HOME"); !home.empty())
        return std::filesystem::absolute(home, failure).lexically_normal();
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
    const Path executable = ExecutableFolder();
    for (const Path& file : {own, executable / FilePath(name), executable / "../share/tolvane" / FilePath(name)}) {
        std::error_code failure;
        if (std::filesystem::is_regular_file(file, failure)) return PathText(file.lexically_normal());
    }
    return PathText(own);
}
