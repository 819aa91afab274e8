#include "inet/http_worker.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QObject>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

/// What both threads know. Nothing else may be touched by the worker's own, which may outlive the worker.
struct HttpWorker::Shared : std::enable_shared_from_this<HttpWorker::Shared> {
    void Start(const HttpRequest& request, const Worker::Listener& listener);
    void End(const Worker::Listener& listener, Ftp::Outcome outcome);

    QObject Loop;                            ///< lives on the thread
    std::unique_ptr<HttpDownload> Download;  ///< on the thread only
    unsigned Questions = 0;                  ///< on the thread only: how many have been asked

    std::mutex Lock;
    std::condition_variable Changed;
    bool Busy = false;       ///< under Lock
    bool Abandoned = false;  ///< under Lock: nobody listens any more
};

void HttpWorker::Shared::Start(const HttpRequest& request, const Worker::Listener& listener)
{
    {
        const std::lock_guard guard(Lock);
        if (Abandoned) return;
    }
    const auto tell = [listener](const Worker::News& news) { listener(std::vector<Worker::News>(1, news)); };
    HttpObserver observer;
    observer.State = [tell](int number) { tell(number); };
    observer.Progress = [tell](const Ftp::Progress& progress) { tell(progress); };
    observer.Ask = [this, tell](const Ftp::Certificate& shown) { tell(Worker::Question{++Questions, shown}); };
    observer.Ended = [this, listener](Ftp::Outcome outcome) { End(listener, std::move(outcome)); };
    Download = std::make_unique<HttpDownload>(request, std::move(observer));
    Download->Begin();
}

// The next one may be handed over as soon as the end of this one has been told, so it is over before that. Its
// connections close with it, but not under its feet.
void HttpWorker::Shared::End(const Worker::Listener& listener, Ftp::Outcome outcome)
{
    {
        const std::lock_guard guard(Lock);
        Busy = false;
        Changed.notify_all();
    }
    listener(std::vector<Worker::News>(1, std::move(outcome)));
    const auto tidy = [self = shared_from_this(), over = Download.get()] {
        if (self->Download.get() == over) self->Download.reset();
    };
    QMetaObject::invokeMethod(&Loop, tidy, Qt::QueuedConnection);
}

namespace {

/// Of a thread that hangs in the library, for as long as the process lives.
void KeepForGood(std::unique_ptr<QThread> thread, std::shared_ptr<void> place)
{
    using Kept = std::pair<std::unique_ptr<QThread>, std::shared_ptr<void>>;
    static auto& all = *new std::vector<Kept>;
    all.emplace_back(std::move(thread), std::move(place));
}

}  // namespace

HttpWorker::HttpWorker() : Place(std::make_shared<Shared>()), Thread(std::make_unique<QThread>())
{
    Place->Loop.moveToThread(Thread.get());
    Thread->start();
}

HttpWorker::~HttpWorker()
{
    constexpr auto Patience = std::chrono::milliseconds(300);
    bool silent = false;
    {
        std::unique_lock guard(Place->Lock);
        const auto silence = [place = Place] {
            if (place->Download) place->Download->Silence();
            const std::lock_guard inner(place->Lock);
            place->Abandoned = true;
            place->Changed.notify_all();
        };
        QMetaObject::invokeMethod(&Place->Loop, silence, Qt::QueuedConnection);
        silent = Place->Changed.wait_for(guard, Patience, [this] { return Place->Abandoned; });
        Place->Abandoned = true;
    }
    // The thread ends by an event of its own, behind all that is queued already.
    const auto end = [place = Place, thread = Thread.get()] {
        place->Download.reset();
        thread->quit();
    };
    QMetaObject::invokeMethod(&Place->Loop, end, Qt::QueuedConnection);
    if (silent && Thread->wait(QDeadlineTimer(Patience)))
        QCoreApplication::removePostedEvents(&Place->Loop);
    else
        KeepForGood(std::move(Thread), Place);
}

void HttpWorker::Fetch(HttpRequest request, Worker::Listener listener)
{
    {
        const std::lock_guard guard(Place->Lock);
        Place->Busy = true;
    }
    const auto start = [place = Place, request = std::move(request), listener = std::move(listener)] {
        place->Start(request, listener);
    };
    QMetaObject::invokeMethod(&Place->Loop, start, Qt::QueuedConnection);
}

void HttpWorker::Answer(unsigned question, bool accepted)
{
    const auto answer = [place = Place, question, accepted] {
        if (place->Download && question == place->Questions) place->Download->Answer(accepted);
    };
    QMetaObject::invokeMethod(&Place->Loop, answer, Qt::QueuedConnection);
}

bool HttpWorker::Cancel()
{
    bool asked = false;
    bool wasOpen = false;
    const auto cancel = [&, place = Place] {
        wasOpen = place->Download && place->Download->HasConnected();
        if (place->Download) place->Download->Cancel();
        const std::lock_guard guard(place->Lock);
        asked = true;
        place->Changed.notify_all();
    };
    QMetaObject::invokeMethod(&Place->Loop, cancel, Qt::QueuedConnection);
    std::unique_lock guard(Place->Lock);
    Place->Changed.wait(guard, [&] { return asked && !Place->Busy; });
    return wasOpen;
}
