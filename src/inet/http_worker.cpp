#include "inet/http_worker.h"

#include <utility>

HttpWorker::HttpWorker()
{
    Place.moveToThread(&Thread);
    Thread.start();
}

HttpWorker::~HttpWorker()
{
    QMetaObject::invokeMethod(
        &Place, [this] { Download.reset(); }, Qt::BlockingQueuedConnection);
    Thread.quit();
    Thread.wait();
}

void HttpWorker::Fetch(HttpRequest request, Worker::Listener listener)
{
    {
        const std::lock_guard guard(Lock);
        Busy = true;
    }
    const auto start = [this, request = std::move(request), listener = std::move(listener)] {
        Start(request, listener);
    };
    QMetaObject::invokeMethod(&Place, start, Qt::QueuedConnection);
}

// The next one may be handed over as soon as the end of this one has been told, so it is over before that. Its
// connections close with it, but not under its feet.
void HttpWorker::Start(const HttpRequest& request, const Worker::Listener& listener)
{
    const auto ended = [this, tell = listener.Ended](Ftp::Outcome outcome) {
        {
            const std::lock_guard guard(Lock);
            Busy = false;
            Changed.notify_all();
        }
        tell(std::move(outcome));
        const auto tidy = [this, over = Download.get()] {
            if (Download.get() == over) Download.reset();
        };
        QMetaObject::invokeMethod(&Place, tidy, Qt::QueuedConnection);
    };
    Download = std::make_unique<HttpDownload>(request, listener.State, ended);
    Download->Begin();
}

bool HttpWorker::Cancel()
{
    bool asked = false;
    bool wasOpen = false;
    const auto cancel = [&] {
        wasOpen = Download && Download->HasConnected();
        if (Download) Download->Cancel();
        const std::lock_guard guard(Lock);
        asked = true;
        Changed.notify_all();
    };
    QMetaObject::invokeMethod(&Place, cancel, Qt::QueuedConnection);
    std::unique_lock guard(Lock);
    Changed.wait(guard, [&] { return asked && !Busy; });
    return wasOpen;
}
