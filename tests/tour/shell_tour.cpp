#include "shell_tour.h"

#include "support/real_desktop/lumetry_settings.h"
#include "support/real_desktop/shell_user.h"

#include <X11/keysym.h>

#include <chrono>
#include <thread>
#include <vector>

namespace lumetry::desktop {
namespace {

constexpr const char* panelTitle = "Lumetry";

/// Until what moves has come to rest.
void rest(double seconds) {
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

DesktopOptions smallDesktop(AccessibilityBus accessibility) {
    DesktopOptions options;
    options.width = 1100;
    options.height = 760;
    options.accessibility = accessibility;
    return options;
}

/// Welcome, and the permissions before, while and after they are granted. The X server does not
/// let windows be read here, so that Screen Recording stays to be granted.
void tourPermissions(const std::string& lumetry, Album& album) {
    auto options = smallDesktop(AccessibilityBus::disabled);
    options.compositor = false;
    options.serverArguments = {"-extension", "Composite"};
    PrivateDesktop desktop(options);
    ShellUser user(desktop, lumetry);
    const auto process = user.startLumetry();
    constexpr double entranceSeconds = 1.5;
    constexpr double markSeconds = 3.2;
    user.waitFor("push button", "Get Started");
    rest(markSeconds);
    album.takePicture(desktop.server(), "onboarding-welcome", "The first start");
    user.clickButton("Get Started");
    user.waitFor("push button", "Grant Accessibility");
    rest(entranceSeconds);
    album.takePicture(desktop.server(), "onboarding-permissions", "Nothing is granted");
    user.clickButton("Grant Screen Recording");
    user.waitFor("label", "Reopen ↻");
    user.clickButton("Grant Accessibility");
    user.waitFor("push button", "Reopen Lumetry to apply");
    rest(entranceSeconds);
    album.takePicture(desktop.server(), "onboarding-pending",
                      "Accessibility is granted, Screen Recording asked for");
}

void tourPractice(const std::string& lumetry, Album& album) {
    PrivateDesktop desktop(smallDesktop(AccessibilityBus::enabled));
    ShellUser user(desktop, lumetry);
    const auto process = user.startLumetry();
    constexpr double entranceSeconds = 1.5;
    constexpr double keySeconds = 0.4;
    user.waitFor("label", "waiting for your keys…");
    user.clickButton("back");
    user.waitFor("push button", "Continue");
    rest(entranceSeconds);
    album.takePicture(desktop.server(), "onboarding-granted", "Both are granted");
    user.clickButton("Continue");
    user.waitFor("label", "waiting for your keys…");
    rest(entranceSeconds);
    album.takePicture(desktop.server(), "onboarding-practice", "The shortcut");
    desktop.input().pressKey(XK_Control_L);
    desktop.input().pressKey(XK_Shift_L);
    user.waitFor("label", "almost — tap M!");
    rest(keySeconds);
    album.takePicture(desktop.server(), "onboarding-keys", "Control and Shift are held");
}

/// The menu in a tray.
/// @param press opens it
template<class Press>
void tourTray(const std::string& lumetry, Album& album, const std::vector<std::string>& tray,
              const std::string& picture, const std::string& line, Press press) {
    PrivateDesktop desktop(smallDesktop(AccessibilityBus::enabled));
    markOnboarded(desktop);
    const auto trayProcess = desktop.start(tray);
    ShellUser user(desktop, lumetry);
    const auto process = user.startLumetry();
    user.waitUntilInspecting(true);
    desktop.input().typeKey(XK_Escape);
    user.waitUntilInspecting(false);
    press(desktop, user);
    constexpr double menuSeconds = 0.6;
    rest(menuSeconds);
    album.takePicture(desktop.server(), picture, line);
}

void tourControlPanel(const std::string& lumetry, Album& album) {
    PrivateDesktop desktop(smallDesktop(AccessibilityBus::enabled));
    markOnboarded(desktop);
    ShellUser user(desktop, lumetry);
    const auto process = user.startLumetry();
    user.waitUntilInspecting(true);
    desktop.input().typeKey(XK_Escape);
    user.waitUntilInspecting(false);
    auto again = user.startLumetry();
    static_cast<void>(again.wait());
    user.waitForWindow(panelTitle);
    constexpr double openSeconds = 0.6;
    rest(openSeconds);
    album.takePicture(desktop.server(), "control-panel", "Started while it runs");
}

} // namespace

void tourShell(const std::string& lumetry, Album& album) {
    tourPermissions(lumetry, album);
    tourPractice(lumetry, album);
    tourControlPanel(lumetry, album);
    tourTray(lumetry, album,
             {"trayer", "--align", "right", "--width", "80", "--widthtype", "pixel"}, "tray-menu",
             "The menu in a tray of the X server",
             [](PrivateDesktop& /*desktop*/, ShellUser& user) {
                 user.openTrayMenu();
             });
}

} // namespace lumetry::desktop
