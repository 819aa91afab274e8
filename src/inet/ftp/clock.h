#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace Ftp {

using Milliseconds = std::chrono::milliseconds;

/// Tells the time and wakes; tests have one that jumps. Transfer thread only.
class Clock {
public:
    /// A call that is due; it does not happen any more once this is gone.
    class Alarm {
    public:
        virtual ~Alarm() = default;
    };

    virtual ~Clock() = default;
    virtual Milliseconds Now() const = 0;  ///< since some fixed moment; never goes back
    virtual std::unique_ptr<Alarm> After(Milliseconds delay, std::function<void()> call) = 0;
};

}  // namespace Ftp
