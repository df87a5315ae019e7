#include "onboarding/views/onboarding_widget.h"

#include "onboarding/views/backdrop.h"
#include "onboarding/views/buttons.h"
#include "onboarding/views/centering.h"
#include "onboarding/views/entrance.h"
#include "onboarding/views/keycap.h"
#include "onboarding/views/permission_card.h"
#include "onboarding/views/permissions_page.h"
#include "onboarding/views/pulse.h"
#include "onboarding/views/step_indicator.h"
#include "onboarding/views/style.h"
#include "onboarding/views/takeoff_page.h"
#include "onboarding/views/welcome_page.h"

#include <QCloseEvent>
#include <QFontMetricsF>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <QWindow>

#include <array>
#include <cmath>

namespace lumetry {
namespace {

using namespace views;

constexpr QSize windowSize = {860, 580};
constexpr double fadeSeconds = 0.28;

class OnboardingWidget final : public QWidget {
public:
    explicit OnboardingWidget(OnboardingActions& actions);

    void showStep(OnboardingStep step, bool animated);
    void setPrimary(const QString& title, bool enabled);
    void setCard(Permission permission, const CardState& state);
    void pop(Permission permission);
    void setKeyActive(PracticeKey key, bool active);
    void setNudge(const QString& text);

private:
    void paintEvent(QPaintEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    [[nodiscard]] Page* makePage(OnboardingStep step);
    /// Leaves room for the page above what stays: back, the steps, and on.
    void layOut();
    /// Takes the keyboard from a button that is about to go, before it is handed to just any other.
    void freeKeyboard();
    void setTabOrderOfPage();

    OnboardingActions& actions_;
    Backdrop backdrop_{windowSize};
    double lightOpacity_ = 1;
    QVBoxLayout* column_; ///< of the page and what is below it on every page
    Page* currentPage_ = nullptr;
    PermissionsPage* permissions_ = nullptr; ///< while it is the current page
    TakeoffPage* takeoff_ = nullptr;         ///< while it is the current page
    std::array<CardState, 2> cards_;
    StepIndicator* dashes_;
    BackButton* backButton_;
    FlatButton* primaryButton_;
    /// The button that had the keyboard has gone: the next one to be wanted gets it.
    bool keyboardIsFree_ = false;
};

OnboardingWidget::OnboardingWidget(OnboardingActions& actions)
    : actions_(actions), column_(new QVBoxLayout(this)),
      dashes_(new StepIndicator(onboardingStepCount, this)), backButton_(new BackButton(this)),
      primaryButton_(new FlatButton(this)) {
    setWindowTitle(QStringLiteral("Welcome to Lumetry"));
    setWindowFlags(Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                   Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint);
    setFixedSize(windowSize);
    primaryButton_->setFont(systemFont(14.5, FontWeight::semibold));
    layOut();
    QObject::connect(primaryButton_, &QPushButton::clicked, this,
                     [this] { actions_.primaryTapped(); });
    QObject::connect(backButton_, &QPushButton::clicked, this, [this] { actions_.backTapped(); });
    // So slow that a few steps a second look like one movement.
    auto* const breath = new Pulse(this, {0.7, 1, 3.6, 6, easeInEaseOut()}, [this](double opacity) {
        constexpr double step = 1.0 / 32;
        if (std::abs(opacity - lightOpacity_) >= step) {
            lightOpacity_ = opacity;
            backdrop_.setOpacity(opacity);
            update();
        }
    });
    breath->begin();
}

void OnboardingWidget::showStep(OnboardingStep step, bool animated) {
    Page* const oldPage = currentPage_;
    permissions_ = nullptr;
    takeoff_ = nullptr;
    const bool fades = animated && oldPage != nullptr;
    if (fades) {
        fadeOutAndDelete(oldPage, fadeSeconds);
    } else {
        delete oldPage;
    }
    currentPage_ = makePage(step);
    column_->insertWidget(0, currentPage_, 1);
    currentPage_->show();
    currentPage_->lower();
    backButton_->setVisible(step != OnboardingStep::welcome);
    column_->activate();
    dashes_->setStep(static_cast<int>(step));
    setTabOrderOfPage();
    primaryButton_->setFocus();
    keyboardIsFree_ = true;
    playEntrance(currentPage_->staggerViews());
    if (fades) {
        fadeIn(*currentPage_, fadeSeconds);
    }
}

Page* OnboardingWidget::makePage(OnboardingStep step) {
    switch (step) {
    case OnboardingStep::welcome:
        break;
    case OnboardingStep::permissions:
        permissions_ = new PermissionsPage(actions_, this);
        setCard(Permission::accessibility, cards_[0]);
        setCard(Permission::screenRecording, cards_[1]);
        return permissions_;
    case OnboardingStep::takeoff:
        takeoff_ = new TakeoffPage(this);
        return takeoff_;
    }
    return new WelcomePage(this);
}

void OnboardingWidget::setTabOrderOfPage() {
    QWidget* before = primaryButton_;
    for (QAbstractButton* const button : currentPage_->buttons()) {
        setTabOrder(before, button);
        before = button;
    }
    setTabOrder(before, backButton_);
}

void OnboardingWidget::setPrimary(const QString& title, bool enabled) {
    constexpr int leastWidth = 150;
    constexpr int padding = 52;
    primaryButton_->setText(title);
    if (!enabled && primaryButton_->hasFocus()) {
        freeKeyboard();
    }
    primaryButton_->setEnabled(enabled);
    primaryButton_->setLook(
        {{enabled ? pink() : whiteAt(0.08), {}, 10}, whiteAt(enabled ? 1 : 0.55)});
    const double text = QFontMetricsF(primaryButton_->font()).horizontalAdvance(title);
    primaryButton_->setFixedWidth(
        std::max(leastWidth, static_cast<int>(std::ceil(text)) + padding));
    column_->activate();
    const QWidget* const focused = focusWidget();
    if (enabled && keyboardIsFree_ && (focused == nullptr || focused == this)) {
        primaryButton_->setFocus();
        keyboardIsFree_ = false;
    }
}

void OnboardingWidget::freeKeyboard() {
    setFocus();
    keyboardIsFree_ = true;
}

void OnboardingWidget::layOut() {
    constexpr int buttonHeight = 42;
    QSizePolicy keepsItsPlace = backButton_->sizePolicy();
    keepsItsPlace.setRetainSizeWhenHidden(true);
    backButton_->setSizePolicy(keepsItsPlace);
    primaryButton_->setFixedHeight(buttonHeight);
    auto* const row = new QHBoxLayout;
    row->setContentsMargins(22, 12, 24, 18);
    row->setSpacing(0);
    row->addWidget(backButton_, 0, Qt::AlignVCenter);
    row->addSpacing(16);
    row->addWidget(dashes_, 0, Qt::AlignVCenter);
    row->addStretch();
    row->addWidget(primaryButton_);
    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(0);
    column_->addLayout(row);
}

void OnboardingWidget::setCard(Permission permission, const CardState& state) {
    cards_.at(static_cast<std::size_t>(permission)) = state;
    if (permissions_ != nullptr) {
        PermissionCard& card = permissions_->card(permission);
        if (card.button().hasFocus() && !state.grantButtonShown) {
            freeKeyboard();
        }
        card.setState(state);
    }
}

void OnboardingWidget::pop(Permission permission) {
    if (permissions_ != nullptr) {
        permissions_->card(permission).pop();
    }
}

void OnboardingWidget::setKeyActive(PracticeKey key, bool active) {
    if (takeoff_ != nullptr) {
        takeoff_->cap(key).setActive(active);
    }
}

void OnboardingWidget::setNudge(const QString& text) {
    if (takeoff_ != nullptr) {
        takeoff_->setNudge(text);
    }
}

void OnboardingWidget::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.drawImage(event->rect(), backdrop_.picture(), event->rect());
}

void OnboardingWidget::closeEvent(QCloseEvent* event) {
    event->accept();
    actions_.windowWillClose();
}

void OnboardingWidget::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QWidget::keyPressEvent(event);
        return;
    }
    // Held down, it would run through all the steps.
    if (event->isAutoRepeat()) {
        return;
    }
    auto* const focused = qobject_cast<QAbstractButton*>(focusWidget());
    (focused != nullptr && focused->isEnabled() ? focused : primaryButton_)->click();
}

void OnboardingWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && windowHandle() != nullptr) {
        windowHandle()->startSystemMove();
    }
}

/// The window as the controller knows it.
class QtOnboardingWindow final : public OnboardingWindow {
public:
    explicit QtOnboardingWindow(OnboardingActions& actions) : widget_(actions) {}

    [[nodiscard]] bool isVisible() const override {
        return widget_.isVisible() && !widget_.isMinimized();
    }
    void center() override { centerOnScreen(widget_); }
    void makeKeyAndOrderFront() override {
        widget_.setWindowState(widget_.windowState() & ~Qt::WindowMinimized);
        widget_.show();
        widget_.raise();
        widget_.activateWindow();
    }
    void orderBack() override { widget_.lower(); }
    void close() override { widget_.close(); }
    void showStep(OnboardingStep step, bool animated) override { widget_.showStep(step, animated); }
    void setPrimary(const std::string& title, bool enabled) override {
        widget_.setPrimary(QString::fromStdString(title), enabled);
    }
    void setCard(Permission permission, const CardState& state) override {
        widget_.setCard(permission, state);
    }
    void pop(Permission permission) override { widget_.pop(permission); }
    void setKeyActive(PracticeKey key, bool active) override { widget_.setKeyActive(key, active); }
    void setNudge(const std::string& text) override {
        widget_.setNudge(QString::fromStdString(text));
    }

private:
    OnboardingWidget widget_;
};

} // namespace

std::unique_ptr<OnboardingWindow> makeOnboardingWindow(OnboardingActions& actions) {
    return std::make_unique<QtOnboardingWindow>(actions);
}

} // namespace lumetry
