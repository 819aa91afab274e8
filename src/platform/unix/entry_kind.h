#pragma once

#include "platform/file_facts.h"

#include <filesystem>

inline EntryKind EntryKindOf(std::filesystem::file_type type)
{
    using std::filesystem::file_type;
    switch (type) {
    case file_type::none:
    case file_type::not_found:
        return EntryKind::None;
    case file_type::directory:
        return EntryKind::Folder;
    case file_type::fifo:
    case file_type::socket:
    case file_type::block:
    case file_type::character:
        return EntryKind::Special;
    default:
        return EntryKind::File;
    }
}
