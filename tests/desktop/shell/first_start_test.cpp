#include "rig/lumetry_settings.h"
#include "rig/shell_user.h"

#include <X11/keysym.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace lumetry::desktop {
namespace {

DesktopOptions newDesktop() {
    DesktopOptions options;
    options.accessibility = AccessibilityBus::disabled;
    return options;
}

/// A new user's desktop, with a tray.
class FirstStart : public testing::Test {
protected:
    InputDevice& input() { return desktop.input(); }
    /// What the user chooses in the tray's menu, by the keyboard, from its end.
    void quitFromTray() {
        user.openTrayMenu();
        input().typeKey(XK_Up);
        input().typeKey(XK_Return);
    }

    PrivateDesktop desktop{newDesktop()};
    ChildProcess tray =
        desktop.start({"trayer", "--align", "right", "--width", "120", "--widthtype", "pixel",
                       "--transparent", "true", "--alpha", "0"});
    ShellUser user{desktop, LUMETRY_PROGRAM};
};

TEST_F(FirstStart, LeadsFromNothingToInspecting) {
    const auto settings = desktop.folder() / "systemsettings";
    std::ofstream(settings) << "#!/bin/sh\nenv > $HOME/env && mv $HOME/env $HOME/found\n";
    std::filesystem::permissions(settings, std::filesystem::perms::owner_all);
    auto lumetry = user.startLumetry(
        {{"XDG_CURRENT_DESKTOP", "KDE"}, {"PATH", desktop.folder().string() + ":/usr/bin:/bin"}});
    user.waitForWindow(onboardingTitle);
    EXPECT_TRUE(waitUntil([&] { return user.isInFront(onboardingTitle); }));
    // A dock knows by its class which application a window belongs to.
    std::ifstream entry(LUMETRY_DESKTOP_ENTRY);
    const std::string keys{std::istreambuf_iterator<char>(entry), {}};
    const std::string className = user.window(onboardingTitle)->className;
    EXPECT_NE(keys.find("\nStartupWMClass=" + className + "\n"), std::string::npos) << className;
    // Closed half way it lives on in the tray, and begins anew.
    requireUntil("the tray", [&] {
        return desktop.server().selectionOwner("_NET_SYSTEM_TRAY_S0") != XCB_NONE;
    });
    user.close(onboardingTitle);
    user.waitUntilClosed(onboardingTitle);
    user.pressShortcut();
    user.clickButton("Get Started");
    const auto grant = user.waitFor("push button", "Grant Accessibility");
    // Nothing can be captured but what the X server lets be read: that is granted from the start.
    EXPECT_TRUE(user.sees("label", "Granted ✓"));
    user.click(grant);
    EXPECT_TRUE(waitUntil([&] { return desktop.accessibilityEnabled(); }));
    // The desktop's settings, which find no more than Lumetry was started with.
    requireUntil("the settings", [&] { return std::filesystem::exists(desktop.home() / "found"); });
    std::ostringstream found;
    found << std::ifstream(desktop.home() / "found").rdbuf();
    EXPECT_NE(found.str().find("XDG_CURRENT_DESKTOP=KDE\n"), std::string::npos);
    EXPECT_EQ(found.str().find("QT_XCB_GL_INTEGRATION"), std::string::npos);
    user.waitFor("push button", "Continue");
    EXPECT_TRUE(waitUntil([&] { return user.isInFront(onboardingTitle); }));

    user.clickButton("Continue");
    user.waitFor("label", "waiting for your keys…");
    input().pressKey(XK_Control_L);
    user.waitFor("label", "⌃ down — add ⇧ and M");
    input().releaseKey(XK_Control_L);
    user.waitFor("label", "waiting for your keys…");
    EXPECT_FALSE(isOnboarded(desktop));
    user.pressShortcut();
    user.waitUntilInspecting(true);
    user.waitUntilClosed(onboardingTitle);
    EXPECT_TRUE(isOnboarded(desktop));
    input().typeKey(XK_Escape);
    user.waitUntilInspecting(false);
    user.pressShortcut();
    user.waitUntilInspecting(true);
    quitFromTray();
    const auto status = lumetry.wait();
    EXPECT_TRUE(status && status->code == 0);
    EXPECT_EQ(lumetry.standardError(), "");
}

} // namespace
} // namespace lumetry::desktop
