#include "x11_rig.h"

#include "rig/monitors.h"
#include "support/printing/printing.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <string>

namespace lumetry::desktop {
namespace {

using testing::ElementsAre;

TEST(X11Screens, StandAroundThePrimaryOne) {
    // The primary screen is the right one and hangs lower.
    X11Rig rig({.screens = {{300, 200, 500, 400}, {0, 0, 300, 300}}});
    auto& server = rig.x11().windowServer();
    const Screen primary = {{0, 0, 500, 400}, {0, 0, 500, 400}};
    const Screen left = {{-300, 300, 300, 300}, {-300, 300, 300, 300}};
    EXPECT_THAT(server.screens(), ElementsAre(primary, left));
    EXPECT_EQ(rig.x11().desktopWindows().rootSpace(), (RootSpace{{300, 200}, 1}));

    const auto window = rig.foreignWindow({10, 20, 100, 50});
    rig.map(window);
    EXPECT_EQ(rig.waitForList(1).front().bounds, (Rect{-290, -180, 100, 50}));
    EXPECT_EQ(rig.x11().desktopWindows().windowAt({-200, -150}, std::nullopt)->id, window);
    rig.desktop.input().movePointer(310, 590);
    EXPECT_EQ(rig.x11().pointer().location(), (Point{10, 10}));

    EXPECT_EQ(server.mainScreen(), primary);
    xcb_set_input_focus(rig.xcb(), XCB_INPUT_FOCUS_NONE, window, XCB_CURRENT_TIME);
    rig.desktop.server().sync();
    EXPECT_EQ(server.mainScreen(), left);
}

TEST(X11Screens, FollowWhenTheyAreRearranged) {
    X11Rig rig;
    auto& server = rig.x11().windowServer();
    ASSERT_EQ(server.screens().size(), 1U);
    arrangeMonitors(rig.desktop.server(), {{0, 0, 400, 600}, {400, 0, 400, 600}});
    EXPECT_TRUE(rig.loop.runUntil([&] { return server.screens().size() == 2; }));
    EXPECT_EQ(server.screens().back().frame, (Rect{400, 0, 400, 600}));
}

/// The settings of a manager that declares that many dots per inch, and nothing else.
std::string settings(std::uint32_t dotsPerInch) {
    struct {
        std::uint8_t byteOrder[4] = {}; // the least significant first
        std::uint32_t serial = 1;
        std::uint32_t count = 1;
        std::uint8_t integer[2] = {};
        std::uint16_t nameLength = 7;
        char name[8] = {'X', 'f', 't', '/', 'D', 'P', 'I'};
        std::uint32_t lastChange = 1;
        std::uint32_t value;
    } bytes;
    bytes.value = dotsPerInch * 1024;
    return {reinterpret_cast<const char*>(&bytes), sizeof bytes};
}

TEST(X11Screens, FollowTheScaleThatTheDesktopDeclares) {
    X11Rig rig;
    const XConnection& desktop = rig.desktop.server();
    auto& server = rig.x11().windowServer();
    const auto becomes = [&](double scale) {
        return rig.loop.runUntil([&] {
            const Screen screen = server.screens().front();
            return screen.backingScaleFactor == scale && screen.frame.width == 800 / scale;
        });
    };
    EXPECT_TRUE(becomes(1));
    declareScale(desktop, 1.25);
    EXPECT_TRUE(becomes(1.25));
    // A settings manager's word counts more, until it ends.
    const xcb_atom_t selection = desktop.atom("_XSETTINGS_S0");
    const xcb_atom_t property = desktop.atom("_XSETTINGS_SETTINGS");
    const auto say = [&](xcb_window_t manager, std::uint32_t dotsPerInch) {
        const std::string bytes = settings(dotsPerInch);
        xcb_change_property(desktop.get(), XCB_PROP_MODE_REPLACE, manager, property, property, 8,
                            static_cast<std::uint32_t>(bytes.size()), bytes.data());
        xcb_set_selection_owner(desktop.get(), manager, selection, XCB_CURRENT_TIME);
        desktop.sync();
    };
    const auto manager = rig.ownWindow({-9, -9, 1, 1});
    say(manager, 192);
    EXPECT_TRUE(becomes(2));
    say(manager, 144);
    EXPECT_TRUE(becomes(1.5));
    const auto another = rig.ownWindow({-9, -9, 1, 1});
    say(another, 288);
    EXPECT_TRUE(becomes(3));
    rig.destroy(another);
    EXPECT_TRUE(becomes(1.25));
    xcb_delete_property(desktop.get(), desktop.root(), XCB_ATOM_RESOURCE_MANAGER);
    desktop.sync();
    EXPECT_TRUE(becomes(1));
}

TEST(X11Screens, LeaveOutWhatPanelsKeep) {
    X11Rig rig;
    auto& server = rig.x11().windowServer();
    rig.setNumbers(rig.desktop.server().root(), "_NET_WORKAREA", XCB_ATOM_CARDINAL,
                   {0, 30, 800, 570});
    EXPECT_EQ(server.screens().front().visibleFrame, (Rect{0, 0, 800, 570}));
    // A panel's own word counts more.
    const auto panel = rig.foreignWindow({0, 560, 800, 40});
    rig.setAtoms(panel, "_NET_WM_WINDOW_TYPE", {"_NET_WM_WINDOW_TYPE_DOCK"});
    rig.setNumbers(panel, "_NET_WM_STRUT_PARTIAL", XCB_ATOM_CARDINAL,
                   {0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 0, 799});
    rig.map(panel);
    EXPECT_TRUE(rig.loop.runUntil([&] {
        return server.screens().front().visibleFrame == Rect{0, 40, 800, 560};
    }));
    rig.unmap(panel);
    EXPECT_TRUE(rig.loop.runUntil([&] {
        return server.screens().front().visibleFrame == Rect{0, 0, 800, 570};
    }));
}

} // namespace
} // namespace lumetry::desktop
