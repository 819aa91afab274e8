#include "local/folder_reader.h"

#include "base/byte_text.h"
#include "base/run_time_error.h"
#include "platform/file_facts.h"

#include <algorithm>
#include <iterator>
#include <system_error>
#include <utility>

namespace {

namespace fs = std::filesystem;

void ThrowWhenFailed(const std::error_code& error)
{
    if (!error) return;
    if (error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory)
        throw RuntimeError("Path not found");
    if (error == std::errc::permission_denied) throw RuntimeError("Permission denied");
    throw RuntimeError(QString::fromStdString(error.message()));
}

/// Names with a dot in front go last; otherwise case does not count.
QString SortKey(const QString& name)
{
    return (name.startsWith(u'.') ? QChar(u'1') : QChar(u'0')) + name.toCaseFolded();
}

}  // namespace

FolderReader::FolderReader(const QString& folder, FilePattern pattern) : Pattern(std::move(pattern))
{
    std::error_code error;
    Next = fs::directory_iterator(FilePath(folder), error);
    ThrowWhenFailed(error);
}

bool FolderReader::ReadOn(std::chrono::milliseconds slice)
{
    if (Next != fs::directory_iterator()) {
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
        const EntryKind kind = KindOf(*Next);
        const QString name = PathText(Next->path().filename());
        if (kind == EntryKind::Folder)
            folders.push_back({SortKey(name), name});
        else if (kind == EntryKind::File && Pattern.Matches(name))
            files.push_back({SortKey(name), name});
        std::error_code error;
        Next.increment(error);
        ThrowWhenFailed(error);
    } while (Next != fs::directory_iterator() && std::chrono::steady_clock::now() < end);
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
