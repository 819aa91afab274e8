#include "platform/pump.h"

#include <algorithm>
#include <io.h>
#include <winsock2.h>

namespace {

constexpr std::size_t MaxBytesPerMove = std::size_t{4} * 1024 * 1024;
constexpr std::size_t ReceiveBufferBytes = std::size_t{1024} * 1024;
constexpr std::size_t SendBufferBytes = std::size_t{256} * 1024;

HANDLE HandleOf(int file)
{
    return reinterpret_cast<HANDLE>(_get_osfhandle(file));
}

/// How a failed call on a socket ends a move.
PumpResult SocketFailure(PumpEnd end, std::size_t moved)
{
    const int error = WSAGetLastError();
    if (error == WSAEWOULDBLOCK) return {PumpEnd::WouldBlock, moved, 0};
    return {end, moved, error};
}

/// Writes all of it; the error number, or 0. What was written counts even then.
int WriteAll(HANDLE file, const char* data, std::size_t bytes, std::size_t& written)
{
    while (bytes > 0) {
        DWORD count = 0;
        if (WriteFile(file, data, static_cast<DWORD>(bytes), &count, nullptr) == 0)
            return static_cast<int>(GetLastError());
        data += count;
        bytes -= count;
        written += count;
    }
    return 0;
}

/// Reads from an offset on, without regard to the file's own position. That one moves all the same, so it is put back.
bool ReadAt(HANDLE file, std::int64_t offset, std::vector<char>& buffer, DWORD& count)
{
    LARGE_INTEGER position = {};
    if (SetFilePointerEx(file, {}, &position, FILE_CURRENT) == 0) return false;
    OVERLAPPED from = {};
    from.Offset = static_cast<DWORD>(offset);
    from.OffsetHigh = static_cast<DWORD>(offset >> 32);
    const bool done = ReadFile(file, buffer.data(), static_cast<DWORD>(buffer.size()), &count, &from) != 0;
    const DWORD error = GetLastError();
    SetFilePointerEx(file, position, nullptr, FILE_BEGIN);
    if (done || error == ERROR_HANDLE_EOF) return true;
    SetLastError(error);
    return false;
}

}  // namespace

// The system has no such signals.
void BlockPumpSignals() {}

SocketToFile::SocketToFile(int socket, int file) : Socket(socket), File(file) {}

SocketToFile::~SocketToFile() = default;

PumpResult SocketToFile::Move()
{
    Buffer.resize(ReceiveBufferBytes);
    std::size_t moved = 0;
    while (moved < MaxBytesPerMove) {
        const int count = recv(static_cast<SOCKET>(Socket), Buffer.data(), static_cast<int>(Buffer.size()), 0);
        if (count < 0) return SocketFailure(PumpEnd::SourceError, moved);
        if (count == 0) return {PumpEnd::End, moved, 0};
        const int error = WriteAll(HandleOf(File), Buffer.data(), static_cast<std::size_t>(count), moved);
        if (error != 0) return {PumpEnd::TargetError, moved, error};
    }
    return {PumpEnd::Moved, moved, 0};
}

FileToSocket::FileToSocket(int file, int socket, std::int64_t offset) : File(file), Socket(socket), Offset(offset) {}

PumpResult FileToSocket::Move()
{
    Buffer.resize(SendBufferBytes);
    std::size_t moved = 0;
    while (moved < MaxBytesPerMove) {
        DWORD count = 0;
        if (!ReadAt(HandleOf(File), Offset, Buffer, count))
            return {PumpEnd::SourceError, moved, static_cast<int>(GetLastError())};
        if (count == 0) return {PumpEnd::End, moved, 0};
        const int sent = send(static_cast<SOCKET>(Socket), Buffer.data(), static_cast<int>(count), 0);
        if (sent < 0) return SocketFailure(PumpEnd::TargetError, moved);
        Offset += sent;
        moved += static_cast<std::size_t>(sent);
    }
    return {PumpEnd::Moved, moved, 0};
}
