#include "platform/folder_scan.h"

#include "base/byte_text.h"
#include "platform/windows/file_errors.h"

#include <utility>

struct FolderScan::Place {
    ~Place()
    {
        if (Search != INVALID_HANDLE_VALUE) FindClose(Search);
    }

    HANDLE Search = INVALID_HANDLE_VALUE;
    WIN32_FIND_DATAW Found = {};
    bool Waits = false;  ///< what is found has not been told yet
};

FolderScan::FolderScan(const QString& folder) : Here(std::make_unique<Place>())
{
    const bool closed = folder.endsWith(u'\\') || folder.endsWith(u'/');
    const QString pattern = folder + (closed ? QStringLiteral("*") : QStringLiteral("\\*"));
    // Without the short names, and as many entries at once as fit.
    Here->Search = FindFirstFileExW(FilePath(pattern).c_str(), FindExInfoBasic, &Here->Found, FindExSearchNameMatch,
                                    nullptr, FIND_FIRST_EX_LARGE_FETCH);
    Here->Waits = Here->Search != INVALID_HANDLE_VALUE;
    if (Here->Waits) return;
    // An empty drive has not even itself as an entry.
    if (const DWORD error = GetLastError(); error != ERROR_FILE_NOT_FOUND || !IsFolder(folder)) ThrowFolderError(error);
}

FolderScan::~FolderScan() = default;
FolderScan::FolderScan(FolderScan&&) noexcept = default;
FolderScan& FolderScan::operator=(FolderScan&&) noexcept = default;

std::optional<FolderScan::Entry> FolderScan::Next()
{
    while (Here->Search != INVALID_HANDLE_VALUE) {
        if (!Here->Waits && FindNextFileW(Here->Search, &Here->Found) == 0) {
            const DWORD error = GetLastError();
            FindClose(std::exchange(Here->Search, INVALID_HANDLE_VALUE));
            if (error != ERROR_NO_MORE_FILES) ThrowFolderError(error);
            break;
        }
        Here->Waits = false;
        const QString name = QString::fromWCharArray(Here->Found.cFileName);
        if (name == u"." || name == u"..") continue;
        const bool folder = (Here->Found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        return Entry{name, folder ? EntryKind::Folder : EntryKind::File};
    }
    return std::nullopt;
}
