#include "shell_tour.h"

#include "rig/lumetry_settings.h"
#include "rig/shell_user.h"

#include <X11/keysym.h>

#include <chrono>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

namespace lumetry::desktop {
namespace {

constexpr const char* panelTitle = "Lumetry";
/// How long the views of a page take to come in.
constexpr double entranceSeconds = 1.5;

/// Until what moves has come to rest.
void rest(double seconds) {
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

DesktopOptions smallDesktop(AccessibilityBus accessibility, int scale = 1) {
    DesktopOptions options;
    options.width = 1100 * scale;
    options.height = 760 * scale;
    options.scale = scale;
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

/// At 200 %: the same on a screen of twice the density.
constexpr int dense = 2;

void tourDensePractice(const std::string& lumetry, Album& album) {
    PrivateDesktop desktop(smallDesktop(AccessibilityBus::enabled, dense));
    ShellUser user(desktop, lumetry);
    const auto process = user.startLumetry();
    user.waitFor("label", "waiting for your keys…");
    rest(entranceSeconds);
    album.takePicture(desktop.server(), "onboarding-practice-200", "The shortcut, at 200 %");
}

void tourPractice(const std::string& lumetry, Album& album) {
    PrivateDesktop desktop(smallDesktop(AccessibilityBus::enabled));
    ShellUser user(desktop, lumetry);
    const auto process = user.startLumetry();
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

/// Lumetry as it is after the onboarding, with inspect mode left again.
struct RestingLumetry {
    explicit RestingLumetry(const std::string& lumetry, const std::vector<std::string>& tray = {},
                            int scale = 1)
        : desktop(smallDesktop(AccessibilityBus::enabled, scale)) {
        markOnboarded(desktop);
        if (!tray.empty()) {
            trayProcess = desktop.start(tray);
        }
        process = user.emplace(desktop, lumetry).startLumetry();
        user->waitUntilInspecting(true);
        desktop.input().typeKey(XK_Escape);
        user->waitUntilInspecting(false);
    }

    PrivateDesktop desktop;
    std::optional<ChildProcess> trayProcess;
    std::optional<ShellUser> user;
    std::optional<ChildProcess> process;
};

constexpr double openSeconds = 0.6;

/// The menu in a tray of the X server.
void tourTray(const std::string& lumetry, Album& album) {
    RestingLumetry resting(lumetry, {"trayer", "--align", "right", "--width", "80", "--widthtype",
                                     "pixel", "--height", "30"});
    resting.user->openTrayMenu();
    rest(openSeconds);
    album.takePicture(resting.desktop.server(), "tray-menu", "The menu in a tray of the X server");
}

/// The menu in a panel that takes in items over the session bus. Where the panel has put the item
/// only its picture tells: the pointer goes along the panel until a click opens the menu.
void tourPanel(const std::string& lumetry, Album& album) {
    // Nothing is started by the bus of a private desktop: the panel finds no settings there.
    RestingLumetry resting(lumetry, {"sh", "-c",
                                     "$(dirname \"$(dpkg -L xfconf | grep /xfconfd$)\")/xfconfd & "
                                     "sleep 0.5; exec xfce4-panel --disable-wm-check"});
    constexpr double panelSeconds = 2;
    rest(panelSeconds);
    const auto& screen = resting.desktop.server().screen();
    constexpr int panelMiddle = 13;
    constexpr int step = 16;
    for (int x = screen.width_in_pixels - 40; x > screen.width_in_pixels / 2; x -= step) {
        resting.desktop.input().movePointer(x, panelMiddle);
        resting.desktop.input().click();
        constexpr double answerSeconds = 0.3;
        rest(answerSeconds);
        if (resting.user->menuIsOpen()) {
            rest(openSeconds);
            album.takePicture(resting.desktop.server(), "panel-menu",
                              "The menu in a panel of the session bus");
            return;
        }
        resting.desktop.input().typeKey(XK_Escape);
    }
    throw std::runtime_error("no click on the panel opens Lumetry's menu");
}

void tourControlPanel(const std::string& lumetry, Album& album, int scale) {
    RestingLumetry resting(lumetry, {}, scale);
    auto again = resting.user->startLumetry();
    static_cast<void>(again.wait());
    resting.user->waitForWindow(panelTitle);
    rest(openSeconds);
    album.takePicture(resting.desktop.server(), scale == 1 ? "control-panel" : "control-panel-200",
                      "Started while it runs");
}

} // namespace

void tourShell(const std::string& lumetry, Album& album) {
    tourPermissions(lumetry, album);
    tourPractice(lumetry, album);
    tourDensePractice(lumetry, album);
    tourControlPanel(lumetry, album, 1);
    tourControlPanel(lumetry, album, dense);
    tourTray(lumetry, album);
    tourPanel(lumetry, album);
}

} // namespace lumetry::desktop
