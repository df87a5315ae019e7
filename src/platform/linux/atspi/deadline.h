#pragma once

#include <chrono>

namespace lumetry::atspi {

using Clock = std::chrono::steady_clock;
/// When waiting ends, whatever has come by then.
using Deadline = Clock::time_point;

[[nodiscard]] inline Deadline deadlineIn(double seconds) {
    return Clock::now() +
           std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

} // namespace lumetry::atspi
