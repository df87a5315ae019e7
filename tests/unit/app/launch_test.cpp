#include "shell_test.h"

namespace lumetry {
namespace {

TEST_F(ShellTest, RoutesByPermissionsAndFlag) {
    struct Case {
        bool ax;
        bool sr;
        bool onboarded;
        int step; ///< of the onboarding; -1: inspects at once
    };
    for (const Case& one :
         {Case{false, false, false, 0}, Case{true, false, false, 1}, Case{true, false, true, 1},
          Case{false, true, true, 1}, Case{true, true, false, 2}, Case{true, true, true, -1}}) {
        ShellTest_RoutesByPermissionsAndFlag_Test fresh;
        fresh.allow(one.ax, one.sr);
        if (one.onboarded) {
            fresh.setOnboarded();
        }
        fresh.delegate->applicationDidFinishLaunching();
        fresh.advance(0.149);
        EXPECT_FALSE(fresh.onboardingShown() || fresh.inspecting());
        fresh.advance(0.002);
        EXPECT_EQ(fresh.inspecting(), one.step < 0);
        EXPECT_EQ(fresh.onboardingShown(), one.step >= 0);
        if (one.step >= 0) {
            EXPECT_EQ(fresh.delegate->onboarding().step(), one.step);
        }
    }
}

TEST_F(ShellTest, InstallsItsItemAndShortcutWhateverIsGranted) {
    allow(false, false);
    launch();
    EXPECT_EQ(shell.desktop.accessibility.systemWide().messagingTimeoutSeconds, 0.2F);
    ASSERT_EQ(shell.statusBar.made.size(), 1U);
    const auto& item = *shell.statusBar.made[0];
    EXPECT_EQ(item.toolTip, "Lumetry — ⌃⇧M to toggle");
    std::string menu;
    for (const MenuItem& each : item.menu) {
        menu += (each.separator ? "-" : each.title) + (each.enabled ? "" : " (off)") + "\n";
    }
    EXPECT_EQ(menu, "Toggle Inspect  ⌃⇧M\n"
                    "-\n"
                    "How to use (off)\n"
                    "      ⌃⇧M  —  turn inspect on / off (off)\n"
                    "      Hover  —  size · font · padding · color (off)\n"
                    "      Hold ⌥  —  measure the gap between two elements (off)\n"
                    "      Esc  —  exit inspect mode (off)\n"
                    "-\n"
                    "Quit Lumetry\n");
    EXPECT_EQ(item.menu.front().keyEquivalent, "");
    EXPECT_EQ(item.menu.back().keyEquivalent, "q");
    item.menu.back().action();
    EXPECT_EQ(shell.application.terminations, 1);

    const auto keys = shell.hotKeys.registrations.all();
    ASSERT_EQ(keys.size(), 1U);
    EXPECT_EQ(keys[0].keyCode, 46U);
    EXPECT_EQ(keys[0].modifiers, 0x1200U);
}

TEST_F(ShellTest, DrawsItsMarkAtAnySize) {
    launch();
    const TemplateImage& image = shell.statusBar.made.at(0)->image;
    EXPECT_EQ(image.size, (Size{18, 18}));
    const StrokedPath drawn = image.drawingHandler({10, 20, 48, 48});
    EXPECT_DOUBLE_EQ(drawn.lineWidth, 3.8);
    ASSERT_EQ(drawn.lines.size(), 7U);
    EXPECT_EQ(drawn.lines[0], (std::vector<Point>{{19, 37}, {19, 29}, {27, 29}}));
    // Each corner is the one before, turned by a quarter around the middle.
    for (std::size_t corner = 1; corner < 4; ++corner) {
        for (std::size_t i = 0; i < 3; ++i) {
            const Point before = drawn.lines[corner - 1][i];
            EXPECT_EQ(drawn.lines[corner][i], (Point{34 + 44 - before.y, 44 - 34 + before.x}));
        }
    }
    EXPECT_EQ(drawn.lines[4], (std::vector<Point>{{28, 44}, {40, 44}}));
    EXPECT_EQ(drawn.lines[5], (std::vector<Point>{{28, 40}, {28, 48}}));
    EXPECT_EQ(drawn.lines[6], (std::vector<Point>{{40, 40}, {40, 48}}));
}

TEST_F(ShellTest, ShortcutAndMenuToggle) {
    allow(true, true);
    setOnboarded();
    launch();
    pressShortcut();
    EXPECT_FALSE(inspecting());
    shell.statusBar.made[0]->menu[0].action();
    EXPECT_TRUE(inspecting());
}

TEST_F(ShellTest, ShortcutLeavesTheOnboardingAloneButEndsThePractice) {
    allow(true, true);
    launch(); // at the practice
    onboarding().actions->backTapped();
    pressShortcut();
    EXPECT_FALSE(inspecting());
    EXPECT_FALSE(shell.desktop.defaults.boolForKey(onboardedKey));
    onboarding().actions->primaryTapped();
    pressShortcut();
    pressShortcut();
    EXPECT_TRUE(shell.desktop.defaults.boolForKey(onboardedKey));
    EXPECT_FALSE(inspecting());
    advance(0.51);
    EXPECT_FALSE(onboardingShown());
    EXPECT_TRUE(inspecting());
    EXPECT_TRUE(shell.application.processes.empty());
    pressShortcut();
    EXPECT_FALSE(inspecting());
}

TEST_F(ShellTest, ReopenShowsWhatIsWanted) {
    allow(true, true);
    setOnboarded();
    launch();
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(false));
    EXPECT_TRUE(panel().visible);
    EXPECT_EQ(shell.application.activations, 1);
    EXPECT_TRUE(inspecting());
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(true));
    EXPECT_EQ(panels.size(), 1U);
    EXPECT_EQ(panel().centered, 2);
    // Nothing else comes up while it inspects.
    shell.desktop.defaults.setBool(false, onboardedKey);
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(false));
    EXPECT_EQ(panel().centered, 2);
    EXPECT_TRUE(onboardingWindows.empty());
    EXPECT_TRUE(inspecting());
    setOnboarded();

    // Started from the panel while it inspects, nothing but the panel changes.
    panel().actions.startFromPanel();
    EXPECT_FALSE(panel().visible);
    EXPECT_TRUE(inspecting());
    pressShortcut();
    panel().actions.startFromPanel();
    EXPECT_TRUE(inspecting());

    // Once a permission is gone, the way to it.
    pressShortcut();
    allow(false, true);
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(false));
    EXPECT_TRUE(onboardingShown());
    const int activations = shell.application.activations;
    onboarding().inFront = false;
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(true));
    EXPECT_EQ(shell.application.activations, activations + 1);
    EXPECT_TRUE(onboarding().inFront);
    EXPECT_FALSE(panel().visible);

    panel().actions.quitFromPanel();
    EXPECT_EQ(shell.application.terminations, 1);
}

