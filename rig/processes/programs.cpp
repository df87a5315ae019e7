#include "rig/processes/programs.h"

#include <unistd.h>

#include <cstdlib>
#include <map>
#include <sstream>
#include <stdexcept>

namespace lumetry::desktop {
namespace {

bool isExecutableFile(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
}

std::string debianPackageOf(const std::string& program) {
    static const std::map<std::string, std::string> packages = {
        {"/usr/libexec/at-spi-bus-launcher", "at-spi2-core"},
        {"Xvfb", "xvfb"},
        {"chromium", "chromium"},
        {"dbus-daemon", "dbus-daemon"},
        {"firefox-esr", "firefox-esr"},
        {"gtk3-widget-factory", "gtk-3-examples"},
        {"openbox", "openbox"},
        {"kwin_wayland", "kwin-wayland"},
        {"picom", "picom"},
    };
    const auto found = packages.find(program);
    return found == packages.end() ? std::string() : found->second;
}

} // namespace

std::optional<std::filesystem::path> findProgram(const std::string& name) {
    if (name.find('/') != std::string::npos) {
        return isExecutableFile(name) ? std::optional<std::filesystem::path>(name) : std::nullopt;
    }
    const char* path = std::getenv("PATH");
    std::istringstream folders(path ? path : "/usr/bin:/bin");
    for (std::string folder; std::getline(folders, folder, ':');) {
        auto candidate = std::filesystem::path(folder) / name;
        if (isExecutableFile(candidate)) {
            return candidate;
        }
    }
    return std::nullopt;
}

std::filesystem::path requireProgram(const std::string& name) {
    if (auto found = findProgram(name)) {
        return *found;
    }
    const auto package = debianPackageOf(name);
    throw std::runtime_error(
        name + " is not installed" +
        (package.empty() ? std::string() : "; it comes with the Debian package " + package));
}

} // namespace lumetry::desktop
