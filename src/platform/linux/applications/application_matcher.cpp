#include "platform/linux/applications/application_matcher.h"

#include "base/text.h"
#include "platform/linux/system/file_system.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <system_error>
#include <tuple>
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

/// The better of two entries that fit alike: one that is shown in menus, then the one that has been
/// first.
const DesktopEntry* preferred(const DesktopEntry* a, const DesktopEntry* b) {
    return a == nullptr || (b != nullptr && b->visible && !a->visible) ? b : a;
}

template<typename Fits>
const DesktopEntry* bestThat(const DesktopEntries& entries, Fits fits) {
    const DesktopEntry* best = nullptr;
    for (const DesktopEntry& entry : entries.all()) {
        if (fits(entry)) {
            best = preferred(best, &entry);
        }
    }
    return best;
}

std::string variable(const ProcessInfo& process, std::string_view name) {
    const auto found = process.environment.find(name);
    return found == process.environment.end() ? std::string() : found->second;
}

ApplicationMatch named(const std::string& id, const DesktopEntries& entries) {
    return {id, entries.find(id)};
}

/// Snap keeps each application in a group "snap.PACKAGE.APPLICATION-UUID.scope".
std::string snapId(const ProcessInfo& process, const DesktopEntries& entries) {
    constexpr std::string_view prefix = "snap.";
    const std::string& group = process.controlGroup;
    if (group.starts_with(prefix)) {
        const std::size_t dot = group.find('.', prefix.size());
        const std::size_t end = group.find_first_of(".-", dot + 1);
        if (dot != std::string::npos && end != std::string::npos) {
            // The application's name may have dashes itself; the unique part is 36 letters.
            constexpr std::size_t uniqueLength = std::string_view("-").size() + 36;
            const std::size_t last = group.rfind('.');
            const std::size_t stop = last > dot + uniqueLength && group[last - uniqueLength] == '-'
                                         ? last - uniqueLength
                                         : group.find('.', dot + 1);
            return group.substr(prefix.size(), dot - prefix.size()) + "_" +
                   group.substr(dot + 1, stop - dot - 1);
        }
    }
    const std::string package = variable(process, "SNAP_INSTANCE_NAME");
    // Another program that a snap has started keeps the variable, but does not lie in the snap.
    const std::string folder = variable(process, "SNAP");
    if (package.empty() || folder.empty() || !process.executable.string().starts_with(folder)) {
        return {};
    }
    const auto* entry = bestThat(
        entries, [&](const DesktopEntry& each) { return each.id.starts_with(package + "_"); });
    return entry != nullptr ? entry->id : package + "_" + package;
}

/// GLib tells a program which entry it was started by; what that starts in turn inherits the words.
std::string launchedId(const ProcessInfo& process, const DesktopEntries& entries) {
    const std::string file = variable(process, "GIO_LAUNCHED_DESKTOP_FILE");
    return !file.empty() &&
                   variable(process, "GIO_LAUNCHED_DESKTOP_FILE_PID") == std::to_string(process.pid)
               ? entries.idOf(file)
               : std::string();
}

/// As systemd writes what may not stand in a unit's name: "\x2d" is "-".
std::string unitNameUnescaped(std::string_view name) {
    constexpr std::string_view mark = "\\x";
    constexpr std::size_t length = 4;
    std::string result;
    while (!name.empty()) {
        unsigned char letter = 0;
        const char* digits = name.data() + mark.size();
        if (name.starts_with(mark) && name.size() >= length &&
            std::from_chars(digits, digits + 2, letter, 16).ptr == digits + 2) {
            result += static_cast<char>(letter);
            name.remove_prefix(length);
        } else {
            result += name.front();
            name.remove_prefix(1);
        }
    }
    return result;
}

/// Desktops start each application in a unit "app-LAUNCHER-ID-NUMBER.scope" or
/// "app-LAUNCHER-ID@NUMBER.service", the launcher being optional.
const DesktopEntry* entryOfUnit(const ProcessInfo& process, const DesktopEntries& entries) {
    constexpr std::string_view prefix = "app-";
    std::string_view unit = process.controlGroup;
    // A program that the application has started is in its unit, too.
    if (!unit.starts_with(prefix) || process.controlGroup == process.parentControlGroup) {
        return nullptr;
    }
    unit.remove_prefix(prefix.size());
    if (unit.ends_with(".scope")) {
        unit = unit.substr(0, unit.rfind('-'));
    } else {
        unit = unit.substr(0, unit.rfind('.'));
        unit = unit.substr(0, unit.find('@'));
    }
    const auto* whole = entries.find(unitNameUnescaped(unit));
    const std::size_t dash = unit.find('-');
    return whole != nullptr || dash == std::string_view::npos
               ? whole
               : entries.find(unitNameUnescaped(unit.substr(dash + 1)));
}

const DesktopEntry* entryOfWindowClass(const std::vector<std::string>& windowClasses,
                                       const DesktopEntries& entries) {
    const auto anyThat = [&](auto fits) {
        return bestThat(entries, [&](const DesktopEntry& entry) {
            return std::ranges::any_of(windowClasses, [&](const std::string& name) {
                return !name.empty() && fits(entry, name);
            });
        });
    };
    const auto* entry = anyThat(
        [](const DesktopEntry& each, const std::string& name) { return each.windowClass == name; });
    if (entry == nullptr) {
        entry = anyThat(
            [](const DesktopEntry& each, const std::string& name) { return each.id == name; });
    }
    if (entry == nullptr) {
        entry = anyThat([](const DesktopEntry& each, const std::string& name) {
            const std::string lower = lowerCase(name);
            return lowerCase(each.windowClass) == lower || lowerCase(each.id) == lower;
        });
    }
    return entry;
}

const DesktopEntry* entryOfProgram(const ProcessInfo& process, const DesktopEntries& entries,
                                   const SystemPlaces& places) {
    const Program running = programOfProcess(process);
    const DesktopEntry* best = nullptr;
    auto bestRank = std::tuple(ProgramMatch::none, false, false, 0L);
    for (const DesktopEntry& entry : entries.all()) {
        const auto program = programOfCommand(entry.command, places.programFolders);
        const auto match =
            program ? compareProgram(running, *program, places.programFolders) : ProgramMatch::none;
        if (match == ProgramMatch::none) {
            continue;
        }
        // One that passes other arguments than the process has is for another use of the program.
        const auto has = [&](const std::string& argument) {
            return std::ranges::find(running.arguments, argument) != running.arguments.end();
        };
        const bool fits = std::ranges::all_of(program->arguments, has);
        const auto common = static_cast<long>(program->arguments.size());
        const auto rank = std::tuple(match, fits, entry.visible, fits ? common : -common);
        if (best == nullptr || rank > bestRank) {
            best = &entry;
            bestRank = rank;
        }
    }
    return best;
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

ApplicationMatch matchApplication(const ProcessInfo& process,
                                  const std::vector<std::string>& windowClasses,
                                  const DesktopEntries& entries, const SystemPlaces& places) {
    if (!process.flatpakId.empty()) {
        return named(process.flatpakId, entries);
    }
    for (const std::string& id : {snapId(process, entries), launchedId(process, entries)}) {
        if (!id.empty()) {
            return named(id, entries);
        }
    }
    const auto* entry = entryOfUnit(process, entries);
    if (entry == nullptr) {
        entry = entryOfWindowClass(windowClasses, entries);
    }
    if (entry == nullptr) {
        entry = entryOfProgram(process, entries, places);
    }
    return entry != nullptr ? ApplicationMatch{entry->id, entry} : ApplicationMatch{};
}

} // namespace lumetry
