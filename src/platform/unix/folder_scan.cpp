#include "platform/folder_scan.h"

#include "base/byte_text.h"
#include "base/run_time_error.h"
#include "platform/unix/entry_kind.h"

#include <filesystem>
#include <system_error>

namespace {

namespace fs = std::filesystem;

void ThrowWhenFailed(const std::error_code& failure)
{
    if (!failure) return;
    if (failure == std::errc::no_such_file_or_directory || failure == std::errc::not_a_directory)
        throw RuntimeError("Path not found");
    if (failure == std::errc::permission_denied) throw RuntimeError("Permission denied");
    throw RuntimeError(QString::fromStdString(failure.message()));
}

}  // namespace

struct FolderScan::Place {
    fs::directory_iterator Next;
};

FolderScan::FolderScan(const QString& folder) : Here(std::make_unique<Place>())
{
    std::error_code failure;
    Here->Next = fs::directory_iterator(FilePath(folder), failure);
    ThrowWhenFailed(failure);
}

FolderScan::~FolderScan() = default;
FolderScan::FolderScan(FolderScan&&) noexcept = default;
FolderScan& FolderScan::operator=(FolderScan&&) noexcept = default;

// The disk is asked for a kind only where the folder itself does not tell it.
std::optional<FolderScan::Entry> FolderScan::Next()
{
    if (Here->Next == fs::directory_iterator()) return std::nullopt;
    std::error_code failure;
    const EntryKind kind = EntryKindOf(Here->Next->status(failure).type());
    Entry entry{PathText(Here->Next->path().filename()), kind == EntryKind::None ? EntryKind::File : kind};
    Here->Next.increment(failure);
    ThrowWhenFailed(failure);
    return entry;
}
