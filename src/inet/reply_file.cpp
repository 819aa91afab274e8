#include "inet/reply_file.h"

#include "platform/local_file.h"

#include <system_error>

ReplyFile::~ReplyFile()
{
    File.reset();
    std::error_code ignored;
    if (std::filesystem::is_regular_file(Path, ignored)) std::filesystem::remove(Path, ignored);
}

std::int64_t ReplyFile::Size() const
{
    std::error_code error;
    const auto size = std::filesystem::file_size(Path, error);
    return error ? 0 : static_cast<std::int64_t>(size);
}

QByteArray ReplyFile::Next(int size)
{
    try {
        if (!File) File = std::make_unique<SourceFile>(Path);
        QByteArray bytes(size, Qt::Uninitialized);
        bytes.resize(static_cast<qsizetype>(File->Read(bytes.data(), static_cast<std::size_t>(size))));
        return bytes;
    } catch (const std::system_error&) {
        return {};
    }
}
