// Whole downloads by HTTP from a server that does whatever the input says, in memory, under a clock that jumps: each
// ends, in time, once; no file is damaged, nothing stays open, and user and password are told to nobody but the host
// that they were given for.
//
// The first byte says how the answers are sliced and where the file goes; behind it come steps: a letter, for some
// followed by a text up to the next LF.
//
//     s text   a line          S text   the text as it is        t   time passes
//     e        the end         r        a reset                  x   the user cancels
//     f        the next connection is refused

#include "inet/http_download.h"
#include "input.h"
#include "require.h"
#include "support/manual_clock.h"
#include "support/memory_network.h"

#include <asio/co_spawn.hpp>
#include <asio/io_context.hpp>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr Ftp::Milliseconds Limit = std::chrono::seconds(20);
constexpr const char* Old = "old bytes";

/// Another for every input, so that none can hold its own: a server that knew the password could ask for it back, as a
/// place to go to or as a realm.
std::string PasswordFor(std::string_view input)
{
    return "p" + std::to_string(std::hash<std::string_view>()(input));
}

class HttpServer final : public MemoryServer {
public:
    HttpServer(std::size_t slice, std::string password) : Slice(slice), Password(std::move(password)) {}

    Answer Accept(std::shared_ptr<MemoryLink> link) override
    {
        if (std::exchange(Refuses, false)) return Answer::Refused;
        link->Slice = Slice;
        Links.push_back(std::move(link));
        return Answer::Accepted;
    }

    std::vector<asio::ip::address> Find(const std::string& host, bool&) override
    {
        if (host == "nowhere.test") return {};
        return {asio::ip::make_address("192.0.2.1")};
    }

    bool Step(char letter, Input& input)
    {
        if (letter == 'f') Refuses = true;
        if (letter != 's' && letter != 'S' && letter != 'e' && letter != 'r') return letter == 'f';
        const std::string text = letter == 'e' || letter == 'r' ? "" : std::string(input.Line());
        if (Links.empty()) return true;
        MemoryLink& link = *Links.back();
        link.ToClient += text;
        if (letter == 's') link.ToClient += "\r\n";
        link.ServerEnded = link.ServerEnded || letter == 'e';
        link.Broken = link.Broken || letter == 'r';
        link.Wake();
        return true;
    }

    /// What was asked for is one whole request, or the beginning of TLS.
    void CheckRequests() const
    {
        for (const auto& link : Links) {
            const std::string& text = link->ToServer;
            if (text.empty() || text.front() == '\x16') continue;
            REQUIRE(text.starts_with("GET /") && text.find("\r\n\r\n") == text.size() - 4);
            REQUIRE(text.find(" HTTP/1.1\r\n") == text.find("\r\n") - 9);
            const bool isHome = text.find("\r\nHost: server.test\r\n") != std::string::npos;
            const std::size_t login = text.find("Authorization: ");
            REQUIRE(login == std::string::npos || isHome);
            REQUIRE(login == std::string::npos || text.compare(login + 15, 6, "Basic ") == 0 ||
                    text.compare(login + 15, 7, "Digest ") == 0);
            REQUIRE(text.find(Password) == std::string::npos);
        }
    }

    bool EverythingIsClosed() const
    {
        for (const auto& link : Links)
            if (!link->ClientGone) return false;
        return true;
    }

private:
    std::vector<std::shared_ptr<MemoryLink>> Links;
    std::size_t Slice;
    std::string Password;
    bool Refuses = false;
};

class Disk {
public:
    Disk() : Folder(fs::temp_directory_path() / ("tolvane-fuzz-" + std::to_string(getpid())))
    {
        fs::create_directories(Folder);
        Restore();
    }

    ~Disk()
    {
        std::error_code ignored;
        fs::remove_all(Folder, ignored);
    }

    Disk(const Disk&) = delete;
    Disk& operator=(const Disk&) = delete;

    fs::path Place() const { return Folder / "kept"; }

