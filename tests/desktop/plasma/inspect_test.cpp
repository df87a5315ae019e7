#include "rig/browser_files.h"
#include "rig/kwin_desktop.h"
#include "rig/lumetry_settings.h"
#include "rig/processes/wait_until.h"

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <string>

namespace lumetry::desktop {
namespace {

constexpr const char* page = R"(<!doctype html><title>Places</title>
<style>body { margin: 0; background: #ffffff } button { position: absolute; left: 100px; top: 80px;
width: 160px; height: 44px; border: 0; background: #14532d; color: #ffffff; font: 16px sans-serif }
</style><button>Save</button>
<script>onwheel = () => document.querySelector("button").style.top = "60px"</script>)";

/// The accent over whatever is below, at the strength of an outline.
bool isAccent(std::uint32_t pixel) {
    constexpr int leastPinkness = 80;
    const auto red = static_cast<int>((pixel >> 16U) & 0xFFU);
    const auto green = static_cast<int>((pixel >> 8U) & 0xFFU);
    return red - green >= leastPinkness;
}

bool showsOutlineOfButton(const KwinDesktop& desktop, int top = 80) {
    const Bitmap screen = desktop.screenshot();
    return isAccent(screen.at(100, top + 11)) && isAccent(screen.at(259, top + 11)) &&
           isAccent(screen.at(140, top)) && isAccent(screen.at(140, top + 43));
}

/// What KWin answers when it is asked something about a process's script.
std::string askAboutScript(const KwinDesktop& desktop, const std::string& method, pid_t process) {
    ProcessOptions options;
    options.environment = desktop.environment();
    return runProgram({"dbus-send", "--session", "--print-reply", "--dest=org.kde.KWin",
                       "/Scripting", "org.kde.kwin.Scripting." + method,
                       "string:lumetry-" + std::to_string(process)},
                      options)
        .output;
}

bool scriptRuns(const KwinDesktop& desktop, pid_t process) {
    return askAboutScript(desktop, "isScriptLoaded", process).find("boolean true") !=
           std::string::npos;
}

void unloadScript(const KwinDesktop& desktop, pid_t process) {
    EXPECT_NE(askAboutScript(desktop, "unloadScript", process).find("boolean true"),
              std::string::npos);
}

ChildProcess startChromium(KwinDesktop& desktop) {
    const std::string profile = makeProfileFolder(desktop, "chromium").string();
    return desktop.start({"chromium", "--no-sandbox", "--ozone-platform=wayland", "--no-first-run",
                          "--test-type", "--user-data-dir=" + profile, "--kiosk",
                          "--app=file://" + writePage(desktop, page).string()});
}

void requireOutline(KwinDesktop& desktop, ChildProcess& lumetry) {
    requireUntil("an outline", [&] {
        desktop.input().movePointer({600, 400});
        desktop.input().glidePointer({180, 102});
        return !lumetry.running() || showsOutlineOfButton(desktop);
    });
    ASSERT_TRUE(lumetry.running()) << lumetry.standardError();
}

void pressShortcut(KwinDesktop& desktop) {
    desktop.input().pressKey(KEY_LEFTCTRL);
    desktop.input().pressKey(KEY_LEFTSHIFT);
    desktop.input().typeKey(KEY_M);
    desktop.input().releaseKey(KEY_LEFTSHIFT);
    desktop.input().releaseKey(KEY_LEFTCTRL);
}

TEST(PlasmaInspect, OutlinesWhatThePointerIsOverUntilEscape) {
    if (const auto problem = KwinDesktop::problem()) {
        GTEST_SKIP() << *problem;
    }
    KwinDesktop desktop;
    desktop.permit(LUMETRY_PROGRAM);
    markOnboarded(desktop);
    const auto browser = startChromium(desktop);
    auto lumetry = desktop.start({LUMETRY_PROGRAM});
    ASSERT_NO_FATAL_FAILURE(requireOutline(desktop, lumetry));
    // Another program that measures leaves this one its keys.
    ProcessOptions options;
    options.environment = desktop.environment();
    EXPECT_EQ(runProgram({LUMETRY_MEASURE, "180", "102"}, options).status.code, 0);
    desktop.input().typeKey(KEY_ESC);
    requireUntil("the outline to go", [&] { return !showsOutlineOfButton(desktop); });
    pressShortcut(desktop);
    ASSERT_NO_FATAL_FAILURE(requireOutline(desktop, lumetry));
    // Somebody else unloads the script: it is loaded again.
    unloadScript(desktop, lumetry.pid());
    requireUntil("the script to run again", [&] { return scriptRuns(desktop, lumetry.pid()); });
    ASSERT_NO_FATAL_FAILURE(requireOutline(desktop, lumetry));
    // Killed, it leaves its script behind, which the next start takes away.
    const pid_t killed = lumetry.pid();
    lumetry.signal(SIGKILL);
    ASSERT_TRUE(lumetry.wait());
    EXPECT_TRUE(scriptRuns(desktop, killed));
    requireUntil("the overlay to go", [&] { return !showsOutlineOfButton(desktop); });
    lumetry = desktop.start({LUMETRY_PROGRAM});
    ASSERT_NO_FATAL_FAILURE(requireOutline(desktop, lumetry));
    EXPECT_FALSE(scriptRuns(desktop, killed));
    EXPECT_TRUE(scriptRuns(desktop, lumetry.pid()));
    // The page moves below the pointer.
    desktop.input().scroll(10);
    requireUntil("the outline to follow", [&] { return showsOutlineOfButton(desktop, 60); });
    desktop.input().typeKey(KEY_ESC);
    requireUntil("the script to be unloaded", [&] { return !scriptRuns(desktop, lumetry.pid()); });
}

// A crash of KWin takes Qt's windows with it: Lumetry begins anew, and rests until it is called.
TEST(PlasmaInspect, ComesBackWithKWin) {
    if (const auto problem = KwinDesktop::problem()) {
        GTEST_SKIP() << *problem;
    }
    KwinDesktop desktop;
    desktop.permit(LUMETRY_PROGRAM);
    markOnboarded(desktop);
    auto browser = startChromium(desktop);
    auto lumetry = desktop.start({LUMETRY_PROGRAM});
    ASSERT_NO_FATAL_FAILURE(requireOutline(desktop, lumetry));
    desktop.restartCompositor();
    browser = startChromium(desktop);
    constexpr std::uint32_t button = 0xFF14532D;
    requireUntil("the page", [&] { return desktop.screenshot().at(110, 90) == button; });
    // Pressed too early it does nothing; pressed twice it would end what it has begun.
    constexpr auto patience = std::chrono::seconds(60);
    constexpr auto forOnePress = std::chrono::seconds(10);
    requireUntil(
        "inspect mode to come back",
        [&] {
            pressShortcut(desktop);
            return waitUntil(
                [&] {
                    desktop.input().movePointer({600, 400});
                    desktop.input().glidePointer({180, 102});
                    return !lumetry.running() || showsOutlineOfButton(desktop);
                },
                forOnePress);
        },
        patience);
    EXPECT_TRUE(lumetry.running()) << lumetry.standardError();
    lumetry.terminate();
}

} // namespace
} // namespace lumetry::desktop
