#pragma once

#include <QString>
#include <QStringList>
#include <vector>

/// One line of the folder list.
struct FolderLine {
    QString Name;
    QString Path;       ///< absolute
    int Depth = 0;      ///< steps below the root: how far the line is indented
    bool Open = false;  ///< the current folder or one above it
};

/// The folder list of an absolute folder: the root, every folder on the way down, the folder itself, and its
/// sub-folders one step deeper. Any thread.
std::vector<FolderLine> FolderLines(const QString& folder, const QStringList& subFolders);
