#include "x11_rig.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <array>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace lumetry::desktop {
namespace {

using testing::ElementsAre;

std::vector<Rect> boundsOf(const std::vector<WindowInfo>& list) {
    std::vector<Rect> bounds;
    bounds.reserve(list.size());
    for (const WindowInfo& window : list) {
        bounds.push_back(window.bounds.value_or(Rect::null()));
    }
    return bounds;
}

TEST(X11WindowList, FollowsWindowsWithoutAWindowManager) {
    X11Rig rig;
    const Rect lowerRect = {10, 20, 300, 200};
    const Rect upperRect = {50, 60, 100, 80};
    const auto lower = rig.foreignWindow(lowerRect);
    const auto upper = rig.foreignWindow(upperRect);
    EXPECT_TRUE(rig.foreignList().empty());
    rig.map(upper);
    rig.map(lower);
    EXPECT_THAT(boundsOf(rig.waitForList(2)), ElementsAre(upperRect, lowerRect));

    rig.raise(lower);
    EXPECT_TRUE(rig.loop.runUntil([&] {
        return boundsOf(rig.foreignList()) == std::vector{lowerRect, upperRect};
    }));
    const Rect moved = {200, 100, 222, 111};
    rig.move(lower, moved);
    EXPECT_TRUE(rig.loop.runUntil([&] {
        return boundsOf(rig.foreignList()) == std::vector{moved, upperRect};
    }));
    rig.destroy(upper);
    EXPECT_THAT(boundsOf(rig.waitForList(1)), ElementsAre(moved));
    rig.unmap(lower);
    EXPECT_TRUE(rig.waitForList(0).empty());
}

TEST(X11WindowList, CostsNoRoundTripWhileNothingChanges) {
    X11Rig rig;
    const auto window = rig.foreignWindow({0, 0, 400, 300});
    rig.map(window);
    static_cast<void>(rig.waitForList(1));
    rig.loop.settle();
    static_cast<void>(rig.foreignList());
    const auto before = rig.x11().roundTrips();
    for (int i = 0; i < 100; ++i) {
        rig.move(window, {static_cast<double>(i), 0, 400, 300});
        rig.loop.settle(std::chrono::milliseconds(0));
        ASSERT_EQ(rig.foreignList().size(), 1U);
        static_cast<void>(rig.x11().windowServer().screens());
        static_cast<void>(rig.x11().desktopWindows().windowAt({5, 5}, std::nullopt));
    }
    EXPECT_EQ(rig.x11().roundTrips(), before);
}

struct LayerCase {
    const char* name;
    bool overrideRedirect;
    std::vector<std::string_view> types;
    std::vector<std::string_view> states;
    std::optional<int> layer; ///< absent: not in the list

