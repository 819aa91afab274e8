#include "platform/end_requests.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::array Signals{SIGTERM, SIGINT, SIGHUP};

// A signal handler reaches nothing but static data.
std::atomic<int> WriteEnd = -1;
int ReadEnd = -1;

void NoteSignal(int)
{
    const int error = errno;
    const char mark = 1;
    [[maybe_unused]] const auto written = write(WriteEnd, &mark, 1);
    errno = error;
}

// A signal that the program's starter ignores, as nohup does, stays ignored.
void Handle(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int signal : Signals) {
        struct sigaction before = {};
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
    }
}

}  // namespace

EndRequests::EndRequests()
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
    ReadEnd = ends[0];
    WriteEnd = ends[1];
    Notifier = std::make_unique<QSocketNotifier>(ReadEnd, QSocketNotifier::Read);
    connect(Notifier.get(), &QSocketNotifier::activated, this, &EndRequests::TakeRequests);
    Handle(&NoteSignal);
}

EndRequests::~EndRequests()
{
    if (!Notifier) return;
    Handle(SIG_DFL);
    Notifier.reset();
    close(WriteEnd.exchange(-1));
    close(ReadEnd);
}

void EndRequests::TakeRequests()
{
    std::array<char, 16> marks{};
    while (read(ReadEnd, marks.data(), marks.size()) > 0) continue;
    emit Requested();
}
