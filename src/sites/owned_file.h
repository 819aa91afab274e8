#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/// Files that hold secrets: where the system has such rights only their owner may read them. Names are byte-true.
/// Throw RuntimeError when the system refuses. Any thread.

/// Opens a regular file for reading; creates it empty when it is missing, and takes everybody else's rights away.
void OpenOwnedFile(QFile& file, const QString& name);

/// Writes a file beside the named one, brings it to the disk and puts it in its place in one step: whatever happens,
/// the old file is there whole, or the new one. A file that may not be written is not replaced.
void ReplaceOwnedFile(const QString& name, const QByteArray& bytes);

/// Removes what programs that were killed in ReplaceOwnedFile have left beside the file a minute ago or earlier: a
/// younger one may belong to a running program.
void RemoveLeftOvers(const QString& name);
