#pragma once

#include <sys/types.h>

namespace lumetry::desktop {

/// What the kernel counts of a process.
struct Usage {
    long ticks = 0;    ///< processor time, user and system
    long switches = 0; ///< times it went to sleep by itself: wake-ups
};

/// Of its main thread, as far as wake-ups go. Zeros for a process that is gone.
[[nodiscard]] Usage usageOf(pid_t pid);

} // namespace lumetry::desktop
