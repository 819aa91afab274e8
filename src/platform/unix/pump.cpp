#include "platform/pump.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/sendfile.h>
#endif

namespace {

constexpr std::size_t MaxBytesPerMove = std::size_t{4} * 1024 * 1024;
constexpr std::size_t PipeBytes = std::size_t{1024} * 1024;
constexpr std::size_t FirstBytes = std::size_t{32} * 1024;
constexpr std::size_t ReceiveBufferBytes = std::size_t{1024} * 1024;
constexpr std::size_t SendBufferBytes = std::size_t{64} * 1024;

#ifdef __linux__
constexpr bool SystemMoves = true;
#else
constexpr bool SystemMoves = false;
#endif

bool IsWouldBlock(int error)
{
    return error == EAGAIN || error == EWOULDBLOCK;
}

/// The system cannot move bytes between these two kinds of descriptors.
bool IsRefusal(int error)
{
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP;
}

bool IsFileError(int error)
{
    return error == EIO || error == EISDIR || error == EACCES || error == ESTALE || error == ENXIO || error == EBADF;
}

PumpResult ReadFailure(std::size_t bytes, int error)
{
    if (IsWouldBlock(error)) return {PumpEnd::WouldBlock, bytes, 0};
    return {PumpEnd::SourceError, bytes, error};
}

PumpResult SendFailure(std::size_t bytes, int error)
{
    if (IsWouldBlock(error)) return {PumpEnd::WouldBlock, bytes, 0};
    return {PumpEnd::TargetError, bytes, error};
}

/// Where both ends are on one machine a page that is handed over as it is must be fetched from memory by the other
/// end, while one that was copied is still in the processor's cache: copying takes two thirds of the time.
bool LeadsToThisMachine(int socket)
{
    sockaddr_storage peer{};
    socklen_t size = sizeof peer;
    if (::getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &size) != 0) return false;
    if (peer.ss_family == AF_INET)
        return ntohl(reinterpret_cast<const sockaddr_in&>(peer).sin_addr.s_addr) >> 24 == IN_LOOPBACKNET;
    return peer.ss_family == AF_INET6 && IN6_IS_ADDR_LOOPBACK(&reinterpret_cast<const sockaddr_in6&>(peer).sin6_addr);
}

/// Calls until it is not a signal that ended the call.
template <typename Call>
ssize_t Persist(Call call)
{
    ssize_t count = -1;
    do {
        count = call();
    } while (count < 0 && errno == EINTR);
    return count;
}

/// Writes all of it; the error number, or 0. What was written counts even then.
int WriteAll(int file, const char* data, std::size_t bytes, std::size_t& written)
{
    while (bytes > 0) {
        const ssize_t count = Persist([&] { return ::write(file, data, bytes); });
        if (count < 0) return errno;
        data += count;
        bytes -= static_cast<std::size_t>(count);
        written += static_cast<std::size_t>(count);
    }
    return 0;
}

}  // namespace

void BlockPumpSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    sigaddset(&signals, SIGXFSZ);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

SocketToFile::SocketToFile(int socket, int file) : SystemRefuses(!SystemMoves), Socket(socket), File(file) {}

SocketToFile::~SocketToFile()
{
    ClosePipe();
}

PumpResult SocketToFile::Move()
{
    std::size_t first = 0;
    if (!SystemRefuses && !IsLong) {
        const PumpResult moved = MoveFirst();
        if (moved.End != PumpEnd::Moved || !IsLong) return moved;
        first = moved.Bytes;
    }
    PumpResult moved = MoveOn();
    moved.Bytes += first;
    return moved;
}

PumpResult SocketToFile::MoveOn()
{
    if (SystemRefuses || !OpenPipe()) return MoveByBuffer();
    return MoveByPipe();
}

// What fits into a page or two of the program is moved more quickly than a pipe is made.
PumpResult SocketToFile::MoveFirst()
{
    Buffer.resize(FirstBytes);
    std::size_t moved = 0;
    while (!IsLong) {
        const ssize_t count = Persist([&] { return ::read(Socket, Buffer.data(), Buffer.size()); });
        if (count < 0) return ReadFailure(moved, errno);
        if (count == 0) return {PumpEnd::End, moved, 0};
        const auto bytes = static_cast<std::size_t>(count);
        IsLong = bytes == Buffer.size();
        const int error = WriteAll(File, Buffer.data(), bytes, moved);
        if (error != 0) return {PumpEnd::TargetError, moved, error};
        if (moved >= MaxBytesPerMove) break;
    }
    return {PumpEnd::Moved, moved, 0};
}

void SocketToFile::ClosePipe()
{
    if (PipeBegin >= 0) ::close(PipeBegin);
    if (PipeEnd >= 0) ::close(PipeEnd);
    PipeBegin = PipeEnd = -1;
}

PumpResult SocketToFile::MoveByBuffer()
{
    Buffer.resize(ReceiveBufferBytes);
    std::size_t moved = 0;
    while (moved < MaxBytesPerMove) {
        const ssize_t count = Persist([&] { return ::read(Socket, Buffer.data(), Buffer.size()); });
        if (count < 0) return ReadFailure(moved, errno);
        if (count == 0) return {PumpEnd::End, moved, 0};
        const int error = WriteAll(File, Buffer.data(), static_cast<std::size_t>(count), moved);
        if (error != 0) return {PumpEnd::TargetError, moved, error};
    }
    return {PumpEnd::Moved, moved, 0};
}

