#include "approval.h"

#include "app/status_menu.h"
#include "app/views/control_panel.h"
#include "onboarding/views/brand_mark_view.h"
#include "onboarding/views/keycap.h"
#include "onboarding/views/onboarding_widget.h"
#include "onboarding/views/style.h"
#include "unit/widgets/widgets.h"

#include <QMouseEvent>
#include <QTest>

namespace lumetry {
namespace {

using namespace views;

class NoActions final : public OnboardingActions {
public:
    void primaryTapped() override {}
    void backTapped() override {}
    void grantAX() override {}
    void grantSR() override {}
    void windowWillClose() override {}
};

class OnboardingPictures : public testing::Test {
protected:
    OnboardingPictures() : widget(windowTitled(QStringLiteral("Welcome to Lumetry"))) {}

    void open(OnboardingStep step, const std::string& primary) {
        openSettled(*window, step, primary);
    }

    /// As it is that long after the last change.
    void passTime(int milliseconds) {
        QCoreApplication::sendPostedEvents();
        lumetry::passTime(*widget, milliseconds);
    }

    /// Part of the window on an even ground: the noise of its own does not go into small files.
    [[nodiscard]] QImage picture(const QRect& part) const {
        const double ratio = pixelRatio();
        QImage image(part.size() * ratio, QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
        image.fill(background());
        for (QWidget* const child :
             widget->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
            if (child->isVisible()) {
                child->render(&image, child->pos() - part.topLeft(), {}, QWidget::DrawChildren);
            }
        }
        return image;
    }
    [[nodiscard]] QImage picture() const { return picture(widget->rect()); }

    [[nodiscard]] QImage chrome() const {
        constexpr int height = 72;
        return picture({0, widget->height() - height, widget->width(), height});
    }

    NoActions actions;
    std::unique_ptr<OnboardingWindow> window = makeOnboardingWindow(actions);
    QWidget* widget;
};

TEST_F(OnboardingPictures, Welcome) {
    open(OnboardingStep::welcome, "Get Started");
    expectApproved(picture(), "welcome");
}

TEST_F(OnboardingPictures, Permissions) {
    open(OnboardingStep::permissions, "Continue");
    expectApproved(picture(), "permissions");
}

TEST_F(OnboardingPictures, Takeoff) {
    open(OnboardingStep::takeoff, "Start Inspecting");
    expectApproved(picture(), "takeoff");
}

TEST_F(OnboardingPictures, Ground) {
    open(OnboardingStep::welcome, "Get Started");
    const QImage whole = widget->grab().toImage();
    constexpr int coarseness = 10;
    const QSize coarse = whole.size() / (coarseness * pixelRatio());
    const QImage light = whole.scaled(coarse, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const QImage noise = whole.copy(0, 0, 64, 64);
    expectApproved(sideBySide({light, noise}), "ground");
}

TEST_F(OnboardingPictures, ViewsThatEnter) {
    open(OnboardingStep::permissions, "Continue");
    window->showStep(OnboardingStep::welcome, false);
    passTime(250);
    const QImage welcome = picture({190, 130, 480, 250});
    window->showStep(OnboardingStep::permissions, false);
    passTime(250);
    expectApproved(stacked({welcome, picture({50, 130, 760, 230})}), "entering");
}

TEST_F(OnboardingPictures, PagesThatFade) {
    open(OnboardingStep::permissions, "Continue");
    window->showStep(OnboardingStep::welcome, true);
    passTime(140);
    // The mark, which fades with its page only, over the corner of a card.
    expectApproved(widget->grab({355, 130, 120, 80}).toImage(), "fading");
}

TEST_F(OnboardingPictures, MarkAndLine) {
    const auto shown = [this] { return picture({190, 130, 480, 210}); };
    open(OnboardingStep::welcome, "Get Started");
    auto& mark = *visibleWidgets<BrandMarkView>(*widget).front();
    const QPointF middle = mark.rect().center();
    QMouseEvent hover(QEvent::MouseMove, middle, mark.mapToGlobal(middle), Qt::NoButton,
                      Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&mark, &hover);
    passTime(280);
    std::vector<QImage> moments = {shown()};
    window->showStep(OnboardingStep::welcome, false);
    passTime(700); // the corners, one after another
    moments.push_back(shown());
    passTime(1900); // the line grows while the mark blooms
    moments.push_back(shown());
    expectApproved(stacked(moments), "mark-and-line");
}

TEST_F(OnboardingPictures, Cards) {
    open(OnboardingStep::permissions, "Continue");
    const QRect card = placeOf(*buttonNamed(*widget, "Grant Screen Recording")->parentWidget())
                           .adjusted(-4, -4, 4, 4);
    std::vector<QImage> states;
    for (const CardState& state : {CardState{}, CardState{CardTint::green, false, "Granted ✓"},
                                   CardState{CardTint::orange, false, "Reopen ↻"}}) {
        window->setCard(Permission::screenRecording, state);
        passTime(0);
        states.push_back(picture(card));
    }
    window->pop(Permission::screenRecording);
    passTime(209); // at its largest
    states.push_back(picture(card));
    expectApproved(stacked(states), "cards");
}

TEST_F(OnboardingPictures, Keys) {
    open(OnboardingStep::takeoff, "Start Inspecting");
    QRect row;
    for (const Keycap* const cap : visibleWidgets<Keycap>(*widget)) {
        row |= placeOf(*cap);
    }
    std::vector<QImage> moments;
    passTime(750); // halfway up a breath
    moments.push_back(picture(row));
    window->setKeyActive(PracticeKey::control, true);
    passTime(120); // lit
    window->setKeyActive(PracticeKey::shift, true);
    passTime(60); // halfway
    moments.push_back(picture(row));
    window->setKeyActive(PracticeKey::control, false);
    passTime(125);
    moments.push_back(picture(row));
    expectApproved(stacked(moments), "keys");
}

TEST_F(OnboardingPictures, Buttons) {
    std::vector<QImage> states;
    open(OnboardingStep::permissions, "Continue");
    QAbstractButton* const primary = buttonNamed(*widget, "Continue");
    QAbstractButton* const back = buttonNamed(*widget, "back");
    back->setFocus();
    primary->setFocus(Qt::TabFocusReason);
    states.push_back(chrome());
    primary->setDown(true);
    states.push_back(chrome());
    primary->setDown(false);
    back->setFocus(Qt::TabFocusReason);
    window->setPrimary("Reopen Lumetry to apply", true);
    passTime(0);
    states.push_back(chrome());
    window->setPrimary("Grant Accessibility to continue", false);
    window->showStep(OnboardingStep::takeoff, true);
    passTime(125); // the dashes on their way
    states.push_back(chrome());
    window->showStep(OnboardingStep::welcome, true);
    passTime(250);
    states.push_back(chrome());
    expectApproved(stacked(states), "buttons");
}

TEST(WindowPictures, ControlPanel) {
    const auto panel = makeControlPanel({[] {}, [] {}}, statusBarIcon());
    QWidget* const widget = windowTitled(QStringLiteral("Lumetry"));
    panel->makeKeyAndOrderFront();
    ASSERT_TRUE(QTest::qWaitForWindowActive(widget));
    std::vector<QImage> states = {widget->grab().toImage()};
    widget->findChildren<QAbstractButton*>().front()->setFocus(Qt::TabFocusReason);
    states.push_back(widget->grab().toImage());
    expectApproved(sideBySide(states), "control-panel");
}

} // namespace
} // namespace lumetry
