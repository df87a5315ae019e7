#include "platform/linux/system/settings_panes.h"

#include "base/text.h"

#include <algorithm>
#include <array>

namespace lumetry {
namespace {

constexpr std::string_view settingsScheme = "x-apple.systempreferences:";
constexpr std::string_view accessibilityAnchor = "?Privacy_Accessibility";

struct Pane {
    std::string_view desktop; ///< a word of $XDG_CURRENT_DESKTOP
    std::string_view program;
    std::string_view argument; ///< may be empty
};

/// Where desktops have their accessibility settings. X11 has no permission to read the screen, and
/// so no settings for it.
constexpr std::array accessibilityPanes = {
    Pane{"GNOME", "gnome-control-center", "universal-access"},
    Pane{"KDE", "systemsettings", "kcm_access"},
    Pane{"KDE", "systemsettings5", "kcm_access"},
    Pane{"XFCE", "xfce4-accessibility-settings", ""},
    Pane{"X-Cinnamon", "cinnamon-settings", "universal-access"},
    Pane{"MATE", "mate-at-properties", ""},
};

} // namespace

std::vector<std::string>
settingsPaneCommand(std::string_view address, std::string_view desktops,
                    const std::function<bool(const std::string&)>& isInstalled) {
    if (!address.starts_with(settingsScheme) || !address.ends_with(accessibilityAnchor)) {
        return {};
    }
    const auto names = split(desktops, ':');
    for (const auto& [desktop, program, argument] : accessibilityPanes) {
        if (std::ranges::find(names, desktop) != names.end() && isInstalled(std::string(program))) {
            std::vector<std::string> command = {std::string(program)};
            if (!argument.empty()) {
                command.emplace_back(argument);
            }
            return command;
        }
    }
    return {};
}

} // namespace lumetry
