#include "onboarding_test.h"

namespace lumetry {
namespace {

TEST_F(OnboardingTest, OpensWhereTheWayIsStillToGo) {
    struct Case {
        bool trusted;
        bool onboarded;
        int step;
    };
    for (const Case& one : {Case{false, false, 0}, Case{true, false, 1}, Case{false, true, 1}}) {
        allow(one.trusted, false);
        shell.desktop.defaults.setBool(one.onboarded, onboardedKey);
        controller->show();
        EXPECT_EQ(controller->step(), one.step);
        EXPECT_EQ(window().step, static_cast<OnboardingStep>(one.step));
        EXPECT_FALSE(window().animated);
        EXPECT_TRUE(window().inFront);
        window().close();
    }
    EXPECT_EQ(windows.size(), 1U);
    EXPECT_EQ(window().centered, 3);
}

TEST_F(OnboardingTest, ShownAgainItKeepsItsStepAndComesForward) {
    allow(true, true);
    controller->show();
    user().primaryTapped();
    ASSERT_EQ(controller->step(), 2);
    window().inFront = false;
    allow(false, true);
    controller->show();
    EXPECT_EQ(controller->step(), 2);
    EXPECT_EQ(window().cards[Permission::accessibility].icon, CardTint::accent) << "read anew";
    EXPECT_TRUE(window().inFront);
    EXPECT_EQ(window().centered, 1);
    EXPECT_EQ(shell.application.activations, 2);

    user().backTapped();
    controller->showTakeoff(); // which goes to the practice whatever is on screen
    EXPECT_EQ(controller->step(), 2);
    EXPECT_FALSE(window().animated);
    EXPECT_EQ(window().centered, 2);
}

TEST_F(OnboardingTest, PrimaryButtonFollowsStepAndPermissions) {
    allow(false, false);
    controller->show();
    EXPECT_EQ(window().primary, "Get Started");
    EXPECT_TRUE(window().primaryEnabled);
    user().primaryTapped();

    struct Case {
        bool ax;
        bool sr;
        bool asked;
        const char* title;
        bool enabled;
    };
    for (const Case& one : {
             Case{false, false, false, "Grant Accessibility to continue", false},
             Case{true, false, false, "Grant Screen Recording to continue", false},
             Case{true, true, false, "Continue", true},
             Case{true, false, true, "Reopen Lumetry to apply", true},
             Case{false, false, true, "Grant Accessibility to continue", false},
         }) {
        if (one.asked) {
            user().grantSR();
        }
        allow(one.ax, one.sr);
        advance(1);
        EXPECT_EQ(window().primary, one.title);
        EXPECT_EQ(window().primaryEnabled, one.enabled) << one.title;
    }
    user().primaryTapped();
    EXPECT_EQ(controller->step(), 2);
    EXPECT_TRUE(window().animated);
    EXPECT_EQ(window().primary, "Start Inspecting");
    EXPECT_TRUE(window().primaryEnabled);
}

TEST_F(OnboardingTest, ReopensOnlyWhileTheGrantIsPending) {
    allow(true, false);
    controller->show();
    user().grantSR();
    advance(1);
    user().primaryTapped();
    EXPECT_EQ(reopens, 1);
    EXPECT_EQ(controller->step(), 1);

    // A step away the button is an ordinary one again.
    user().backTapped();
    user().backTapped(); // before which there is none
    EXPECT_EQ(controller->step(), 0);
    EXPECT_TRUE(window().animated);
    user().primaryTapped();
    EXPECT_EQ(reopens, 1);
    EXPECT_EQ(controller->step(), 1);
}

TEST_F(OnboardingTest, CompletesOnceHoweverOftenItIsAsked) {
    allow(true, true);
    controller->showTakeoff();
    key(EventType::keyDown, keyCodeM);
    user().primaryTapped();
    user().primaryTapped();
    controller->complete();
    key(EventType::flagsChanged, keyCodeUnknown); // lets the keys go, which stay lit
    EXPECT_TRUE(shell.desktop.defaults.boolForKey("lumetry.onboarded"));
    advance(0.49);
    EXPECT_EQ(starts, 0);
    EXPECT_EQ(window().nudge, "here we go!");
    EXPECT_EQ(window().keys, (std::map<PracticeKey, bool>{{PracticeKey::control, true},
                                                          {PracticeKey::shift, true},
                                                          {PracticeKey::m, true}}));
    advance(0.02);
    EXPECT_EQ(starts, 1);
    // Another page begins anew.
    controller->showTakeoff();
    user().primaryTapped();
    advance(1);
    EXPECT_EQ(starts, 2);
}

TEST_F(OnboardingTest, ClosingLeavesNothingBehindAndNothingDone) {
    allow(true, true);
    controller->showTakeoff();
    EXPECT_EQ(shell.application.policy, ActivationPolicy::regular);
    EXPECT_EQ(shell.application.observers.all().size(), 1U);
    window().close();
    EXPECT_EQ(shell.application.policy, ActivationPolicy::accessory);
    EXPECT_TRUE(shell.application.observers.all().empty());
    EXPECT_EQ(monitors(), 0U);
    EXPECT_FALSE(shell.desktop.defaults.boolForKey(onboardedKey));
    // No refresh any more.
    allow(false, false);
    advance(3);
    EXPECT_EQ(window().cards[Permission::accessibility].icon, CardTint::green);
    controller->show();
    EXPECT_EQ(controller->step(), 0);
}

TEST_F(OnboardingTest, ActivationRefreshesAndRaises) {
    allow(false, false);
    controller->show();
    user().primaryTapped();
    allow(true, false);
    shell.application.becomeActive();
    EXPECT_EQ(window().primary, "Grant Screen Recording to continue");
    window().inFront = false;
    shell.application.becomeActive();
    EXPECT_TRUE(window().inFront) << "with nothing granted anew";
}

TEST_F(OnboardingTest, NothingHappensOnceTheControllerIsGone) {
    allow(true, true);
    controller->showTakeoff();
    key(EventType::keyDown, keyCodeM);
    user().grantSR();
    controller->complete();
    const auto completion = shell.desktop.windowServer.shareableContentRequests.at(0);
    controller.reset();
    advance(2);
    completion();
    advance(2);
    EXPECT_EQ(starts, 0);
    EXPECT_EQ(monitors(), 0U);
    EXPECT_TRUE(shell.application.addresses.empty());
}

} // namespace
} // namespace lumetry
