#include "inet/reply_file.h"

#include "base/byte_text.h"
#include "base/run_time_error.h"
#include "platform/file_facts.h"
#include "platform/local_file.h"

#include <system_error>

ReplyFile::~ReplyFile()
{
    File.reset();
    try {
        if (KindOf(PathText(Path)) == EntryKind::File) EraseFile(PathText(Path));
    } catch (const RuntimeError&) {
        // It stays where it is.
    }
}

std::int64_t ReplyFile::Size() const
{
    try {
        return static_cast<std::int64_t>(FactsOf(PathText(Path)).Bytes);
    } catch (const RuntimeError&) {
        return 0;
    }
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
