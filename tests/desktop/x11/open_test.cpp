#include "x11_rig.h"

#include "platform/overlay_window.h"
#include "rig/processes/programs.h"
#include "support/counting_rasterizer/counting_rasterizer.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumetry::desktop {
namespace {

using testing::HasSubstr;

struct MissingCase {
    const char* name;
    const char* display; ///< null: not set
    const char* waylandDisplay;
    const char* said;
};

class EmptyView final : public ContentView {
public:
    void draw(Canvas&, const Rect&) override {}
};

TEST(X11Desktop, SaysWhatToDoWithoutADisplay) {
    const std::vector<MissingCase> cases = {
        {"nothing", nullptr, nullptr, "set DISPLAY"},
        {"Wayland", nullptr, "wayland-0", "X11 session"},
        {"no such server", ":9999", nullptr, ":9999"},
        {"no display's name", "not a display", nullptr, "not a display"},
    };
    PollLoop loop;
    for (const MissingCase& one : cases) {
        const auto set = [](const char* name, const char* value) {
            return value ? setenv(name, value, 1) : unsetenv(name);
        };
        set("DISPLAY", one.display);
        set("WAYLAND_DISPLAY", one.waylandDisplay);
        std::string problem;
        EXPECT_FALSE(X11Desktop::open(loop, loop, problem)) << one.name;
        EXPECT_THAT(problem, HasSubstr(one.said)) << one.name;
        EXPECT_EQ(problem.back(), '.') << one.name;
    }
    unsetenv("WAYLAND_DISPLAY");
}

TEST(X11Desktop, SaysWhyItCannotUseAServer) {
    const std::vector<std::pair<X11Rig::Options, const char*>> cases = {
        {{.serverArguments = {"-extension", "XFIXES"}}, "XFIXES"},
        {{.depth = 8}, "8-bit colours from a palette: start the X server with 24-bit colours."},
    };
    for (const auto& [options, said] : cases) {
        try {
            const X11Rig rig(options);
            ADD_FAILURE() << "connected in spite of " << said;
        } catch (const std::runtime_error& error) {
            EXPECT_THAT(error.what(), HasSubstr(said));
        }
    }
}

TEST(X11Desktop, IsNotTheXServerOfAWaylandSession) {
    for (const char* const program : {"weston", "Xwayland"}) {
        if (!findProgram(program)) {
            GTEST_SKIP() << program << " is not installed";
        }
    }
    X11Rig rig;
    const auto weston =
        rig.desktop.start({"weston", "--backend=headless-backend.so", "--xwayland", "--no-config"});
    constexpr std::string_view announcement = "listening on display ";
    const auto said = [&] { return weston.standardOutput() + weston.standardError(); };
    requireUntil("Xwayland's display",
                 [&] { return said().find(announcement) != std::string::npos; });
    const std::string text = said();
    std::string display;
    std::istringstream(text.substr(text.find(announcement) + announcement.size())) >> display;
    setenv("DISPLAY", display.c_str(), 1);
    PollLoop loop;
    std::string problem;
    EXPECT_FALSE(X11Desktop::open(loop, loop, problem)) << display;
    EXPECT_THAT(problem, HasSubstr("Wayland session"));
}

TEST(X11Desktop, DoesWithoutTheExtensionsThatItCanDoWithout) {
    X11Rig rig({.serverArguments = {"-extension", "RANDR", "-extension", "X-Resource", "-extension",
                                    "Composite"}});
    auto& server = rig.x11().windowServer();
    EXPECT_EQ(server.screens().size(), 1U);
    EXPECT_FALSE(server.preflightScreenCaptureAccess());
    EXPECT_FALSE(server.requestScreenCaptureAccess());
    const auto window = rig.foreignWindow({0, 0, 50, 50});
    rig.map(window);
    ASSERT_TRUE(rig.loop.runUntil([&] { return server.onScreenWindows()->size() == 1; }));
    EXPECT_FALSE(server.onScreenWindows()->front().ownerPID);
    // What a window says of its process counts, provided that it speaks of this machine.
    std::string host(256, '\0');
    gethostname(host.data(), host.size() - 1);
    host.resize(host.find('\0'));
    const auto claim = [&](const std::string& machine) {
        rig.setText(window, "WM_CLIENT_MACHINE", machine);
        rig.setNumbers(window, "_NET_WM_PID", XCB_ATOM_CARDINAL, {4711});
        rig.loop.settle();
        return server.onScreenWindows()->front().ownerPID;
    };
    EXPECT_EQ(claim("elsewhere.example"), std::nullopt);
    EXPECT_EQ(claim(host), 4711);
}

TEST(X11Desktop, EndsQuietlyWithTheServer) {
    auto number = makePipe();
    ProcessOptions options;
    options.inheritedDescriptors.push_back(number.writeEnd.get());
    ChildProcess server({"Xvfb", "-displayfd", std::to_string(number.writeEnd.get()), "-noreset"},
                        options);
    number.writeEnd.reset();
    const std::string display = ":" + readLine(number.readEnd.get(), generousDeadline);
    setenv("DISPLAY", display.c_str(), 1);

    PollLoop loop;
    std::string problem;
    const auto x11 = X11Desktop::open(loop, loop, problem);
    ASSERT_TRUE(x11) << problem;
    int lost = 0;
    x11->onConnectionLost([&] { ++lost; });
    CountingRasterizer rasterizer;
    EmptyView view;
    const auto window = x11->overlayWindows(rasterizer).makeWindow({0, 0, 100, 100}, {});
    window->setContentView(view);
    window->orderFrontRegardless();
    auto token = x11->eventMonitors().addGlobalMonitorForEvents(0xFFFFFFFF, [](const Event&) {});
    ASSERT_EQ(x11->windowServer().screens().size(), 1U);
    ASSERT_TRUE(x11->screenCapture().captureBelow({0, 0, 10, 10}, 0));
    loop.settle();

    server.terminate();
    EXPECT_TRUE(loop.runUntil([&] { return lost > 0; }));
    EXPECT_EQ(loop.settle(), 0U) << "woken up by a connection that is no more";
    EXPECT_EQ(lost, 1);
    EXPECT_FALSE(x11->windowServer().onScreenWindows());
    EXPECT_FALSE(x11->windowServer().preflightScreenCaptureAccess());
    EXPECT_FALSE(x11->screenCapture().captureBelow({0, 0, 10, 10}, 0));
    EXPECT_FALSE(x11->desktopWindows().windowAt({1, 1}, std::nullopt));
    EXPECT_FALSE(x11->desktopWindows().windowsOf(getpid()).any);
    EXPECT_FALSE(x11->eventMonitors().addGlobalMonitorForEvents(0, [](const Event&) {}));
    EXPECT_EQ(x11->pointer().modifierFlags(), 0U);
    EXPECT_EQ(x11->windowServer().screens().size(), 1U) << "as they were last";
    window->setNeedsDisplay();
    window->orderOut();
    loop.settle();
    EXPECT_EQ(lost, 1);
}

TEST(X11Desktop, SleepsWhileNothingHappens) {
    X11Rig rig;
    CountingRasterizer rasterizer;
    EmptyView view;
    const auto window = rig.x11().overlayWindows(rasterizer).makeWindow({0, 0, 800, 600}, {});
    window->setContentView(view);
    window->orderFrontRegardless();
    const auto token =
        rig.x11().eventMonitors().addGlobalMonitorForEvents(0xFFFFFFFF, [](const Event&) {});
    const auto lock = rig.x11().watchLock();
    static_cast<void>(rig.foreignList());
    rig.loop.settle();
    EXPECT_EQ(rig.loop.settle(std::chrono::milliseconds(500)), 0U);
}

} // namespace
} // namespace lumetry::desktop
