#include "onboarding/views/brand_mark_view.h"
#include "onboarding/views/dimension_line_view.h"
#include "onboarding/views/keycap.h"
#include "onboarding/views/permission_card.h"
#include "onboarding/views/style.h"
#include "onboarding/views/symbols.h"
#include "views_test.h"

#include <QAccessible>
#include <QFontMetrics>
#include <QImage>

#include <algorithm>
#include <array>

namespace lumetry {
namespace {

using namespace views;

int below(const QWidget& upper, const QWidget& lower) {
    return placeOf(lower).y() - (placeOf(upper).y() + upper.height());
}

QString accessible(const QWidget& widget, QAccessible::Text text) {
    return QAccessible::queryAccessibleInterface(const_cast<QWidget*>(&widget))->text(text);
}

TEST_F(OnboardingViewsTest, StacksTheWelcomePage) {
    open(OnboardingStep::welcome, "Get Started");
    const QLabel* const title = label("Measure anything on your Mac.");
    const QLabel* const subtitle =
        label("Lumetry reads real sizes, spacing, and colors from any app on your screen.\n"
              "Setup takes about 30 seconds.");
    ASSERT_TRUE(title && subtitle);
    const auto* const mark = only<BrandMarkView>();
    const auto* const line = only<DimensionLineView>();
    EXPECT_EQ(mark->width() - 2 * BrandMarkView::margin(), 96);
    EXPECT_EQ(below(*mark, *title) + BrandMarkView::margin(), 30);
    EXPECT_EQ(below(*title, *line), 10);
    EXPECT_EQ(below(*line, *subtitle), 22);
    EXPECT_EQ(line->width(), title->width());
    EXPECT_NEAR(placeOf(*title).x() * 2 + title->width(), 860, 1);
    const int above = placeOf(*mark).y() + BrandMarkView::margin();
    EXPECT_NEAR(508 - (placeOf(*subtitle).y() + subtitle->height()), above, 1);
    expectNoTextClipped();
}

TEST_F(OnboardingViewsTest, StacksThePermissionsPage) {
    open(OnboardingStep::permissions);
    const QLabel* const title = label("Two quick\npermissions");
    const QLabel* const text =
        label("Click Grant and macOS opens the right settings pane. Flip the "
              "switch, then come back here.");
    const QLabel* const footer = label("Runs 100% locally — nothing ever leaves your Mac.");
    ASSERT_TRUE(title && text && footer && label("SETUP"));
    const QWidget& first = *button("Grant Accessibility")->parentWidget();
    const QWidget& second = *button("Grant Screen Recording")->parentWidget();
    EXPECT_EQ(first.size(), QSize(440, 74));
    EXPECT_EQ(second.size(), QSize(440, 74));
    EXPECT_EQ(below(first, second), 13);
    EXPECT_EQ(placeOf(first).x(), (860 - 264 - 40 - 440) / 2 + 264 + 40);
    EXPECT_EQ(placeOf(*title).x(), (860 - 264 - 40 - 440) / 2);
    EXPECT_EQ(below(*title, *text), 14);
    EXPECT_EQ(text->width(), 254);
    EXPECT_EQ(below(second, *footer->parentWidget()), 16);
    EXPECT_EQ(placeOf(*button("Grant Accessibility")),
              placeOf(first).adjusted(440 - 16 - 74, 22, -16, -22));
    expectNoTextClipped();
    const QLabel* const heading = label("Accessibility");
    const QLabel* const tag = label("REQUIRED");
    const auto baseline = [](const QLabel& of) {
        return of.geometry().bottom() - of.contentsMargins().bottom() -
               QFontMetrics(of.font()).descent();
    };
    EXPECT_EQ(baseline(*heading), baseline(*tag));
}

TEST_F(OnboardingViewsTest, StacksTheTakeoffPage) {
    open(OnboardingStep::takeoff);
    const QLabel* const title = label("Woohoo — you're all set! 🎉");
    const QLabel* const subtitle = label("Press the shortcut below and start measuring anything.");
    const QLabel* const nudge = label("waiting for your keys…");
    ASSERT_TRUE(title && subtitle && nudge);
    std::vector<Keycap*> caps;
    for (QWidget* const child : widget->findChildren<QWidget*>()) {
        if (auto* const cap = dynamic_cast<Keycap*>(child)) {
            caps.push_back(cap);
        }
    }
    ASSERT_EQ(caps.size(), 3U);
    const int margin = Keycap::margin();
    EXPECT_EQ(caps[0]->size(), QSize(96 + 2 * margin, 82 + 2 * margin));
    EXPECT_EQ(caps[2]->size(), QSize(82 + 2 * margin, 82 + 2 * margin));
    EXPECT_EQ(below(*title, *subtitle), 10);
    EXPECT_EQ(below(*subtitle, *caps[0]) + margin, 32);
    EXPECT_EQ(below(*caps[0], *nudge) + margin, 20);
    const QLabel* const hint = label("⌥ option");
    ASSERT_TRUE(hint && label("hold to measure gaps") && label("esc") && label("exit"));
    EXPECT_EQ(below(*nudge, *hint->parentWidget()), 30);
    for (const char* const text :
         {"⌃ down — add ⇧ and M", "almost — tap M!", "here we go!", "waiting for your keys…"}) {
        window->setNudge(text);
        run(20);
        EXPECT_NE(label(text), nullptr);
        expectNoTextClipped();
    }
}

TEST_F(OnboardingViewsTest, ShowsWhatBecameOfThePermissions) {
    struct Case {
        CardTint icon;
        const char* done;
        QColor tint;
    };
    const std::array<Case, 3> cases = {{{CardTint::accent, nullptr, pink()},
                                        {CardTint::green, "Granted ✓", systemGreen()},
                                        {CardTint::orange, "Reopen ↻", systemOrange()}}};
    for (const bool before : {true, false}) {
        for (const Case& c : cases) {
            CardState state{c.icon, c.done == nullptr, {}};
            if (c.done != nullptr) {
                state.done = c.done;
            }
            // Told before there is the page, or while it is there.
            if (before) {
                window->setCard(Permission::screenRecording, state);
                open(OnboardingStep::permissions);
            } else {
                window->setCard(Permission::screenRecording, state);
                run(20);
            }
            const QAbstractButton* const grant = button("Grant Screen Recording");
            const QWidget& card = *grant->parentWidget();
            EXPECT_EQ(grant->isVisible(), state.grantButtonShown);
            EXPECT_TRUE(button("Grant Accessibility")->isVisible());
            for (const QWidget* const child : card.findChildren<QWidget*>()) {
                if (const auto* const icon = dynamic_cast<const SymbolView*>(child)) {
                    EXPECT_EQ(icon->tint(), c.tint);
                    EXPECT_EQ(accessible(*icon, QAccessible::Name), "Screen Recording");
                    EXPECT_NEAR(icon->mapTo(&card, icon->rect().center()).x(), 16 + 20, 1);
                }
            }
            if (c.done != nullptr) {
                const QLabel* const done = label(c.done);
                ASSERT_NE(done, nullptr);
                EXPECT_EQ(done->palette().color(QPalette::WindowText), c.tint);
                const int right = done->contentsMargins().right();
                EXPECT_EQ(done->geometry().right() + 1 - right, 440 - 18);
            }
            expectNoTextClipped();
        }
    }
}

TEST_F(OnboardingViewsTest, PopsAFreshGrantInFull) {
    open(OnboardingStep::permissions);
    SymbolView* icon = nullptr;
    for (QWidget* const child :
         button("Grant Accessibility")->parentWidget()->findChildren<QWidget*>()) {
        icon = icon != nullptr ? icon : dynamic_cast<SymbolView*>(child);
    }
    ASSERT_NE(icon, nullptr);
    EXPECT_EQ(icon->tint(), pink());
    window->pop(Permission::accessibility);
    double least = 1;
    double most = 1;
    bool clipped = false;
    EXPECT_TRUE(runUntil([&] {
        // Strokes that reach the edge in full colour go on beyond it.
        const QImage picture = icon->grab().toImage();
        for (int x = 0; icon->scale() > 1.2 && x < picture.width(); ++x) {
            const QColor edge = picture.pixelColor(x, 0);
            clipped = clipped || edge.red() - edge.green() > 120;
        }
        least = std::min(least, icon->scale());
        most = std::max(most, icon->scale());
        return most > 1.1 && icon->scale() == 1;
    }));
    EXPECT_LT(least, 0.9);
    EXPECT_LE(most, 1.3);
    EXPECT_FALSE(clipped) << "the icon is larger than its widget";
}

TEST_F(OnboardingViewsTest, LightsTheCapOfAHeldKeyOnce) {
    open(OnboardingStep::takeoff);
    Keycap* control = nullptr;
    for (QWidget* const child : widget->findChildren<QWidget*>()) {
        control = control != nullptr ? control : dynamic_cast<Keycap*>(child);
    }
    ASSERT_NE(control, nullptr);
    EXPECT_EQ(accessible(*control, QAccessible::Name), "control");
    const QPoint inside(Keycap::margin() + 12, Keycap::margin() + 41);
    const auto fill = [&] { return control->grab().toImage().pixelColor(inside); };
    EXPECT_EQ(fill(), QColor(33, 31, 38));
    window->setKeyActive(PracticeKey::control, false);
    EXPECT_TRUE(control->isBreathing()) << "it was at rest already";

    window->setKeyActive(PracticeKey::control, true);
    EXPECT_EQ(accessible(*control, QAccessible::Description), "held");
    EXPECT_FALSE(control->isBreathing());
    EXPECT_TRUE(runUntil([&] { return control->glowOpacity() == 0.7; }));
    EXPECT_NEAR(fill().red(), 79, 2);
    EXPECT_NEAR(fill().blue(), 54, 2);
    window->setKeyActive(PracticeKey::control, true);
    run(40);
    EXPECT_EQ(control->glowOpacity(), 0.7) << "it began anew";

    window->setKeyActive(PracticeKey::control, false);
    EXPECT_NE(accessible(*control, QAccessible::Description), "held");
    EXPECT_TRUE(runUntil([&] { return control->isBreathing(); }));
    EXPECT_EQ(fill(), QColor(33, 31, 38));
    EXPECT_TRUE(runUntil([&] { return control->glowOpacity() > 0.2; }));
    EXPECT_LE(control->glowOpacity(), 0.4);
    // Pages without keys take no notice.
    window->showStep(OnboardingStep::welcome, false);
    window->setKeyActive(PracticeKey::shift, true);
    window->setNudge("almost — tap M!");
    EXPECT_EQ(label("almost — tap M!"), nullptr);
}

} // namespace
} // namespace lumetry
