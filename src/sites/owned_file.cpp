#include "sites/owned_file.h"

#include "base/byte_text.h"
#include "base/run_time_error.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#ifdef Q_OS_WIN
#include <QSaveFile>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

using Path = std::filesystem::path;

constexpr std::chrono::minutes LeftOverAge{1};
constexpr std::size_t RandomLetters = 6;  ///< behind a dot at the end of the name of the file beside

bool IsLeftOver(const Path& candidate, const Path& file)
{
    const Path::string_type beside = file.filename().native();
    const Path::string_type name = candidate.filename().native();
    return name.size() == beside.size() + 1 + RandomLetters && name.starts_with(beside) && name[beside.size()] == '.';
}

#ifndef Q_OS_WIN
constexpr mode_t OwnerOnly = S_IRUSR | S_IWUSR;

/// A new file beside another one, gone again unless it is put in that one's place.
class FileBeside {
public:
    explicit FileBeside(const Path& file) : Target(file), Name(file.native() + "." + std::string(RandomLetters, 'X'))
    {
        Handle = mkostemp(Name.data(), O_CLOEXEC);
        if (Handle < 0) throw RuntimeError("Permission denied");
    }

    ~FileBeside()
    {
        if (Handle >= 0) close(Handle);
        if (!InPlace) unlink(Name.c_str());
    }

    FileBeside(const FileBeside&) = delete;
    FileBeside& operator=(const FileBeside&) = delete;

    void Write(const QByteArray& bytes) const
    {
        for (qsizetype at = 0; at < bytes.size();) {
            const ssize_t written = write(Handle, bytes.constData() + at, static_cast<std::size_t>(bytes.size() - at));
            if (written < 0 && errno != EINTR) throw RuntimeError("Disk full");
            if (written > 0) at += written;
        }
    }

    void PutInPlace()
    {
        const int handle = std::exchange(Handle, -1);
        const bool onDisk = fsync(handle) == 0;
        if (const bool closed = close(handle) == 0; !onDisk || !closed) throw RuntimeError("Disk full");
        if (rename(Name.c_str(), Target.c_str()) != 0) throw RuntimeError("Permission denied");
        InPlace = true;
        BringFolderToDisk();
    }

private:
    // A file system that cannot do this for a folder keeps the order of its steps by other means.
    void BringFolderToDisk() const
    {
        const int folder = open(Target.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (folder < 0) return;
        fsync(folder);
        close(folder);
    }

    Path Target;
    std::string Name;
    int Handle = -1;
    bool InPlace = false;
};
#endif

}  // namespace

#ifdef Q_OS_WIN

void OpenOwnedFile(QFile& file, const QString& name)
{
    file.setFileName(name);
    if (!file.open(QIODevice::ReadWrite) && !file.open(QIODevice::ReadOnly))
        throw RuntimeError("Path/File access error");
}

void ReplaceOwnedFile(const QString& name, const QByteArray& bytes)
{
    QSaveFile file(name);
    if (!file.open(QIODevice::WriteOnly)) throw RuntimeError("Permission denied");
    file.write(bytes);
    if (!file.commit()) throw RuntimeError("Disk full");
}

#else

// A pipe or a device in the file's place must not be waited for.
void OpenOwnedFile(QFile& file, const QString& name)
{
    const Path path = FilePath(name);
    constexpr int Flags = O_CLOEXEC | O_NONBLOCK;
    int handle = open(path.c_str(), O_RDWR | O_CREAT | Flags, OwnerOnly);
    if (handle < 0) handle = open(path.c_str(), O_RDONLY | Flags);
    struct stat found = {};
    const bool regular = handle >= 0 && fstat(handle, &found) == 0 && S_ISREG(found.st_mode);
    if (regular && (found.st_mode & (S_IRWXG | S_IRWXO)) != 0) fchmod(handle, OwnerOnly);
    if (regular && file.open(handle, QIODevice::ReadOnly, QFile::AutoCloseHandle)) return;
    if (handle >= 0) close(handle);
    throw RuntimeError("Path/File access error");
}

void ReplaceOwnedFile(const QString& name, const QByteArray& bytes)
{
    std::error_code failure;
    Path path = std::filesystem::canonical(FilePath(name), failure);  // a link stays a link
    if (failure) path = std::filesystem::absolute(FilePath(name), failure);
    if (access(path.c_str(), F_OK) == 0 && access(path.c_str(), W_OK) != 0) throw RuntimeError("Permission denied");
    FileBeside beside(path);
    beside.Write(bytes);
    beside.PutInPlace();
}

#endif

void RemoveLeftOvers(const QString& name)
{
    std::error_code failure;
    const Path file = FilePath(name);
    const auto old = std::filesystem::file_time_type::clock::now() - LeftOverAge;
    std::filesystem::directory_iterator entry(file.parent_path(), failure);
    for (; !failure && entry != std::filesystem::directory_iterator(); entry.increment(failure)) {
        std::error_code refused;
        const bool leftOver = IsLeftOver(entry->path(), file) && entry->is_regular_file(refused);
        if (leftOver && entry->last_write_time(refused) < old && !refused)
            std::filesystem::remove(entry->path(), refused);
    }
}
