#include "platform/file_facts.h"

#include "base/byte_text.h"
#include "base/run_time_error.h"
#include "platform/unix/entry_kind.h"

#include <chrono>
#include <system_error>

namespace {

namespace fs = std::filesystem;

void ThrowWhenFailed(const std::error_code& failure)
{
    if (!failure) return;
    if (failure == std::errc::no_such_file_or_directory || failure == std::errc::not_a_directory)
        throw RuntimeError("File not found");
    if (failure == std::errc::permission_denied || failure == std::errc::operation_not_permitted ||
        failure == std::errc::read_only_file_system)
        throw RuntimeError("Permission denied");
    throw RuntimeError(QString::fromStdString(failure.message()));
}

}  // namespace

FileFacts FactsOf(const QString& file)
{
    const fs::path path = FilePath(file);
    std::error_code failure;
    const std::uintmax_t bytes = fs::file_size(path, failure);
    ThrowWhenFailed(failure);
    const fs::file_time_type changed = fs::last_write_time(path, failure);
    ThrowWhenFailed(failure);
    const auto since = fs::file_time_type::clock::to_sys(changed).time_since_epoch();
    return {bytes, QDateTime::fromSecsSinceEpoch(std::chrono::floor<std::chrono::seconds>(since).count())};
}

void EraseFile(const QString& file)
{
    const fs::path path = FilePath(file);
    std::error_code failure;
    const fs::file_type type = fs::symlink_status(path, failure).type();
    if (type == fs::file_type::directory) throw RuntimeError("File not found");
    const bool erased = fs::remove(path, failure);
    ThrowWhenFailed(failure);
    if (!erased) throw RuntimeError("File not found");
}

bool IsFolder(const QString& path)
{
    std::error_code ignored;
    return fs::is_directory(FilePath(path), ignored);
}

EntryKind KindOf(const QString& path)
{
    std::error_code ignored;
    return EntryKindOf(fs::status(FilePath(path), ignored).type());
}
