#pragma once

#include "platform/file_facts.h"

#include <QString>
#include <memory>
#include <optional>

/// Goes through the entries of a folder once, in the system's order, asking as seldom as the system allows: it tells
/// many names at once, and with most of them what they are. One thread at a time.
class FolderScan {
public:
    struct Entry {
        QString Name;
        EntryKind Kind = EntryKind::File;  ///< never None: a link that points nowhere is a file
    };

    /// Opens the folder. Throws RuntimeError "Path not found", "Permission denied" or the system's own sentence.
    explicit FolderScan(const QString& folder);
    ~FolderScan();
    FolderScan(FolderScan&&) noexcept;
    FolderScan& operator=(FolderScan&&) noexcept;

    /// The next entry; nothing at the end and ever after. The folder itself and the one above are no entries. Throws as
    /// the constructor does.
    std::optional<Entry> Next();

private:
    struct Place;

    std::unique_ptr<Place> Here;
};
