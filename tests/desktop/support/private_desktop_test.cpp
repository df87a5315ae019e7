#include "support/real_desktop/private_desktop.h"

#include "support/real_desktop/accessible_tree.h"
#include "support/real_desktop/desktop_windows.h"
#include "support/real_desktop/screenshot.h"

#include <X11/keysym.h>
#include <gtest/gtest.h>
#include <xcb/randr.h>

#include <string>
#include <vector>

namespace lumetry::desktop {
namespace {

// Windows, accessible elements, input and screenshots must agree on where things are, or tests
// would measure one place and look at another.
TEST(PrivateDesktop, ClickingWhereAnElementIsSaidToBeReachesIt) {
    PrivateDesktop desktop;
    const auto application = desktop.start({"gtk3-widget-factory"});
    const auto found = waitForWindow(desktop.server(), hasClass("Gtk3-widget-factory"));
    const auto window =
        placeWindow(desktop.server(), found.id, {10, 24, found.bounds.width, found.bounds.height});
    const auto root =
        AccessibleTree(desktop.accessibilityBusAddress()).waitForApplication("gtk3-widget-factory");
    const auto box = root.find([&](const Accessible& element) {
        return element.role() == "check box" && element.is(AccessibleState::sensitive) &&
               element.showing();
    });
    ASSERT_TRUE(box) << root.describe();
    const auto place = box->extents().value_or(Rect());
    ASSERT_EQ(intersect(place, window.bounds), place) << root.describe();
    const bool before = box->is(AccessibleState::checked);
    const auto shownBefore = settledScreenshot(desktop.server(), place);

    desktop.input().glidePointer(static_cast<int>(place.midX()), static_cast<int>(place.midY()));
    desktop.input().click();

    EXPECT_TRUE(waitUntil([&] { return box->is(AccessibleState::checked) != before; }));
    const auto shownAfter = settledScreenshot(desktop.server(), place);
    ASSERT_TRUE(shownBefore && shownAfter);
    EXPECT_NE(shownBefore->pixels, shownAfter->pixels);
}

std::size_t monitorCount(const XConnection& server) {
    const auto request = xcb_randr_get_monitors(server.get(), server.root(), 1);
    const Reply<xcb_randr_get_monitors_reply_t> reply(
        xcb_randr_get_monitors_reply(server.get(), request, nullptr));
    return reply ? reply->nMonitors : 0;
}

bool isPressed(const XConnection& server) {
    const auto request = xcb_query_pointer(server.get(), server.root());
    const Reply<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(server.get(), request, nullptr));
    return reply && (reply->mask & (XCB_KEY_BUT_MASK_MOD_1 | XCB_KEY_BUT_MASK_BUTTON_1)) != 0;
}

// A test of a desktop that lacks something proves nothing when it is there after all.
TEST(PrivateDesktop, HoldsWhatWasAskedForAndNothingElse) {
    struct Case {
        std::string name;
        DesktopOptions options;
        bool bus;
        bool enabled;
        std::size_t monitors;
    };
    DesktopOptions bare;
    bare.windowManager = false;
    bare.compositor = false;
    bare.accessibility = AccessibilityBus::none;
    DesktopOptions disabled;
    disabled.accessibility = AccessibilityBus::disabled;
    disabled.screens = {{0, 0, 640, 800}, {640, 0, 640, 800}};
    const std::vector<Case> cases = {
        {"as it comes", {}, true, true, 1},
        {"bare", bare, false, false, 1},
        {"two screens, no assistive technology", disabled, true, false, 2},
    };
    for (const auto& [name, options, bus, enabled, monitors] : cases) {
        SCOPED_TRACE(name);
        const PrivateDesktop desktop(options);
        const auto& server = desktop.server();
        const auto compositor = server.selectionOwner("_NET_WM_CM_S0");
        EXPECT_EQ(!server.numbersProperty(server.root(), "_NET_SUPPORTING_WM_CHECK").empty(),
                  options.windowManager);
        EXPECT_EQ(compositor != XCB_NONE, options.compositor);
        EXPECT_EQ(!desktop.accessibilityBusAddress().empty(), bus);
        EXPECT_EQ(desktop.accessibilityEnabled(), enabled);
        EXPECT_EQ(monitorCount(server), monitors);
    }
}

TEST(InputDevice, LetsGoOfWhatItHeld) {
    DesktopOptions options;
    options.accessibility = AccessibilityBus::none;
    PrivateDesktop desktop(options);
    {
        InputDevice device(desktop.server());
        device.pressKey(XK_Alt_L);
        device.pressButton(MouseButton::left);
        EXPECT_TRUE(isPressed(desktop.server()));
    }
    EXPECT_FALSE(isPressed(desktop.server()));
}

} // namespace
} // namespace lumetry::desktop
