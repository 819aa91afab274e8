#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// Moves bytes between a socket and a file, without a detour through the program where the system can.
///
/// Both directions want a non-blocking socket and own neither of the two descriptors. A call moves a few MiB at most,
/// so that one transfer cannot keep a thread for itself. One thread at a time, which has called BlockPumpSignals().
enum class PumpEnd {
    Moved,        ///< There is more; call again.
    WouldBlock,   ///< The socket is not ready.
    End,          ///< The other side has closed, or the file is at its end.
    SourceError,  ///< Reading failed.
    TargetError   ///< Writing failed; what had been read for it is lost.
};

struct PumpResult {
    PumpEnd End = PumpEnd::Moved;
    /// What reached the target in this call, whatever its end.
    std::size_t Bytes = 0;
    /// The system's number (errno; GetLastError or WSAGetLastError on Windows) of a SourceError or TargetError, else 0.
    int Error = 0;
};

/// Makes a closed connection and a file that has grown too large errors instead of signals (SIGPIPE, SIGXFSZ) for the
/// calling thread: the system's own ways of moving bytes cannot be told so call by call. On Windows they are errors
/// anyway.
void BlockPumpSignals();

/// What comes from a socket goes to a file, at the file's own position. Holds a MiB at most, whatever comes.
class SocketToFile {
public:
    SocketToFile(int socket, int file);
    ~SocketToFile();
    SocketToFile(const SocketToFile&) = delete;
    SocketToFile& operator=(const SocketToFile&) = delete;

    /// What it has taken from the socket is in the file when it returns, save for a TargetError.
    [[nodiscard]] PumpResult Move();

private:
#ifndef _WIN32
    PumpResult MoveFirst();
    PumpResult MoveOn();
    bool OpenPipe();
    void ClosePipe();
    PumpResult MoveByPipe();
    PumpResult MoveByBuffer();
    int EmptyPipe(std::size_t bytes, std::size_t& written);
    int EmptyPipeByBuffer(std::size_t bytes, std::size_t& written);

    int PipeBegin = -1;
    int PipeEnd = -1;
    bool IsLong = false;  ///< so much has come at once that the system's own way is worth its beginning
    bool SystemRefuses = false;
#endif

    int Socket;
    int File;
    std::vector<char> Buffer;
};

/// What a file holds goes to a socket, from an offset in bytes on; the file's own position is neither used nor moved.
class FileToSocket {
public:
    FileToSocket(int file, int socket, std::int64_t offset = 0);

    [[nodiscard]] PumpResult Move();

private:
#ifndef _WIN32
    PumpResult MoveBySystem();
    PumpResult MoveByBuffer();

    bool SystemRefuses = false;
#endif

    int File;
    int Socket;
    std::int64_t Offset;
    std::vector<char> Buffer;
};
