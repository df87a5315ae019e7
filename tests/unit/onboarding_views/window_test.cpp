#include "onboarding/views/step_indicator.h"
#include "views_test.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QImage>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace lumetry {
namespace {

using namespace views;
using Calls = std::vector<std::string>;

int distance(const QColor& a, const QColor& b) {
    return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) +
           std::abs(a.blue() - b.blue());
}

TEST_F(OnboardingViewsTest, HasAFixedSizeAndADarkGroundWithALightInIt) {
    open(OnboardingStep::welcome);
    EXPECT_EQ(widget->minimumSize(), QSize(860, 580));
    EXPECT_EQ(widget->maximumSize(), QSize(860, 580));
    const QImage picture = widget->grab().toImage();
    // The light's middle is 30 % above the lower edge; the upper corners are farthest from it.
    const QColor corner = picture.pixelColor(2, 2);
    const QColor middle = picture.pixelColor(430, 500);
    EXPECT_LE(distance(corner, QColor(23, 23, 28)), 8);
    EXPECT_GE(middle.red() - corner.red(), 8);
    EXPECT_EQ(picture.pixelColor(0, 300).alpha(), 255);
}

TEST_F(OnboardingViewsTest, PlacesTheChrome) {
    open(OnboardingStep::permissions);
    const QRect primary = placeOf(*button("Continue"));
    const QRect back = placeOf(*button("back"));
    const QRect dashes = placeOf(*only<StepIndicator>());
    EXPECT_EQ(860 - (primary.x() + primary.width()), 24);
    EXPECT_EQ(580 - (primary.y() + primary.height()), 18);
    EXPECT_EQ(primary.height(), 42);
    EXPECT_EQ(back.x(), 22);
    EXPECT_EQ(dashes.x() - (back.x() + back.width()), 16);
    const double middle = primary.y() + primary.height() / 2.0;
    EXPECT_NEAR(back.y() + back.height() / 2.0, middle, 0.5);
    EXPECT_NEAR(dashes.y() + dashes.height() / 2.0, middle, 0.5);
}

TEST_F(OnboardingViewsTest, MovesTheDashesAndHidesTheBackButtonAtTheFirstStep) {
    open(OnboardingStep::welcome);
    for (int step = 0; step < onboardingStepCount; ++step) {
        window->showStep(static_cast<OnboardingStep>(step), true);
        const auto* const dashes = only<StepIndicator>();
        EXPECT_TRUE(runUntil([&] { return dashes->dashWidth(step) == 34; })) << step;
        const QImage picture = widget->grab().toImage();
        double x = placeOf(*dashes).x();
        for (int dash = 0; dash < onboardingStepCount; ++dash) {
            EXPECT_EQ(dashes->dashWidth(dash), dash == step ? 34 : 18);
            const QColor color =
                picture.pixelColor(static_cast<int>(x) + 9, placeOf(*dashes).center().y());
            EXPECT_EQ(distance(color, QColor(255, 61, 138)) < 8, dash == step);
            x += dashes->dashWidth(dash) + 7;
        }
        EXPECT_EQ(button("back")->isVisible(), step > 0);
    }
}

TEST_F(OnboardingViewsTest, FitsThePrimaryButtonToItsTitle) {
    open(OnboardingStep::permissions);
    struct Case {
        const char* title;
        bool enabled;
        bool least; ///< the narrowest there is
    };
    for (const Case& c : {Case{"Get Started", true, true}, Case{"Continue", true, true},
                          Case{"Grant Screen Recording to continue", false, false},
                          Case{"Reopen Lumetry to apply", true, false}}) {
        SCOPED_TRACE(c.title);
        window->setPrimary(c.title, c.enabled);
        const QAbstractButton* const primary = button(c.title);
        ASSERT_NE(primary, nullptr);
        const double title = QFontMetricsF(primary->font()).horizontalAdvance(c.title);
        EXPECT_EQ(primary->width() == 150, c.least);
        EXPECT_EQ(primary->width(), std::max(150.0, std::ceil(title) + 52));
        EXPECT_EQ(placeOf(*primary).x() + primary->width(), 860 - 24);
        EXPECT_EQ(primary->isEnabled(), c.enabled);
        const QColor fill =
            widget->grab().toImage().pixelColor(placeOf(*primary).topLeft() + QPoint(20, 10));
        EXPECT_EQ(distance(fill, QColor(255, 61, 138)) < 8, c.enabled);
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
        const QImage before = widget->grab().toImage();
        typeKey(*widget, Qt::Key_Tab);
        ASSERT_EQ(widget->focusWidget(), button(c.name));
        const QRect place = placeOf(*button(c.name));
        EXPECT_NE(widget->grab().toImage().copy(place), before.copy(place)) << "no focus ring";
        for (const int key : {Qt::Key_Space, Qt::Key_Return}) {
            actions.calls.clear();
            typeKey(*widget, key);
            EXPECT_EQ(actions.calls, Calls{c.call});
        }
    }
}

TEST_F(OnboardingViewsTest, PressesThePrimaryButtonForReturnWhateverHasTheKeyboard) {
    open(OnboardingStep::takeoff, "Start Inspecting");
    if (QWidget* const focused = widget->focusWidget()) {
        focused->clearFocus();
    }
    typeKey(*widget, Qt::Key_Return);
    EXPECT_EQ(actions.calls, Calls{"primary"});
    window->setPrimary("Start Inspecting", false);
    typeKey(*widget, Qt::Key_Return);
    EXPECT_EQ(actions.calls, Calls{"primary"});
}

TEST_F(OnboardingViewsTest, TellsOnceThatItClosesAndLivesOn) {
    open(OnboardingStep::welcome);
    window->close();
    EXPECT_EQ(actions.calls, Calls{"close"});
    EXPECT_FALSE(window->isVisible());
    window->close();
    EXPECT_EQ(actions.calls, Calls{"close"}) << "it was closed already";
    window->makeKeyAndOrderFront();
    EXPECT_TRUE(window->isVisible());
    widget->close();
    EXPECT_EQ(actions.calls, (Calls{"close", "close"}));
}

TEST_F(OnboardingViewsTest, MayCloseOrChangeItsStepAtAnyMomentOfAnAnimation) {
    for (const int moment : {0, 100, 350}) {
        for (int step = 0; step < onboardingStepCount; ++step) {
            window->showStep(OnboardingStep::permissions, false);
            window->makeKeyAndOrderFront();
            window->pop(Permission::accessibility);
            window->showStep(static_cast<OnboardingStep>(step), true);
            window->setKeyActive(PracticeKey::m, true);
            run(moment);
            window->showStep(static_cast<OnboardingStep>((step + 1) % onboardingStepCount), true);
            window->showStep(static_cast<OnboardingStep>(step), true);
            run(moment / 2);
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
    run(400);
}

TEST_F(OnboardingViewsTest, DrawsNothingWhileHidden) {
    open(OnboardingStep::takeoff);
    run(400);
    window->close();
    run(50);
    struct Counter final : QObject {
        bool eventFilter(QObject* watched, QEvent* event) override {
            timers += event->type() == QEvent::Timer ? 1 : 0;
            return QObject::eventFilter(watched, event);
        }
        int timers = 0;
    } counter;
    qApp->installEventFilter(&counter);
    run(500);
    qApp->removeEventFilter(&counter);
    // The one that ends the wait.
    EXPECT_LE(counter.timers, 2);
}

} // namespace
} // namespace lumetry