    friend std::ostream& operator<<(std::ostream& out, const LayerCase& each) {
        return out << each.name;
    }
};

class X11WindowLayer : public testing::TestWithParam<LayerCase> {};

TEST_P(X11WindowLayer, ComesFromTypeAndState) {
    const LayerCase& param = GetParam();
    X11Rig rig;
    const auto window =
        rig.foreignWindow({10, 10, 100, 100}, {.overrideRedirect = param.overrideRedirect});
    rig.setAtoms(window, "_NET_WM_WINDOW_TYPE", param.types);
    rig.map(window);
    // The states are changed while the window is known, as a window manager does.
    static_cast<void>(rig.foreignList());
    rig.setAtoms(window, "_NET_WM_STATE", param.states);
    rig.loop.settle();
    const auto list = rig.foreignList();
    ASSERT_EQ(list.size(), param.layer ? 1U : 0U);
    if (param.layer) {
        EXPECT_EQ(list.front().layer, param.layer);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, X11WindowLayer,
    testing::Values(
        LayerCase{"Plain", false, {}, {}, 0},
        LayerCase{"UnknownTypeFirst",
                  false,
                  {"_KDE_NET_WM_WINDOW_TYPE_OVERRIDE", "_NET_WM_WINDOW_TYPE_NORMAL"},
                  {},
                  0},
        LayerCase{"Above", false, {"_NET_WM_WINDOW_TYPE_DIALOG"}, {"_NET_WM_STATE_ABOVE"}, 0},
        LayerCase{"Utility", false, {"_NET_WM_WINDOW_TYPE_UTILITY"}, {}, 3},
        LayerCase{"Dock", false, {"_NET_WM_WINDOW_TYPE_DOCK"}, {"_NET_WM_STATE_ABOVE"}, 25},
        LayerCase{"ManagedTooltip", false, {"_NET_WM_WINDOW_TYPE_TOOLTIP"}, {}, 101},
        LayerCase{"Menu", true, {"_NET_WM_WINDOW_TYPE_POPUP_MENU"}, {}, 101},
        LayerCase{"OverrideRedirectWithoutType", true, {}, {}, 101},
        LayerCase{"Desktop", false, {"_NET_WM_WINDOW_TYPE_DESKTOP"}, {}, std::nullopt},
        LayerCase{"Minimised", false, {}, {"_NET_WM_STATE_HIDDEN"}, std::nullopt}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(X11WindowList, LeavesOutWhatCannotBePointedAt) {
    X11Rig rig;
    const auto seen = rig.foreignWindow({0, 0, 50, 50});
    const auto inputOnly = rig.foreignWindow({0, 0, 800, 600}, {.inputOnly = true});
    const auto overlay = rig.foreignWindow({0, 0, 800, 600}, {.overrideRedirect = true});
    rig.map(seen);
    rig.map(inputOnly);
    rig.map(overlay);
    EXPECT_EQ(rig.waitForList(2).size(), 2U);
    rig.emptyInputShape(overlay);
    EXPECT_THAT(boundsOf(rig.waitForList(1)), ElementsAre(Rect{0, 0, 50, 50}));
}

TEST(X11WindowList, TellsOpacityAndLeavesShadowsOut) {
    X11Rig rig;
    const auto window = rig.foreignWindow({100, 100, 200, 150});
    rig.map(window);
    EXPECT_EQ(rig.waitForList(1).front().alpha, 1);
    rig.setNumbers(window, "_NET_WM_WINDOW_OPACITY", XCB_ATOM_CARDINAL, {0x40000000});
    rig.setNumbers(window, "_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, {10, 20, 5, 30});
    rig.loop.settle();
    const auto list = rig.foreignList();
    ASSERT_EQ(list.size(), 1U);
    EXPECT_NEAR(*list.front().alpha, 0.25, 0.001);
    EXPECT_EQ(list.front().bounds, (Rect{110, 105, 170, 115}));
}

TEST(X11WindowList, KeepsToTheCurrentDesktop) {
    X11Rig rig;
    rig.setNumbers(rig.desktop.server().root(), "_NET_CURRENT_DESKTOP", XCB_ATOM_CARDINAL, {1});
    constexpr std::array<std::uint32_t, 3> desktops = {0, 1, 0xFFFFFFFF};
    double x = 0;
    for (const std::uint32_t desktop : desktops) {
        const auto window = rig.foreignWindow({x, 0, 10, 10});
        rig.setNumbers(window, "_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, {desktop});
        rig.map(window);
        x += 10;
    }
    EXPECT_THAT(boundsOf(rig.waitForList(2)),
                ElementsAre(Rect{20, 0, 10, 10}, Rect{10, 0, 10, 10}));
    rig.setNumbers(rig.desktop.server().root(), "_NET_CURRENT_DESKTOP", XCB_ATOM_CARDINAL, {0});
    EXPECT_TRUE(rig.loop.runUntil([&] {
        return boundsOf(rig.foreignList()) == std::vector{Rect{20, 0, 10, 10}, Rect{0, 0, 10, 10}};
    }));
}

TEST(X11WindowList, ForgetsWhatNobodyAsksForAndBeginsAgain) {
    X11Rig rig;
    const auto window = rig.foreignWindow({0, 0, 50, 50});
    rig.map(window);
    static_cast<void>(rig.waitForList(1));
    rig.loop.settle();
    rig.loop.skip(60);
    rig.move(window, {5, 5, 50, 50});
    EXPECT_GT(rig.loop.settle(), 0U);
    for (int i = 0; i < 10; ++i) {
        rig.move(window, {static_cast<double>(i), 9, 60, 60});
        rig.setAtoms(window, "_NET_WM_STATE", {"_NET_WM_STATE_ABOVE"});
    }
    EXPECT_EQ(rig.loop.settle(), 0U) << "woken up for windows that nobody asks for";
    EXPECT_THAT(boundsOf(rig.waitForList(1)), ElementsAre(Rect{9, 9, 60, 60}));
}

TEST(X11WindowList, SurvivesWindowsThatVanishAtOnce) {
    X11Rig rig;
    static_cast<void>(rig.foreignList());
    const auto stays = rig.foreignWindow({1, 1, 30, 30});
    rig.map(stays);
    for (int i = 0; i < 100; ++i) {
        const auto window = rig.ownWindow({0, 0, 20, 20}, {.overrideRedirect = i % 2 == 0});
        rig.map(window);
        if (i % 3 == 0) {
            rig.loop.turn(std::chrono::milliseconds(0));
            static_cast<void>(rig.foreignList());
        }
        xcb_destroy_window(rig.xcb(), window);
        xcb_flush(rig.xcb());
        static_cast<void>(rig.x11().desktopWindows().windowAt({10, 10}, std::nullopt));
    }
    rig.desktop.server().sync();
    rig.loop.settle();
    const auto all = rig.x11().windowServer().onScreenWindows();
    ASSERT_TRUE(all);
    EXPECT_THAT(boundsOf(*all), ElementsAre(Rect{1, 1, 30, 30}));
}

} // namespace
} // namespace lumetry::desktop
