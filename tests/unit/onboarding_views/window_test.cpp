#include "onboarding/views/brand_mark_view.h"
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

const QColor pinkOnScreen(255, 61, 138);

TEST_F(OnboardingViewsTest, OpensInTheMiddleOfTheScreenWithItsFrame) {
    window->center();
    open(OnboardingStep::welcome);
    ASSERT_NE(widget->frameSize(), widget->size());
    // Wider than this screen, it is told only by its height.
    EXPECT_NEAR(widget->frameGeometry().center().y(),
                widget->screen()->availableGeometry().center().y(), 1);
}

TEST_F(OnboardingViewsTest, HasADarkGroundWithALightInIt) {
    open(OnboardingStep::welcome);
    // The light's middle is 30 % above the lower edge; the upper corners are farthest from it.
    const QColor corner = picture().pixelColor(2, 2);
    const QColor middle = picture().pixelColor(430, 500);
    EXPECT_LE(distance(corner, QColor(23, 23, 28)), 8);
    EXPECT_GE(middle.red() - corner.red(), 8);
}

TEST_F(OnboardingViewsTest, LetsItsViewsComeDownOneAfterAnother) {
    open(OnboardingStep::welcome);
    // Of white text.
    const auto topOf = [this](const QRect& place) {
        const QImage whole = picture();
        for (int y = place.top() - 20; y <= place.bottom(); ++y) {
            for (int x = place.left(); x <= place.right(); ++x) {
                if (whole.pixelColor(x, y).green() > 90) {
                    return y;
                }
            }
        }
        return -1;
    };
    const QRect title = placeOf(*label("Measure anything on your Mac."));
    const int top = topOf(title);
    window->showStep(OnboardingStep::welcome, false);
    QCoreApplication::sendPostedEvents();
    passTime(0);
    EXPECT_EQ(topOf(title), -1);
    passTime(250);
    EXPECT_NEAR(topOf(title), top - 16 * (1 - 0.6846), 2);

    open(OnboardingStep::permissions);
    const QRect card = placeOf(*button("Grant Accessibility")->parentWidget());
    window->showStep(OnboardingStep::permissions, false);
    QCoreApplication::sendPostedEvents();
    passTime(70 + 250);
    const auto above = [&, shown = picture()](int pixels) {
        return shown.pixelColor(card.center().x(), card.top() - pixels);
    };
    EXPECT_GE(distance(above(3), above(9)), 12) << "cut off at its parent's edge";
}

TEST_F(OnboardingViewsTest, FadesTheWholeOfANewPage) {
    open(OnboardingStep::permissions);
    // Where the first stroke of the mark begins.
    const auto stroke = [this] {
        QCoreApplication::sendPostedEvents();
        passTime(100);
        const auto& mark = first<BrandMarkView>();
        const QPoint margin(BrandMarkView::margin(), BrandMarkView::margin());
        return distance(picture().pixelColor(placeOf(mark).topLeft() + margin + QPoint(16, 36)),
                        pinkOnScreen);
    };
    window->showStep(OnboardingStep::welcome, false);
    EXPECT_LE(stroke(), 20);
    window->showStep(OnboardingStep::permissions, false);
    window->showStep(OnboardingStep::welcome, true);
    EXPECT_GE(stroke(), 90);
}

TEST_F(OnboardingViewsTest, MovesTheDashesAndHidesTheBackButtonAtTheFirstStep) {
    open(OnboardingStep::takeoff);
    for (int step = 0; step < onboardingStepCount; ++step) {
        window->showStep(static_cast<OnboardingStep>(step), true);
        const auto& dashes = first<StepIndicator>();
        passTime(125);
        EXPECT_NEAR(dashes.dashWidth(step), 18 + 16 * 0.8024, 0.01);
        passTime(250);
        for (int dash = 0; dash < onboardingStepCount; ++dash) {
            EXPECT_EQ(dashes.dashWidth(dash), dash == step ? 34 : 18);
        }
        EXPECT_EQ(button("back")->isVisible(), step > 0);
    }
}

TEST_F(OnboardingViewsTest, WidensThePrimaryButtonToTheLeftForALongTitle) {
    open(OnboardingStep::permissions);
    const QRect usual = placeOf(*button("Continue"));
    window->setPrimary("Get Started", true);
    EXPECT_EQ(placeOf(*button("Get Started")), usual);
    window->setPrimary("Reopen Lumetry to apply", true);
    const QRect wider = placeOf(*button("Reopen Lumetry to apply"));
    EXPECT_GT(wider.width(), usual.width());
    EXPECT_EQ(wider.right(), usual.right());
    EXPECT_TRUE(wider.height() == usual.height() && wider.top() == usual.top());
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
        const QImage before = picture();
        typeKey(*widget, Qt::Key_Tab);
        ASSERT_EQ(widget->focusWidget(), button(c.name));
        const QRect place = placeOf(*button(c.name));
        EXPECT_NE(picture().copy(place), before.copy(place)) << "no focus ring";
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
