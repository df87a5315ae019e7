#include "inspected_desktop.h"

#include "rig/desktop_windows.h"
#include "rig/processes/wait_until.h"

#include <X11/keysym.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace lumetry::desktop {
namespace {

constexpr const char* factory = "gtk3-widget-factory";

class Withstands : public testing::Test {
protected:
    InspectedDesktop inspected;

    PrivateDesktop& desktop() { return inspected.desktop; }
};

TEST_F(Withstands, AnApplicationThatHangs) {
    auto hanging = inspected.startWidgetFactory();
    const auto button = inspected.tree.waitFor(factory, "push button", "link button");
    const auto other = desktop().start({"gtk3-demo"});
    const auto demoWindow = waitForWindow(desktop().server(), hasClass("Gtk3-demo"));
    placeWindow(desktop().server(), demoWindow.id,
                {700, 300, demoWindow.bounds.width, demoWindow.bounds.height});
    const auto runButton = inspected.tree.waitFor("gtk3-demo", "push button", "Run");
    auto lumetry = inspected.startLumetry();
    inspected.hover(button, "Button · link button");

    hanging.stop();
    desktop().input().glidePointer(200, 400);
    (void)inspected.overlay.waitFor("no stale readout", [](const OverlayReadout& shown) {
        return shown.header.find("link button") == std::string::npos;
    });
    // The next application is measured as ever.
    const auto next = runButton.extents();
    ASSERT_TRUE(next);
    desktop().input().glidePointer(static_cast<int>(next->midX()), static_cast<int>(next->midY()));
    (void)inspected.overlay.waitFor("the other application", [&](const OverlayReadout& shown) {
        return shown.value("size") == sizeText(*next);
    });
    hanging.resume();
    // It has a while's questions to answer first, and what rests is not asked again.
    requireUntil("the application to be measured again", [&] {
        const auto place = button.extents();
        const auto x = static_cast<int>(place ? place->midX() : 0);
        const auto y = static_cast<int>(place ? place->midY() : 0);
        desktop().input().glidePointer(x, y + 100);
        desktop().input().glidePointer(x, y);
        const auto shown = inspected.overlay.readout();
        return shown && shown->header == "Button · link button";
    });
}

TEST_F(Withstands, AnApplicationThatIsKilledUnderThePointer) {
    auto application = inspected.startWidgetFactory();
    const auto button = inspected.tree.waitFor(factory, "push button", "link button");
    auto lumetry = inspected.startLumetry();
    inspected.hover(button, "Button · link button");
    application.signal(SIGKILL);
    ASSERT_TRUE(application.wait());
    desktop().input().glidePointer(300, 300);
    (void)inspected.overlay.waitFor("an empty desktop", [](const OverlayReadout& shown) {
        return shown.header.find("Button") == std::string::npos && shown.exitTag;
    });
    EXPECT_TRUE(lumetry.running());
    EXPECT_EQ(lumetry.standardError(), "");
}

TEST_F(Withstands, AScreenLockerOverIt) {
    const auto application = inspected.startWidgetFactory();
    const auto button = inspected.tree.waitFor(factory, "push button", "link button");
    auto lumetry = inspected.startLumetry();
    inspected.hover(button, "Button · link button");
    const auto& server = desktop().server();
    const xcb_window_t locker = xcb_generate_id(server.get());
    const std::uint32_t unmanaged = 1;
    xcb_create_window(server.get(), XCB_COPY_FROM_PARENT, locker, server.root(), 0, 0, 1280, 800, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                      &unmanaged);
    xcb_map_window(server.get(), locker);
    server.sync();
    requireUntil("a hidden overlay", [&] { return !inspected.overlay.window(); });
    desktop().input().typeKey(XK_Escape);
    desktop().input().glidePointer(300, 300);
    EXPECT_FALSE(inspected.overlay.window());
    xcb_destroy_window(server.get(), locker);
    server.sync();
    (void)inspected.overlay.waitFor("the overlay by itself", [](const OverlayReadout& shown) {
        return shown.exitTag && shown.header.find("link button") == std::string::npos;
    });
}

/// What a process holds.
struct Holdings {
    long residentKilobytes = 0;
    long fileDescriptors = 0;
};

Holdings holdingsOf(const ChildProcess& process) {
    Holdings holdings;
    const auto folder = std::filesystem::path("/proc") / std::to_string(process.pid());
    std::ifstream status(folder / "status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("RssAnon:")) {
            holdings.residentKilobytes = std::stol(line.substr(8));
        }
    }
    holdings.fileDescriptors =
        std::distance(std::filesystem::directory_iterator(folder / "fd"), {});
    return holdings;
}

TEST_F(Withstands, ThousandsOfSamplesOverWindowsThatComeAndGo) {
    constexpr int samples = 2000;
    constexpr int warmUp = 200;
    constexpr int windowLifetime = 100;
#ifdef __SANITIZE_ADDRESS__
    constexpr long mostGrowthKilobytes = 300'000; // what is freed is held back for a while
#else
    constexpr long mostGrowthKilobytes = 2048;
#endif

    const auto application = inspected.startWidgetFactory();
    auto lumetry = inspected.startLumetry();
    Holdings before;
    std::unique_ptr<ChildProcess> visitor;
    for (int i = 0; i < samples; ++i) {
        if (i % windowLifetime == 0) {
            visitor = i / windowLifetime % 2 == 0
                          ? std::make_unique<ChildProcess>(desktop().start({"gtk3-demo"}))
                          : nullptr;
        }
        desktop().input().movePointer(20 + i * 37 % 1200, 20 + i * 23 % 740);
        // Two sampling intervals and a half for a sample each time.
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        if (i == warmUp) {
            before = holdingsOf(lumetry);
        }
    }
    visitor.reset();
    ASSERT_TRUE(lumetry.running()) << lumetry.standardError();
    const Holdings after = holdingsOf(lumetry);
    EXPECT_LE(after.residentKilobytes, before.residentKilobytes + mostGrowthKilobytes);
    EXPECT_LE(after.fileDescriptors, before.fileDescriptors);
    EXPECT_EQ(lumetry.standardError(), "");
}

} // namespace
} // namespace lumetry::desktop
