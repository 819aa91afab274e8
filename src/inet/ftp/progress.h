#pragma once

#include "inet/ftp/clock.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>

namespace Ftp {

/// How far a transfer has come.
struct Progress {
    std::uint64_t Done = 0;                 ///< bytes received or sent
    std::optional<std::uint64_t> Expected;  ///< bytes in all, where that is known; a hint
    std::uint64_t Rate = 0;                 ///< bytes a second, over the last few seconds
};

/// Counts what a transfer moves, and tells of it at most ten times a second. Transfer thread only.
class ProgressMeter {
public:
    using Listener = std::function<void(const Progress&)>;

    ProgressMeter(Clock& clock, const Listener& listener, std::optional<std::uint64_t> expected);

    void Add(std::uint64_t bytes);

    std::uint64_t Done() const { return Sum; }

private:
    struct Sample {
        Milliseconds At;
        std::uint64_t Sum;
    };

    Clock& Time;
    const Listener& Tell;
    std::optional<std::uint64_t> Expected;
    std::uint64_t Sum = 0;
    std::deque<Sample> Samples;  ///< of the last few seconds, the first of them the oldest
};

}  // namespace Ftp
