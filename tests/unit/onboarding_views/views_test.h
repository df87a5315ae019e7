#pragma once

#include "onboarding/onboarding_window.h"
#include "onboarding/views/onboarding_widget.h"

#include <QAbstractButton>
#include <QImage>
#include <QLabel>
#include <QWidget>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace lumetry {

/// Makes all that moves in the widget look as it does that long after it began. What is over by
/// then has ended.
void passTime(QWidget& widget, int milliseconds);
/// How far from each other two colours are, from 0 to 765.
[[nodiscard]] int distance(const QColor& a, const QColor& b);
/// The window of that title.
[[nodiscard]] QWidget* windowTitled(const QString& title);
/// Presses and releases a key in the window: what has the keyboard gets it, else the window.
void typeKey(QWidget& window, Qt::Key key);
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

    /// Shows the window at that step, with everything in its place.
    void open(OnboardingStep step, const std::string& primary = "Continue");
    void passTime(int milliseconds) { lumetry::passTime(*widget, milliseconds); }
    [[nodiscard]] QImage picture() const { return widget->grab().toImage(); }
    [[nodiscard]] QLabel* label(const QString& text) const;
    [[nodiscard]] QAbstractButton* button(const QString& nameOrTitle) const;
    /// Of every visible label of text.
    void expectNoTextClipped() const;

    /// The first one on screen.
    template<typename T>
    [[nodiscard]] T& first() const {
        for (QWidget* const child : widget->findChildren<QWidget*>()) {
            if (auto* const match = dynamic_cast<T*>(child); match && match->isVisible()) {
                return *match;
            }
        }
        throw std::runtime_error("no such widget");
    }

    RecordingActions actions;
    std::unique_ptr<OnboardingWindow> window = makeOnboardingWindow(actions);
    QWidget* widget;
};

} // namespace lumetry
