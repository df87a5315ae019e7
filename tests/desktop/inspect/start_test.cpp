#include "inspected_desktop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace lumetry::desktop {
namespace {

/// Nothing but the X server and the buses.
DesktopOptions bareOptions(AccessibilityBus accessibility) {
    DesktopOptions options;
    options.windowManager = false;
    options.compositor = false;
    options.accessibility = accessibility;
    return options;
}

/// One sentence of what to do, and status 1.
TEST(Start, SaysWhatIsMissingAndHowToMendIt) {
    const PrivateDesktop desktop(bareOptions(AccessibilityBus::none));
    ProcessOptions options;
    options.environment = desktop.environment();
    options.environment.erase("DISPLAY");
    const auto finished = runProgram({LUMETRY_PROGRAM}, options);
    EXPECT_EQ(finished.status.code, 1);
    EXPECT_EQ(finished.output, "");
    EXPECT_NE(finished.error.find("DISPLAY"), std::string::npos) << finished.error;
    EXPECT_EQ(std::ranges::count(finished.error, '\n'), 1) << finished.error;
    EXPECT_TRUE(finished.error.starts_with("lumetry: ")) << finished.error;
}

// Nothing but a session bus and a display is taken for granted.
TEST(Start, InspectsWithoutAWindowManagerAndEndsOnRequest) {
    InspectedDesktop inspected(bareOptions(AccessibilityBus::enabled));
    const auto application = inspected.desktop.start({"gtk3-widget-factory"});
    const auto button = inspected.tree.waitFor("gtk3-widget-factory", "push button", "link button");
    auto lumetry = inspected.startLumetry();
    inspected.hover(button, "Button · link button");
    lumetry.signal(SIGTERM);
    const auto status = lumetry.wait();
    ASSERT_TRUE(status);
    EXPECT_EQ(status->code, 0);
    EXPECT_EQ(lumetry.standardError(), "");
}

TEST(Start, CoversAllScreensWithTheExitTagOnThePrimaryOne) {
    DesktopOptions options;
    options.width = 1600;
    options.height = 700;
    options.screens = {{800, 0, 800, 700}, {0, 0, 800, 600}};
    InspectedDesktop inspected(options);
    auto lumetry = inspected.startLumetry();
    const auto application = inspected.startWidgetFactory();
    const auto combo = inspected.tree.waitFor("gtk3-widget-factory", "radio button", "Page 2");
    inspected.hover(combo, "RadioButton · Page 2");
    const auto extents = combo.extents();
    ASSERT_TRUE(extents);
    EXPECT_TRUE(waitUntil([&] {
        return outlineProblem(screenshot(inspected.desktop.server()), *extents).empty();
    })) << outlineProblem(screenshot(inspected.desktop.server()), *extents);
}

} // namespace
} // namespace lumetry::desktop
