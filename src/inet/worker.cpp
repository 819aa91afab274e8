#include "inet/worker.h"

#include "inet/proxy_system.h"
#include "platform/pump.h"

#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/post.hpp>
#include <utility>

Worker::Worker(std::shared_ptr<Ftp::DataWayBook> ways)
    : Work(asio::make_work_guard(Context)), Sockets(Context.get_executor()),
      Network(Sockets, [](const std::string& host, std::uint16_t port) { return SystemProxy("ftp", host, port); }),
      Time(Context.get_executor()),
      Session(Network, Time,
              {[this](int state) { Note(state); }, [this](std::string line) { Note(std::move(line)); },
               [this](const Ftp::Progress& progress) { Note(progress); },
               [this](unsigned number, Ftp::Certificate shown) {
                   Note(Question{number, std::move(shown)});
               }},
              std::move(ways)),
      Thread([this] { Run(); })
{
}

// The session's own tasks end by themselves once its connection is closed, and the thread with the last of them.
Worker::~Worker()
{
    Cancel();
    asio::post(Context, [this] {
        Session.Drop();
        NotedDue.reset();
    });
    Work.reset();
    Thread.join();
}

void Worker::Run()
{
    BlockPumpSignals();
    Context.run();
}

void Worker::Perform(Ftp::Target target, Ftp::Manner manner, Ftp::Operation operation, std::filesystem::path folder,
                     Listener listener)
{
    Ftp::Proxy via = target.Via;
    Start(Session.Perform(std::move(target), manner, std::move(operation), std::move(folder)), std::move(via),
          std::move(listener));
}

void Worker::Fetch(Ftp::Target target, Ftp::Manner manner, std::filesystem::path file, Listener listener)
{
    Ftp::Proxy via = target.Via;
    Start(Session.Fetch(std::move(target), manner, std::move(file)), std::move(via), std::move(listener));
}

void Worker::Start(Ftp::Task<Ftp::Outcome> command, Ftp::Proxy via, Listener listener)
{
    {
        const std::lock_guard guard(Lock);
        Busy = true;
    }
    asio::post(Context, [this, command = std::make_shared<Ftp::Task<Ftp::Outcome>>(std::move(command)),
                         listener = std::move(listener), via = std::move(via)]() mutable {
        Network.Use(std::move(via));
        Current = std::move(listener);
        asio::co_spawn(Context, Carry(std::move(*command)), asio::detached);
    });
}

// The next command may be handed over as soon as the end of this one has been told, so it is over before that.
Ftp::Task<> Worker::Carry(Ftp::Task<Ftp::Outcome> command)
{
    Ftp::Outcome outcome = co_await std::move(command);
    {
        const std::lock_guard guard(Lock);
        Busy = false;
        Changed.notify_all();
    }
    Noted.emplace_back(std::move(outcome));
    HandOver();
}

// Nobody sees a delay this short, and a command that ends sooner is told of in one go.
void Worker::Note(News news)
{
    constexpr Ftp::Milliseconds Delay{5};
    Noted.push_back(std::move(news));
    if (!NotedDue)
        NotedDue = Time.After(Delay, [this] {
            NotedDue.reset();
            HandOver();
        });
}

void Worker::HandOver()
{
    if (!Noted.empty()) Current(std::exchange(Noted, {}));
}

// A command that is handed over after this one begins after it.
void Worker::GetReady()
{
    const std::lock_guard guard(Lock);
    if (!Busy) asio::post(Context, [this] { Session.GetReady(); });
}

void Worker::Answer(unsigned question, bool accepted)
{
    asio::post(Context, [this, question, accepted] { Session.Answer(question, accepted); });
}

void Worker::Drop()
{
    asio::post(Context, [this] { Session.Drop(); });
}

// A command that has just ended by itself counts as cancelled all the same, and its connection goes with it: the next
// one connects anew in every case.
bool Worker::Cancel()
{
    bool asked = false;
    bool wasOpen = false;
    asio::post(Context, [&] {
        const std::lock_guard guard(Lock);
        wasOpen = Session.IsConnected();
        if (Busy)
            Session.Cancel();
        else
            Session.Disconnect();
        asked = true;
        Changed.notify_all();
    });
    std::unique_lock guard(Lock);
    Changed.wait(guard, [&] { return asked && !Busy; });
    return wasOpen;
}
