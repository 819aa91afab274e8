#pragma once

#include <windows.h>

/// Throws what a call of the system's has failed with, as the services for files tell it: RuntimeError "File not
/// found", "File already exists", "Permission denied" or the system's own sentence.
[[noreturn]] void ThrowFileError(DWORD error);

/// The same where a folder was meant: "Path not found" instead of "File not found".
[[noreturn]] void ThrowFolderError(DWORD error);
