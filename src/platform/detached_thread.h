#pragma once

#include <functional>

/// Runs something on a thread of its own that nobody waits for, not even the program's end. What it works with must be
/// its own. Throws std::system_error when there is no thread to be had. Any thread.
void RunDetached(std::function<void()> work);
