#include "local/folder_reader.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace {

/// Names with a dot in front go last; otherwise case does not count.
QString SortKey(const QString& name)
{
    return (name.startsWith(u'.') ? QChar(u'1') : QChar(u'0')) + name.toCaseFolded();
}

}  // namespace

FolderReader::FolderReader(const QString& folder, FilePattern pattern) : Pattern(std::move(pattern)), Scan(folder) {}

bool FolderReader::ReadOn(std::chrono::milliseconds slice)
{
    if (!IsRead) {
        ReadSlice(slice);
        return true;
    }
    return MergeTwo(FileRuns) || MergeTwo(FolderRuns);
}

void FolderReader::ReadSlice(std::chrono::milliseconds slice)
{
    const auto end = std::chrono::steady_clock::now() + slice;
    Run files;
    Run folders;
    do {
        const std::optional<FolderScan::Entry> entry = Scan.Next();
        IsRead = !entry;
        if (IsRead) break;
        if (entry->Kind == EntryKind::Folder)
            folders.push_back({SortKey(entry->Name), entry->Name});
        else if (entry->Kind == EntryKind::File && Pattern.Matches(entry->Name))
            files.push_back({SortKey(entry->Name), entry->Name});
    } while (std::chrono::steady_clock::now() < end);
    SortInto(FileRuns, std::move(files));
    SortInto(FolderRuns, std::move(folders));
}

bool FolderReader::Before(const Entry& left, const Entry& right)
{
    const int order = QString::compare(left.Key, right.Key);
    return order != 0 ? order < 0 : left.Name < right.Name;
}

void FolderReader::SortInto(std::deque<Run>& runs, Run run)
{
    if (run.empty()) return;
    std::sort(run.begin(), run.end(), &Before);
    runs.push_back(std::move(run));
}

bool FolderReader::MergeTwo(std::deque<Run>& runs)
{
    if (runs.size() < 2) return false;
    Run merged;
    merged.reserve(runs[0].size() + runs[1].size());
    std::merge(std::make_move_iterator(runs[0].begin()), std::make_move_iterator(runs[0].end()),
               std::make_move_iterator(runs[1].begin()), std::make_move_iterator(runs[1].end()),
               std::back_inserter(merged), &Before);
    runs.pop_front();
    runs.pop_front();
    runs.push_back(std::move(merged));
    return true;
}

QStringList FolderReader::Names(const std::deque<Run>& runs)
{
    QStringList names;
    for (const Run& run : runs)
        for (const Entry& entry : run) names += entry.Name;
    return names;
}

QStringList FolderReader::Files() const
{
    return Names(FileRuns);
}

QStringList FolderReader::Folders() const
{
    return Names(FolderRuns);
}
