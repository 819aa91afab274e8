#include "inet/ftp/data_way.h"

#include "platform/local_file.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <sstream>
#include <system_error>

namespace Ftp {

namespace {

constexpr std::size_t MaxBytes = std::size_t{64} * 1024;
constexpr std::size_t MaxHost = 255;  // RFC 1035, 2.3.4
constexpr const char* PassiveWord = "PASV";
constexpr const char* ActiveWord = "PORT";

bool IsHostByte(unsigned char byte)
{
    return byte > 0x20 && byte != 0x7F;
}

/// How a server is written in the file; empty when it cannot be.
std::string ServerOf(std::string host, std::uint16_t port)
{
    if (host.empty() || host.size() > MaxHost || !std::all_of(host.begin(), host.end(), IsHostByte)) return {};
    std::transform(host.begin(), host.end(), host.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return host + ' ' + std::to_string(port);
}

std::optional<std::uint16_t> PortIn(const std::string& word)
{
    const bool isNumber =
        !word.empty() && word.size() <= 5 && word.find_first_not_of("0123456789") == std::string::npos;
    const int port = isNumber ? std::stoi(word) : 0;
    return port > 0 && port <= 65535 ? std::optional(static_cast<std::uint16_t>(port)) : std::nullopt;
}

}  // namespace

DataWay DataWayBook::Find(const std::string& host, std::uint16_t port)
{
    const std::lock_guard guard(Lock);
    if (!Loaded) Load();
    const std::string server = ServerOf(host, port);
    const auto known =
        std::find_if(Entries.begin(), Entries.end(), [&](const Entry& one) { return one.Server == server; });
    return known == Entries.end() ? DataWay::Extended : known->Way;
}

void DataWayBook::Note(const std::string& host, std::uint16_t port, DataWay way)
{
    if (Find(host, port) == way) return;
    const std::string server = ServerOf(host, port);
    if (server.empty()) return;
    const std::lock_guard guard(Lock);
    Load();  // another program may have learned something meanwhile
    std::erase_if(Entries, [&](const Entry& one) { return one.Server == server; });
    if (way != DataWay::Extended) Entries.insert(Entries.begin(), {server, way});
    if (Entries.size() > MostServers) Entries.resize(MostServers);
    Save();
}

void DataWayBook::Load()
{
    Loaded = true;
    if (File.empty()) return;
    std::error_code error;
    if (std::filesystem::exists(File, error) && !std::filesystem::is_regular_file(File, error)) return;
    std::ifstream file(File, std::ios::binary);
    if (!file) return;
    Entries.clear();
    std::string bytes(MaxBytes, '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    std::istringstream lines(bytes);
    for (std::string line; Entries.size() < MostServers && std::getline(lines, line);) {
        std::istringstream words(line);
        std::string host, number, word, more;
        words >> host >> number >> word >> more;
        const std::optional<std::uint16_t> port = PortIn(number);
        const std::string server = port ? ServerOf(host, *port) : std::string();
        if (server.empty() || !more.empty() || (word != PassiveWord && word != ActiveWord)) continue;
        const bool known =
            std::any_of(Entries.begin(), Entries.end(), [&](const Entry& one) { return one.Server == server; });
        if (!known) Entries.push_back({server, word == PassiveWord ? DataWay::Passive : DataWay::Active});
    }
}

void DataWayBook::Save() const
{
    if (File.empty()) return;
    std::string text;
    for (const Entry& one : Entries)
        text += one.Server + ' ' + (one.Way == DataWay::Passive ? PassiveWord : ActiveWord) + '\n';
    try {
        PartFile part(File);
        part.Write(text.data(), text.size());
        part.TakePlace();
    } catch (const std::system_error&) {
        return;
    }
    // Where somebody goes is nobody else's business.
    std::error_code ignored;
    std::filesystem::permissions(File, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write,
                                 ignored);
}

}  // namespace Ftp
