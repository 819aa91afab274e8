#pragma once

#include "inet/http_download.h"
#include "inet/worker.h"

#include <QObject>
#include <QThread>
#include <condition_variable>
#include <memory>
#include <mutex>

/// The thread of the downloads by HTTP, so that neither a slow disk nor a look-up of the system's proxy holds up the
/// caller. Its members are called from one other thread; what it calls back is called on its own, and must only hand
/// over.
class HttpWorker {
public:
    HttpWorker();
    /// Ends what runs and joins the thread, within a fraction of a second.
    ~HttpWorker();
    HttpWorker(const HttpWorker&) = delete;
    HttpWorker& operator=(const HttpWorker&) = delete;

    /// One at a time: the one before must have ended.
    void Fetch(HttpRequest request, Worker::Listener listener);

    /// Ends the running download and returns when it has ended; its Ended is called all the same. Returns whether a
    /// connection was open.
    bool Cancel();

private:
    void Start(const HttpRequest& request, const Worker::Listener& listener);

    QThread Thread;
    QObject Place;                           ///< lives on the thread
    std::unique_ptr<HttpDownload> Download;  ///< on the thread only

    std::mutex Lock;
    std::condition_variable Changed;
    bool Busy = false;  ///< under Lock
};
