#include "platform/detached_thread.h"

#include <thread>
#include <utility>

void RunDetached(std::function<void()> work)
{
    std::thread(std::move(work)).detach();
}
