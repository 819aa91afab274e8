#pragma once

#include "inet/ftp/asio_clock.h"
#include "inet/ftp/session.h"
#include "inet/ftp/socket_network.h"

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <mutex>
#include <thread>

#ifdef Yield
#undef Yield  // a macro of Windows' headers, which come with Asio; it means nothing
#endif

/// The transfer thread and the session that lives on it. Its members are called from one other thread; what it calls
/// back is called on the transfer thread, and must only hand over.
class Worker {
public:
    /// What one command tells while it runs and when it has ended.
    struct Listener {
        std::function<void(int)> State;
        std::function<void(std::string)> Remark;
        std::function<void(Ftp::Outcome)> Ended;
    };

    Worker();
    /// Ends what runs and joins the thread, within a fraction of a second.
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// One command at a time: the one before must have ended.
    void Perform(Ftp::Target target, Ftp::Manner manner, Ftp::Operation operation, std::filesystem::path folder,
                 Listener listener);
    void Fetch(Ftp::Target target, Ftp::Manner manner, Listener listener);

    /// Closes the session at once and in silence.
    void Drop();

    /// Ends the running command and returns when it has ended; its Ended is called all the same. Returns whether a
    /// connection was open.
    bool Cancel();

private:
    void Start(Ftp::Task<Ftp::Outcome> command, Listener listener);
    Ftp::Task<> Carry(Ftp::Task<Ftp::Outcome> command);
    void Run();

    asio::io_context Context;
    asio::executor_work_guard<asio::io_context::executor_type> Work;
    Ftp::SocketNetwork Network;
    Ftp::AsioClock Time;
    Listener Current;  ///< transfer thread only
    Ftp::Session Session;

    std::mutex Lock;
    std::condition_variable Changed;
    bool Busy = false;  ///< under Lock

    std::thread Thread;
};
