// Ends a private desktop: waits until its owner closes it or is gone, then ends every process of
// the desktop and removes its folder. A process of its own, so that this happens even when the
// owner was killed.
//
//   lumetry_desktop_guard FOLDER
//
// Standard input gives one process group of the desktop a line; its end, which comes with the
// owner's however that ends, is the sign to begin.

#include "rig/processes/process_table.h"
#include "rig/processes/wait_until.h"

#include <sys/types.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <initializer_list>
#include <iostream>
#include <set>
#include <string>

namespace {

using namespace lumetry::desktop;

std::set<pid_t> groupsUntilEnd() {
    std::set<pid_t> groups;
    for (std::string line; std::getline(std::cin, line);) {
        groups.insert(std::stoi(line));
    }
    return groups;
}

bool signalAll(const std::filesystem::path& folder, const std::set<pid_t>& groups,
               std::initializer_list<int> signals) {
    const auto living = livingSessionProcesses(folder, groups);
    for (const auto pid : living) {
        for (const int number : signals) {
            kill(pid, number);
        }
    }
    return !living.empty();
}

void endAll(const std::filesystem::path& folder, const std::set<pid_t>& groups) {
    // A stopped process acts upon SIGTERM only when it goes on.
    signalAll(folder, groups, {SIGTERM, SIGCONT});
    const bool ended = waitUntil([&] { return livingSessionProcesses(folder, groups).empty(); },
                                 std::chrono::seconds(3));
    if (!ended) {
        // Again and again: a process may have started another since the table was read.
        [[maybe_unused]] const bool killed =
            waitUntil([&] { return !signalAll(folder, groups, {SIGKILL}); });
    }
}

} // namespace

int main(int argc, char** argv) {
    const std::filesystem::path folder = argc == 2 ? argv[1] : "";
    if (!folder.is_absolute() || !folder.filename().string().starts_with("lumetry-desktop-")) {
        std::cerr << "usage: lumetry_desktop_guard FOLDER\n";
        return 2;
    }
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        std::signal(number, SIG_IGN);
    }
    endAll(folder, groupsUntilEnd());
    const bool removed = waitUntil(
        [&] {
            std::error_code error;
            std::filesystem::remove_all(folder, error);
            return !std::filesystem::exists(folder);
        },
        std::chrono::seconds(5));
    return removed ? 0 : 1;
}
