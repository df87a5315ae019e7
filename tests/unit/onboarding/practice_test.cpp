#include "onboarding_test.h"

namespace lumetry {
namespace {

class Practice : public OnboardingTest {
protected:
    Practice() {
        allow(true, true);
        controller->showTakeoff();
    }

    EventFate hold(ModifierFlags flags) {
        return key(EventType::flagsChanged, keyCodeUnknown, flags);
    }
    [[nodiscard]] bool lit(PracticeKey one) { return window().keys[one]; }
};

TEST_F(Practice, TellsWhatIsMissing) {
    struct Case {
        ModifierFlags held;
        const char* nudge;
        bool control;
        bool shift;
    };
    for (const Case& one : {
             Case{modifierShift, "⇧ down — add ⌃ and M", false, true},
             Case{modifierShift | modifierControl, "almost — tap M!", true, true},
             Case{modifierControl | modifierOption, "⌃ down — add ⇧ and M", true, false},
             Case{0, "waiting for your keys…", false, false},
         }) {
        EXPECT_EQ(hold(one.held), EventFate::passOn);
        EXPECT_EQ(window().nudge, one.nudge);
        EXPECT_EQ(lit(PracticeKey::control), one.control) << one.nudge;
        EXPECT_EQ(lit(PracticeKey::shift), one.shift) << one.nudge;
    }
}

TEST_F(Practice, LightsMForAWhileAndSwallowsIt) {
    EXPECT_EQ(key(EventType::keyDown, keyCodeM), EventFate::swallow);
    EXPECT_TRUE(lit(PracticeKey::m));
    advance(0.2);
    key(EventType::keyDown, keyCodeM);
    advance(0.11); // the first press ends it, though the second came later
    EXPECT_FALSE(lit(PracticeKey::m));
    EXPECT_EQ(key(EventType::keyDown, keyCodeEscape), EventFate::passOn);
    EXPECT_FALSE(lit(PracticeKey::m));
}

TEST_F(Practice, ListensOnlyOnItsPage) {
    EXPECT_EQ(monitors(), 2U);
    controller->showTakeoff();
    EXPECT_EQ(monitors(), 2U);
    user().backTapped();
    EXPECT_EQ(monitors(), 0U);
    hold(modifierShift);
    EXPECT_EQ(window().nudge, "");
    user().primaryTapped();
    EXPECT_EQ(monitors(), 2U);
}

} // namespace
} // namespace lumetry
