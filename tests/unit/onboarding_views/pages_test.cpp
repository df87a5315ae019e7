#include "onboarding/views/keycap.h"
#include "onboarding/views/symbols.h"
#include "views_test.h"

#include <QAccessible>

namespace lumetry {
namespace {

using namespace views;

QString accessible(const QWidget& widget, QAccessible::Text text) {
    return QAccessible::queryAccessibleInterface(const_cast<QWidget*>(&widget))->text(text);
}

TEST_F(OnboardingViewsTest, MakesRoomForEveryNudge) {
    open(OnboardingStep::takeoff);
    for (const char* const nudge : {"⌃ down — add ⇧ and M", "here we go!"}) {
        window->setNudge(nudge);
        QCoreApplication::sendPostedEvents();
        ASSERT_NE(label(nudge), nullptr);
        EXPECT_EQ(label(nudge)->width(), label(nudge)->sizeHint().width());
    }
}

TEST_F(OnboardingViewsTest, ShowsWhatBecameOfThePermissions) {
    for (const bool before : {true, false}) {
        for (const CardState& state : {CardState{}, CardState{CardTint::green, false, "Granted ✓"},
                                       CardState{CardTint::orange, false, "Reopen ↻"}}) {
            // Told before there is the page, or while it is there.
            window->setCard(Permission::screenRecording, state);
            if (before) {
                open(OnboardingStep::permissions);
            }
            QCoreApplication::sendPostedEvents();
            const QAbstractButton* const grant = button("Grant Screen Recording");
            EXPECT_EQ(grant->isVisible(), state.grantButtonShown);
            EXPECT_TRUE(button("Grant Accessibility")->isVisible());
            EXPECT_EQ(label("Granted ✓") != nullptr, state.done == "Granted ✓");
            EXPECT_EQ(label("Reopen ↻") != nullptr, state.done == "Reopen ↻");
        }
    }
}

TEST_F(OnboardingViewsTest, PopsAFreshGrant) {
    open(OnboardingStep::permissions);
    auto& icon = first<SymbolView>();
    EXPECT_EQ(accessible(icon, QAccessible::Name), "Accessibility");
    window->pop(Permission::accessibility);
    EXPECT_EQ(icon.scale(), 0.5);
    passTime(209);
    EXPECT_NEAR(icon.scale(), 1.3, 1e-3);
    passTime(380);
    EXPECT_EQ(icon.scale(), 1);
}

TEST_F(OnboardingViewsTest, LightsTheCapOfAHeldKeyOnce) {
    open(OnboardingStep::takeoff);
    auto& control = first<Keycap>();
    EXPECT_EQ(accessible(control, QAccessible::Name), "control");
    window->setKeyActive(PracticeKey::control, false);
    EXPECT_TRUE(control.isBreathing()) << "it was at rest already";

    window->setKeyActive(PracticeKey::control, true);
    EXPECT_EQ(accessible(control, QAccessible::Description), "held");
    EXPECT_FALSE(control.isBreathing());
    passTime(120);
    EXPECT_EQ(control.glowOpacity(), 0.7);
    window->setKeyActive(PracticeKey::control, true);
    passTime(60);
    EXPECT_EQ(control.glowOpacity(), 0.7) << "it began anew";

    window->setKeyActive(PracticeKey::control, false);
    EXPECT_NE(accessible(control, QAccessible::Description), "held");
    passTime(250);
    EXPECT_TRUE(control.isBreathing());
    passTime(2250); // on the way back
    EXPECT_NEAR(control.glowOpacity(), 0.26, 1e-3);
    // Pages without keys take no notice.
    window->showStep(OnboardingStep::welcome, false);
    window->setKeyActive(PracticeKey::shift, true);
    window->setNudge("almost — tap M!");
    EXPECT_EQ(label("almost — tap M!"), nullptr);
}

} // namespace
} // namespace lumetry