    void Check(bool changed)
    {
        for (const auto& entry : fs::directory_iterator(Folder)) REQUIRE(entry.path() == Place());
        if (changed) {
            Restore();
            return;
        }
        std::ifstream file(Place(), std::ios::binary);
        REQUIRE(std::string(std::istreambuf_iterator<char>(file), {}) == Old);
    }

private:
    void Restore() const { std::ofstream(Place(), std::ios::binary) << Old; }

    fs::path Folder;
};

class Visit {
public:
    Visit(asio::io_context& context, Disk& disk, Input input)
        : Context(context), Local(disk), Password(PasswordFor(input.All())), Steps(input), Options(Steps.Byte()),
          Server((Options & 0x3FU) == 0 ? SIZE_MAX : Options & 0x3FU, Password), Net(context.get_executor(), Server)
    {
        Ftp::Observer observer;
        observer.State = [this](int state) { REQUIRE(state == ++Told && state <= 8); };
        observer.Ask = [this](unsigned number, const Ftp::Certificate&) { Web->Answer(number, true); };
        Web.emplace(
            Net, Clock, [](const auto&, const auto&, auto) { return Ftp::Proxy(); }, std::move(observer));
    }

    void Run()
    {
        HttpRequest request;
        request.Url = QUrl("http://server.test/pub/file");
        request.User = "ann";
        request.Password = Password;
        request.Limit = Limit;
        const bool stores = (Options & 0x40U) != 0;
        if (stores) request.File = Local.Place();
        const Ftp::Outcome outcome = Await(Web->Fetch(std::move(request)));
        Settle();
        if (!outcome.Good) REQUIRE(outcome.Code != 0 && !outcome.Text.empty() && outcome.Reply.empty());
        if (outcome.Good) REQUIRE(Told == 8 && (stores || outcome.Reply.size() == outcome.Transferred->Bytes));
        REQUIRE(outcome.Text.find(Password) == std::string::npos);
        REQUIRE(Server.EverythingIsClosed());
        REQUIRE(!Clock.JumpToNextAlarm());
        if (stores) Local.Check(outcome.Good);
    }

private:
    /// To its end: the steps of the input as long as there are some, then the clock alone.
    Ftp::Outcome Await(Ftp::Task<Ftp::Outcome> work)
    {
        std::optional<Ftp::Outcome> outcome;
        asio::co_spawn(Context, std::move(work), [&outcome](const std::exception_ptr& error, Ftp::Outcome got) {
            REQUIRE(!error);
            outcome = std::move(got);
        });
        Ftp::Milliseconds alone = Clock.Now();
        for (;;) {
            Settle();
            Server.CheckRequests();
            if (outcome) return std::move(*outcome);
            if (!Steps.Empty()) {
                PlayStep();
                alone = Clock.Now();
            } else {
                REQUIRE(Clock.JumpToNextAlarm());
                REQUIRE(Clock.Now() - alone <= 2 * Limit);
            }
        }
    }

    void PlayStep()
    {
        const auto letter = static_cast<char>(Steps.Byte());
        if (Server.Step(letter, Steps)) return;
        if (letter == 't') (void)Clock.JumpToNextAlarm();
        if (letter == 'x') Web->Cancel();
    }

    void Settle()
    {
        Context.restart();
        while (Context.poll() > 0) Context.restart();
    }

    asio::io_context& Context;
    Disk& Local;
    std::string Password;
    Input Steps;
    unsigned Options;
    ManualClock Clock;
    HttpServer Server;
    MemoryNetwork Net;
    int Told = 0;
    std::optional<HttpDownload> Web;
};

}  // namespace

// Nobody is trusted: reading whom the system trusts would take longer than all else.
extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    setenv("SSL_CERT_FILE", "/dev/null", 1);
    setenv("SSL_CERT_DIR", "/dev/null", 1);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static asio::io_context context(1);
    static Disk disk;
    Visit(context, disk, Input(data, size)).Run();
    return 0;
}
