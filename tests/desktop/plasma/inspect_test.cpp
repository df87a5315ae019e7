#include "rig/browser_files.h"
#include "rig/kwin_desktop.h"
#include "rig/lumetry_settings.h"
#include "rig/processes/wait_until.h"

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <csignal>
#include <string>

namespace lumetry::desktop {
namespace {

constexpr const char* page = R"(<!doctype html><title>Places</title>
<style>body { margin: 0; background: #ffffff } button { position: absolute; left: 100px; top: 80px;
width: 160px; height: 44px; border: 0; background: #14532d; color: #ffffff; font: 16px sans-serif }
</style><button>Save</button>)";

/// The accent over whatever is below, at the strength of an outline.
bool isAccent(std::uint32_t pixel) {
    constexpr int leastPinkness = 80;
    const auto red = static_cast<int>((pixel >> 16U) & 0xFFU);
    const auto green = static_cast<int>((pixel >> 8U) & 0xFFU);
    return red - green >= leastPinkness;
}

bool showsOutlineOfButton(const KwinDesktop& desktop) {
    const Bitmap screen = desktop.screenshot();
    return isAccent(screen.at(100, 91)) && isAccent(screen.at(259, 91)) &&
           isAccent(screen.at(140, 80)) && isAccent(screen.at(140, 123));
}

/// Whether a process's script runs in KWin.
bool scriptRuns(const KwinDesktop& desktop, pid_t process) {
    ProcessOptions options;
    options.environment = desktop.environment();
    const auto answer = runProgram(
        {"dbus-send", "--session", "--print-reply", "--dest=org.kde.KWin", "/Scripting",
         "org.kde.kwin.Scripting.isScriptLoaded", "string:lumetry-" + std::to_string(process)},
        options);
    return answer.output.find("boolean true") != std::string::npos;
}

TEST(PlasmaInspect, OutlinesWhatThePointerIsOverUntilEscape) {
    if (const auto problem = KwinDesktop::problem()) {
        GTEST_SKIP() << *problem;
    }
    KwinDesktop desktop;
    desktop.permit(LUMETRY_PROGRAM);
    markOnboarded(desktop);
    const std::string profile = makeProfileFolder(desktop, "chromium").string();
    const auto browser =
        desktop.start({"chromium", "--no-sandbox", "--ozone-platform=wayland", "--no-first-run",
                       "--test-type", "--user-data-dir=" + profile, "--kiosk",
                       "--app=file://" + writePage(desktop, page).string()});
    auto lumetry = desktop.start({LUMETRY_PROGRAM});
    requireUntil("an outline", [&] {
        desktop.input().movePointer({600, 400});
        desktop.input().glidePointer({180, 102});
        return !lumetry.running() || showsOutlineOfButton(desktop);
    });
    ASSERT_TRUE(lumetry.running()) << lumetry.standardError();
    desktop.input().typeKey(KEY_ESC);
    requireUntil("the outline to go", [&] { return !showsOutlineOfButton(desktop); });
    desktop.input().pressKey(KEY_LEFTCTRL);
    desktop.input().pressKey(KEY_LEFTSHIFT);
    desktop.input().typeKey(KEY_M);
    desktop.input().releaseKey(KEY_LEFTSHIFT);
    desktop.input().releaseKey(KEY_LEFTCTRL);
    requireUntil("inspect mode to come back", [&] {
        desktop.input().movePointer({600, 400});
        desktop.input().glidePointer({180, 102});
        return showsOutlineOfButton(desktop);
    });
    EXPECT_TRUE(lumetry.running()) << lumetry.standardError();
    // Killed, it leaves its script behind, which the next start takes away.
    const pid_t killed = lumetry.pid();
    lumetry.signal(SIGKILL);
    ASSERT_TRUE(lumetry.wait());
    EXPECT_TRUE(scriptRuns(desktop, killed));
    requireUntil("the overlay to go", [&] { return !showsOutlineOfButton(desktop); });
    lumetry = desktop.start({LUMETRY_PROGRAM});
    requireUntil("an outline", [&] {
        desktop.input().movePointer({600, 400});
        desktop.input().glidePointer({180, 102});
        return showsOutlineOfButton(desktop);
    });
    EXPECT_FALSE(scriptRuns(desktop, killed));
    EXPECT_TRUE(scriptRuns(desktop, lumetry.pid()));
    desktop.input().typeKey(KEY_ESC);
    requireUntil("the script to be unloaded", [&] { return !scriptRuns(desktop, lumetry.pid()); });
}

} // namespace
} // namespace lumetry::desktop
