#include "platform/rename.h"

#include "base/byte_text.h"
#include "base/run_time_error.h"
#include "platform/error_text.h"

#include <windows.h>

void RenameFile(const QString& from, const QString& to)
{
    if (MoveFileExW(FilePath(from).c_str(), FilePath(to).c_str(), 0) != 0) return;
    switch (const DWORD error = GetLastError(); error) {
    case ERROR_ALREADY_EXISTS:
    case ERROR_FILE_EXISTS:
        throw RuntimeError("File already exists");
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
        throw RuntimeError("File not found");
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
        throw RuntimeError("Permission denied");
    default:
        throw RuntimeError(QString::fromStdString(SystemErrorText(static_cast<int>(error))));
    }
}
