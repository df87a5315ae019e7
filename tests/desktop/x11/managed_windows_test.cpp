#include "x11_rig.h"

#include "rig/processes/programs.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <fstream>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace lumetry::desktop {
namespace {

/// Asks the window manager to minimise a window, as ICCCM has it.
void iconify(X11Rig& rig, xcb_window_t window) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = rig.desktop.server().atom("WM_CHANGE_STATE");
    message.data.data32[0] = 3; // IconicState
    xcb_send_event(rig.xcb(), 0, rig.desktop.server().root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    rig.desktop.server().sync();
}

/// Position hints, so that no window manager asks the user where to put it.
void placeByProgram(X11Rig& rig, xcb_window_t window) {
    constexpr std::uint32_t userPosition = 1U << 0;
    std::vector<std::uint32_t> hints(18);
    hints[0] = userPosition;
    rig.setNumbers(window, "WM_NORMAL_HINTS", rig.desktop.server().atom("WM_SIZE_HINTS"), hints);
}

bool isViewable(X11Rig& rig, xcb_window_t window) {
    const Reply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        rig.xcb(), xcb_get_window_attributes(rig.xcb(), window), nullptr));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

std::optional<Rect> insideOnRoot(X11Rig& rig, xcb_window_t window) {
    const Reply<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(rig.xcb(), xcb_get_geometry(rig.xcb(), window), nullptr));
    const Reply<xcb_translate_coordinates_reply_t> origin(xcb_translate_coordinates_reply(
        rig.xcb(), xcb_translate_coordinates(rig.xcb(), window, rig.desktop.server().root(), 0, 0),
        nullptr));
    return size && origin
               ? std::optional(
                     Rect{static_cast<double>(origin->dst_x), static_cast<double>(origin->dst_y),
                          static_cast<double>(size->width), static_cast<double>(size->height)})
               : std::nullopt;
}

struct ManagerCase {
    const char* name;
    std::vector<std::string> program;
    const char* settings; ///< a file in the home folder, and what is in it
    const char* settingsText;
};

// NOLINTNEXTLINE(readability-identifier-naming): GoogleTest's name
void PrintTo(const ManagerCase& manager, std::ostream* out) {
    *out << manager.name;
}

/// Windows go where they want to, and the server's own font will do.
constexpr const char* twmSettings = R"(RandomPlacement
NoGrabServer
TitleFont "fixed"
MenuFont "fixed"
IconFont "fixed"
ResizeFont "fixed"
IconManagerFont "fixed"
)";

/// A rig in which the manager runs, as soon as start() is called.
struct ManagedRig : X11Rig {
    void start(const ManagerCase& manager) {
        if (manager.settings) {
            std::ofstream(desktop.home() / manager.settings) << manager.settingsText;
        }
        process.emplace(desktop.start(manager.program));
        requireUntil("a window manager", [this] {
            const Reply<xcb_get_window_attributes_reply_t> root(xcb_get_window_attributes_reply(
                xcb(), xcb_get_window_attributes(xcb(), desktop.server().root()), nullptr));
            return root && (root->all_event_masks & XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT) != 0;
        });
    }
    std::optional<ChildProcess> process;
};

