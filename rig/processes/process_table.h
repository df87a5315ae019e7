#pragma once

#include <sys/types.h>

#include <filesystem>
#include <set>
#include <vector>

namespace lumetry::desktop {

/// Every program of a private desktop carries this variable in its environment, and with it all it
/// starts; the value is the desktop's folder.
inline constexpr const char* sessionVariable = "LUMETRY_DESKTOP_SESSION";

/// One line of the system's process table.
struct ProcessEntry {
    pid_t pid = 0;
    pid_t parent = 0;
    pid_t group = 0;
    /// As in /proc/PID/stat: 'T' is stopped, 'Z' has ended and waits to be collected.
    char state = '?';
};

[[nodiscard]] std::vector<ProcessEntry> processTable();

/// All that a process has started, and what those have started in turn, as long as they have not
/// outlived who started them.
[[nodiscard]] std::set<pid_t> descendants(pid_t ancestor);

/// Whether one of them still runs; one that has ended but was not collected does not.
[[nodiscard]] bool anyRuns(const std::set<pid_t>& processes);

/// All processes of a private desktop, wherever they were reparented to: those with the desktop's
/// session variable, those in one of the process groups, and the descendants of both. (Chromium
/// overwrites its environment, so the variable alone is not enough.)
[[nodiscard]] std::vector<ProcessEntry> sessionProcesses(const std::filesystem::path& folder,
                                                         const std::set<pid_t>& groups);

/// The same less those that have ended.
[[nodiscard]] std::vector<pid_t> livingSessionProcesses(const std::filesystem::path& folder,
                                                        const std::set<pid_t>& groups = {});

} // namespace lumetry::desktop
