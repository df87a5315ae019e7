#include "onboarding_test.h"

namespace lumetry {
namespace {

const CardState notGranted = {CardTint::accent, true, std::nullopt};
const CardState granted = {CardTint::green, false, "Granted ✓"};
const CardState pending = {CardTint::orange, false, "Reopen ↻"};

class PermissionCards : public OnboardingTest {
protected:
    void expectCards(const CardState& ax, const CardState& sr) {
        EXPECT_EQ(window().cards[Permission::accessibility], ax);
        EXPECT_EQ(window().cards[Permission::screenRecording], sr);
    }
};

TEST_F(PermissionCards, WaitThenTurnGreenAndComeForward) {
    allow(false, false);
    controller->show();
    user().primaryTapped();
    expectCards(notGranted, notGranted);
    EXPECT_TRUE(window().pops.empty());

    user().grantAX();
    EXPECT_FALSE(window().inFront);
    EXPECT_EQ(shell.desktop.accessibility.prompts, 1);
    EXPECT_EQ(shell.application.addresses,
              std::vector<std::string>{"x-apple.systempreferences:com.apple.preference.security"
                                       "?Privacy_Accessibility"});
    advance(1);
    EXPECT_FALSE(window().inFront); // denied or not yet decided

    allow(true, false);
    advance(1);
    expectCards(granted, notGranted);
    EXPECT_TRUE(window().inFront);
    EXPECT_EQ(window().pops, std::vector{Permission::accessibility});

    // Told once.
    window().inFront = false;
    advance(3);
    EXPECT_FALSE(window().inFront);
    EXPECT_EQ(window().pops.size(), 1U);
}

TEST_F(PermissionCards, ScreenRecordingIsPendingUntilItIsSeen) {
    allow(true, false);
    controller->show();
    user().grantSR();
    EXPECT_FALSE(window().inFront);
    EXPECT_EQ(shell.desktop.windowServer.captureRequests, 1);
    EXPECT_TRUE(shell.application.addresses.empty());
    shell.desktop.windowServer.shareableContentRequests.at(0)();
    advance(0.39);
    EXPECT_TRUE(shell.application.addresses.empty());
    advance(0.02);
    EXPECT_EQ(shell.application.addresses.size(), 1U);
    EXPECT_TRUE(shell.application.addresses[0].ends_with("?Privacy_ScreenCapture"));
    advance(1);
    expectCards(granted, pending);

    allow(true, true);
    window().inFront = false;
    advance(1);
    expectCards(granted, granted);
    EXPECT_TRUE(window().inFront);
    EXPECT_EQ(window().pops.back(), Permission::screenRecording);
}

TEST_F(PermissionCards, RevokedGoesBackWithoutAPopAndGrantedAgainPopsAgain) {
    allow(true, true);
    controller->show();
    EXPECT_EQ(window().pops, (std::vector{Permission::accessibility, Permission::screenRecording}));
    const std::size_t pops = window().pops.size();
    allow(false, true);
    advance(1);
    expectCards(notGranted, granted);
    EXPECT_EQ(window().pops.size(), pops);
    EXPECT_FALSE(window().primaryEnabled);
    allow(true, true);
    advance(1);
    EXPECT_EQ(window().pops.size(), pops + 1);
    allow(true, false);
    advance(1);
    expectCards(granted, notGranted);
}

TEST_F(PermissionCards, AHiddenWindowIsNotBroughtForward) {
    allow(false, false);
    controller->show();
    window().visible = window().inFront = false; // minimised, say
    const int before = shell.application.activations;
    allow(true, true);
    advance(1);
    EXPECT_FALSE(window().inFront);
    EXPECT_EQ(shell.application.activations, before);
}

} // namespace
} // namespace lumetry
