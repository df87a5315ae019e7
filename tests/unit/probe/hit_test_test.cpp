#include "probe/hit_test.h"

#include "support/fake_platform/fake_desktop.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace lumetry {
namespace {

constexpr Point at = {100, 100};
constexpr Rect around = {50, 50, 200, 200};
constexpr pid_t regularPID = 1;
constexpr pid_t otherPID = 2;
constexpr pid_t accessoryPID = 3;
constexpr pid_t unknownPID = 5;

WindowInfo window(pid_t pid, int layer, std::optional<double> alpha = 1,
                  std::optional<Rect> bounds = around) {
    return {pid, alpha, layer, bounds};
}

TEST(TopWindow, IsTheFrontmostNormalOneElseAPanel) {
    const WindowInfo normal = window(regularPID, 0);
    const WindowInfo behind = window(otherPID, 0);
    const WindowInfo withoutOwner = {std::nullopt, 1, 0, around};
    const WindowInfo withoutLayer = {otherPID, 1, std::nullopt, around};
    struct Case {
        const char* name;
        std::vector<WindowInfo> windows;
        std::optional<pid_t> hit;
    };
    for (const auto& [name, windows, hit] : {
             Case{"front one of two", {normal, behind}, regularPID},
             Case{"not the own overlay", {window(FakeDesktop::ownPID, 0), behind}, otherPID},
             Case{"elsewhere", {window(regularPID, 0, 1, Rect{0, 0, 99, 99}), behind}, otherPID},
             Case{"ends at the point", {window(regularPID, 0, 1, Rect{0, 0, 100, 200})}, {}},
             Case{"invisible", {window(regularPID, 0, 0.01), behind}, otherPID},
             Case{"nearly invisible", {window(regularPID, 0, 0.02), behind}, regularPID},
             Case{"opacity unknown", {window(regularPID, 0, {}), behind}, regularPID},
             Case{"owner unknown", {withoutOwner, normal}, regularPID},
             Case{"layer unknown", {withoutLayer, normal}, regularPID},
             Case{"bounds unknown", {window(otherPID, 0, 1, {}), normal}, regularPID},
             Case{"normal one behind a panel", {window(otherPID, 3), normal}, regularPID},
             Case{"front panel of two", {window(otherPID, 3), window(regularPID, 19)}, otherPID},
             Case{"lowest panel layer", {window(regularPID, 1)}, regularPID},
             Case{"highest panel layer", {window(regularPID, 19)}, regularPID},
             Case{"above the panels", {window(regularPID, 20)}, {}},
             Case{"below the normal windows", {window(regularPID, -1)}, {}},
             Case{"panel of an accessory",
                  {window(accessoryPID, 3), window(regularPID, 5)},
                  regularPID},
             Case{"panel of no application", {window(unknownPID, 3)}, {}},
         }) {
        FakeDesktop desktop;
        desktop.launch(regularPID, "A", "a");
        desktop.launch(otherPID, "B", "b");
        desktop.launch(accessoryPID, "C", "c");
        desktop.applications.running[accessoryPID].activationPolicy = ActivationPolicy::accessory;
        desktop.windowServer.windows = windows;
        const auto found = topWindowInfo(desktop.platform, desktop.state, at);
        EXPECT_EQ(found ? std::optional(found->pid) : std::nullopt, hit) << name;
        EXPECT_TRUE(!found || found->bounds == around) << name;
    }
    FakeDesktop desktop;
    desktop.windowServer.windows.reset();
    EXPECT_EQ(topWindowInfo(desktop.platform, desktop.state, at), std::nullopt);
}

TEST(ElementAt, AsksTheApplicationUnderThePointElseTheDesktop) {
    FakeDesktop desktop;
    FakeElement& button = desktop.accessibility.makeElement(regularPID, "AXButton");
    FakeElement& icon = desktop.accessibility.makeElement(otherPID, "AXImage");
    desktop.accessibility.application(regularPID).hitTest = [&](Point) { return &button; };
    desktop.accessibility.systemWide().hitTest = [&](Point) { return &icon; };
    const Point point = {0.1, 1e9 + 0.3};

    EXPECT_EQ(axElementAt(desktop.platform, desktop.state, point, WindowHit{regularPID, around}),
              button.handle());
    const FakeElement& application = desktop.accessibility.application(regularPID);
    EXPECT_EQ(application.messagingTimeoutSeconds, 0.35F);
    EXPECT_EQ(application.hitTests, (std::vector<Point>{{0.1F, 1e9F}}));

    EXPECT_EQ(axElementAt(desktop.platform, desktop.state, point, std::nullopt), icon.handle());
    EXPECT_EQ(desktop.accessibility.systemWide().messagingTimeoutSeconds, std::nullopt)
        << "on this element it would be the whole program's";
    EXPECT_EQ(axElementAt(desktop.platform, desktop.state, point, WindowHit{otherPID, around}),
              std::nullopt)
        << "an application that knows nothing there does not fall back to the desktop";
}

TEST(ElementAt, WakesChromiumThatKnowsNoMoreThanItsWindow) {
    constexpr WindowHit hit = {9, {0, 0, 1280, 800}};
    struct Case {
        const char* name;
        bool electron;
        std::optional<Size> found; ///< none for a hit test that fails
        bool wakes;
    };
    for (const auto& [name, electron, found, wakes] : {
             Case{"nearly the window", true, Size{1200, 790}, true},
             Case{"just nine tenths", true, Size{1152, 720}, true},
             Case{"narrower", true, Size{1151, 790}, false},
             Case{"lower", true, Size{1200, 719}, false},
             Case{"without a frame", true, Size{0, 0}, false},
             Case{"nothing", true, {}, true},
             Case{"the window elsewhere", false, Size{1280, 800}, false},
         }) {
        SCOPED_TRACE(name);
        FakeDesktop desktop;
        electron ? desktop.launchElectron(9, "Chat") : desktop.launch(9, "Chat", "chat");
        FakeElement& page = desktop.accessibility.makeElement(9, "AXWebArea");
        if (found) {
            page.setFrame({0, 0, found->width, found->height});
            desktop.accessibility.application(9).hitTest = [&](Point) { return &page; };
        }
        EXPECT_EQ(axElementAt(desktop.platform, desktop.state, at, hit),
                  found ? std::optional(page.handle()) : std::nullopt);
        EXPECT_EQ(desktop.state.enhancedPIDs.contains(9), wakes);
        EXPECT_EQ(desktop.accessibility.totalReads() > 0, electron && found.has_value())
            << "a frame is read that nobody needs";
    }
}

} // namespace
} // namespace lumetry
