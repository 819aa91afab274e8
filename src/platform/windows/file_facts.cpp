#include "platform/file_facts.h"

#include "base/byte_text.h"
#include "base/run_time_error.h"
#include "platform/windows/file_errors.h"

// The system's own calls throughout: those of the C library refuse the form that long paths need.

namespace {

/// 100 nanoseconds since 1601 became seconds since 1970.
constexpr std::int64_t TicksPerSecond = 10'000'000;
constexpr std::int64_t SecondsBefore1970 = 11'644'473'600;

constexpr DWORD EveryOtherUse = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

std::uint64_t Whole(DWORD high, DWORD low)
{
    return (std::uint64_t{high} << 32U) | low;
}

QDateTime DateOf(const FILETIME& time)
{
    const auto ticks = static_cast<std::int64_t>(Whole(time.dwHighDateTime, time.dwLowDateTime));
    return QDateTime::fromSecsSinceEpoch(ticks / TicksPerSecond - SecondsBefore1970);
}

bool IsFolder(DWORD attributes)
{
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace

FileFacts FactsOf(const QString& file)
{
    // Opened without the right to read: a file that another program keeps to itself tells its size, too.
    const HANDLE handle = CreateFileW(FilePath(file).c_str(), FILE_READ_ATTRIBUTES, EveryOtherUse, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) ThrowFileError(GetLastError());
    BY_HANDLE_FILE_INFORMATION facts{};
    const bool told = GetFileInformationByHandle(handle, &facts) != 0;
    const DWORD error = GetLastError();
    CloseHandle(handle);
    if (!told) ThrowFileError(error);
    if (IsFolder(facts.dwFileAttributes)) throw RuntimeError("Is a directory");
    return {Whole(facts.nFileSizeHigh, facts.nFileSizeLow), DateOf(facts.ftLastWriteTime)};
}

void EraseFile(const QString& file)
{
    const std::filesystem::path path = FilePath(file);
    const DWORD attributes = GetFileAttributesW(path.c_str());
    const bool isLink = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    if (IsFolder(attributes) && !isLink) throw RuntimeError("File not found");
    const bool erased = IsFolder(attributes) ? RemoveDirectoryW(path.c_str()) != 0 : DeleteFileW(path.c_str()) != 0;
    if (!erased) ThrowFileError(GetLastError());
}

bool IsFolder(const QString& path)
{
    return IsFolder(GetFileAttributesW(FilePath(path).c_str()));
}

EntryKind KindOf(const QString& path)
{
    const DWORD attributes = GetFileAttributesW(FilePath(path).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return EntryKind::None;
    return IsFolder(attributes) ? EntryKind::Folder : EntryKind::File;
}
