#include "support/real_desktop/lumetry_settings.h"

#include <fstream>
#include <string>

namespace lumetry::desktop {

std::filesystem::path lumetrySettings(const PrivateDesktop& desktop) {
    return std::filesystem::path(desktop.environment().at("XDG_CONFIG_HOME")) / "lumetry" /
           "lumetry.conf";
}

void markOnboarded(const PrivateDesktop& desktop) {
    const auto file = lumetrySettings(desktop);
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << "[General]\nlumetry.onboarded=true\n";
}

bool isOnboarded(const PrivateDesktop& desktop) {
    std::ifstream file(lumetrySettings(desktop));
    for (std::string line; std::getline(file, line);) {
        if (line == "lumetry.onboarded=true") {
            return true;
        }
    }
    return false;
}

} // namespace lumetry::desktop
