#include "platform/linux/system/process_info.h"

#include "base/text.h"
#include "platform/linux/system/file_system.h"

#include <charconv>
#include <string_view>
#include <system_error>

namespace lumetry {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t mostBytes = 1 << 20;

fs::path folderOf(const fs::path& processes, pid_t pid) {
    return processes / std::to_string(pid);
}

fs::path link(const fs::path& file) {
    constexpr std::string_view deletedMark = " (deleted)";
    std::error_code error;
    std::string target = fs::read_symlink(file, error).string();
    if (target.ends_with(deletedMark)) {
        target.resize(target.size() - deletedMark.size());
    }
    return error ? fs::path() : fs::path(target);
}

std::string fileText(const fs::path& file) {
    return readFile(file, mostBytes).value_or("");
}

/// The fields of a process's line behind its name, which may hold blanks and parentheses itself.
std::vector<std::string> statFields(const fs::path& processes, pid_t pid) {
    const std::string line = fileText(folderOf(processes, pid) / "stat");
    const std::size_t nameEnd = line.rfind(") ");
    return nameEnd == std::string::npos ? std::vector<std::string>()
                                        : split(line.substr(nameEnd + 2), ' ');
}

template<typename Number>
std::optional<Number> numberIn(const std::vector<std::string>& fields, std::size_t place) {
    Number number = 0;
    if (place >= fields.size()) {
        return std::nullopt;
    }
    const std::string& text = fields[place];
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc() ? std::optional(number) : std::nullopt;
}

/// The name that Flatpak gave the application; from the file that it puts into every sandbox.
std::string flatpakIdOf(const fs::path& root) {
    bool inApplication = false;
    for (const std::string& line : split(fileText(root / ".flatpak-info"), '\n')) {
        constexpr std::string_view key = "name=";
        if (line.starts_with('[')) {
            inApplication = line == "[Application]";
        } else if (inApplication && line.starts_with(key)) {
            return line.substr(key.size());
        }
    }
    return {};
}

/// Where this program finds a folder of the process: directly, or through the process's own root.
fs::path reachable(const fs::path& folder, const fs::path& root, bool inContainer) {
    std::error_code error;
    if (folder.empty() || (!inContainer && fs::exists(folder, error))) {
        return folder;
    }
    const fs::path inside = root / folder.relative_path();
    return fs::exists(inside, error) ? inside : folder;
}

} // namespace

std::string shortNameOf(const fs::path& processes, pid_t pid) {
    std::string name = fileText(folderOf(processes, pid) / "comm");
    name.erase(name.find_last_not_of('\n') + 1);
    return name;
}

std::string controlGroupOf(const fs::path& processes, pid_t pid) {
    // A line of the old hierarchies ends with the same path as that of the unified one, or with
    // "/".
    for (const std::string& line : split(fileText(folderOf(processes, pid) / "cgroup"), '\n')) {
        const std::size_t slash = line.rfind('/');
        if (slash != std::string::npos && slash + 1 < line.size()) {
            return line.substr(slash + 1);
        }
    }
    return {};
}

std::optional<std::uint64_t> processStart(const fs::path& processes, pid_t pid) {
    constexpr std::size_t state = 0;
    constexpr std::size_t startTime = 19;
    const auto fields = statFields(processes, pid);
    if (fields.empty() || fields[state] == "Z" || fields[state] == "X") {
        return std::nullopt;
    }
    return numberIn<std::uint64_t>(fields, startTime);
}

ProcessInfo readProcess(const fs::path& processes, pid_t pid) {
    constexpr std::size_t parent = 1;
    const fs::path folder = folderOf(processes, pid);
    ProcessInfo process;
    process.pid = pid;
    process.shortName = shortNameOf(processes, pid);
    process.executable = link(folder / "exe");
    process.workingFolder = link(folder / "cwd");
    process.arguments = split(fileText(folder / "cmdline"), '\0');
    for (const std::string& assignment : split(fileText(folder / "environ"), '\0')) {
        const std::size_t equals = assignment.find('=');
        if (equals != std::string::npos) {
            process.environment.emplace(assignment.substr(0, equals),
                                        assignment.substr(equals + 1));
        }
    }
    process.controlGroup = controlGroupOf(processes, pid);
    if (const auto parentPid = numberIn<pid_t>(statFields(processes, pid), parent)) {
        process.parentControlGroup = controlGroupOf(processes, *parentPid);
    }
    process.flatpakId = flatpakIdOf(folder / "root");
    process.executableFolder =
        reachable(process.executable.parent_path(), folder / "root", !process.flatpakId.empty());
    return process;
}

} // namespace lumetry
