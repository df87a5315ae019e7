#include "onboarding/views/brand_mark_view.h"
#include "onboarding/views/dimension_line_view.h"
#include "onboarding/views/keycap.h"
#include "onboarding/views/permission_card.h"
#include "onboarding/views/style.h"
#include "onboarding/views/symbols.h"
#include "views_test.h"

#include <QAccessible>
#include <QFontMetrics>

namespace lumetry {
namespace {

using namespace views;

QString accessible(const QWidget& widget, QAccessible::Text text) {
    return QAccessible::queryAccessibleInterface(const_cast<QWidget*>(&widget))->text(text);
}

TEST_F(OnboardingViewsTest, ShowsItsTextsWholeAndAlike) {
    open(OnboardingStep::welcome);
    expectNoTextClipped();
    EXPECT_EQ(first<DimensionLineView>().width(), label("Measure anything on your Mac.")->width());

    open(OnboardingStep::permissions);
    expectNoTextClipped();
    const auto baseline = [](const QLabel& of) {
        return of.geometry().bottom() - of.contentsMargins().bottom() -
               QFontMetrics(of.font()).descent();
    };
    EXPECT_EQ(baseline(*label("Accessibility")), baseline(*label("REQUIRED")));
    EXPECT_EQ(label("Reads sizes, spacing, and labels from any app.")->font(),
              label("Reads colors, fills & corner radii from any app.")->font());

    open(OnboardingStep::takeoff);
    for (const char* const nudge : {"⌃ down — add ⇧ and M", "waiting for your keys…"}) {
        window->setNudge(nudge);
        QCoreApplication::sendPostedEvents();
        EXPECT_NE(label(nudge), nullptr);
        expectNoTextClipped();
    }
}

TEST_F(OnboardingViewsTest, ShowsWhatBecameOfThePermissions) {
    struct Case {
        CardTint icon;
        const char* done;
        QColor tint;
    };
    for (const bool before : {true, false}) {
        for (const Case& c : {Case{CardTint::accent, nullptr, pink()},
                              Case{CardTint::green, "Granted ✓", systemGreen()},
                              Case{CardTint::orange, "Reopen ↻", systemOrange()}}) {
            CardState state{c.icon, c.done == nullptr, {}};
            if (c.done != nullptr) {
                state.done = c.done;
            }
            // Told before there is the page, or while it is there.
            window->setCard(Permission::screenRecording, state);
            if (before) {
                open(OnboardingStep::permissions);
            }
            QCoreApplication::sendPostedEvents();
            const QAbstractButton* const grant = button("Grant Screen Recording");
            EXPECT_EQ(grant->isVisible(), state.grantButtonShown);
            EXPECT_TRUE(button("Grant Accessibility")->isVisible());
            for (const QWidget* const child : grant->parentWidget()->findChildren<QWidget*>()) {
                if (const auto* const icon = dynamic_cast<const SymbolView*>(child)) {
                    EXPECT_EQ(icon->tint(), c.tint);
                    EXPECT_EQ(accessible(*icon, QAccessible::Name), "Screen Recording");
                }
            }
            if (c.done != nullptr) {
                const QLabel* const done = label(c.done);
                ASSERT_NE(done, nullptr);
                EXPECT_EQ(done->palette().color(QPalette::WindowText), c.tint);
            }
            expectNoTextClipped();
        }
    }
}

TEST_F(OnboardingViewsTest, PopsAFreshGrantInFull) {
    open(OnboardingStep::permissions);
    auto& icon = first<SymbolView>();
    window->pop(Permission::accessibility);
    EXPECT_EQ(icon.scale(), 0.5);
    passTime(209);
    EXPECT_NEAR(icon.scale(), 1.3, 1e-3);
    // Strokes that reach the edge in full colour go on beyond it.
    const QImage largest = icon.grab().toImage();
    for (int x = 0; x < largest.width(); ++x) {
        const QColor edge = largest.pixelColor(x, 0);
        EXPECT_LE(edge.red() - edge.green(), 120) << "the icon is larger than its widget";
    }
    passTime(380);
    EXPECT_EQ(icon.scale(), 1);
}

TEST_F(OnboardingViewsTest, LightsTheCapOfAHeldKeyOnce) {
    open(OnboardingStep::takeoff);
    auto& control = first<Keycap>();
    EXPECT_EQ(accessible(control, QAccessible::Name), "control");
    const QPoint inside(Keycap::margin() + 12, Keycap::margin() + 41);
    const auto fill = [&] { return control.grab().toImage().pixelColor(inside); };
    EXPECT_EQ(fill(), QColor(33, 31, 38));
    window->setKeyActive(PracticeKey::control, false);
    EXPECT_TRUE(control.isBreathing()) << "it was at rest already";

    window->setKeyActive(PracticeKey::control, true);
    EXPECT_EQ(accessible(control, QAccessible::Description), "held");
    EXPECT_FALSE(control.isBreathing());
    passTime(120);
    EXPECT_EQ(control.glowOpacity(), 0.7);
    EXPECT_NEAR(fill().red(), 79, 2);
    EXPECT_NEAR(fill().blue(), 54, 2);
    window->setKeyActive(PracticeKey::control, true);
    passTime(60);
    EXPECT_EQ(control.glowOpacity(), 0.7) << "it began anew";

    window->setKeyActive(PracticeKey::control, false);
    EXPECT_NE(accessible(control, QAccessible::Description), "held");
    passTime(250);
    EXPECT_TRUE(control.isBreathing());
    EXPECT_EQ(fill(), QColor(33, 31, 38));
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
