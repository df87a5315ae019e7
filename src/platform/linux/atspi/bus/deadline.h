#pragma once

#include <algorithm>
#include <chrono>

namespace lumetry::atspi {

using Clock = std::chrono::steady_clock;
/// When waiting ends, whatever has come by then.
using Deadline = Clock::time_point;

[[nodiscard]] inline Deadline deadlineIn(double seconds) {
    constexpr double longestSeconds = 3600;
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(
                              std::chrono::duration<double>(std::min(seconds, longestSeconds)));
}

} // namespace lumetry::atspi
