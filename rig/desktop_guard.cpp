#include "rig/desktop_guard.h"

#include "rig/processes/process_table.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

namespace lumetry::desktop {
namespace {

std::filesystem::path makeFolder() {
    // Not below a long TMPDIR: the path of a socket in it must fit into 107 bytes.
    std::string path = "/tmp/lumetry-desktop-XXXXXX";
    if (!mkdtemp(path.data())) {
        throw std::system_error(errno, std::generic_category(), "mkdtemp " + path);
    }
    return path;
}

ProcessOptions guardOptions(const Pipe& orders) {
    ProcessOptions options;
    options.standardInput = orders.readEnd.get();
    options.deathSignal = 0;
    // A desktop within a desktop must not take the guard along when the outer one ends.
    options.environment.erase(sessionVariable);
    return options;
}

} // namespace

DesktopGuard::DesktopGuard()
    : folder_(makeFolder()), orders_(makePipe()),
      process_({LUMETRY_DESKTOP_GUARD, folder_.string()}, guardOptions(orders_)) {
    orders_.readEnd.reset();
}

DesktopGuard::~DesktopGuard() {
    endDesktop();
}

void DesktopGuard::endDesktop() {
    orders_.writeEnd.reset();
    [[maybe_unused]] const auto status = process_.wait();
}

void DesktopGuard::watch(pid_t group) const {
    const auto line = std::to_string(group) + "\n";
    if (write(orders_.writeEnd.get(), line.data(), line.size()) < 0) {
        throw std::system_error(errno, std::generic_category(), "telling the desktop's guard");
    }
}

} // namespace lumetry::desktop
