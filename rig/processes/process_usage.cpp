#include "rig/processes/process_usage.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace lumetry::desktop {

Usage usageOf(pid_t pid) {
    const auto folder = std::filesystem::path("/proc") / std::to_string(pid);
    Usage usage;
    std::string stat;
    std::getline(std::ifstream(folder / "stat"), stat);
    std::istringstream fields(stat.substr(stat.rfind(')') + 2));
    std::string skipped;
    for (int field = 3; field < 14; ++field) {
        fields >> skipped;
    }
    long user = 0;
    long system = 0;
    fields >> user >> system;
    usage.ticks = user + system;
    std::ifstream status(folder / "status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("voluntary_ctxt_switches:")) {
            usage.switches = std::stol(line.substr(line.find(':') + 1));
        }
    }
    return usage;
}

} // namespace lumetry::desktop
