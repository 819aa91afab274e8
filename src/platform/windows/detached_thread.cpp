#include "platform/detached_thread.h"

#include <cerrno>
#include <memory>
#include <process.h>
#include <system_error>
#include <utility>
#include <windows.h>

namespace {

using Work = std::function<void()>;

unsigned __stdcall Run(void* given) noexcept
{
    const std::unique_ptr<Work> work(static_cast<Work*>(given));
    (*work)();
    return 0;
}

}  // namespace

// With MinGW a thread of the standard library that ends while it is detached may take the next one with it: both are
// kept in the same place then, and the next one never runs or is never seen to end. A thread of the system's own has
// no such place.
void RunDetached(std::function<void()> work)
{
    auto given = std::make_unique<Work>(std::move(work));
    const auto thread = _beginthreadex(nullptr, 0, &Run, given.get(), 0, nullptr);
    if (thread == 0) throw std::system_error(errno, std::generic_category());
    (void)given.release();
    CloseHandle(reinterpret_cast<HANDLE>(thread));
}
