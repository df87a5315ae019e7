#pragma once

#include "platform/linux/system/process_info.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace lumetry {

/// What a command runs in the end.
struct Program {
    std::filesystem::path file;         ///< with all links followed
    std::vector<std::string> arguments; ///< without the program's own name
};

/// What the command of a desktop entry runs: without "env" and its assignments, the command of a
/// shell's "-c", the script of an interpreter. Absent where the program is not installed.
/// @param programFolders where programs are looked for by their names
[[nodiscard]] std::optional<Program>
programOfCommand(std::vector<std::string> command,
                 const std::vector<std::filesystem::path>& programFolders);

/// What a process runs: its executable, or the script that its interpreter runs.
[[nodiscard]] Program programOfProcess(const ProcessInfo& process);

/// How surely a process that runs the one was started by the other.
enum class ProgramMatch {
    none,
    sameName, ///< a script and a program of the same name
    wrapped,  ///< a script in the folder that the program has to itself
    same,
};
[[nodiscard]] ProgramMatch compareProgram(const Program& process, const Program& command,
                                          const std::vector<std::filesystem::path>& programFolders);

} // namespace lumetry
