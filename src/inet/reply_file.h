#pragma once

#include <QByteArray>
#include <cstdint>
#include <filesystem>
#include <memory>

class SourceFile;

/// A reply that lies in a file: handed out piece by piece, and removed with this object. One thread at a time.
class ReplyFile {
public:
    /// The file need not be there yet.
    explicit ReplyFile(std::filesystem::path path) : Path(std::move(path)) {}

    ~ReplyFile();
    ReplyFile(const ReplyFile&) = delete;
    ReplyFile& operator=(const ReplyFile&) = delete;

    /// In bytes; 0 when it is not there.
    std::int64_t Size() const;

    /// The next bytes, up to `size`; none at the end, or when the file cannot be read.
    QByteArray Next(int size);

private:
    std::filesystem::path Path;
    std::unique_ptr<SourceFile> File;  ///< once something has been asked for
};
