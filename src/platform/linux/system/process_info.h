#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace lumetry {

/// When a process started, in ticks since the machine did: together with its number this stands for
/// one process for ever. Absent when there is no such process, or it has ended.
[[nodiscard]] std::optional<std::uint64_t> processStart(const std::filesystem::path& processes,
                                                        pid_t pid);

/// What a process calls itself, cut after 15 letters; empty when that cannot be read.
[[nodiscard]] std::string shortNameOf(const std::filesystem::path& processes, pid_t pid);
/// The last part of the path of a process's control group; empty when it is in none.
[[nodiscard]] std::string controlGroupOf(const std::filesystem::path& processes, pid_t pid);

/// What the system tells of a process. What may not be read stays empty.
struct ProcessInfo {
    pid_t pid = 0;
    std::string shortName; ///< what it calls itself, cut after 15 letters
    /// Of its executable as the process itself sees it, which in a container is not this system's.
    std::filesystem::path executable;
    /// Where this program finds the executable's folder.
    std::filesystem::path executableFolder;
    std::filesystem::path workingFolder;
    std::vector<std::string> arguments; ///< the program's name first
    std::map<std::string, std::string, std::less<>> environment;
    std::string controlGroup;       ///< the last part of its path
    std::string parentControlGroup; ///< the same of its parent
    std::string flatpakId;
};

/// @param processes the folder of the system's processes
[[nodiscard]] ProcessInfo readProcess(const std::filesystem::path& processes, pid_t pid);

} // namespace lumetry
