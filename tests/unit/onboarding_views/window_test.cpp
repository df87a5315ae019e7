#include "onboarding/views/step_indicator.h"
#include "views_test.h"

#include <QAbstractAnimation>
#include <QApplication>
#include <QScreen>
#include <QTest>
#include <QTimeLine>

#include <algorithm>

namespace lumetry {
namespace {

using namespace views;
using Calls = std::vector<std::string>;

TEST_F(OnboardingViewsTest, OpensInTheMiddleOfTheScreenWithItsFrame) {
    window->center();
    open(OnboardingStep::welcome);
    ASSERT_NE(widget->frameSize(), widget->size());
    // Wider than this screen, it is told only by its height.
    EXPECT_NEAR(widget->frameGeometry().center().y(),
                widget->screen()->availableGeometry().center().y(), 1);
}

TEST_F(OnboardingViewsTest, TellsItsStepAndHidesTheBackButtonAtTheFirst) {
    open(OnboardingStep::takeoff);
    for (int step = 0; step < onboardingStepCount; ++step) {
        window->showStep(static_cast<OnboardingStep>(step), true);
        EXPECT_EQ(first<StepIndicator>().accessibleName(),
                  QStringLiteral("Step %1 of 3").arg(step + 1));
        EXPECT_EQ(button("back")->isVisible(), step > 0);
    }
}

TEST_F(OnboardingViewsTest, ReachesEveryButtonByKeyboardAndPressesIt) {
    open(OnboardingStep::permissions);
    button("Continue")->setFocus();
    struct Case {
        const char* name;
        const char* call;
    };
    // The content first, then back, then on.
    for (const Case& c :
         {Case{"Grant Accessibility", "grantAX"}, Case{"Grant Screen Recording", "grantSR"},
          Case{"back", "back"}, Case{"Continue", "primary"}}) {
        SCOPED_TRACE(c.name);
        typeKey(*widget, Qt::Key_Tab);
        ASSERT_EQ(widget->focusWidget(), button(c.name));
        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return}) {
            actions.calls.clear();
            typeKey(*widget, key);
            EXPECT_EQ(actions.calls, Calls{c.call});
        }
    }
}

TEST_F(OnboardingViewsTest, MayCloseOrChangeItsStepAtAnyMomentOfAnAnimation) {
    for (const int moment : {0, 100, 350}) {
        for (int step = 0; step < onboardingStepCount; ++step) {
            window->showStep(OnboardingStep::permissions, false);
            window->makeKeyAndOrderFront();
            window->pop(Permission::accessibility);
            window->showStep(static_cast<OnboardingStep>(step), true);
            window->setKeyActive(PracticeKey::m, true);
            passTime(moment);
            window->showStep(static_cast<OnboardingStep>((step + 1) % onboardingStepCount), true);
            window->showStep(static_cast<OnboardingStep>(step), true);
            passTime(moment / 2);
            window->close();
            EXPECT_FALSE(window->isVisible());
        }
    }
    open(OnboardingStep::permissions);
    EXPECT_NE(label("Two quick\npermissions"), nullptr);
    EXPECT_EQ(label("Woohoo — you're all set! 🎉"), nullptr);
    EXPECT_EQ(button("Grant Accessibility")->graphicsEffect(), nullptr);
    window->showStep(OnboardingStep::welcome, true);
    window.reset();
    QCoreApplication::processEvents();
}

TEST_F(OnboardingViewsTest, RestsWhileClosedAndTellsOnceThatItCloses) {
    open(OnboardingStep::takeoff);
    const auto moves = [this] {
        const auto swings = widget->findChildren<QTimeLine*>();
        return std::any_of(swings.begin(), swings.end(), [](const QTimeLine* swing) {
            return swing->state() == QTimeLine::Running;
        });
    };
    EXPECT_TRUE(moves());
    window->close();
    window->close();
    EXPECT_EQ(actions.calls, Calls{"close"});
    EXPECT_FALSE(moves());
    for (const auto* const animation : widget->findChildren<QAbstractAnimation*>()) {
        EXPECT_EQ(animation->state(), QAbstractAnimation::Stopped);
    }
    window->makeKeyAndOrderFront();
    EXPECT_TRUE(moves());
}

} // namespace
} // namespace lumetry
