#include "support/real_desktop/lumetry_settings.h"
#include "support/real_desktop/shell_user.h"

#include <X11/keysym.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace lumetry::desktop {
namespace {

/// A desktop on which Lumetry has been used before, without a tray.
class Running : public testing::Test {
protected:
    Running() { markOnboarded(desktop); }

    ChildProcess startInspecting() {
        auto lumetry = user.startLumetry();
        user.waitUntilInspecting(true);
        return lumetry;
    }
    /// Starts the program a second time, which ends at once.
    void openAgain() {
        auto second = user.startLumetry();
        const auto status = second.wait();
        ASSERT_TRUE(status);
        EXPECT_EQ(status->code, 0);
        EXPECT_EQ(second.standardError(), "");
    }

    PrivateDesktop desktop;
    ShellUser user{desktop, LUMETRY_PROGRAM};
};

TEST_F(Running, OpenedAgainItShowsItsControlPanel) {
    auto lumetry = startInspecting();
    desktop.input().typeKey(XK_Escape);
    user.waitUntilInspecting(false);
    openAgain();
    user.waitFor("label", "Lumetry is running");
    EXPECT_TRUE(user.sees("label", "It lives in your menu bar. Press ⌃⇧M anywhere to measure."));
    ASSERT_TRUE(waitUntil([&] { return user.isInFront("Lumetry"); }));
    desktop.input().typeKey(XK_Return);
    user.waitUntilInspecting(true);
    user.waitUntilClosed("Lumetry");
    openAgain();
    user.clickButton("Quit Lumetry");
    const auto status = lumetry.wait();
    ASSERT_TRUE(status);
    EXPECT_EQ(status->code, 0);
}

TEST_F(Running, KeepsRunningWhenTheBusGoesAway) {
    auto lumetry = startInspecting();
    desktop.stopSessionBus();
    desktop.input().typeKey(XK_Escape);
    user.waitUntilInspecting(false);
    user.pressShortcut();
    user.waitForWindow(onboardingTitle); // nothing can be read any more
    user.close(onboardingTitle);
    user.waitUntilClosed(onboardingTitle);
    EXPECT_TRUE(lumetry.running());
}

TEST_F(Running, SaysOnceThatSettingsCannotBeKept) {
    const auto file = lumetrySettings(desktop);
    std::filesystem::remove_all(file.parent_path());
    // A file where the folder would be: that stops root, too.
    std::ofstream(file.parent_path().string()) << "";
    auto lumetry = user.startLumetry();
    user.clickButton("Start Inspecting");
    user.waitUntilInspecting(true);
    EXPECT_TRUE(lumetry.running());
    const std::string said = lumetry.standardError();
    EXPECT_EQ(std::ranges::count(said, '\n'), 1) << said;
    EXPECT_NE(said.find("settings cannot be kept"), std::string::npos) << said;
}

TEST_F(Running, FollowsATrayThatComesAndGoes) {
    auto lumetry = startInspecting();
    desktop.input().typeKey(XK_Escape);
    for (int round = 0; round < 2; ++round) {
        auto tray = desktop.start({"trayer", "--width", "120", "--widthtype", "pixel"});
        requireUntil("the icon", [&] { return user.trayIcon().has_value(); });
        user.openTrayMenu();
        desktop.input().typeKey(XK_Escape);
        EXPECT_TRUE(waitUntil([&] { return !user.menuIsOpen(); }));
        tray.signal(SIGTERM);
        ASSERT_TRUE(tray.wait());
        EXPECT_TRUE(waitUntil([&] { return !user.trayIcon(); }));
        EXPECT_TRUE(lumetry.running());
    }
    user.pressShortcut();
    user.waitUntilInspecting(true);
}

} // namespace
} // namespace lumetry::desktop
