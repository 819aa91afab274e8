#pragma once

#include "inet/ftp/session.h"
#include "support/manual_clock.h"
#include "support/memory_network.h"
#include "support/scripted_server.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>
#include <asio/io_context.hpp>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// One session with a scripted server, in memory, under a clock that jumps as soon as nothing else can happen: a
/// conversation with any number of time-outs takes no time. Local files live in a folder of its own.
class Conversation {
public:
    static constexpr Ftp::Milliseconds Limit = std::chrono::seconds(20);

    explicit Conversation(const std::string& script = {}, Disturbance disturbance = {});
    ~Conversation();
    Conversation(const Conversation&) = delete;
    Conversation& operator=(const Conversation&) = delete;

    /// Carries out an operation, such as `GET "a" "a"`, to its end. Code -1: it never ended.
    Ftp::Outcome Do(const std::string& operation);
    Ftp::Outcome Fetch(const std::string& path);

    /// Lets everything happen that can happen without the clock.
    void Settle();

    /// Lets so much time pass on the clock, with whatever happens in it.
    void Let(Ftp::Milliseconds time);

    /// Files in the local folder, hidden ones included.
    QStringList LocalFiles() const;
    QByteArray LocalFile(const QString& name) const;
    void MakeLocalFile(const QString& name, const QByteArray& bytes) const;

    QString LocalFolder() const { return Folder.path(); }

    /// Where in the local folder operations look for local names.
    std::string LocalPlace;

    asio::io_context Context;
    ManualClock Clock;
    ScriptedServer Server{Context.get_executor(), Clock};
    MemoryNetwork Net{Context.get_executor(), Server};
    std::shared_ptr<Ftp::DataWayBook> Book = std::make_shared<Ftp::DataWayBook>();
    Ftp::Target Where{"server.test", ScriptedServer::Port, "ann", "secret", ""};
    Ftp::Manner How{Limit, true};
    std::vector<int> States;
    std::vector<std::string> Remarks;
    std::vector<Ftp::Certificate> Asked;                                      ///< the certificates that were put to us
    std::function<void(unsigned number, const Ftp::Certificate&)> WhenAsked;  ///< when set, it answers; else No
    Ftp::Milliseconds LastDuration{0};                                        ///< of the last operation, on the clock
    std::optional<Ftp::Session> Session;

private:
    std::filesystem::path Place() const;
    Ftp::Outcome Run(Ftp::Task<Ftp::Outcome> work);

    QTemporaryDir Folder;
};

/// The beginning of a session, up to the first command.
inline const std::string LogIn = R"(
    S: 220 ready
    C: USER ann
    S: 331 password please
    C: PASS secret
    S: 230 welcome
)";
