#include "local/folder_lines.h"

#include "base/byte_text.h"

#include <filesystem>

std::vector<FolderLine> FolderLines(const QString& folder, const QStringList& subFolders)
{
    const std::filesystem::path path = FilePath(folder);
    std::filesystem::path way = path.root_path();
    std::vector<FolderLine> lines{{PathText(way), PathText(way), 0, true}};
    for (const std::filesystem::path& part : path.relative_path()) {
        if (part.empty()) continue;
        way /= part;
        lines.push_back({PathText(part), PathText(way), lines.back().Depth + 1, true});
    }
    const int depth = lines.back().Depth + 1;
    for (const QString& name : subFolders) lines.push_back({name, PathText(way / FilePath(name)), depth, false});
    return lines;
}
