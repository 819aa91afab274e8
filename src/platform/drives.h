#pragma once

#include <QString>
#include <QStringList>

/// The places where the disks of this computer begin: drive letters on Windows; elsewhere the root, the user's home
/// folder and the mount points of file systems that hold files of the user's, removable and network ones included.
/// Absolute paths in that order, each once. Any thread.
QStringList Drives();

/// The one of `drives` that holds the folder: the longest that the path begins with; empty when none does.
QString DriveOf(const QString& folder, const QStringList& drives);
