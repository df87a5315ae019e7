#pragma once

#include <sys/types.h>

#include <map>
#include <set>

namespace lumetry {

/// How long a question to another application may hold the program up, unless said otherwise. The
/// entry point sets it on the system-wide element.
inline constexpr float messagingTimeoutSeconds = 0.2F;

/// What the program remembers of itself and of other processes for as long as it runs. The entry
/// point makes one before anything else; used on the main thread only.
struct ProbeState {
    /// This program's own process, whose windows are never measured.
    pid_t lumetryPID = 0;
    /// Whether a process bundles Chromium, for every process asked so far. Never cleared.
    std::map<pid_t, bool> electronPIDCache;
    /// When a process was last woken, in seconds since the reference date (see RunLoop::now).
    std::map<pid_t, double> electronWakeAt;
    /// The processes whose enhanced user interface is switched on and not yet off again.
    std::set<pid_t> enhancedPIDs;
};

} // namespace lumetry
