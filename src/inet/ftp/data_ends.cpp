#include "inet/ftp/data_ends.h"

#include "base/local_name.h"
#include "inet/ftp/failure.h"
#include "platform/error_text.h"

#include <system_error>

namespace Ftp {

namespace {

/// Runs one step on a local file; what the system reports becomes a Failure.
template <typename Step>
void OnFile(const std::filesystem::path& path, Step step)
{
    try {
        step();
    } catch (const std::system_error& error) {
        throw LocalFailure(path, error.code().value());
    }
}

}  // namespace

void MemorySink::Write(const char* bytes, std::size_t size)
{
    if (size > Limit - Bytes.size())
        throw Failure{Failure::Protocol, ResponseError, "The server sends more than there is room for."};
    Bytes.append(bytes, size);
}

void FileSink::Open()
{
    OnFile(Target, [this] { Part = std::make_unique<PartFile>(Target); });
}

void FileSink::Write(const char* bytes, std::size_t size)
{
    OnFile(Target, [&] { Part->Write(bytes, size); });
}

void FileSink::Keep()
{
    OnFile(Target, [this] { Part->TakePlace(); });
}

Failure LocalFailure(const std::filesystem::path& path, int error)
{
    return {Failure::LocalFile, InternalError,
            "The local file " + PathBytes(path.filename()) + " failed: " + SystemErrorText(error) + "."};
}

}  // namespace Ftp
