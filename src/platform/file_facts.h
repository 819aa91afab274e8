#pragma once

#include <QDateTime>
#include <QString>
#include <cstdint>

/// What the system knows of files, whatever the length of their paths. What cannot be done throws RuntimeError "File
/// not found", "Permission denied" or the system's own sentence. Any thread.

struct FileFacts {
    std::uint64_t Bytes = 0;
    QDateTime Changed;  ///< in whole seconds
};

/// Of a file, or of the file that a link points to.
FileFacts FactsOf(const QString& file);

/// Removes a file; of a link, the link itself. A folder is no file and stays.
void EraseFile(const QString& file);

/// Whether there is such a folder, or a link to one.
bool IsFolder(const QString& path);

enum class EntryKind { None, File, Folder, Special };

/// What there is under a path. Links count as what they point to. None where that cannot be told.
EntryKind KindOf(const QString& path);
