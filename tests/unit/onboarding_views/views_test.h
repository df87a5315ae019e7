#pragma once

#include "onboarding/onboarding_window.h"
#include "onboarding/views/onboarding_widget.h"

#include <QAbstractButton>
#include <QLabel>
#include <QWidget>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace lumetry {

/// Lets the event loop run.
void run(int milliseconds);
/// Lets the event loop run until the condition holds.
/// @return whether it did in time
[[nodiscard]] bool runUntil(const std::function<bool()>& condition, int milliseconds = 3000);
/// The window of that title.
[[nodiscard]] QWidget* windowTitled(const QString& title);
/// Presses and releases a key in the window: what has the keyboard gets it, else the window.
void typeKey(QWidget& window, int key, const QString& text = {});
/// The widget's place in its window.
[[nodiscard]] QRect placeOf(const QWidget& widget);

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

    /// Shows the window at that step, with nothing moving in yet or any more.
    void open(OnboardingStep step, const std::string& primary = "Continue");
    [[nodiscard]] QLabel* label(const QString& text) const;
    [[nodiscard]] QAbstractButton* button(const QString& nameOrTitle) const;
    /// Of every visible label of text.
    void expectNoTextClipped() const;

    template<typename T>
    [[nodiscard]] T* only() const {
        T* found = nullptr;
        for (QWidget* const child : widget->findChildren<QWidget*>()) {
            if (auto* const match = dynamic_cast<T*>(child)) {
                EXPECT_EQ(found, nullptr);
                found = match;
            }
        }
        EXPECT_NE(found, nullptr);
        return found;
    }

    RecordingActions actions;
    std::unique_ptr<OnboardingWindow> window = makeOnboardingWindow(actions);
    QWidget* widget;
};

} // namespace lumetry
