#pragma once

#include <QString>

/// Gives a file another name, without ever replacing another file. Throws RuntimeError "File already exists", "File
/// not found", "Permission denied" or the system's own sentence, and leaves everything as it was then. Any thread.
void RenameFile(const QString& from, const QString& to);