TEST_F(ShellTest, EndsWithItsLastWindowWhereNothingElseShowsIt) {
    allow(true, true);
    setOnboarded();
    launch();
    const auto ends = [&] { return delegate->applicationShouldTerminateAfterLastWindowClosed(); };
    shell.statusBar.present = false;
    EXPECT_FALSE(ends());
    pressShortcut();
    EXPECT_TRUE(ends());
    shell.statusBar.present = true;
    EXPECT_FALSE(ends());
}

TEST_F(ShellTest, TerminationTakesTheEnhancementsBack) {
    constexpr pid_t browser = 500;
    shell.desktop.launchElectron(browser, "Editor");
    shell.desktop.openWindow(browser, {0, 0, 400, 300});
    setOnboarded();
    launch();
    ASSERT_FALSE(shell.desktop.state.enhancedPIDs.empty());
    delegate->applicationWillTerminate();
    EXPECT_TRUE(shell.desktop.state.enhancedPIDs.empty());
}

TEST_F(ShellTest, NothingHappensOnceTheDelegateIsGone) {
    allow(false, false);
    delegate->applicationDidFinishLaunching();
    const auto toggle = shell.statusBar.made.at(0)->menu[0].action;
    delegate.reset();
    toggle();
    pressShortcut();
    advance(2);
    EXPECT_TRUE(onboardingWindows.empty());
    EXPECT_FALSE(shell.statusBar.made[0]->alive);
}

} // namespace
} // namespace lumetry
