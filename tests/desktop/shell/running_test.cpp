#include "rig/bus.h"
#include "rig/lumetry_settings.h"
#include "rig/shell_user.h"

#include <X11/keysym.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace lumetry::desktop {
namespace {

/// A desktop on which Lumetry has been used before, without a tray.
class Running : public testing::Test {
protected:
    Running() { markOnboarded(desktop); }

    ChildProcess startInspecting(const Environment& variables = {}) {
        auto lumetry = user.startLumetry(variables);
        user.waitUntilInspecting(true);
        return lumetry;
    }
    /// Starts the program a second time, which ends at once.
    /// @param arguments which it does not read
    /// @return what it has said
    std::string openAgain(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.begin(), LUMETRY_PROGRAM);
        auto second = desktop.start(arguments);
        const auto status = second.wait();
        EXPECT_TRUE(status && status->code == 0);
        return second.standardError();
    }

    PrivateDesktop desktop;
    ShellUser user{desktop, LUMETRY_PROGRAM};
};

TEST_F(Running, OpenedAgainItShowsItsControlPanel) {
    // What a terminal that the bus has started leaves to whatever is started in it.
    auto lumetry = startInspecting({{"DBUS_STARTER_ADDRESS", desktop.sessionBusAddress()}});
    desktop.input().typeKey(XK_Escape);
    user.waitUntilInspecting(false);
    EXPECT_EQ(openAgain(), "");
    user.waitFor("label", "Lumetry is running");
    EXPECT_TRUE(user.sees("label", "It lives in your menu bar. Press ⌃⇧M anywhere to measure."));
    ASSERT_TRUE(waitUntil([&] { return user.isInFront("Lumetry"); }));
    desktop.input().typeKey(XK_Return);
    user.waitUntilInspecting(true);
    user.waitUntilClosed("Lumetry");
    EXPECT_NE(openAgain({"--help"}).find("man lumetry"), std::string::npos);
    user.clickButton("Quit Lumetry");
    const auto status = lumetry.wait();
    ASSERT_TRUE(status);
    EXPECT_EQ(status->code, 0);
}

TEST_F(Running, StartedByTheBusItOnlyInspects) {
    std::filesystem::create_directory(desktop.folder() / "services");
    // Not every bus says in the environment that it has started a program.
    std::ofstream(desktop.folder() / "services/lumetry.service")
        << "[D-BUS Service]\nName=app.lumetry.Lumetry\nExec=/usr/bin/env -u DBUS_STARTER_ADDRESS "
           "QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 DISPLAY="
        << desktop.display() << " " LUMETRY_PROGRAM "\n";
    const auto bus = connectToBus(desktop.sessionBusAddress());
    const BusObject busItself{"org.freedesktop.DBus", "/org/freedesktop/DBus"};
    ASSERT_TRUE(call(*bus, busItself, busItself.name.c_str(), "ReloadConfig"));
    const auto activate = [&] {
        return call(*bus, {"app.lumetry.Lumetry", "/app/lumetry/Lumetry"},
                    "org.freedesktop.Application", "Activate", g_variant_new("(a{sv})", nullptr));
    };
    ASSERT_TRUE(activate());
    user.waitUntilInspecting(true);
    EXPECT_FALSE(user.window("Lumetry"));
    ASSERT_TRUE(activate());
    user.waitForWindow("Lumetry");
}

TEST_F(Running, SaysHowToEndOneThatDoesNotAnswer) {
    auto lumetry = startInspecting();
    lumetry.stop();
    auto second = user.startLumetry();
    const auto status = second.wait();
    EXPECT_TRUE(status && status->code == 1);
    EXPECT_NE(second.standardError().find("\"kill -KILL " + std::to_string(lumetry.pid()) + '"'),
              std::string::npos)
        << second.standardError();
}

TEST_F(Running, KeepsRunningWhenTheBusGoesAwayUntilItsLastWindowIsClosed) {
    auto lumetry = startInspecting();
    desktop.stopSessionBus();
    desktop.input().typeKey(XK_Escape);
    user.waitUntilInspecting(false);
    user.pressShortcut();
    user.waitForWindow(onboardingTitle); // nothing can be read any more
    EXPECT_TRUE(lumetry.running());
    // With no tray there is nothing left to quit it by.
    user.close(onboardingTitle);
    const auto status = lumetry.wait();
    EXPECT_TRUE(status && status->code == 0);
    EXPECT_NE(lumetry.standardError().find("no tray"), std::string::npos);
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

TEST_F(Running, FollowsATrayThatComesAndGoesAndDoesWhatItsMenuSays) {
    auto lumetry = startInspecting();
    const auto choose = [&](const std::vector<xcb_keysym_t>& keys) {
        user.openTrayMenu();
        for (const xcb_keysym_t key : keys) {
            desktop.input().typeKey(key);
        }
        EXPECT_TRUE(waitUntil([&] { return !user.menuIsOpen(); }));
    };
    for (int round = 0; round < 2; ++round) {
        auto tray = desktop.start({"trayer", "--width", "120", "--widthtype", "pixel"});
        requireUntil("the icon", [&] { return user.trayIcon().has_value(); });
        choose({XK_Down, XK_Return}); // Toggle Inspect
        user.waitUntilInspecting(round != 0);
        if (round == 0) {
            tray.signal(SIGTERM);
            ASSERT_TRUE(tray.wait());
            EXPECT_TRUE(waitUntil([&] { return !user.trayIcon(); }));
            EXPECT_TRUE(lumetry.running());
        } else {
            choose({XK_Up, XK_Return}); // Quit Lumetry
            const auto status = lumetry.wait();
            EXPECT_TRUE(status && status->code == 0);
        }
    }
}

TEST_F(Running, EndsWithTheXServerAndSaysSo) {
    auto lumetry = startInspecting();
    desktop.stopServer();
    const auto status = lumetry.wait();
    ASSERT_TRUE(status);
    EXPECT_FALSE(status->signal) << *status->signal;
    EXPECT_EQ(status->code, 1);
    const std::string said = lumetry.standardError();
    // Qt has its own words for it where it notices first.
    EXPECT_TRUE(said.find("X server") != std::string::npos ||
                said.find("X11 server") != std::string::npos)
        << said;
}

} // namespace
} // namespace lumetry::desktop
