#include "platform/local_file.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace {

[[noreturn]] void ThrowLastError()
{
    throw std::system_error(errno, std::generic_category());
}

/// A name that no other part file of any running program has, short enough for every file system.
std::string PartName()
{
    static std::atomic<unsigned> number = 0;
    return ".tolvane-" + std::to_string(getpid()) + '-' + std::to_string(++number) + ".part";
}

}  // namespace

// A pipe that has taken the file's place would else be waited for.
SourceFile::SourceFile(const std::filesystem::path& path) : File(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
{
    if (File < 0) ThrowLastError();

    struct stat facts {};

    if (fstat(File, &facts) == 0 && S_ISREG(facts.st_mode)) {
        Bytes = static_cast<std::uint64_t>(facts.st_size);
        return;
    }
    close(File);
    errno = S_ISDIR(facts.st_mode) ? EISDIR : EINVAL;
    ThrowLastError();
}

SourceFile::~SourceFile()
{
    close(File);
}

std::size_t SourceFile::Read(char* buffer, std::size_t size)
{
    for (;;) {
        const ssize_t count = read(File, buffer, size);
        if (count >= 0) return static_cast<std::size_t>(count);
        if (errno != EINTR) ThrowLastError();
    }
}

PartFile::PartFile(std::filesystem::path target) : Target(std::move(target))
{
    struct stat facts {};

    const bool exists = stat(Target.c_str(), &facts) == 0;
    if (exists && !S_ISREG(facts.st_mode)) {
        errno = S_ISDIR(facts.st_mode) ? EISDIR : EEXIST;
        ThrowLastError();
    }
    do {
        Part = Target.parent_path() / PartName();
        File = open(Part.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    } while (File < 0 && errno == EEXIST);
    if (File < 0) ThrowLastError();
    if (exists) (void)fchmod(File, facts.st_mode & 07777);
}

PartFile::~PartFile()
{
    if (File < 0) return;
    close(File);
    unlink(Part.c_str());
}

void PartFile::Write(const char* bytes, std::size_t size)
{
    while (size > 0) {
        const ssize_t count = write(File, bytes, size);
        if (count < 0) {
            if (errno == EINTR) continue;
            ThrowLastError();
        }
        bytes += count;
        size -= static_cast<std::size_t>(count);
    }
}

// Closing may be what reports that the disk is full, and a failure here must still remove the file.
void PartFile::TakePlace()
{
    const int file = std::exchange(File, -1);
    if (close(file) != 0 || rename(Part.c_str(), Target.c_str()) != 0) {
        const int error = errno;
        unlink(Part.c_str());
        errno = error;
        ThrowLastError();
    }
}
