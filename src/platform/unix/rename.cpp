#include "platform/rename.h"

#include "base/byte_text.h"
#include "base/run_time_error.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <system_error>

namespace {

namespace fs = std::filesystem;

[[noreturn]] void Refuse(int error)
{
    switch (error) {
    case EEXIST:
    case ENOTEMPTY:
        throw RuntimeError("File already exists");
    case ENOENT:
    case ENOTDIR:
        throw RuntimeError("File not found");
    case EACCES:
    case EPERM:
    case EROFS:
        throw RuntimeError("Permission denied");
    default:
        throw RuntimeError(QString::fromStdString(std::generic_category().message(error)));
    }
}

/// For file systems that cannot look and rename in one step.
int LookAndRename(const fs::path& from, const fs::path& to)
{
    std::error_code failure;
    if (fs::symlink_status(to, failure).type() != fs::file_type::not_found) return EEXIST;
    return std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

}  // namespace

void RenameFile(const QString& from, const QString& to)
{
    const fs::path source = FilePath(from);
    const fs::path target = FilePath(to);
    int error = 0;
    if (renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) != 0) error = errno;
    if (error == EINVAL || error == ENOSYS) error = LookAndRename(source, target);
    if (error != 0) Refuse(error);
}
