#pragma once

#include "local/file_pattern.h"
#include "platform/folder_scan.h"

#include <QString>
#include <QStringList>
#include <chrono>
#include <deque>
#include <vector>

/// Reads one folder of the disk in slices, so that the caller may rest in between however large it is. Any thread.
///
/// Names are sorted without regard to case, those that begin with a dot after all others. Links count as what they
/// point to; one that points nowhere counts as a file. Pipes, sockets and devices are left out.
class FolderReader {
public:
    /// Opens the folder; file names must match the pattern, folder names need not.
    /// Throws RuntimeError "Path not found", "Permission denied" or the system's own sentence.
    FolderReader(const QString& folder, FilePattern pattern);

    /// Goes on for about this long, one entry at least; false when the folder is read and sorted. Throws as the
    /// constructor does.
    bool ReadOn(std::chrono::milliseconds slice);

    // Valid once ReadOn has returned false.
    QStringList Files() const;
    QStringList Folders() const;

private:
    struct Entry {
        QString Key;  ///< what decides the order
        QString Name;
    };

    using Run = std::vector<Entry>;

    static bool Before(const Entry& left, const Entry& right);
    static void SortInto(std::deque<Run>& runs, Run run);
    static bool MergeTwo(std::deque<Run>& runs);
    static QStringList Names(const std::deque<Run>& runs);
    void ReadSlice(std::chrono::milliseconds slice);

    FilePattern Pattern;
    FolderScan Scan;
    bool IsRead = false;
    std::deque<Run> FileRuns;  ///< each sorted in itself; merged two by two once everything is read
    std::deque<Run> FolderRuns;
};
