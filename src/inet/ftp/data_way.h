#pragma once

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <string>
#include <vector>

namespace Ftp {

/// The ways to a data connection, in the order in which they are tried.
enum class DataWay {
    Extended,  ///< to a port that EPSV has told (RFC 2428, 3)
    Passive,   ///< to a port that PASV has told (RFC 959, 4.1.2)
    Active,    ///< from the server to a port of this computer, told by PORT or EPRT
};

/// Which way has led to each server's data last, so that the next session need not find out again: a text file with a
/// line "host port PASV" or "host port PORT" for each server where EPSV does not work, newest first. A file that is
/// missing or damaged knows nothing, and one that cannot be written stays as it is: it only saves time. Any thread.
class DataWayBook {
public:
    static constexpr std::size_t MostServers = 200;

    /// Without a file it remembers for itself alone.
    explicit DataWayBook(std::filesystem::path file = {}) : File(std::move(file)) {}

    DataWay Find(const std::string& host, std::uint16_t port);
    void Note(const std::string& host, std::uint16_t port, DataWay way);

private:
    struct Entry {
        std::string Server;  ///< "host port"
        DataWay Way = DataWay::Extended;
    };

    void Load();
    void Save() const;

    std::filesystem::path File;
    std::mutex Lock;
    bool Loaded = false;
    std::vector<Entry> Entries;
};

}  // namespace Ftp
