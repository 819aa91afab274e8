#include "platform/rename.h"

#include "base/byte_text.h"
#include "platform/windows/file_errors.h"

void RenameFile(const QString& from, const QString& to)
{
    if (MoveFileExW(FilePath(from).c_str(), FilePath(to).c_str(), 0) == 0) ThrowFileError(GetLastError());
}
