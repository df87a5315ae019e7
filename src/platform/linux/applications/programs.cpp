#include "platform/linux/applications/programs.h"

#include "platform/linux/applications/desktop_entry.h"
#include "platform/linux/system/read_file.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>
#include <utility>

namespace lumetry {
namespace {

namespace fs = std::filesystem;

using Arguments = std::vector<std::string>;

/// A command wrapped in commands more often than this wraps itself.
constexpr int mostWrappings = 8;

/// Without a version: "python3.11" is "python".
std::string baseName(const fs::path& program) {
    std::string name = program.filename().string();
    name.erase(name.find_last_not_of("0123456789.-") + 1);
    return name;
}

bool isShell(const fs::path& program) {
    constexpr std::array<std::string_view, 5> shells = {"sh", "bash", "dash", "zsh", "ksh"};
    return std::ranges::find(shells, baseName(program)) != shells.end();
}

bool isInterpreter(const fs::path& program) {
    constexpr std::array<std::string_view, 10> interpreters = {
        "python", "perl", "ruby", "node", "gjs", "gjs-console", "java", "mono", "electron", "lua"};
    return isShell(program) ||
           std::ranges::find(interpreters, baseName(program)) != interpreters.end();
}

bool isScript(const fs::path& file) {
    return readFile(file, 2) == "#!";
}

fs::path withLinksFollowed(const fs::path& file) {
    std::error_code error;
    const fs::path real = fs::canonical(file, error);
    return error ? file.lexically_normal() : real;
}

std::optional<fs::path> findProgram(const std::string& name, const std::vector<fs::path>& folders) {
    if (name.find('/') != std::string::npos) {
        return access(name.c_str(), X_OK) == 0 ? std::optional(fs::path(name)) : std::nullopt;
    }
    for (const fs::path& folder : folders) {
        const fs::path file = folder / name;
        if (!name.empty() && access(file.c_str(), X_OK) == 0) {
            return file;
        }
    }
    return std::nullopt;
}

/// The command behind "env": without options and assignments.
Arguments behindEnvironment(const Arguments& command) {
    auto word = command.begin() + 1;
    while (word != command.end() &&
           (word->starts_with('-') || word->find('=') != std::string::npos)) {
        // The names that these take are no commands.
        const bool takesName = *word == "-u" || *word == "-C";
        word += takesName && word + 1 != command.end() ? 2 : 1;
    }
    return {word, command.end()};
}

/// The command that a shell gets as text: its last one, which is what the shell becomes or waits
/// for.
Arguments behindShell(const Arguments& command) {
    const auto option = std::ranges::find_if(command, [](const std::string& word) {
        return word.size() >= 2 && word.starts_with('-') && word.ends_with('c');
    });
    if (option == command.end() || option + 1 == command.end()) {
        return {};
    }
    std::string text = *(option + 1);
    const std::size_t separator = text.find_last_of(";&|");
    text.erase(0, separator == std::string::npos ? 0 : separator + 1);
    std::ranges::replace(text, '\'', '"');
    Arguments words = splitCommand(text);
    while (!words.empty() &&
           (words.front() == "exec" || words.front().find('=') != std::string::npos)) {
        words.erase(words.begin());
    }
    return words;
}

/// The file that an interpreter runs, and what it is given; absent when it runs none.
std::optional<Program> scriptOf(const Arguments& arguments, const fs::path& workingFolder) {
    for (auto word = arguments.begin(); word != arguments.end(); ++word) {
        if (*word == "-c" || *word == "-m" || *word == "-e") {
            return std::nullopt;
        }
        if (word->starts_with('-')) {
            continue;
        }
        return Program{withLinksFollowed(workingFolder / *word), {word + 1, arguments.end()}};
    }
    return std::nullopt;
}

/// Whether programs of all kinds are kept in the folder, so that being in it together means
/// nothing.
bool isShared(const fs::path& folder, const std::vector<fs::path>& programFolders) {
    return std::ranges::any_of(programFolders, [&](const fs::path& shared) {
        return withLinksFollowed(shared) == folder;
    });
}

} // namespace

std::optional<Program> programOfCommand(std::vector<std::string> command,
                                        const std::vector<fs::path>& programFolders) {
    for (int wrapping = 0; wrapping < mostWrappings && !command.empty(); ++wrapping) {
        const auto file = findProgram(command.front(), programFolders);
        if (!file) {
            return std::nullopt;
        }
        Arguments inner;
        if (file->filename() == "env") {
            inner = behindEnvironment(command);
        } else if (isShell(*file)) {
            inner = behindShell(command);
        }
        if (inner.empty()) {
            Program program{withLinksFollowed(*file), {command.begin() + 1, command.end()}};
            const auto script =
                isInterpreter(*file) ? scriptOf(program.arguments, "/") : std::nullopt;
            return script ? *script : program;
        }
        command = std::move(inner);
    }
    return std::nullopt;
}

Program programOfProcess(const ProcessInfo& process) {
    Program program{process.executable, {}};
    if (process.arguments.size() > 1) {
        program.arguments.assign(process.arguments.begin() + 1, process.arguments.end());
    }
    const auto script = isInterpreter(process.executable)
                            ? scriptOf(program.arguments, process.workingFolder)
                            : std::nullopt;
    return script ? *script : program;
}

ProgramMatch compareProgram(const Program& process, const Program& command,
                            const std::vector<fs::path>& programFolders) {
    if (process.file.empty()) {
        return ProgramMatch::none;
    }
    if (process.file == command.file) {
        return ProgramMatch::same;
    }
    if (!isScript(command.file)) {
        return ProgramMatch::none;
    }
    const fs::path folder = command.file.parent_path();
    if (folder == process.file.parent_path() && !isShared(folder, programFolders)) {
        return ProgramMatch::wrapped;
    }
    return command.file.stem() == process.file.stem() ? ProgramMatch::sameName : ProgramMatch::none;
}

} // namespace lumetry
