#pragma once

#include "platform/linux/applications/desktop_entries.h"
#include "platform/linux/system/environment.h"
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

/// Which application a process is.
struct ApplicationMatch {
    std::string id;                      ///< of a desktop entry; empty when nothing tells
    const DesktopEntry* entry = nullptr; ///< null where none of that id is installed
};

/// By what surely names it first, and by what is like it last.
/// @param windowClasses what its windows call it
[[nodiscard]] ApplicationMatch matchApplication(const ProcessInfo& process,
                                                const std::vector<std::string>& windowClasses,
                                                const DesktopEntries& entries,
                                                const SystemPlaces& places);

} // namespace lumetry
