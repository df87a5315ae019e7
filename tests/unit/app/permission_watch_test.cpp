#include "shell_test.h"

namespace lumetry {
namespace {

class PermissionWatch : public ShellTest {
protected:
    PermissionWatch() {
        shell.application.bundle = "/Applications/Lumetry.app";
        allow(false, true);
    }
    void launchAndClose() {
        launch();
        onboarding().close();
    }
    [[nodiscard]] std::size_t relaunches() const { return shell.application.processes.size(); }
};

TEST_F(PermissionWatch, RelaunchesOnAGrantWithNoWindowOnScreen) {
    launchAndClose();
    advance(10);
    EXPECT_EQ(relaunches(), 0U);
    allow(true, true);
    advance(0.75);
    ASSERT_EQ(relaunches(), 1U);
    const FakeOwnApplication::Process expected = {
        "/bin/sh",
        {"-c",
         "for i in $(seq 1 30); do kill -0 77 2>/dev/null || break; sleep 0.1; done; "
         "/usr/bin/open \"$0\"",
         "/Applications/Lumetry.app"}};
    EXPECT_EQ(shell.application.processes[0], expected);
    EXPECT_EQ(shell.application.terminations, 1);
    advance(10);
    EXPECT_EQ(relaunches(), 1U);
}

TEST_F(PermissionWatch, TrustedFromTheStartItStays) {
    allow(true, true);
    setOnboarded();
    launch();
    advance(10);
    EXPECT_EQ(relaunches(), 0U) << "each new instance would be relaunched as well";
    EXPECT_TRUE(inspecting());
}

TEST_F(PermissionWatch, LeavesTheGrantToAWindowOnScreen) {
    launch();
    allow(true, true);
    advance(2);
    onboarding().close();
    advance(10);
    EXPECT_EQ(relaunches(), 0U);
}

TEST_F(PermissionWatch, GivesUpAndIsStartedAgainByTheShortcut) {
    launchAndClose();
    advance(400 * 0.75);
    advance(0.75);
    allow(true, true);
    advance(2);
    EXPECT_EQ(relaunches(), 0U);
    allow(false, true);
    pressShortcut();
    EXPECT_TRUE(onboardingShown() && !inspecting());
    onboarding().close();
    allow(true, true);
    advance(0.76);
    EXPECT_EQ(relaunches(), 1U);
}

TEST_F(PermissionWatch, StartedAgainItCountsFromTheBeginning) {
    launchAndClose();
    advance(300 * 0.75);
    delegate->watchForAccessibilityGrant();
    advance(390 * 0.75);
    allow(true, true);
    advance(0.76);
    EXPECT_EQ(relaunches(), 1U);
}

TEST_F(PermissionWatch, OffABundleNothingIsRelaunched) {
    shell.application.bundle = "/usr/bin";
    launchAndClose();
    allow(true, true);
    advance(1);
    EXPECT_EQ(relaunches(), 0U);
    EXPECT_EQ(shell.application.terminations, 0);
}

TEST_F(PermissionWatch, CompletedInABundleTheOnboardingRelaunches) {
    allow(true, true);
    launch();
    pressShortcut();
    advance(0.51);
    EXPECT_FALSE(onboardingShown());
    EXPECT_EQ(relaunches(), 1U);
    EXPECT_FALSE(inspecting());
}

TEST_F(PermissionWatch, ReopenAsksForARelaunch) {
    allow(true, false);
    launch();
    onboarding().actions->grantSR();
    advance(1);
    onboarding().actions->primaryTapped();
    EXPECT_EQ(relaunches(), 1U);
    EXPECT_EQ(shell.application.terminations, 1);
}

} // namespace
} // namespace lumetry
