#pragma once

#include "inet/http_download.h"
#include "inet/worker.h"

#include <QThread>
#include <memory>

/// The thread of the downloads by HTTP, so that neither a slow disk nor a look-up of the system's proxy holds up the
/// caller. Its members are called from one other thread; what it calls back is called on its own, and must only hand
/// over.
class HttpWorker {
public:
    HttpWorker();
    /// Ends what runs, within a fraction of a second. A thread that the library keeps busy for longer, for a server
    /// that never stops sending its header, is left behind.
    ~HttpWorker();
    HttpWorker(const HttpWorker&) = delete;
    HttpWorker& operator=(const HttpWorker&) = delete;

    /// One at a time: the one before must have ended.
    void Fetch(HttpRequest request, Worker::Listener listener);

    /// Answers the question of this number; nothing happens when nobody waits for it any more.
    void Answer(unsigned question, bool accepted);

    /// Ends the running download and returns when it has ended; its Ended is called all the same. Returns whether a
    /// connection was open.
    bool Cancel();

private:
    struct Shared;

    std::shared_ptr<Shared> Place;
    std::unique_ptr<QThread> Thread;
};
