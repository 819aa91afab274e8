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
      Session(Network, Time, ObserverOf([this](unsigned number, bool accepted) { Session.Answer(number, accepted); }),
              std::move(ways)),
      Web(Sockets, Time, &SystemProxy,
          ObserverOf([this](unsigned number, bool accepted) { Web.Answer(number, accepted); })),
      Thread([this] { Run(); })
{
}

// Questions are numbered over all that ask, so that an answer that comes late meets none but its own.
Ftp::Observer Worker::ObserverOf(std::function<void(unsigned, bool)> answer)
{
    auto ask = [this, answer = std::move(answer)](unsigned number, Ftp::Certificate shown) {
        Answered = [answer, number](bool accepted) { answer(number, accepted); };
        Note(Question{++Questions, std::move(shown)});
    };
    return {[this](int state) { Note(state); }, [this](std::string line) { Note(std::move(line)); },
            [this](const Ftp::Progress& progress) { Note(progress); }, std::move(ask)};
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
    auto perform = [this, target = std::move(target), manner, operation = std::move(operation),
                    folder = std::move(folder)] {
        Network.Use(target.Via);
        return Session.Perform(target, manner, operation, folder);
    };
    Start(std::move(perform), false, std::move(listener));
}

void Worker::Fetch(Ftp::Target target, Ftp::Manner manner, std::filesystem::path file, Listener listener)
{
    auto fetch = [this, target = std::move(target), manner, file = std::move(file)] {
        Network.Use(target.Via);
        return Session.Fetch(target, manner, file);
    };
    Start(std::move(fetch), false, std::move(listener));
}

void Worker::Download(HttpRequest request, Listener listener)
{
    auto download = [this, request = std::move(request)] {
        Session.Drop();
        return Web.Fetch(request);
    };
    Start(std::move(download), true, std::move(listener));
}

void Worker::Start(std::function<Ftp::Task<Ftp::Outcome>()> command, bool isByHttp, Listener listener)
{
    {
        const std::lock_guard guard(Lock);
        Busy = true;
    }
    asio::post(Context, [this, command = std::move(command), isByHttp, listener = std::move(listener)]() mutable {
        IsByHttp = isByHttp;
        Current = std::move(listener);
        asio::co_spawn(Context, Carry(command()), asio::detached);
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
    asio::post(Context, [this, question, accepted] {
        if (question == Questions) Answered(accepted);
    });
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
        wasOpen = Session.IsConnected() || Web.IsConnected();
        if (!Busy)
            Session.Disconnect();
        else if (IsByHttp)
            Web.Cancel();
        else
            Session.Cancel();
        asked = true;
        Changed.notify_all();
    });
    std::unique_lock guard(Lock);
    Changed.wait(guard, [&] { return asked && !Busy; });
    return wasOpen;
}
