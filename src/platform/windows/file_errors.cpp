#include "platform/windows/file_errors.h"

#include "base/run_time_error.h"
#include "platform/error_text.h"

namespace {

[[noreturn]] void Throw(DWORD error, const char* whenMissing)
{
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_DIRECTORY:
        throw RuntimeError(whenMissing);
    case ERROR_ALREADY_EXISTS:
    case ERROR_FILE_EXISTS:
        throw RuntimeError("File already exists");
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
        throw RuntimeError("Permission denied");
    default:
        throw RuntimeError(QString::fromStdString(SystemErrorText(static_cast<int>(error))));
    }
}

}  // namespace

void ThrowFileError(DWORD error)
{
    Throw(error, "File not found");
}

void ThrowFolderError(DWORD error)
{
    Throw(error, "Path not found");
}
