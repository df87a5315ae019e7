#include "x11_rig.h"

#include "support/real_desktop/monitors.h"

#include <gmock/gmock.h>

#include <ostream>

namespace lumetry::desktop {

// NOLINTNEXTLINE(readability-identifier-naming): GoogleTest's name
void PrintTo(const Rect& rect, std::ostream* out) {
    *out << rect.x << ',' << rect.y << ' ' << rect.width << 'x' << rect.height;
}

namespace {

using testing::ElementsAre;

TEST(X11Screens, StandAroundThePrimaryOne) {
    // The primary screen is the right one and hangs lower.
    X11Rig rig({.windowManager = false,
                .compositor = false,
                .screens = {{300, 200, 500, 400}, {0, 0, 300, 300}},
                .serverArguments = {}});
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