class X11ManagedWindows : public testing::TestWithParam<ManagerCase> {
protected:
    void SetUp() override {
        if (!findProgram(GetParam().program.front())) {
            GTEST_SKIP() << GetParam().program.front() << " is not installed";
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Managers, X11ManagedWindows,
                         testing::Values(ManagerCase{"Openbox", {"openbox"}, nullptr, nullptr},
                                         ManagerCase{"Twm", {"twm"}, ".twmrc", twmSettings}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(X11ManagedWindows, AreFoundInTheirFrames) {
    ManagedRig rig;
    rig.start(GetParam());
    auto& windows = rig.x11().desktopWindows();
    const auto client = rig.foreignWindow({150, 100, 300, 200});
    placeByProgram(rig, client);
    // A window manager that is still starting may overlook it the first time.
    requireUntil("the window", [&] {
        rig.map(client);
        return isViewable(rig, client);
    });
    const auto list = rig.waitForList(1);
    EXPECT_EQ(list.front().layer, 0);
    const auto inside = insideOnRoot(rig, client);
    ASSERT_TRUE(inside);
    rig.loop.settle();
    const auto found = windows.windowAt({inside->midX(), inside->midY()}, rig.foreignPid());
    ASSERT_TRUE(found);
    EXPECT_EQ(found->id, client);
    EXPECT_EQ(found->pid, rig.foreignPid());
    EXPECT_FALSE(found->popup);
    // The title bar belongs to the window, too.
    EXPECT_EQ(intersect(found->bounds, *inside), *inside);
    EXPECT_LT(found->bounds.minY(), inside->minY());
    EXPECT_LT(inside->minY() - found->bounds.minY(), 60);

    // It is followed when it moves in its frame.
    rig.move(client, {250, 150, 200, 180});
    EXPECT_TRUE(rig.loop.runUntil([&] {
        const auto place = insideOnRoot(rig, client);
        const auto at = windows.windowAt({place->midX(), place->midY()}, rig.foreignPid());
        return place->width == 200 && at && intersect(at->bounds, *place) == *place &&
               at->bounds.height < 240;
    }));

    const auto menu = rig.foreignWindow({250, 160, 80, 90}, {.overrideRedirect = true});
    rig.map(menu);
    EXPECT_EQ(rig.waitForList(2).front().layer, 101);
    const auto top = windows.windowAt({255, 165}, std::nullopt);
    ASSERT_TRUE(top);
    EXPECT_EQ(top->id, menu);
    EXPECT_TRUE(top->popup);

    iconify(rig, client);
    EXPECT_EQ(rig.waitForList(1).front().layer, 101);
    EXPECT_TRUE(windows.windowsOf(rig.foreignPid()).any) << "a minimised window is a window";
    rig.destroy(client);
    rig.destroy(menu);
    EXPECT_TRUE(rig.loop.runUntil([&] { return !windows.windowsOf(rig.foreignPid()).any; }));
}

TEST_P(X11ManagedWindows, AreFoundWhenTheManagerComesAndGoes) {
    ManagedRig rig;
    auto& windows = rig.x11().desktopWindows();
    const auto client = rig.foreignWindow({150, 100, 300, 200});
    rig.map(client);
    EXPECT_EQ(rig.waitForList(1).front().bounds, (Rect{150, 100, 300, 200}));
    const auto isFramed = [&](bool framed) {
        const auto at = windows.windowAt({300, 200}, std::nullopt);
        return at && at->id == client && at->pid == rig.foreignPid() &&
               (at->bounds.height > 200) == framed;
    };
    EXPECT_TRUE(isFramed(false));
    rig.start(GetParam());
    EXPECT_TRUE(rig.loop.runUntil([&] { return isFramed(true); }));
    rig.process.reset();
    EXPECT_TRUE(rig.loop.runUntil([&] { return isFramed(false); }));
}

TEST(X11DesktopWindows, OwnWindowsAreListedButNotPointedAt) {
    X11Rig rig;
    const auto foreign = rig.foreignWindow({0, 0, 400, 400});
    const auto own = rig.ownWindow({0, 0, 200, 200});
    rig.map(foreign);
    rig.map(own);
    auto& windows = rig.x11().desktopWindows();
    std::vector<WindowInfo> list;
    ASSERT_TRUE(rig.loop.runUntil([&] {
        list = rig.x11().windowServer().onScreenWindows().value_or(std::vector<WindowInfo>{});
        return list.size() == 2;
    }));
    EXPECT_EQ(list.front().ownerPID, getpid());
    EXPECT_EQ(windows.windowAt({10, 10}, std::nullopt)->id, foreign);
    EXPECT_FALSE(windows.windowAt({10, 10}, getpid()));
    EXPECT_FALSE(windows.windowAt({500, 500}, std::nullopt));
    EXPECT_FALSE(windows.windowAt({400, 10}, std::nullopt)) << "the far edge is outside";
}

TEST(X11DesktopWindows, TheDesktopIsPointedAtWhereNothingElseIs) {
    X11Rig rig;
    const auto desktop = rig.foreignWindow({0, 0, 800, 600});
    rig.setAtoms(desktop, "_NET_WM_WINDOW_TYPE", {"_NET_WM_WINDOW_TYPE_DESKTOP"});
    rig.map(desktop);
    auto& windows = rig.x11().desktopWindows();
    EXPECT_TRUE(rig.loop.runUntil([&] {
        const auto at = windows.windowAt({10, 10}, std::nullopt);
        return at && at->id == desktop;
    }));
}

struct TaskBarCase {
    const char* name;
    std::vector<std::string_view> types;
    std::vector<std::string_view> states;
    bool overrideRedirect;
    bool any;
    bool inTaskBar;
};

TEST(X11DesktopWindows, TellWhatAProcessIs) {
    const std::vector<TaskBarCase> cases = {
        {"a plain window", {}, {}, false, true, true},
        {"a dialog", {"_NET_WM_WINDOW_TYPE_DIALOG"}, {}, false, true, true},
        {"a panel", {"_NET_WM_WINDOW_TYPE_DOCK"}, {}, false, true, false},
        {"not wanted there", {}, {"_NET_WM_STATE_SKIP_TASKBAR"}, false, true, false},
        {"only a menu", {}, {}, true, false, false},
    };
    X11Rig rig;
    for (const TaskBarCase& one : cases) {
        const auto window =
            rig.foreignWindow({0, 0, 50, 50}, {.overrideRedirect = one.overrideRedirect});
        rig.setAtoms(window, "_NET_WM_WINDOW_TYPE", one.types);
        rig.setAtoms(window, "_NET_WM_STATE", one.states);
        rig.setText(window, "WM_CLASS", std::string_view("maker\0Maker\0", 12));
        rig.setText(window, "_GTK_APPLICATION_ID", "org.example.Maker");
        rig.map(window);
        static_cast<void>(rig.waitForList(1));
        const ProcessWindows process = rig.x11().desktopWindows().windowsOf(rig.foreignPid());
        EXPECT_EQ(process.any, one.any) << one.name;
        EXPECT_EQ(process.inTaskBar, one.inTaskBar) << one.name;
        if (one.any) {
            EXPECT_THAT(process.classes,
                        testing::ElementsAre("maker", "Maker", "org.example.Maker"));
        }
        rig.destroy(window);
        static_cast<void>(rig.waitForList(0));
    }
}

} // namespace
} // namespace lumetry::desktop
