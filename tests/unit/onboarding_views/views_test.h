#pragma once

#include "onboarding/onboarding_window.h"
#include "onboarding/views/onboarding_widget.h"
#include "unit/widgets/widgets.h"

#include <QAbstractButton>
#include <QLabel>
#include <QWidget>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace lumetry {

/// Presses and releases a key in the window: what has the keyboard gets it, else the window.
void typeKey(QWidget& window, Qt::Key key);

class RecordingActions final : public OnboardingActions {
public:
    void primaryTapped() override { calls.emplace_back("primary"); }
    void backTapped() override { calls.emplace_back("back"); }
    void grantAX() override { calls.emplace_back("grantAX"); }
    void grantSR() override { calls.emplace_back("grantSR"); }
    void windowWillClose() override { calls.emplace_back("close"); }

    std::vector<std::string> calls;
};

class OnboardingViewsTest : public testing::Test {
protected:
    OnboardingViewsTest() : widget(windowTitled(QStringLiteral("Welcome to Lumetry"))) {}

    void open(OnboardingStep step) { openSettled(*window, step, "Continue"); }
    void passTime(int milliseconds) { lumetry::passTime(*widget, milliseconds); }
    [[nodiscard]] QLabel* label(const QString& text) const;
    [[nodiscard]] QAbstractButton* button(const QString& name) const {
        return buttonNamed(*widget, name);
    }

    /// The first one on screen.
    template<typename T>
    [[nodiscard]] T& first() const {
        return *visibleWidgets<T>(*widget).at(0);
    }

    RecordingActions actions;
    std::unique_ptr<OnboardingWindow> window = makeOnboardingWindow(actions);
    QWidget* widget;
};

} // namespace lumetry