FileToSocket::FileToSocket(int file, int socket, std::int64_t offset)
    : SystemRefuses(!SystemMoves || LeadsToThisMachine(socket)), File(file), Socket(socket), Offset(offset)
{
}

PumpResult FileToSocket::Move()
{
    return SystemRefuses ? MoveByBuffer() : MoveBySystem();
}

PumpResult FileToSocket::MoveByBuffer()
{
    Buffer.resize(SendBufferBytes);
    std::size_t moved = 0;
    while (moved < MaxBytesPerMove) {
        const ssize_t count = Persist([&] { return ::pread(File, Buffer.data(), Buffer.size(), Offset); });
        if (count < 0) return {PumpEnd::SourceError, moved, errno};
        if (count == 0) return {PumpEnd::End, moved, 0};
        const ssize_t sent =
            Persist([&] { return ::send(Socket, Buffer.data(), static_cast<std::size_t>(count), MSG_NOSIGNAL); });
        if (sent < 0) return SendFailure(moved, errno);
        Offset += sent;
        moved += static_cast<std::size_t>(sent);
    }
    return {PumpEnd::Moved, moved, 0};
}

#ifdef __linux__

bool SocketToFile::OpenPipe()
{
    if (PipeBegin >= 0) return true;
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) return false;
    PipeEnd = ends[0];
    PipeBegin = ends[1];
    // A refusal leaves the system's own size, which only takes more calls.
    static_cast<void>(::fcntl(PipeBegin, F_SETPIPE_SZ, static_cast<int>(PipeBytes)));
    return true;
}

PumpResult SocketToFile::MoveByPipe()
{
    std::size_t moved = 0;
    while (moved < MaxBytesPerMove) {
        const ssize_t count = Persist([&] {
            return ::splice(Socket, nullptr, PipeBegin, nullptr, PipeBytes, SPLICE_F_MOVE | SPLICE_F_NONBLOCK);
        });
        if (count < 0 && IsRefusal(errno)) SystemRefuses = true;
        if (SystemRefuses) return {PumpEnd::Moved, moved, 0};
        if (count < 0) return ReadFailure(moved, errno);
        if (count == 0) return {PumpEnd::End, moved, 0};
        const int error = EmptyPipe(static_cast<std::size_t>(count), moved);
        if (error != 0) {
            ClosePipe();
            return {PumpEnd::TargetError, moved, error};
        }
        if (SystemRefuses) return {PumpEnd::Moved, moved, 0};
    }
    return {PumpEnd::Moved, moved, 0};
}

/// The error number, or 0 when all of it is in the file.
int SocketToFile::EmptyPipe(std::size_t bytes, std::size_t& written)
{
    while (bytes > 0) {
        const ssize_t count = Persist([&] { return ::splice(PipeEnd, nullptr, File, nullptr, bytes, SPLICE_F_MOVE); });
        if (count < 0 && !IsRefusal(errno)) return errno;
        if (count <= 0) {
            SystemRefuses = true;
            return EmptyPipeByBuffer(bytes, written);
        }
        bytes -= static_cast<std::size_t>(count);
        written += static_cast<std::size_t>(count);
    }
    return 0;
}

int SocketToFile::EmptyPipeByBuffer(std::size_t bytes, std::size_t& written)
{
    Buffer.resize(ReceiveBufferBytes);
    while (bytes > 0) {
        const ssize_t count = Persist([&] { return ::read(PipeEnd, Buffer.data(), std::min(bytes, Buffer.size())); });
        if (count <= 0) return count < 0 ? errno : EIO;
        const int error = WriteAll(File, Buffer.data(), static_cast<std::size_t>(count), written);
        if (error != 0) return error;
        bytes -= static_cast<std::size_t>(count);
    }
    return 0;
}

PumpResult FileToSocket::MoveBySystem()
{
    std::size_t moved = 0;
    while (moved < MaxBytesPerMove) {
        off_t offset = Offset;
        const ssize_t count = Persist([&] { return ::sendfile(Socket, File, &offset, MaxBytesPerMove - moved); });
        if (count < 0 && IsRefusal(errno)) {
            SystemRefuses = true;
            return {PumpEnd::Moved, moved, 0};
        }
        if (count < 0 && IsFileError(errno)) return {PumpEnd::SourceError, moved, errno};
        if (count < 0) return SendFailure(moved, errno);
        if (count == 0) return {PumpEnd::End, moved, 0};
        Offset = offset;
        moved += static_cast<std::size_t>(count);
    }
    return {PumpEnd::Moved, moved, 0};
}

#else

bool SocketToFile::OpenPipe()
{
    return false;
}

PumpResult SocketToFile::MoveByPipe()
{
    return MoveByBuffer();
}

PumpResult FileToSocket::MoveBySystem()
{
    return MoveByBuffer();
}

#endif
