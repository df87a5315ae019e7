#include "rig/lumetry_settings.h"

#include <fstream>
#include <string>

namespace lumetry::desktop {
namespace {

void addSetting(const DesktopSession& desktop, const std::string& line) {
    const auto file = lumetrySettings(desktop);
    std::filesystem::create_directories(file.parent_path());
    const bool begun = std::filesystem::exists(file);
    std::ofstream(file, std::ios::app) << (begun ? "" : "[General]\n") << line << '\n';
}

} // namespace

std::filesystem::path lumetrySettings(const DesktopSession& desktop) {
    return std::filesystem::path(desktop.environment().at("XDG_CONFIG_HOME")) / "lumetry" /
           "lumetry.conf";
}

void markOnboarded(const DesktopSession& desktop) {
    addSetting(desktop, "lumetry.onboarded=true");
}

void switchOnDetectLog(const DesktopSession& desktop) {
    addSetting(desktop, "lumetry.debug=true");
}

bool isOnboarded(const DesktopSession& desktop) {
    std::ifstream file(lumetrySettings(desktop));
    for (std::string line; std::getline(file, line);) {
        if (line == "lumetry.onboarded=true") {
            return true;
        }
    }
    return false;
}

} // namespace lumetry::desktop
