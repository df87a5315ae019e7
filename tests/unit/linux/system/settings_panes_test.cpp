#include "platform/linux/system/settings_panes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace lumetry {
namespace {

TEST(SettingsPanes, AreWhatTheDesktopHasForTheAddress) {
    const std::string accessibility =
        "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";
    struct Case {
        std::string address;
        std::string desktops;
        std::vector<std::string> installed;
        std::vector<std::string> command;
    };
    const std::vector<Case> cases = {
        {accessibility,
         "ubuntu:GNOME",
         {"gnome-control-center"},
         {"gnome-control-center", "universal-access"}},
        {accessibility, "GNOME", {"systemsettings"}, {}},
        {accessibility, "KDE", {"systemsettings5"}, {"systemsettings5", "kcm_access"}},
        {accessibility,
         "KDE",
         {"systemsettings5", "systemsettings"},
         {"systemsettings", "kcm_access"}},
        {accessibility, "XFCE", {"xfce4-accessibility-settings"}, {"xfce4-accessibility-settings"}},
        {accessibility,
         "X-Cinnamon",
         {"cinnamon-settings"},
         {"cinnamon-settings", "universal-access"}},
        {accessibility, "MATE", {"mate-at-properties"}, {"mate-at-properties"}},
        {accessibility, "GNOME-Classic", {"gnome-control-center"}, {}},
        {accessibility, "", {"gnome-control-center"}, {}},
        {"x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture",
         "GNOME",
         {"gnome-control-center"},
         {}},
        {"https://lumetry.app?Privacy_Accessibility", "GNOME", {"gnome-control-center"}, {}},
    };
    for (const Case& each : cases) {
        const auto isInstalled = [&each](const std::string& program) {
            return std::ranges::find(each.installed, program) != each.installed.end();
        };
        EXPECT_EQ(settingsPaneCommand(each.address, each.desktops, isInstalled), each.command)
            << each.address << " on " << each.desktops;
    }
}

} // namespace
} // namespace lumetry
