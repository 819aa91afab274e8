#include "platform/local_file.h"

#include "base/local_name.h"

#include <atomic>
#include <fcntl.h>
#include <io.h>
#include <string>
#include <system_error>
#include <utility>
#include <vector>
#include <windows.h>

namespace {

constexpr DWORD EveryOtherUse = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD KeptAttributes = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;

[[noreturn]] void Throw(DWORD error)
{
    throw std::system_error(static_cast<int>(error), std::system_category());
}

HANDLE HandleOf(int file)
{
    return reinterpret_cast<HANDLE>(_get_osfhandle(file));
}

/// A descriptor for the handle, which goes with it.
int DescriptorOf(HANDLE handle, int flags)
{
    const int file = _open_osfhandle(reinterpret_cast<intptr_t>(handle), flags | _O_BINARY | _O_NOINHERIT);
    if (file >= 0) return file;
    CloseHandle(handle);
    Throw(ERROR_TOO_MANY_OPEN_FILES);
}

/// A name that no other part file of any running program has, short enough for every file system.
std::string PartName()
{
    static std::atomic<unsigned> number = 0;
    return ".tolvane-" + std::to_string(GetCurrentProcessId()) + '-' + std::to_string(++number) + ".part";
}

/// Gives a file the rights of another one. A file system without rights refuses, and all is well.
void CopyRights(const std::filesystem::path& from, const std::filesystem::path& to)
{
    DWORD size = 0;
    GetFileSecurityW(from.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<unsigned char> rights(size);
    if (size > 0 && GetFileSecurityW(from.c_str(), DACL_SECURITY_INFORMATION, rights.data(), size, &size) != 0)
        SetFileSecurityW(to.c_str(), DACL_SECURITY_INFORMATION, rights.data());
}

}  // namespace

SourceFile::SourceFile(const std::filesystem::path& path)
{
    const HANDLE handle = CreateFileW(path.c_str(), GENERIC_READ, EveryOtherUse, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (handle == INVALID_HANDLE_VALUE) Throw(GetLastError());
    if (GetFileType(handle) != FILE_TYPE_DISK) {
        CloseHandle(handle);
        Throw(ERROR_ACCESS_DENIED);
    }
    LARGE_INTEGER size = {};
    if (GetFileSizeEx(handle, &size) != 0) Bytes = static_cast<std::uint64_t>(size.QuadPart);
    File = DescriptorOf(handle, _O_RDONLY);
}

SourceFile::~SourceFile()
{
    _close(File);
}

std::size_t SourceFile::Read(char* buffer, std::size_t size)
{
    DWORD count = 0;
    if (ReadFile(HandleOf(File), buffer, static_cast<DWORD>(size), &count, nullptr) == 0) Throw(GetLastError());
    return count;
}

PartFile::PartFile(std::filesystem::path target) : Target(std::move(target))
{
    const DWORD attributes = GetFileAttributesW(Target.c_str());
    const bool exists = attributes != INVALID_FILE_ATTRIBUTES;
    if (exists && (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0) Throw(ERROR_ACCESS_DENIED);
    HANDLE handle = INVALID_HANDLE_VALUE;
    do {
        // Its path may be a long one although the target's is not.
        Part = LocalPath(Target.parent_path(), PartName());
        handle = CreateFileW(Part.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                             FILE_ATTRIBUTE_HIDDEN, nullptr);
    } while (handle == INVALID_HANDLE_VALUE && GetLastError() == ERROR_FILE_EXISTS);
    if (handle == INVALID_HANDLE_VALUE) Throw(GetLastError());
    File = DescriptorOf(handle, 0);
    if (exists) CopyRights(Target, Part);
}

PartFile::~PartFile()
{
    if (File < 0) return;
    _close(File);
    DeleteFileW(Part.c_str());
}

void PartFile::Write(const char* bytes, std::size_t size)
{
    while (size > 0) {
        DWORD count = 0;
        if (WriteFile(HandleOf(File), bytes, static_cast<DWORD>(size), &count, nullptr) == 0) Throw(GetLastError());
        bytes += count;
        size -= count;
    }
}

// A failure here must still remove the file.
void PartFile::TakePlace()
{
    const int file = std::exchange(File, -1);
    const bool onDisk = _close(file) == 0;
    const DWORD before = GetFileAttributesW(Target.c_str());
    const DWORD kept = before == INVALID_FILE_ATTRIBUTES ? FILE_ATTRIBUTE_ARCHIVE : before & KeptAttributes;
    SetFileAttributesW(Part.c_str(), kept != 0 ? kept : FILE_ATTRIBUTE_NORMAL);
    if (onDisk && MoveFileExW(Part.c_str(), Target.c_str(), MOVEFILE_REPLACE_EXISTING) != 0) return;
    const DWORD error = onDisk ? GetLastError() : ERROR_WRITE_FAULT;
    DeleteFileW(Part.c_str());
    Throw(error);
}
