#pragma once

#include "inet/ftp/asio_clock.h"
#include "inet/ftp/session.h"
#include "inet/ftp/socket_network.h"
#include "inet/ftp/tunnel_network.h"
#include "inet/http_download.h"

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#ifdef Yield
#undef Yield  // a macro of Windows' headers, which come with Asio; it means nothing
#endif

/// The transfer thread, and the session by FTP and the downloads by HTTP that live on it. Its members are called from
/// one other thread; what it calls back is called on the transfer thread, and must only hand over.
class Worker {
public:
    /// Whether a certificate may be used; to be answered with Answer.
    struct Question {
        unsigned Number = 0;
        Ftp::Certificate Shown;
    };

    /// One thing that a command tells: a state, a remark, how far a transfer has come, a question, or, last, how it
    /// ended.
    using News = std::variant<int, std::string, Ftp::Progress, Question, Ftp::Outcome>;

    /// Takes what one command tells, in order. News come a few at a time: waking the other thread for each of them
    /// would cost more than a small transfer.
    using Listener = std::function<void(std::vector<News>)>;

    /// `ways`: see Session.
    explicit Worker(std::shared_ptr<Ftp::DataWayBook> ways = {});
    /// Ends what runs and joins the thread, within a fraction of a second.
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// One command at a time: the one before must have ended.
    void Perform(Ftp::Target target, Ftp::Manner manner, Ftp::Operation operation, std::filesystem::path folder,
                 Listener listener);
    /// Into `file`, or into memory when that is empty.
    void Fetch(Ftp::Target target, Ftp::Manner manner, std::filesystem::path file, Listener listener);

    /// Fetches by HTTP; the session is closed first.
    void Download(HttpRequest request, Listener listener);

    /// Makes the session ready for a file, as Session::GetReady; while a command runs nothing happens.
    void GetReady();

    /// Answers the question of this number; nothing happens when nobody waits for it any more.
    void Answer(unsigned question, bool accepted);

    /// Closes the session at once and in silence.
    void Drop();

    /// Ends the running command and returns when it has ended; its Ended is called all the same. Returns whether a
    /// connection was open.
    bool Cancel();

private:
    void Start(std::function<Ftp::Task<Ftp::Outcome>()> command, bool isByHttp, Listener listener);
    Ftp::Task<> Carry(Ftp::Task<Ftp::Outcome> command);
    Ftp::Observer ObserverOf(std::function<void(unsigned, bool)> answer);
    void Note(News news);
    void HandOver();
    void Run();

    asio::io_context Context;
    asio::executor_work_guard<asio::io_context::executor_type> Work;
    Ftp::SocketNetwork Sockets;
    Ftp::TunnelNetwork Network;
    Ftp::AsioClock Time;

    // Transfer thread only
    Listener Current;
    std::vector<News> Noted;                      ///< not handed over yet
    std::unique_ptr<Ftp::Clock::Alarm> NotedDue;  ///< rings when they have to be

    std::function<void(bool)> Answered;  ///< answers the question asked last
    unsigned Questions = 0;              ///< how many have been asked
    bool IsByHttp = false;               ///< the command that runs

    Ftp::Session Session;
    HttpDownload Web;

    std::mutex Lock;
    std::condition_variable Changed;
    bool Busy = false;  ///< under Lock

    std::thread Thread;
};
