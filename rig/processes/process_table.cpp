#include "rig/processes/process_table.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>

namespace lumetry::desktop {
namespace {

std::string contents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::optional<pid_t> pidOf(const std::filesystem::path& folder) {
    const auto name = folder.filename().string();
    pid_t pid = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), pid);
    if (error != std::errc() || end != name.data() + name.size()) {
        return std::nullopt;
    }
    return pid;
}

std::optional<ProcessEntry> entryOf(const std::filesystem::path& folder) {
    const auto pid = pidOf(folder);
    if (!pid) {
        return std::nullopt;
    }
    const auto stat = contents(folder / "stat");
    // The program's name stands in brackets and may hold anything, brackets included.
    const auto nameEnd = stat.rfind(')');
    if (nameEnd == std::string::npos) {
        return std::nullopt;
    }
    ProcessEntry entry;
    entry.pid = *pid;
    std::istringstream fields(stat.substr(nameEnd + 1));
    fields >> entry.state >> entry.parent >> entry.group;
    return fields ? std::optional(entry) : std::nullopt;
}

bool carriesSessionVariable(pid_t pid, const std::filesystem::path& folder) {
    const auto environment = '\0' + contents("/proc/" + std::to_string(pid) + "/environ") + '\0';
    const auto wanted = '\0' + (sessionVariable + ("=" + folder.string())) + '\0';
    return environment.find(wanted) != std::string::npos;
}

void addDescendants(const std::vector<ProcessEntry>& table, std::set<pid_t>& family) {
    for (bool grown = true; grown;) {
        grown = false;
        for (const auto& entry : table) {
            grown |= family.contains(entry.parent) && family.insert(entry.pid).second;
        }
    }
}

} // namespace

std::vector<ProcessEntry> processTable() {
    std::vector<ProcessEntry> table;
    std::error_code error;
    for (const auto& folder : std::filesystem::directory_iterator("/proc", error)) {
        if (const auto entry = entryOf(folder.path())) {
            table.push_back(*entry);
        }
    }
    return table;
}

std::set<pid_t> descendants(pid_t ancestor) {
    std::set<pid_t> family = {ancestor};
    addDescendants(processTable(), family);
    family.erase(ancestor);
    return family;
}

bool anyRuns(const std::set<pid_t>& processes) {
    return std::ranges::any_of(processTable(), [&](const ProcessEntry& entry) {
        return processes.contains(entry.pid) && entry.state != 'Z';
    });
}

std::vector<ProcessEntry> sessionProcesses(const std::filesystem::path& folder,
                                           const std::set<pid_t>& groups) {
    const auto table = processTable();
    std::set<pid_t> members;
    for (const auto& entry : table) {
        if (groups.contains(entry.group) || carriesSessionVariable(entry.pid, folder)) {
            members.insert(entry.pid);
        }
    }
    addDescendants(table, members);
    std::vector<ProcessEntry> found;
    std::ranges::copy_if(table, std::back_inserter(found),
                         [&](const auto& entry) { return members.contains(entry.pid); });
    return found;
}

std::vector<pid_t> livingSessionProcesses(const std::filesystem::path& folder,
                                          const std::set<pid_t>& groups) {
    std::vector<pid_t> living;
    for (const auto& entry : sessionProcesses(folder, groups)) {
        if (entry.state != 'Z') {
            living.push_back(entry.pid);
        }
    }
    return living;
}

} // namespace lumetry::desktop
