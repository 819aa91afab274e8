// Whole conversations with a server that does whatever the input says, in memory, under a clock that jumps: every
// operation ends, in time, once; nothing is damaged, nothing stays open, and the password is told to nobody.

#include "arbitrary_server.h"
#include "inet/ftp/session.h"
#include "require.h"
#include "support/manual_clock.h"

#include <asio/co_spawn.hpp>
#include <asio/io_context.hpp>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr Ftp::Milliseconds Limit = std::chrono::seconds(20);
constexpr const char* Password = "opensesame";
constexpr const char* Old = "old bytes";

/// The local folder, inside another one that must stay as it is.
class Disk {
public:
    Disk() : Top(fs::temp_directory_path() / ("tolvane-fuzz-" + std::to_string(getpid()))), Folder(Top / "local")
    {
        fs::create_directories(Folder);
        Restore();
    }

    ~Disk()
    {
        std::error_code ignored;
        fs::remove_all(Top, ignored);
    }

    Disk(const Disk&) = delete;
    Disk& operator=(const Disk&) = delete;

    const fs::path& Place() const { return Folder; }

    static std::string Read(const fs::path& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// No piece of a transfer is left behind, and nothing outside the folder. A server may list what looks like one.
    void Check(const std::string& listed)
    {
        for (const auto& entry : fs::directory_iterator(Top)) REQUIRE(entry.path() == Folder);
        bool changed = false;
        for (const auto& entry : fs::directory_iterator(Folder)) {
            const std::string name = entry.path().filename().string();
            REQUIRE(!name.starts_with(PartBegin) || listed.find(name) != std::string::npos);
            changed = changed || (name != "kept" && name != "sent");
        }
        if (changed || Read(Folder / "kept") != Old) Restore();
    }

private:
    void Restore() const
    {
        for (const auto& entry : fs::directory_iterator(Folder)) fs::remove_all(entry.path());
        std::ofstream(Folder / "kept", std::ios::binary) << Old;
        std::ofstream(Folder / "sent", std::ios::binary) << "bytes that are sent";
    }

    fs::path Top;
    fs::path Folder;
    const std::string PartBegin = ".tolvane-" + std::to_string(getpid()) + '-';
};

/// One session from its first operation to its end.
class Visit {
public:
    Visit(asio::io_context& context, Disk& disk, Input input)
        : Context(context), Local(disk), Steps(input), Net(context.get_executor(), Server)
    {
        Ftp::Observer observer;
        observer.State = [](int state) { REQUIRE(state >= 1 && state <= 10); };
        observer.Remark = [](const std::string& line) { REQUIRE(line.find(Password) == std::string::npos); };
        Session.emplace(Net, Clock, std::move(observer));
    }

    void Run()
    {
        constexpr int MostOperations = 6;
        for (int count = 0; count < MostOperations && !Steps.Empty(); ++count) {
            const unsigned choice = Steps.Byte();
            // While nothing runs the server may do something too.
            for (unsigned idle = choice >> 6U; idle > 0; --idle) PlayStep();
            if (choice >> 6U == 3) Session->GetReady();
            Operate(choice & 0x3FU);
            Settle();
        }
        Session->Drop();
        Settle();
        Session.reset();
        Settle();
        REQUIRE(Server.EverythingIsClosed());
        REQUIRE(!Clock.JumpToNextAlarm());
        Local.Check(Listed);
    }

private:
    void Operate(unsigned choice)
    {
        const std::string kept = Disk::Read(Local.Place() / "kept");
        const std::optional<Ftp::Operation> operation = Ftp::ParseOperation(TextOf(choice));
        if (!operation) return;
        const Ftp::Target target{"server.test", 21, "ann", Password, choice >= 32 ? "a folder" : ""};
        const Ftp::Manner manner{Limit, true, choice % 2 == 1};
        const Ftp::Outcome outcome = choice == 31 ? Await(Session->Fetch(target, manner))
                                                  : Await(Session->Perform(target, manner, *operation, Local.Place()));
        if (!outcome.Good) {
            REQUIRE(outcome.Code != 0 && !outcome.Text.empty() && outcome.Reply.empty());
            REQUIRE(Disk::Read(Local.Place() / "kept") == kept);
        }
        REQUIRE(outcome.Text.find(Password) == std::string::npos);
        if (std::holds_alternative<Ftp::ListFull>(*operation) && outcome.Good) {
            Listing = outcome.Reply;
            Listed += Listing;
        }
    }

    std::string TextOf(unsigned choice) const
    {
        const std::string line = Listing.substr(0, Listing.find("\r\n"));
        switch (choice % 16) {
        case 0:
            return "DIR";
        case 1:
            return "LS";
        case 2:
            return R"(GET "kept" "kept")";
        case 3:
            return R"(PUT "sent" "sent")";
        case 4:
            return "CD a folder";
        case 5:
            return "CDUP";
        case 6:
            return "PWD";
        case 7:
            return "SIZE \"kept\"";
        case 8:
            return R"(RENAME "kept" "other")";
        case 9:
            return "CLOSE";
        case 10:
            return "GET \"" + line + "\" \"" + line + '"';
        case 11:
            return "CD " + line;
        case 12:
            return "DELETE \"" + line + '"';
        case 13:
            return "RENAME \"" + line + "\" \"other\"";
        case 14:
            return "MKDIR \"new\"";
        default:
            return "SIZE \"" + line + '"';
        }
    }

    /// To its end: the steps of the input as long as there are some, then the clock alone.
    Ftp::Outcome Await(Ftp::Task<Ftp::Outcome> work)
    {
        const auto outcome = std::make_shared<std::optional<Ftp::Outcome>>();
        asio::co_spawn(Context, std::move(work), [outcome](const std::exception_ptr& error, Ftp::Outcome got) {
            REQUIRE(!error);
            *outcome = std::move(got);
        });
        Ftp::Milliseconds alone = Clock.Now();
        for (;;) {
            Settle();
            Server.CheckCommands();
            if (*outcome) return std::move(**outcome);
            if (!Steps.Empty()) {
                PlayStep();
                alone = Clock.Now();
            } else {
                REQUIRE(Clock.JumpToNextAlarm());
                REQUIRE(Clock.Now() - alone <= 5 * Limit);
            }
        }
    }

    void PlayStep()
    {
        const auto letter = static_cast<char>(Steps.Byte());
        if (Server.Step(letter, Steps)) {
            Settle();
        } else if (letter == 't') {
            (void)Clock.JumpToNextAlarm();
        } else if (letter == 'x') {
            Session->Cancel();
        }
    }

    void Settle()
    {
        Context.restart();
        while (Context.poll() > 0) Context.restart();
    }

    asio::io_context& Context;
    Disk& Local;
    Input Steps;
    ManualClock Clock;
    ArbitraryServer Server;
    MemoryNetwork Net;
    std::string Listing;
    std::string Listed;  ///< all of them
    std::optional<Ftp::Session> Session;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static asio::io_context context(1);
    static Disk disk;
    Visit(context, disk, Input(data, size)).Run();
    return 0;
}
